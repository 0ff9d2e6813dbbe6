#pragma once

class CShapeList;

// Fills the list with the demo drawing: standard colours, one colour used
// twice, an image, a group, a special-layer colour and a colour of no palette.
void BuildSampleDrawing(CShapeList *shapes);
