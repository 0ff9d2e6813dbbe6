// The built layerhost program, run as a user runs it.

#include "programrun.h"

#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class tst_LayerHostApp : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_out;
    QString m_err;

    QString path(const QString &name) const { return m_dir.filePath(name); }

    int run(const QStringList &arguments)
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("config")));
        const ProgramRun result =
            runProgram(QStringLiteral(LAYERMGR_BUILD_BIN "/layerhost"), arguments, QString(), env);
        m_out = result.out;
        m_err = result.err;
        return result.exitCode;
    }

private slots:
    void print()
    {
        QVERIFY2(run({QStringLiteral("--print")}) == 0, qPrintable(m_err));
        QStringList printed;
        const QRegularExpression row(QStringLiteral("^\\S+\\s+(#[0-9a-f]{6})\\s+(\\S+(?: Engrave)?)"), QRegularExpression::MultilineOption);
        for (auto it = row.globalMatch(m_out); it.hasNext();) {
            const QRegularExpressionMatch match = it.next();
            printed << match.captured(1) + QLatin1Char(' ') + match.captured(2);
        }
        QCOMPARE(m_out.section(QLatin1Char('\n'), 0, 0) + QLatin1Char(' ') + printed.join(QStringLiteral(", ")),
                 QStringLiteral("Drawing of 8 shapes gives 7 layers: #0b00ff Cutting, #f48244 Cutting, #00cafc Shallow Engrave, "
                                "#2431bd Cutting, #123456 Cutting, #000000 Cutting, #cc8b17 Cutting"));
        QVERIFY2(m_out.contains(QRegularExpression(QStringLiteral("\nLayer stream for the document: \\d+ bytes\n"))), qPrintable(m_out));
    }

    // What the README tells users to look at: the window and a dialog, in Chinese too.
    void screenshots()
    {
        const QString window = path(QStringLiteral("window.png")), dialog = path(QStringLiteral("dialog.png"));
        const QStringList chinese{QStringLiteral("--language"), QStringLiteral("Chs")};
        QVERIFY2(run(QStringList{QStringLiteral("--screenshot"), window} + chinese) == 0, qPrintable(m_err));
        QVERIFY2(run({QStringLiteral("--screenshot-dialog"), QStringLiteral("DlgLayerLibMgr"), dialog}) == 0, qPrintable(m_err));
        QVERIFY(QImage(window).width() >= 640 && QImage(dialog).width() >= 400);
    }

    void refused_data()
    {
        QTest::addColumn<QStringList>("arguments"); // "@name": a file of the test's folder; "@bad.svg" is malformed
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("error");
        // clang-format off
        QTest::newRow("malformed SVG") << QStringList{"--screenshot", "@shot.png", "@bad.svg"} << 2 << "layerhost: bad.svg: The SVG file is not well-formed:";
        QTest::newRow("bad unit") << QStringList{"--print", "--unit", "7"} << 2 << "--unit takes 0, 1, 2 or 3, not 7";
        QTest::newRow("two drawings") << QStringList{"--print", "a.svg", "b.svg"} << 2 << "Give one drawing at most.";
        QTest::newRow("screenshot nowhere") << QStringList{"--screenshot", "/nonexistent-folder/shot.png"} << 3 << "Cannot write the screenshot /nonexistent-folder/shot.png.";
        QTest::newRow("machine kind 3") << QStringList{"--print", "--machine-kind", "3"} << 2 << "--machine-kind takes a whole number from 1 to 2, not 3";
        QTest::newRow("laser without power") << QStringList{"--print", "--laser2", "3"} << 2 << "--laser2 takes TUBE,WATTS (tube 0 to 4, watts 0 to 100000), not 3";
        QTest::newRow("unknown dialog") << QStringList{"--screenshot-dialog", "DlgNone", "@shot.png"} << 2 << "Unknown dialog DlgNone; choose one of DlgLayerLibMgr, DlgLaserTube,";
        // A dialog that cannot come up (Advance is off while a machine is connected) is reported, not waited for.
        QTest::newRow("tube dialog while connected") << QStringList{"--screenshot-dialog", "DlgOne", "@shot.png", "--device-status", "0"} << 2 << "layerhost: The dialog DlgLaserTube did not appear within 5 s.";
        // clang-format on
    }

    void refused()
    {
        QFETCH(QStringList, arguments);
        for (QString &argument : arguments) {
            if (argument.startsWith(QLatin1Char('@')))
                argument = path(argument.mid(1));
        }
        QFile bad(path(QStringLiteral("bad.svg")));
        QVERIFY(bad.open(QIODevice::WriteOnly) && bad.write("<svg><rect width=\"1\"></svg>") > 0 && bad.flush());
        QTEST(run(arguments), "exitCode");
        QFETCH(QString, error);
        QVERIFY2(m_err.contains(error), qPrintable(m_err));
        QVERIFY(!QFile::exists(path(QStringLiteral("shot.png"))) && !m_out.contains(QStringLiteral("Drawing of")));
    }
};

QTEST_GUILESS_MAIN(tst_LayerHostApp)
#include "tst_layerhostapp.moc"
