#include "cprojectfile.h"

#include "hostwording.h"

#include <QDataStream>
#include <QIODevice>

#include <array>
#include <cmath>

namespace {

constexpr int kElementBytes = 1 + 8 + 8;
constexpr int kItemBytes = 1 + 4 + 1 + 4;
constexpr quint8 kFilledFlag = 1;
constexpr quint8 kWindingFlag = 2;

void writeItem(QDataStream &out, const CDrawItem &item)
{
    const bool winding = !item.IsGroup() && item.Path().fillRule() == Qt::WindingFill;
    out << quint8(item.Kind()) << item.Color()
        << quint8((item.IsFilled() ? kFilledFlag : 0) | (winding ? kWindingFlag : 0));
    if (item.IsGroup()) {
        out << quint32(item.Members().size());
        for (const CDrawItem &member : item.Members())
            writeItem(out, member);
        return;
    }
    const QPainterPath &path = item.Path();
    out << quint32(path.elementCount());
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element e = path.elementAt(i);
        out << quint8(e.type) << e.x << e.y;
    }
}

// Reads what writeItem wrote, trusting nothing: counts are checked against
// the bytes left, curves must come whole, coordinates must be finite.
class ItemReader
{
public:
    ItemReader(QDataStream &in, qint64 size)
        : m_in(in)
        , m_size(size)
    {
    }

    bool read(CDrawItem *item, int depth)
    {
        quint8 kind = 0;
        quint32 color = 0;
        quint8 flags = 0;
        quint32 count = 0;
        m_in >> kind >> color >> flags >> count;
        if (m_in.status() != QDataStream::Ok || kind >= kDrawKindCount || color > 0xFFFFFFu
            || (flags & ~(kFilledFlag | kWindingFlag)) != 0)
            return false;
        if (kind == DRAW_GROUP) {
            if (depth >= CProjectFile::kMaxDepth || count == 0 || count > left() / kItemBytes)
                return false;
            std::vector<CDrawItem> members;
            for (quint32 i = 0; i < count; ++i) {
                members.emplace_back();
                if (!read(&members.back(), depth + 1))
                    return false;
            }
            *item = CDrawItem::Group(std::move(members));
            // A group's colour is its first member's; anything else was not written by us.
            return item->Color() == color && flags == 0;
        }
        if (count == 0 || count > left() / kElementBytes)
            return false;
        QPainterPath path;
        path.setFillRule(flags & kWindingFlag ? Qt::WindingFill : Qt::OddEvenFill);
        for (quint32 i = 0; i < count; ++i) {
            quint8 type = 0;
            double x = 0;
            double y = 0;
            m_in >> type >> x >> y;
            if (m_in.status() != QDataStream::Ok || !std::isfinite(x) || !std::isfinite(y))
                return false;
            if (type == QPainterPath::MoveToElement) {
                path.moveTo(x, y);
            } else if (i == 0) {
                return false;
            } else if (type == QPainterPath::LineToElement) {
                path.lineTo(x, y);
            } else if (type == QPainterPath::CurveToElement && i + 2 < count) {
                std::array<QPointF, 3> points{QPointF(x, y)};
                for (int k = 1; k < 3; ++k) {
                    m_in >> type >> x >> y;
                    if (m_in.status() != QDataStream::Ok || type != QPainterPath::CurveToDataElement
                        || !std::isfinite(x) || !std::isfinite(y))
                        return false;
                    points[size_t(k)] = QPointF(x, y);
                }
                path.cubicTo(points[0], points[1], points[2]);
                i += 2;
            } else {
                return false;
            }
        }
        *item = CDrawItem(EDRAW_KIND(kind), color, path, flags & kFilledFlag);
        return true;
    }

private:
    qint64 left() const { return m_size - m_in.device()->pos(); }

    QDataStream &m_in;
    qint64 m_size;
};

} // namespace

const QByteArray &CProjectFile::Magic()
{
    // Binary from the first byte, and a line break that text-mode copies mangle.
    static const QByteArray magic("\x89LHPRJ\r\n", 8);
    return magic;
}

quint32 CProjectFile::Checksum(const QByteArray &data)
{
    static const std::array<quint32, 256> table = [] {
        std::array<quint32, 256> t{};
        for (quint32 n = 0; n < 256; ++n) {
            quint32 c = n;
            for (int k = 0; k < 8; ++k)
                c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            t[n] = c;
        }
        return t;
    }();
    quint32 crc = 0xFFFFFFFFu;
    for (char byte : data)
        crc = table[(crc ^ quint8(byte)) & 0xFFu] ^ (crc >> 8);
    return crc ^ 0xFFFFFFFFu;
}

bool CProjectFile::LooksLikeProject(QIODevice *device)
{
    return device && device->peek(Magic().size()) == Magic();
}

bool CProjectFile::Write(QIODevice *device) const
{
    QByteArray payload;
    {
        QDataStream out(&payload, QIODevice::WriteOnly);
        out << quint32(m_items.size());
        for (const CDrawItem &item : m_items)
            writeItem(out, item);
        out << m_layers;
    }
    QDataStream out(device);
    out.writeRawData(Magic().constData(), int(Magic().size()));
    out << quint32(kVersion) << quint32(payload.size()) << Checksum(payload);
    out.writeRawData(payload.constData(), int(payload.size()));
    return out.status() == QDataStream::Ok;
}

bool CProjectFile::Read(QIODevice *device)
{
    m_error.clear();
    auto fail = [this](const char *why) {
        m_error = Wording(why);
        return false;
    };
    if (!device || !device->isReadable())
        return fail("The project file cannot be read.");
    const QByteArray header = device->read(Magic().size() + 12);
    if (!header.startsWith(Magic()))
        return fail("The file is not a project of this program.");
    if (header.size() < Magic().size() + 12)
        return fail("The project file is truncated.");
    QDataStream headerIn(header.mid(Magic().size()));
    quint32 version = 0;
    quint32 size = 0;
    quint32 checksum = 0;
    headerIn >> version >> size >> checksum;
    if (version > quint32(kVersion))
        return fail("The project file was written by a newer version of this program.");
    if (version == 0)
        return fail("The project file is damaged.");
    if (size > kMaxBytes)
        return fail("The project file is too large.");
    const QByteArray payload = device->read(size);
    if (payload.size() < qsizetype(size))
        return fail("The project file is truncated.");
    if (!device->atEnd() || Checksum(payload) != checksum)
        return fail("The project file is damaged.");

    QDataStream in(payload);
    quint32 count = 0;
    in >> count;
    if (in.status() != QDataStream::Ok || count > size / kItemBytes)
        return fail("The project file is damaged.");
    ItemReader reader(in, payload.size());
    std::vector<CDrawItem> items;
    for (quint32 i = 0; i < count; ++i) {
        items.emplace_back();
        if (!reader.read(&items.back(), 0))
            return fail("The project file is damaged.");
    }
    QByteArray layers;
    in >> layers;
    if (in.status() != QDataStream::Ok || !in.atEnd())
        return fail("The project file is damaged.");
    m_items = std::move(items);
    m_layers = std::move(layers);
    return true;
}
