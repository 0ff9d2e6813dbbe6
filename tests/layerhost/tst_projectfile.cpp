#include "cprojectfile.h"
#include "drawitemtext.h"

#include <QBuffer>
#include <QDataStream>
#include <QTest>

namespace {

std::vector<CDrawItem> everyKind()
{
    QPainterPath curve(QPointF(1, 1)), glyph;
    curve.cubicTo(2, 5, 8, 5, 9, 1);
    curve.lineTo(5, -4);
    curve.closeSubpath();
    curve.moveTo(20, 20);
    curve.lineTo(30, 20);
    curve.setFillRule(Qt::WindingFill);
    glyph.addRect(0, 0, 3, 7);
    return {CDrawItem::Rect(QRectF(1, 2, 30, 40), 0x0B00FF), CDrawItem::Ellipse(QRectF(-5, -5, 10, 20), 0xF48244, true),
            CDrawItem::Line(QLineF(0, 0, 100.25, -3.5), 0xCC8B17), CDrawItem(DRAW_PATH, 0x123456, curve, true),
            CDrawItem::Image(QRectF(50, 60, 70, 80), 0x00CAFC), CDrawItem(DRAW_TEXT, 0x000000, glyph, true),
            CDrawItem::Group({CDrawItem::Group({CDrawItem::Ellipse(QRectF(0, 0, 5, 5), 0x2431BD), CDrawItem::Line(QLineF(0, 0, 5, 5), 0xFFFFFF)}),
                              CDrawItem::Rect(QRectF(0, 0, 1, 1), 0x010101)})};
}

QByteArray written(const std::vector<CDrawItem> &items, const QByteArray &layers)
{
    CProjectFile project;
    project.m_items = items;
    project.m_layers = layers;
    QBuffer buffer;
    return buffer.open(QIODevice::WriteOnly) && project.Write(&buffer) ? buffer.data() : QByteArray();
}

bool readInto(QByteArray bytes, CProjectFile *project)
{
    QBuffer buffer(&bytes);
    return buffer.open(QIODevice::ReadOnly) && project->Read(&buffer);
}

template<typename... T>
QByteArray stream(const T &...values)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    (out << ... << values);
    return bytes;
}

// A file around any payload, with a correct checksum.
QByteArray wrap(const QByteArray &payload)
{
    return CProjectFile::Magic() + stream(CProjectFile::kVersion, quint32(payload.size()), CProjectFile::Checksum(payload)) + payload;
}

// An item: kind, colour, flags and its path elements as (type, x, y).
QByteArray item(quint8 kind, quint32 color, quint8 flags, const QList<QList<double>> &elements,
                qint64 count = -1)
{
    QByteArray bytes = stream(kind, color, flags, quint32(count < 0 ? elements.size() : count));
    for (const QList<double> &e : elements)
        bytes += stream(quint8(e[0]), e[1], e[2]);
    return bytes;
}

QByteArray group(quint32 color, quint32 count) { return stream(quint8(DRAW_GROUP), color, quint8(0), count); }

QByteArray payload(quint32 count, const QByteArray &items) { return stream(count) + items + stream(QByteArray("L")); }

QByteArray withField(QByteArray bytes, int offset, quint32 value) { return bytes.replace(CProjectFile::Magic().size() + offset, 4, stream(value)); }

} // namespace

class tst_ProjectFile : public QObject
{
    Q_OBJECT

private slots:
    void roundTrip()
    {
        // The check value every CRC-32 implementation publishes.
        QCOMPARE(CProjectFile::Checksum("123456789"), 0xCBF43926u);
        const QByteArray layers("\x0e\0\0\0\x02\0\0\0 and the records", 24);
        CProjectFile read;
        QVERIFY2(readInto(written(everyKind(), layers), &read), qPrintable(read.ErrorString()));
        // Paths compare with their fill rules.
        QVERIFY2(read.m_items == everyKind(), qPrintable(DrawItemsText(read.m_items)));
        QCOMPARE(read.m_layers, layers);
    }

    void refused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error"); // empty: read
        const QByteArray good = written(everyKind(), "layer stream bytes");
        const int header = int(CProjectFile::Magic().size()) + 12;
        const QString notProject = QStringLiteral("The file is not a project of this program.");
        const QString truncated = QStringLiteral("The project file is truncated.");
        const QString damaged = QStringLiteral("The project file is damaged.");
        const QByteArray line = item(DRAW_LINE, 0xFF0000, 0, {{0, 0, 0}, {1, 10, 10}});
        const QByteArray deepest = group(0xFF0000, 1).repeated(CProjectFile::kMaxDepth);
        QByteArray flipped = good;
        flipped[header + 20] = char(flipped[header + 20] ^ 0x10);
        // clang-format off
        QTest::newRow("magic mangled to text line ends") << QByteArray(good).replace("\r\n", "\n") << notProject;
        QTest::newRow("header cut short") << good.left(header - 1) << truncated;
        QTest::newRow("last byte missing") << good.left(good.size() - 1) << truncated;
        QTest::newRow("a payload byte changed") << flipped << damaged;
        QTest::newRow("bytes after the payload") << good + "x" << damaged;
        QTest::newRow("newer version") << withField(good, 0, 2) << "The project file was written by a newer version of this program.";
        QTest::newRow("version zero") << withField(good, 0, 0) << damaged;
        QTest::newRow("size beyond any project") << withField(good, 4, 0x7FFFFFFF) << "The project file is too large.";
        // Payloads with a correct checksum that we never write.
        QTest::newRow("crafted payload, control") << wrap(payload(1, line)) << QString();
        QTest::newRow("unknown kind") << wrap(payload(1, item(7, 0, 0, {{0, 0, 0}}))) << damaged;
        QTest::newRow("colour above 24 bits") << wrap(payload(1, item(DRAW_LINE, 0x1000000, 0, {{0, 0, 0}, {1, 1, 1}}))) << damaged;
        QTest::newRow("unknown flags") << wrap(payload(1, item(DRAW_LINE, 0, 4, {{0, 0, 0}, {1, 1, 1}}))) << damaged;
        QTest::newRow("more items than bytes") << wrap(payload(0xFFFFFFFF, line)) << damaged;
        QTest::newRow("fewer items than written") << wrap(payload(0, line)) << damaged;
        QTest::newRow("more elements than bytes") << wrap(payload(1, item(DRAW_PATH, 0, 0, {{0, 0, 0}}, 0x7FFFFFFF))) << damaged;
        QTest::newRow("shape without elements") << wrap(payload(1, item(DRAW_PATH, 0, 0, {}))) << damaged;
        QTest::newRow("path starting with a line") << wrap(payload(1, item(DRAW_PATH, 0, 0, {{1, 0, 0}, {1, 1, 1}}))) << damaged;
        QTest::newRow("curve without its control points") << wrap(payload(1, item(DRAW_PATH, 0, 0, {{0, 0, 0}, {2, 1, 1}, {1, 2, 2}}))) << damaged;
        QTest::newRow("control point alone") << wrap(payload(1, item(DRAW_PATH, 0, 0, {{0, 0, 0}, {3, 1, 1}}))) << damaged;
        QTest::newRow("infinite coordinate") << wrap(payload(1, item(DRAW_PATH, 0, 0, {{0, qInf(), 0}}))) << damaged;
        QTest::newRow("empty group") << wrap(payload(1, group(0, 0))) << damaged;
        QTest::newRow("group of another colour than its first member") << wrap(payload(1, group(0x00FF00, 1) + line)) << damaged;
        QTest::newRow("groups nested as deep as allowed, control") << wrap(payload(1, deepest + line)) << QString();
        QTest::newRow("groups nested too deep") << wrap(payload(1, group(0xFF0000, 1) + deepest + line)) << damaged;
        QTest::newRow("layer stream longer than the payload") << wrap(stream(quint32(1)) + line + stream(quint32(1000), quint32(0))) << damaged;
        QTest::newRow("bytes after the layer stream") << wrap(payload(1, line) + "!") << damaged;
        // clang-format on
    }

    void refused()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);
        CProjectFile project;
        project.m_items = everyKind();
        project.m_layers = "before";
        // A refused file leaves what was read before.
        QCOMPARE(readInto(bytes, &project) ? QString() : project.ErrorString(), error);
        QCOMPARE(project.m_items == everyKind(), !error.isEmpty());
        QCOMPARE(project.m_layers, QByteArray(error.isEmpty() ? "L" : "before"));
    }
};

QTEST_GUILESS_MAIN(tst_ProjectFile)
#include "tst_projectfile.moc"
