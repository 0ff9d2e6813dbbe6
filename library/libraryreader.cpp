// The library reader: one walk over the document Qt parsed. Keys come as a
// QJsonObject keeps them (sorted, of a key given twice the last), which is
// the order duplicates and materials without an "id" are filed in.
#include "crunningoptions.h"
#include "librarydocument.h"
#include "librarykeys_p.h"

#include "support/units.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <set>

namespace {

using namespace LibraryKeys;

// A positive whole number that fits an int, else 0.
qint64 usableId(const QJsonValue &value)
{
    if (!value.isDouble())
        return 0;
    const double id = value.toDouble();
    if (!(id >= 1.0 && id <= double(std::numeric_limits<qint32>::max())) || id != std::floor(id))
        return 0;
    return qint64(id);
}

// Of "Vision Mark" only a value with something in it counts.
bool isNonEmpty(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        return false;
    case QJsonValue::Object:
        return !value.toObject().isEmpty();
    case QJsonValue::Array:
        return !value.toArray().isEmpty();
    case QJsonValue::String:
        return !value.toString().isEmpty();
    default:
        return true;
    }
}

CLibPen readPen(const QJsonObject &o)
{
    CLibPen pen;
    pen.enableUpDown = o.value(kPenUpDown).toBool(false);
    pen.enableDown = o.value(kPenDown).toBool(true);
    pen.enableUp = o.value(kPenUp).toBool(true);
    pen.downHeight = o.value(kPenDownHeight).toDouble(3.0);
    pen.upHeight = o.value(kPenUpHeight).toDouble(3.0);
    return pen;
}

// Power, frequency, pulse width and delays of both blocks; dwell of cut blocks.
void readLaser(const QJsonObject &o, int which, CLibLaser &laser, bool dwell)
{
    const LaserKeys &k = kLaserKeys[which];
    const double power = which == 0 ? 0.0 : 20.0;
    laser.power = o.value(which == 0 ? kPower : kPower2).toDouble(power);
    laser.frequency = TruncateToInt(o.value(which == 0 ? kFrequency1 : kFrequency2).toDouble(4000.0));
    laser.pulseWidth = TruncateToInt(o.value(which == 0 ? kPulseWidth1 : kPulseWidth2).toDouble(500.0));
    laser.jumpDelay = o.value(k.jumpDelay).toInt(0);
    laser.cornerDelay = o.value(k.cornerDelay).toInt(0);
    if (!dwell)
        return;
    laser.turnPower = o.value(which == 0 ? kTurnPower : kTurnPower2).toDouble(power);
    laser.dwellMode = o.value(k.dwellMode).toBool(false);
    laser.dwellOn = o.value(k.dwellOn).toBool(false);
    laser.startDwell = o.value(k.startDwell).toBool(false);
    laser.endDwell = o.value(k.endDwell).toBool(false);
    laser.startDwellTime = o.value(k.startDwellTime).toInt(0);
    laser.endDwellTime = o.value(k.endDwellTime).toInt(0);
    laser.dwellPower = o.value(k.dwellPower).toDouble(0.0);
}

CLibCutSet readCut(const QJsonObject &o, const CLibKey &key)
{
    CLibCutSet set;
    set.key = key;
    set.blowing = o.value(kBlowing).toBool(false);
    // Whole numbers only: 12.5 reads as 0, as it always has.
    set.speed = o.value(kSpeed).toInt(0);
    set.sealLength = o.value(kSealLength).toInt(0);
    readLaser(o, 0, set.laser1, true);
    readLaser(o, 1, set.laser2, true);
    set.pen = readPen(o.value(kPenAction).toObject());
    set.note = o.value(kNote).toString();
    if (key.craft != LIB_CRAFT_CUTTING)
        return set; // a "Tracing" block keeps the defaults of the rest
    set.bridges = o.value(kBridges).toBool(false);
    set.bridgesSpace = o.value(kBridgesSpace).toDouble(0.0);
    set.bridgesLength = o.value(kBridgesLength).toDouble(0.0);
    set.useGuideLine = o.value(kUseGuideLine).toBool(false);
    const QJsonObject guide = o.value(kGuideLine).toObject();
    set.guideType = guide.value(kGuideType).toInt(0);
    set.guideIn = guide.value(kGuideIn).toInt(0);
    set.guideInLen = guide.value(kGuideInLen).toDouble(0.0);
    set.guideOut = guide.value(kGuideOut).toInt(0);
    set.guideOutLen = guide.value(kGuideOutLen).toDouble(0.0);
    const QJsonObject compensate = o.value(kCompensate).toObject();
    set.useCompensate = compensate.value(kUseCompensate).toBool(false);
    set.compensateOutward = compensate.value(kCompensateOutward).toBool(true);
    set.compensateSize = compensate.value(kCompensateSize).toDouble(0.25);
    return set;
}

CLibSweepSet readSweep(const QJsonObject &o, const CLibKey &key)
{
    CLibSweepSet set;
    set.key = key;
    set.blowing = o.value(kBlowing).toBool(false);
    set.speed = o.value(kSpeed).toDouble(0.0);
    readLaser(o, 0, set.laser1, false);
    readLaser(o, 1, set.laser2, false);
    set.dpi = o.value(kDpi).toInt(0);
    // Written as a number, read by name: a number reads as 0.
    set.mode = SweepModeIndex(o.value(kMode).toString());
    set.rampLength = o.value(kRampLength).toDouble(0.0);
    set.is3DRelief = o.value(kIs3DRelief).toBool(false);
    set.offsetEngraving = o.value(kOffsetEngraving).toBool(false);
    set.offsetType = o.value(kOffsetType).toInt(0);
    set.offsetDistance = o.value(kOffsetDistance).toDouble(0.1);
    set.pen = readPen(o.value(kPenAction).toObject());
    set.note = o.value(kNote).toString();
    if (key.craft == LIB_CRAFT_DEEP) {
        set.isRamp = o.value(kIsRamp).toBool(false);
        set.minPower = o.value(kMinPower).toDouble(0.0);
        set.maxPower = o.value(kMaxPower).toDouble(0.0);
        set.carvingNumber = o.value(kCarvingNumber).toInt(0);
    }
    return set;
}

// The sets of one thickness; a set already filed under the key stays.
void readCrafts(const QJsonObject &crafts, CLibKey key, CMaterialLibrary &library)
{
    for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
        const QJsonValue value = crafts.value(kCraftKeys[craft]);
        key.craft = craft;
        if (craft == LIB_CRAFT_MARK) {
            if (isNonEmpty(value))
                library.InsertMarkSetIfAbsent({key, QString()});
        } else if (value.isObject()) {
            if (IsCutCraft(craft))
                library.InsertCutSetIfAbsent(readCut(value.toObject(), key));
            else
                library.InsertSweepSetIfAbsent(readSweep(value.toObject(), key));
        }
    }
}

CLibMaterial readMaterial(const QString &name, const QJsonObject &o, quint32 tube, qint32 power,
                          CMaterialLibrary &library)
{
    CLibMaterial material;
    material.name = name;
    material.tube = tube;
    material.power = power;
    material.iconPath = o.value(kIconPath).toString();
    material.iconBase64 = o.value(kIconData).toString();

    // Keys closer than the tolerance name one thickness: the first counts.
    std::set<double> seen;
    const QJsonObject thicknesses = o.value(kThickness).toObject();
    for (auto it = thicknesses.constBegin(); it != thicknesses.constEnd(); ++it) {
        bool ok = false;
        const double thickness = it.key().toDouble(&ok);
        if (!ok || !std::isfinite(thickness))
            continue;
        const auto near = seen.lower_bound(thickness - kThicknessTolerance);
        if (near == seen.end() || *near > thickness + kThicknessTolerance) {
            seen.insert(thickness);
            material.thicknesses.push_back(thickness);
        }
        const QJsonValue crafts = it.value();
        if (crafts.isObject())
            readCrafts(crafts.toObject(), {tube, power, name, thickness, 0}, library);
    }
    return material;
}

// The materials of one power entry, appended to the run of its tube and
// power. Ascending "id"; ties and materials without one keep the key order.
void readMaterials(const QJsonObject &materials, quint32 tube, qint32 power,
                   std::vector<CLibMaterial> &run, QSet<QString> &names,
                   CMaterialLibrary &library)
{
    struct Entry
    {
        qint64 id;
        QString name;
        QJsonObject object;
    };
    std::vector<Entry> entries;
    entries.reserve(size_t(materials.size()));
    for (auto it = materials.constBegin(); it != materials.constEnd(); ++it) {
        const QJsonValue value = it.value();
        if (!value.isObject())
            continue;
        const QJsonObject object = value.toObject();
        entries.push_back({usableId(object.value(kId)), it.key(), object});
    }
    std::stable_sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) {
        if ((a.id == 0) != (b.id == 0))
            return b.id == 0;
        return a.id < b.id;
    });
    for (const Entry &entry : entries) {
        // The same name twice under one tube and power (a repeated power
        // entry): the first wins.
        if (names.contains(entry.name))
            continue;
        names.insert(entry.name);
        run.push_back(readMaterial(entry.name, entry.object, tube, power, library));
    }
}

} // namespace

bool ReadMaterialLibrary(const QJsonObject &root, CMaterialLibrary &library)
{
    library.Clear();
    const QJsonValue type = root.value(kType);
    if (!type.isObject())
        return false;
    const QJsonValue version = root.value(kVersion);
    library.SetVersion(version.isUndefined() ? QJsonValue(0) : version);

    // Materials are gathered per tube/power pair so that each pair's run
    // stays together even when a file names the same pair twice.
    std::vector<std::vector<CLibMaterial>> runs;
    QHash<quint64, size_t> runOf;
    QHash<quint64, QSet<QString>> namesOf;
    const QJsonObject tubes = type.toObject();
    for (auto t = tubes.constBegin(); t != tubes.constEnd(); ++t) {
        const quint32 tube = TubeTypeIndex(t.key());
        library.AddTube(tube);
        const QJsonArray entries = t.value().toArray();
        for (const QJsonValue &value : entries) {
            if (!value.isObject())
                continue;
            const QJsonObject entry = value.toObject();
            const qint32 power = entry.value(kPower).toInt(80);
            const quint64 pair = (quint64(tube) << 32) | quint32(power);
            auto found = runOf.constFind(pair);
            if (found == runOf.cend()) {
                library.AppendTubePower(tube, power, entry.value(kCustom).toBool(false));
                found = runOf.insert(pair, runs.size());
                runs.emplace_back();
            }
            readMaterials(entry.value(kMaterial).toObject(), tube, power, runs[*found],
                          namesOf[pair], library);
        }
    }

    std::vector<CLibMaterial> materials;
    for (auto &run : runs)
        std::move(run.begin(), run.end(), std::back_inserter(materials));
    library.AdoptMaterials(std::move(materials));
    return true;
}
