#include "librarydocument.h"

#include "crunningoptions.h"
#include "librarykeys_p.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

#include <algorithm>
#include <utility>
#include <vector>


namespace {

using namespace LibraryKeys;

// Blocks are filled into a copy of a shape, an object of the same kind that
// has every key already: assigning a value to a key there costs no
// allocation, inserting the key does (and made building the document cost
// more than writing it). Without a shape the keys are inserted.
using Members = std::initializer_list<std::pair<QLatin1String, QJsonValue>>;

QJsonObject objectOf(const QJsonObject &shape, Members members)
{
    QJsonObject o = shape;
    for (const auto &[key, value] : members)
        o[key] = value;
    return o;
}

QJsonObject penObject(const CLibPen &pen, const QJsonObject &shape)
{
    return objectOf(shape, {{kPenUpDown, pen.enableUpDown},
                            {kPenDown, pen.enableDown},
                            {kPenUp, pen.enableUp},
                            {kPenDownHeight, pen.downHeight},
                            {kPenUpHeight, pen.upHeight}});
}

void laserMembers(QJsonObject &o, int which, const CLibLaser &laser, bool dwell)
{
    const LaserKeys &k = kLaserKeys[which];
    o[k.jumpDelay] = laser.jumpDelay;
    o[k.cornerDelay] = laser.cornerDelay;
    if (!dwell)
        return;
    o[k.dwellMode] = laser.dwellMode;
    o[k.dwellOn] = laser.dwellOn;
    o[k.startDwell] = laser.startDwell;
    o[k.endDwell] = laser.endDwell;
    o[k.startDwellTime] = laser.startDwellTime;
    o[k.endDwellTime] = laser.endDwellTime;
    o[k.dwellPower] = laser.dwellPower;
}

struct Shapes
{
    QJsonObject pen, guide, compensate, cut, shallow, deep;
};

QJsonObject pen(const CLibPen &pen, const Shapes *s)
{
    return penObject(pen, s ? s->pen : QJsonObject());
}

// Both cut crafts get every key, although "Tracing" is read without some.
QJsonObject cutObject(const CLibCutSet &set, const Shapes *s)
{
    QJsonObject o = objectOf(s ? s->cut : QJsonObject(), {
        {kBlowing, set.blowing},
        {kSpeed, set.speed},
        {kPower, set.laser1.power},
        {kTurnPower, set.laser1.turnPower},
        {kFrequency1, set.laser1.frequency},
        {kPulseWidth1, set.laser1.pulseWidth},
        {kSealLength, set.sealLength},
        {kBridges, set.bridges},
        {kBridgesSpace, set.bridgesSpace},
        {kBridgesLength, set.bridgesLength},
        {kUseGuideLine, set.useGuideLine},
        {kPower2, set.laser2.power},
        {kTurnPower2, set.laser2.turnPower},
        {kFrequency2, set.laser2.frequency},
        {kPulseWidth2, set.laser2.pulseWidth},
        {kGuideLine, objectOf(s ? s->guide : QJsonObject(), {{kGuideType, set.guideType},
                                                              {kGuideIn, set.guideIn},
                                                              {kGuideInLen, set.guideInLen},
                                                              {kGuideOut, set.guideOut},
                                                              {kGuideOutLen, set.guideOutLen}})},
        {kPenAction, pen(set.pen, s)},
        {kCompensate, objectOf(s ? s->compensate : QJsonObject(),
                               {{kUseCompensate, set.useCompensate},
                                {kCompensateOutward, set.compensateOutward},
                                {kCompensateSize, set.compensateSize}})},
        {kNote, set.note},
    });
    laserMembers(o, 0, set.laser1, true);
    laserMembers(o, 1, set.laser2, true);
    return o;
}

QJsonObject sweepObject(const CLibSweepSet &set, const Shapes *s)
{
    const bool deep = set.key.craft == LIB_CRAFT_DEEP;
    QJsonObject o = objectOf(s ? (deep ? s->deep : s->shallow) : QJsonObject(), {
        {kBlowing, set.blowing},
        {kSpeed, set.speed},
        {kPower, set.laser1.power},
        {kFrequency1, set.laser1.frequency},
        {kPulseWidth1, set.laser1.pulseWidth},
        {kPower2, set.laser2.power},
        {kFrequency2, set.laser2.frequency},
        {kPulseWidth2, set.laser2.pulseWidth},
        {kDpi, set.dpi},
        {kMode, set.mode},
        {kRampLength, set.rampLength},
        {kIs3DRelief, set.is3DRelief},
        {kOffsetEngraving, set.offsetEngraving},
        {kOffsetType, set.offsetType},
        {kOffsetDistance, set.offsetDistance},
        {kPenAction, pen(set.pen, s)},
        {kNote, set.note},
    });
    laserMembers(o, 0, set.laser1, false);
    laserMembers(o, 1, set.laser2, false);
    if (deep) {
        o[kIsRamp] = set.isRamp;
        o[kMinPower] = set.minPower;
        o[kMaxPower] = set.maxPower;
        o[kCarvingNumber] = set.carvingNumber;
    }
    return o;
}

const Shapes &shapes()
{
    static const Shapes made = [] {
        const CLibCutSet cut;
        CLibSweepSet shallow, deep;
        shallow.key.craft = LIB_CRAFT_SHALLOW;
        deep.key.craft = LIB_CRAFT_DEEP;
        const QJsonObject c = cutObject(cut, nullptr);
        return Shapes{c.value(kPenAction).toObject(), c.value(kGuideLine).toObject(),
                      c.value(kCompensate).toObject(), c, sweepObject(shallow, nullptr),
                      sweepObject(deep, nullptr)};
    }();
    return made;
}

} // namespace

QString ThicknessKey(double thickness)
{
    return QString::number(thickness, 'f', 2);
}

qint32 SweepModeIndex(const QString &name)
{
    if (name == kOneWay)
        return 1;
    return 0;
}

QString LibraryReadResult::reason() const
{
    QString text;
    switch (status) {
    case ELibraryRead::Ok:
        return QString();
    case ELibraryRead::CannotOpen:
        text = QStringLiteral("cannot open");
        break;
    case ELibraryRead::TooLarge:
        text = QStringLiteral("too large");
        break;
    case ELibraryRead::NotJson:
        text = QStringLiteral("not JSON");
        break;
    case ELibraryRead::NotObject:
        text = QStringLiteral("not a JSON object");
        break;
    case ELibraryRead::NoType:
        text = QStringLiteral("no \"Type\"");
        break;
    }
    if (!detail.isEmpty())
        text += QStringLiteral(" (") + detail + QLatin1Char(')');
    return text;
}

LibraryReadResult ReadMaterialLibrary(QIODevice *device, CMaterialLibrary &library)
{
    library.Clear();
    if (!device || !device->isReadable())
        return {ELibraryRead::CannotOpen, QString()};
    if (!device->isSequential() && device->size() - device->pos() > kMaxLibraryFileSize)
        return {ELibraryRead::TooLarge, QString::number(device->size()) + QStringLiteral(" bytes")};
    // An in-memory buffer read from its start is parsed where it is.
    const auto *buffer = qobject_cast<const QBuffer *>(device);
    const QByteArray bytes = buffer && buffer->pos() == 0 ? buffer->data() : device->readAll();
    if (bytes.size() > kMaxLibraryFileSize)
        return {ELibraryRead::TooLarge, QString::number(bytes.size()) + QStringLiteral(" bytes")};

    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError) {
        return {ELibraryRead::NotJson,
                error.errorString() + QStringLiteral(" at offset ") + QString::number(error.offset)};
    }
    if (!document.isObject())
        return {ELibraryRead::NotObject, QString()};
    if (!ReadMaterialLibrary(document.object(), library))
        return {ELibraryRead::NoType, QString()};
    return {};
}

LibraryReadResult ReadMaterialLibraryFile(const QString &path, CMaterialLibrary &library)
{
    library.Clear();
    if (QFileInfo(path).isDir())
        return {ELibraryRead::CannotOpen, QStringLiteral("is a directory")};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {ELibraryRead::CannotOpen, file.errorString()};
    return ReadMaterialLibrary(&file, library);
}

namespace {

// Members in any order, inserted in key order so that every insert appends:
// inserted in another order, each insert moves the members behind it, which
// grows with the square of their number (a material with thousands of
// thicknesses). Of two equal keys the later counts, as with plain inserts.
using KeyedValues = std::vector<std::pair<QString, QJsonValue>>;

QJsonObject sortedObject(KeyedValues members)
{
    std::stable_sort(members.begin(), members.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    QJsonObject o;
    for (const auto &member : members)
        o.insert(member.first, member.second);
    return o;
}

} // namespace

QJsonObject MaterialLibraryToJson(const CMaterialLibrary &library)
{
    QJsonObject types;
    CLibKey key;
    for (const CLibTube &tube : library.Tubes()) {
        QJsonArray entries;
        key.tube = tube.type;
        for (const CLibPower &power : tube.powers) {
            key.power = power.power;
            KeyedValues materials;
            int id = 0;
            for (const CLibMaterial *material : library.MaterialsOf(tube.type, power.power)) {
                key.material = material->name;
                KeyedValues thicknesses;
                thicknesses.reserve(material->thicknesses.size());
                for (double thickness : material->thicknesses) {
                    key.thickness = thickness;
                    QJsonObject crafts;
                    for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
                        key.craft = craft;
                        if (const CLibCutSet *cut = library.FindCutSet(key))
                            crafts.insert(kCraftKeys[craft], cutObject(*cut, &shapes()));
                        else if (const CLibSweepSet *sweep = library.FindSweepSet(key))
                            crafts.insert(kCraftKeys[craft], sweepObject(*sweep, &shapes()));
                        else if (const CLibMarkSet *mark = library.FindMarkSet(key))
                            crafts.insert(kCraftKeys[craft], objectOf(QJsonObject(), {{kNote, mark->note}}));
                    }
                    thicknesses.emplace_back(ThicknessKey(thickness), crafts);
                }
                QJsonObject object;
                object.insert(kId, ++id);
                object.insert(kIconPath, material->iconPath);
                object.insert(kIconData, material->iconBase64);
                object.insert(kThickness, sortedObject(std::move(thicknesses)));
                materials.emplace_back(material->name, object);
            }
            QJsonObject entry;
            entry.insert(kPower, power.power);
            entry.insert(kCustom, power.custom);
            entry.insert(kMaterial, sortedObject(std::move(materials)));
            entries.append(entry);
        }
        types.insert(TubeTypeName(tube.type), entries);
    }
    QJsonObject root;
    root.insert(kVersion, library.Version());
    root.insert(kType, types);
    return root;
}

QByteArray MaterialLibraryText(const CMaterialLibrary &library)
{
    return QJsonDocument(MaterialLibraryToJson(library)).toJson(QJsonDocument::Indented);
}

bool WriteMaterialLibrary(QIODevice *device, const CMaterialLibrary &library)
{
    if (!device || !device->isWritable())
        return false;
    const QByteArray bytes = MaterialLibraryText(library);
    return device->write(bytes) == bytes.size();
}

bool WriteMaterialLibraryFile(const QString &path, const CMaterialLibrary &library)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // The flush is checked here: commit() takes a short write past a file
    // size limit for success and would replace the old file with a stub.
    if (!WriteMaterialLibrary(&file, library) || !file.flush()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}
