#include "layertestdata.h"
#include "module/clayermgrins.h"
#include "testenvironment.h"

#include <QBuffer>
#include <QDataStream>
#include <QTest>

#include <limits>

using namespace layertest;

namespace {

// Little-endian bytes, built value by value. A value that ends past the
// budget is still written but not copied into its target: that is what a
// reader of the stream cut at the budget can know.
struct LeWriter
{
    QByteArray bytes;
    QDataStream out{&bytes, QIODevice::WriteOnly};
    qsizetype budget = std::numeric_limits<qsizetype>::max();

    LeWriter() { out.setByteOrder(QDataStream::LittleEndian); }
    template <typename W, typename T> LeWriter &put(W value, T *into)
    {
        out << value;
        if (into && bytes.size() <= budget)
            *into = T(value);
        return *this;
    }
    LeWriter &i32(qint32 v, qint32 *into = nullptr) { return put(v, into); }
    LeWriter &u32(quint32 v, quint32 *into = nullptr) { return put(v, into); }
    LeWriter &flag(bool v, bool *into = nullptr) { return put(qint32(v), into); }
    LeWriter &byte(bool v, bool *into = nullptr) { return put(qint8(v), into); }
    LeWriter &f64(double v, double *into = nullptr) { return put(v, into); }
};

void putLaser(LeWriter &w, const LaserParam &s, LaserParam &e, int v)
{
    w.flag(s.ENABLE, &e.ENABLE).i32(s.FREQ, &e.FREQ);
    w.f64(s.POWER_MIN, &e.POWER_MIN).f64(s.POWER_MAX, &e.POWER_MAX);
    if (v >= 14)
        w.i32(s.PULSE_WIDTH, &e.PULSE_WIDTH);
}

void putPen(LeWriter &w, const PenParam &s, PenParam &e)
{
    w.byte(s.ENABLE_PEN_UP_DOWN, &e.ENABLE_PEN_UP_DOWN).byte(s.ENABLE_PEN_DOWN, &e.ENABLE_PEN_DOWN);
    w.byte(s.ENABLE_PEN_UP, &e.ENABLE_PEN_UP);
    w.f64(s.PEN_DOWN_HRIGHT, &e.PEN_DOWN_HRIGHT).f64(s.PEN_UP_HRIGHT, &e.PEN_UP_HRIGHT);
}

// Writes layer s as a stream of version v has it, and copies into e what a
// reader gets back from those bytes. Dropped values are junk on purpose.
void putLayer(LeWriter &w, const CLayerParam &s, int v, CLayerParam &e)
{
    w.u32(s.COLOR, &e.COLOR).i32(s.WORK_TYPE, &e.WORK_TYPE);
    w.flag(s.OUTPUT, &e.OUTPUT).flag(s.BLOW, &e.BLOW);
    if (v >= 5) {
        w.flag(s.FILL_LOCKED, &e.FILL_LOCKED);
        if (e.IsLineProcess())
            e.FILL_LOCKED = false;
    }
    w.f64(s.CUT.CUT_SPEED, &e.CUT.CUT_SPEED);
    if (v <= 1 && w.bytes.size() <= w.budget)
        e.SWEEP.SWEEP_SPEED = s.CUT.CUT_SPEED;
    w.f64(s.CUT.CUT_JOINT_LEN, &e.CUT.CUT_JOINT_LEN);
    if (v < 3)
        w.i32(0x5a5a5a5a).i32(-7);
    putLaser(w, s.CUT.LASER1, e.CUT.LASER1, v);
    putLaser(w, s.CUT.LASER2, e.CUT.LASER2, v);
    if (v >= 7) {
        w.flag(s.CUT.CUT_BRIDGES, &e.CUT.CUT_BRIDGES);
        w.f64(s.CUT.CUT_BRIDGES_LEN, &e.CUT.CUT_BRIDGES_LEN);
        w.f64(s.CUT.CUT_BRIDGES_SPACE, &e.CUT.CUT_BRIDGES_SPACE);
    }
    if (v >= 2)
        w.f64(s.SWEEP.SWEEP_SPEED, &e.SWEEP.SWEEP_SPEED);
    w.i32(s.SWEEP.SWEEP_TYPE, &e.SWEEP.SWEEP_TYPE);
    if (v >= 10)
        w.i32(s.SWEEP.SWEEP_VERT_TYPE, &e.SWEEP.SWEEP_VERT_TYPE);
    if (v >= 1 && v <= 5)
        w.i32(0x77777777);
    else if (v == 0)
        w.byte(true);
    w.f64(s.SWEEP.SWEEP_INCLINE_LEN, &e.SWEEP.SWEEP_INCLINE_LEN);
    if (v >= 9)
        w.byte(s.SWEEP.SWEEP_IS3DRELIEF, &e.SWEEP.SWEEP_IS3DRELIEF);
    w.i32(s.SWEEP.SWEEP_DPI, &e.SWEEP.SWEEP_DPI);
    putLaser(w, s.SWEEP.LASER1, e.SWEEP.LASER1, v);
    putLaser(w, s.SWEEP.LASER2, e.SWEEP.LASER2, v);
    if (v >= 8)
        w.i32(s.SWEEP.CARVING_NUMBER, &e.SWEEP.CARVING_NUMBER);
    if (v >= 11) {
        putPen(w, s.CUT.PEN, e.CUT.PEN);
        putPen(w, s.SWEEP.PEN, e.SWEEP.PEN);
    }
    if (v >= 12) {
        // Written as it is, but compensation never comes back switched on.
        w.byte(s.CUT.CUT_COMPENSATE_ENABLE);
        w.byte(s.CUT.CUT_COMPENSATE_OUTWARD, &e.CUT.CUT_COMPENSATE_OUTWARD);
        w.f64(s.CUT.CUT_COMPENSATE_SIZE, &e.CUT.CUT_COMPENSATE_SIZE);
    }
    if (v >= 13)
        w.i32(s.AUX_INDEX, &e.AUX_INDEX);
}

// A whole stream of version v; `expected` receives, for each layer, what a
// reader of the stream's first `budget` bytes gets.
QByteArray layerStream(int v, const QList<CLayerParam> &layers,
                       QList<QStringList> *expected = nullptr,
                       qsizetype budget = std::numeric_limits<qsizetype>::max())
{
    LeWriter w;
    w.budget = budget;
    w.i32(v);
    if (v >= 4)
        w.i32(qint32(layers.size()));
    for (const CLayerParam &s : layers) {
        CLayerParam e;
        putLayer(w, s, v, e);
        if (expected)
            expected->append(describe(e));
    }
    return w.bytes;
}

QList<CLayerParam> samples(int count)
{
    QList<CLayerParam> out;
    for (int i = 0; i < count; ++i)
        out << sampleLayer(i);
    return out;
}

// Loads into a manager that holds a layer already: loading appends behind
// it, a duplicate colour included. Returns the loaded layers.
QList<CLayerParam> load(const QByteArray &bytes)
{
    CLayerMgrIns manager(nullptr);
    manager.AddLayer(new CLayerParam(sampleLayer(0).COLOR));
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    if (manager.LoadLayers(&buffer) != 0 || manager.GetLayerAt(0)->COLOR != sampleLayer(0).COLOR)
        return {CLayerParam(0xBAD)};
    QList<CLayerParam> out;
    for (quint32 i = 1; i < manager.GetLayerCount(); ++i)
        out << *manager.GetLayerAt(i);
    return out;
}

} // namespace

class tst_LayerStream : public QObject
{
    Q_OBJECT

private slots:
    void readOldVersions_data();
    void readOldVersions();
    void savedBytes();
    void hostileInput_data();
    void hostileInput();
};

void tst_LayerStream::readOldVersions_data()
{
    // clang-format off
    QTest::addColumn<int>("version");
    QTest::addColumn<int>("layers");
    // Below version 4 there is no count: always 21 layers.
    for (int v = 0; v <= 14; ++v)
        QTest::addRow("version %d", v) << v << (v < 4 ? 21 : 6);
    // clang-format on
}

void tst_LayerStream::readOldVersions()
{
    QFETCH(int, version);
    QFETCH(int, layers);
    TestEnvironment env;
    QList<QStringList> expected;
    const QByteArray bytes = layerStream(version, samples(layers), &expected);
    QList<QStringList> loaded;
    for (const CLayerParam &layer : load(bytes))
        loaded << describe(layer);
    QCOMPARE(loaded, expected);
}

void tst_LayerStream::savedBytes()
{
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    QList<CLayerParam> layers = samples(6);
    layers[1].CUT.CUT_COMPENSATE_ENABLE = true;
    for (const CLayerParam &layer : layers)
        manager.AddLayer(new CLayerParam(layer));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QCOMPARE(manager.SaveLayers(&buffer), 0u);
    QCOMPARE(buffer.data().toHex(' '), layerStream(14, layers).toHex(' '));
    QCOMPARE(manager.LoadLayers(nullptr), 1u);
    QCOMPARE(manager.SaveLayers(nullptr), 1u);
}

void tst_LayerStream::hostileInput_data()
{
    // clang-format off
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("layers");
    QTest::addColumn<QStringList>("firstLayer");

    const CLayerParam s = sampleLayer(2);
    const QByteArray whole = layerStream(14, {s});
    auto cut = [&](int version, qsizetype size) {
        QList<QStringList> expected;
        layerStream(version, {s}, &expected, size);
        return expected[0];
    };

    QTest::newRow("empty device") << QByteArray() << 0 << QStringList();
    QTest::newRow("version only") << whole.left(4) << 0 << QStringList();
    QTest::newRow("cut in count") << whole.left(6) << 0 << QStringList();
    QTest::newRow("negative count") << QByteArray::fromHex("0e000000fbffffff") + whole.mid(8) << 0 << QStringList();
    QTest::newRow("huge count clamped") << QByteArray::fromHex("0e00000000943577") + whole.mid(8) << 65536 << cut(14, whole.size());
    QTest::newRow("version 3 with one layer") << layerStream(3, {s}) << 21 << cut(3, whole.size());
    QTest::newRow("header only") << whole.left(8) << 1 << describe(CLayerParam());
    for (const qsizetype size : QList<qsizetype>{10, 12, 8 + 36 + 10, 8 + 210, whole.size() - 2})
        QTest::addRow("cut at %d", int(size)) << whole.left(size) << 1 << cut(14, size);
    QTest::newRow("trailing junk") << whole + "junk" << 1 << cut(14, whole.size());
    // clang-format on
}

void tst_LayerStream::hostileInput()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, layers);
    QFETCH(QStringList, firstLayer);
    TestEnvironment env;

    const QList<CLayerParam> loaded = load(bytes);
    QCOMPARE(loaded.size(), layers);
    if (layers > 0)
        QCOMPARE(describe(loaded.first()), firstLayer);
    // Past the end of the data every layer keeps its defaults.
    if (layers > 1)
        QCOMPARE(describe(loaded.last()), describe(CLayerParam()));
}

QTEST_GUILESS_MAIN(tst_LayerStream)
#include "tst_layerstream.moc"
