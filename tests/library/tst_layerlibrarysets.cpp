#include "librarytestdata.h"
#include "library/crunningoptions.h"
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
    void apply_data()
    {
        QTest::addColumn<quint32>("craft");
        for (quint32 craft : {LIB_CRAFT_CUTTING, LIB_CRAFT_SHALLOW, LIB_CRAFT_DEEP})
            QTest::addRow("%s", qPrintable(CraftName(craft))) << craft;
    }

    // A set given to a layer and taken back is the same set; values of like
    // kind land in their own fields; what the library does not keep stays
    // the layer's.
    void apply()
    {
        QFETCH(quint32, craft);
        TestEnvironment env;
        const CLayerParam before = busyLayer();
        CLayerParam layer = before;
        const CLibKey key = libKey("M", 3.0, craft);
        if (IsCutCraft(craft)) {
            const CLibCutSet set = sampleCutSet(key);
            ApplyCutSet(set, layer);
            CLibCutSet back;
            back.key = key;
            back.note = set.note;
            FillCutSet(layer, back);
            QCOMPARE(back, set);
            const CutParam &cut = layer.CUT;
            QCOMPARE((std::vector<double>{cut.CUT_SPEED, cut.LASER1.POWER_MAX, cut.LASER1.POWER_MIN,
                                          double(cut.LASER2.FREQ), double(cut.LASER1.START_DWELL_TIME),
                                          double(cut.LASER2.END_DWELL_TIME), cut.CUT_JOINT_LEN,
                                          cut.CUT_BRIDGES_SPACE, cut.CUT_BRIDGES_LEN, cut.GUIDE_IN_LEN,
                                          cut.GUIDE_OUT_LEN, cut.CUT_COMPENSATE_SIZE}),
                     (std::vector<double>{12.5, 55.5, 11.25, 3000, 7, 6, 0.75, 12.0, 1.5, 2.5, 3.5, 0.1}));
            QCOMPARE(cut.PEN, (PenParam{true, false, true, 4.5, 6.5}));
            QVERIFY(layer.BLOW && !cut.CUT_COMPENSATE_OUTWARD);
            // Lasers on and passes are the layer's own.
            QVERIFY(!cut.LASER1.ENABLE && cut.LASER2.ENABLE && cut.CUTTING_NUMBER == 4);
            QCOMPARE(layer.SWEEP, before.SWEEP);
        } else {
            const CLibSweepSet set = sampleSweepSet(key);
            ApplySweepSet(set, layer);
            const SweepParam &sweep = layer.SWEEP;
            QCOMPARE((std::vector<double>{sweep.SWEEP_SPEED, sweep.LASER1.POWER_MAX, sweep.LASER2.POWER_MAX,
                                          double(sweep.LASER2.JUMP_DELAY), double(sweep.SWEEP_TYPE),
                                          sweep.SWEEP_INCLINE_LEN, sweep.SWEEP_STEP}),
                     (std::vector<double>{300.5, 33.25, 22.5, 7, 1, 2.25, 0.05}));
            QCOMPARE(sweep.PEN, (PenParam{true, true, false, 2.5, 5.5}));
            // Ramp and passes travel for deep carving only.
            const bool deep = craft == LIB_CRAFT_DEEP;
            QCOMPARE(sweep.SWEEP_ISRAMP, deep ? true : before.SWEEP.SWEEP_ISRAMP);
            QCOMPARE(sweep.LASER1.POWER_MIN, deep ? 10.5 : before.SWEEP.LASER1.POWER_MIN);
            QCOMPARE(sweep.CARVING_NUMBER, deep ? 3 : before.SWEEP.CARVING_NUMBER);
            QVERIFY(sweep.LASER1.DWELL_POWER == 4.0 && sweep.LASER2.ENABLE && sweep.SWEEP_VERT_TYPE == 2);
            QCOMPARE(layer.CUT, before.CUT);

            CLibSweepSet back;
            back.key = key;
            back.note = set.note;
            FillSweepSet(layer, back);
            CLibSweepSet expected = set;
            // The top of a slope is the layer's power.
            expected.maxPower = deep ? set.laser1.power : back.maxPower;
            if (!deep) {
                expected.isRamp = false;
                expected.minPower = expected.maxPower = 0.0;
                expected.carvingNumber = 0;
            }
            QCOMPARE(back, expected);
        }
        QVERIFY(layer.WORK_TYPE == before.WORK_TYPE && layer.COLOR == before.COLOR && layer.LINK.LINK_VALUE == 99);
    }
};

QTEST_GUILESS_MAIN(tst_LayerLibrarySets)
#include "tst_layerlibrarysets.moc"
