#include "layertestdata.h"
#include "module/layerparamfile.h"
#include "testenvironment.h"

#include <QDir>
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

} // namespace

class tst_LayerParamFile : public QObject
{
    Q_OBJECT

private slots:
    void writeAndRead();
    void reading_data();
    void reading();
};

void tst_LayerParamFile::writeAndRead()
{
    TestEnvironment env;
    CLayerParam first = sampleLayer(0);
    first.SWEEP.SWEEP_SPEED = 0.1;
    first.CUT.CUT_COMPENSATE_SIZE = 1.0 / 3.0;
    WriteLayerParamFile(listOf({first, CLayerParam(0x00FF00)}));

    // Keys and number formats are what files of every earlier release hold.
    QFile expected(QStringLiteral(LAYERMGR_SOURCE_DIR "/tests/module/data/written.lpl"));
    QVERIFY(expected.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(env.readFile(QStringLiteral("old.lpl"))).split(QLatin1Char('\n')),
             QString::fromUtf8(expected.readAll()).split(QLatin1Char('\n')));

    // Every key comes back into the field it was written from: the record
    // read, written again, gives the same bytes. The fill delays are read
    // from the line keys, so they start equal here. A shorter list replaces
    // the whole file, with nothing left beside it.
    CLayerParam other = sampleLayer(4);
    for (auto [fill, line] : {std::pair{&other.SWEEP.LASER1, &other.CUT.LASER1},
                              std::pair{&other.SWEEP.LASER2, &other.CUT.LASER2}}) {
        fill->JUMP_DELAY = line->JUMP_DELAY;
        fill->CORNER_DELAY = line->CORNER_DELAY;
    }
    WriteLayerParamFile(listOf({other}));
    const QByteArray once = env.readFile(QStringLiteral("old.lpl"));
    LayerList list;
    ReadLayerParamFile(list, LayerParamFilePath());
    QCOMPARE(list.size(), size_t(1));
    WriteLayerParamFile(list);
    QCOMPARE(env.readFile(QStringLiteral("old.lpl")), once);
    QCOMPARE(QDir(env.dataFile(QString())).entryList(QDir::Files | QDir::Hidden),
             QStringList{"old.lpl"});
}

void tst_LayerParamFile::reading_data()
{
    // clang-format off
    QTest::addColumn<QByteArray>("ini"); // null: no file
    QTest::addColumn<int>("records");
    // "record:FIELD=value" entries the records must show.
    QTest::addColumn<QStringList>("expect");

    const QByteArray one("[LAYER_PARAMS]\nLAYER_COUNT=1\n[LAYER0]\n");
    QTest::newRow("no file") << QByteArray() << 0 << QStringList();
    QTest::newRow("count 2 of three sections") << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=2\n[LAYER0]\nCOLOR=1\n[LAYER1]\nCOLOR=2\n[LAYER2]\nCOLOR=3\n")
        << 2 << QStringList{"0:COLOR=1", "1:COLOR=2"};
    QTest::newRow("fill delays from the line keys") << one + "SWEEP_LASER1_JUMP_DELAY=5\nCUT_LASER1_JUMP_DELAY=7\nSWEEP_LASER2_CORNER_DELAY=9\nCUT_LASER2_CORNER_DELAY=4\nCUT_LASER1_CORNER_DELAY=3\n"
        << 1 << QStringList{"0:CUT.LASER1.JUMP_DELAY=7", "0:SWEEP.LASER1.JUMP_DELAY=7", "0:SWEEP.LASER2.CORNER_DELAY=4", "0:CUT.LASER2.CORNER_DELAY=4", "0:SWEEP.LASER1.CORNER_DELAY=3"};
    QTest::newRow("laser 2 delay falls back to laser 1") << one + "CUT_LASER1_JUMP_DELAY=7\nSWEEP_LASER2_JUMP_DELAY=9\n"
        << 1 << QStringList{"0:SWEEP.LASER2.JUMP_DELAY=7", "0:CUT.LASER2.JUMP_DELAY=0"};
    QTest::newRow("any non-zero is true") << one + "OUTPUT=2\nBLOW=0\nCUT_BRIDGES=-1\nCUT_LASER2_ENABLE=1\nCUT_LASER1_ENABLE=0\n"
        << 1 << QStringList{"0:OUTPUT=true", "0:BLOW=false", "0:CUT.CUT_BRIDGES=true", "0:CUT.LASER2.ENABLE=true", "0:CUT.LASER1.ENABLE=false"};
    QTest::newRow("text where a number belongs") << one + "COLOR=red\nCUT_LASER1_FREQ=abc\nCUT_SPEED=fast\nOUTPUT=yes\n"
        << 1 << QStringList{"0:COLOR=0", "0:CUT.LASER1.FREQ=0", "0:CUT.CUT_SPEED=0", "0:OUTPUT=false"};
    QTest::newRow("missing keys keep defaults") << one + "COLOR=5\n"
        << 1 << QStringList{"0:COLOR=5", "0:CUT.CUT_SPEED=1", "0:SWEEP.SWEEP_DPI=6", "0:CUT.CUT_COMPENSATE_OUTWARD=true", "0:SWEEP.LASER2.ENABLE=false", "0:CUT.LASER1.FREQ=4000"};
    QTest::newRow("missing section") << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=2\n[LAYER1]\nCOLOR=9\n")
        << 2 << QStringList{"0:COLOR=0", "0:OUTPUT=true", "0:CUT.LASER1.ENABLE=true", "1:COLOR=9"};
    QTest::newRow("keys not kept are not read") << one + "AUX_INDEX=7\nFILL_LOCKED=1\nSWEEP_VERT_TYPE=3\nCUT_COMPENSATE_ENABLE=1\nSWEEP_LASER1_DWELL_ON=1\nSWEEP_LASER1_DWELL_POWER=5\nSWEEP_STEP=0.5\nSELECTED=1\n"
        << 1 << QStringList{"0:AUX_INDEX=-1", "0:FILL_LOCKED=false", "0:SWEEP.SWEEP_VERT_TYPE=0", "0:CUT.CUT_COMPENSATE_ENABLE=false", "0:SWEEP.LASER1.DWELL_ON=false", "0:SWEEP.LASER1.DWELL_POWER=0", "0:SWEEP.SWEEP_STEP=0.1", "0:SELECTED=false"};
    QTest::newRow("negative count") << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=-3\n[LAYER0]\nCOLOR=1\n") << 0 << QStringList();
    QTest::newRow("absurd count") << QByteArray("[LAYER_PARAMS]\nLAYER_COUNT=2000000000\n[LAYER0]\nCOLOR=1\n") << 65536 << QStringList{"0:COLOR=1", "65535:COLOR=0"};
    QTest::newRow("garbage") << QByteArray::fromHex("00ff5b0a3d3d0a5d4c415945525f504152414d535d0d0a4c415945") << 0 << QStringList();
    QTest::newRow("garbage after the count") << one + "COLOR=4\n\x01\x02=\xff\n[[\n==\n" << 1 << QStringList{"0:COLOR=4"};
    // clang-format on
}

void tst_LayerParamFile::reading()
{
    QFETCH(QByteArray, ini);
    QFETCH(int, records);
    QFETCH(QStringList, expect);
    TestEnvironment env;
    if (!ini.isNull())
        QVERIFY(env.writeFile(QStringLiteral("old.lpl"), ini));

    // What the list held stays; the file's records come behind it.
    LayerList list = listOf({sampleLayer(0)});
    ReadLayerParamFile(list);
    QCOMPARE(int(list.size()), 1 + records);
    QCOMPARE(describe(*list[0]), describe(sampleLayer(0)));
    for (const QString &entry : expect) {
        const qsizetype colon = entry.indexOf(QLatin1Char(':'));
        const size_t index = 1 + entry.left(colon).toUInt();
        QVERIFY2(describe(*list[index]).contains(entry.mid(colon + 1)), qPrintable(entry));
    }
    QCOMPARE(QFile::exists(LayerParamFilePath()), !ini.isNull());
}

QTEST_GUILESS_MAIN(tst_LayerParamFile)
#include "tst_layerparamfile.moc"
