#include "cshapelist.h"

#include "cshape.h"

CShapeList *CShapeList::New()
{
    return new CShapeList;
}

void CShapeList::Release()
{
    delete this;
}

CShapeList::CShapeList() = default;
CShapeList::~CShapeList() = default;

void CShapeList::AddTail(CShape *shape)
{
    if (shape)
        m_shapes.emplace_back(shape);
}

CShape *CShapeList::TakeAt(int index)
{
    if (index < 0 || index >= GetCount())
        return nullptr;
    CShape *shape = m_shapes[size_t(index)].release();
    m_shapes.erase(m_shapes.begin() + index);
    return shape;
}

void CShapeList::RemoveAll()
{
    m_shapes.clear();
}

void CShapeList::Reserve(int count)
{
    if (count > 0)
        m_shapes.reserve(size_t(count));
}
