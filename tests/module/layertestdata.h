#pragma once

// Layer records with a distinct value in every field, and a field-by-field
// text form of a record so that a failed comparison names the field.

#include "module/clayerparam.h"

#include <QStringList>
#include <QVariant>

#include <type_traits>

// Every field of a record, by its path.
// clang-format off
#define LAYERTEST_LASER(X, p)                                                                      \
    X(p.POWER_MAX) X(p.POWER_MIN) X(p.FREQ) X(p.PULSE_WIDTH) X(p.JUMP_DELAY) X(p.CORNER_DELAY)     \
    X(p.ENABLE) X(p.DWELL_MODE) X(p.DWELL_ON) X(p.START_DWELL) X(p.END_DWELL)                      \
    X(p.START_DWELL_TIME) X(p.END_DWELL_TIME) X(p.DWELL_POWER)
#define LAYERTEST_PEN(X, p)                                                                        \
    X(p.ENABLE_PEN_UP_DOWN) X(p.ENABLE_PEN_DOWN) X(p.ENABLE_PEN_UP) X(p.PEN_DOWN_HRIGHT)           \
    X(p.PEN_UP_HRIGHT)
#define LAYERTEST_FIELDS(X)                                                                        \
    X(COLOR) X(AUX_INDEX) X(FILL_LOCKED) X(WORK_TYPE) X(OUTPUT) X(BLOW) X(SELECTED)                \
    LAYERTEST_LASER(X, CUT.LASER1) LAYERTEST_LASER(X, CUT.LASER2)                                  \
    X(CUT.CUT_SPEED) X(CUT.CUT_JOINT_LEN) X(CUT.CUT_BRIDGES_LEN) X(CUT.CUT_BRIDGES_SPACE)          \
    X(CUT.CUT_BRIDGES) X(CUT.CUTTING_NUMBER) X(CUT.USE_GUIDE_LINE) X(CUT.GUIDE_TYPE)               \
    X(CUT.IS_GUIDE_IN) X(CUT.GUIDE_IN_LEN) X(CUT.IS_GUIDE_OUT) X(CUT.GUIDE_OUT_LEN)                \
    LAYERTEST_PEN(X, CUT.PEN) X(CUT.CUT_COMPENSATE_ENABLE) X(CUT.CUT_COMPENSATE_OUTWARD)           \
    X(CUT.CUT_COMPENSATE_SIZE) LAYERTEST_LASER(X, SWEEP.LASER1) LAYERTEST_LASER(X, SWEEP.LASER2)   \
    X(SWEEP.SWEEP_SPEED) X(SWEEP.SWEEP_TYPE) X(SWEEP.SWEEP_VERT_TYPE) X(SWEEP.SWEEP_OFFSET_TYPE)   \
    X(SWEEP.SWEEP_DPI) X(SWEEP.SWEEP_INCLINE_LEN) X(SWEEP.SWEEP_ISRAMP) X(SWEEP.SWEEP_IS3DRELIEF)  \
    X(SWEEP.SWEEP_OFFSET_ENGRAVING) X(SWEEP.SWEEP_STEP) X(SWEEP.CARVING_NUMBER)                    \
    LAYERTEST_PEN(X, SWEEP.PEN) X(LINK.LINK_FLAG) X(LINK.LINK_MODE) X(LINK.LINK_VALUE)
// clang-format on

namespace layertest {

// Record i of a family: every number differs from every other field's and
// from the default; every bool but the lock gets its own on/off pattern over
// six records, so two swapped fields never read back alike. The work types
// take turns among line, fill and unknown processes, all locked.
inline CLayerParam sampleLayer(int i)
{
    CLayerParam l;
    int k = 0;
    int b = 0;
    auto set = [&](auto &field) {
        using T = std::decay_t<decltype(field)>;
        ++k;
        if constexpr (std::is_same_v<T, bool>)
            field = (((++b) >> (i % 6)) & 1) != 0;
        else if constexpr (std::is_floating_point_v<T>)
            field = (i + 1) * 1000.0 + k + 0.375;
        else
            field = T((i + 1) * 1000 + k);
    };
#define LAYERTEST_SET(f) set(l.f);
    LAYERTEST_FIELDS(LAYERTEST_SET)
#undef LAYERTEST_SET
    static const qint32 workTypes[] = {2, 0, 3, 1, 4, 9};
    l.COLOR = 0xA00000u + quint32(i) * 0x010203u;
    l.WORK_TYPE = workTypes[i % 6];
    l.FILL_LOCKED = true;
    l.LINK.LINK_FLAG = true;
    l.LINK.LINK_VALUE <<= 33;
    return l;
}

// "FIELD=value" for every field, e.g. "CUT.LASER2.JUMP_DELAY=0".
inline QStringList describe(const CLayerParam &l)
{
    QStringList out;
#define LAYERTEST_PUT(f) out << QStringLiteral(#f "=") + QVariant::fromValue(l.f).toString();
    LAYERTEST_FIELDS(LAYERTEST_PUT)
#undef LAYERTEST_PUT
    return out;
}

} // namespace layertest
