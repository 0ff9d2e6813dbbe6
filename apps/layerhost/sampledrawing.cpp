#include "sampledrawing.h"

#include "cshapegroup.h"
#include "cshapelist.h"

void BuildSampleDrawing(CShapeList *shapes)
{
    shapes->AddTail(new CShape(0x0B00FF));              // layer 1
    shapes->AddTail(new CShape(0xF48244));              // layer 3
    shapes->AddTail(new CShape(0x0B00FF));              // layer 1 again
    shapes->AddTail(new CShape(0x00CAFC, SHAPE_IMAGE)); // an engraved photo
    auto *group = new CShapeGroup(0x2431BD);
    group->AddShape(new CShape(0x2431BD));
    group->AddShape(new CShape(0x2431BD));
    shapes->AddTail(group);
    shapes->AddTail(new CShape(0xCC8B17));              // special layer
    shapes->AddTail(new CShape(0x123456));              // no palette colour
    shapes->AddTail(new CShape(0x000000, SHAPE_TEXT));  // black text
}
