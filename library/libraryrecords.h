#pragma once

#include <QString>

#include <vector>

// Value records of the material library. Defaults are those a reader takes
// for a missing key, so a record made here and one read from "{}" agree.

// Thicknesses closer than this are one thickness.
constexpr double kThicknessTolerance = 1e-6;

inline bool SameThickness(double a, double b)
{
    const double d = a - b;
    return d <= kThicknessTolerance && -d <= kThicknessTolerance;
}

// Where a parameter set belongs: tube type, tube power, material, thickness,
// craft (the layer work type numbers).
struct CLibKey
{
    quint32 tube = 0;
    qint32 power = 80;
    QString material;
    double thickness = 1.0;
    quint32 craft = 0;

    friend bool operator==(const CLibKey &a, const CLibKey &b)
    {
        return a.tube == b.tube && a.power == b.power && a.material == b.material
            && SameThickness(a.thickness, b.thickness) && a.craft == b.craft;
    }
    friend bool operator!=(const CLibKey &a, const CLibKey &b) { return !(a == b); }
};

struct CLibPower
{
    qint32 power = 80;
    // Added by the user, so the user may delete it.
    bool custom = false;

    friend bool operator==(const CLibPower &a, const CLibPower &b)
    {
        return a.power == b.power && a.custom == b.custom;
    }
    friend bool operator!=(const CLibPower &a, const CLibPower &b) { return !(a == b); }
};

struct CLibTube
{
    quint32 type = 0;
    std::vector<CLibPower> powers;

    friend bool operator==(const CLibTube &a, const CLibTube &b)
    {
        return a.type == b.type && a.powers == b.powers;
    }
    friend bool operator!=(const CLibTube &a, const CLibTube &b) { return !(a == b); }
};

struct CLibMaterial
{
    QString name;
    QString iconPath;
    // The picture itself: base64 of the encoded image.
    QString iconBase64;
    quint32 tube = 0;
    qint32 power = 80;
    std::vector<double> thicknesses;

    friend bool operator==(const CLibMaterial &a, const CLibMaterial &b)
    {
        return a.name == b.name && a.iconPath == b.iconPath && a.iconBase64 == b.iconBase64
            && a.tube == b.tube && a.power == b.power && a.thicknesses == b.thicknesses;
    }
    friend bool operator!=(const CLibMaterial &a, const CLibMaterial &b) { return !(a == b); }
};

struct CLibPen
{
    bool enableUpDown = false;
    bool enableDown = true;
    bool enableUp = true;
    double downHeight = 3.0;
    double upHeight = 3.0;

    friend bool operator==(const CLibPen &a, const CLibPen &b)
    {
        return a.enableUpDown == b.enableUpDown && a.enableDown == b.enableDown
            && a.enableUp == b.enableUp && a.downHeight == b.downHeight
            && a.upHeight == b.upHeight;
    }
    friend bool operator!=(const CLibPen &a, const CLibPen &b) { return !(a == b); }
};

// One laser source. Sweep sets use power, frequency, pulse width and the two
// delays only; the rest keeps its defaults there.
struct CLibLaser
{
    double power = 0.0;
    double turnPower = 0.0;
    qint32 frequency = 4000;
    qint32 pulseWidth = 500;
    qint32 jumpDelay = 0;
    qint32 cornerDelay = 0;
    bool dwellMode = false;
    bool dwellOn = false;
    bool startDwell = false;
    bool endDwell = false;
    qint32 startDwellTime = 0;
    qint32 endDwellTime = 0;
    double dwellPower = 0.0;

    static CLibLaser second()
    {
        CLibLaser laser;
        laser.power = 20.0;
        laser.turnPower = 20.0;
        return laser;
    }

    friend bool operator==(const CLibLaser &a, const CLibLaser &b)
    {
        return a.power == b.power && a.turnPower == b.turnPower && a.frequency == b.frequency
            && a.pulseWidth == b.pulseWidth && a.jumpDelay == b.jumpDelay
            && a.cornerDelay == b.cornerDelay && a.dwellMode == b.dwellMode
            && a.dwellOn == b.dwellOn && a.startDwell == b.startDwell
            && a.endDwell == b.endDwell && a.startDwellTime == b.startDwellTime
            && a.endDwellTime == b.endDwellTime && a.dwellPower == b.dwellPower;
    }
    friend bool operator!=(const CLibLaser &a, const CLibLaser &b) { return !(a == b); }
};

// Crafts 0 "Cutting" and 1 "Tracing".
struct CLibCutSet
{
    CLibKey key;
    bool blowing = false;
    double speed = 0.0;
    CLibLaser laser1;
    CLibLaser laser2 = CLibLaser::second();
    double sealLength = 0.0;
    bool bridges = false;
    double bridgesSpace = 0.0;
    double bridgesLength = 0.0;
    bool useGuideLine = false;
    qint32 guideType = 0;
    qint32 guideIn = 0;
    double guideInLen = 0.0;
    qint32 guideOut = 0;
    double guideOutLen = 0.0;
    CLibPen pen;
    bool useCompensate = false;
    bool compensateOutward = true;
    double compensateSize = 0.25;
    QString note;

    friend bool operator==(const CLibCutSet &a, const CLibCutSet &b)
    {
        return a.key == b.key && a.blowing == b.blowing && a.speed == b.speed
            && a.laser1 == b.laser1 && a.laser2 == b.laser2 && a.sealLength == b.sealLength
            && a.bridges == b.bridges && a.bridgesSpace == b.bridgesSpace
            && a.bridgesLength == b.bridgesLength && a.useGuideLine == b.useGuideLine
            && a.guideType == b.guideType && a.guideIn == b.guideIn
            && a.guideInLen == b.guideInLen && a.guideOut == b.guideOut
            && a.guideOutLen == b.guideOutLen && a.pen == b.pen
            && a.useCompensate == b.useCompensate && a.compensateOutward == b.compensateOutward
            && a.compensateSize == b.compensateSize && a.note == b.note;
    }
    friend bool operator!=(const CLibCutSet &a, const CLibCutSet &b) { return !(a == b); }
};

// Crafts 2 "Shallow Carving" and 3 "Deep Carving".
struct CLibSweepSet
{
    CLibKey key;
    bool blowing = false;
    double speed = 0.0;
    CLibLaser laser1;
    CLibLaser laser2 = CLibLaser::second();
    qint32 dpi = 0;
    // 0 "Two way laser", 1 "One way laser".
    qint32 mode = 0;
    double rampLength = 0.0;
    bool is3DRelief = false;
    bool offsetEngraving = false;
    qint32 offsetType = 0;
    double offsetDistance = 0.1;
    // Deep carving only.
    bool isRamp = false;
    double minPower = 0.0;
    double maxPower = 0.0;
    qint32 carvingNumber = 0;
    CLibPen pen;
    QString note;

    friend bool operator==(const CLibSweepSet &a, const CLibSweepSet &b)
    {
        return a.key == b.key && a.blowing == b.blowing && a.speed == b.speed
            && a.laser1 == b.laser1 && a.laser2 == b.laser2 && a.dpi == b.dpi
            && a.mode == b.mode && a.rampLength == b.rampLength && a.is3DRelief == b.is3DRelief
            && a.offsetEngraving == b.offsetEngraving && a.offsetType == b.offsetType
            && a.offsetDistance == b.offsetDistance && a.isRamp == b.isRamp
            && a.minPower == b.minPower && a.maxPower == b.maxPower
            && a.carvingNumber == b.carvingNumber && a.pen == b.pen && a.note == b.note;
    }
    friend bool operator!=(const CLibSweepSet &a, const CLibSweepSet &b) { return !(a == b); }
};

// Craft 4 "Vision Mark": only its existence matters to a reader.
struct CLibMarkSet
{
    CLibKey key;
    QString note;

    friend bool operator==(const CLibMarkSet &a, const CLibMarkSet &b)
    {
        return a.key == b.key && a.note == b.note;
    }
    friend bool operator!=(const CLibMarkSet &a, const CLibMarkSet &b) { return !(a == b); }
};

enum ELIB_CRAFT {
    LIB_CRAFT_CUTTING = 0,
    LIB_CRAFT_TRACING = 1,
    LIB_CRAFT_SHALLOW = 2,
    LIB_CRAFT_DEEP = 3,
    LIB_CRAFT_MARK = 4,
};
constexpr quint32 kLibCraftCount = 5;

inline bool IsCutCraft(quint32 craft)
{
    return craft == LIB_CRAFT_CUTTING || craft == LIB_CRAFT_TRACING;
}

inline bool IsSweepCraft(quint32 craft)
{
    return craft == LIB_CRAFT_SHALLOW || craft == LIB_CRAFT_DEEP;
}

// Every parameter field equal; where the set is filed (key) and its note do
// not count. Tells whether an edited set still holds the stored values.
inline bool SameParameters(const CLibCutSet &a, const CLibCutSet &b)
{
    CLibCutSet left = a;
    left.key = b.key;
    left.note = b.note;
    return left == b;
}

inline bool SameParameters(const CLibSweepSet &a, const CLibSweepSet &b)
{
    CLibSweepSet left = a;
    left.key = b.key;
    left.note = b.note;
    return left == b;
}
