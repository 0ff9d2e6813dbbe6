#pragma once

#include <QLineF>
#include <QPainterPath>
#include <QRectF>

#include <memory>
#include <vector>

class CShape;

// What a drawing item is to the host; the plug-in only learns the shape kind
// derived from it (ShapeType). The values are stored in project files.
enum EDRAW_KIND : quint8 {
    DRAW_RECT = 0,
    DRAW_ELLIPSE = 1,
    DRAW_LINE = 2,
    DRAW_PATH = 3,
    DRAW_IMAGE = 4,
    DRAW_TEXT = 5,
    DRAW_GROUP = 6,
};
constexpr int kDrawKindCount = 7;

// One shape of the host's drawing, a plain value in millimetres: the canvas
// paints it and the project file keeps it. The plug-in sees it only as the
// CShape that ToShape makes (colour, kind; selection is set by the drawing).
class CDrawItem
{
public:
    CDrawItem() = default;
    CDrawItem(EDRAW_KIND kind, quint32 color, const QPainterPath &path, bool filled = false);

    static CDrawItem Rect(const QRectF &rect, quint32 color, bool filled = false);
    static CDrawItem Ellipse(const QRectF &rect, quint32 color, bool filled = false);
    static CDrawItem Line(const QLineF &line, quint32 color);
    static CDrawItem Image(const QRectF &rect, quint32 color);
    // Takes the colour of its first member, as the host's groups do.
    static CDrawItem Group(std::vector<CDrawItem> members);

    EDRAW_KIND Kind() const { return m_kind; }
    bool IsGroup() const { return m_kind == DRAW_GROUP; }
    quint32 Color() const { return m_color; }
    // Recolours a group's members as well.
    void SetColor(quint32 color);
    // Painted as an area (SVG fill, text) rather than an outline.
    bool IsFilled() const { return m_filled; }
    const QPainterPath &Path() const { return m_path; }
    const std::vector<CDrawItem> &Members() const { return m_members; }

    // The ESHAPE_KIND the plug-in is told.
    int ShapeType() const;
    QRectF Bounds() const;
    // The bounds of all the items together; empty for none.
    static QRectF BoundsOf(const std::vector<CDrawItem> &items);
    bool HitTest(const QPointF &point, qreal tolerance) const;
    void Translate(const QPointF &offset);
    // Group levels below this item, 0 for a plain shape.
    int Depth() const;
    std::unique_ptr<CShape> ToShape() const;

    friend bool operator==(const CDrawItem &a, const CDrawItem &b)
    {
        return a.m_kind == b.m_kind && a.m_color == b.m_color && a.m_filled == b.m_filled
            && a.m_path == b.m_path && a.m_members == b.m_members;
    }
    friend bool operator!=(const CDrawItem &a, const CDrawItem &b) { return !(a == b); }

private:
    EDRAW_KIND m_kind = DRAW_PATH;
    quint32 m_color = 0;
    bool m_filled = false;
    QPainterPath m_path;
    std::vector<CDrawItem> m_members;
};
