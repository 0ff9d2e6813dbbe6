#include "module/parameterchanges.h"

#include <QTest>

#include <functional>
#include <optional>

// Builds a row's old and new record and compares them: the change rows as
// "caption|old|new" and, for library sets, whether they count as equal.
struct Outcome
{
    QStringList rows;
    std::optional<bool> same;
};
using Comparison = std::function<Outcome(bool dual)>;
Q_DECLARE_METATYPE(Comparison)

namespace {

template <typename Record, typename Edit>
Comparison compare(QList<QStringList> (*changes)(const Record &, const Record &, bool), Edit edit)
{
    return [changes, edit](bool dual) {
        Record before, after;
        edit(before, after);
        Outcome outcome;
        for (const QStringList &row : changes(before, after, dual))
            outcome.rows << row.join(QLatin1Char('|'));
        if constexpr (!std::is_same_v<Record, CLayerParam>)
            outcome.same = SameParameters(before, after);
        return outcome;
    };
}

void row(const char *name, const Comparison &comparison, bool dual, const QStringList &expected)
{
    QTest::newRow(name) << comparison << dual << expected;
}

} // namespace

class tst_ParameterChanges : public QObject
{
    Q_OBJECT

private slots:
    void rows_data()
    {
        QTest::addColumn<Comparison>("comparison");
        QTest::addColumn<bool>("dual");
        QTest::addColumn<QStringList>("expected");
        const auto cut = [](auto edit) { return compare<CLibCutSet>(CutSetChanges, edit); };
        const auto sweep = [](auto edit) { return compare<CLibSweepSet>(SweepSetChanges, edit); };
        const auto layer = [](auto edit) { return compare<CLayerParam>(LayerChanges, edit); };

        row("cut: other key and note",
            cut([](auto &a, auto &b) { a.key.power = 30, b.note = "x"; }), true, {});
        row("numbers keep six digits", cut([](auto &a, auto &b) {
                a.speed = 100, b.speed = 100.5, b.compensateSize = 1234567;
            }),
            false, {"Speed|100|100.5", "Compensation size|0.25|1.23457e+06"});
        row("one laser: plain captions, no second laser",
            cut([](auto &, auto &b) { b.laser1.jumpDelay = 5, b.laser2.power = 55; }), false,
            {"Jump Delay|0|5"});
        row("two lasers: powers, then each laser's block", cut([](auto &, auto &b) {
                b.laser1.startDwellTime = 3, b.laser2.startDwellTime = 5, b.laser2.turnPower = 30;
                b.laser1.power = 60, b.laser2.endDwellTime = 7, b.laser1.dwellOn = true;
                b.laser2.dwellPower = 1.5;
            }),
            true,
            {"Max Power-Laser1|0|60", "Corner Power-Laser2|20|30", "Laser ON-Laser1|Close|On",
             "Start dwell time-Laser1|0|3", "Start Dwell Time-Laser2|0|5",
             "End Dwell Time-Laser2|0|7", "Laser Power-Laser2|0|1.5"});
        row("sweep: texts of mode, offset, resolution",
            sweep([](auto &, auto &b) { b.dpi = 19, b.offsetType = 1, b.mode = 1; }), false,
            {"Mode|HoriZontal bidirectional|HoriZontal one-way",
             "Engraving direction|Inside out|Outside in", "Resolution|50|9999"});
        row("cut layer: line block only", layer([](auto &, auto &b) {
                b.SWEEP.SWEEP_SPEED = 300, b.CUT.CUTTING_NUMBER = 3, b.BLOW = false;
                b.CUT.LASER2.ENABLE = true, b.CUT.LASER2.FREQ = 20000;
            }),
            true,
            {"Air Assist|High|Low", "Laser tube-Laser2|Close|On", "Frequency-Laser2|4000|20000",
             "Processing Times|1|3"});
        row("fill layer: title case offset", layer([](auto &a, auto &b) {
                a.WORK_TYPE = b.WORK_TYPE = WORK_DEEP_ENGRAVE, b.CUT.CUT_SPEED = 50;
                b.SWEEP.SWEEP_OFFSET_TYPE = b.SWEEP.SWEEP_VERT_TYPE = 1, b.SWEEP.SWEEP_DPI = -1;
            }),
            false,
            {"Engraving direction|Top to bottom|Bottom to top", "Offset Type|Inside Out|Outside In",
             "Resolution|300|9999"});
        row("mark layer: air assist only", layer([](auto &a, auto &b) {
                a.WORK_TYPE = b.WORK_TYPE = WORK_MARK, b.CUT.CUT_SPEED = b.SWEEP.SWEEP_SPEED = 5;
            }),
            true, {});
    }

    void rows()
    {
        QFETCH(Comparison, comparison);
        QFETCH(bool, dual);
        QFETCH(QStringList, expected);

        const Outcome outcome = comparison(dual);
        QCOMPARE(outcome.rows, expected);
        // A set holds the same parameters exactly when the summary shows nothing.
        if (outcome.same)
            QCOMPARE(*outcome.same, expected.isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_ParameterChanges)
#include "tst_parameterchanges.moc"
