#include "units.h"

#include <QtGlobal>

#include <cmath>
#include <limits>

double Round2(double value)
{
    const double scaled = value * 100.0;
    const double rounded = scaled >= 0.0 ? std::trunc(scaled + 0.5) : std::trunc(scaled - 0.5);
    // + 0.0 turns a negative zero into the zero qRound's int gives.
    return rounded / 100.0 + 0.0;
}

int TruncateToInt(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= double(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (value <= double(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return int(value);
}

// Inch values stay unrounded while millimetres are cut to two decimals: the
// editors show inches with their own precision.
double LengthToDisplay(double mm, int unitMode)
{
    return IsInchUnit(unitMode) ? mm / kMmPerInch : Round2(mm);
}

double LengthFromDisplay(double value, int unitMode)
{
    return IsInchUnit(unitMode) ? value * kMmPerInch : Round2(value);
}

double SpeedToDisplay(double mmPerSecond, int unitMode)
{
    switch (unitMode) {
    case UNIT_INCH_PER_S:
        return mmPerSecond / kMmPerInch;
    case UNIT_INCH_PER_MIN:
        return mmPerSecond / kMmPerInch * kSecondsPerMinute;
    case UNIT_MM_PER_MIN:
        return mmPerSecond * kSecondsPerMinute;
    default:
        return mmPerSecond;
    }
}

double SpeedFromDisplay(double value, int unitMode)
{
    switch (unitMode) {
    case UNIT_INCH_PER_S:
        return value * kMmPerInch;
    case UNIT_INCH_PER_MIN:
        return value * kMmPerInch / kSecondsPerMinute;
    case UNIT_MM_PER_MIN:
        return value / kSecondsPerMinute;
    default:
        return value;
    }
}

const char *LengthUnitLabel(int unitMode)
{
    static const char *const labels[] = {"inch", "mm", "inch", "mm"};
    return unitMode >= 0 && unitMode < 4 ? labels[unitMode] : "";
}

const char *SpeedUnitLabel(int unitMode)
{
    static const char *const labels[] = {"inch/s", "mm/s", "inch/min", "mm/min"};
    return unitMode >= 0 && unitMode < 4 ? labels[unitMode] : "";
}
