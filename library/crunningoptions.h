#pragma once

#include <QString>

#include <vector>

// Laser tube types.
enum ELASER_TUBE {
    LASER_TUBE_GLASS = 0,
    LASER_TUBE_RF_NO_BURNING = 1,
    LASER_TUBE_RF_BURNING = 2,
    LASER_TUBE_FIBER = 3,
    LASER_TUBE_SEMICONDUCTOR = 4,
};

constexpr int kRunningTextSize = 257;

// The library setting a layer colour was last run with.
struct CRunningOptions
{
    quint32 type = LASER_TUBE_GLASS;
    quint32 laserPower = 80;
    double thickness = 1.0;
    quint32 craft = 2;
    char materialName[kRunningTextSize] = {};
    char secondText[kRunningTextSize] = {};

    QString MaterialName() const;
    // Cut at a character boundary to fit 256 bytes.
    void SetMaterialName(const QString &name);
};

struct RunningOptionEntry
{
    quint32 color = 0;
    CRunningOptions options;
};

using RunningOptionList = std::vector<RunningOptionEntry>;

// "Glass", "RFNoBurning", "RFBurning", "Fiber", "Semiconductor".
QString TubeTypeName(quint32 type);
// The first equal name gives its index; anything else 0.
quint32 TubeTypeIndex(const QString &name);
// "Cutting", "Tracing", "Shallow Carving", "Deep Carving", "Vision Mark".
QString CraftName(quint32 craft);
quint32 CraftIndex(const QString &name);

QString RunningOptionsToJson(const RunningOptionList &list);
// Replaces the list's content; false (list untouched) when the text is empty
// or does not parse.
bool RunningOptionsFromJson(const QString &text, RunningOptionList &list);
