#include "cshape.h"

CShape::CShape(quint32 color, int type)
    : m_color(color & 0xFFFFFFu)
    , m_type(type)
{
}

CShape::~CShape() = default;

int CShape::GetType() const
{
    return m_type;
}

bool CShape::IsSelected() const
{
    return m_selected;
}
