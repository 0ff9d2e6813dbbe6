#include "librarytestdata.h"
#include "module/layerlibrarysets.h"
#include "testenvironment.h"

#include <QTest>

namespace {

// A layer whose every field differs from both the defaults and the samples.
CLayerParam busyLayer()
{
    CLayerParam layer(0x123456);
    layer.WORK_TYPE = WORK_DEEP_ENGRAVE;
    layer.BLOW = false;
    layer.CUT.LASER1.ENABLE = false;
    layer.CUT.LASER2.ENABLE = true;
    layer.CUT.CUTTING_NUMBER = 4;
    layer.SWEEP.LASER2.ENABLE = true;
    layer.SWEEP.LASER1.POWER_MIN = 17.0;
    layer.SWEEP.SWEEP_ISRAMP = true;
    layer.SWEEP.CARVING_NUMBER = 6;
    layer.SWEEP.SWEEP_VERT_TYPE = 2;
    layer.SWEEP.LASER1.DWELL_POWER = 4.0;
    layer.LINK.LINK_VALUE = 99;
    return layer;
}

} // namespace

class tst_LayerLibrarySets : public QObject
{
    Q_OBJECT

private slots:
    void applyCutSet_data()
    {
        QTest::addColumn<quint32>("craft");
        QTest::newRow("cutting") << 0u;
        QTest::newRow("tracing") << 1u;
    }

    void applyCutSet()
    {
        QFETCH(quint32, craft);
        TestEnvironment env;
        const CLibCutSet set = sampleCutSet(libKey(QStringLiteral("M"), 3.0, craft));
        const CLayerParam before = busyLayer();
        CLayerParam layer = before;
        ApplyCutSet(set, layer);

        QCOMPARE(layer.BLOW, true);
        const CutParam &cut = layer.CUT;
        QCOMPARE(cut.CUT_SPEED, 12.5);
        QCOMPARE(cut.LASER1.POWER_MAX, 55.5);
        QCOMPARE(cut.LASER1.POWER_MIN, 11.25);
        QCOMPARE(cut.LASER1.FREQ, 2000);
        QCOMPARE(cut.LASER1.PULSE_WIDTH, 300);
        QCOMPARE(cut.LASER1.JUMP_DELAY, 1);
        QCOMPARE(cut.LASER1.CORNER_DELAY, 2);
        QCOMPARE(cut.LASER1.DWELL_MODE, true);
        QCOMPARE(cut.LASER1.DWELL_ON, false);
        QCOMPARE(cut.LASER1.START_DWELL, true);
        QCOMPARE(cut.LASER1.END_DWELL, false);
        QCOMPARE(cut.LASER1.START_DWELL_TIME, 7);
        QCOMPARE(cut.LASER1.END_DWELL_TIME, 8);
        QCOMPARE(cut.LASER1.DWELL_POWER, 9.5);
        QCOMPARE(cut.LASER2.POWER_MAX, 44.0);
        QCOMPARE(cut.LASER2.POWER_MIN, 22.0);
        QCOMPARE(cut.LASER2.FREQ, 3000);
        QCOMPARE(cut.LASER2.PULSE_WIDTH, 400);
        QCOMPARE(cut.LASER2.DWELL_ON, true);
        QCOMPARE(cut.LASER2.END_DWELL_TIME, 6);
        QCOMPARE(cut.CUT_JOINT_LEN, 0.75);
        QCOMPARE(cut.CUT_BRIDGES, true);
        QCOMPARE(cut.CUT_BRIDGES_SPACE, 12.0);
        QCOMPARE(cut.CUT_BRIDGES_LEN, 1.5);
        QCOMPARE(cut.USE_GUIDE_LINE, true);
        QCOMPARE(cut.GUIDE_TYPE, 2);
        QCOMPARE(cut.IS_GUIDE_IN, 1);
        QCOMPARE(cut.GUIDE_IN_LEN, 2.5);
        QCOMPARE(cut.IS_GUIDE_OUT, 1);
        QCOMPARE(cut.GUIDE_OUT_LEN, 3.5);
        QCOMPARE(cut.PEN, (PenParam{true, false, true, 4.5, 6.5}));
        QCOMPARE(cut.CUT_COMPENSATE_ENABLE, true);
        QCOMPARE(cut.CUT_COMPENSATE_OUTWARD, false);
        QCOMPARE(cut.CUT_COMPENSATE_SIZE, 0.1);

        // What the library does not hold stays the layer's.
        QCOMPARE(cut.LASER1.ENABLE, false);
        QCOMPARE(cut.LASER2.ENABLE, true);
        QCOMPARE(cut.CUTTING_NUMBER, 4);
        QCOMPARE(layer.WORK_TYPE, before.WORK_TYPE);
        QCOMPARE(layer.COLOR, before.COLOR);
        QCOMPARE(layer.SWEEP, before.SWEEP);
        QCOMPARE(layer.LINK.LINK_VALUE, qint64(99));

        // And back: the set comes out as it went in.
        CLibCutSet filled;
        filled.key = set.key;
        filled.note = set.note;
        FillCutSet(layer, filled);
        QCOMPARE(filled, set);
    }

    void applySweepSet_data()
    {
        QTest::addColumn<quint32>("craft");
        QTest::addColumn<bool>("deep");
        QTest::newRow("shallow carving") << 2u << false;
        QTest::newRow("deep carving") << 3u << true;
    }

    void applySweepSet()
    {
        QFETCH(quint32, craft);
        QFETCH(bool, deep);
        TestEnvironment env;
        const CLibSweepSet set = sampleSweepSet(libKey(QStringLiteral("M"), 3.0, craft));
        const CLayerParam before = busyLayer();
        CLayerParam layer = before;
        ApplySweepSet(set, layer);

        const SweepParam &sweep = layer.SWEEP;
        QCOMPARE(layer.BLOW, false);
        QCOMPARE(sweep.SWEEP_SPEED, 300.5);
        QCOMPARE(sweep.LASER1.POWER_MAX, 33.25);
        QCOMPARE(sweep.LASER1.FREQ, 5000);
        QCOMPARE(sweep.LASER1.PULSE_WIDTH, 600);
        QCOMPARE(sweep.LASER1.JUMP_DELAY, 5);
        QCOMPARE(sweep.LASER1.CORNER_DELAY, 6);
        QCOMPARE(sweep.LASER2.POWER_MAX, 22.5);
        QCOMPARE(sweep.LASER2.FREQ, 6000);
        QCOMPARE(sweep.LASER2.PULSE_WIDTH, 700);
        QCOMPARE(sweep.LASER2.JUMP_DELAY, 7);
        QCOMPARE(sweep.LASER2.CORNER_DELAY, 8);
        QCOMPARE(sweep.SWEEP_DPI, 4);
        QCOMPARE(sweep.SWEEP_TYPE, 1);
        QCOMPARE(sweep.SWEEP_INCLINE_LEN, 2.25);
        QCOMPARE(sweep.SWEEP_IS3DRELIEF, true);
        QCOMPARE(sweep.SWEEP_OFFSET_ENGRAVING, true);
        QCOMPARE(sweep.SWEEP_OFFSET_TYPE, 2);
        QCOMPARE(sweep.SWEEP_STEP, 0.05);
        QCOMPARE(sweep.PEN, (PenParam{true, true, false, 2.5, 5.5}));
        // Ramp and passes travel for deep carving only.
        QCOMPARE(sweep.SWEEP_ISRAMP, deep ? true : before.SWEEP.SWEEP_ISRAMP);
        QCOMPARE(sweep.LASER1.POWER_MIN, deep ? 10.5 : before.SWEEP.LASER1.POWER_MIN);
        QCOMPARE(sweep.CARVING_NUMBER, deep ? 3 : before.SWEEP.CARVING_NUMBER);
        QCOMPARE(sweep.LASER1.DWELL_POWER, 4.0);
        QCOMPARE(sweep.LASER2.ENABLE, true);
        QCOMPARE(sweep.SWEEP_VERT_TYPE, 2);
        QCOMPARE(layer.CUT, before.CUT);
    }

    void fillSetsFromLayer()
    {
        TestEnvironment env;
        CLayerParam layer = busyLayer();
        layer.SWEEP.LASER1.POWER_MAX = 70.0;

        CLibSweepSet deep;
        deep.key = libKey(QStringLiteral("M"), 3.0, 3);
        deep.note = QStringLiteral("kept");
        FillSweepSet(layer, deep);
        QCOMPARE(deep.isRamp, true);
        QCOMPARE(deep.minPower, 17.0);
        QCOMPARE(deep.maxPower, 70.0);
        QCOMPARE(deep.carvingNumber, 6);
        QCOMPARE(deep.laser1.power, 70.0);
        QCOMPARE(deep.blowing, false);
        QCOMPARE(deep.note, QStringLiteral("kept"));
        QCOMPARE(deep.key, libKey(QStringLiteral("M"), 3.0, 3));

        CLibSweepSet shallow;
        shallow.key = libKey(QStringLiteral("M"), 3.0, 2);
        FillSweepSet(layer, shallow);
        const CLibSweepSet defaults;
        QCOMPARE(shallow.isRamp, defaults.isRamp);
        QCOMPARE(shallow.carvingNumber, defaults.carvingNumber);
        QCOMPARE(shallow.laser1.power, 70.0);

        // A fresh layer's cut values make a set that gives the same layer back.
        CLayerParam fresh(1);
        CLibCutSet cut;
        FillCutSet(fresh, cut);
        CLayerParam again(1);
        again.CUT.CUT_SPEED = 500;
        again.BLOW = false;
        ApplyCutSet(cut, again);
        QCOMPARE(again, fresh);
    }
};

QTEST_GUILESS_MAIN(tst_LayerLibrarySets)
#include "tst_layerlibrarysets.moc"
