#include "cprojectfile.h"
#include "drawitemtext.h"

#include <QBuffer>
#include <QDataStream>
#include <QTest>

#include <limits>

namespace {

std::vector<CDrawItem> everyKind()
{
    std::vector<CDrawItem> items;
    items.push_back(CDrawItem::Rect(QRectF(1, 2, 30, 40), 0x0B00FF));
    items.push_back(CDrawItem::Ellipse(QRectF(-5, -5, 10, 20), 0xF48244, true));
    items.push_back(CDrawItem::Line(QLineF(0, 0, 100.25, -3.5), 0xCC8B17));
    QPainterPath curve(QPointF(1, 1));
    curve.cubicTo(2, 5, 8, 5, 9, 1);
    curve.lineTo(5, -4);
    curve.closeSubpath();
    curve.moveTo(20, 20);
    curve.lineTo(30, 20);
    curve.setFillRule(Qt::WindingFill);
    items.push_back(CDrawItem(DRAW_PATH, 0x123456, curve, true));
    items.push_back(CDrawItem::Image(QRectF(50, 60, 70, 80), 0x00CAFC));
    QPainterPath glyph;
    glyph.addRect(0, 0, 3, 7);
    items.push_back(CDrawItem(DRAW_TEXT, 0x000000, glyph, true));
    std::vector<CDrawItem> inner;
    inner.push_back(CDrawItem::Ellipse(QRectF(0, 0, 5, 5), 0x2431BD));
    inner.push_back(CDrawItem::Line(QLineF(0, 0, 5, 5), 0xFFFFFF));
    std::vector<CDrawItem> outer;
    outer.push_back(CDrawItem::Group(std::move(inner)));
    outer.push_back(CDrawItem::Rect(QRectF(0, 0, 1, 1), 0x010101));
    items.push_back(CDrawItem::Group(std::move(outer)));
    return items;
}

QByteArray written(const CProjectFile &project)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return project.Write(&buffer) ? buffer.data() : QByteArray();
}

bool readInto(const QByteArray &bytes, CProjectFile *project)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return project->Read(&buffer);
}

QByteArray sampleBytes()
{
    CProjectFile project;
    project.m_items = everyKind();
    project.m_layers = QByteArray("layer stream bytes");
    return written(project);
}

// A file around any payload, with a correct checksum.
QByteArray wrap(const QByteArray &payload, quint32 version = CProjectFile::kVersion)
{
    QByteArray bytes = CProjectFile::Magic();
    QDataStream out(&bytes, QIODevice::Append);
    out << version << quint32(payload.size()) << CProjectFile::Checksum(payload);
    out.writeRawData(payload.constData(), int(payload.size()));
    return bytes;
}

struct Element
{
    quint8 type;
    double x;
    double y;
};

QByteArray pathItem(quint8 kind, quint32 color, quint8 flags, const QList<Element> &elements,
                    qint64 count = -1)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << kind << color << flags << quint32(count < 0 ? elements.size() : count);
    for (const Element &e : elements)
        out << e.type << e.x << e.y;
    return bytes;
}

QByteArray lineItem(quint32 color = 0xFF0000)
{
    return pathItem(DRAW_LINE, color, 0, {{0, 0, 0}, {1, 10, 10}});
}

QByteArray groupHeader(quint32 color, quint32 count)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << quint8(DRAW_GROUP) << color << quint8(0) << count;
    return bytes;
}

QByteArray payload(quint32 count, const QByteArray &items, const QByteArray &layers = "L")
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << count;
    out.writeRawData(items.constData(), int(items.size()));
    out << layers;
    return bytes;
}

QByteArray withHeaderField(QByteArray bytes, int offset, quint32 value)
{
    QByteArray field;
    QDataStream(&field, QIODevice::WriteOnly) << value;
    bytes.replace(CProjectFile::Magic().size() + offset, 4, field);
    return bytes;
}

} // namespace

class tst_ProjectFile : public QObject
{
    Q_OBJECT

private slots:
    void checksum()
    {
        // The check values every CRC-32 implementation publishes.
        QCOMPARE(CProjectFile::Checksum(QByteArray()), 0u);
        QCOMPARE(CProjectFile::Checksum("123456789"), 0xCBF43926u);
        QCOMPARE(CProjectFile::Checksum("The quick brown fox jumps over the lazy dog"), 0x414FA339u);
    }

    void roundTrip()
    {
        CProjectFile project;
        project.m_items = everyKind();
        project.m_layers = QByteArray("\x0e\0\0\0\x02\0\0\0 and the records", 24);
        const QByteArray bytes = written(project);
        QVERIFY(bytes.startsWith(CProjectFile::Magic()));
        CProjectFile read;
        QVERIFY2(readInto(bytes, &read), qPrintable(read.ErrorString()));
        QCOMPARE(DrawItemsText(read.m_items), DrawItemsText(project.m_items));
        QVERIFY(read.m_items == project.m_items);
        QCOMPARE(read.m_items[3].Path().fillRule(), Qt::WindingFill);
        QCOMPARE(read.m_layers, project.m_layers);

        // An empty project empties what was read before.
        QVERIFY(readInto(written(CProjectFile()), &read));
        QVERIFY(read.m_items.empty());
        QVERIFY(read.m_layers.isEmpty());
    }

    void refused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error");

        const QByteArray good = sampleBytes();
        const int header = int(CProjectFile::Magic().size()) + 12;
        const QString notProject = QStringLiteral("The file is not a project of this program.");
        const QString truncated = QStringLiteral("The project file is truncated.");
        const QString damaged = QStringLiteral("The project file is damaged.");

        QTest::newRow("empty file") << QByteArray() << notProject;
        QTest::newRow("an SVG file") << QByteArray("<svg><rect/></svg>") << notProject;
        QTest::newRow("magic cut short") << good.left(5) << notProject;
        QTest::newRow("magic mangled to text line ends")
            << QByteArray(good).replace("\r\n", "\n") << notProject;
        QTest::newRow("magic only") << good.left(CProjectFile::Magic().size()) << truncated;
        QTest::newRow("header cut short") << good.left(header - 1) << truncated;
        QTest::newRow("payload missing") << good.left(header) << truncated;
        QTest::newRow("payload cut in half") << good.left(header + (good.size() - header) / 2) << truncated;
        QTest::newRow("last byte missing") << good.left(good.size() - 1) << truncated;
        QByteArray flipped = good;
        flipped[header + 20] = char(flipped[header + 20] ^ 0x10);
        QTest::newRow("a payload byte changed") << flipped << damaged;
        QByteArray wrongCrc = good;
        wrongCrc[header - 1] = char(wrongCrc[header - 1] ^ 1);
        QTest::newRow("checksum changed") << wrongCrc << damaged;
        QTest::newRow("bytes after the payload") << good + "x" << damaged;
        QTest::newRow("newer version") << withHeaderField(good, 0, 2)
                                       << "The project file was written by a newer version of this program.";
        QTest::newRow("version zero") << withHeaderField(good, 0, 0) << damaged;
        QTest::newRow("size beyond any project") << withHeaderField(good, 4, 0x7FFFFFFF)
                                                 << "The project file is too large.";

        // Payloads with a correct checksum that we never write.
        const QByteArray line = lineItem();
        QTest::newRow("valid crafted payload is accepted as a control")
            << wrap(payload(1, line)) << QString();
        QTest::newRow("unknown kind") << wrap(payload(1, pathItem(7, 0, 0, {{0, 0, 0}}))) << damaged;
        QTest::newRow("colour above 24 bits")
            << wrap(payload(1, pathItem(DRAW_LINE, 0x1000000, 0, {{0, 0, 0}, {1, 1, 1}}))) << damaged;
        QTest::newRow("unknown flags")
            << wrap(payload(1, pathItem(DRAW_LINE, 0, 4, {{0, 0, 0}, {1, 1, 1}}))) << damaged;
        QTest::newRow("more items than bytes") << wrap(payload(0xFFFFFFFF, line)) << damaged;
        QTest::newRow("fewer items than written") << wrap(payload(0, line)) << damaged;
        QTest::newRow("more elements than bytes")
            << wrap(payload(1, pathItem(DRAW_PATH, 0, 0, {{0, 0, 0}}, 0x7FFFFFFF))) << damaged;
        QTest::newRow("shape without elements") << wrap(payload(1, pathItem(DRAW_PATH, 0, 0, {}))) << damaged;
        QTest::newRow("path starting with a line")
            << wrap(payload(1, pathItem(DRAW_PATH, 0, 0, {{1, 0, 0}, {1, 1, 1}}))) << damaged;
        QTest::newRow("curve without its control points")
            << wrap(payload(1, pathItem(DRAW_PATH, 0, 0, {{0, 0, 0}, {2, 1, 1}, {1, 2, 2}}))) << damaged;
        QTest::newRow("control point alone")
            << wrap(payload(1, pathItem(DRAW_PATH, 0, 0, {{0, 0, 0}, {3, 1, 1}}))) << damaged;
        QTest::newRow("unknown element type")
            << wrap(payload(1, pathItem(DRAW_PATH, 0, 0, {{0, 0, 0}, {9, 1, 1}}))) << damaged;
        QTest::newRow("coordinate not a number")
            << wrap(payload(1, pathItem(DRAW_PATH, 0, 0, {{0, 0, 0}, {1, std::numeric_limits<double>::quiet_NaN(), 1}})))
            << damaged;
        QTest::newRow("infinite coordinate")
            << wrap(payload(1, pathItem(DRAW_PATH, 0, 0, {{0, std::numeric_limits<double>::infinity(), 0}})))
            << damaged;
        QTest::newRow("empty group") << wrap(payload(1, groupHeader(0, 0))) << damaged;
        QTest::newRow("group of another colour than its first member")
            << wrap(payload(1, groupHeader(0x00FF00, 1) + lineItem(0xFF0000))) << damaged;
        const QByteArray deepEnough = groupHeader(0xFF0000, 1).repeated(CProjectFile::kMaxDepth);
        QTest::newRow("groups nested too deep")
            << wrap(payload(1, groupHeader(0xFF0000, 1) + deepEnough + line)) << damaged;
        QTest::newRow("groups nested as deep as allowed are accepted as a control")
            << wrap(payload(1, deepEnough + line)) << QString();
        QByteArray noLayers;
        QDataStream(&noLayers, QIODevice::WriteOnly) << quint32(1);
        noLayers += line;
        QTest::newRow("layer stream missing") << wrap(noLayers) << damaged;
        QByteArray longLayers = noLayers;
        QDataStream(&longLayers, QIODevice::Append) << quint32(1000) << quint32(0);
        QTest::newRow("layer stream longer than the payload") << wrap(longLayers) << damaged;
        QTest::newRow("bytes after the layer stream") << wrap(payload(1, line) + "!") << damaged;
    }

    void refused()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);
        CProjectFile project;
        project.m_items = everyKind();
        project.m_layers = "before";
        const bool ok = readInto(bytes, &project);
        if (error.isEmpty()) {
            QVERIFY2(ok, qPrintable(project.ErrorString()));
            return;
        }
        QVERIFY(!ok);
        QCOMPARE(project.ErrorString(), error);
        QVERIFY(project.m_items == everyKind());
        QCOMPARE(project.m_layers, QByteArray("before"));
    }

    void recognisedByMagic_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("project");
        QTest::newRow("project") << sampleBytes() << true;
        QTest::newRow("truncated project keeps its magic") << sampleBytes().left(10) << true;
        QTest::newRow("svg") << QByteArray("<?xml version=\"1.0\"?><svg/>") << false;
        QTest::newRow("empty") << QByteArray() << false;
    }

    void recognisedByMagic()
    {
        QFETCH(QByteArray, bytes);
        QBuffer buffer;
        buffer.setData(bytes);
        buffer.open(QIODevice::ReadOnly);
        QTEST(CProjectFile::LooksLikeProject(&buffer), "project");
        // Peeked: a reader after it still gets the whole file.
        QCOMPARE(buffer.pos(), qint64(0));
    }
};

QTEST_GUILESS_MAIN(tst_ProjectFile)
#include "tst_projectfile.moc"
