#include "librarytestdata.h"
#include "testenvironment.h"

#include <QDir>
#include <QJsonArray>
#include <QProcess>
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
        const QString change = "changed: RFBurning 60 W, Birch, 3.00, Cutting: Speed 10 -> 20";
        QTest::newRow("diff: equal") << diff << 20.0 << 0 << "" << 0.0;
        QTest::newRow("diff: a changed field") << diff << 10.0 << 1 << change << 0.0;
        QTest::newRow("diff: as JSON") << diff + QStringList{"--json"} << 10.0 << 1
                                       << "false changed Birch Cutting Speed 10 20" << 0.0;
        QTest::newRow("diff: missing file") << QStringList{"diff", "user.json", "none.json"} << 1.0
                                            << 2 << "layermgr-lib: none.json: cannot open" << 0.0;
        QTest::newRow("merge: a set the user left takes the file's")
            << merge << 10.0 << 0 << change << 20.0;
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

        QProcess tool;
        tool.setWorkingDirectory(env.root());
        tool.start(QStringLiteral(LAYERMGR_BUILD_BIN "/layermgr-lib"), arguments);
        QVERIFY(tool.waitForFinished(60000) && tool.exitStatus() == QProcess::NormalExit);
        QCOMPARE(tool.exitCode(), exitCode);
        QString out = QString::fromUtf8(tool.readAllStandardOutput());
        const QString err = QString::fromUtf8(tool.readAllStandardError());
        if (arguments.contains("--json")) {
            const QJsonObject root = jsonObject(out.toUtf8());
            QStringList fields{root.value("equal").toBool() ? "true" : "false"};
            for (const QJsonValue &entry : root.value("differences").toArray()) {
                for (const char *key : {"kind", "material", "craft", "field", "old", "new"})
                    fields << entry.toObject().value(QLatin1String(key)).toString();
            }
            out = fields.join(' ');
        }
        if (err.isEmpty())
            QVERIFY2(output.isEmpty() ? out.isEmpty() : out.split('\n').contains(output),
                     qPrintable(out));
        else
            QVERIFY2(err.startsWith(output) && exitCode > 0, qPrintable(err));

        const QByteArray written = env.readFile(env.root() + QStringLiteral("/out.json"));
        if (outSpeed == 0) {
            QCOMPARE(written, QByteArray("previous"));
        } else {
            const CMaterialLibrary merged = readBytes(written);
            QCOMPARE(merged.HasSet(set->key) ? merged.FindCutSet(set->key)->speed : -1, outSpeed);
        }
    }
};

QTEST_GUILESS_MAIN(tst_LibraryMergeTool)
#include "tst_librarymergetool.moc"
