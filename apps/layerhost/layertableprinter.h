#pragma once

class ILayerMgr;
class QTextStream;

// The manager's layers as a plain text table, one line per layer in list
// order: number, colour, mode, speed (mm/s), power, laser, air, output.
void PrintLayerTable(QTextStream &out, ILayerMgr *manager);
