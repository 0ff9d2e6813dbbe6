#include "factorytable.h"

#include "library/crunningoptions.h"
#include "library/librarydocument.h"
#include "library/pictureencoding.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QStringList>

#include <cmath>

namespace {

const QStringList kColumns = {
    QStringLiteral("tube"),      QStringLiteral("power"),     QStringLiteral("material"),
    QStringLiteral("icon"),      QStringLiteral("thickness"), QStringLiteral("craft"),
    QStringLiteral("speed"),     QStringLiteral("power1"),    QStringLiteral("power1min"),
    QStringLiteral("frequency"), QStringLiteral("air"),       QStringLiteral("passes"),
    QStringLiteral("dpi"),       QStringLiteral("note"),
};
enum Column { Tube, Power, Material, Icon, Thickness, Craft, Speed, Power1, Power1Min, Frequency,
              Air, Passes, Dpi, Note };

// A row's first fault; it ends the row and the run.
struct RowError
{
    QString text;
};

class Row
{
public:
    explicit Row(QStringList fields) : m_fields(std::move(fields)) {}

    QString text(Column c) const { return m_fields.value(c).trimmed(); }

    double number(Column c, double low, double high) const
    {
        bool ok = false;
        const double value = text(c).toDouble(&ok);
        if (!ok || !std::isfinite(value) || value < low || value > high)
            throw RowError{bad(c)};
        return value;
    }

    qint32 whole(Column c, qint32 low, qint32 high) const
    {
        bool ok = false;
        const qint32 value = text(c).toInt(&ok);
        if (!ok || value < low || value > high)
            throw RowError{bad(c)};
        return value;
    }

    QString bad(Column c) const
    {
        return kColumns.at(c) + QStringLiteral(" \"") + text(c) + QStringLiteral("\" is not valid");
    }

private:
    QStringList m_fields;
};

quint32 nameIndex(const Row &row, Column c, QString (*nameOf)(quint32))
{
    const QString name = row.text(c);
    for (quint32 i = 0; i < 5; ++i) {
        if (nameOf(i) == name)
            return i;
    }
    throw RowError{row.bad(c)};
}

void addRow(const Row &row, const QString &swatchDir, QHash<QString, QString> &pictures,
            QSet<QString> &keys, CMaterialLibrary &library)
{
    const quint32 tube = nameIndex(row, Tube, &TubeTypeName);
    const qint32 power = row.whole(Power, 1, 100000);
    const QString name = row.text(Material);
    if (name.isEmpty())
        throw RowError{QStringLiteral("material is empty")};
    const QString icon = row.text(Icon);
    if (icon.isEmpty() || icon.contains(QLatin1Char('/')) || icon.contains(QLatin1Char('\\')))
        throw RowError{row.bad(Icon)};
    const double thickness = row.number(Thickness, 0.001, 1000.0);
    const quint32 craft = nameIndex(row, Craft, &CraftName);
    const double speed = row.number(Speed, 0.0, 100000.0);
    if (IsCutCraft(craft) && speed != std::floor(speed))
        throw RowError{QStringLiteral("speed of a line craft must be a whole number, the library "
                                      "reads it so")};
    const double power1 = row.number(Power1, 0.0, 100.0);
    const double power1min = row.number(Power1Min, 0.0, 100.0);
    const qint32 frequency = row.whole(Frequency, 0, 10000000);
    const qint32 air = row.whole(Air, 0, 1);
    const qint32 passes = row.whole(Passes, 0, 1000);
    const qint32 dpi = row.whole(Dpi, 0, 100);
    const QString note = row.text(Note);

    const QString key = QStringList{QString::number(tube), QString::number(power), name,
                                    ThicknessKey(thickness), QString::number(craft)}
                            .join(QLatin1Char('\t'));
    if (keys.contains(key))
        throw RowError{QStringLiteral("a second row for the same tube, power, material, "
                                      "thickness and craft")};
    keys.insert(key);

    const QString iconPath = QStringLiteral("/Res/Icon/") + icon;
    if (const CLibMaterial *known = library.FindMaterial(tube, power, name)) {
        if (known->iconPath != iconPath)
            throw RowError{QStringLiteral("material \"") + name
                           + QStringLiteral("\" has another icon on an earlier row")};
    } else {
        auto picture = pictures.constFind(icon);
        if (picture == pictures.cend()) {
            const QString file = QDir(swatchDir).filePath(icon);
            const QString encoded = QFileInfo(file).isFile() ? EncodePicture(file) : QString();
            if (encoded.isEmpty())
                throw RowError{QStringLiteral("cannot read the picture ") + file};
            picture = pictures.insert(icon, encoded);
        }
        library.AddPower(tube, power, false);
        CLibMaterial material;
        material.name = name;
        material.iconPath = iconPath;
        material.iconBase64 = *picture;
        material.tube = tube;
        material.power = power;
        library.AddMaterial(material);
    }
    library.AddThickness(tube, power, name, thickness);

    const CLibKey libKey{tube, power, name, thickness, craft};
    if (IsCutCraft(craft)) {
        CLibCutSet set;
        set.key = libKey;
        set.blowing = air != 0;
        set.speed = speed;
        set.laser1.power = power1;
        set.laser1.turnPower = power1min;
        set.laser1.frequency = frequency;
        set.note = note;
        library.SetCutSet(set);
    } else if (IsSweepCraft(craft)) {
        CLibSweepSet set;
        set.key = libKey;
        set.blowing = air != 0;
        set.speed = speed;
        set.laser1.power = power1;
        set.laser1.frequency = frequency;
        set.dpi = dpi;
        if (craft == LIB_CRAFT_DEEP) {
            set.minPower = power1min;
            set.maxPower = power1;
            set.carvingNumber = passes;
        }
        set.note = note;
        library.SetSweepSet(set);
    } else {
        // A reader keeps only that the thickness has a mark set: a note
        // here would be gone after the first save.
        library.SetMarkSet({libKey, QString()});
    }
}

} // namespace

bool ReadFactoryTable(const QByteArray &table, const QString &swatchDir,
                      CMaterialLibrary &library, QString *error)
{
    library.Clear();
    library.SetVersion(1);
    const QStringList lines = QString::fromUtf8(table).split(QLatin1Char('\n'));
    bool header = false;
    QHash<QString, QString> pictures;
    QSet<QString> keys;
    for (int i = 0; i < lines.size(); ++i) {
        QString line = lines.at(i);
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        if (line.startsWith(QLatin1Char('#')) || line.trimmed().isEmpty())
            continue;
        QStringList fields = line.split(QLatin1Char('\t'));
        const QString where = QStringLiteral("line ") + QString::number(i + 1) + QStringLiteral(": ");
        if (!header) {
            for (QString &field : fields)
                field = field.trimmed();
            if (fields != kColumns) {
                *error = where + QStringLiteral("the header must be: ")
                    + kColumns.join(QLatin1Char(' '));
                return false;
            }
            header = true;
            continue;
        }
        // The note may go without its tab when it is empty.
        if (fields.size() == kColumns.size() - 1)
            fields.append(QString());
        if (fields.size() != kColumns.size()) {
            *error = where + QString::number(fields.size()) + QStringLiteral(" fields, ")
                + QString::number(kColumns.size()) + QStringLiteral(" expected");
            return false;
        }
        try {
            addRow(Row(fields), swatchDir, pictures, keys, library);
        } catch (const RowError &e) {
            *error = where + e.text;
            return false;
        }
    }
    if (!header) {
        *error = QStringLiteral("no header line");
        return false;
    }
    if (library.Materials().empty()) {
        *error = QStringLiteral("no material");
        return false;
    }
    return true;
}
