#include "library/clayercontext.h"
#include "library/clibrarystore.h"
#include "librarytestdata.h"
#include "module/clayermgrmoduleins.h"
#include "testenvironment.h"

#include "ctranslator.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <csignal>
#include <memory>
#include <sys/resource.h>

namespace {

const QDateTime kNow(QDate(2025, 11, 7), QTime(1, 56, 37));
const QString kFirstBackup = QStringLiteral("lib20251107015637.bck");
const QByteArray kNoFile = "<none>";
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

CMaterialLibrary read(const QByteArray &bytes)
{
    CMaterialLibrary library;
    ReadMaterialLibrary(jsonObject(bytes), library);
    return library;
}


// The user's edit that every flow must save.
bool addMine(const QString &name = QStringLiteral("Mine"))
{
    return store().UserLibrary().AddMaterial(libMaterial(name, {1.0}, 0, 80));
}

bool hasMine(const QByteArray &bytes, const QString &name = QStringLiteral("Mine"))
{
    return read(bytes).MaterialNames(0, 80).contains(name);
}

struct Env : TestEnvironment
{
    Env() { store().SetClock([] { return kNow; }); }
    QString factory() const { return resourceDir() + QStringLiteral("/Data/defaultMaterial.json"); }
    QStringList backups() const { return QDir(dataDir() + QStringLiteral("/Backup")).entryList(QDir::Files, QDir::Name); }
    QByteArray backup(const QString &name) const { return readFile(CLibraryStore::BackupDir() + name); }
    bool logHas(const QString &text) const { return logLines().join(QLatin1Char('\n')).contains(text); }
    // A file where the backup folder should be.
    bool blockBackups() const { return writeFile(dataDir() + QStringLiteral("/Backup"), "in the way"); }
    QString importFile(const QByteArray &bytes) const
    {
        const QString path = root() + QStringLiteral("/import.json");
        if (bytes != kNoFile)
            writeFile(path, bytes);
        return path;
    }
};

} // namespace

class tst_LibraryStore : public QObject
{
    Q_OBJECT

private slots:
    void paths()
    {
        Env env;
        const QString data = env.dataDir() + QStringLiteral("/Data");
        QCOMPARE(CLibraryStore::UserLibraryLoadPath(), data + QStringLiteral("/lm.json"));
        QCOMPARE(CLibraryStore::UserLibraryPath(), data + QStringLiteral("//lm.json"));
        QCOMPARE(CLibraryStore::RunningOptionsLoadPath(), data + QStringLiteral("/lm.tmp.json"));
        QCOMPARE(CLibraryStore::RunningOptionsPath(), data + QStringLiteral("//lm.tmp.json"));
        QCOMPARE(CLibraryStore::FactoryLibraryPath(), env.factory());
        QCOMPARE(CLibraryStore::BackupDir(), env.dataDir() + QStringLiteral("/Backup/"));
    }

    void load_data()
    {
        QTest::addColumn<bool>("factory");
        QTest::addColumn<QByteArray>("user");
        QTest::addColumn<QByteArray>("loaded"); // the user library after the load
        QTest::addColumn<QString>("reason");    // logged when the file is kept aside

        const QByteArray factory = jsonBytes(factoryLibrary()), sample = jsonBytes(sampleLibrary());
        const QByteArray empty = "{\"Type\":{}}";
        // clang-format off
        QTest::newRow("first start: factory copied") << true << kNoFile << factory << QString();
        QTest::newRow("no library anywhere") << false << kNoFile << empty << QString();
        QTest::newRow("user library kept") << true << sample << sample << QString();
        QTest::newRow("corrupt: truncated") << true << sample.left(300) << empty << "not JSON";
        QTest::newRow("corrupt: binary") << true << QByteArray("\x89PNG\r\n\x1a\n", 8) << empty << "not JSON";
        QTest::newRow("corrupt: no Type") << false << QByteArray("{\"type\": {}}") << empty << "no \"Type\"";
        QTest::newRow("corrupt: array") << true << QByteArray("[]") << empty << "not a JSON object";
        QTest::newRow("corrupt: empty") << true << QByteArray() << empty << "not JSON";
        // clang-format on
    }

    void load()
    {
        QFETCH(bool, factory);
        QFETCH(QByteArray, user);
        QFETCH(QByteArray, loaded);
        QFETCH(QString, reason);
        Env env;
        const QByteArray factoryBytes = jsonBytes(factoryLibrary());
        if (factory)
            QVERIFY(env.writeFile(env.factory(), factoryBytes));
        if (user != kNoFile)
            QVERIFY(env.writeFile(QStringLiteral("lm.json"), user));
        QVERIFY(env.writeFile(QStringLiteral("lm.tmp.json"), kOptions));
        store().UserLibrary() = sampleLibrary();

        store().Load();
        QVERIFY(store().UserLibrary() == read(loaded));
        QVERIFY(store().FactoryLibrary() == (factory ? read(factoryBytes) : CMaterialLibrary()));
        const CRunningOptions *options = g_LayerContext.FindRunningOption(255);
        QVERIFY(options && options->type == 3 && options->MaterialName() == QStringLiteral("Birch"));
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), user != kNoFile ? user : factory ? factoryBytes : QByteArray());
        if (reason.isEmpty()) {
            QVERIFY(!QFileInfo::exists(CLibraryStore::BackupDir()));
        } else {
            // An unreadable library is kept aside before anything can save over it,
            // also a second time within the same second.
            QCOMPARE(env.backups(), QStringList{kFirstBackup});
            QCOMPARE(env.backup(kFirstBackup), user);
            QVERIFY2(env.logHas(reason) && env.logHas(kFirstBackup), qPrintable(env.logLines().join('\n')));
            store().Load();
            QCOMPARE(env.backups(), (QStringList{"lib20251107015637-2.bck", kFirstBackup}));
        }

        // Edits are saved into the user's file, never into the factory file.
        QVERIFY(addMine());
        QVERIFY(store().Save());
        QVERIFY(hasMine(env.readFile(QStringLiteral("lm.json"))));
        QCOMPARE(env.readFile(env.factory()), factory ? factoryBytes : QByteArray());
    }

    void save_data()
    {
        QTest::addColumn<QString>("obstacle");
        QTest::addColumn<bool>("saved");
        QTest::addColumn<bool>("libraryWritten");
        QTest::addColumn<bool>("optionsWritten");
        // clang-format off
        QTest::newRow("nothing in the way") << QString() << true << true << true;
        QTest::newRow("lm.json is a folder") << "lm.json/x" << false << false << true;
        QTest::newRow("lm.tmp.json is a folder") << "lm.tmp.json/x" << false << true << false;
        QTest::newRow("disk full") << "limit" << false << false << false;
        // clang-format on
    }

    void save()
    {
        QFETCH(QString, obstacle);
        QFETCH(bool, saved);
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

        bool result = false;
        if (obstacle == QStringLiteral("limit")) {
            // A full disk, as far as this process can tell: writes past 64 bytes fail.
            rlimit saved{};
            QCOMPARE(getrlimit(RLIMIT_FSIZE, &saved), 0);
            const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
            rlimit small = saved;
            small.rlim_cur = 64;
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
            result = store().Save();
            setrlimit(RLIMIT_FSIZE, &saved);
            std::signal(SIGXFSZ, oldHandler);
        } else {
            result = store().Save();
        }
        QCOMPARE(result, saved);
        QCOMPARE(env.readFile(QStringLiteral("lm.json")) == jsonBytes(sampleLibrary()), libraryWritten);
        QCOMPARE(env.readFile(QStringLiteral("lm.tmp.json")) == g_LayerContext.RunningOptionsJson().toUtf8(), optionsWritten);
        QCOMPARE(env.logHas(QStringLiteral("Library not saved")), !libraryWritten);
        // No temporary files are left beside them; an old file stays whole.
        for (const QString &name : QDir(env.dataDir() + QStringLiteral("/Data")).entryList(QDir::Files))
            QVERIFY2(name == QStringLiteral("lm.json") || name == QStringLiteral("lm.tmp.json"), qPrintable(name));
        if (obstacle == QStringLiteral("limit"))
            QCOMPARE(env.readFile(QStringLiteral("lm.json")) + env.readFile(QStringLiteral("lm.tmp.json")), QByteArray("old{}"));
    }

    void backupNames()
    {
        Env env;
        QCOMPARE(store().BackUpUserLibrary(), QString()); // nothing to back up yet
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), "first"));
        QCOMPARE(store().BackUpUserLibrary(), CLibraryStore::BackupDir() + kFirstBackup);
        // Within the same second: same name, and the first copy stays.
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), "second"));
        QCOMPARE(store().BackUpUserLibrary(), QString());
        QCOMPARE(env.backup(kFirstBackup), QByteArray("first"));
        store().SetClock([] { return QDateTime(QDate(2026, 1, 2), QTime(23, 4, 5)); });
        QVERIFY(!store().BackUpUserLibrary().isEmpty());
        QCOMPARE(env.backups(), (QStringList{kFirstBackup, "lib20260102230405.bck"}));
    }

    void takeOver_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<bool>("userFile");
        QTest::addColumn<bool>("backupsBlocked");
        QTest::addColumn<bool>("taken");

        const QByteArray library = jsonBytes(factoryLibrary());
        // clang-format off
        QTest::newRow("a library") << library << true << false << true;
        QTest::newRow("a library, no lm.json yet") << library << false << false << true;
        QTest::newRow("a library, backup fails") << library << true << true << true;
        QTest::newRow("an empty library") << QByteArray("{\"Type\": {}}") << true << false << true;
        QTest::newRow("not JSON") << QByteArray("{\"Type\": ") << true << false << false;
        QTest::newRow("no Type") << QByteArray("{\"Version\": 2}") << true << false << false;
        QTest::newRow("empty file") << QByteArray() << true << false << false;
        QTest::newRow("no file") << kNoFile << true << false << false;
        // clang-format on
    }

    void takeOver()
    {
        QFETCH(QByteArray, file);
        QFETCH(bool, userFile);
        QFETCH(bool, backupsBlocked);
        QFETCH(bool, taken);
        Env env;
        const QByteArray userBytes = jsonBytes(sampleLibrary());
        if (userFile)
            QVERIFY(env.writeFile(QStringLiteral("lm.json"), userBytes));
        if (backupsBlocked)
            QVERIFY(env.blockBackups());
        store().UserLibrary() = read(userBytes);

        QCOMPARE(store().BackupAndTakeOver(env.importFile(file)), taken);
        // The file's library replaces the user library whole, after a backup.
        QVERIFY(store().UserLibrary() == read(taken ? file : userBytes));
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), taken ? jsonBytes(read(file)) : userFile ? userBytes : QByteArray());
        QCOMPARE(QFileInfo::exists(env.dataFile(QStringLiteral("lm.tmp.json"))), taken);
        QCOMPARE(QFileInfo(CLibraryStore::BackupDir()).isDir(), taken && !backupsBlocked);
        QCOMPARE(env.backup(kFirstBackup), taken && userFile && !backupsBlocked ? userBytes : QByteArray());
        QCOMPARE(env.logHas(QStringLiteral("backup of")), backupsBlocked);
    }

    // An unreadable lm.json without a backup is never saved over, until a
    // take-over replaces it; after that the user's edits are saved again.
    void heldLibrary_data()
    {
        QTest::addColumn<bool>("throughReload");
        QTest::newRow("import") << false;
        QTest::newRow("ReloadLibrary deletes it") << true;
    }

    void heldLibrary()
    {
        QFETCH(bool, throughReload);
        Env env;
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), "{ half a library"));
        QVERIFY(env.blockBackups());
        CLayerMgrModuleIns module;
        QVERIFY(addMine());
        QVERIFY(!store().Save());
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), QByteArray("{ half a library"));
        QVERIFY(env.logHas(QStringLiteral("no backup")));

        if (throughReload)
            module.ReloadLibrary();
        else
            QVERIFY(store().BackupAndTakeOver(env.importFile(jsonBytes(factoryLibrary()))));
        QVERIFY(addMine(QStringLiteral("Later")));
        QVERIFY(store().Save());
        QVERIFY(hasMine(env.readFile(QStringLiteral("lm.json")), QStringLiteral("Later")));
    }

    void reloadLibraryThroughModule_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<bool>("taken");
        QTest::newRow("a library") << jsonBytes(factoryLibrary()) << true;
        QTest::newRow("corrupt") << QByteArray("{\"Type\": {") << false;
        QTest::newRow("no file") << kNoFile << false;
    }

    void reloadLibraryThroughModule()
    {
        QFETCH(QByteArray, file);
        QFETCH(bool, taken);
        Env env;
        QVERIFY(env.writeFile(env.factory(), jsonBytes(sampleLibrary())));
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), jsonBytes(sampleLibrary())));
        auto module = std::make_unique<CLayerMgrModuleIns>();
        QVERIFY(store().UserLibrary() == read(jsonBytes(sampleLibrary())));

        // Someone else puts a library in place, then asks the module to reload.
        QFile::remove(env.dataFile(QStringLiteral("lm.json")));
        if (file != kNoFile)
            QVERIFY(env.writeFile(QStringLiteral("lm.json"), file));
        env.clearLog();
        module->ReloadLibrary();
        QVERIFY(!QFileInfo::exists(env.dataFile(QStringLiteral("lm.json"))));
        QVERIFY(store().UserLibrary() == read(taken ? file : jsonBytes(sampleLibrary())));
        QCOMPARE(env.backup(kFirstBackup), taken ? file : QByteArray());
        QVERIFY(env.logLines().contains(QStringLiteral("2|ReloadLibrary: ") + (taken ? "library taken over" : "nothing taken over")));

        // A later module object shares the library and the running options
        // in memory, unsaved edits included: nothing is read again, the
        // factory file is not copied back, the next save writes the file.
        QVERIFY(addMine());
        CRunningOptions options;
        options.SetMaterialName(QStringLiteral("Oak"));
        g_LayerContext.SetRunningOption(7, options);
        module = std::make_unique<CLayerMgrModuleIns>();
        QVERIFY(g_LayerContext.FindRunningOption(7));
        QCOMPARE(g_LayerContext.FindRunningOption(7)->MaterialName(), QStringLiteral("Oak"));
        QVERIFY(store().Save());
        const QByteArray saved = env.readFile(QStringLiteral("lm.json"));
        QVERIFY(hasMine(saved));
        QCOMPARE(read(saved).MaterialNames(0, 80).contains(QStringLiteral("Factory")), taken);
    }

    void restoreAndReloadFactory()
    {
        Env env;
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), jsonBytes(sampleLibrary())));
        store().Load();
        QVERIFY(!store().RestoreFactoryLibrary()); // no factory file
        QVERIFY(!store().ReloadFactoryLibrary());
        QVERIFY(store().UserLibrary() == read(jsonBytes(sampleLibrary())));

        QVERIFY(env.writeFile(env.factory(), jsonBytes(factoryLibrary())));
        const CMaterialLibrary factory = read(jsonBytes(factoryLibrary()));
        QVERIFY(store().ReloadFactoryLibrary());
        QVERIFY(store().FactoryLibrary() == factory);
        QVERIFY(store().RestoreFactoryLibrary());
        QVERIFY(store().UserLibrary() == factory);
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), jsonBytes(factory));
        QCOMPARE(env.backup(kFirstBackup), jsonBytes(sampleLibrary()));

        // Export: the user library into any file; a folder is refused.
        const QString path = env.root() + QStringLiteral("/export.json");
        QVERIFY(store().WriteUserLibrary(path));
        QCOMPARE(env.readFile(path), jsonBytes(factory));
        QVERIFY(!store().WriteUserLibrary(env.root()));
    }

    void deletionQuestion_data()
    {
        QTest::addColumn<QByteArray>("languageFile");
        QTest::addColumn<QByteArray>("wordings");
        QTest::addColumn<QString>("asked"); // title|question; empty: no question installed
        // clang-format off
        QTest::newRow("defaults") << QByteArray() << QByteArray() << "Tips|Confirm deletion?";
        QTest::newRow("defaults translated") << QByteArray() << QByteArray("Tips=Hinweis\nConfirm deletion?=Löschen?") << "Hinweis|Löschen?";
        QTest::newRow("language file") << QByteArray("[CLayerMgrApp]\nDEL_TITLE=提示\nDEL_TIP=确认删除？") << QByteArray() << "提示|确认删除？";
        QTest::newRow("language file translated") << QByteArray("[CLayerMgrApp]\nDEL_TITLE=Notice\nDEL_TIP=Delete it?") << QByteArray("Notice=Achtung") << "Achtung|Delete it?";
        QTest::newRow("other group not read") << QByteArray("[DLG_LIB_MGR]\nDEL_TITLE=Elsewhere") << QByteArray() << "Tips|Confirm deletion?";
        // Headless use (tools): nobody to ask, nothing refused.
        QTest::newRow("no question installed") << QByteArray() << QByteArray() << QString();
        // clang-format on
    }

    void deletionQuestion()
    {
        QFETCH(QByteArray, languageFile);
        QFETCH(QByteArray, wordings);
        QFETCH(QString, asked);
        Env env;
        if (!languageFile.isEmpty())
            env.writeFile(env.resourceDir() + QStringLiteral("/Lang/Chs/LayerMgr.ini"),
                          languageFile);
        CTranslator *translator = CTranslator::GetInstance();
        if (!wordings.isEmpty()) {
            env.writeFile(env.root() + QStringLiteral("/words/Lang/De/w.ini"), wordings);
            translator->SetResourceDir(env.root() + QStringLiteral("/words"));
            translator->SetLanguage(QStringLiteral("De"));
        }
        QString question;
        if (!asked.isEmpty()) {
            store().SetDeletionQuestion([&](const QString &t, const QString &q) {
                question = t + QLatin1Char('|') + q;
                return false;
            });
        }
        const bool confirmed = store().ConfirmDeletion();
        translator->SetLanguage(QString());
        translator->SetResourceDir(QString());
        QCOMPARE(confirmed, asked.isEmpty());
        QCOMPARE(question, asked);
        QCOMPARE(env.logHas(QStringLiteral("nothing to ask")), asked.isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_LibraryStore)
#include "tst_librarystore.moc"
