#pragma once

// Unit modes: how lengths and speeds are shown and typed. Records, files and
// the library always hold millimetres and millimetres per second.
enum EUNIT_MODE {
    UNIT_INCH_PER_S = 0,
    UNIT_MM_PER_S = 1,
    UNIT_INCH_PER_MIN = 2,
    UNIT_MM_PER_MIN = 3,
};

constexpr double kMmPerInch = 25.4;
constexpr double kSecondsPerMinute = 60.0;

// Codes 0 and 2 show inches.
inline bool IsInchUnit(int unitMode)
{
    return unitMode == UNIT_INCH_PER_S || unitMode == UNIT_INCH_PER_MIN;
}

// v * 100 rounded half away from zero, then / 100.0: qRound's rounding,
// without its int overflow for huge values.
double Round2(double value);
// Towards zero; values beyond int (from broken files or settings) saturate,
// NaN gives 0.
int TruncateToInt(double value);

double LengthToDisplay(double mm, int unitMode);
double LengthFromDisplay(double value, int unitMode);
double SpeedToDisplay(double mmPerSecond, int unitMode);
double SpeedFromDisplay(double value, int unitMode);

// "inch" / "mm" and "inch/s", "mm/s", "inch/min", "mm/min"; empty outside 0..3.
const char *LengthUnitLabel(int unitMode);
const char *SpeedUnitLabel(int unitMode);
