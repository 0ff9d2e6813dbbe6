#pragma once

#include <QtGlobal>

// The two special-layer colours: no number, always last in the layer list.
constexpr quint32 kReservedColorA = 0xCC8B17;
constexpr quint32 kReservedColorB = 0xCC8B18;
constexpr quint32 kStandardLayerCount = 35;

// Standard colour of layer 1..35; 0 (0x010101 for the alternate) otherwise.
quint32 StandardLayerColor(quint32 number, bool alternate);
// 1..35 for a colour of either column, else 0.
quint32 StandardLayerNumber(quint32 color);
bool IsReservedColor(quint32 color);
