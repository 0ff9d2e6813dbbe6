#include "cdrawitem.h"

#include "cshape.h"
#include "cshapegroup.h"

#include <QPainterPathStroker>

CDrawItem::CDrawItem(EDRAW_KIND kind, quint32 color, const QPainterPath &path, bool filled)
    : m_kind(kind)
    , m_color(color & 0xFFFFFFu)
    , m_filled(filled)
    , m_path(path)
{
}

CDrawItem CDrawItem::Rect(const QRectF &rect, quint32 color, bool filled)
{
    QPainterPath path;
    path.addRect(rect.normalized());
    return CDrawItem(DRAW_RECT, color, path, filled);
}

CDrawItem CDrawItem::Ellipse(const QRectF &rect, quint32 color, bool filled)
{
    QPainterPath path;
    path.addEllipse(rect.normalized());
    return CDrawItem(DRAW_ELLIPSE, color, path, filled);
}

CDrawItem CDrawItem::Line(const QLineF &line, quint32 color)
{
    QPainterPath path(line.p1());
    path.lineTo(line.p2());
    return CDrawItem(DRAW_LINE, color, path);
}

CDrawItem CDrawItem::Image(const QRectF &rect, quint32 color)
{
    QPainterPath path;
    path.addRect(rect.normalized());
    return CDrawItem(DRAW_IMAGE, color, path, true);
}

CDrawItem CDrawItem::Group(std::vector<CDrawItem> members)
{
    CDrawItem group;
    group.m_kind = DRAW_GROUP;
    group.m_color = members.empty() ? 0 : members.front().Color();
    group.m_members = std::move(members);
    return group;
}

void CDrawItem::SetColor(quint32 color)
{
    m_color = color & 0xFFFFFFu;
    for (CDrawItem &member : m_members)
        member.SetColor(color);
}

int CDrawItem::ShapeType() const
{
    switch (m_kind) {
    case DRAW_IMAGE:
        return SHAPE_IMAGE;
    case DRAW_TEXT:
        return SHAPE_TEXT;
    case DRAW_GROUP:
        return SHAPE_GROUP;
    default:
        return SHAPE_PATH;
    }
}

QRectF CDrawItem::Bounds() const
{
    return IsGroup() ? BoundsOf(m_members) : m_path.boundingRect();
}

QRectF CDrawItem::BoundsOf(const std::vector<CDrawItem> &items)
{
    QRectF bounds;
    bool first = true;
    for (const CDrawItem &item : items) {
        const QRectF b = item.Bounds();
        // united() drops rectangles of no width, which a straight line has.
        if (first) {
            bounds = b;
            first = false;
        } else {
            bounds.setLeft(qMin(bounds.left(), b.left()));
            bounds.setTop(qMin(bounds.top(), b.top()));
            bounds.setRight(qMax(bounds.right(), b.right()));
            bounds.setBottom(qMax(bounds.bottom(), b.bottom()));
        }
    }
    return bounds;
}

bool CDrawItem::HitTest(const QPointF &point, qreal tolerance) const
{
    if (IsGroup()) {
        for (const CDrawItem &member : m_members) {
            if (member.HitTest(point, tolerance))
                return true;
        }
        return false;
    }
    if (!Bounds().adjusted(-tolerance, -tolerance, tolerance, tolerance).contains(point))
        return false;
    if (m_filled && m_path.contains(point))
        return true;
    QPainterPathStroker stroker;
    stroker.setWidth(2 * tolerance);
    return stroker.createStroke(m_path).contains(point);
}

void CDrawItem::Translate(const QPointF &offset)
{
    m_path.translate(offset);
    for (CDrawItem &member : m_members)
        member.Translate(offset);
}

int CDrawItem::Depth() const
{
    int depth = 0;
    for (const CDrawItem &member : m_members)
        depth = qMax(depth, member.Depth() + 1);
    return depth;
}

std::unique_ptr<CShape> CDrawItem::ToShape() const
{
    if (!IsGroup())
        return std::make_unique<CShape>(m_color, ShapeType());
    auto group = std::make_unique<CShapeGroup>(m_color);
    for (const CDrawItem &member : m_members)
        group->AddShape(member.ToShape().release());
    return group;
}
