#include "librarydocument.h"

#include "crunningoptions.h"
#include "librarykeys_p.h"
#include "libraryreader_p.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {

using namespace LibraryKeys;

// The writer's text form without building the document first: the same
// bytes QJsonDocument::toJson() gives for MaterialLibraryToJson() (keys in
// its order, its number and string forms), at a fraction of the cost.
class JsonText
{
public:
    QByteArray out;

    void indent(int level) { out.append(4 * level, ' '); }

    void key(int level, QLatin1String name)
    {
        indent(level);
        out += '"';
        out.append(name.data(), name.size());
        out += "\": ";
    }

    void key(int level, const QString &name)
    {
        indent(level);
        string(name);
        out += ": ";
    }

    void boolean(bool value) { out += value ? "true" : "false"; }
    void integer(qint64 value) { out += QByteArray::number(value); }

    void number(double value)
    {
        if (!std::isfinite(value)) {
            out += "null";
            return;
        }
        // Whole numbers a double holds exactly are written as integers ("-0" too).
        if (std::abs(value) <= 9007199254740992.0 && value == std::floor(value)) {
            out += QByteArray::number(qint64(value));
            return;
        }
        out += QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
    }

    void string(const QString &text)
    {
        const qsizetype start = out.size();
        out += '"';
        const QChar *chars = text.constData();
        const qsizetype size = text.size();
        for (qsizetype i = 0; i < size; ++i) {
            const char16_t c = chars[i].unicode();
            if (c >= 0x20 && c < 0x80 && c != '"' && c != '\\') {
                out += char(c);
            } else if (c < 0x80) {
                escape(c);
            } else if (QChar::isSurrogate(c)) {
                // Pairs and strays: as Qt writes them.
                out.truncate(start);
                out += qtValue(QJsonValue(text));
                return;
            } else if (c < 0x800) {
                out += char(0xc0 | (c >> 6));
                out += char(0x80 | (c & 0x3f));
            } else {
                out += char(0xe0 | (c >> 12));
                out += char(0x80 | ((c >> 6) & 0x3f));
                out += char(0x80 | (c & 0x3f));
            }
        }
        out += '"';
    }

    // Any value, through Qt's own writer.
    static QByteArray qtValue(const QJsonValue &value)
    {
        const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
        return text.mid(1, text.size() - 2);
    }

private:
    void escape(char16_t c)
    {
        out += '\\';
        switch (c) {
        case '"': out += '"'; break;
        case '\\': out += '\\'; break;
        case '\b': out += 'b'; break;
        case '\f': out += 'f'; break;
        case '\n': out += 'n'; break;
        case '\r': out += 'r'; break;
        case '\t': out += 't'; break;
        default: {
            const char digits[] = "0123456789abcdef";
            out += "u00";
            out += digits[(c >> 4) & 0xf];
            out += digits[c & 0xf];
        }
        }
    }
};

// One member of a block with fixed keys.
struct Member
{
    enum Kind { Bool, Int, Double, Text, Object };
    Member(QLatin1String name, Kind type) : key(name), kind(type) {}
    QLatin1String key;
    Kind kind;
    bool b = false;
    qint64 i = 0;
    double d = 0.0;
    const QString *text = nullptr;
    std::vector<Member> members;
};

Member boolMember(QLatin1String key, bool value)
{
    Member m{key, Member::Bool};
    m.b = value;
    return m;
}
Member intMember(QLatin1String key, qint64 value)
{
    Member m{key, Member::Int};
    m.i = value;
    return m;
}
Member doubleMember(QLatin1String key, double value)
{
    Member m{key, Member::Double};
    m.d = value;
    return m;
}
Member textMember(QLatin1String key, const QString &value)
{
    Member m{key, Member::Text};
    m.text = &value;
    return m;
}
Member objectMember(QLatin1String key, std::vector<Member> members)
{
    Member m{key, Member::Object};
    m.members = std::move(members);
    return m;
}

void writeObject(JsonText &json, std::vector<Member> members, int level);

void writeMember(JsonText &json, const Member &m, int level)
{
    json.key(level, m.key);
    switch (m.kind) {
    case Member::Bool: json.boolean(m.b); break;
    case Member::Int: json.integer(m.i); break;
    case Member::Double: json.number(m.d); break;
    case Member::Text: json.string(*m.text); break;
    case Member::Object: writeObject(json, m.members, level); break;
    }
}

// Keys of a block are plain ASCII, so byte order is the document's order.
void writeObject(JsonText &json, std::vector<Member> members, int level)
{
    std::sort(members.begin(), members.end(), [](const Member &a, const Member &b) {
        return std::string_view(a.key.data(), size_t(a.key.size()))
            < std::string_view(b.key.data(), size_t(b.key.size()));
    });
    json.out += "{\n";
    for (size_t k = 0; k < members.size(); ++k) {
        writeMember(json, members[k], level + 1);
        json.out += k + 1 < members.size() ? ",\n" : "\n";
    }
    json.indent(level);
    json.out += '}';
}

std::vector<Member> penMembers(const CLibPen &pen)
{
    return {boolMember(kPenUpDown, pen.enableUpDown), boolMember(kPenDown, pen.enableDown),
            boolMember(kPenUp, pen.enableUp), doubleMember(kPenDownHeight, pen.downHeight),
            doubleMember(kPenUpHeight, pen.upHeight)};
}

void laserMembers(std::vector<Member> &m, int which, const CLibLaser &laser, bool dwell)
{
    const LaserKeys &k = kLaserKeys[which];
    m.push_back(intMember(k.jumpDelay, laser.jumpDelay));
    m.push_back(intMember(k.cornerDelay, laser.cornerDelay));
    if (!dwell)
        return;
    m.push_back(boolMember(k.dwellMode, laser.dwellMode));
    m.push_back(boolMember(k.dwellOn, laser.dwellOn));
    m.push_back(boolMember(k.startDwell, laser.startDwell));
    m.push_back(boolMember(k.endDwell, laser.endDwell));
    m.push_back(intMember(k.startDwellTime, laser.startDwellTime));
    m.push_back(intMember(k.endDwellTime, laser.endDwellTime));
    m.push_back(doubleMember(k.dwellPower, laser.dwellPower));
}

// The members of a block, for both the text and the QJsonObject writer.
std::vector<Member> cutMembers(const CLibCutSet &set)
{
    std::vector<Member> guide = {
        intMember(kGuideType, set.guideType), intMember(kGuideIn, set.guideIn),
        doubleMember(kGuideInLen, set.guideInLen), intMember(kGuideOut, set.guideOut),
        doubleMember(kGuideOutLen, set.guideOutLen)};
    std::vector<Member> compensate = {
        boolMember(kUseCompensate, set.useCompensate),
        boolMember(kCompensateOutward, set.compensateOutward),
        doubleMember(kCompensateSize, set.compensateSize)};
    std::vector<Member> m = {
        boolMember(kBlowing, set.blowing),
        doubleMember(kSpeed, set.speed),
        doubleMember(kPower, set.laser1.power),
        doubleMember(kTurnPower, set.laser1.turnPower),
        intMember(kFrequency1, set.laser1.frequency),
        intMember(kPulseWidth1, set.laser1.pulseWidth),
        doubleMember(kSealLength, set.sealLength),
        boolMember(kBridges, set.bridges),
        doubleMember(kBridgesSpace, set.bridgesSpace),
        doubleMember(kBridgesLength, set.bridgesLength),
        boolMember(kUseGuideLine, set.useGuideLine),
        doubleMember(kPower2, set.laser2.power),
        doubleMember(kTurnPower2, set.laser2.turnPower),
        intMember(kFrequency2, set.laser2.frequency),
        intMember(kPulseWidth2, set.laser2.pulseWidth),
        objectMember(kGuideLine, std::move(guide)),
        objectMember(kPenAction, penMembers(set.pen)),
        objectMember(kCompensate, std::move(compensate)),
        textMember(kNote, set.note),
    };
    laserMembers(m, 0, set.laser1, true);
    laserMembers(m, 1, set.laser2, true);
    return m;
}

std::vector<Member> sweepMembers(const CLibSweepSet &set)
{
    std::vector<Member> m = {
        boolMember(kBlowing, set.blowing),
        doubleMember(kSpeed, set.speed),
        doubleMember(kPower, set.laser1.power),
        intMember(kFrequency1, set.laser1.frequency),
        intMember(kPulseWidth1, set.laser1.pulseWidth),
        doubleMember(kPower2, set.laser2.power),
        intMember(kFrequency2, set.laser2.frequency),
        intMember(kPulseWidth2, set.laser2.pulseWidth),
        intMember(kDpi, set.dpi),
        intMember(kMode, set.mode),
        doubleMember(kRampLength, set.rampLength),
        boolMember(kIs3DRelief, set.is3DRelief),
        boolMember(kOffsetEngraving, set.offsetEngraving),
        intMember(kOffsetType, set.offsetType),
        doubleMember(kOffsetDistance, set.offsetDistance),
        objectMember(kPenAction, penMembers(set.pen)),
        textMember(kNote, set.note),
    };
    laserMembers(m, 0, set.laser1, false);
    laserMembers(m, 1, set.laser2, false);
    if (set.key.craft == LIB_CRAFT_DEEP) {
        m.push_back(boolMember(kIsRamp, set.isRamp));
        m.push_back(doubleMember(kMinPower, set.minPower));
        m.push_back(doubleMember(kMaxPower, set.maxPower));
        m.push_back(intMember(kCarvingNumber, set.carvingNumber));
    }
    return m;
}

std::vector<Member> markMembers(const CLibMarkSet &set)
{
    return {textMember(kNote, set.note)};
}

QJsonObject jsonObject(const std::vector<Member> &members)
{
    QJsonObject o;
    for (const Member &m : members) {
        switch (m.kind) {
        case Member::Bool: o.insert(m.key, m.b); break;
        case Member::Int: o.insert(m.key, m.i); break;
        case Member::Double: o.insert(m.key, m.d); break;
        case Member::Text: o.insert(m.key, *m.text); break;
        case Member::Object: o.insert(m.key, jsonObject(m.members)); break;
        }
    }
    return o;
}

// Keys in the order a QJsonObject keeps them; of equal keys the last counts.
template<typename T>
std::vector<std::pair<QString, T>> documentOrder(std::vector<std::pair<QString, T>> entries)
{
    QJsonObject order;
    for (size_t i = 0; i < entries.size(); ++i)
        order.insert(entries[i].first, qint64(i));
    std::vector<std::pair<QString, T>> sorted;
    sorted.reserve(size_t(order.size()));
    for (auto it = order.constBegin(); it != order.constEnd(); ++it)
        sorted.push_back(std::move(entries[size_t(it.value().toInteger())]));
    return sorted;
}

void writeThicknessText(JsonText &json, const CMaterialLibrary &library, CLibKey key, int level)
{
    json.out += "{\n";
    bool first = true;
    // The craft names in document (alphabetical) order.
    static const quint32 kCraftOrder[kLibCraftCount] = {0, 3, 2, 1, 4};
    for (quint32 craft : kCraftOrder) {
        key.craft = craft;
        const CLibCutSet *cut = library.FindCutSet(key);
        const CLibSweepSet *sweep = cut ? nullptr : library.FindSweepSet(key);
        const CLibMarkSet *mark = cut || sweep ? nullptr : library.FindMarkSet(key);
        if (!cut && !sweep && !mark)
            continue;
        if (!first)
            json.out += ",\n";
        first = false;
        json.key(level + 1, kCraftKeys[craft]);
        writeObject(json, cut ? cutMembers(*cut) : sweep ? sweepMembers(*sweep) : markMembers(*mark),
                    level + 1);
    }
    if (!first)
        json.out += '\n';
    json.indent(level);
    json.out += '}';
}

void writeMaterialText(JsonText &json, const CMaterialLibrary &library, const CLibMaterial &m,
                       int id, int level)
{
    json.out += "{\n";
    json.key(level + 1, kIconData);
    json.string(m.iconBase64);
    json.out += ",\n";
    json.key(level + 1, kIconPath);
    json.string(m.iconPath);
    json.out += ",\n";
    json.key(level + 1, kThickness);
    std::vector<std::pair<QString, double>> thicknesses;
    thicknesses.reserve(m.thicknesses.size());
    for (double t : m.thicknesses)
        thicknesses.emplace_back(ThicknessKey(t), t);
    // Thickness keys are ASCII: byte order, the last of equal keys.
    std::stable_sort(thicknesses.begin(), thicknesses.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<std::pair<QString, double>> unique;
    for (size_t i = 0; i < thicknesses.size(); ++i) {
        if (i + 1 < thicknesses.size() && thicknesses[i + 1].first == thicknesses[i].first)
            continue;
        unique.push_back(thicknesses[i]);
    }
    if (unique.empty()) {
        json.out += "{\n";
        json.indent(level + 1);
        json.out += '}';
    } else {
        json.out += "{\n";
        CLibKey key{m.tube, m.power, m.name, 0.0, 0};
        for (size_t i = 0; i < unique.size(); ++i) {
            json.key(level + 2, unique[i].first);
            key.thickness = unique[i].second;
            writeThicknessText(json, library, key, level + 2);
            json.out += i + 1 < unique.size() ? ",\n" : "\n";
        }
        json.indent(level + 1);
        json.out += '}';
    }
    json.out += ",\n";
    json.key(level + 1, kId);
    json.integer(id);
    json.out += '\n';
    json.indent(level);
    json.out += '}';
}

bool isPlainAscii(const QString &text)
{
    for (QChar c : text) {
        if (c.unicode() < 0x20 || c.unicode() >= 0x7f)
            return false;
    }
    return true;
}

QByteArray libraryText(const CMaterialLibrary &library)
{
    JsonText json;
    json.out.reserve(qsizetype(library.CutSetCount() + library.SweepSetCount()) * 1800
                     + qsizetype(library.Materials().size()) * 256 + 256);
    json.out += "{\n";
    json.key(1, kType);

    std::vector<std::pair<QString, const CLibTube *>> tubes;
    for (const CLibTube &tube : library.Tubes())
        tubes.emplace_back(TubeTypeName(tube.type), &tube);
    tubes = documentOrder(std::move(tubes));
    if (tubes.empty()) {
        json.out += "{\n";
        json.indent(1);
        json.out += '}';
    } else {
        json.out += "{\n";
        for (size_t t = 0; t < tubes.size(); ++t) {
            const CLibTube &tube = *tubes[t].second;
            json.key(2, tubes[t].first);
            json.out += "[\n";
            for (size_t p = 0; p < tube.powers.size(); ++p) {
                const CLibPower &power = tube.powers[p];
                json.indent(3);
                json.out += "{\n";
                json.key(4, kCustom);
                json.boolean(power.custom);
                json.out += ",\n";
                json.key(4, kMaterial);
                const auto materials = library.MaterialsOf(tube.type, power.power);
                std::vector<std::pair<QString, std::pair<const CLibMaterial *, int>>> named;
                named.reserve(materials.size());
                int id = 0;
                for (const CLibMaterial *m : materials)
                    named.push_back({m->name, {m, ++id}});
                const bool plain = std::all_of(named.cbegin(), named.cend(), [](const auto &e) {
                    return isPlainAscii(e.first);
                });
                if (plain) {
                    std::sort(named.begin(), named.end(),
                              [](const auto &a, const auto &b) { return a.first < b.first; });
                } else {
                    named = documentOrder(std::move(named));
                }
                if (named.empty()) {
                    json.out += "{\n";
                    json.indent(4);
                    json.out += '}';
                } else {
                    json.out += "{\n";
                    for (size_t i = 0; i < named.size(); ++i) {
                        json.key(5, named[i].first);
                        writeMaterialText(json, library, *named[i].second.first,
                                          named[i].second.second, 5);
                        json.out += i + 1 < named.size() ? ",\n" : "\n";
                    }
                    json.indent(4);
                    json.out += '}';
                }
                json.out += ",\n";
                json.key(4, kPower);
                json.integer(power.power);
                json.out += '\n';
                json.indent(3);
                json.out += p + 1 < tube.powers.size() ? "},\n" : "}\n";
            }
            json.indent(2);
            json.out += ']';
            json.out += t + 1 < tubes.size() ? ",\n" : "\n";
        }
        json.indent(1);
        json.out += '}';
    }
    const QJsonValue version = library.Version();
    if (!version.isUndefined()) {
        json.out += ",\n";
        json.key(1, kVersion);
        json.out += JsonText::qtValue(version);
    }
    json.out += "\n}\n";
    return json.out;
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

    if (ReadMaterialLibraryDirect(bytes, library))
        return {};
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

QJsonObject MaterialLibraryToJson(const CMaterialLibrary &library)
{
    QJsonObject types;
    CLibKey key;
    for (const CLibTube &tube : library.Tubes()) {
        QJsonArray entries;
        key.tube = tube.type;
        for (const CLibPower &power : tube.powers) {
            key.power = power.power;
            QJsonObject materials;
            int id = 0;
            for (const CLibMaterial *material : library.MaterialsOf(tube.type, power.power)) {
                key.material = material->name;
                QJsonObject thicknesses;
                for (double thickness : material->thicknesses) {
                    key.thickness = thickness;
                    QJsonObject crafts;
                    for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
                        key.craft = craft;
                        if (const CLibCutSet *cut = library.FindCutSet(key))
                            crafts.insert(kCraftKeys[craft], jsonObject(cutMembers(*cut)));
                        else if (const CLibSweepSet *sweep = library.FindSweepSet(key))
                            crafts.insert(kCraftKeys[craft], jsonObject(sweepMembers(*sweep)));
                        else if (const CLibMarkSet *mark = library.FindMarkSet(key))
                            crafts.insert(kCraftKeys[craft], jsonObject(markMembers(*mark)));
                    }
                    thicknesses.insert(ThicknessKey(thickness), crafts);
                }
                QJsonObject object;
                object.insert(kId, ++id);
                object.insert(kIconPath, material->iconPath);
                object.insert(kIconData, material->iconBase64);
                object.insert(kThickness, thicknesses);
                materials.insert(material->name, object);
            }
            QJsonObject entry;
            entry.insert(kPower, power.power);
            entry.insert(kCustom, power.custom);
            entry.insert(kMaterial, materials);
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
    // Version values that are objects or arrays are left to Qt's own writer,
    // whose layout of nested values is not worth copying for them.
    const QJsonValue version = library.Version();
    if (version.isObject() || version.isArray())
        return QJsonDocument(MaterialLibraryToJson(library)).toJson();
    return libraryText(library);
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
