#pragma once

// The keys of a material library document, shared by its reader and writer.

#include "libraryrecords.h"

#include <QLatin1String>

namespace LibraryKeys {

// Keys of the document, spelled as the files have them.
inline constexpr QLatin1String kVersion("Version");
inline constexpr QLatin1String kType("Type");
inline constexpr QLatin1String kPower("Power");
inline constexpr QLatin1String kCustom("Custom");
inline constexpr QLatin1String kMaterial("Material");
inline constexpr QLatin1String kId("id");
inline constexpr QLatin1String kIconPath("IconPath");
inline constexpr QLatin1String kIconData("IconBase64Data");
inline constexpr QLatin1String kThickness("Thickness");
inline constexpr QLatin1String kNote("Note");
inline constexpr QLatin1String kBlowing("Blowing");
inline constexpr QLatin1String kSpeed("Speed");
inline constexpr QLatin1String kTurnPower("Turn power");
inline constexpr QLatin1String kFrequency1("Frequency1");
inline constexpr QLatin1String kPulseWidth1("Pulse Width1");
inline constexpr QLatin1String kSealLength("Seal length");
inline constexpr QLatin1String kBridges("Bridges");
inline constexpr QLatin1String kBridgesSpace("Bridges Space");
inline constexpr QLatin1String kBridgesLength("Bridges Length");
inline constexpr QLatin1String kUseGuideLine("Use Guide Line");
inline constexpr QLatin1String kPower2("Power2");
inline constexpr QLatin1String kTurnPower2("Turn power2");
inline constexpr QLatin1String kFrequency2("Frequency2");
inline constexpr QLatin1String kPulseWidth2("Pulse Width2");
inline constexpr QLatin1String kGuideLine("Guide Line");
inline constexpr QLatin1String kGuideType("Guide Type");
inline constexpr QLatin1String kGuideIn("Guide In");
inline constexpr QLatin1String kGuideInLen("Guide In Len");
inline constexpr QLatin1String kGuideOut("Guide Out");
inline constexpr QLatin1String kGuideOutLen("Guide Out Len");
inline constexpr QLatin1String kPenAction("Pen Action");
inline constexpr QLatin1String kPenUpDown("Enable PenUpDown");
inline constexpr QLatin1String kPenDown("Enable PenDown");
inline constexpr QLatin1String kPenUp("Enable PenUp");
inline constexpr QLatin1String kPenDownHeight("PenDown Height");
// Three blanks: the files have it so.
inline constexpr QLatin1String kPenUpHeight("PenUp   Height");
inline constexpr QLatin1String kCompensate("Laser Compensate");
inline constexpr QLatin1String kUseCompensate("Use Laser Compensate");
inline constexpr QLatin1String kCompensateOutward("Compensate Outward");
inline constexpr QLatin1String kCompensateSize("Compensate Size");
inline constexpr QLatin1String kDpi("DPI output");
inline constexpr QLatin1String kMode("Mode");
inline constexpr QLatin1String kRampLength("Ramp length");
inline constexpr QLatin1String kIs3DRelief("Is3DRelief");
inline constexpr QLatin1String kOffsetEngraving("Offset Engraving");
inline constexpr QLatin1String kOffsetType("Offset Type");
inline constexpr QLatin1String kOffsetDistance("Offset Engraving Distance");
inline constexpr QLatin1String kIsRamp("IsRamp");
inline constexpr QLatin1String kMinPower("MinPower");
inline constexpr QLatin1String kMaxPower("MaxPower");
inline constexpr QLatin1String kCarvingNumber("CarvingNumber");
inline constexpr QLatin1String kTwoWay("Two way laser");
inline constexpr QLatin1String kOneWay("One way laser");

// Per-laser keys, suffix 1 and 2.
struct LaserKeys
{
    QLatin1String jumpDelay, cornerDelay, dwellMode, dwellOn, startDwell, endDwell, startDwellTime,
        endDwellTime, dwellPower;
};
inline constexpr LaserKeys kLaserKeys[2] = {
    {QLatin1String("Jump Delay1"), QLatin1String("Corner Delay1"),
     QLatin1String("Laser Dwell Mode1"), QLatin1String("Laser Dwell1"),
     QLatin1String("Start Dwell1"), QLatin1String("End Dwell1"),
     QLatin1String("Start Dwell Time1"), QLatin1String("End Dwell Time1"),
     QLatin1String("Laser Dwell Power1")},
    {QLatin1String("Jump Delay2"), QLatin1String("Corner Delay2"),
     QLatin1String("Laser Dwell Mode2"), QLatin1String("Laser Dwell2"),
     QLatin1String("Start Dwell2"), QLatin1String("End Dwell2"),
     QLatin1String("Start Dwell Time2"), QLatin1String("End Dwell Time2"),
     QLatin1String("Laser Dwell Power2")},
};

inline constexpr QLatin1String kCraftKeys[kLibCraftCount] = {
    QLatin1String("Cutting"), QLatin1String("Tracing"), QLatin1String("Shallow Carving"),
    QLatin1String("Deep Carving"), QLatin1String("Vision Mark"),
};

} // namespace LibraryKeys
