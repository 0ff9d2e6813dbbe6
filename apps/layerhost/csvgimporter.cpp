#include "csvgimporter.h"

#include "hostwording.h"
#include "svgsyntax.h"

#include <QIODevice>
#include <QRegularExpression>
#include <QTransform>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kMmPerPixel = 25.4 / 96.0;

struct Style
{
    SvgPaint fill{SvgPaint::PAINT_COLOR, 0}; // SVG fills black unless told otherwise
    SvgPaint stroke{SvgPaint::PAINT_NONE, 0};
    quint32 color = 0;                       // what currentColor means
    Qt::FillRule fillRule = Qt::WindingFill; // SVG's nonzero
    bool hidden = false;
};

struct Frame
{
    Style style;
    QTransform transform;
    std::vector<CDrawItem> items;
    bool skip = false;  // nothing below is drawn
    bool group = false; // the items gathered here form a group
};

void applyProperty(Style *style, const QString &name, QStringView value)
{
    value = value.trimmed();
    if (value.endsWith(QLatin1String("!important")))
        value = value.chopped(10).trimmed();
    if (value == QLatin1String("inherit"))
        return;
    if (name == QLatin1String("fill")) {
        const SvgPaint paint = ParseSvgPaint(value);
        if (paint.type != SvgPaint::PAINT_UNSET)
            style->fill = paint;
    } else if (name == QLatin1String("stroke")) {
        const SvgPaint paint = ParseSvgPaint(value);
        if (paint.type != SvgPaint::PAINT_UNSET)
            style->stroke = paint;
    } else if (name == QLatin1String("color")) {
        quint32 rgb = 0;
        bool transparent = false;
        if (ParseSvgColor(value, &rgb, &transparent))
            style->color = rgb;
    } else if (name == QLatin1String("fill-rule")) {
        if (value == QLatin1String("evenodd"))
            style->fillRule = Qt::OddEvenFill;
        else if (value == QLatin1String("nonzero"))
            style->fillRule = Qt::WindingFill;
    } else if (name == QLatin1String("display")) {
        style->hidden = value == QLatin1String("none");
    }
}

// Presentation attributes first, then the style attribute, which wins.
void applyStyle(Style *style, const QXmlStreamAttributes &attributes)
{
    for (const char *name : {"fill", "stroke", "color", "fill-rule", "display"}) {
        const QLatin1String key(name);
        if (attributes.hasAttribute(key))
            applyProperty(style, key, attributes.value(key));
    }
    const QStringView css = attributes.value(QLatin1String("style"));
    for (QStringView declaration : css.split(QLatin1Char(';'))) {
        const qsizetype colon = declaration.indexOf(QLatin1Char(':'));
        if (colon > 0)
            applyProperty(style, declaration.left(colon).trimmed().toString(), declaration.mid(colon + 1));
    }
}

bool resolvePaint(const SvgPaint &paint, const Style &style, quint32 *rgb)
{
    if (paint.type == SvgPaint::PAINT_COLOR) {
        *rgb = paint.rgb;
        return true;
    }
    if (paint.type == SvgPaint::PAINT_CURRENT_COLOR) {
        *rgb = style.color;
        return true;
    }
    return false;
}

// A length attribute: absent gives the fallback, unreadable gives false.
bool length(const QXmlStreamAttributes &attributes, const char *name, double fallback, double *value)
{
    const QLatin1String key(name);
    if (!attributes.hasAttribute(key)) {
        *value = fallback;
        return true;
    }
    return ParseSvgLength(attributes.value(key), value);
}

// Maps the root element's viewBox onto its width and height, in millimetres.
QTransform viewportTransform(const QXmlStreamAttributes &attributes)
{
    double width = 0;
    double height = 0;
    const bool hasWidth = attributes.hasAttribute(QLatin1String("width"))
        && ParseSvgLength(attributes.value(QLatin1String("width")), &width) && width > 0;
    const bool hasHeight = attributes.hasAttribute(QLatin1String("height"))
        && ParseSvgLength(attributes.value(QLatin1String("height")), &height) && height > 0;
    QList<double> box;
    if (!ParseSvgNumberList(attributes.value(QLatin1String("viewBox")), &box) || box.size() != 4
        || box[2] <= 0 || box[3] <= 0)
        return QTransform::fromScale(kMmPerPixel, kMmPerPixel);
    const double sx = (hasWidth ? width : box[2]) / box[2];
    const double sy = (hasHeight ? height : box[3]) / box[3];
    return QTransform::fromTranslate(-box[0], -box[1]) * QTransform::fromScale(sx, sy)
        * QTransform::fromScale(kMmPerPixel, kMmPerPixel);
}

enum class ElementRole { Group, Shape, Hidden, Unsupported };

ElementRole roleOf(QStringView name)
{
    static const char *const groups[] = {"g", "a", "switch", "svg"};
    static const char *const shapes[] = {"rect",    "circle",  "ellipse", "line",
                                         "polyline", "polygon", "path",    "image"};
    // Drawn, but not by us.
    static const char *const unsupported[] = {"text", "use", "foreignObject"};
    for (const char *g : groups) {
        if (name == QLatin1String(g))
            return ElementRole::Group;
    }
    for (const char *s : shapes) {
        if (name == QLatin1String(s))
            return ElementRole::Shape;
    }
    for (const char *u : unsupported) {
        if (name == QLatin1String(u))
            return ElementRole::Unsupported;
    }
    return ElementRole::Hidden;
}

// The element's outline in user units; false when it draws nothing.
bool shapeGeometry(QStringView name, const QXmlStreamAttributes &a, EDRAW_KIND *kind,
                   QPainterPath *path)
{
    double x = 0, y = 0, w = 0, h = 0;
    if (name == QLatin1String("rect") || name == QLatin1String("image")) {
        if (!length(a, "x", 0, &x) || !length(a, "y", 0, &y) || !length(a, "width", 0, &w)
            || !length(a, "height", 0, &h) || w <= 0 || h <= 0)
            return false;
        double rx = 0, ry = 0;
        const bool hasRx = a.hasAttribute(QLatin1String("rx"));
        const bool hasRy = a.hasAttribute(QLatin1String("ry"));
        if (!length(a, "rx", 0, &rx) || !length(a, "ry", 0, &ry))
            rx = ry = 0;
        if (hasRx && !hasRy)
            ry = rx;
        else if (hasRy && !hasRx)
            rx = ry;
        rx = qBound(0.0, rx, w / 2);
        ry = qBound(0.0, ry, h / 2);
        if (name == QLatin1String("image") || rx <= 0 || ry <= 0)
            path->addRect(x, y, w, h);
        else
            path->addRoundedRect(x, y, w, h, rx, ry);
        *kind = name == QLatin1String("image") ? DRAW_IMAGE : DRAW_RECT;
        return true;
    }
    if (name == QLatin1String("circle") || name == QLatin1String("ellipse")) {
        double rx = 0, ry = 0;
        if (!length(a, "cx", 0, &x) || !length(a, "cy", 0, &y))
            return false;
        if (name == QLatin1String("circle")) {
            if (!length(a, "r", 0, &rx))
                return false;
            ry = rx;
        } else if (!length(a, "rx", 0, &rx) || !length(a, "ry", 0, &ry)) {
            return false;
        }
        if (rx <= 0 || ry <= 0)
            return false;
        path->addEllipse(QPointF(x, y), rx, ry);
        *kind = DRAW_ELLIPSE;
        return true;
    }
    if (name == QLatin1String("line")) {
        if (!length(a, "x1", 0, &x) || !length(a, "y1", 0, &y) || !length(a, "x2", 0, &w)
            || !length(a, "y2", 0, &h))
            return false;
        path->moveTo(x, y);
        path->lineTo(w, h);
        *kind = DRAW_LINE;
        return true;
    }
    if (name == QLatin1String("polyline") || name == QLatin1String("polygon")) {
        QList<double> points;
        // Like a renderer, draw the points read before an error.
        ParseSvgNumberList(a.value(QLatin1String("points")), &points);
        if (points.size() < 4)
            return false;
        path->moveTo(points[0], points[1]);
        for (qsizetype i = 2; i + 1 < points.size(); i += 2)
            path->lineTo(points[i], points[i + 1]);
        if (name == QLatin1String("polygon"))
            path->closeSubpath();
        *kind = DRAW_PATH;
        return true;
    }
    if (name == QLatin1String("path")) {
        ParseSvgPathData(a.value(QLatin1String("d")), path);
        if (path->elementCount() < 2)
            return false;
        *kind = DRAW_PATH;
        return true;
    }
    return false;
}

// Members that are groups are of one colour already: mixed ones were split.
bool oneColour(const std::vector<CDrawItem> &items)
{
    return std::all_of(items.cbegin(), items.cend(),
                       [&](const CDrawItem &item) { return item.Color() == items.front().Color(); });
}

bool withinRange(const QRectF &bounds)
{
    const double limit = CSvgImporter::kMaxCoordinate;
    return std::isfinite(bounds.left()) && std::isfinite(bounds.right())
        && std::isfinite(bounds.top()) && std::isfinite(bounds.bottom())
        && bounds.left() >= -limit && bounds.right() <= limit && bounds.top() >= -limit
        && bounds.bottom() <= limit;
}

} // namespace

bool CSvgImporter::fail(const QString &error)
{
    m_items.clear();
    m_error = error;
    return false;
}

bool CSvgImporter::Read(QIODevice *device)
{
    m_items.clear();
    m_error.clear();
    m_skipped = 0;
    if (!device || !device->isReadable())
        return fail(Wording("The SVG file cannot be read."));
    const QString tooLarge = Wording("The SVG file is larger than %1 MB.").arg(kMaxBytes / (1024 * 1024));
    if (!device->isSequential() && device->size() - device->pos() > kMaxBytes)
        return fail(tooLarge);
    const QByteArray data = device->read(kMaxBytes + 1);
    if (data.size() > kMaxBytes)
        return fail(tooLarge);
    if (data.trimmed().isEmpty())
        return fail(Wording("The SVG file is empty."));
    return parse(data);
}

bool CSvgImporter::parse(const QByteArray &data)
{
    QXmlStreamReader xml(data);
    std::vector<Frame> stack;
    int elements = 0;
    int unpainted = 0;
    bool sawRoot = false;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            if (++elements > kMaxElements)
                return fail(Wording("The SVG file has more than %1 elements.").arg(kMaxElements));
            if (int(stack.size()) >= kMaxDepth)
                return fail(Wording("The SVG file nests its elements more than %1 levels deep.")
                                .arg(kMaxDepth));
            const QStringView name = xml.name();
            const QXmlStreamAttributes attributes = xml.attributes();
            Frame frame;
            if (stack.empty()) {
                if (name != QLatin1String("svg"))
                    return fail(Wording("The file is not an SVG drawing: its document element is <%1>.")
                                    .arg(name.toString()));
                sawRoot = true;
                applyStyle(&frame.style, attributes);
                frame.transform = viewportTransform(attributes);
                frame.skip = frame.style.hidden;
                stack.push_back(std::move(frame));
                continue;
            }
            const Frame &parent = stack.back();
            frame.style = parent.style;
            frame.transform = parent.transform;
            frame.skip = parent.skip;
            if (frame.skip) {
                stack.push_back(std::move(frame));
                continue;
            }
            applyStyle(&frame.style, attributes);
            const ElementRole role = roleOf(name);
            QTransform local;
            const bool transformOk = !attributes.hasAttribute(QLatin1String("transform"))
                || ParseSvgTransform(attributes.value(QLatin1String("transform")), &local);
            frame.transform = local * parent.transform;
            if (frame.style.hidden || role == ElementRole::Hidden) {
                frame.skip = true;
            } else if (role == ElementRole::Unsupported || !transformOk) {
                ++m_skipped;
                frame.skip = true;
            } else if (role == ElementRole::Group) {
                frame.group = true;
            } else {
                // A shape: nothing below it (titles, animations) is drawn.
                frame.skip = true;
                EDRAW_KIND kind = DRAW_PATH;
                QPainterPath path;
                if (!shapeGeometry(name, attributes, &kind, &path)) {
                    ++m_skipped;
                } else {
                    const Style &style = frame.style;
                    quint32 rgb = 0;
                    bool filled = false;
                    bool painted = true;
                    if (kind == DRAW_IMAGE) {
                        // A picture is engraved whatever its paint; black unless coloured.
                        filled = true;
                        if (!resolvePaint(style.stroke, style, &rgb))
                            resolvePaint(style.fill, style, &rgb);
                    } else if (!resolvePaint(style.stroke, style, &rgb)) {
                        // A line has no inside to fill.
                        filled = kind != DRAW_LINE && resolvePaint(style.fill, style, &rgb);
                        painted = filled;
                    }
                    path.setFillRule(style.fillRule);
                    path = frame.transform.map(path);
                    if (!painted)
                        ++unpainted;
                    else if (!withinRange(path.boundingRect()))
                        ++m_skipped;
                    else
                        stack.back().items.emplace_back(kind, rgb, path, filled);
                }
            }
            stack.push_back(std::move(frame));
        } else if (token == QXmlStreamReader::EndElement) {
            if (stack.empty())
                break;
            Frame frame = std::move(stack.back());
            stack.pop_back();
            if (stack.empty()) {
                m_items = std::move(frame.items);
            } else if (frame.group && !frame.skip) {
                std::vector<CDrawItem> &siblings = stack.back().items;
                // A group takes one colour, so one whose members differ would
                // lose theirs: it comes in as its members.
                if (frame.items.size() > 1 && oneColour(frame.items)) {
                    siblings.push_back(CDrawItem::Group(std::move(frame.items)));
                } else {
                    for (CDrawItem &item : frame.items)
                        siblings.push_back(std::move(item));
                }
            }
        }
    }
    if (xml.hasError()) {
        // Ended before any element began: declarations and comments only.
        if (!sawRoot && xml.error() == QXmlStreamReader::PrematureEndOfDocumentError
            && !QRegularExpression(QStringLiteral("<[A-Za-z_:]")).match(QString::fromLatin1(data)).hasMatch())
            return fail(Wording("The file is not an SVG drawing: it has no document element."));
        return fail(Wording("The SVG file is not well-formed: %1 (line %2, column %3).")
                        .arg(xml.errorString())
                        .arg(xml.lineNumber())
                        .arg(xml.columnNumber()));
    }
    if (m_items.empty()) {
        if (unpainted > 0)
            return fail(Wording("The SVG file has no colours: no shape has a fill or a stroke."));
        return fail(Wording("The SVG file has no shapes that can be imported."));
    }
    return true;
}
