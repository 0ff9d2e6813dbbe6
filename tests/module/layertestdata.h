#pragma once

// Layer records with a distinct value in every field, and a field-by-field
// text form of a record so that a failed comparison names the field.

#include "module/clayerparam.h"

#include <QLocale>
#include <QString>
#include <QStringList>

namespace layertest {

// Record i of a family: every number differs from every other field's and
// from the default; every bool gets its own on/off pattern over six records,
// so two swapped fields never read back alike. Work types are fill processes,
// which keep FILL_LOCKED.
inline CLayerParam sampleLayer(int i)
{
    int k = 0;
    auto n = [&] { return qint32((i + 1) * 1000 + ++k); };
    auto d = [&] { return (i + 1) * 1000.0 + ++k + 0.375; };
    int b = 0;
    auto f = [&] { return (((++b) >> (i % 6)) & 1) != 0; };
    auto laser = [&](LaserParam &l) {
        l.POWER_MAX = d();
        l.POWER_MIN = d();
        l.FREQ = n();
        l.PULSE_WIDTH = n();
        l.JUMP_DELAY = n();
        l.CORNER_DELAY = n();
        l.ENABLE = f();
        l.DWELL_MODE = f();
        l.DWELL_ON = f();
        l.START_DWELL = f();
        l.END_DWELL = f();
        l.START_DWELL_TIME = n();
        l.END_DWELL_TIME = n();
        l.DWELL_POWER = d();
    };
    auto pen = [&](PenParam &p) {
        p.ENABLE_PEN_UP_DOWN = f();
        p.ENABLE_PEN_DOWN = f();
        p.ENABLE_PEN_UP = f();
        p.PEN_DOWN_HRIGHT = d();
        p.PEN_UP_HRIGHT = d();
    };

    CLayerParam l(0xA00000u + quint32(i) * 0x010203u);
    l.AUX_INDEX = n();
    l.FILL_LOCKED = f();
    l.WORK_TYPE = 2 + i % 3;
    l.OUTPUT = f();
    l.BLOW = f();
    l.SELECTED = f();
    laser(l.CUT.LASER1);
    laser(l.CUT.LASER2);
    l.CUT.CUT_SPEED = d();
    l.CUT.CUT_JOINT_LEN = d();
    l.CUT.CUT_BRIDGES_LEN = d();
    l.CUT.CUT_BRIDGES_SPACE = d();
    l.CUT.CUT_BRIDGES = f();
    l.CUT.CUTTING_NUMBER = n();
    l.CUT.USE_GUIDE_LINE = f();
    l.CUT.GUIDE_TYPE = n();
    l.CUT.IS_GUIDE_IN = n();
    l.CUT.GUIDE_IN_LEN = d();
    l.CUT.IS_GUIDE_OUT = n();
    l.CUT.GUIDE_OUT_LEN = d();
    pen(l.CUT.PEN);
    l.CUT.CUT_COMPENSATE_ENABLE = f();
    l.CUT.CUT_COMPENSATE_OUTWARD = f();
    l.CUT.CUT_COMPENSATE_SIZE = d();
    laser(l.SWEEP.LASER1);
    laser(l.SWEEP.LASER2);
    l.SWEEP.SWEEP_SPEED = d();
    l.SWEEP.SWEEP_TYPE = n();
    l.SWEEP.SWEEP_VERT_TYPE = n();
    l.SWEEP.SWEEP_OFFSET_TYPE = n();
    l.SWEEP.SWEEP_DPI = n();
    l.SWEEP.SWEEP_INCLINE_LEN = d();
    l.SWEEP.SWEEP_ISRAMP = f();
    l.SWEEP.SWEEP_IS3DRELIEF = f();
    l.SWEEP.SWEEP_OFFSET_ENGRAVING = f();
    l.SWEEP.SWEEP_STEP = d();
    l.SWEEP.CARVING_NUMBER = n();
    pen(l.SWEEP.PEN);
    l.LINK.LINK_FLAG = true;
    l.LINK.LINK_MODE = n();
    l.LINK.LINK_VALUE = qint64(n()) << 33;
    return l;
}

inline QString text(bool v)
{
    return v ? QStringLiteral("true") : QStringLiteral("false");
}
inline QString text(qint64 v)
{
    return QString::number(v);
}
inline QString text(double v)
{
    return QString::number(v, 'g', QLocale::FloatingPointShortest);
}

// "FIELD=value" for every field, the link block included, e.g.
// "CUT.LASER2.JUMP_DELAY=0" or "SWEEP.SWEEP_SPEED=1".
inline QStringList describe(const CLayerParam &l)
{
    QStringList out;
    auto put = [&out](const QString &name, const QString &value) {
        out << name + QLatin1Char('=') + value;
    };
    auto laser = [&](const QString &p, const LaserParam &a) {
        put(p + QStringLiteral("POWER_MAX"), text(a.POWER_MAX));
        put(p + QStringLiteral("POWER_MIN"), text(a.POWER_MIN));
        put(p + QStringLiteral("FREQ"), text(qint64(a.FREQ)));
        put(p + QStringLiteral("PULSE_WIDTH"), text(qint64(a.PULSE_WIDTH)));
        put(p + QStringLiteral("JUMP_DELAY"), text(qint64(a.JUMP_DELAY)));
        put(p + QStringLiteral("CORNER_DELAY"), text(qint64(a.CORNER_DELAY)));
        put(p + QStringLiteral("ENABLE"), text(a.ENABLE));
        put(p + QStringLiteral("DWELL_MODE"), text(a.DWELL_MODE));
        put(p + QStringLiteral("DWELL_ON"), text(a.DWELL_ON));
        put(p + QStringLiteral("START_DWELL"), text(a.START_DWELL));
        put(p + QStringLiteral("END_DWELL"), text(a.END_DWELL));
        put(p + QStringLiteral("START_DWELL_TIME"), text(qint64(a.START_DWELL_TIME)));
        put(p + QStringLiteral("END_DWELL_TIME"), text(qint64(a.END_DWELL_TIME)));
        put(p + QStringLiteral("DWELL_POWER"), text(a.DWELL_POWER));
    };
    auto pen = [&](const QString &p, const PenParam &a) {
        put(p + QStringLiteral("ENABLE_PEN_UP_DOWN"), text(a.ENABLE_PEN_UP_DOWN));
        put(p + QStringLiteral("ENABLE_PEN_DOWN"), text(a.ENABLE_PEN_DOWN));
        put(p + QStringLiteral("ENABLE_PEN_UP"), text(a.ENABLE_PEN_UP));
        put(p + QStringLiteral("PEN_DOWN_HRIGHT"), text(a.PEN_DOWN_HRIGHT));
        put(p + QStringLiteral("PEN_UP_HRIGHT"), text(a.PEN_UP_HRIGHT));
    };
    const CutParam &c = l.CUT;
    const SweepParam &s = l.SWEEP;
    put(QStringLiteral("COLOR"), text(qint64(l.COLOR)));
    put(QStringLiteral("AUX_INDEX"), text(qint64(l.AUX_INDEX)));
    put(QStringLiteral("FILL_LOCKED"), text(l.FILL_LOCKED));
    put(QStringLiteral("WORK_TYPE"), text(qint64(l.WORK_TYPE)));
    put(QStringLiteral("OUTPUT"), text(l.OUTPUT));
    put(QStringLiteral("BLOW"), text(l.BLOW));
    put(QStringLiteral("SELECTED"), text(l.SELECTED));
    laser(QStringLiteral("CUT.LASER1."), c.LASER1);
    laser(QStringLiteral("CUT.LASER2."), c.LASER2);
    put(QStringLiteral("CUT.CUT_SPEED"), text(c.CUT_SPEED));
    put(QStringLiteral("CUT.CUT_JOINT_LEN"), text(c.CUT_JOINT_LEN));
    put(QStringLiteral("CUT.CUT_BRIDGES_LEN"), text(c.CUT_BRIDGES_LEN));
    put(QStringLiteral("CUT.CUT_BRIDGES_SPACE"), text(c.CUT_BRIDGES_SPACE));
    put(QStringLiteral("CUT.CUT_BRIDGES"), text(c.CUT_BRIDGES));
    put(QStringLiteral("CUT.CUTTING_NUMBER"), text(qint64(c.CUTTING_NUMBER)));
    put(QStringLiteral("CUT.USE_GUIDE_LINE"), text(c.USE_GUIDE_LINE));
    put(QStringLiteral("CUT.GUIDE_TYPE"), text(qint64(c.GUIDE_TYPE)));
    put(QStringLiteral("CUT.IS_GUIDE_IN"), text(qint64(c.IS_GUIDE_IN)));
    put(QStringLiteral("CUT.GUIDE_IN_LEN"), text(c.GUIDE_IN_LEN));
    put(QStringLiteral("CUT.IS_GUIDE_OUT"), text(qint64(c.IS_GUIDE_OUT)));
    put(QStringLiteral("CUT.GUIDE_OUT_LEN"), text(c.GUIDE_OUT_LEN));
    pen(QStringLiteral("CUT.PEN."), c.PEN);
    put(QStringLiteral("CUT.CUT_COMPENSATE_ENABLE"), text(c.CUT_COMPENSATE_ENABLE));
    put(QStringLiteral("CUT.CUT_COMPENSATE_OUTWARD"), text(c.CUT_COMPENSATE_OUTWARD));
    put(QStringLiteral("CUT.CUT_COMPENSATE_SIZE"), text(c.CUT_COMPENSATE_SIZE));
    laser(QStringLiteral("SWEEP.LASER1."), s.LASER1);
    laser(QStringLiteral("SWEEP.LASER2."), s.LASER2);
    put(QStringLiteral("SWEEP.SWEEP_SPEED"), text(s.SWEEP_SPEED));
    put(QStringLiteral("SWEEP.SWEEP_TYPE"), text(qint64(s.SWEEP_TYPE)));
    put(QStringLiteral("SWEEP.SWEEP_VERT_TYPE"), text(qint64(s.SWEEP_VERT_TYPE)));
    put(QStringLiteral("SWEEP.SWEEP_OFFSET_TYPE"), text(qint64(s.SWEEP_OFFSET_TYPE)));
    put(QStringLiteral("SWEEP.SWEEP_DPI"), text(qint64(s.SWEEP_DPI)));
    put(QStringLiteral("SWEEP.SWEEP_INCLINE_LEN"), text(s.SWEEP_INCLINE_LEN));
    put(QStringLiteral("SWEEP.SWEEP_ISRAMP"), text(s.SWEEP_ISRAMP));
    put(QStringLiteral("SWEEP.SWEEP_IS3DRELIEF"), text(s.SWEEP_IS3DRELIEF));
    put(QStringLiteral("SWEEP.SWEEP_OFFSET_ENGRAVING"), text(s.SWEEP_OFFSET_ENGRAVING));
    put(QStringLiteral("SWEEP.SWEEP_STEP"), text(s.SWEEP_STEP));
    put(QStringLiteral("SWEEP.CARVING_NUMBER"), text(qint64(s.CARVING_NUMBER)));
    pen(QStringLiteral("SWEEP.PEN."), s.PEN);
    put(QStringLiteral("LINK.LINK_FLAG"), text(l.LINK.LINK_FLAG));
    put(QStringLiteral("LINK.LINK_MODE"), text(qint64(l.LINK.LINK_MODE)));
    put(QStringLiteral("LINK.LINK_VALUE"), text(l.LINK.LINK_VALUE));
    return out;
}

// The entries of `expected` ("FIELD=value") that `layer` does not have.
inline QStringList missingFields(const CLayerParam &layer, const QStringList &expected)
{
    const QStringList actual = describe(layer);
    QStringList missing;
    for (const QString &entry : expected) {
        if (!actual.contains(entry))
            missing << entry;
    }
    return missing;
}

} // namespace layertest
