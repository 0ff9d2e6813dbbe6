#include "toolicons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace {

const QColor kInk(0x3A, 0x40, 0x4A);
const QColor kAccent(0x1E, 0x78, 0xD7);

void draw(QPainter &p, ETOOL_ICON icon)
{
    QPen pen(kInk, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    switch (icon) {
    case ICON_SELECT: {
        QPainterPath arrow;
        arrow.moveTo(9, 5);
        arrow.lineTo(9, 26);
        arrow.lineTo(14, 21);
        arrow.lineTo(18, 29);
        arrow.lineTo(21, 27.5);
        arrow.lineTo(17, 20);
        arrow.lineTo(24, 20);
        arrow.closeSubpath();
        p.setBrush(Qt::white);
        p.drawPath(arrow);
        break;
    }
    case ICON_RECT:
        p.drawRect(QRectF(5, 8, 22, 16));
        break;
    case ICON_ELLIPSE:
        p.drawEllipse(QRectF(4, 8, 24, 16));
        break;
    case ICON_LINE:
        p.drawLine(QPointF(6, 26), QPointF(26, 6));
        p.setBrush(kInk);
        p.drawEllipse(QPointF(6, 26), 1.8, 1.8);
        p.drawEllipse(QPointF(26, 6), 1.8, 1.8);
        break;
    case ICON_NEW:
    case ICON_OPEN:
    case ICON_SAVE: {
        QPainterPath sheet;
        sheet.moveTo(8, 4);
        sheet.lineTo(20, 4);
        sheet.lineTo(25, 9);
        sheet.lineTo(25, 28);
        sheet.lineTo(8, 28);
        sheet.closeSubpath();
        p.setBrush(Qt::white);
        p.drawPath(sheet);
        p.setPen(QPen(kAccent, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        if (icon == ICON_OPEN) {
            p.drawLine(QPointF(12, 17), QPointF(21, 17));
            p.drawLine(QPointF(17, 13), QPointF(21, 17));
            p.drawLine(QPointF(17, 21), QPointF(21, 17));
        } else if (icon == ICON_SAVE) {
            p.drawLine(QPointF(16.5, 10), QPointF(16.5, 22));
            p.drawLine(QPointF(12.5, 18), QPointF(16.5, 22));
            p.drawLine(QPointF(20.5, 18), QPointF(16.5, 22));
        }
        break;
    }
    case ICON_IMPORT:
        p.drawPolyline(QPolygonF({QPointF(5, 18), QPointF(5, 27), QPointF(27, 27), QPointF(27, 18)}));
        p.setPen(QPen(kAccent, 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawLine(QPointF(16, 4), QPointF(16, 20));
        p.drawLine(QPointF(10, 14), QPointF(16, 20));
        p.drawLine(QPointF(22, 14), QPointF(16, 20));
        break;
    case ICON_GROUP:
    case ICON_UNGROUP:
        p.drawRect(QRectF(6, 6, 11, 11));
        p.drawEllipse(QRectF(14, 14, 12, 12));
        p.setPen(QPen(icon == ICON_GROUP ? kAccent : QColor(0xB0, 0xB6, 0xBE), 1.4, Qt::DashLine));
        p.drawRect(QRectF(2.5, 2.5, 27, 27));
        break;
    case ICON_DELETE:
        p.setPen(QPen(QColor(0xC4, 0x2B, 0x1C), 2.6, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(QPointF(8, 8), QPointF(24, 24));
        p.drawLine(QPointF(24, 8), QPointF(8, 24));
        break;
    case ICON_APP:
        p.setBrush(QColor(0x0B, 0x00, 0xFF));
        p.setPen(Qt::NoPen);
        p.drawRoundedRect(QRectF(3, 3, 26, 8), 2, 2);
        p.setBrush(QColor(0xF4, 0x82, 0x44));
        p.drawRoundedRect(QRectF(3, 12, 26, 8), 2, 2);
        p.setBrush(QColor(0x00, 0xCA, 0xFC));
        p.drawRoundedRect(QRectF(3, 21, 26, 8), 2, 2);
        break;
    }
}

} // namespace

QIcon ToolIcon(ETOOL_ICON icon)
{
    QIcon result;
    for (int size : {16, 24, 32, 48}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / 32.0, size / 32.0);
        draw(painter, icon);
        painter.end();
        result.addPixmap(pixmap);
    }
    return result;
}
