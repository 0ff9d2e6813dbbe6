#pragma once

#include "cdrawitem.h"

#include <QStringList>

#include <vector>

inline QString DrawItemsText(const std::vector<CDrawItem> &items);

// Drawing items as short text, so a test compares what a user would see
// listed: "rect #ff0000", "ellipse #00ff00 fill", "group #0000ff [line #0000ff; ...]".
inline QString DrawItemText(const CDrawItem &item)
{
    static const char *const kinds[] = {"rect", "ellipse", "line", "path", "image", "text", "group"};
    QString text = QStringLiteral("%1 #%2").arg(QLatin1String(kinds[item.Kind()])).arg(item.Color(), 6, 16, QLatin1Char('0'));
    if (item.IsFilled())
        text += QStringLiteral(" fill");
    if (item.IsGroup())
        text += QStringLiteral(" [") + DrawItemsText(item.Members()) + QLatin1Char(']');
    return text;
}

inline QString DrawItemsText(const std::vector<CDrawItem> &items)
{
    QStringList texts;
    for (const CDrawItem &item : items)
        texts.append(DrawItemText(item));
    return texts.join(QStringLiteral("; "));
}

// Bounds rounded to 0.01 mm: "x,y wxh".
inline QString BoundsText(const QRectF &r)
{
    auto n = [](qreal v) { return QString::number(qRound(v * 100) / 100.0); };
    return n(r.x()) + QLatin1Char(',') + n(r.y()) + QLatin1Char(' ') + n(r.width()) + QLatin1Char('x') + n(r.height());
}
