#include "module/parameterchanges.h"

#include "ctranslator.h"

#include <QTest>

#include <functional>

// One comparison: the old and new records are made by the row, compared with
// the dual-laser flag given.
using Comparison = std::function<QList<QStringList>(bool dual)>;
Q_DECLARE_METATYPE(Comparison)

class tst_ParameterChanges : public QObject
{
    Q_OBJECT

private slots:
    void rows_data();
    void rows();
    void translatedLaserCaption();
    void sameParameters();
};

namespace {

template <typename Record>
Comparison compare(QList<QStringList> (*changes)(const Record &, const Record &, bool),
                   std::function<void(Record &, Record &)> edit)
{
    return [changes, edit](bool dual) {
        Record before;
        Record after;
        edit(before, after);
        return changes(before, after, dual);
    };
}

Comparison cut(std::function<void(CLibCutSet &, CLibCutSet &)> edit)
{
    return compare<CLibCutSet>(CutSetChanges, std::move(edit));
}

Comparison sweep(std::function<void(CLibSweepSet &, CLibSweepSet &)> edit)
{
    return compare<CLibSweepSet>(SweepSetChanges, std::move(edit));
}

Comparison layer(std::function<void(CLayerParam &, CLayerParam &)> edit)
{
    return compare<CLayerParam>(LayerChanges, std::move(edit));
}

} // namespace

void tst_ParameterChanges::rows_data()
{
    QTest::addColumn<Comparison>("comparison");
    QTest::addColumn<bool>("dual");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("equal cut sets, other key and note") << cut([](CLibCutSet &a, CLibCutSet &b) {
        a.key.material = QStringLiteral("Oak");
        b.note = QStringLiteral("new note");
    }) << true << QStringList();
    QTest::newRow("speed keeps its decimals") << cut([](CLibCutSet &a, CLibCutSet &b) {
        a.speed = 100;
        b.speed = 100.5;
    }) << false << QStringList{"Speed|100|100.5"};
    QTest::newRow("six significant digits")
        << cut([](CLibCutSet &, CLibCutSet &b) { b.compensateSize = 1234567.0; }) << false
        << QStringList{"Compensation size|0.25|1.23457e+06"};
    QTest::newRow("on/off and air assist in order")
        << cut([](CLibCutSet &, CLibCutSet &b) {
               b.bridges = true;
               b.blowing = true;
               b.pen.enableUpDown = true;
           })
        << false
        << QStringList{"Air Assist|Low|High", "Use Tabs|Close|On", "Enable Dynamic Focus|Close|On"};
    QTest::newRow("one laser: no second laser rows, plain captions")
        << cut([](CLibCutSet &, CLibCutSet &b) {
               b.laser1.jumpDelay = 5;
               b.laser2.power = 55;
               b.laser2.startDwellTime = 9;
           })
        << false << QStringList{"Jump Delay|0|5"};
    QTest::newRow("two lasers: powers first, then each laser's block")
        << cut([](CLibCutSet &, CLibCutSet &b) {
               b.laser1.startDwellTime = 3;
               b.laser2.startDwellTime = 5;
               b.laser2.turnPower = 30;
               b.laser1.power = 60;
               b.laser2.endDwellTime = 7;
               b.laser1.dwellOn = true;
           })
        << true << QStringList{"Max Power-Laser1|0|60",       "Corner Power-Laser2|20|30",
                               "Laser ON-Laser1|Close|On",    "Start dwell time-Laser1|0|3",
                               "Start Dwell Time-Laser2|0|5", "End Dwell Time-Laser2|0|7"};
    QTest::newRow("sweep: mode, offset direction in lower case, resolution")
        << sweep([](CLibSweepSet &, CLibSweepSet &b) {
               b.dpi = 19;
               b.offsetType = 1;
               b.mode = 1;
               b.is3DRelief = true;
           })
        << false
        << QStringList{"3D Relief|Close|On", "Mode|HoriZontal bidirectional|HoriZontal one-way",
                       "Engraving direction|Inside out|Outside in", "Resolution|50|9999"};
    QTest::newRow("sweep: powers and delays per laser")
        << sweep([](CLibSweepSet &a, CLibSweepSet &b) {
               a.dpi = 6;
               b.dpi = 18;
               b.laser2.cornerDelay = 4;
               b.minPower = 12.5;
               b.laser2.power = 40;
               b.carvingNumber = 2;
           })
        << true
        << QStringList{"Min Power-Laser1|0|12.5", "Max Power-Laser2|20|40",
                       "Corner Delay-Laser2|0|4", "Processing Times|0|2", "Resolution|300|4000"};
    QTest::newRow("equal layers") << layer([](CLayerParam &, CLayerParam &) {}) << true
                                  << QStringList();
    QTest::newRow("cut layer: line block only")
        << layer([](CLayerParam &, CLayerParam &b) {
               b.SWEEP.SWEEP_SPEED = 300;
               b.CUT.CUTTING_NUMBER = 3;
               b.CUT.LASER2.ENABLE = true;
               b.CUT.LASER2.FREQ = 20000;
               b.BLOW = false;
           })
        << true
        << QStringList{"Air Assist|High|Low", "Laser tube-Laser2|Close|On",
                       "Frequency-Laser2|4000|20000", "Processing Times|1|3"};
    QTest::newRow("fill layer: title case offset, direction")
        << layer([](CLayerParam &a, CLayerParam &b) {
               a.WORK_TYPE = b.WORK_TYPE = WORK_DEEP_ENGRAVE;
               b.CUT.CUT_SPEED = 50;
               b.SWEEP.SWEEP_OFFSET_TYPE = 1;
               b.SWEEP.SWEEP_VERT_TYPE = 1;
               b.SWEEP.LASER1.PULSE_WIDTH = 300;
               b.SWEEP.SWEEP_DPI = -1;
           })
        << false
        << QStringList{"Pulse Width|250|300", "Engraving direction|Top to bottom|Bottom to top",
                       "Offset Type|Inside Out|Outside In", "Resolution|300|9999"};
    QTest::newRow("mark layer: air assist only") << layer([](CLayerParam &a, CLayerParam &b) {
        a.WORK_TYPE = b.WORK_TYPE = WORK_MARK;
        b.CUT.CUT_SPEED = 50;
        b.SWEEP.SWEEP_SPEED = 50;
    }) << true << QStringList();
}

void tst_ParameterChanges::rows()
{
    QFETCH(Comparison, comparison);
    QFETCH(bool, dual);
    QFETCH(QStringList, expected);

    QStringList rows;
    const QList<QStringList> changes = comparison(dual);
    for (const QStringList &row : changes)
        rows << row.join(QLatin1Char('|'));
    QCOMPARE(rows, expected);
}

void tst_ParameterChanges::translatedLaserCaption()
{
    CTranslator *translator = CTranslator::GetInstance();
    translator->SetResourceDir(QStringLiteral(LAYERMGR_SOURCE_DIR "/resources"));
    translator->SetLanguage(QStringLiteral("Chs"));
    CLibCutSet before;
    CLibCutSet after;
    after.laser2.jumpDelay = 8;
    after.laser2.dwellMode = true;
    const QList<QStringList> rows = CutSetChanges(before, after, true);
    translator->SetLanguage(QString());
    translator->SetResourceDir(QString());

    QCOMPARE(rows.size(), 2);
    QCOMPARE(rows.at(0), (QStringList{QStringLiteral("跳转延时-激光2"), "0", "8"}));
    QCOMPARE(rows.at(1), (QStringList{QStringLiteral("使用激光停留模式-激光2"),
                                      QStringLiteral("关"), QStringLiteral("开")}));
}

void tst_ParameterChanges::sameParameters()
{
    CLibCutSet cutA;
    CLibCutSet cutB;
    cutB.key.power = 130;
    cutB.note = QStringLiteral("other");
    QVERIFY(SameParameters(cutA, cutB));
    cutB.laser2.dwellPower = 1.5;
    QVERIFY(!SameParameters(cutA, cutB));

    CLibSweepSet sweepA;
    CLibSweepSet sweepB;
    sweepB.key.craft = LIB_CRAFT_DEEP;
    sweepB.note = QStringLiteral("other");
    QVERIFY(SameParameters(sweepA, sweepB));
    sweepB.pen.upHeight = 4.0;
    QVERIFY(!SameParameters(sweepA, sweepB));
}

QTEST_GUILESS_MAIN(tst_ParameterChanges)
#include "tst_parameterchanges.moc"
