#include "module/parameterchanges.h"

#include "ctranslator.h"

#include <QTest>

#include <functional>

// Makes the old and new records of a row and compares them.
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

template<typename Record, typename Edit>
Comparison compare(QList<QStringList> (*changes)(const Record &, const Record &, bool), Edit edit)
{
    return [changes, edit](bool dual) {
        Record before, after;
        edit(before, after);
        return changes(before, after, dual);
    };
}

template<typename Edit>
Comparison cut(Edit edit)
{
    return compare<CLibCutSet>(CutSetChanges, edit);
}

template<typename Edit>
Comparison sweep(Edit edit)
{
    return compare<CLibSweepSet>(SweepSetChanges, edit);
}

template<typename Edit>
Comparison layer(Edit edit)
{
    return compare<CLayerParam>(LayerChanges, edit);
}

} // namespace

void tst_ParameterChanges::rows_data()
{
    QTest::addColumn<Comparison>("comparison");
    QTest::addColumn<bool>("dual");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("equal sets, other key and note")
        << cut([](auto &a, auto &b) { a.key.power = 30, b.note = "x"; }) << true << QStringList();
    QTest::newRow("numbers keep six digits")
        << cut([](auto &a, auto &b) { a.speed = 100, b.speed = 100.5, b.compensateSize = 1234567; })
        << false << QStringList{"Speed|100|100.5", "Compensation size|0.25|1.23457e+06"};
    QTest::newRow("switches and air assist, in order")
        << cut([](auto &, auto &b) { b.bridges = b.blowing = b.pen.enableUpDown = true; }) << false
        << QStringList{"Air Assist|Low|High", "Use Tabs|Close|On", "Enable Dynamic Focus|Close|On"};
    QTest::newRow("one laser: plain captions, no second laser")
        << cut([](auto &, auto &b) { b.laser1.jumpDelay = 5, b.laser2.power = 55; }) << false
        << QStringList{"Jump Delay|0|5"};
    QTest::newRow("two lasers: powers, then each laser's block")
        << cut([](auto &, auto &b) {
               b.laser1.startDwellTime = 3, b.laser2.startDwellTime = 5, b.laser2.turnPower = 30;
               b.laser1.power = 60, b.laser2.endDwellTime = 7, b.laser1.dwellOn = true;
           })
        << true
        << QStringList{"Max Power-Laser1|0|60",       "Corner Power-Laser2|20|30",
                       "Laser ON-Laser1|Close|On",    "Start dwell time-Laser1|0|3",
                       "Start Dwell Time-Laser2|0|5", "End Dwell Time-Laser2|0|7"};
    QTest::newRow("sweep: texts of mode, offset, resolution")
        << sweep([](auto &, auto &b) { b.dpi = 19, b.offsetType = 1, b.mode = 1; }) << false
        << QStringList{"Mode|HoriZontal bidirectional|HoriZontal one-way",
                       "Engraving direction|Inside out|Outside in", "Resolution|50|9999"};
    QTest::newRow("sweep: per laser order")
        << sweep([](auto &, auto &b) {
               b.laser2.cornerDelay = 4, b.minPower = 12.5, b.laser2.power = 40;
               b.carvingNumber = 2, b.dpi = 18;
           })
        << true
        << QStringList{"Min Power-Laser1|0|12.5", "Max Power-Laser2|20|40",
                       "Corner Delay-Laser2|0|4", "Processing Times|0|2", "Resolution|50|4000"};
    QTest::newRow("cut layer: line block only")
        << layer([](auto &, auto &b) {
               b.SWEEP.SWEEP_SPEED = 300, b.CUT.CUTTING_NUMBER = 3, b.BLOW = false;
               b.CUT.LASER2.ENABLE = true, b.CUT.LASER2.FREQ = 20000;
           })
        << true
        << QStringList{"Air Assist|High|Low", "Laser tube-Laser2|Close|On",
                       "Frequency-Laser2|4000|20000", "Processing Times|1|3"};
    QTest::newRow("fill layer: title case offset")
        << layer([](auto &a, auto &b) {
               a.WORK_TYPE = b.WORK_TYPE = WORK_DEEP_ENGRAVE, b.CUT.CUT_SPEED = 50;
               b.SWEEP.SWEEP_OFFSET_TYPE = b.SWEEP.SWEEP_VERT_TYPE = 1, b.SWEEP.SWEEP_DPI = -1;
           })
        << false
        << QStringList{"Engraving direction|Top to bottom|Bottom to top",
                       "Offset Type|Inside Out|Outside In", "Resolution|300|9999"};
    QTest::newRow("mark layer: air assist only")
        << layer([](auto &a, auto &b) {
               a.WORK_TYPE = b.WORK_TYPE = WORK_MARK, b.CUT.CUT_SPEED = b.SWEEP.SWEEP_SPEED = 5;
           })
        << true << QStringList();
}

void tst_ParameterChanges::rows()
{
    QFETCH(Comparison, comparison);
    QFETCH(bool, dual);
    QFETCH(QStringList, expected);

    QStringList rows;
    for (const QStringList &row : comparison(dual))
        rows << row.join(QLatin1Char('|'));
    QCOMPARE(rows, expected);
}

void tst_ParameterChanges::translatedLaserCaption()
{
    CTranslator *translator = CTranslator::GetInstance();
    translator->SetResourceDir(QStringLiteral(LAYERMGR_SOURCE_DIR "/resources"));
    translator->SetLanguage(QStringLiteral("Chs"));
    CLibCutSet before, after;
    after.laser2.dwellMode = true;
    const QList<QStringList> rows = CutSetChanges(before, after, true);
    translator->SetLanguage(QString());
    translator->SetResourceDir(QString());
    QCOMPARE(rows, (QList<QStringList>{{"使用激光停留模式-激光2", "关", "开"}}));
}

void tst_ParameterChanges::sameParameters()
{
    CLibCutSet cutA, cutB;
    cutB.key.power = 130;
    cutB.note = QStringLiteral("other");
    QVERIFY(SameParameters(cutA, cutB));
    cutB.laser2.dwellPower = 1.5;
    QVERIFY(!SameParameters(cutA, cutB));

    CLibSweepSet sweepA, sweepB;
    sweepB.key.craft = LIB_CRAFT_DEEP;
    sweepB.note = QStringLiteral("other");
    QVERIFY(SameParameters(sweepA, sweepB));
    sweepB.pen.upHeight = 4.0;
    QVERIFY(!SameParameters(sweepA, sweepB));
}

QTEST_GUILESS_MAIN(tst_ParameterChanges)
#include "tst_parameterchanges.moc"
