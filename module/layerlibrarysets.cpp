#include "layerlibrarysets.h"

namespace {

void toLaser(const CLibLaser &from, LaserParam &to, bool withTurnAndDwell)
{
    to.POWER_MAX = from.power;
    to.FREQ = from.frequency;
    to.PULSE_WIDTH = from.pulseWidth;
    to.JUMP_DELAY = from.jumpDelay;
    to.CORNER_DELAY = from.cornerDelay;
    if (!withTurnAndDwell)
        return;
    to.POWER_MIN = from.turnPower;
    to.DWELL_MODE = from.dwellMode;
    to.DWELL_ON = from.dwellOn;
    to.START_DWELL = from.startDwell;
    to.END_DWELL = from.endDwell;
    to.START_DWELL_TIME = from.startDwellTime;
    to.END_DWELL_TIME = from.endDwellTime;
    to.DWELL_POWER = from.dwellPower;
}

void fromLaser(const LaserParam &from, CLibLaser &to, bool withTurnAndDwell)
{
    to.power = from.POWER_MAX;
    to.frequency = from.FREQ;
    to.pulseWidth = from.PULSE_WIDTH;
    to.jumpDelay = from.JUMP_DELAY;
    to.cornerDelay = from.CORNER_DELAY;
    if (!withTurnAndDwell)
        return;
    to.turnPower = from.POWER_MIN;
    to.dwellMode = from.DWELL_MODE;
    to.dwellOn = from.DWELL_ON;
    to.startDwell = from.START_DWELL;
    to.endDwell = from.END_DWELL;
    to.startDwellTime = from.START_DWELL_TIME;
    to.endDwellTime = from.END_DWELL_TIME;
    to.dwellPower = from.DWELL_POWER;
}

void toPen(const CLibPen &from, PenParam &to)
{
    to.ENABLE_PEN_UP_DOWN = from.enableUpDown;
    to.ENABLE_PEN_DOWN = from.enableDown;
    to.ENABLE_PEN_UP = from.enableUp;
    to.PEN_DOWN_HRIGHT = from.downHeight;
    to.PEN_UP_HRIGHT = from.upHeight;
}

void fromPen(const PenParam &from, CLibPen &to)
{
    to.enableUpDown = from.ENABLE_PEN_UP_DOWN;
    to.enableDown = from.ENABLE_PEN_DOWN;
    to.enableUp = from.ENABLE_PEN_UP;
    to.downHeight = from.PEN_DOWN_HRIGHT;
    to.upHeight = from.PEN_UP_HRIGHT;
}

} // namespace

void ApplyCutSet(const CLibCutSet &set, CLayerParam &layer)
{
    CutParam &cut = layer.CUT;
    layer.BLOW = set.blowing;
    cut.CUT_SPEED = set.speed;
    toLaser(set.laser1, cut.LASER1, true);
    toLaser(set.laser2, cut.LASER2, true);
    cut.CUT_JOINT_LEN = set.sealLength;
    cut.CUT_BRIDGES = set.bridges;
    cut.CUT_BRIDGES_SPACE = set.bridgesSpace;
    cut.CUT_BRIDGES_LEN = set.bridgesLength;
    cut.USE_GUIDE_LINE = set.useGuideLine;
    cut.GUIDE_TYPE = set.guideType;
    cut.IS_GUIDE_IN = set.guideIn;
    cut.GUIDE_IN_LEN = set.guideInLen;
    cut.IS_GUIDE_OUT = set.guideOut;
    cut.GUIDE_OUT_LEN = set.guideOutLen;
    toPen(set.pen, cut.PEN);
    cut.CUT_COMPENSATE_ENABLE = set.useCompensate;
    cut.CUT_COMPENSATE_OUTWARD = set.compensateOutward;
    cut.CUT_COMPENSATE_SIZE = set.compensateSize;
}

void FillCutSet(const CLayerParam &layer, CLibCutSet &set)
{
    const CutParam &cut = layer.CUT;
    set.blowing = layer.BLOW;
    set.speed = cut.CUT_SPEED;
    fromLaser(cut.LASER1, set.laser1, true);
    fromLaser(cut.LASER2, set.laser2, true);
    set.sealLength = cut.CUT_JOINT_LEN;
    set.bridges = cut.CUT_BRIDGES;
    set.bridgesSpace = cut.CUT_BRIDGES_SPACE;
    set.bridgesLength = cut.CUT_BRIDGES_LEN;
    set.useGuideLine = cut.USE_GUIDE_LINE;
    set.guideType = cut.GUIDE_TYPE;
    set.guideIn = cut.IS_GUIDE_IN;
    set.guideInLen = cut.GUIDE_IN_LEN;
    set.guideOut = cut.IS_GUIDE_OUT;
    set.guideOutLen = cut.GUIDE_OUT_LEN;
    fromPen(cut.PEN, set.pen);
    set.useCompensate = cut.CUT_COMPENSATE_ENABLE;
    set.compensateOutward = cut.CUT_COMPENSATE_OUTWARD;
    set.compensateSize = cut.CUT_COMPENSATE_SIZE;
}

void ApplySweepSet(const CLibSweepSet &set, CLayerParam &layer)
{
    SweepParam &sweep = layer.SWEEP;
    layer.BLOW = set.blowing;
    sweep.SWEEP_SPEED = set.speed;
    toLaser(set.laser1, sweep.LASER1, false);
    toLaser(set.laser2, sweep.LASER2, false);
    sweep.SWEEP_DPI = set.dpi;
    sweep.SWEEP_TYPE = set.mode;
    sweep.SWEEP_INCLINE_LEN = set.rampLength;
    sweep.SWEEP_IS3DRELIEF = set.is3DRelief;
    sweep.SWEEP_OFFSET_ENGRAVING = set.offsetEngraving;
    sweep.SWEEP_OFFSET_TYPE = set.offsetType;
    sweep.SWEEP_STEP = set.offsetDistance;
    if (set.key.craft == LIB_CRAFT_DEEP) {
        // The ramp runs from the minimum power up to the set's power.
        sweep.SWEEP_ISRAMP = set.isRamp;
        sweep.LASER1.POWER_MIN = set.minPower;
        sweep.CARVING_NUMBER = set.carvingNumber;
    }
    toPen(set.pen, sweep.PEN);
}

void FillSweepSet(const CLayerParam &layer, CLibSweepSet &set)
{
    const SweepParam &sweep = layer.SWEEP;
    set.blowing = layer.BLOW;
    set.speed = sweep.SWEEP_SPEED;
    fromLaser(sweep.LASER1, set.laser1, false);
    fromLaser(sweep.LASER2, set.laser2, false);
    set.dpi = sweep.SWEEP_DPI;
    set.mode = sweep.SWEEP_TYPE;
    set.rampLength = sweep.SWEEP_INCLINE_LEN;
    set.is3DRelief = sweep.SWEEP_IS3DRELIEF;
    set.offsetEngraving = sweep.SWEEP_OFFSET_ENGRAVING;
    set.offsetType = sweep.SWEEP_OFFSET_TYPE;
    set.offsetDistance = sweep.SWEEP_STEP;
    if (set.key.craft == LIB_CRAFT_DEEP) {
        set.isRamp = sweep.SWEEP_ISRAMP;
        set.minPower = sweep.LASER1.POWER_MIN;
        set.maxPower = sweep.LASER1.POWER_MAX;
        set.carvingNumber = sweep.CARVING_NUMBER;
    }
    fromPen(sweep.PEN, set.pen);
}
