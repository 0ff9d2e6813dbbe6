#include "loadertestinterface.h"
#include "support/moduleloader.h"
#include "testenvironment.h"

#include <QDir>
#include <QTest>
#include <QThread>

class tst_ModuleLoader : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void failedLoad_data();
    void failedLoad();
    void errorsShownOnlyWhenAsked_data();
    void errorsShownOnlyWhenAsked();
    void errorsNotShownFromOtherThreads();
    void errorWithoutPresenter();
    void loadReturnsInterface();
    void relativeNameFoundBesideApplication();
    void successClearsLastError();
    void releaseOnce();
    void releaseUnknownPointer();
    void releaseAllLastLoadedFirst();
    void sameLibraryLoadedTwice();
    void failedSecondLoadKeepsFirst();
};

namespace {

struct Shown
{
    QString title;
    QString text;
};

QList<Shown> &shown()
{
    static QList<Shown> list;
    return list;
}

void recordShown(const QString &title, const QString &text)
{
    shown().append({title, text});
}

QString lib(const char *name)
{
    return QStringLiteral(LOADERLIBS_DIR "/") + QLatin1String(name);
}

QStringList linesStartingWith(const QStringList &lines, const QString &prefix)
{
    QStringList found;
    for (const QString &line : lines) {
        if (line.startsWith(prefix))
            found.append(line);
    }
    return found;
}

} // namespace

void tst_ModuleLoader::cleanup()
{
    ReleaseAllModules();
    SetModuleErrorPresenter(nullptr);
    shown().clear();
}

void tst_ModuleLoader::failedLoad_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QStringList>("entryLog");

    QTest::newRow("no such library") << lib("loaderlib_missing") << "Load %1 failed! \n" << QStringList();
    QTest::newRow("no such library, bare name") << "NoSuchModule" << "Load %1 failed! \n" << QStringList();
    QTest::newRow("no NewInterface") << lib("loaderlib_nonew") << "Load %1 faile2! \n" << QStringList();
    // Without a way back, the factory is not even asked.
    QTest::newRow("no ReleaseInterface") << lib("loaderlib_norelease") << "Load %1 faile3! \n"
                                         << QStringList();
    QTest::newRow("factory returns null") << lib("loaderlib_nullinterface") << "Load %1 faile3! \n"
                                          << QStringList();
}

void tst_ModuleLoader::failedLoad()
{
    QFETCH(QString, name);
    QFETCH(QString, message);
    QFETCH(QStringList, entryLog);
    TestEnvironment env;

    QCOMPARE(LoadModule(name, false), nullptr);

    const QString text = message.arg(name);
    QVERIFY2(LastModuleError().startsWith(text), qPrintable(LastModuleError()));
    const QStringList faults = linesStartingWith(env.logLines(), QStringLiteral("3|"));
    QCOMPARE(faults, QStringList(QStringLiteral("3|") + LastModuleError()));
    QCOMPARE(linesStartingWith(env.logLines(), QStringLiteral("2|")), entryLog);

    // Nothing of a failed load is kept: releasing null or everything calls no
    // ReleaseInterface.
    QVERIFY(ReleaseModule(nullptr));
    ReleaseAllModules();
    QCOMPARE(linesStartingWith(env.logLines(), QStringLiteral("2|release")), QStringList());
}

void tst_ModuleLoader::errorsShownOnlyWhenAsked_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("showErrors");
    QTest::addColumn<QString>("message");

    QTest::newRow("failed, shown") << lib("loaderlib_missing") << true << "Load %1 failed! \n";
    QTest::newRow("faile2, shown") << lib("loaderlib_nonew") << true << "Load %1 faile2! \n";
    QTest::newRow("faile3, shown") << lib("loaderlib_nullinterface") << true << "Load %1 faile3! \n";
    QTest::newRow("failed, quiet") << lib("loaderlib_missing") << false << QString();
    QTest::newRow("faile3, quiet") << lib("loaderlib_norelease") << false << QString();
    QTest::newRow("success, nothing to show") << lib("loaderlib_full") << true << QString();
}

void tst_ModuleLoader::errorsShownOnlyWhenAsked()
{
    QFETCH(QString, name);
    QFETCH(bool, showErrors);
    QFETCH(QString, message);
    TestEnvironment env;
    SetModuleErrorPresenter(&recordShown);

    LoadModule(name, showErrors);

    if (message.isEmpty()) {
        QCOMPARE(shown().size(), 0);
        return;
    }
    QCOMPARE(shown().size(), 1);
    QCOMPARE(shown().first().title, QStringLiteral("Tips"));
    // The box shows the text alone; the library's reason goes to the log.
    QCOMPARE(shown().first().text, message.arg(name));
}

void tst_ModuleLoader::errorsNotShownFromOtherThreads()
{
    TestEnvironment env;
    SetModuleErrorPresenter(&recordShown);
    void *result = &result;
    QThread *thread = QThread::create([&result] {
        result = LoadModule(lib("loaderlib_missing"), true);
    });
    thread->start();
    QVERIFY(thread->wait(30000));
    delete thread;

    QCOMPARE(result, nullptr);
    QCOMPARE(shown().size(), 0);
    QVERIFY(LastModuleError().startsWith(QStringLiteral("Load %1 failed! \n").arg(lib("loaderlib_missing"))));
    QCOMPARE(linesStartingWith(env.logLines(), QStringLiteral("3|Load ")).size(), 1);
}

void tst_ModuleLoader::errorWithoutPresenter()
{
    TestEnvironment env;
    QCOMPARE(LoadModule(lib("loaderlib_nonew"), true), nullptr);
    QCOMPARE(linesStartingWith(env.logLines(), QStringLiteral("3|Load ")).size(), 1);
}

void tst_ModuleLoader::loadReturnsInterface()
{
    TestEnvironment env;
    SetModuleErrorPresenter(&recordShown);

    void *module = LoadModule(lib("loaderlib_full"), true, &env);
    QVERIFY(module);
    const auto *made = static_cast<const LoaderTestInterface *>(module);
    QCOMPARE(QByteArray(made->tag), QByteArray("loaderlib_full"));
    QCOMPARE(made->serial, 1);
    QCOMPARE(env.logLines(), QStringList(QStringLiteral("2|new loaderlib_full 1")));
    QCOMPARE(LastModuleError(), QString());
    QCOMPARE(shown().size(), 0);
}

void tst_ModuleLoader::relativeNameFoundBesideApplication()
{
    TestEnvironment env;
    // The working directory is not the test's folder; the loader looks
    // beside the application.
    const QString oldCurrent = QDir::currentPath();
    QVERIFY(QDir::setCurrent(env.root()));
    void *module = LoadModule(QStringLiteral("loaderlibs/loaderlib_other"), false);
    QDir::setCurrent(oldCurrent);
    QVERIFY2(module, qPrintable(LastModuleError()));
    QCOMPARE(QByteArray(static_cast<const LoaderTestInterface *>(module)->tag),
             QByteArray("loaderlib_other"));
}

void tst_ModuleLoader::successClearsLastError()
{
    TestEnvironment env;
    QCOMPARE(LoadModule(lib("loaderlib_missing"), false), nullptr);
    QVERIFY(!LastModuleError().isEmpty());
    QVERIFY(LoadModule(lib("loaderlib_full"), false));
    QCOMPARE(LastModuleError(), QString());
}

void tst_ModuleLoader::releaseOnce()
{
    TestEnvironment env;
    void *module = LoadModule(lib("loaderlib_full"), false);
    QVERIFY(module);
    env.clearLog();

    QVERIFY(ReleaseModule(module));
    QCOMPARE(env.logLines(), QStringList(QStringLiteral("2|release loaderlib_full 1")));
    QVERIFY(ReleaseModule(module));
    ReleaseAllModules();
    QCOMPARE(env.logLines(), QStringList(QStringLiteral("2|release loaderlib_full 1")));
}

void tst_ModuleLoader::releaseUnknownPointer()
{
    TestEnvironment env;
    QVERIFY(LoadModule(lib("loaderlib_full"), false));
    int unrelated = 0;
    env.clearLog();

    QVERIFY(ReleaseModule(&unrelated));
    QVERIFY(ReleaseModule(nullptr));
    QCOMPARE(env.logLines(), QStringList());
    ReleaseAllModules();
    QCOMPARE(env.logLines(), QStringList(QStringLiteral("2|release loaderlib_full 1")));
}

void tst_ModuleLoader::releaseAllLastLoadedFirst()
{
    TestEnvironment env;
    void *first = LoadModule(lib("loaderlib_full"), false);
    QVERIFY(LoadModule(lib("loaderlib_other"), false));
    QVERIFY(LoadModule(lib("loaderlib_nullinterface"), false) == nullptr);
    QVERIFY(LoadModule(lib("loaderlib_full"), false));
    QVERIFY(LoadModule(lib("loaderlib_other"), false));
    // Releasing one from the middle leaves the order of the rest.
    QVERIFY(ReleaseModule(first));
    env.clearLog();

    ReleaseAllModules();
    QCOMPARE(env.logLines(), QStringList({QStringLiteral("2|release loaderlib_other 2"),
                                          QStringLiteral("2|release loaderlib_full 2"),
                                          QStringLiteral("2|release loaderlib_other 1")}));
    ReleaseAllModules();
    QCOMPARE(env.logLines().size(), 3);
}

void tst_ModuleLoader::sameLibraryLoadedTwice()
{
    // The panel and the library manager each load the same sibling plug-in.
    TestEnvironment env;
    void *panelCopy = LoadModule(lib("loaderlib_full"), false);
    void *dialogCopy = LoadModule(lib("loaderlib_full"), false);
    QVERIFY(panelCopy && dialogCopy && panelCopy != dialogCopy);
    env.clearLog();

    QVERIFY(ReleaseModule(dialogCopy));
    // The library must still be there for the other interface to go back.
    QVERIFY(ReleaseModule(panelCopy));
    QCOMPARE(env.logLines(), QStringList({QStringLiteral("2|release loaderlib_full 2"),
                                          QStringLiteral("2|release loaderlib_full 1")}));

    // Once no one holds it the library is gone: a new load starts afresh.
    env.clearLog();
    QVERIFY(LoadModule(lib("loaderlib_full"), false));
    QCOMPARE(env.logLines(), QStringList(QStringLiteral("2|new loaderlib_full 1")));
}

void tst_ModuleLoader::failedSecondLoadKeepsFirst()
{
    TestEnvironment env;
    void *first = LoadModule(lib("loaderlib_flaky"), false);
    QVERIFY(first);
    QCOMPARE(LoadModule(lib("loaderlib_flaky"), false), nullptr);
    QVERIFY(LastModuleError().startsWith(QStringLiteral("Load %1 faile3! \n").arg(lib("loaderlib_flaky"))));
    env.clearLog();

    QVERIFY(ReleaseModule(first));
    QCOMPARE(env.logLines(), QStringList(QStringLiteral("2|release loaderlib_flaky 1")));
}

QTEST_GUILESS_MAIN(tst_ModuleLoader)
#include "tst_moduleloader.moc"
