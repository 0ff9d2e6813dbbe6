#include "layertestdata.h"
#include "module/layerparamfile.h"
#include "testenvironment.h"

#include <QDir>
#include <QSettings>
#include <QTest>

using namespace layertest;

namespace {

LayerList listOf(const QList<CLayerParam> &records)
{
    LayerList list;
    for (const CLayerParam &record : records)
        list.push_back(std::make_unique<CLayerParam>(record));
    return list;
}

// The lines of one section of an INI text.
QStringList section(const QStringList &lines, const QString &name)
{
    QStringList out;
    qsizetype i = lines.indexOf(QLatin1Char('[') + name + QLatin1Char(']'));
    while (i >= 0 && ++i < lines.size() && !lines[i].startsWith(QLatin1Char('[')))
        out << lines[i];
    return out;
}

QList<CLayerParam> readBack(const QString &path)
{
    LayerList list;
    ReadLayerParamFile(list, path);
    QList<CLayerParam> out;
    for (const auto &record : list)
        out << *record;
    return out;
}

// What a record is after a trip through the file.
CLayerParam afterTrip(const CLayerParam &written)
{
    const CLayerParam fresh;
    CLayerParam e = written;
    e.AUX_INDEX = fresh.AUX_INDEX;
    e.FILL_LOCKED = fresh.FILL_LOCKED;
    e.SELECTED = fresh.SELECTED;
    e.SWEEP.SWEEP_VERT_TYPE = fresh.SWEEP.SWEEP_VERT_TYPE;
    e.SWEEP.SWEEP_STEP = fresh.SWEEP.SWEEP_STEP;
    e.CUT.CUT_COMPENSATE_ENABLE = fresh.CUT.CUT_COMPENSATE_ENABLE;
    e.LINK = fresh.LINK;
    for (LaserParam *l : {&e.SWEEP.LASER1, &e.SWEEP.LASER2}) {
        const LaserParam d;
        l->DWELL_MODE = d.DWELL_MODE;
        l->DWELL_ON = d.DWELL_ON;
        l->START_DWELL = d.START_DWELL;
        l->END_DWELL = d.END_DWELL;
        l->START_DWELL_TIME = d.START_DWELL_TIME;
        l->END_DWELL_TIME = d.END_DWELL_TIME;
        l->DWELL_POWER = d.DWELL_POWER;
    }
    // The fill delays are read from the line keys.
    e.SWEEP.LASER1.JUMP_DELAY = written.CUT.LASER1.JUMP_DELAY;
    e.SWEEP.LASER1.CORNER_DELAY = written.CUT.LASER1.CORNER_DELAY;
    e.SWEEP.LASER2.JUMP_DELAY = written.CUT.LASER2.JUMP_DELAY;
    e.SWEEP.LASER2.CORNER_DELAY = written.CUT.LASER2.CORNER_DELAY;
    return e;
}

QStringList expectedKeys()
{
    QStringList keys = {"COLOR",       "WORK_TYPE",         "OUTPUT",
                        "BLOW",        "CUT_SPEED",         "CUT_JOINT_LEN",
                        "CUT_BRIDGES", "CUT_BRIDGES_SPACE", "CUT_BRIDGES_LEN"};
    const QStringList laser = {"ENABLE",    "FREQ",       "PULSE_WIDTH", "POWER_MIN",
                               "POWER_MAX", "JUMP_DELAY", "CORNER_DELAY"};
    const QStringList dwell = {"DWELL_MODE",       "DWELL_ON",       "START_DWELL", "END_DWELL",
                               "START_DWELL_TIME", "END_DWELL_TIME", "DWELL_POWER"};
    const QStringList pen = {"ENABLE_PEN_UP_DOWN", "ENABLE_PEN_DOWN", "ENABLE_PEN_UP",
                             "DOWN_HRIGHT", "UP_HRIGHT"};
    for (const QString &n : {QStringLiteral("1"), QStringLiteral("2")}) {
        for (const QString &k : laser + dwell)
            keys << QStringLiteral("CUT_LASER%1_%2").arg(n, k);
        for (const QString &k : laser)
            keys << QStringLiteral("SWEEP_LASER%1_%2").arg(n, k);
    }
    keys << QStringList{"CUTTING_NUMBER",
                        "USE_GUIDE_LINE",
                        "GUIDE_TYPE",
                        "IS_GUIDE_IN",
                        "GUIDE_IN_LEN",
                        "IS_GUIDE_OUT",
                        "GUIDE_OUT_LEN",
                        "SWEEP_SPEED",
                        "SWEEP_TYPE",
                        "SWEEP_INCLINE_LEN",
                        "SWEEP_IS3DRELIEF",
                        "SWEEP_ISRAMP",
                        "SWEEP_DPI",
                        "SWEEP_OFFSET_TYPE",
                        "SWEEP_OFFSET_ENGRAVING",
                        "CARVING_NUMBER",
                        "CUT_COMPENSATE_OUTWARD",
                        "CUT_COMPENSATE_SIZE"};
    for (const QString &k : pen)
        keys << QStringLiteral("CUT_PEN_") + k << QStringLiteral("SWEEP_PEN_") + k;
    keys.sort();
    return keys;
}

} // namespace

class tst_LayerParamFile : public QObject
{
    Q_OBJECT

private slots:
    void writtenText();
    void writtenKeys();
    void roundTrip();
    void reading_data();
    void reading();
    void missingFileLeavesList();
    void rewriteReplacesWhole();
};

void tst_LayerParamFile::writtenText()
{
    TestEnvironment env;
    CLayerParam first(0xFF0000);
    first.CUT.LASER1.JUMP_DELAY = 7;
    first.CUT.CUT_SPEED = 12.5;
    first.SWEEP.SWEEP_SPEED = 0.1;
    first.OUTPUT = false;
    CLayerParam second(0x00FF00);
    second.CUT.CUT_COMPENSATE_SIZE = 1.0 / 3.0;
    WriteLayerParamFile(listOf({first, second}));

    QCOMPARE(LayerParamFilePath(), env.dataFile(QStringLiteral("old.lpl")));
    const QStringList lines =
        QString::fromUtf8(env.readFile(QStringLiteral("old.lpl"))).split(QLatin1Char('\n'));
    const QStringList layer0 = section(lines, QStringLiteral("LAYER0"));
    const QStringList layer1 = section(lines, QStringLiteral("LAYER1"));
    QCOMPARE(section(lines, QStringLiteral("LAYER_PARAMS")), QStringList({"LAYER_COUNT=2", ""}));
    QVERIFY(!lines.contains(QStringLiteral("[LAYER2]")));
    for (const char *line :
         {"COLOR=16711680", "OUTPUT=0", "BLOW=1", "CUT_LASER1_JUMP_DELAY=7", "CUT_LASER1_ENABLE=1",
          "CUT_LASER2_ENABLE=0", "CUT_SPEED=12.5", "SWEEP_SPEED=0.1", "CUT_COMPENSATE_SIZE=0.25",
          "CUT_LASER1_POWER_MAX=20", "CUT_PEN_DOWN_HRIGHT=3"}) {
        QVERIFY2(layer0.contains(QLatin1String(line)), line);
    }
    QVERIFY(layer1.contains(QStringLiteral("COLOR=65280")));
    QVERIFY(layer1.contains(QStringLiteral("CUT_COMPENSATE_SIZE=0.3333333333333333")));
}

void tst_LayerParamFile::writtenKeys()
{
    TestEnvironment env;
    const QString path = env.dataFile(QStringLiteral("keys.lpl"));
    WriteLayerParamFile(listOf({sampleLayer(0)}), path);

    QSettings settings(path, QSettings::IniFormat);
    QCOMPARE(settings.childGroups(), QStringList({"LAYER0", "LAYER_PARAMS"}));
    settings.beginGroup(QStringLiteral("LAYER0"));
    QStringList keys = settings.childKeys();
    keys.sort();
    QCOMPARE(keys, expectedKeys());
}

void tst_LayerParamFile::roundTrip()
{
    TestEnvironment env;
    QList<CLayerParam> written;
    for (int i = 0; i < 6; ++i)
        written << sampleLayer(i);
    written[3].COLOR = written[1].COLOR; // duplicates are kept as they are
    WriteLayerParamFile(listOf(written));

    LayerList list;
    ReadLayerParamFile(list);
    QCOMPARE(int(list.size()), written.size());
    for (int i = 0; i < written.size(); ++i)
        QCOMPARE(describe(*list[size_t(i)]), describe(afterTrip(written[i])));
}

void tst_LayerParamFile::reading_data()
{
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<int>("records");
    // "record:FIELD=value" entries the records must show.
    QTest::addColumn<QStringList>("expect");

    QTest::newRow("count 2 of three sections")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=2\n[LAYER0]\nCOLOR=1\n[LAYER1]\nCOLOR=2\n"
                      "[LAYER2]\nCOLOR=3\n")
        << 2 << QStringList{"0:COLOR=1", "1:COLOR=2"};
    QTest::newRow("fill delays from the line keys")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=1\n[LAYER0]\nSWEEP_LASER1_JUMP_DELAY=5\n"
                      "CUT_LASER1_JUMP_DELAY=7\nSWEEP_LASER2_CORNER_DELAY=9\n"
                      "CUT_LASER2_CORNER_DELAY=4\nCUT_LASER1_CORNER_DELAY=3\n")
        << 1
        << QStringList{"0:CUT.LASER1.JUMP_DELAY=7", "0:SWEEP.LASER1.JUMP_DELAY=7",
                       "0:SWEEP.LASER2.CORNER_DELAY=4", "0:CUT.LASER2.CORNER_DELAY=4",
                       "0:SWEEP.LASER1.CORNER_DELAY=3"};
    QTest::newRow("laser 2 delay falls back to laser 1")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=1\n[LAYER0]\nCUT_LASER1_JUMP_DELAY=7\n"
                      "SWEEP_LASER2_JUMP_DELAY=9\n")
        << 1 << QStringList{"0:SWEEP.LASER2.JUMP_DELAY=7", "0:CUT.LASER2.JUMP_DELAY=0"};
    QTest::newRow("any non-zero is true")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=1\n[LAYER0]\nOUTPUT=2\nBLOW=0\n"
                      "CUT_BRIDGES=-1\nCUT_LASER2_ENABLE=1\nCUT_LASER1_ENABLE=0\n")
        << 1
        << QStringList{"0:OUTPUT=true", "0:BLOW=false", "0:CUT.CUT_BRIDGES=true",
                       "0:CUT.LASER2.ENABLE=true", "0:CUT.LASER1.ENABLE=false"};
    QTest::newRow("text where a number belongs")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=1\n[LAYER0]\nCOLOR=red\nCUT_LASER1_FREQ=abc\n"
                      "CUT_SPEED=fast\nOUTPUT=yes\n")
        << 1
        << QStringList{"0:COLOR=0", "0:CUT.LASER1.FREQ=0", "0:CUT.CUT_SPEED=0", "0:OUTPUT=false"};
    QTest::newRow("missing keys keep defaults")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=1\n[LAYER0]\nCOLOR=5\n") << 1
        << QStringList{"0:COLOR=5",
                       "0:CUT.CUT_SPEED=1",
                       "0:SWEEP.SWEEP_DPI=6",
                       "0:CUT.CUT_COMPENSATE_OUTWARD=true",
                       "0:SWEEP.LASER2.ENABLE=false",
                       "0:CUT.LASER1.FREQ=4000"};
    QTest::newRow("missing section")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=2\n[LAYER1]\nCOLOR=9\n") << 2
        << QStringList{"0:COLOR=0", "0:OUTPUT=true", "0:CUT.LASER1.ENABLE=true", "1:COLOR=9"};
    QTest::newRow("keys not kept are not read")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=1\n[LAYER0]\nAUX_INDEX=7\nFILL_LOCKED=1\n"
                      "SWEEP_VERT_TYPE=3\nCUT_COMPENSATE_ENABLE=1\nSWEEP_LASER1_DWELL_ON=1\n"
                      "SWEEP_LASER1_DWELL_POWER=5\nSWEEP_STEP=0.5\nSELECTED=1\n")
        << 1
        << QStringList{"0:AUX_INDEX=-1",
                       "0:FILL_LOCKED=false",
                       "0:SWEEP.SWEEP_VERT_TYPE=0",
                       "0:CUT.CUT_COMPENSATE_ENABLE=false",
                       "0:SWEEP.LASER1.DWELL_ON=false",
                       "0:SWEEP.LASER1.DWELL_POWER=0",
                       "0:SWEEP.SWEEP_STEP=0.1",
                       "0:SELECTED=false"};
    QTest::newRow("no count") << QByteArray("[LAYER0]\nCOLOR=1\n") << 0 << QStringList();
    QTest::newRow("count as text")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=two\n[LAYER0]\nCOLOR=1\n") << 0 << QStringList();
    QTest::newRow("negative count")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=-3\n[LAYER0]\nCOLOR=1\n") << 0 << QStringList();
    QTest::newRow("absurd count")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=2000000000\n[LAYER0]\nCOLOR=1\n") << 65536
        << QStringList{"0:COLOR=1", "65535:COLOR=0"};
    QTest::newRow("empty file") << QByteArray() << 0 << QStringList();
    QTest::newRow("garbage") << QByteArray::fromHex(
                                    "00ff5b0a3d3d0a5d4c415945525f504152414d535d0d0a4c415945")
                             << 0 << QStringList();
    QTest::newRow("garbage after the count")
        << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=1\n[LAYER0]\nCOLOR=4\n\x01\x02=\xff\n[[\n==\n")
        << 1 << QStringList{"0:COLOR=4"};
}

void tst_LayerParamFile::reading()
{
    QFETCH(QByteArray, ini);
    QFETCH(int, records);
    QFETCH(QStringList, expect);
    TestEnvironment env;
    QVERIFY(env.writeFile(QStringLiteral("old.lpl"), ini));

    LayerList list;
    ReadLayerParamFile(list);
    QCOMPARE(int(list.size()), records);
    for (const QString &entry : expect) {
        const qsizetype colon = entry.indexOf(QLatin1Char(':'));
        const int index = entry.left(colon).toInt();
        QVERIFY2(missingFields(*list[size_t(index)], {entry.mid(colon + 1)}).isEmpty(),
                 qPrintable(entry));
    }
}

void tst_LayerParamFile::missingFileLeavesList()
{
    TestEnvironment env;
    LayerList list = listOf({sampleLayer(0)});
    ReadLayerParamFile(list);
    ReadLayerParamFile(list, env.dataFile(QStringLiteral("nowhere/old.lpl")));
    QCOMPARE(list.size(), size_t(1));
    QCOMPARE(describe(*list[0]), describe(sampleLayer(0)));
    QVERIFY(!QFile::exists(LayerParamFilePath()));
}

void tst_LayerParamFile::rewriteReplacesWhole()
{
    TestEnvironment env;
    const QList<CLayerParam> a = {sampleLayer(0), sampleLayer(1), sampleLayer(2)};
    const QList<CLayerParam> b = {sampleLayer(4)};
    WriteLayerParamFile(listOf(a));
    WriteLayerParamFile(listOf(b));

    const QList<CLayerParam> read = readBack(LayerParamFilePath());
    QCOMPARE(read.size(), 1);
    QCOMPARE(describe(read[0]), describe(afterTrip(b[0])));
    // Nothing half-written or left over beside the file.
    QCOMPARE(QDir(env.dataFile(QString())).entryList(QDir::Files | QDir::Hidden),
             QStringList{"old.lpl"});
}

QTEST_GUILESS_MAIN(tst_LayerParamFile)
#include "tst_layerparamfile.moc"
