#include "librarytestdata.h"
#include "library/clayercontext.h"
#include "library/clibrarystore.h"
#include "module/clayermgrmoduleins.h"
#include "testenvironment.h"

#include "ctranslator.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/resource.h>
#endif

namespace {

const QDateTime kNow(QDate(2025, 11, 7), QTime(1, 56, 37));
const QString kFirstBackup = QStringLiteral("lib20251107015637.bck");
const QByteArray kNoFile = "<none>";

CLibraryStore &store()
{
    return g_LayerContext.Store();
}

QString factoryPath(const TestEnvironment &env)
{
    return env.resourceDir() + QStringLiteral("/Data/defaultMaterial.json");
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

QStringList backups(const TestEnvironment &env)
{
    return QDir(env.dataDir() + QStringLiteral("/Backup")).entryList(QDir::Files, QDir::Name);
}

QStringList dataFiles(const TestEnvironment &env)
{
    return QDir(env.dataDir() + QStringLiteral("/Data")).entryList(QDir::Files, QDir::Name);
}

bool logHas(const TestEnvironment &env, const QString &text)
{
    return env.logLines().join(QLatin1Char('\n')).contains(text);
}

// Writes the file to take over; kNoFile writes nothing.
QString importFile(const TestEnvironment &env, const QByteArray &bytes)
{
    const QString path = env.root() + QStringLiteral("/import.json");
    if (bytes != kNoFile)
        env.writeFile(path, bytes);
    return path;
}

QDateTime g_now;

void useFixedClock(const QDateTime &now = kNow)
{
    g_now = now;
    store().SetClock([] { return g_now; });
}

} // namespace

class tst_LibraryStore : public QObject
{
    Q_OBJECT

private slots:
    void paths()
    {
        TestEnvironment env;
        const QString data = env.dataDir() + QStringLiteral("/Data");
        QCOMPARE(CLibraryStore::UserLibraryLoadPath(), data + QStringLiteral("/lm.json"));
        QCOMPARE(CLibraryStore::UserLibraryPath(), data + QStringLiteral("//lm.json"));
        QCOMPARE(CLibraryStore::RunningOptionsLoadPath(), data + QStringLiteral("/lm.tmp.json"));
        QCOMPARE(CLibraryStore::RunningOptionsPath(), data + QStringLiteral("//lm.tmp.json"));
        QCOMPARE(CLibraryStore::FactoryLibraryPath(), factoryPath(env));
        QCOMPARE(CLibraryStore::BackupDir(), env.dataDir() + QStringLiteral("/Backup/"));
    }

    void firstStartCopiesFactory()
    {
        TestEnvironment env;
        const QByteArray factoryBytes = jsonBytes(factoryLibrary());
        QVERIFY(env.writeFile(factoryPath(env), factoryBytes));

        store().Load();
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), factoryBytes);
        QVERIFY(store().UserLibrary() == read(factoryBytes));
        QVERIFY(store().FactoryLibrary() == read(factoryBytes));
        QVERIFY(backups(env).isEmpty());

        // The user's changes go to the copy, never to the factory file.
        QVERIFY(store().UserLibrary().AddMaterial(libMaterial(QStringLiteral("Mine"), {1.0}, 0, 80)));
        QVERIFY(store().Save());
        QCOMPARE(env.readFile(factoryPath(env)), factoryBytes);
        QCOMPARE(read(env.readFile(QStringLiteral("lm.json"))).MaterialNames(0, 80),
                 (QStringList{"Factory", "Mine"}));
        QCOMPARE(store().FactoryLibrary().MaterialNames(0, 80), QStringList{"Factory"});
    }

    void loadWithoutAnyLibrary()
    {
        TestEnvironment env;
        store().UserLibrary() = sampleLibrary();
        store().Load();
        QVERIFY(store().UserLibrary().IsEmpty());
        QVERIFY(store().FactoryLibrary().IsEmpty());
        QVERIFY(!QFileInfo::exists(env.dataFile(QStringLiteral("lm.json"))));
        QVERIFY(!QFileInfo::exists(env.dataDir() + QStringLiteral("/Backup")));
    }

    void loadKeepsExistingUserLibrary()
    {
        TestEnvironment env;
        const QByteArray userBytes = jsonBytes(sampleLibrary());
        QVERIFY(env.writeFile(factoryPath(env), jsonBytes(factoryLibrary())));
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), userBytes));
        QVERIFY(env.writeFile(QStringLiteral("lm.tmp.json"),
                              "{\"RunningOpition\": [{\"Color\": \"255\", \"Type\": \"Fiber\", "
                              "\"MaterialName\": \"Birch\", \"Thickness\": \"3\", "
                              "\"Craft\": \"Tracing\", \"LaserPower\": \"30\"}]}"));

        store().Load();
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), userBytes);
        QVERIFY(store().UserLibrary() == read(userBytes));
        QCOMPARE(store().FactoryLibrary().MaterialNames(0, 80), QStringList{"Factory"});
        QCOMPARE(store().RunningOptions().size(), size_t(1));
        const CRunningOptions *options = g_LayerContext.FindRunningOption(255);
        QVERIFY(options);
        QCOMPARE(options->type, 3u);
        QCOMPARE(options->MaterialName(), QStringLiteral("Birch"));
        QCOMPARE(options->laserPower, 30u);
    }

    void saveWritesLibraryThenRunningOptions()
    {
        TestEnvironment env;
        store().UserLibrary() = sampleLibrary();
        CRunningOptions options;
        options.SetMaterialName(QStringLiteral("Birch"));
        g_LayerContext.SetRunningOption(0xFF00, options);
        QVERIFY(store().Save());
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), jsonBytes(sampleLibrary()));
        QCOMPARE(env.readFile(QStringLiteral("lm.tmp.json")), g_LayerContext.RunningOptionsJson().toUtf8());
        // No temporary files are left beside them.
        QCOMPARE(dataFiles(env), (QStringList{"lm.json", "lm.tmp.json"}));
    }

    void saveIntoADirectoryFails()
    {
        TestEnvironment env;
        store().UserLibrary() = sampleLibrary();
        QVERIFY(QDir().mkpath(env.dataFile(QStringLiteral("lm.json"))));
        QVERIFY(!store().Save());
        QVERIFY(QFileInfo(env.dataFile(QStringLiteral("lm.json"))).isDir());
        // The running options are still written.
        QVERIFY(QFileInfo(env.dataFile(QStringLiteral("lm.tmp.json"))).isFile());
        QVERIFY(logHas(env, QStringLiteral("Library not saved")));

        QVERIFY(QDir().rmdir(env.dataFile(QStringLiteral("lm.json"))));
        QVERIFY(QFile::remove(env.dataFile(QStringLiteral("lm.tmp.json"))));
        QVERIFY(QDir().mkpath(env.dataFile(QStringLiteral("lm.tmp.json/x"))));
        QVERIFY(!store().Save());
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), jsonBytes(sampleLibrary()));
    }

    void saveThatCannotWriteKeepsFiles()
    {
#ifdef Q_OS_LINUX
        TestEnvironment env;
        const QByteArray old = jsonBytes(factoryLibrary());
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), old));
        QVERIFY(env.writeFile(QStringLiteral("lm.tmp.json"), "{}"));
        store().UserLibrary() = sampleLibrary();
        g_LayerContext.SetRunningOption(0xFF, CRunningOptions());

        // A full disk, as far as this process can tell: writes past 64 bytes fail.
        rlimit saved{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &saved), 0);
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit small = saved;
        small.rlim_cur = 64;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        const bool saveResult = store().Save();
        setrlimit(RLIMIT_FSIZE, &saved);
        std::signal(SIGXFSZ, oldHandler);

        QVERIFY(!saveResult);
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), old);
        QCOMPARE(env.readFile(QStringLiteral("lm.tmp.json")), QByteArray("{}"));
        QCOMPARE(dataFiles(env), (QStringList{"lm.json", "lm.tmp.json"}));
#else
        QSKIP("needs a file size limit");
#endif
    }

    void backupNames()
    {
        TestEnvironment env;
        useFixedClock();
        QCOMPARE(store().BackUpUserLibrary(), QString()); // nothing to back up yet
        QVERIFY(!QFileInfo::exists(CLibraryStore::BackupDir()));

        QVERIFY(env.writeFile(QStringLiteral("lm.json"), "first"));
        const QString first = store().BackUpUserLibrary();
        QCOMPARE(first, CLibraryStore::BackupDir() + kFirstBackup);
        QCOMPARE(env.readFile(first), QByteArray("first"));

        // Within the same second: same name, and the first copy stays.
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), "second"));
        QCOMPARE(store().BackUpUserLibrary(), QString());
        QCOMPARE(env.readFile(first), QByteArray("first"));

        useFixedClock(kNow.addSecs(1));
        QCOMPARE(store().BackUpUserLibrary(), env.dataDir() + QStringLiteral("/Backup/lib20251107015638.bck"));
        useFixedClock(QDateTime(QDate(2026, 1, 2), QTime(23, 4, 5)));
        QVERIFY(!store().BackUpUserLibrary().isEmpty());
        QCOMPARE(backups(env), (QStringList{kFirstBackup, "lib20251107015638.bck", "lib20260102230405.bck"}));
    }

    void takeOver_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<bool>("userFileExists");
        QTest::addColumn<bool>("taken");

        const QByteArray library = jsonBytes(factoryLibrary());
        QTest::newRow("a library") << library << true << true;
        QTest::newRow("a library, no lm.json yet") << library << false << true;
        QTest::newRow("an empty library") << QByteArray("{\"Type\": {}}") << true << true;
        QTest::newRow("garbage: not JSON") << QByteArray("{\"Type\": ") << true << false;
        QTest::newRow("garbage: no Type") << QByteArray("{\"Version\": 2}") << true << false;
        QTest::newRow("garbage: empty file") << QByteArray() << true << false;
        QTest::newRow("garbage: no file") << kNoFile << true << false;
    }

    void takeOver()
    {
        QFETCH(QByteArray, file);
        QFETCH(bool, userFileExists);
        QFETCH(bool, taken);
        TestEnvironment env;
        useFixedClock();

        const QByteArray userBytes = jsonBytes(sampleLibrary());
        if (userFileExists)
            QVERIFY(env.writeFile(QStringLiteral("lm.json"), userBytes));
        store().UserLibrary() = sampleLibrary();

        QCOMPARE(store().BackupAndTakeOver(importFile(env, file)), taken);
        if (taken) {
            // The file's library replaces the user library whole.
            const CMaterialLibrary expected = read(file);
            QVERIFY(store().UserLibrary() == expected);
            QCOMPARE(env.readFile(QStringLiteral("lm.json")), jsonBytes(expected));
            QVERIFY(QFileInfo::exists(env.dataFile(QStringLiteral("lm.tmp.json"))));
            QCOMPARE(backups(env), userFileExists ? QStringList{kFirstBackup} : QStringList());
            if (userFileExists)
                QCOMPARE(env.readFile(CLibraryStore::BackupDir() + kFirstBackup), userBytes);
        } else {
            QVERIFY(store().UserLibrary() == sampleLibrary());
            QCOMPARE(env.readFile(QStringLiteral("lm.json")), userFileExists ? userBytes : QByteArray());
            QVERIFY(backups(env).isEmpty());
        }
    }

    void failedBackupDoesNotStopTakeOver()
    {
        TestEnvironment env;
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), jsonBytes(sampleLibrary())));
        // A file where the backup folder should be.
        QVERIFY(env.writeFile(env.dataDir() + QStringLiteral("/Backup"), "in the way"));
        QVERIFY(store().BackupAndTakeOver(importFile(env, jsonBytes(factoryLibrary()))));
        QVERIFY(store().UserLibrary() == read(jsonBytes(factoryLibrary())));
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), jsonBytes(read(jsonBytes(factoryLibrary()))));
        QVERIFY(logHas(env, QStringLiteral("backup")));
    }

    void corruptUserLibraryIsBackedUp_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("reason");
        QTest::newRow("truncated") << jsonBytes(sampleLibrary()).left(300) << QStringLiteral("not JSON");
        QTest::newRow("not JSON") << QByteArray("\x89PNG\r\n\x1a\n", 8) << QStringLiteral("not JSON");
        QTest::newRow("no Type") << QByteArray("{\"Version\": 1, \"type\": {}}") << QStringLiteral("no \"Type\"");
        QTest::newRow("array") << QByteArray("[]") << QStringLiteral("not a JSON object");
        QTest::newRow("empty") << QByteArray() << QStringLiteral("not JSON");
    }

    void corruptUserLibraryIsBackedUp()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, reason);
        TestEnvironment env;
        useFixedClock();
        QVERIFY(env.writeFile(factoryPath(env), jsonBytes(factoryLibrary())));
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), bytes));

        store().Load();
        QVERIFY(store().UserLibrary().IsEmpty());
        QCOMPARE(backups(env), QStringList{kFirstBackup});
        QCOMPARE(env.readFile(CLibraryStore::BackupDir() + kFirstBackup), bytes);
        QVERIFY2(logHas(env, reason) && logHas(env, kFirstBackup), qPrintable(env.logLines().join('\n')));

        // Loading again in the same second must not lose the copy either.
        store().Load();
        QCOMPARE(backups(env), (QStringList{"lib20251107015637-2.bck", kFirstBackup}));

        // Once kept, the file may be saved over.
        store().UserLibrary() = sampleLibrary();
        QVERIFY(store().Save());
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), jsonBytes(sampleLibrary()));
    }

    void corruptLibraryWithoutBackupIsNotOverwritten()
    {
        TestEnvironment env;
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), "{ half a library"));
        QVERIFY(env.writeFile(env.dataDir() + QStringLiteral("/Backup"), "in the way"));
        store().Load();
        store().UserLibrary() = sampleLibrary();
        QVERIFY(!store().Save());
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), QByteArray("{ half a library"));
        QVERIFY(logHas(env, QStringLiteral("no backup")));

        // Taking a library over is the user's explicit choice; it saves again.
        QVERIFY(store().BackupAndTakeOver(importFile(env, jsonBytes(factoryLibrary()))));
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), jsonBytes(read(jsonBytes(factoryLibrary()))));
    }

    void restoreAndReloadFactory()
    {
        TestEnvironment env;
        useFixedClock();
        const CMaterialLibrary factory = read(jsonBytes(factoryLibrary()));
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), jsonBytes(sampleLibrary())));
        store().Load();
        QVERIFY(!store().RestoreFactoryLibrary()); // no factory file
        QVERIFY(store().UserLibrary() == read(jsonBytes(sampleLibrary())));
        QVERIFY(!store().ReloadFactoryLibrary());

        QVERIFY(env.writeFile(factoryPath(env), jsonBytes(factoryLibrary())));
        QVERIFY(store().ReloadFactoryLibrary());
        QVERIFY(store().FactoryLibrary() == factory);
        QVERIFY(store().RestoreFactoryLibrary());
        QVERIFY(store().UserLibrary() == factory);
        QCOMPARE(env.readFile(QStringLiteral("lm.json")), jsonBytes(factory));
        QCOMPARE(env.readFile(CLibraryStore::BackupDir() + kFirstBackup), jsonBytes(sampleLibrary()));
    }

    void exportToFile()
    {
        TestEnvironment env;
        store().UserLibrary() = sampleLibrary();
        const QString path = env.root() + QStringLiteral("/export.json");
        QVERIFY(store().WriteUserLibrary(path));
        QCOMPARE(env.readFile(path), jsonBytes(sampleLibrary()));
        QVERIFY(!store().WriteUserLibrary(env.root()));
        QVERIFY(!QFileInfo::exists(env.dataFile(QStringLiteral("lm.json"))));
    }

    void deletionQuestion_data()
    {
        QTest::addColumn<bool>("installed");
        QTest::addColumn<bool>("answer");
        QTest::addColumn<bool>("confirmed");
        QTest::newRow("confirmed") << true << true << true;
        QTest::newRow("refused") << true << false << false;
        // Headless use (tools, tests): nobody to ask, nothing refused.
        QTest::newRow("no question installed") << false << false << true;
    }

    void deletionQuestion()
    {
        QFETCH(bool, installed);
        QFETCH(bool, answer);
        QFETCH(bool, confirmed);
        TestEnvironment env;

        int asked = 0;
        if (installed) {
            store().SetDeletionQuestion([&asked, answer](const QString &, const QString &) {
                ++asked;
                return answer;
            });
        }
        QCOMPARE(store().ConfirmDeletion(), confirmed);
        QCOMPARE(asked, installed ? 1 : 0);
        QCOMPARE(logHas(env, QStringLiteral("nothing to ask")), !installed);
    }

    void deletionQuestionTexts_data()
    {
        QTest::addColumn<QByteArray>("languageFile");
        QTest::addColumn<QByteArray>("wordings");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("question");

        QTest::newRow("no language file") << QByteArray() << QByteArray() << QStringLiteral("Tips")
                                          << QStringLiteral("Confirm deletion?");
        QTest::newRow("defaults translated")
            << QByteArray() << QByteArray("Tips=Hinweis\nConfirm deletion?=Wirklich löschen?\n")
            << QStringLiteral("Hinweis") << QStringLiteral("Wirklich löschen?");
        QTest::newRow("texts of the language file")
            << QByteArray("[CLayerMgrApp]\nDEL_TITLE=提示\nDEL_TIP=确认删除？\n") << QByteArray()
            << QStringLiteral("提示") << QStringLiteral("确认删除？");
        QTest::newRow("language file texts translated")
            << QByteArray("[CLayerMgrApp]\nDEL_TITLE=Notice\nDEL_TIP=Delete it?\n")
            << QByteArray("Notice=Achtung\n") << QStringLiteral("Achtung") << QStringLiteral("Delete it?");
        QTest::newRow("other group is not read")
            << QByteArray("[DLG_LIB_MGR]\nDEL_TITLE=Elsewhere\n") << QByteArray()
            << QStringLiteral("Tips") << QStringLiteral("Confirm deletion?");
    }

    void deletionQuestionTexts()
    {
        QFETCH(QByteArray, languageFile);
        QFETCH(QByteArray, wordings);
        QFETCH(QString, title);
        QFETCH(QString, question);
        TestEnvironment env;

        if (!languageFile.isEmpty())
            QVERIFY(env.writeFile(env.resourceDir() + QStringLiteral("/Lang/Chs/LayerMgr.ini"), languageFile));
        CTranslator *translator = CTranslator::GetInstance();
        if (!wordings.isEmpty()) {
            QVERIFY(env.writeFile(env.root() + QStringLiteral("/words/Lang/De/w.ini"), wordings));
            translator->SetResourceDir(env.root() + QStringLiteral("/words"));
            QVERIFY(translator->SetLanguage(QStringLiteral("De")));
        }
        QString askedTitle, askedQuestion;
        store().SetDeletionQuestion([&](const QString &t, const QString &q) {
            askedTitle = t;
            askedQuestion = q;
            return false;
        });
        const bool confirmed = store().ConfirmDeletion();
        translator->SetLanguage(QString());
        translator->SetResourceDir(QString());
        QVERIFY(!confirmed);
        QCOMPARE(askedTitle, title);
        QCOMPARE(askedQuestion, question);
    }

    void reloadLibraryThroughModule_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<bool>("taken");
        QTest::newRow("a library") << jsonBytes(factoryLibrary()) << true;
        QTest::newRow("garbage: corrupt") << QByteArray("{\"Type\": {") << false;
        QTest::newRow("garbage: no file") << kNoFile << false;
    }

    void reloadLibraryThroughModule()
    {
        QFETCH(QByteArray, file);
        QFETCH(bool, taken);
        TestEnvironment env;

        // The module loads the library when it is made.
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), jsonBytes(sampleLibrary())));
        CLayerMgrModuleIns module;
        QVERIFY(store().UserLibrary() == read(jsonBytes(sampleLibrary())));
        useFixedClock();

        // Someone else puts a library in place, then asks the module to reload.
        QFile::remove(env.dataFile(QStringLiteral("lm.json")));
        if (file != kNoFile)
            QVERIFY(env.writeFile(QStringLiteral("lm.json"), file));
        env.clearLog();
        module.ReloadLibrary();

        QVERIFY(!QFileInfo::exists(env.dataFile(QStringLiteral("lm.json"))));
        if (taken) {
            QVERIFY(store().UserLibrary() == read(file));
            QCOMPARE(backups(env), QStringList{kFirstBackup});
            QCOMPARE(env.readFile(CLibraryStore::BackupDir() + kFirstBackup), file);
            QVERIFY(QFileInfo::exists(env.dataFile(QStringLiteral("lm.tmp.json"))));
            QVERIFY(env.logLines().contains(QStringLiteral("2|ReloadLibrary: library taken over")));
        } else {
            QVERIFY(store().UserLibrary() == read(jsonBytes(sampleLibrary())));
            QVERIFY(backups(env).isEmpty());
            QVERIFY(env.logLines().contains(QStringLiteral("2|ReloadLibrary: nothing taken over")));
        }

        // The library stays in memory until the next save writes the file again.
        QVERIFY(store().Save());
        QCOMPARE(read(env.readFile(QStringLiteral("lm.json"))), store().UserLibrary());
    }

    void resetForgetsEverything()
    {
        TestEnvironment env;
        store().UserLibrary() = sampleLibrary();
        g_LayerContext.SetRunningOption(1, CRunningOptions());
        store().SetDeletionQuestion([](const QString &, const QString &) { return false; });
        useFixedClock();
        g_LayerContext.Reset();
        QVERIFY(store().UserLibrary().IsEmpty());
        QVERIFY(store().FactoryLibrary().IsEmpty());
        QVERIFY(store().RunningOptions().empty());
        QVERIFY(store().ConfirmDeletion()); // no question installed
        QVERIFY(env.writeFile(QStringLiteral("lm.json"), "x"));
        QVERIFY(!store().BackUpUserLibrary().endsWith(kFirstBackup));
    }
};

QTEST_GUILESS_MAIN(tst_LibraryStore)
#include "tst_librarystore.moc"
