#pragma once

#include "layerlist.h"

class QIODevice;

constexpr qint32 kLayerStreamVersion = 14;
// A declared layer count above this is taken as this: a stream of any size
// never makes the reader allocate without bound.
constexpr qint32 kMaxStreamLayers = 65536;

// Writes version 14: version, count, then every record, little endian.
void WriteLayerStream(QIODevice *device, const LayerList &layers);
// Reads a stream of any version from 0 on and appends its records. A value
// that cannot be read keeps the record's default; a version below 4 has no
// count and holds 21 layers.
void ReadLayerStream(QIODevice *device, LayerList &layers);
