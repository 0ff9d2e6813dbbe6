#include "layertestdata.h"
#include "module/clayermgrins.h"
#include "testenvironment.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <cstring>
#include <limits>

using namespace layertest;

namespace {

// Little-endian bytes, built value by value. A value that ends past the
// budget is still written but not copied into its target: that is what a
// reader of the stream cut at the budget can know.
class LeWriter
{
public:
    explicit LeWriter(qsizetype budget = std::numeric_limits<qsizetype>::max())
        : m_budget(budget)
    {}

    template <typename T> LeWriter &i32(T value, T *into = nullptr)
    {
        return put(quint32(value), 4, into, value);
    }
    LeWriter &flag(bool value, bool *into = nullptr) { return put(value ? 1 : 0, 4, into, value); }
    LeWriter &byte(bool value, bool *into = nullptr) { return put(value ? 1 : 0, 1, into, value); }
    LeWriter &f64(double value, double *into = nullptr)
    {
        quint64 bits;
        std::memcpy(&bits, &value, sizeof bits);
        return put(bits, 8, into, value);
    }
    LeWriter &raw(const QByteArray &bytes)
    {
        m_bytes += bytes;
        m_fits = m_bytes.size() <= m_budget;
        return *this;
    }
    // Whether the last value lies within the budget.
    bool fits() const { return m_fits; }
    const QByteArray &bytes() const { return m_bytes; }

private:
    template <typename T> LeWriter &put(quint64 bits, int size, T *into, T value)
    {
        for (int b = 0; b < size; ++b)
            m_bytes.append(char((bits >> (8 * b)) & 0xFF));
        m_fits = m_bytes.size() <= m_budget;
        if (into && m_fits)
            *into = value;
        return *this;
    }

    QByteArray m_bytes;
    qsizetype m_budget;
    bool m_fits = true;
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
    w.i32(s.COLOR, &e.COLOR).i32(s.WORK_TYPE, &e.WORK_TYPE);
    w.flag(s.OUTPUT, &e.OUTPUT).flag(s.BLOW, &e.BLOW);
    if (v >= 5) {
        w.flag(s.FILL_LOCKED, &e.FILL_LOCKED);
        if (e.WORK_TYPE == WORK_CUTTING || e.WORK_TYPE == WORK_SCORING)
            e.FILL_LOCKED = false;
    }
    w.f64(s.CUT.CUT_SPEED, &e.CUT.CUT_SPEED);
    if (v <= 1 && w.fits())
        e.SWEEP.SWEEP_SPEED = s.CUT.CUT_SPEED;
    w.f64(s.CUT.CUT_JOINT_LEN, &e.CUT.CUT_JOINT_LEN);
    if (v < 3)
        w.raw(QByteArray::fromHex("5a5a5a5a"
                                  "f9ffffff"));
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
        w.raw(QByteArray::fromHex("77777777"));
    else if (v == 0)
        w.raw(QByteArray::fromHex("ee"));
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
        // Compensation never comes back switched on.
        w.byte(s.CUT.CUT_COMPENSATE_ENABLE);
        w.byte(s.CUT.CUT_COMPENSATE_OUTWARD, &e.CUT.CUT_COMPENSATE_OUTWARD);
        w.f64(s.CUT.CUT_COMPENSATE_SIZE, &e.CUT.CUT_COMPENSATE_SIZE);
    }
    if (v >= 13)
        w.i32(s.AUX_INDEX, &e.AUX_INDEX);
}

// A whole stream of version v; `expected` receives what a reader of its
// first `budget` bytes gets for each layer.
QByteArray layerStream(int v, const QList<CLayerParam> &layers,
                       QList<CLayerParam> *expected = nullptr,
                       qsizetype budget = std::numeric_limits<qsizetype>::max())
{
    LeWriter w(budget);
    w.i32(v);
    if (v >= 4)
        w.i32(qint32(layers.size()));
    for (const CLayerParam &s : layers) {
        CLayerParam e;
        putLayer(w, s, v, e);
        if (expected)
            expected->append(e);
    }
    return w.bytes();
}

QList<CLayerParam> samples(int count)
{
    QList<CLayerParam> out;
    for (int i = 0; i < count; ++i)
        out << sampleLayer(i);
    return out;
}

// Bytes of a version-14 layer: 5 int32/bools, 2 doubles, 2 lasers of 28,
// bridges 20, speed, 2 ints, incline, a byte, dpi, 2 lasers, carving, 2 pens of
// 19, compensation 10, aux.
constexpr int kLayerBytes14 = 20 + 16 + 56 + 20 + 8 + 8 + 8 + 1 + 4 + 56 + 4 + 38 + 10 + 4;

QList<CLayerParam> load(const QByteArray &bytes)
{
    CLayerMgrIns manager(nullptr);
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    if (manager.LoadLayers(&buffer) != 0)
        return {};
    QList<CLayerParam> out;
    for (quint32 i = 0; i < manager.GetLayerCount(); ++i)
        out << *manager.GetLayerAt(i);
    return out;
}

} // namespace

class tst_LayerStream : public QObject
{
    Q_OBJECT

private slots:
    void everyVersion_data();
    void everyVersion();
    void fillLockedOfLineWork_data();
    void fillLockedOfLineWork();
    void compensationComesBackOff();
    void savedBytes();
    void saveThenLoad();
    void hostileInput_data();
    void hostileInput();
    void randomBytes_data();
    void randomBytes();
    void nullDevice();
};

void tst_LayerStream::everyVersion_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<int>("layers");
    for (int v = 0; v <= 14; ++v) {
        // Below version 4 there is no count: always 21 layers.
        QTest::addRow("version %d", v) << v << (v < 4 ? 21 : 6);
    }
}

void tst_LayerStream::everyVersion()
{
    QFETCH(int, version);
    QFETCH(int, layers);
    TestEnvironment env;
    QList<CLayerParam> expected;
    const QList<CLayerParam> loaded = load(layerStream(version, samples(layers), &expected));

    QCOMPARE(loaded.size(), layers);
    for (int i = 0; i < layers; ++i) {
        QCOMPARE(describe(loaded[i]), describe(expected[i]));
        if (version <= 1)
            QCOMPARE(loaded[i].SWEEP.SWEEP_SPEED, sampleLayer(i).CUT.CUT_SPEED);
        QVERIFY(!loaded[i].CUT.CUT_COMPENSATE_ENABLE);
    }
}

void tst_LayerStream::fillLockedOfLineWork_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<int>("workType");
    QTest::addColumn<bool>("fillLocked");

    QTest::newRow("cutting") << 14 << 0 << false;
    QTest::newRow("scoring") << 14 << 1 << false;
    QTest::newRow("scoring version 5") << 5 << 1 << false;
    QTest::newRow("shallow engrave") << 14 << 2 << true;
    QTest::newRow("deep engrave") << 14 << 3 << true;
    QTest::newRow("mark") << 14 << 4 << true;
    QTest::newRow("unknown work type") << 14 << 9 << true;
    QTest::newRow("version 4 has no lock") << 4 << 2 << false;
}

void tst_LayerStream::fillLockedOfLineWork()
{
    QFETCH(int, version);
    QFETCH(int, workType);
    QFETCH(bool, fillLocked);
    TestEnvironment env;
    CLayerParam layer = sampleLayer(0);
    layer.WORK_TYPE = workType;
    layer.FILL_LOCKED = true;

    const QList<CLayerParam> loaded = load(layerStream(version, {layer}));
    QCOMPARE(loaded.size(), 1);
    QCOMPARE(loaded[0].WORK_TYPE, workType);
    QCOMPARE(loaded[0].FILL_LOCKED, fillLocked);
}

void tst_LayerStream::compensationComesBackOff()
{
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    auto *layer = new CLayerParam(0x123456);
    layer->CUT.CUT_COMPENSATE_ENABLE = true;
    layer->CUT.CUT_COMPENSATE_OUTWARD = false;
    layer->CUT.CUT_COMPENSATE_SIZE = 0.75;
    manager.AddLayer(layer);
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    QCOMPARE(manager.SaveLayers(&buffer), 0u);

    const QList<CLayerParam> loaded = load(buffer.data());
    QCOMPARE(loaded.size(), 1);
    QCOMPARE(loaded[0].CUT.CUT_COMPENSATE_ENABLE, false);
    QCOMPARE(loaded[0].CUT.CUT_COMPENSATE_OUTWARD, false);
    QCOMPARE(loaded[0].CUT.CUT_COMPENSATE_SIZE, 0.75);
}

void tst_LayerStream::savedBytes()
{
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    CLayerParam layer = sampleLayer(1);
    layer.CUT.CUT_COMPENSATE_ENABLE = true;
    manager.AddLayer(new CLayerParam(layer));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QCOMPARE(manager.SaveLayers(&buffer), 0u);

    const QByteArray expected = layerStream(14, {layer});
    QCOMPARE(expected.size(), 8 + kLayerBytes14);
    QVERIFY(expected.startsWith(QByteArray::fromHex("0e000000"
                                                    "01000000")));
    QCOMPARE(buffer.data().toHex(' '), expected.toHex(' '));
}

void tst_LayerStream::saveThenLoad()
{
    TestEnvironment env;
    CLayerMgrIns source(nullptr);
    const QList<CLayerParam> saved = samples(6);
    for (const CLayerParam &layer : saved)
        source.AddLayer(new CLayerParam(layer));
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    QCOMPARE(source.SaveLayers(&buffer), 0u);
    QCOMPARE(buffer.size(), 8 + 6 * kLayerBytes14);

    // Loading appends behind what is there, duplicates included.
    CLayerMgrIns target(nullptr);
    target.AddLayer(new CLayerParam(saved[0].COLOR));
    buffer.seek(0);
    QCOMPARE(target.LoadLayers(&buffer), 0u);
    QCOMPARE(target.GetLayerCount(), 7u);
    QCOMPARE(target.GetLayerAt(0)->COLOR, saved[0].COLOR);

    // What the stream does not carry comes back as the default, the rest as saved.
    const QRegularExpression notStreamed(QStringLiteral(
        "^((CUT|SWEEP)\\.LASER[12]\\.(JUMP_DELAY|CORNER_DELAY|DWELL_MODE|DWELL_ON|START_DWELL"
        "|END_DWELL|START_DWELL_TIME|END_DWELL_TIME|DWELL_POWER)|CUT\\.(CUTTING_NUMBER"
        "|USE_GUIDE_LINE|GUIDE_TYPE|IS_GUIDE_IN|GUIDE_IN_LEN|IS_GUIDE_OUT|GUIDE_OUT_LEN"
        "|CUT_COMPENSATE_ENABLE)|SWEEP\\.(SWEEP_OFFSET_TYPE|SWEEP_ISRAMP|SWEEP_OFFSET_ENGRAVING"
        "|SWEEP_STEP)|SELECTED|LINK\\..*)="));
    const QStringList fresh = describe(CLayerParam());
    for (int i = 0; i < saved.size(); ++i) {
        const QStringList kept = describe(saved[i]);
        const QStringList got = describe(*target.GetLayerAt(quint32(i + 1)));
        for (int k = 0; k < got.size(); ++k)
            QCOMPARE(got[k], notStreamed.match(got[k]).hasMatch() ? fresh[k] : kept[k]);
    }
}

void tst_LayerStream::hostileInput_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("layers");
    QTest::addColumn<QStringList>("firstLayer");

    const CLayerParam fresh;
    const CLayerParam s = sampleLayer(2);
    const QByteArray whole = layerStream(14, {s});
    auto cut = [&](qsizetype size) {
        QList<CLayerParam> expected;
        layerStream(14, {s}, &expected, size);
        return describe(expected[0]);
    };

    QTest::newRow("empty device") << QByteArray() << 0 << QStringList();
    QTest::newRow("version only") << whole.left(4) << 0 << QStringList();
    QTest::newRow("cut in count") << whole.left(6) << 0 << QStringList();
    QTest::newRow("negative count") << QByteArray::fromHex("0e000000"
                                                           "fbffffff") +
                                           whole.mid(8)
                                    << 0 << QStringList();
    QTest::newRow("huge count clamped") << QByteArray::fromHex("0e000000"
                                                               "00943577") +
                                               whole.mid(8)
                                        << 65536 << cut(whole.size());
    QTest::newRow("version 3 with one layer") << layerStream(3, {s}) << 21 << [&] {
        QList<CLayerParam> expected;
        layerStream(3, {s}, &expected);
        return describe(expected[0]);
    }();
    QTest::newRow("header only") << whole.left(8) << 1 << describe(fresh);
    for (const qsizetype size : {10, 12, 8 + 36 + 10, 8 + 210, kLayerBytes14 + 8 - 2})
        QTest::addRow("cut at %d", int(size)) << whole.left(size) << 1 << cut(size);
    QTest::newRow("trailing junk") << whole + "junk" << 1 << cut(whole.size());
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

void tst_LayerStream::randomBytes_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<bool>("validHeader");
    for (quint32 seed = 1; seed <= 6; ++seed) {
        QTest::addRow("random %u", seed) << seed << false;
        QTest::addRow("random body %u", seed) << seed << true;
    }
}

void tst_LayerStream::randomBytes()
{
    QFETCH(quint32, seed);
    QFETCH(bool, validHeader);
    TestEnvironment env;
    QRandomGenerator random(seed);
    QByteArray bytes(random.bounded(1, 4096), Qt::Uninitialized);
    for (char &b : bytes)
        b = char(random.generate());
    if (validHeader)
        bytes.replace(0, 8,
                      QByteArray::fromHex("0e000000"
                                          "03000000"));

    // The count follows from the first eight bytes alone.
    qint32 version = 14;
    qint32 count = 0;
    if (bytes.size() >= 4)
        std::memcpy(&version, bytes.constData(), 4);
    if (version < 4)
        count = 21;
    else if (bytes.size() >= 8)
        std::memcpy(&count, bytes.constData() + 4, 4);
    count = qBound(0, count, 65536);

    const QList<CLayerParam> loaded = load(bytes);
    QCOMPARE(loaded.size(), count);
    for (const CLayerParam &layer : loaded) {
        QVERIFY(!layer.CUT.CUT_COMPENSATE_ENABLE);
        if (layer.IsLineProcess())
            QVERIFY(!layer.FILL_LOCKED);
    }
}

void tst_LayerStream::nullDevice()
{
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    manager.AddLayer(new CLayerParam(0x0000FF));
    QCOMPARE(manager.LoadLayers(nullptr), 1u);
    QCOMPARE(manager.SaveLayers(nullptr), 1u);
    QCOMPARE(manager.GetLayerCount(), 1u);
}

QTEST_GUILESS_MAIN(tst_LayerStream)
#include "tst_layerstream.moc"
