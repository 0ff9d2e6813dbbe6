#include "layertestdata.h"
#include "module/clayermgrins.h"
#include "testenvironment.h"

#include <QBuffer>
#include <QDataStream>
#include <QTest>

#include <limits>

using namespace layertest;

namespace {

// Little-endian bytes. A value ending past the budget is written but not
// copied into its target: a reader of the stream cut there cannot know it.
struct LeWriter
{
    QByteArray bytes;
    QDataStream out{&bytes, QIODevice::WriteOnly};
    qsizetype budget = std::numeric_limits<qsizetype>::max();

    LeWriter() { out.setByteOrder(QDataStream::LittleEndian); }
    // A bool goes out as one byte; flag() writes one as four.
    template <typename W, typename T = W> LeWriter &put(W value, T *into = nullptr)
    {
        out << value;
        if (into && bytes.size() <= budget)
            *into = T(value);
        return *this;
    }
    LeWriter &flag(bool v, bool *into) { return put(qint32(v), into); }
};

void putLaser(LeWriter &w, const LaserParam &s, LaserParam &e, int v)
{
    w.flag(s.ENABLE, &e.ENABLE).put(s.FREQ, &e.FREQ);
    w.put(s.POWER_MIN, &e.POWER_MIN).put(s.POWER_MAX, &e.POWER_MAX);
    if (v >= 14)
        w.put(s.PULSE_WIDTH, &e.PULSE_WIDTH);
}

void putPen(LeWriter &w, const PenParam &s, PenParam &e)
{
    w.put(s.ENABLE_PEN_UP_DOWN, &e.ENABLE_PEN_UP_DOWN).put(s.ENABLE_PEN_DOWN, &e.ENABLE_PEN_DOWN);
    w.put(s.ENABLE_PEN_UP, &e.ENABLE_PEN_UP);
    w.put(s.PEN_DOWN_HRIGHT, &e.PEN_DOWN_HRIGHT).put(s.PEN_UP_HRIGHT, &e.PEN_UP_HRIGHT);
}

// Writes layer s as a stream of version v has it, and copies into e what a
// reader gets back from those bytes. Dropped values are junk on purpose.
void putLayer(LeWriter &w, const CLayerParam &s, int v, CLayerParam &e)
{
    w.put(s.COLOR, &e.COLOR).put(s.WORK_TYPE, &e.WORK_TYPE);
    w.flag(s.OUTPUT, &e.OUTPUT).flag(s.BLOW, &e.BLOW);
    if (v >= 5) {
        w.flag(s.FILL_LOCKED, &e.FILL_LOCKED);
        if (e.IsLineProcess())
            e.FILL_LOCKED = false;
    }
    w.put(s.CUT.CUT_SPEED, &e.CUT.CUT_SPEED);
    if (v <= 1 && w.bytes.size() <= w.budget)
        e.SWEEP.SWEEP_SPEED = s.CUT.CUT_SPEED;
    w.put(s.CUT.CUT_JOINT_LEN, &e.CUT.CUT_JOINT_LEN);
    if (v < 3)
        w.put(0x5a5a5a5a).put(-7);
    putLaser(w, s.CUT.LASER1, e.CUT.LASER1, v);
    putLaser(w, s.CUT.LASER2, e.CUT.LASER2, v);
    if (v >= 7) {
        w.flag(s.CUT.CUT_BRIDGES, &e.CUT.CUT_BRIDGES);
        w.put(s.CUT.CUT_BRIDGES_LEN, &e.CUT.CUT_BRIDGES_LEN);
        w.put(s.CUT.CUT_BRIDGES_SPACE, &e.CUT.CUT_BRIDGES_SPACE);
    }
    if (v >= 2)
        w.put(s.SWEEP.SWEEP_SPEED, &e.SWEEP.SWEEP_SPEED);
    w.put(s.SWEEP.SWEEP_TYPE, &e.SWEEP.SWEEP_TYPE);
    if (v >= 10)
        w.put(s.SWEEP.SWEEP_VERT_TYPE, &e.SWEEP.SWEEP_VERT_TYPE);
    if (v >= 1 && v <= 5)
        w.put(0x77777777);
    else if (v == 0)
        w.put(true);
    w.put(s.SWEEP.SWEEP_INCLINE_LEN, &e.SWEEP.SWEEP_INCLINE_LEN);
    if (v >= 9)
        w.put(s.SWEEP.SWEEP_IS3DRELIEF, &e.SWEEP.SWEEP_IS3DRELIEF);
    w.put(s.SWEEP.SWEEP_DPI, &e.SWEEP.SWEEP_DPI);
    putLaser(w, s.SWEEP.LASER1, e.SWEEP.LASER1, v);
    putLaser(w, s.SWEEP.LASER2, e.SWEEP.LASER2, v);
    if (v >= 8)
        w.put(s.SWEEP.CARVING_NUMBER, &e.SWEEP.CARVING_NUMBER);
    if (v >= 11) {
        putPen(w, s.CUT.PEN, e.CUT.PEN);
        putPen(w, s.SWEEP.PEN, e.SWEEP.PEN);
    }
    if (v >= 12) {
        // Written as it is, but compensation never comes back switched on.
        w.put(s.CUT.CUT_COMPENSATE_ENABLE);
        w.put(s.CUT.CUT_COMPENSATE_OUTWARD, &e.CUT.CUT_COMPENSATE_OUTWARD);
        w.put(s.CUT.CUT_COMPENSATE_SIZE, &e.CUT.CUT_COMPENSATE_SIZE);
    }
    if (v >= 13)
        w.put(s.AUX_INDEX, &e.AUX_INDEX);
}

// A whole stream of version v; `expected` receives, for each layer, what a
// reader of the stream's first `budget` bytes gets.
QByteArray layerStream(int v, const QList<CLayerParam> &layers,
                       QList<QStringList> *expected = nullptr,
                       qsizetype budget = std::numeric_limits<qsizetype>::max())
{
    LeWriter w;
    w.budget = budget;
    w.put(v);
    if (v >= 4)
        w.put(qint32(layers.size()));
    for (const CLayerParam &s : layers) {
        CLayerParam e;
        putLayer(w, s, v, e);
        if (expected)
            expected->append(describe(e));
    }
    return w.bytes;
}

} // namespace

class tst_LayerStream : public QObject
{
    Q_OBJECT

private slots:
    void read_data();
    void read();
    void savedBytes();
};

void tst_LayerStream::read_data()
{
    // clang-format off
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("count");
    QTest::addColumn<QList<QStringList>>("layers"); // the first layers read; later ones keep their defaults

    // Below version 4 there is no count: always 21 layers.
    QList<CLayerParam> samples;
    for (int i = 0; i < 21; ++i)
        samples << sampleLayer(i);
    for (int v = 0; v <= 14; ++v) {
        QList<QStringList> expected;
        const QByteArray bytes = layerStream(v, samples.first(v < 4 ? 21 : 6), &expected);
        QTest::addRow("version %d", v) << bytes << int(expected.size()) << expected;
    }

    const CLayerParam s = sampleLayer(2);
    const QByteArray whole = layerStream(14, {s});
    auto cut = [&](int version, qsizetype size) {
        QList<QStringList> expected;
        layerStream(version, {s}, &expected, size);
        return expected;
    };
    QTest::newRow("empty device") << QByteArray() << 0 << QList<QStringList>();
    QTest::newRow("version only") << whole.left(4) << 0 << QList<QStringList>();
    QTest::newRow("negative count") << QByteArray::fromHex("0e000000fbffffff") + whole.mid(8) << 0 << QList<QStringList>();
    QTest::newRow("huge count clamped") << QByteArray::fromHex("0e00000000943577") + whole.mid(8) << 65536 << cut(14, whole.size());
    QTest::newRow("version 3 with one layer") << layerStream(3, {s}) << 21 << cut(3, whole.size());
    QTest::newRow("header only") << whole.left(8) << 1 << QList<QStringList>{describe(CLayerParam())};
    for (const qsizetype size : QList<qsizetype>{10, 8 + 36 + 10, 8 + 210, whole.size() - 2})
        QTest::addRow("cut at %d", int(size)) << whole.left(size) << 1 << cut(14, size);
    QTest::newRow("trailing junk") << whole + "junk" << 1 << cut(14, whole.size());
    // clang-format on
}

void tst_LayerStream::read()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, count);
    QFETCH(QList<QStringList>, layers);
    TestEnvironment env;
    // Loading appends behind the layers there, a duplicate colour included.
    CLayerMgrIns manager(nullptr);
    manager.AddLayer(new CLayerParam(sampleLayer(0).COLOR));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QCOMPARE(manager.LoadLayers(&buffer), 0u);
    QCOMPARE(manager.GetLayerCount(), quint64(count) + 1);
    QCOMPARE(manager.GetLayerAt(0)->COLOR, sampleLayer(0).COLOR);
    QList<QStringList> read;
    for (qsizetype i = 1; i <= layers.size(); ++i)
        read << describe(*manager.GetLayerAt(quint32(i)));
    QCOMPARE(read, layers);
    // Past the end of the data every layer keeps its defaults.
    if (count > layers.size())
        QCOMPARE(describe(*manager.GetLayerAt(quint32(count))), describe(CLayerParam()));
}

void tst_LayerStream::savedBytes()
{
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    QList<CLayerParam> layers;
    for (int i = 0; i < 6; ++i) {
        layers << sampleLayer(i);
        layers.last().CUT.CUT_COMPENSATE_ENABLE |= i == 1;
        manager.AddLayer(new CLayerParam(layers.last()));
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QCOMPARE(manager.SaveLayers(&buffer), 0u);
    QCOMPARE(buffer.data().toHex(' '), layerStream(14, layers).toHex(' '));
}

QTEST_GUILESS_MAIN(tst_LayerStream)
#include "tst_layerstream.moc"
