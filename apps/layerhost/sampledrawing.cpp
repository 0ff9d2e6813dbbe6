#include "sampledrawing.h"

#include <QFont>
#include <QTransform>
#include <QtMath>

namespace {

CDrawItem star(const QPointF &centre, qreal outer, qreal inner, quint32 color)
{
    QPainterPath path;
    for (int i = 0; i < 10; ++i) {
        const qreal angle = qDegreesToRadians(-90.0 + 36.0 * i);
        const qreal r = i % 2 ? inner : outer;
        const QPointF p = centre + QPointF(r * qCos(angle), r * qSin(angle));
        if (i == 0)
            path.moveTo(p);
        else
            path.lineTo(p);
    }
    path.closeSubpath();
    return CDrawItem(DRAW_PATH, color, path);
}

CDrawItem wave(const QPointF &from, qreal length, qreal height, quint32 color)
{
    QPainterPath path(from);
    const qreal step = length / 8;
    for (int i = 0; i < 8; ++i) {
        const QPointF start = from + QPointF(i * step, 0);
        const qreal dy = i % 2 ? height : -height;
        path.cubicTo(start + QPointF(step / 3, dy), start + QPointF(2 * step / 3, dy),
                     start + QPointF(step, 0));
    }
    return CDrawItem(DRAW_PATH, color, path);
}

CDrawItem crossMark(const QPointF &centre, qreal size, quint32 color)
{
    QPainterPath path;
    path.addEllipse(centre, size / 3, size / 3);
    path.moveTo(centre - QPointF(size, 0));
    path.lineTo(centre + QPointF(size, 0));
    path.moveTo(centre - QPointF(0, size));
    path.lineTo(centre + QPointF(0, size));
    return CDrawItem(DRAW_PATH, color, path);
}

CDrawItem text(const QString &words, const QPointF &baseline, qreal height, quint32 color)
{
    QFont font(QStringLiteral("Sans Serif"));
    font.setPixelSize(100);
    font.setBold(true);
    QPainterPath glyphs;
    glyphs.addText(QPointF(0, 0), font, words);
    const qreal scale = height / 100.0;
    glyphs = QTransform(scale, 0, 0, scale, baseline.x(), baseline.y()).map(glyphs);
    return CDrawItem(DRAW_TEXT, color, glyphs, true);
}

} // namespace

std::vector<CDrawItem> BuildSampleDrawing()
{
    std::vector<CDrawItem> items;
    items.push_back(CDrawItem::Rect(QRectF(20, 20, 220, 150), 0x0B00FF));        // layer 1
    items.push_back(CDrawItem::Ellipse(QRectF(40, 50, 80, 80), 0xF48244, true)); // layer 3
    items.push_back(star(QPointF(180, 92), 44, 18, 0x0B00FF));                   // layer 1 again
    items.push_back(CDrawItem::Image(QRectF(260, 20, 120, 90), 0x00CAFC));       // an engraved photo
    std::vector<CDrawItem> members;
    members.push_back(CDrawItem::Ellipse(QRectF(262, 128, 52, 40), 0x2431BD));
    members.push_back(CDrawItem::Ellipse(QRectF(326, 128, 52, 40), 0x2431BD));
    items.push_back(CDrawItem::Group(std::move(members)));                         // layer 13
    items.push_back(crossMark(QPointF(380, 280), 10, 0xCC8B17));                  // special layer
    items.push_back(wave(QPointF(20, 215), 220, 22, 0x123456));                   // no palette colour
    items.push_back(text(QStringLiteral("LayerMgr"), QPointF(262, 222), 22, 0x000000));
    return items;
}
