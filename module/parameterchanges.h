#pragma once

#include "clayerparam.h"
#include "library/libraryrecords.h"

#include <QList>
#include <QStringList>

// The rows of the change summary shown before parameters are overwritten:
// one row {caption, old text, new text} per parameter whose old and new value
// differ, in the order the summary lists them. Captions and value texts are
// translated. dualLaser adds the second laser's rows and gives every
// per-laser caption its laser ("Jump Delay-Laser1"); a one-laser machine
// gets plain captions and the first laser's rows only.
QList<QStringList> CutSetChanges(const CLibCutSet &oldSet, const CLibCutSet &newSet,
                                 bool dualLaser);
QList<QStringList> SweepSetChanges(const CLibSweepSet &oldSet, const CLibSweepSet &newSet,
                                   bool dualLaser);
// The block compared follows the new layer's work type; a mark layer only
// compares air assist.
QList<QStringList> LayerChanges(const CLayerParam &oldLayer, const CLayerParam &newLayer,
                                bool dualLaser);

// Value texts, as the rows show them.
QString ChangeNumberText(double value);
QString ChangeOnOffText(bool on);
QString ChangeResolutionText(qint32 index);
