#include "crunningoptions.h"

#include "support/texthelpers.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <iterator>

namespace {

const char *const kTubeNames[] = {"Glass", "RFNoBurning", "RFBurning", "Fiber", "Semiconductor"};
const char *const kCraftNames[] = {"Cutting", "Tracing", "Shallow Carving", "Deep Carving",
                                   "Vision Mark"};
constexpr quint32 kNameCount = 5;

template<size_t N>
quint32 indexOf(const char *const (&names)[N], const QString &name)
{
    for (size_t i = 0; i < N; ++i) {
        if (name == QLatin1String(names[i]))
            return quint32(i);
    }
    return 0;
}

// Unsigned decimal; anything that does not convert gives 0.
quint32 toUnsigned(const QString &text)
{
    bool ok = false;
    const uint value = text.toUInt(&ok);
    return ok ? value : 0;
}

double toDouble(const QString &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok ? value : 0.0;
}

} // namespace

QString CRunningOptions::MaterialName() const
{
    return FromUtf8(materialName);
}

void CRunningOptions::SetMaterialName(const QString &name)
{
    BoundedCopyUtf8(materialName, sizeof materialName, ToUtf8(name));
}

QString TubeTypeName(quint32 type)
{
    return QLatin1String(kTubeNames[type < kNameCount ? type : 0]);
}

quint32 TubeTypeIndex(const QString &name)
{
    return indexOf(kTubeNames, name);
}

QString CraftName(quint32 craft)
{
    return QLatin1String(kCraftNames[craft < kNameCount ? craft : 0]);
}

quint32 CraftIndex(const QString &name)
{
    return indexOf(kCraftNames, name);
}

QString RunningOptionsToJson(const RunningOptionList &list)
{
    QJsonArray entries;
    for (const RunningOptionEntry &entry : list) {
        const CRunningOptions &o = entry.options;
        QJsonObject object;
        object.insert(QStringLiteral("Type"), TubeTypeName(o.type));
        object.insert(QStringLiteral("MaterialName"), o.MaterialName());
        object.insert(QStringLiteral("Thickness"), QString::number(o.thickness, 'g', 6));
        object.insert(QStringLiteral("Craft"), CraftName(o.craft));
        object.insert(QStringLiteral("LaserPower"), QString::number(o.laserPower));
        object.insert(QStringLiteral("Color"), QString::number(entry.color));
        entries.append(object);
    }
    QJsonObject root;
    root.insert(QStringLiteral("RunningOpition"), entries);
    return QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Indented));
}

bool RunningOptionsFromJson(const QString &text, RunningOptionList &list)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (document.isEmpty() || error.error != QJsonParseError::NoError)
        return false;

    list.clear();
    const QJsonArray entries = document.object().value(QStringLiteral("RunningOpition")).toArray();
    list.reserve(size_t(entries.size()));
    for (const QJsonValue &value : entries) {
        const QJsonObject object = value.toObject();
        RunningOptionEntry entry;
        CRunningOptions &o = entry.options;
        o.type = TubeTypeIndex(object.value(QStringLiteral("Type")).toString());
        o.SetMaterialName(object.value(QStringLiteral("MaterialName")).toString());
        o.thickness = toDouble(object.value(QStringLiteral("Thickness")).toString());
        o.craft = CraftIndex(object.value(QStringLiteral("Craft")).toString());
        o.laserPower = toUnsigned(object.value(QStringLiteral("LaserPower")).toString());
        entry.color = toUnsigned(object.value(QStringLiteral("Color")).toString());
        list.push_back(entry);
    }
    return true;
}
