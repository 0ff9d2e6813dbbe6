#include "librarytestdata.h"
#include "testenvironment.h"

#include <QDir>
#include <QJsonArray>
#include <QProcess>
#include <QTest>

namespace {

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

// Runs the tool in `dir` on the sample library (speed 10 as the factory's)
// as user.json and in.json with the given cutting speeds (whole numbers: the
// reader takes no other).
Run runTool(const TestEnvironment &env, const QStringList &arguments, double userSpeed,
            double incomingSpeed)
{
    CMaterialLibrary library = sampleLibrary();
    library.FindCutSet(libKey(QStringLiteral("Birch"), 3.0, 0))->speed = 10;
    WriteMaterialLibraryFile(env.root() + QStringLiteral("/factory.json"), library);
    for (const auto &[name, speed] :
         {std::pair("/user.json", userSpeed), std::pair("/in.json", incomingSpeed)}) {
        library.FindCutSet(libKey(QStringLiteral("Birch"), 3.0, 0))->speed = speed;
        WriteMaterialLibraryFile(env.root() + QLatin1String(name), library);
    }
    QProcess process;
    process.setWorkingDirectory(env.root());
    process.start(QStringLiteral(LAYERMGR_BUILD_BIN "/layermgr-lib"), arguments);
    Run run;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return run;
    run.exitCode = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

} // namespace

class tst_LibraryMergeTool : public QObject
{
    Q_OBJECT

private slots:
    void commands_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<double>("userSpeed");
        QTest::addColumn<double>("incomingSpeed");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("output");  // a line of stdout, or the start of stderr
        QTest::addColumn<double>("outSpeed"); // 0: out.json left as it was

        const QStringList diff{"diff", "user.json", "in.json"};
        const QStringList merge{"merge",    "user.json", "in.json",
                                "out.json", "--factory", "factory.json"};
        QTest::newRow("diff: equal") << diff << 10.0 << 10.0 << 0 << "" << 0.0;
        QTest::newRow("diff: a changed field")
            << diff << 10.0 << 20.0 << 1
            << "changed: RFBurning 60 W, Birch, 3.00, Cutting: Speed 10 -> 20" << 0.0;
        QTest::newRow("diff: missing file")
            << QStringList{"diff", "user.json", "none.json"} << 1.0 << 1.0 << 2
            << "layermgr-lib: none.json: cannot open" << 0.0;
        QTest::newRow("diff: unknown option")
            << QStringList{"diff", "--jsn", "user.json", "in.json"} << 1.0 << 1.0 << 2
            << "layermgr-lib: diff: unknown option" << 0.0;
        QTest::newRow("merge: a set the user left takes the file's")
            << merge << 10.0 << 20.0 << 0
            << "changed: RFBurning 60 W, Birch, 3.00, Cutting: Speed 10 -> 20" << 20.0;
        QTest::newRow("merge: conflict kept")
            << merge << 15.0 << 20.0 << 0 << "1 changes, 1 conflicts kept" << 15.0;
        QTest::newRow("merge: conflict taken")
            << merge + QStringList{"--take-conflicts"} << 15.0 << 20.0 << 0
            << "changed: RFBurning 60 W, Birch, 3.00, Cutting: Speed 15 -> 20 (conflict, taken)"
            << 20.0;
        QTest::newRow("merge: unreadable file")
            << QStringList{"merge", "user.json", "none.json", "out.json"} << 1.0 << 2.0 << 1
            << "layermgr-lib: none.json: cannot open" << 0.0;
        QTest::newRow("merge: unreadable factory")
            << merge.mid(0, 5) + QStringList{"none.json"} << 1.0 << 2.0 << 1
            << "layermgr-lib: none.json: cannot open" << 0.0;
        QTest::newRow("merge: OUT cannot be written")
            << QStringList{"merge", "user.json", "in.json", "folder"} << 1.0 << 2.0 << 1
            << "layermgr-lib: folder: cannot write" << 0.0;
    }

    void commands()
    {
        QFETCH(QStringList, arguments);
        QFETCH(double, userSpeed);
        QFETCH(double, incomingSpeed);
        QFETCH(int, exitCode);
        QFETCH(QString, output);
        QFETCH(double, outSpeed);
        TestEnvironment env;
        QVERIFY(env.writeFile(env.root() + QStringLiteral("/out.json"), "previous"));
        QVERIFY(QDir().mkpath(env.root() + QStringLiteral("/folder")));
        const Run run = runTool(env, arguments, userSpeed, incomingSpeed);
        QCOMPARE(run.exitCode, exitCode);
        if (exitCode < 2 && run.err.isEmpty())
            QVERIFY2(output.isEmpty() ? run.out.isEmpty() : run.out.split('\n').contains(output),
                     qPrintable(run.out));
        else
            QVERIFY2(run.err.startsWith(output), qPrintable(run.err));
        const QByteArray written = env.readFile(env.root() + QStringLiteral("/out.json"));
        if (outSpeed == 0) {
            QCOMPARE(written, QByteArray("previous"));
        } else {
            const CLibCutSet *set =
                readBytes(written).FindCutSet(libKey(QStringLiteral("Birch"), 3.0, 0));
            QVERIFY(set);
            QCOMPARE(set->speed, outSpeed);
        }
    }

    // Scripts get the same differences as JSON.
    void diffAsJson()
    {
        TestEnvironment env;
        const Run run = runTool(env, {"diff", "--json", "user.json", "in.json"}, 10.0, 20.0);
        QCOMPARE(run.exitCode, 1);
        const QJsonObject root = jsonObject(run.out.toUtf8());
        QCOMPARE(root.value("equal").toBool(true), false);
        const QJsonArray differences = root.value("differences").toArray();
        QCOMPARE(differences.size(), 1);
        const QJsonObject change = differences.first().toObject();
        QCOMPARE(change.value("kind").toString(), "changed");
        QCOMPARE(change.value("material").toString() + change.value("craft").toString() +
                     change.value("field").toString() + change.value("old").toString() + ">" +
                     change.value("new").toString(),
                 "BirchCuttingSpeed10>20");
    }
};

QTEST_GUILESS_MAIN(tst_LibraryMergeTool)
#include "tst_librarymergetool.moc"
