#pragma once

#include <QList>
#include <QStringView>
#include <QtGlobal>

class QPainterPath;
class QTransform;

// The pieces of SVG attribute syntax the importer reads. Each parser returns
// false for text it cannot read completely.

// A fill or stroke value.
struct SvgPaint
{
    enum EPAINT_TYPE { PAINT_UNSET, PAINT_NONE, PAINT_COLOR, PAINT_CURRENT_COLOR };
    EPAINT_TYPE type = PAINT_UNSET;
    quint32 rgb = 0;
};

// #rgb, #rgba, #rrggbb, #rrggbbaa, rgb()/rgba() with numbers or percentages,
// and the SVG colour keywords. A fully transparent colour sets *transparent.
bool ParseSvgColor(QStringView text, quint32 *rgb, bool *transparent);
// A colour, "none", "currentColor", or url(...) with an optional fallback
// colour; anything unreadable is PAINT_UNSET, which inherits.
SvgPaint ParseSvgPaint(QStringView text);
// A length in user units (px): plain numbers and px, mm, cm, in, pt, pc.
bool ParseSvgLength(QStringView text, double *value);
// Numbers separated by white space and/or commas ("points", "viewBox").
bool ParseSvgNumberList(QStringView text, QList<double> *numbers);
// matrix, translate, scale, rotate, skewX and skewY, applied right to left.
bool ParseSvgTransform(QStringView text, QTransform *transform);
// Path data. Like a renderer, keeps what was read before an error.
bool ParseSvgPathData(QStringView text, QPainterPath *path);
