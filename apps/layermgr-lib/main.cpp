// layermgr-lib: checks, rewrites and generates material library files.
#include "factorytable.h"
#include "library/crunningoptions.h"
#include "library/librarydocument.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace {

const char kUsage[] =
    "Usage: layermgr-lib COMMAND ...\n"
    "\n"
    "Commands:\n"
    "  check FILE                    read FILE as a material library and print, per tube\n"
    "                                type and power, its materials, thicknesses and\n"
    "                                parameter sets per craft\n"
    "  rewrite IN OUT                import IN and export it to OUT, as the library\n"
    "                                manager does\n"
    "  generate TABLE SWATCHES OUT   build a library from a factory table (tab-separated)\n"
    "                                and its swatch pictures\n"
    "  --help                        show this text\n"
    "\n"
    "Exit status: 0 done, 1 the input is not usable or OUT cannot be written (nothing\n"
    "is written then), 2 wrong arguments.\n";

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

int fail(const QString &message)
{
    QTextStream err(stderr);
    err << "layermgr-lib: " << message << Qt::endl;
    return 1;
}

int usageError(const QString &message)
{
    QTextStream err(stderr);
    err << "layermgr-lib: " << message << "\n\n" << kUsage;
    err.flush();
    return 2;
}

// Reads a library as an import does: it must read and hold a material.
bool importLibrary(const QString &path, CMaterialLibrary &library, QString *reason)
{
    const LibraryReadResult read = ReadMaterialLibraryFile(path, library);
    if (!read.ok()) {
        *reason = read.reason();
        return false;
    }
    if (library.Materials().empty()) {
        *reason = QStringLiteral("no material");
        return false;
    }
    return true;
}

int check(const QString &path)
{
    CMaterialLibrary library;
    QString reason;
    if (!importLibrary(path, library, &reason))
        return fail(path + QStringLiteral(": ") + reason);

    const QJsonValue version = library.Version();
    out() << path << ": material library, Version "
          << (version.isDouble() ? QString::number(version.toDouble())
                                 : QStringLiteral("(not a number)"))
          << ", " << library.Materials().size() << " materials, "
          << library.CutSetCount() + library.SweepSetCount() + library.MarkSetCount()
          << " parameter sets\n";
    for (const CLibTube &tube : library.Tubes()) {
        if (tube.powers.empty())
            out() << TubeTypeName(tube.type) << ": no powers\n";
        for (const CLibPower &power : tube.powers) {
            const auto materials = library.MaterialsOf(tube.type, power.power);
            size_t thicknesses = 0;
            for (const CLibMaterial *material : materials)
                thicknesses += material->thicknesses.size();
            out() << TubeTypeName(tube.type) << ' ' << power.power << " W"
                  << (power.custom ? " (user)" : "") << ": " << materials.size()
                  << " materials, " << thicknesses << " thicknesses;";
            for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
                out() << (craft ? ", " : " ") << CraftName(craft) << ' '
                      << library.CountSets(tube.type, power.power, craft);
            }
            out() << '\n';
        }
    }
    out().flush();
    return 0;
}

bool writeLibrary(const QString &path, const CMaterialLibrary &library)
{
    const QString dir = QFileInfo(path).absolutePath();
    return QDir().mkpath(dir) && WriteMaterialLibraryFile(path, library);
}

int rewrite(const QString &in, const QString &outPath)
{
    CMaterialLibrary library;
    QString reason;
    if (!importLibrary(in, library, &reason))
        return fail(in + QStringLiteral(": ") + reason);
    if (!writeLibrary(outPath, library))
        return fail(outPath + QStringLiteral(": cannot write"));
    return 0;
}

int generate(const QString &tablePath, const QString &swatchDir, const QString &outPath)
{
    QFile table(tablePath);
    if (QFileInfo(tablePath).isDir() || !table.open(QIODevice::ReadOnly))
        return fail(tablePath + QStringLiteral(": cannot open"));
    if (!QFileInfo(swatchDir).isDir())
        return fail(swatchDir + QStringLiteral(": not a folder"));
    CMaterialLibrary library;
    QString reason;
    if (!ReadFactoryTable(table.readAll(), swatchDir, library, &reason))
        return fail(tablePath + QStringLiteral(": ") + reason);
    if (!writeLibrary(outPath, library))
        return fail(outPath + QStringLiteral(": cannot write"));
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.isEmpty())
        return usageError(QStringLiteral("no command"));
    const QString command = args.first();
    if (command == QLatin1String("--help") || command == QLatin1String("-h")) {
        out() << kUsage;
        out().flush();
        return 0;
    }
    struct Command
    {
        const char *name;
        int arguments;
    };
    const Command commands[] = {{"check", 1}, {"rewrite", 2}, {"generate", 3}};
    for (const Command &c : commands) {
        if (command != QLatin1String(c.name))
            continue;
        if (args.size() != c.arguments + 1) {
            return usageError(command + QStringLiteral(" takes ") + QString::number(c.arguments)
                              + (c.arguments == 1 ? QStringLiteral(" argument")
                                                  : QStringLiteral(" arguments")));
        }
        if (command == QLatin1String("check"))
            return check(args.at(1));
        if (command == QLatin1String("rewrite"))
            return rewrite(args.at(1), args.at(2));
        return generate(args.at(1), args.at(2), args.at(3));
    }
    return usageError(QStringLiteral("unknown command \"") + command + QLatin1Char('"'));
}
