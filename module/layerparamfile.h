#pragma once

#include "layerlist.h"

#include <QString>

// "%1/Data/old.lpl": the remembered parameters of every colour ever used.
QString LayerParamFilePath();

// Appends the file's records; a missing file leaves the list alone. A
// LAYER_COUNT above 65536 is taken as 65536, a negative one as 0.
void ReadLayerParamFile(LayerList &remembered);
// Writes the whole list in one batch. QSettings replaces the file atomically.
void WriteLayerParamFile(const LayerList &remembered);

// The same on a named file, for tools and tests.
void ReadLayerParamFile(LayerList &remembered, const QString &path);
void WriteLayerParamFile(const LayerList &remembered, const QString &path);
