#include "cshapegroup.h"

CShapeGroup::CShapeGroup(quint32 color)
    : CShape(color, SHAPE_GROUP)
{
}

CShapeGroup::~CShapeGroup() = default;

int CShapeGroup::GetCount() const
{
    return int(m_members.size());
}

CShape *CShapeGroup::GetShape(int index) const
{
    if (index < 0 || index >= GetCount())
        return nullptr;
    return m_members[size_t(index)].get();
}

void CShapeGroup::AddShape(CShape *shape)
{
    if (shape)
        m_members.emplace_back(shape);
}
