#pragma once

#include "cdrawitem.h"

#include <QString>

#include <vector>

class QIODevice;

// Reads the shapes of an SVG drawing into drawing items, in millimetres.
// Every shape's stroke colour, or its fill colour when it has no stroke,
// becomes the item's colour; <g> elements with several shapes of one colour
// become groups, those of several colours their members;
// <image> elements become image items. Text, <use> and anything that is not
// drawn directly (definitions, gradients, ...) is left out.
class CSvgImporter
{
public:
    static constexpr qint64 kMaxBytes = 20 * 1024 * 1024;
    static constexpr int kMaxElements = 200000;
    static constexpr int kMaxDepth = 256;
    // Shapes further out than this (in millimetres) are left out.
    static constexpr double kMaxCoordinate = 1.0e6;

    // Reads the whole document from an open device. On failure ErrorString()
    // says why, in the user's language, and there are no items.
    bool Read(QIODevice *device);

    const std::vector<CDrawItem> &Items() const { return m_items; }
    std::vector<CDrawItem> TakeItems() { return std::move(m_items); }
    QString ErrorString() const { return m_error; }
    // Elements that would draw something but were left out.
    int SkippedCount() const { return m_skipped; }

private:
    bool fail(const QString &error);
    bool parse(const QByteArray &data);

    std::vector<CDrawItem> m_items;
    QString m_error;
    int m_skipped = 0;
};
