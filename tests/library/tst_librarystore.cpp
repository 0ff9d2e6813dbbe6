#include "library/clayercontext.h"
#include "library/clibrarystore.h"
#include "librarytestdata.h"
#include "module/clayermgrmoduleins.h"
#include "testenvironment.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <csignal>
#include <memory>
#include <sys/resource.h>

namespace {

const QDateTime kNow(QDate(2025, 11, 7), QTime(1, 56, 37));
const QString kFirstBackup = QStringLiteral("lib20251107015637.bck");
const QByteArray kNoFile = "<none>";
const QByteArray kHalf = "{ half a library";
const QByteArray kOptions = "{\"RunningOpition\": [{\"Color\": \"255\", \"Type\": \"Fiber\", "
                            "\"MaterialName\": \"Birch\", \"Thickness\": \"3\"}]}";

CLibraryStore &store()
{
    return g_LayerContext.Store();
}

CMaterialLibrary factoryLibrary()
{
    CMaterialLibrary library;
    library.AddPower(0, 80, false);
    library.AddMaterial(libMaterial(QStringLiteral("Factory"), {2.0}, 0, 80));
    library.SetCutSet(sampleCutSet(libKey(QStringLiteral("Factory"), 2.0, 0, 0, 80)));
    return library;
}

// The user's edit that every flow must save.
const CLibMaterial kMine = libMaterial(QStringLiteral("Mine"), {1.0}, 0, 80);

struct Env : TestEnvironment
{
    Env() { store().SetClock([] { return kNow; }); }
    QString factory() const { return resourceDir() + QStringLiteral("/Data/defaultMaterial.json"); }
    QStringList backups() const { return QDir(dataDir() + QStringLiteral("/Backup")).entryList(QDir::Files, QDir::Name); }
    QByteArray backup(const QString &name) const { return readFile(CLibraryStore::BackupDir() + name); }
    bool logHas(const QString &text) const { return logLines().join(QLatin1Char('\n')).contains(text); }
};

} // namespace

class tst_LibraryStore : public QObject
{
    Q_OBJECT

private slots:
    void load_data()
    {
        QTest::addColumn<QByteArray>("factory"); // empty: no factory file
        QTest::addColumn<QByteArray>("user");
        QTest::addColumn<QByteArray>("loaded"); // the user library after the load
        QTest::addColumn<QString>("reason");    // logged when the file is kept aside

        const QByteArray factory = jsonBytes(factoryLibrary()), sample = jsonBytes(sampleLibrary());
        const QByteArray empty = "{\"Type\":{}}";
        // clang-format off
        QTest::newRow("first start: factory copied") << factory << kNoFile << factory << QString();
        QTest::newRow("no library anywhere") << QByteArray() << kNoFile << empty << QString();
        QTest::newRow("user library kept") << factory << sample << sample << QString();
        QTest::newRow("corrupt: truncated") << factory << sample.left(300) << empty << "not JSON";
        QTest::newRow("corrupt: no Type") << QByteArray() << QByteArray("{\"type\": {}}") << empty << "no \"Type\"";
        // clang-format on
    }

    void load()
    {
        QFETCH(QByteArray, factory);
        QFETCH(QByteArray, user);
        QFETCH(QByteArray, loaded);
        QFETCH(QString, reason);
        Env env;
        if (!factory.isEmpty())
            QVERIFY(env.writeFile(env.factory(), factory));
        if (user != kNoFile)
            QVERIFY(env.writeFile(QStringLiteral("lm.json"), user));
        QVERIFY(env.writeFile(QStringLiteral("lm.tmp.json"), kOptions));
        store().UserLibrary() = sampleLibrary();

        store().Load();
        QVERIFY(store().UserLibrary() == readBytes(loaded));
        QVERIFY(store().FactoryLibrary() == (factory.isEmpty() ? CMaterialLibrary() : readBytes(factory)));
        const CRunningOptions *options = g_LayerContext.FindRunningOption(255);
        QVERIFY(options && options->type == 3 && options->MaterialName() == QStringLiteral("Birch"));
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), user != kNoFile ? user : factory);
        QCOMPARE(env.backups(), reason.isEmpty() ? QStringList() : QStringList{kFirstBackup});
        if (!reason.isEmpty()) {
            // An unreadable library is kept aside before anything can save over it,
            // also a second time within the same second.
            QCOMPARE(env.backup(kFirstBackup), user);
            QVERIFY2(env.logHas(reason) && env.logHas(kFirstBackup), qPrintable(env.logLines().join('\n')));
            store().Load();
            QCOMPARE(env.backups(), (QStringList{"lib20251107015637-2.bck", kFirstBackup}));
        }

        // Edits are saved into the user's file, never into the factory file.
        QVERIFY(store().UserLibrary().AddMaterial(kMine));
        QVERIFY(store().Save());
        QVERIFY(readBytes(env.readFile(QStringLiteral("lm.json"))).MaterialNames(0, 80).contains("Mine"));
        QCOMPARE(env.readFile(env.factory()), factory);
    }

    void save_data()
    {
        QTest::addColumn<QString>("obstacle");
        QTest::addColumn<bool>("libraryWritten");
        QTest::addColumn<bool>("optionsWritten");
        // clang-format off
        QTest::newRow("nothing in the way") << QString() << true << true;
        QTest::newRow("lm.json is a folder") << "lm.json/x" << false << true;
        QTest::newRow("lm.tmp.json is a folder") << "lm.tmp.json/x" << true << false;
        QTest::newRow("disk full") << "limit" << false << false;
        // clang-format on
    }

    void save()
    {
        QFETCH(QString, obstacle);
        QFETCH(bool, libraryWritten);
        QFETCH(bool, optionsWritten);
        Env env;
        if (obstacle == QStringLiteral("limit")) {
            QVERIFY(env.writeFile(QStringLiteral("lm.json"), "old"));
            QVERIFY(env.writeFile(QStringLiteral("lm.tmp.json"), "{}"));
        } else if (!obstacle.isEmpty()) {
            QVERIFY(QDir().mkpath(env.dataFile(obstacle)));
        }
        store().UserLibrary() = sampleLibrary();
        g_LayerContext.SetRunningOption(0xFF00, CRunningOptions());

        // A full disk, as far as this process can tell: writes past 64 bytes fail.
        rlimit old{};
        getrlimit(RLIMIT_FSIZE, &old);
        rlimit small = old;
        small.rlim_cur = obstacle == QStringLiteral("limit") ? 64 : old.rlim_cur;
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        const bool result = store().Save();
        setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, oldHandler);
        QCOMPARE(result, libraryWritten && optionsWritten);
        QCOMPARE(env.readFile(QStringLiteral("lm.json")) == jsonBytes(sampleLibrary()), libraryWritten);
        QCOMPARE(env.readFile(QStringLiteral("lm.tmp.json")) == g_LayerContext.RunningOptionsJson().toUtf8(), optionsWritten);
        QCOMPARE(env.logHas(QStringLiteral("Library not saved")), !libraryWritten);
        // No temporary files are left beside them; an old file stays whole.
        for (const QString &name : QDir(env.dataDir() + QStringLiteral("/Data")).entryList(QDir::Files))
            QVERIFY2(name == QStringLiteral("lm.json") || name == QStringLiteral("lm.tmp.json"), qPrintable(name));
        if (obstacle == QStringLiteral("limit"))
            QCOMPARE(env.readFile(QStringLiteral("lm.json")) + env.readFile(QStringLiteral("lm.tmp.json")), QByteArray("old{}"));
    }

    // An import, a restore or a reload replaces the user library whole after a
    // backup; an unreadable lm.json without a backup is never saved over until
    // then. Later module objects share the library and options in memory.
    void replace_data()
    {
        QTest::addColumn<QByteArray>("user"); // lm.json before
        QTest::addColumn<bool>("blocked");    // no backup can be made
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("how");
        QTest::addColumn<bool>("taken");
        const QByteArray sample = jsonBytes(sampleLibrary()), factory = jsonBytes(factoryLibrary());
        // clang-format off
        QTest::newRow("import") << sample << false << factory << "import" << true;
        QTest::newRow("import, no lm.json yet") << kNoFile << false << factory << "import" << true;
        QTest::newRow("import, backup fails") << sample << true << factory << "import" << true;
        QTest::newRow("import: not JSON") << sample << false << QByteArray("{\"Type\": ") << "import" << false;
        QTest::newRow("import over a held library") << kHalf << true << factory << "import" << true;
        QTest::newRow("restore factory") << sample << false << factory << "restore" << true;
        QTest::newRow("restore: no factory file") << sample << false << kNoFile << "restore" << false;
        QTest::newRow("reload") << sample << false << factory << "reload" << true;
        QTest::newRow("reload: corrupt") << sample << false << QByteArray("{\"Type\": {") << "reload" << false;
        QTest::newRow("reload deletes a held library") << kHalf << true << kHalf << "reload" << false;
        // clang-format on
    }

    void replace()
    {
        QFETCH(QByteArray, user);
        QFETCH(bool, blocked);
        QFETCH(QByteArray, file);
        QFETCH(QString, how);
        QFETCH(bool, taken);
        Env env;
        if (user != kNoFile)
            QVERIFY(env.writeFile(QStringLiteral("lm.json"), user));
        if (blocked) // a file where the backup folder should be
            QVERIFY(env.writeFile(env.dataDir() + QStringLiteral("/Backup"), "in the way"));
        auto module = std::make_unique<CLayerMgrModuleIns>();
        const CMaterialLibrary before = store().UserLibrary();
        if (user == kHalf) {
            QVERIFY(!store().Save());
            QCOMPARE(env.readFile(QStringLiteral("lm.json")), kHalf);
            QVERIFY(env.logHas(QStringLiteral("no backup")));
        }

        const bool reload = how == QStringLiteral("reload");
        if (reload) {
            QVERIFY(env.writeFile(QStringLiteral("lm.json"), file));
            module->ReloadLibrary();
            QVERIFY(!QFileInfo::exists(env.dataFile(QStringLiteral("lm.json"))));
            QVERIFY(env.logLines().contains(QStringLiteral("2|ReloadLibrary: ") + (taken ? "library taken over" : "nothing taken over")));
        } else {
            const bool restore = how == QStringLiteral("restore");
            const QString path = restore ? env.factory() : env.root() + QStringLiteral("/import.json");
            if (file != kNoFile)
                QVERIFY(env.writeFile(path, file));
            QCOMPARE(restore ? store().RestoreFactoryLibrary() : store().BackupAndTakeOver(path), taken);
            QCOMPARE(env.readFile(QStringLiteral("lm.json")),
                     taken ? jsonBytes(readBytes(file)) : user != kNoFile ? user : QByteArray());
        }
        QVERIFY(store().UserLibrary() == (taken ? readBytes(file) : before));
        QCOMPARE(QFileInfo::exists(env.dataFile(QStringLiteral("lm.tmp.json"))), taken || user == kHalf);
        // A second backup within the same second is dropped; the first stays.
        if (taken && !blocked && !reload && user != kNoFile)
            QCOMPARE(store().BackUpUserLibrary(), QString());
        QCOMPARE(env.backup(kFirstBackup), taken && !blocked ? (reload ? file : user != kNoFile ? user : QByteArray()) : QByteArray());
        QCOMPARE(env.logHas(QStringLiteral("backup of")), taken && blocked);

        QVERIFY(store().UserLibrary().AddMaterial(kMine));
        g_LayerContext.SetRunningOption(7, CRunningOptions());
        module = std::make_unique<CLayerMgrModuleIns>();
        QVERIFY(g_LayerContext.FindRunningOption(7));
        QVERIFY(store().Save());
        const QStringList names = readBytes(env.readFile(QStringLiteral("lm.json"))).MaterialNames(0, 80);
        QCOMPARE(names, taken ? (QStringList{"Factory", "Mine"}) : QStringList{"Mine"});
    }
};

QTEST_GUILESS_MAIN(tst_LibraryStore)
#include "tst_librarystore.moc"
