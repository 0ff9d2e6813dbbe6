#include "layerlibrarysets.h"

namespace {

// Each pair of fields is listed once and copied in the direction `copy`
// gives: library to layer (apply) or layer to library (fill).
struct ToLayer
{
    template <typename Lib, typename Layer> void operator()(const Lib &lib, Layer &layer) const
    {
        layer = Layer(lib);
    }
};

struct ToLibrary
{
    template <typename Lib, typename Layer> void operator()(Lib &lib, const Layer &layer) const
    {
        lib = Lib(layer);
    }
};

template <typename LibLaser, typename Laser, typename Copy>
void mapLaser(LibLaser &lib, Laser &laser, bool withTurnAndDwell, Copy copy)
{
    copy(lib.power, laser.POWER_MAX);
    copy(lib.frequency, laser.FREQ);
    copy(lib.pulseWidth, laser.PULSE_WIDTH);
    copy(lib.jumpDelay, laser.JUMP_DELAY);
    copy(lib.cornerDelay, laser.CORNER_DELAY);
    if (!withTurnAndDwell)
        return;
    copy(lib.turnPower, laser.POWER_MIN);
    copy(lib.dwellMode, laser.DWELL_MODE);
    copy(lib.dwellOn, laser.DWELL_ON);
    copy(lib.startDwell, laser.START_DWELL);
    copy(lib.endDwell, laser.END_DWELL);
    copy(lib.startDwellTime, laser.START_DWELL_TIME);
    copy(lib.endDwellTime, laser.END_DWELL_TIME);
    copy(lib.dwellPower, laser.DWELL_POWER);
}

template <typename LibPen, typename Pen, typename Copy> void mapPen(LibPen &lib, Pen &pen, Copy copy)
{
    copy(lib.enableUpDown, pen.ENABLE_PEN_UP_DOWN);
    copy(lib.enableDown, pen.ENABLE_PEN_DOWN);
    copy(lib.enableUp, pen.ENABLE_PEN_UP);
    copy(lib.downHeight, pen.PEN_DOWN_HRIGHT);
    copy(lib.upHeight, pen.PEN_UP_HRIGHT);
}

template <typename Set, typename Layer, typename Copy> void mapCut(Set &set, Layer &layer, Copy copy)
{
    auto &cut = layer.CUT;
    copy(set.blowing, layer.BLOW);
    copy(set.speed, cut.CUT_SPEED);
    mapLaser(set.laser1, cut.LASER1, true, copy);
    mapLaser(set.laser2, cut.LASER2, true, copy);
    copy(set.sealLength, cut.CUT_JOINT_LEN);
    copy(set.bridges, cut.CUT_BRIDGES);
    copy(set.bridgesSpace, cut.CUT_BRIDGES_SPACE);
    copy(set.bridgesLength, cut.CUT_BRIDGES_LEN);
    copy(set.useGuideLine, cut.USE_GUIDE_LINE);
    copy(set.guideType, cut.GUIDE_TYPE);
    copy(set.guideIn, cut.IS_GUIDE_IN);
    copy(set.guideInLen, cut.GUIDE_IN_LEN);
    copy(set.guideOut, cut.IS_GUIDE_OUT);
    copy(set.guideOutLen, cut.GUIDE_OUT_LEN);
    mapPen(set.pen, cut.PEN, copy);
    copy(set.useCompensate, cut.CUT_COMPENSATE_ENABLE);
    copy(set.compensateOutward, cut.CUT_COMPENSATE_OUTWARD);
    copy(set.compensateSize, cut.CUT_COMPENSATE_SIZE);
}

template <typename Set, typename Layer, typename Copy>
void mapSweep(Set &set, Layer &layer, Copy copy)
{
    auto &sweep = layer.SWEEP;
    copy(set.blowing, layer.BLOW);
    copy(set.speed, sweep.SWEEP_SPEED);
    mapLaser(set.laser1, sweep.LASER1, false, copy);
    mapLaser(set.laser2, sweep.LASER2, false, copy);
    copy(set.dpi, sweep.SWEEP_DPI);
    copy(set.mode, sweep.SWEEP_TYPE);
    copy(set.rampLength, sweep.SWEEP_INCLINE_LEN);
    copy(set.is3DRelief, sweep.SWEEP_IS3DRELIEF);
    copy(set.offsetEngraving, sweep.SWEEP_OFFSET_ENGRAVING);
    copy(set.offsetType, sweep.SWEEP_OFFSET_TYPE);
    copy(set.offsetDistance, sweep.SWEEP_STEP);
    if (set.key.craft == LIB_CRAFT_DEEP) {
        // The ramp runs from the minimum power up to the set's power.
        copy(set.isRamp, sweep.SWEEP_ISRAMP);
        copy(set.minPower, sweep.LASER1.POWER_MIN);
        copy(set.carvingNumber, sweep.CARVING_NUMBER);
    }
    mapPen(set.pen, sweep.PEN, copy);
}

} // namespace

void ApplyCutSet(const CLibCutSet &set, CLayerParam &layer)
{
    mapCut(set, layer, ToLayer());
}

void FillCutSet(const CLayerParam &layer, CLibCutSet &set)
{
    mapCut(set, layer, ToLibrary());
}

void ApplySweepSet(const CLibSweepSet &set, CLayerParam &layer)
{
    mapSweep(set, layer, ToLayer());
}

void FillSweepSet(const CLayerParam &layer, CLibSweepSet &set)
{
    mapSweep(set, layer, ToLibrary());
    // A deep set also keeps the power the ramp ends at.
    if (set.key.craft == LIB_CRAFT_DEEP)
        set.maxPower = layer.SWEEP.LASER1.POWER_MAX;
}
