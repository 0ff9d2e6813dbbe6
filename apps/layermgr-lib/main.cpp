// layermgr-lib: checks, rewrites and generates material library files.
#include "factorytable.h"
#include "library/clibrarystore.h"
#include "library/crunningoptions.h"
#include "library/librarydocument.h"
#include "library/librarymerge.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
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
    "  diff A B [--json]             list the parameter sets B adds to A, removes from\n"
    "                                A and changes (field by field), in a stable order;\n"
    "                                --json prints the same as JSON\n"
    "  merge USER INCOMING OUT [--factory FILE] [--take-conflicts]\n"
    "                                merge INCOMING into USER as an import does and\n"
    "                                write OUT, printing one line per change; sets the\n"
    "                                user changed from the factory library and INCOMING\n"
    "                                changes otherwise are conflicts, kept as USER has\n"
    "                                them unless --take-conflicts. The factory library\n"
    "                                is FILE, else the one installed with the tool;\n"
    "                                without a readable one every set of USER counts as\n"
    "                                changed\n"
    "  --help                        show this text\n"
    "\n"
    "Exit status: 0 done, 1 the input is not usable or OUT cannot be written (nothing\n"
    "is written then), 2 wrong arguments. diff exits as diff(1) does: 0 the libraries\n"
    "hold the same sets, 1 they differ, 2 trouble (wrong arguments, unreadable file).\n";

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

QString placeText(const CLibKey &key, int depth)
{
    QString text = TubeTypeName(key.tube) + QLatin1Char(' ') + QString::number(key.power)
        + QStringLiteral(" W");
    if (depth > 0)
        text += QStringLiteral(", ") + key.material;
    if (depth > 1)
        text += QStringLiteral(", ") + ThicknessKey(key.thickness);
    if (depth > 2)
        text += QStringLiteral(", ") + CraftName(key.craft);
    return text;
}

int diff(const QString &pathA, const QString &pathB, bool json)
{
    CMaterialLibrary a;
    CMaterialLibrary b;
    for (const auto &[path, library] : {std::pair(pathA, &a), std::pair(pathB, &b)}) {
        const LibraryReadResult read = ReadMaterialLibraryFile(path, *library);
        if (!read.ok()) {
            fail(path + QStringLiteral(": ") + read.reason());
            return 2;
        }
    }
    const std::vector<CLibDiffEntry> entries = DiffLibraries(a, b);
    static const char *const kKinds[] = {"added", "removed", "changed"};
    if (json) {
        QJsonArray list;
        for (const CLibDiffEntry &entry : entries) {
            QJsonObject object{{QStringLiteral("kind"), QLatin1String(kKinds[entry.kind])},
                               {QStringLiteral("tube"), TubeTypeName(entry.key.tube)},
                               {QStringLiteral("power"), entry.key.power},
                               {QStringLiteral("material"), entry.key.material},
                               {QStringLiteral("thickness"), entry.key.thickness},
                               {QStringLiteral("craft"), CraftName(entry.key.craft)}};
            if (entry.kind == CLibDiffEntry::Changed) {
                object.insert(QStringLiteral("field"), entry.caption);
                object.insert(QStringLiteral("old"), entry.oldText);
                object.insert(QStringLiteral("new"), entry.newText);
            }
            list.append(object);
        }
        const QJsonObject root{{QStringLiteral("equal"), entries.empty()},
                               {QStringLiteral("differences"), list}};
        out() << QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Indented));
    } else {
        for (const CLibDiffEntry &entry : entries) {
            out() << kKinds[entry.kind] << ": " << placeText(entry.key, 3);
            if (entry.kind == CLibDiffEntry::Changed)
                out() << ": " << entry.caption << ' ' << entry.oldText << " -> " << entry.newText;
            out() << '\n';
        }
    }
    out().flush();
    return entries.empty() ? 0 : 1;
}

int merge(const QString &userPath, const QString &incomingPath, const QString &outPath,
          const QString &factoryPath, bool takeConflicts)
{
    CMaterialLibrary user;
    const LibraryReadResult read = ReadMaterialLibraryFile(userPath, user);
    if (!read.ok())
        return fail(userPath + QStringLiteral(": ") + read.reason());
    CMaterialLibrary incoming;
    QString reason;
    if (!importLibrary(incomingPath, incoming, &reason))
        return fail(incomingPath + QStringLiteral(": ") + reason);
    CMaterialLibrary factory;
    if (!factoryPath.isEmpty()) {
        const LibraryReadResult baseline = ReadMaterialLibraryFile(factoryPath, factory);
        if (!baseline.ok())
            return fail(factoryPath + QStringLiteral(": ") + baseline.reason());
    } else {
        const QString installed = CLibraryStore::FactoryLibraryPath();
        if (!ReadMaterialLibraryFile(installed, factory).ok()) {
            factory.Clear();
            QTextStream(stderr) << "layermgr-lib: no factory library at " << installed
                                << ": every set of " << userPath << " counts as changed"
                                << Qt::endl;
        }
    }

    CLibraryMerge merge(factory, user, incoming);
    for (CLibMergeRow &row : merge.Rows()) {
        if (row.conflict)
            row.accepted = takeConflicts;
    }
    if (!writeLibrary(outPath, merge.Apply()))
        return fail(outPath + QStringLiteral(": cannot write"));

    static const char *const kKinds[] = {"new power", "new material", "new thickness", "new set",
                                         "changed"};
    static const int kDepth[] = {0, 1, 2, 3, 3};
    for (const CLibMergeRow &row : merge.Rows()) {
        const int kind = int(row.kind);
        out() << kKinds[kind] << ": " << placeText(row.key, kDepth[kind]);
        if (row.kind == ELibMergeKind::Field)
            out() << ": " << row.caption << ' ' << row.oldText << " -> " << row.newText;
        if (row.conflict)
            out() << (row.accepted ? " (conflict, taken)" : " (conflict, kept)");
        out() << '\n';
    }
    out() << merge.Rows().size() << " changes, " << merge.ConflictCount() << " conflicts "
          << (takeConflicts ? "taken" : "kept") << '\n';
    out().flush();
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
    // diff and merge take options besides their files.
    if (command == QLatin1String("diff") || command == QLatin1String("merge")) {
        const bool isDiff = command == QLatin1String("diff");
        QStringList files;
        QString factory;
        bool json = false;
        bool takeConflicts = false;
        for (qsizetype i = 1; i < args.size(); ++i) {
            const QString &arg = args.at(i);
            if (isDiff && arg == QLatin1String("--json")) {
                json = true;
            } else if (!isDiff && arg == QLatin1String("--take-conflicts")) {
                takeConflicts = true;
            } else if (!isDiff && arg == QLatin1String("--factory")) {
                if (++i == args.size())
                    return usageError(QStringLiteral("--factory takes a file"));
                factory = args.at(i);
            } else if (arg.startsWith(QLatin1String("--"))) {
                return usageError(command + QStringLiteral(": unknown option \"") + arg
                                  + QLatin1Char('"'));
            } else {
                files.append(arg);
            }
        }
        const int wanted = isDiff ? 2 : 3;
        if (files.size() != wanted) {
            return usageError(command + QStringLiteral(" takes ") + QString::number(wanted)
                              + QStringLiteral(" files"));
        }
        if (isDiff)
            return diff(files.at(0), files.at(1), json);
        return merge(files.at(0), files.at(1), files.at(2), factory, takeConflicts);
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
