#include "loadertestinterface.h"
#include "support/moduleloader.h"
#include "testenvironment.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>
#include <QThread>

class tst_ModuleLoader : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void failedLoad_data();
    void failedLoad();
    void release_data();
    void release();
};

namespace {

QStringList g_shown; // "title|text" of every box the loader asked for

QString lib(const QString &name)
{
    return QStringLiteral(LOADERLIBS_DIR "/") + name;
}

QStringList logLevel(const TestEnvironment &env, int level)
{
    return env.logLines().filter(QRegularExpression(QStringLiteral("^%1\\|").arg(level)));
}

} // namespace

void tst_ModuleLoader::cleanup()
{
    ReleaseAllModules();
    SetModuleErrorPresenter(nullptr);
    g_shown.clear();
}

void tst_ModuleLoader::failedLoad_data()
{
    // clang-format off
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("showErrors");
    QTest::addColumn<bool>("inThread");
    QTest::addColumn<QString>("message");

    QTest::newRow("no such library") << lib("loaderlib_missing") << true << false << "Load %1 failed! \n";
    QTest::newRow("no such library, quiet") << lib("loaderlib_missing") << false << false << "Load %1 failed! \n";
    // A box may only be shown from the main thread.
    QTest::newRow("no such library, other thread") << lib("loaderlib_missing") << true << true << "Load %1 failed! \n";
    QTest::newRow("no NewInterface") << lib("loaderlib_nonew") << true << false << "Load %1 faile2! \n";
    // Without a way back, the factory is not even asked.
    QTest::newRow("no ReleaseInterface") << lib("loaderlib_norelease") << false << false << "Load %1 faile3! \n";
    QTest::newRow("factory returns null") << lib("loaderlib_nullinterface") << true << false << "Load %1 faile3! \n";
    // clang-format on
}

void tst_ModuleLoader::failedLoad()
{
    QFETCH(QString, name);
    QFETCH(bool, showErrors);
    QFETCH(bool, inThread);
    QFETCH(QString, message);
    TestEnvironment env;
    SetModuleErrorPresenter([](const QString &title, const QString &text) {
        g_shown << title + QLatin1Char('|') + text;
    });

    void *result = &result;
    std::unique_ptr<QThread> thread(
        QThread::create([&] { result = LoadModule(name, showErrors); }));
    if (inThread) {
        thread->start();
        QVERIFY(thread->wait(30000));
    } else {
        result = LoadModule(name, showErrors);
    }
    QCOMPARE(result, nullptr);

    // The box shows the text alone; the library's reason goes to the log.
    const QString text = message.arg(name);
    QVERIFY2(LastModuleError().startsWith(text), qPrintable(LastModuleError()));
    QCOMPARE(logLevel(env, 3), QStringList(QStringLiteral("3|") + LastModuleError()));
    const bool boxShown = showErrors && !inThread;
    QCOMPARE(g_shown, boxShown ? QStringList(QStringLiteral("Tips|") + text) : QStringList());

    // Nothing of a failed load is kept: no ReleaseInterface is called.
    QVERIFY(ReleaseModule(nullptr));
    ReleaseAllModules();
    QCOMPARE(logLevel(env, 2), QStringList());
}

void tst_ModuleLoader::release_data()
{
    // clang-format off
    // Steps: "load <library>" (a '!' in front: the load fails; "loaderlibs/"
    // in front: a name beside the application), "release <n>" of the n-th
    // load, "release null", "release other" (an unrelated pointer), "all". The
    // libraries log each interface made and released.
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QStringList>("log");

    QTest::newRow("released once") << QStringList{"load full", "release other", "release null", "release 0", "release 0", "all"}
        << QStringList{"new full 1", "release full 1"};
    // Releasing one from the middle leaves the order of the rest.
    QTest::newRow("all, last loaded first") << QStringList{"load full", "load other", "!load nullinterface", "load full", "load other", "release 0", "all"}
        << QStringList{"new full 1", "new other 1", "new full 2", "new other 2", "release full 1", "release other 2", "release full 2", "release other 1"};
    // The panel and the library manager each load the same sibling plug-in;
    // the library stays until no one holds it, then a new load starts afresh.
    QTest::newRow("same library twice") << QStringList{"load full", "load full", "release 1", "release 0", "load full"}
        << QStringList{"new full 1", "new full 2", "release full 2", "release full 1", "new full 1"};
    QTest::newRow("failed second load keeps the first") << QStringList{"load flaky", "!load flaky", "release 0"}
        << QStringList{"new flaky 1", "release flaky 1"};
    // Looked for beside the application, not in the working directory.
    QTest::newRow("name beside the application") << QStringList{"!load missing", "load loaderlibs/other"}
        << QStringList{"new other 1"};
    // clang-format on
}

void tst_ModuleLoader::release()
{
    QFETCH(QStringList, steps);
    QFETCH(QStringList, log);
    TestEnvironment env;
    const QString oldCurrent = QDir::currentPath();
    QVERIFY(QDir::setCurrent(env.root()));
    QList<void *> loaded;
    int unrelated = 0;
    for (const QString &step : steps) {
        const QStringList words = step.split(QLatin1Char(' '));
        if (words[0].endsWith(QLatin1String("load"))) {
            const QString name =
                QStringLiteral("loaderlib_") + words[1].section(QLatin1Char('/'), -1);
            const bool beside = words[1].contains(QLatin1Char('/'));
            loaded << LoadModule(beside ? QStringLiteral("loaderlibs/") + name : lib(name), false);
            const bool fails = words[0].startsWith(QLatin1Char('!'));
            QCOMPARE(LastModuleError().isEmpty(), !fails);
            if (!fails)
                QCOMPARE(QByteArray(static_cast<const LoaderTestInterface *>(loaded.last())->tag),
                         name.toUtf8());
        } else if (words[0] == QLatin1String("all")) {
            ReleaseAllModules();
        } else {
            void *module = words[1] == QLatin1String("null")    ? nullptr
                           : words[1] == QLatin1String("other") ? &unrelated
                                                                : loaded.at(words[1].toInt());
            QVERIFY(ReleaseModule(module));
        }
    }
    QDir::setCurrent(oldCurrent);
    QStringList expected;
    for (const QString &line : log)
        expected << QStringLiteral("2|") + line.section(QLatin1Char(' '), 0, 0) +
                        QStringLiteral(" loaderlib_") + line.section(QLatin1Char(' '), 1);
    QCOMPARE(logLevel(env, 2), expected);
}

QTEST_GUILESS_MAIN(tst_ModuleLoader)
#include "tst_moduleloader.moc"
