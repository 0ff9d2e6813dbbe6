#pragma once

#include "cdrawitem.h"

#include <vector>

// The demo drawing, in millimetres on the canvas page: standard layer
// colours (one used twice), an image, a group, a special-layer colour, a
// colour of no palette and black text.
std::vector<CDrawItem> BuildSampleDrawing();
