#pragma once

#include <QtGlobal>

// Work types; the library calls them crafts ("Tracing", "Shallow Carving", ...).
enum EWORK_TYPE {
    WORK_CUTTING = 0,
    WORK_SCORING = 1,
    WORK_SHALLOW_ENGRAVE = 2,
    WORK_DEEP_ENGRAVE = 3,
    WORK_MARK = 4,
};

// One laser source's settings within a process block.
struct LaserParam
{
    double POWER_MAX = 20.0;
    double POWER_MIN = 1.0;
    qint32 FREQ = 4000;
    qint32 PULSE_WIDTH = 250;
    qint32 JUMP_DELAY = 0;
    qint32 CORNER_DELAY = 0;
    bool ENABLE = false;
    bool DWELL_MODE = false;
    bool DWELL_ON = false;
    bool START_DWELL = false;
    bool END_DWELL = false;
    qint32 START_DWELL_TIME = 0;
    qint32 END_DWELL_TIME = 0;
    double DWELL_POWER = 0.0;

    friend bool operator==(const LaserParam &a, const LaserParam &b)
    {
        return a.POWER_MAX == b.POWER_MAX && a.POWER_MIN == b.POWER_MIN && a.FREQ == b.FREQ
            && a.PULSE_WIDTH == b.PULSE_WIDTH && a.JUMP_DELAY == b.JUMP_DELAY
            && a.CORNER_DELAY == b.CORNER_DELAY && a.ENABLE == b.ENABLE
            && a.DWELL_MODE == b.DWELL_MODE && a.DWELL_ON == b.DWELL_ON
            && a.START_DWELL == b.START_DWELL && a.END_DWELL == b.END_DWELL
            && a.START_DWELL_TIME == b.START_DWELL_TIME && a.END_DWELL_TIME == b.END_DWELL_TIME
            && a.DWELL_POWER == b.DWELL_POWER;
    }
    friend bool operator!=(const LaserParam &a, const LaserParam &b) { return !(a == b); }
};

// Head lift control. "HRIGHT" is the spelling of the stored keys.
struct PenParam
{
    bool ENABLE_PEN_UP_DOWN = false;
    bool ENABLE_PEN_DOWN = true;
    bool ENABLE_PEN_UP = true;
    double PEN_DOWN_HRIGHT = 3.0;
    double PEN_UP_HRIGHT = 3.0;

    friend bool operator==(const PenParam &a, const PenParam &b)
    {
        return a.ENABLE_PEN_UP_DOWN == b.ENABLE_PEN_UP_DOWN && a.ENABLE_PEN_DOWN == b.ENABLE_PEN_DOWN
            && a.ENABLE_PEN_UP == b.ENABLE_PEN_UP && a.PEN_DOWN_HRIGHT == b.PEN_DOWN_HRIGHT
            && a.PEN_UP_HRIGHT == b.PEN_UP_HRIGHT;
    }
    friend bool operator!=(const PenParam &a, const PenParam &b) { return !(a == b); }
};

// Line processes: cutting and scoring.
struct CutParam
{
    LaserParam LASER1 = enabledLaser();
    LaserParam LASER2;
    double CUT_SPEED = 1.0;
    double CUT_JOINT_LEN = 0.0;
    double CUT_BRIDGES_LEN = 1.0;
    double CUT_BRIDGES_SPACE = 10.0;
    bool CUT_BRIDGES = false;
    qint32 CUTTING_NUMBER = 1;
    bool USE_GUIDE_LINE = false;
    qint32 GUIDE_TYPE = 1;
    qint32 IS_GUIDE_IN = 1;
    double GUIDE_IN_LEN = 3.0;
    qint32 IS_GUIDE_OUT = 1;
    double GUIDE_OUT_LEN = 3.0;
    PenParam PEN;
    bool CUT_COMPENSATE_ENABLE = false;
    bool CUT_COMPENSATE_OUTWARD = true;
    double CUT_COMPENSATE_SIZE = 0.25;

    static LaserParam enabledLaser()
    {
        LaserParam laser;
        laser.ENABLE = true;
        return laser;
    }

    friend bool operator==(const CutParam &a, const CutParam &b)
    {
        return a.LASER1 == b.LASER1 && a.LASER2 == b.LASER2 && a.CUT_SPEED == b.CUT_SPEED
            && a.CUT_JOINT_LEN == b.CUT_JOINT_LEN && a.CUT_BRIDGES_LEN == b.CUT_BRIDGES_LEN
            && a.CUT_BRIDGES_SPACE == b.CUT_BRIDGES_SPACE && a.CUT_BRIDGES == b.CUT_BRIDGES
            && a.CUTTING_NUMBER == b.CUTTING_NUMBER && a.USE_GUIDE_LINE == b.USE_GUIDE_LINE
            && a.GUIDE_TYPE == b.GUIDE_TYPE && a.IS_GUIDE_IN == b.IS_GUIDE_IN
            && a.GUIDE_IN_LEN == b.GUIDE_IN_LEN && a.IS_GUIDE_OUT == b.IS_GUIDE_OUT
            && a.GUIDE_OUT_LEN == b.GUIDE_OUT_LEN && a.PEN == b.PEN
            && a.CUT_COMPENSATE_ENABLE == b.CUT_COMPENSATE_ENABLE
            && a.CUT_COMPENSATE_OUTWARD == b.CUT_COMPENSATE_OUTWARD
            && a.CUT_COMPENSATE_SIZE == b.CUT_COMPENSATE_SIZE;
    }
    friend bool operator!=(const CutParam &a, const CutParam &b) { return !(a == b); }
};

// Fill processes: shallow and deep engraving.
struct SweepParam
{
    LaserParam LASER1 = CutParam::enabledLaser();
    LaserParam LASER2;
    double SWEEP_SPEED = 1.0;
    qint32 SWEEP_TYPE = 0;
    qint32 SWEEP_VERT_TYPE = 0;
    qint32 SWEEP_OFFSET_TYPE = 0;
    qint32 SWEEP_DPI = 6;
    double SWEEP_INCLINE_LEN = 0.0;
    bool SWEEP_ISRAMP = false;
    bool SWEEP_IS3DRELIEF = false;
    bool SWEEP_OFFSET_ENGRAVING = false;
    double SWEEP_STEP = 0.1;
    qint32 CARVING_NUMBER = 1;
    PenParam PEN;

    friend bool operator==(const SweepParam &a, const SweepParam &b)
    {
        return a.LASER1 == b.LASER1 && a.LASER2 == b.LASER2 && a.SWEEP_SPEED == b.SWEEP_SPEED
            && a.SWEEP_TYPE == b.SWEEP_TYPE && a.SWEEP_VERT_TYPE == b.SWEEP_VERT_TYPE
            && a.SWEEP_OFFSET_TYPE == b.SWEEP_OFFSET_TYPE && a.SWEEP_DPI == b.SWEEP_DPI
            && a.SWEEP_INCLINE_LEN == b.SWEEP_INCLINE_LEN && a.SWEEP_ISRAMP == b.SWEEP_ISRAMP
            && a.SWEEP_IS3DRELIEF == b.SWEEP_IS3DRELIEF
            && a.SWEEP_OFFSET_ENGRAVING == b.SWEEP_OFFSET_ENGRAVING
            && a.SWEEP_STEP == b.SWEEP_STEP && a.CARVING_NUMBER == b.CARVING_NUMBER
            && a.PEN == b.PEN;
    }
    friend bool operator!=(const SweepParam &a, const SweepParam &b) { return !(a == b); }
};

// Copied with the record, never compared nor stored.
struct LinkParam
{
    bool LINK_FLAG = false;
    qint32 LINK_MODE = 2;
    qint64 LINK_VALUE = 0;
};

// One layer: everything the machine needs to process the shapes of one
// colour. A plain value: copy and compare freely. Inline on purpose, so a host
// can make records for AddLayer without linking anything of ours.
class CLayerParam
{
public:
    explicit CLayerParam(quint32 color = 0)
        : COLOR(color)
    {
    }

    quint32 COLOR = 0;
    qint32 AUX_INDEX = -1;
    bool FILL_LOCKED = false;
    qint32 WORK_TYPE = WORK_CUTTING;
    bool OUTPUT = true;
    bool BLOW = true;
    bool SELECTED = false;
    CutParam CUT;
    SweepParam SWEEP;
    LinkParam LINK;

    bool IsLineProcess() const { return WORK_TYPE == WORK_CUTTING || WORK_TYPE == WORK_SCORING; }

    // The link block takes no part: it does not make a layer different.
    friend bool operator==(const CLayerParam &a, const CLayerParam &b)
    {
        return a.COLOR == b.COLOR && a.AUX_INDEX == b.AUX_INDEX && a.FILL_LOCKED == b.FILL_LOCKED
            && a.WORK_TYPE == b.WORK_TYPE && a.OUTPUT == b.OUTPUT && a.BLOW == b.BLOW
            && a.CUT == b.CUT && a.SWEEP == b.SWEEP && a.SELECTED == b.SELECTED;
    }
    friend bool operator!=(const CLayerParam &a, const CLayerParam &b) { return !(a == b); }
};
