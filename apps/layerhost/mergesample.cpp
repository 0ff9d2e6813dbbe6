#include "mergesample.h"

#include "hostwording.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStringList>

namespace {

// The value at the path; array steps are indices.
QJsonValue valueAt(QJsonValue node, const QStringList &path)
{
    for (const QString &step : path)
        node = node.isArray() ? node.toArray().at(step.toInt()) : node.toObject().value(step);
    return node;
}

QJsonValue withValue(const QJsonValue &node, QStringList path, const QJsonValue &value)
{
    if (path.isEmpty())
        return value;
    const QString step = path.takeFirst();
    if (node.isArray()) {
        QJsonArray array = node.toArray();
        const int index = step.toInt();
        if (index >= 0 && index < array.size())
            array[index] = withValue(array.at(index), path, value);
        return array;
    }
    QJsonObject object = node.toObject();
    object[step] = withValue(object.value(step), path, value);
    return object;
}

bool write(const QString &path, const QJsonValue &root)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) &&
           file.write(QJsonDocument(root.toObject()).toJson()) >= 0 && file.commit();
}

} // namespace

bool WriteMergeSample(const QString &factoryFile, const QString &dataDir, const QString &importFile,
                      QString *error)
{
    QFile file(factoryFile);
    const QJsonValue factory = file.open(QIODevice::ReadOnly)
                                   ? QJsonValue(QJsonDocument::fromJson(file.readAll()).object())
                                   : QJsonValue();
    // The first tube power with two materials that have a cutting set.
    const QJsonArray glass =
        valueAt(factory, {QStringLiteral("Type"), QStringLiteral("Glass")}).toArray();
    QStringList sets[2];
    for (int power = 0; power < glass.size() && sets[1].isEmpty(); ++power) {
        sets[0].clear();
        const QStringList base{QStringLiteral("Type"), QStringLiteral("Glass"),
                               QString::number(power), QStringLiteral("Material")};
        const QStringList materials = valueAt(factory, base).toObject().keys();
        int found = 0;
        for (const QString &material : materials) {
            const QStringList thickness = base + QStringList{material, QStringLiteral("Thickness")};
            const QStringList keys = valueAt(factory, thickness).toObject().keys();
            const QStringList set =
                thickness + QStringList{keys.value(0), QStringLiteral("Cutting")};
            if (keys.isEmpty() || !valueAt(factory, set).isObject())
                continue;
            sets[found++] = set;
            if (found == 2)
                break;
        }
    }
    if (sets[1].isEmpty()) {
        *error = Wording("The factory library %1 has no sample to merge.").arg(factoryFile);
        return false;
    }
    auto changed = [&](const QJsonValue &root, const QStringList &set, const char *key, double by) {
        const QStringList path = set + QStringList{QLatin1String(key)};
        return withValue(root, path, valueAt(root, path).toDouble() + by);
    };
    const QJsonValue user = changed(factory, sets[0], "Speed", 2);
    QJsonValue incoming = changed(factory, sets[0], "Speed", 4);
    incoming = changed(incoming, sets[1], "Speed", 1);
    incoming = changed(incoming, sets[1], "Power", 5);
    // A thickness the user's material lacks, with the first one's cutting set.
    QStringList thicker = sets[0].mid(0, sets[0].size() - 2);
    thicker << QStringLiteral("12.00");
    incoming = withValue(incoming, thicker,
                         QJsonObject{{QStringLiteral("Cutting"), valueAt(factory, sets[0])}});
    if (!write(dataDir + QStringLiteral("/lm.json"), user) || !write(importFile, incoming)) {
        *error = Wording("Cannot write the merge sample into %1.").arg(dataDir);
        return false;
    }
    return true;
}
