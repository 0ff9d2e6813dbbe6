#include "svgsyntax.h"

#include <QColor>
#include <QPainterPath>
#include <QTransform>
#include <QtMath>

#include <cmath>

namespace {

bool isSpace(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\n')
        || c == QLatin1Char('\r') || c == QLatin1Char('\f');
}

// Reads numbers, flags and separators off SVG attribute text.
class Scanner
{
public:
    explicit Scanner(QStringView text)
        : m_text(text)
    {
    }

    bool atEnd() const { return m_pos >= m_text.size(); }
    QChar peek() const { return atEnd() ? QChar() : m_text.at(m_pos); }
    void advance() { ++m_pos; }

    void skipSpaces()
    {
        while (!atEnd() && isSpace(peek()))
            ++m_pos;
    }
    // White space with at most one comma in it.
    void skipSeparator()
    {
        skipSpaces();
        if (peek() == QLatin1Char(',')) {
            ++m_pos;
            skipSpaces();
        }
    }

    bool number(double *value)
    {
        const qsizetype start = m_pos;
        qsizetype p = m_pos;
        auto digitAt = [this](qsizetype i) { return i < m_text.size() && m_text.at(i).isDigit(); };
        if (p < m_text.size() && (m_text.at(p) == QLatin1Char('+') || m_text.at(p) == QLatin1Char('-')))
            ++p;
        bool digits = false;
        while (digitAt(p)) {
            ++p;
            digits = true;
        }
        if (p < m_text.size() && m_text.at(p) == QLatin1Char('.')) {
            ++p;
            while (digitAt(p)) {
                ++p;
                digits = true;
            }
        }
        if (!digits)
            return false;
        if (p < m_text.size() && (m_text.at(p) == QLatin1Char('e') || m_text.at(p) == QLatin1Char('E'))) {
            qsizetype e = p + 1;
            if (e < m_text.size() && (m_text.at(e) == QLatin1Char('+') || m_text.at(e) == QLatin1Char('-')))
                ++e;
            if (digitAt(e)) {
                while (digitAt(e))
                    ++e;
                p = e;
            }
        }
        bool ok = false;
        const double v = m_text.mid(start, p - start).toDouble(&ok);
        if (!ok || !std::isfinite(v))
            return false;
        m_pos = p;
        *value = v;
        return true;
    }

    // Arc flags are single digits and may run into what follows ("a1 1 0 00 1 1").
    bool flag(bool *value)
    {
        const QChar c = peek();
        if (c != QLatin1Char('0') && c != QLatin1Char('1'))
            return false;
        *value = c == QLatin1Char('1');
        ++m_pos;
        return true;
    }

    QStringView rest() const { return m_text.mid(m_pos); }

private:
    QStringView m_text;
    qsizetype m_pos = 0;
};

int hexValue(QChar c)
{
    const ushort u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    return -1;
}

bool parseHexColor(QStringView hex, quint32 *rgb, bool *transparent)
{
    int v[8] = {};
    for (qsizetype i = 0; i < hex.size(); ++i) {
        if (i >= 8 || (v[i] = hexValue(hex.at(i))) < 0)
            return false;
    }
    int r, g, b, a = 255;
    switch (hex.size()) {
    case 3:
    case 4:
        r = v[0] * 17;
        g = v[1] * 17;
        b = v[2] * 17;
        if (hex.size() == 4)
            a = v[3] * 17;
        break;
    case 6:
    case 8:
        r = v[0] * 16 + v[1];
        g = v[2] * 16 + v[3];
        b = v[4] * 16 + v[5];
        if (hex.size() == 8)
            a = v[6] * 16 + v[7];
        break;
    default:
        return false;
    }
    *rgb = quint32(r) << 16 | quint32(g) << 8 | quint32(b);
    *transparent = a == 0;
    return true;
}

// rgb(255, 0, 0), rgb(100%, 0%, 0%), rgb(255 0 0 / 50%), rgba(255, 0, 0, 0.5)
bool parseFunctionalColor(QStringView args, quint32 *rgb, bool *transparent)
{
    Scanner s(args);
    int channels[3];
    double alpha = 1.0;
    for (int i = 0; i < 4; ++i) {
        s.skipSpaces();
        if (i == 3) {
            if (s.atEnd())
                break;
            if (s.peek() == QLatin1Char('/') || s.peek() == QLatin1Char(',')) {
                s.advance();
                s.skipSpaces();
            }
        } else if (i > 0) {
            s.skipSeparator();
        }
        double value = 0;
        if (!s.number(&value))
            return false;
        const bool percent = s.peek() == QLatin1Char('%');
        if (percent)
            s.advance();
        if (i < 3)
            channels[i] = int(std::lround(qBound(0.0, percent ? value * 255.0 / 100.0 : value, 255.0)));
        else
            alpha = qBound(0.0, percent ? value / 100.0 : value, 1.0);
    }
    s.skipSpaces();
    if (!s.atEnd())
        return false;
    *rgb = quint32(channels[0]) << 16 | quint32(channels[1]) << 8 | quint32(channels[2]);
    *transparent = alpha <= 0.0;
    return true;
}

struct Unit
{
    const char *name;
    double pixels;
};

constexpr Unit kUnits[] = {
    {"px", 1.0}, {"mm", 96.0 / 25.4}, {"cm", 96.0 / 2.54}, {"in", 96.0}, {"pt", 96.0 / 72.0},
    {"pc", 16.0},
};

void arcTo(QPainterPath *path, const QPointF &from, double rx, double ry, double angle,
           bool largeArc, bool sweep, const QPointF &to)
{
    if (from == to)
        return;
    rx = std::fabs(rx);
    ry = std::fabs(ry);
    if (rx == 0.0 || ry == 0.0) {
        path->lineTo(to);
        return;
    }
    // Endpoint to centre parameterisation, as SVG's implementation notes give it.
    const double phi = qDegreesToRadians(angle);
    const double cosPhi = std::cos(phi);
    const double sinPhi = std::sin(phi);
    const double dx2 = (from.x() - to.x()) / 2;
    const double dy2 = (from.y() - to.y()) / 2;
    const double x1 = cosPhi * dx2 + sinPhi * dy2;
    const double y1 = -sinPhi * dx2 + cosPhi * dy2;
    const double lambda = (x1 * x1) / (rx * rx) + (y1 * y1) / (ry * ry);
    if (lambda > 1) {
        rx *= std::sqrt(lambda);
        ry *= std::sqrt(lambda);
    }
    const double num = rx * rx * ry * ry - rx * rx * y1 * y1 - ry * ry * x1 * x1;
    const double den = rx * rx * y1 * y1 + ry * ry * x1 * x1;
    double coef = den > 0 ? std::sqrt(qMax(0.0, num / den)) : 0.0;
    if (largeArc == sweep)
        coef = -coef;
    const double cxp = coef * rx * y1 / ry;
    const double cyp = -coef * ry * x1 / rx;
    const double cx = cosPhi * cxp - sinPhi * cyp + (from.x() + to.x()) / 2;
    const double cy = sinPhi * cxp + cosPhi * cyp + (from.y() + to.y()) / 2;
    auto angleBetween = [](double ux, double uy, double vx, double vy) {
        return std::atan2(ux * vy - uy * vx, ux * vx + uy * vy);
    };
    const double ux = (x1 - cxp) / rx;
    const double uy = (y1 - cyp) / ry;
    const double theta = angleBetween(1, 0, ux, uy);
    double delta = angleBetween(ux, uy, (-x1 - cxp) / rx, (-y1 - cyp) / ry);
    if (!sweep && delta > 0)
        delta -= 2 * M_PI;
    else if (sweep && delta < 0)
        delta += 2 * M_PI;

    // Quarter turns at most, each one cubic.
    const int segments = qMax(1, int(std::ceil(std::fabs(delta) / (M_PI / 2) - 1e-9)));
    const double step = delta / segments;
    const double t = 4.0 / 3.0 * std::tan(step / 4);
    auto point = [&](double a) {
        return QPointF(cx + rx * std::cos(a) * cosPhi - ry * std::sin(a) * sinPhi,
                       cy + rx * std::cos(a) * sinPhi + ry * std::sin(a) * cosPhi);
    };
    auto tangent = [&](double a) {
        return QPointF(-rx * std::sin(a) * cosPhi - ry * std::cos(a) * sinPhi,
                       -rx * std::sin(a) * sinPhi + ry * std::cos(a) * cosPhi);
    };
    for (int i = 0; i < segments; ++i) {
        const double a1 = theta + i * step;
        const double a2 = a1 + step;
        const QPointF end = i == segments - 1 ? to : point(a2);
        path->cubicTo(point(a1) + t * tangent(a1), point(a2) - t * tangent(a2), end);
    }
}

} // namespace

bool ParseSvgColor(QStringView text, quint32 *rgb, bool *transparent)
{
    const QStringView t = text.trimmed();
    if (t.isEmpty())
        return false;
    if (t.startsWith(QLatin1Char('#')))
        return parseHexColor(t.mid(1), rgb, transparent);
    for (const char *function : {"rgba(", "rgb("}) {
        const QLatin1String name(function);
        if (t.startsWith(name, Qt::CaseInsensitive)) {
            if (!t.endsWith(QLatin1Char(')')))
                return false;
            return parseFunctionalColor(t.mid(name.size(), t.size() - name.size() - 1), rgb,
                                        transparent);
        }
    }
    if (t.compare(QLatin1String("transparent"), Qt::CaseInsensitive) == 0) {
        *rgb = 0;
        *transparent = true;
        return true;
    }
    for (QChar c : t) {
        if (!c.isLetter() || c.unicode() > 127)
            return false;
    }
    const QColor color = QColor::fromString(t.toString().toLower());
    if (!color.isValid())
        return false;
    *rgb = color.rgb() & 0xFFFFFFu;
    *transparent = color.alpha() == 0;
    return true;
}

SvgPaint ParseSvgPaint(QStringView text)
{
    SvgPaint paint;
    QStringView t = text.trimmed();
    if (t.compare(QLatin1String("none"), Qt::CaseInsensitive) == 0) {
        paint.type = SvgPaint::PAINT_NONE;
        return paint;
    }
    if (t.compare(QLatin1String("currentColor"), Qt::CaseInsensitive) == 0) {
        paint.type = SvgPaint::PAINT_CURRENT_COLOR;
        return paint;
    }
    if (t.startsWith(QLatin1String("url("), Qt::CaseInsensitive)) {
        // Gradients and patterns have no single colour: use the fallback, if any.
        const qsizetype close = t.indexOf(QLatin1Char(')'));
        if (close < 0)
            return paint;
        t = t.mid(close + 1).trimmed();
        if (t.isEmpty()) {
            paint.type = SvgPaint::PAINT_NONE;
            return paint;
        }
        return ParseSvgPaint(t);
    }
    quint32 rgb = 0;
    bool transparent = false;
    if (ParseSvgColor(t, &rgb, &transparent)) {
        paint.type = transparent ? SvgPaint::PAINT_NONE : SvgPaint::PAINT_COLOR;
        paint.rgb = rgb;
    }
    return paint;
}

bool ParseSvgLength(QStringView text, double *value)
{
    Scanner s(text.trimmed());
    double number = 0;
    if (!s.number(&number))
        return false;
    const QStringView unit = s.rest();
    if (unit.isEmpty()) {
        *value = number;
        return true;
    }
    for (const Unit &u : kUnits) {
        if (unit.compare(QLatin1String(u.name), Qt::CaseInsensitive) == 0) {
            *value = number * u.pixels;
            return std::isfinite(*value);
        }
    }
    return false;
}

bool ParseSvgNumberList(QStringView text, QList<double> *numbers)
{
    Scanner s(text);
    s.skipSpaces();
    while (!s.atEnd()) {
        double value = 0;
        if (!s.number(&value))
            return false;
        numbers->append(value);
        s.skipSeparator();
    }
    return true;
}

bool ParseSvgTransform(QStringView text, QTransform *transform)
{
    QTransform result;
    Scanner s(text);
    s.skipSeparator();
    while (!s.atEnd()) {
        QString name;
        while (!s.atEnd() && s.peek().isLetter()) {
            name += s.peek();
            s.advance();
        }
        s.skipSpaces();
        if (name.isEmpty() || s.peek() != QLatin1Char('('))
            return false;
        s.advance();
        QList<double> a;
        s.skipSpaces();
        while (s.peek() != QLatin1Char(')')) {
            double value = 0;
            if (a.size() >= 6 || !s.number(&value))
                return false;
            a.append(value);
            s.skipSeparator();
        }
        s.advance();
        const qsizetype n = a.size();
        QTransform t;
        if (name == QLatin1String("matrix") && n == 6) {
            t = QTransform(a[0], a[1], a[2], a[3], a[4], a[5]);
        } else if (name == QLatin1String("translate") && (n == 1 || n == 2)) {
            t = QTransform::fromTranslate(a[0], n == 2 ? a[1] : 0.0);
        } else if (name == QLatin1String("scale") && (n == 1 || n == 2)) {
            t = QTransform::fromScale(a[0], n == 2 ? a[1] : a[0]);
        } else if (name == QLatin1String("rotate") && (n == 1 || n == 3)) {
            const double cx = n == 3 ? a[1] : 0.0;
            const double cy = n == 3 ? a[2] : 0.0;
            t = QTransform::fromTranslate(-cx, -cy) * QTransform().rotate(a[0])
                * QTransform::fromTranslate(cx, cy);
        } else if (name == QLatin1String("skewX") && n == 1) {
            t = QTransform(1, 0, std::tan(qDegreesToRadians(a[0])), 1, 0, 0);
        } else if (name == QLatin1String("skewY") && n == 1) {
            t = QTransform(1, std::tan(qDegreesToRadians(a[0])), 0, 1, 0, 0);
        } else {
            return false;
        }
        // "A B" applies B first.
        result = t * result;
        s.skipSeparator();
    }
    *transform = result;
    return true;
}

bool ParseSvgPathData(QStringView text, QPainterPath *path)
{
    Scanner s(text);
    QPointF current;
    QPointF start;
    QPointF lastControl;
    QChar command;
    QChar previous;
    s.skipSpaces();
    while (!s.atEnd()) {
        const QChar c = s.peek();
        if (c.isLetter()) {
            command = c;
            s.advance();
            s.skipSpaces();
        } else if (command.isNull() || command == QLatin1Char('z') || command == QLatin1Char('Z')) {
            return false;
        } else if (command == QLatin1Char('M')) {
            command = QLatin1Char('L'); // further pairs after a move are lines
        } else if (command == QLatin1Char('m')) {
            command = QLatin1Char('l');
        }
        if (previous.isNull() && command != QLatin1Char('M') && command != QLatin1Char('m'))
            return false;

        const bool relative = command.isLower();
        const QPointF origin = relative ? current : QPointF();
        double v[7];
        auto numbers = [&](int count) {
            for (int i = 0; i < count; ++i) {
                if (i > 0)
                    s.skipSeparator();
                if (!s.number(&v[i]))
                    return false;
            }
            s.skipSeparator();
            return true;
        };
        const bool smoothCubic = previous.toUpper() == QLatin1Char('C') || previous.toUpper() == QLatin1Char('S');
        const bool smoothQuad = previous.toUpper() == QLatin1Char('Q') || previous.toUpper() == QLatin1Char('T');
        switch (command.toUpper().unicode()) {
        case 'M':
            if (!numbers(2))
                return false;
            current = origin + QPointF(v[0], v[1]);
            start = current;
            path->moveTo(current);
            break;
        case 'L':
            if (!numbers(2))
                return false;
            current = origin + QPointF(v[0], v[1]);
            path->lineTo(current);
            break;
        case 'H':
            if (!numbers(1))
                return false;
            current.setX((relative ? current.x() : 0.0) + v[0]);
            path->lineTo(current);
            break;
        case 'V':
            if (!numbers(1))
                return false;
            current.setY((relative ? current.y() : 0.0) + v[0]);
            path->lineTo(current);
            break;
        case 'C': {
            if (!numbers(6))
                return false;
            const QPointF c1 = origin + QPointF(v[0], v[1]);
            lastControl = origin + QPointF(v[2], v[3]);
            current = origin + QPointF(v[4], v[5]);
            path->cubicTo(c1, lastControl, current);
            break;
        }
        case 'S': {
            if (!numbers(4))
                return false;
            const QPointF c1 = smoothCubic ? 2 * current - lastControl : current;
            lastControl = origin + QPointF(v[0], v[1]);
            current = origin + QPointF(v[2], v[3]);
            path->cubicTo(c1, lastControl, current);
            break;
        }
        case 'Q':
            if (!numbers(4))
                return false;
            lastControl = origin + QPointF(v[0], v[1]);
            current = origin + QPointF(v[2], v[3]);
            path->quadTo(lastControl, current);
            break;
        case 'T':
            if (!numbers(2))
                return false;
            lastControl = smoothQuad ? 2 * current - lastControl : current;
            current = origin + QPointF(v[0], v[1]);
            path->quadTo(lastControl, current);
            break;
        case 'A': {
            bool largeArc = false;
            bool sweep = false;
            if (!numbers(3) || !s.flag(&largeArc))
                return false;
            s.skipSeparator();
            if (!s.flag(&sweep))
                return false;
            s.skipSeparator();
            if (!s.number(&v[5]))
                return false;
            s.skipSeparator();
            if (!s.number(&v[6]))
                return false;
            s.skipSeparator();
            const QPointF to = origin + QPointF(v[5], v[6]);
            arcTo(path, current, v[0], v[1], v[2], largeArc, sweep, to);
            current = to;
            break;
        }
        case 'Z':
            path->closeSubpath();
            current = start;
            s.skipSeparator();
            break;
        default:
            return false;
        }
        previous = command;
    }
    return true;
}
