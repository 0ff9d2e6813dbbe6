#include "librarytestdata.h"
#include "testenvironment.h"

#include <QDir>
#include <QTest>

class tst_LibraryMergeTool : public QObject
{
    Q_OBJECT

private slots:
    void commands_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<double>("userSpeed");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("output"); // a line of stdout, or the start of stderr
        QTest::addColumn<double>("outSpeed"); // 0: out.json left as it was

        const QStringList diff{"diff", "user.json", "in.json"};
        const QStringList merge{"merge",     "user.json", "in.json",
                                "out.json",  "--factory", "factory.json"};
        QTest::newRow("diff: equal") << diff << 20.0 << 0 << "" << 0.0;
        QTest::newRow("diff: a changed field")
            << diff << 10.0 << 1 << "changed: RFBurning 60 W, Birch, 3.00, Cutting: Speed 10 -> 20" << 0.0;
        QTest::newRow("diff: as JSON")
            << diff + QStringList{"--json"} << 10.0 << 1
            << R"({"differences":[{"craft":"Cutting","field":"Speed","kind":"changed","material":"Birch",)"
               R"("new":"20","old":"10","power":60,"thickness":3,"tube":"RFBurning"}],"equal":false})"
            << 0.0;
        QTest::newRow("diff: missing file") << QStringList{"diff", "user.json", "none.json"} << 1.0
                                            << 2 << "layermgr-lib: none.json: cannot open" << 0.0;
        QTest::newRow("merge: conflict kept")
            << merge << 15.0 << 0
            << "changed: RFBurning 60 W, Birch, 3.00, Cutting: Speed 15 -> 20 (conflict, kept)" << 15.0;
        QTest::newRow("merge: conflict taken")
            << merge + QStringList{"--take-conflicts"} << 15.0 << 0
            << "changed: RFBurning 60 W, Birch, 3.00, Cutting: Speed 15 -> 20 (conflict, taken)"
            << 20.0;
        QTest::newRow("merge: unreadable file")
            << QStringList{"merge", "user.json", "none.json", "out.json"} << 1.0 << 1
            << "layermgr-lib: none.json: cannot open" << 0.0;
        QTest::newRow("merge: OUT cannot be written")
            << QStringList{"merge", "user.json", "in.json", "folder"} << 1.0 << 1
            << "layermgr-lib: folder: cannot write" << 0.0;
    }

    // factory.json holds the sample library with a cutting speed of 10,
    // in.json the same at 20 (whole numbers: the reader takes no other).
    void commands()
    {
        QFETCH(QStringList, arguments);
        QFETCH(double, userSpeed);
        QFETCH(int, exitCode);
        QFETCH(QString, output);
        QFETCH(double, outSpeed);
        TestEnvironment env;
        CMaterialLibrary library = sampleLibrary();
        CLibCutSet *set = library.FindCutSet(libKey(QStringLiteral("Birch"), 3.0, 0));
        for (const auto &[name, speed] : {std::pair("factory", 10.0), std::pair("user", userSpeed),
                                          std::pair("in", 20.0)}) {
            set->speed = speed;
            QVERIFY(WriteMaterialLibraryFile(env.root() + '/' + name + ".json", library));
        }
        QVERIFY(env.writeFile(env.root() + QStringLiteral("/out.json"), "previous"));
        QVERIFY(QDir().mkpath(env.root() + QStringLiteral("/folder")));

        const ProgramRun run = runTool(arguments, env.root());
        QCOMPARE(run.exitCode, exitCode);
        QString out = run.out;
        const QString &err = run.err;
        if (arguments.contains("--json"))
            out = QString::fromUtf8(QJsonDocument::fromJson(out.toUtf8()).toJson(QJsonDocument::Compact));
        if (err.isEmpty())
            QVERIFY2(output.isEmpty() ? out.isEmpty() : out.split('\n').contains(output),
                     qPrintable(out));
        else
            QVERIFY2(err.startsWith(output) && exitCode > 0, qPrintable(err));

        const QByteArray written = env.readFile(env.root() + QStringLiteral("/out.json"));
        if (outSpeed == 0)
            QCOMPARE(written, QByteArray("previous"));
        else
            QCOMPARE(readBytes(written).FindCutSet(set->key)->speed, outSpeed);
    }
};

QTEST_GUILESS_MAIN(tst_LibraryMergeTool)
#include "tst_librarymergetool.moc"
