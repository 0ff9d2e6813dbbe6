// The built layerhost program, run as a user runs it.
#include "cprojectfile.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString kHost = QStringLiteral(LAYERMGR_BUILD_BIN "/layerhost");
const QSize kWindowSize(1600, 900);

} // namespace

class tst_LayerHostApp : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_out;
    QString m_err;

    QString path(const QString &name) const { return m_dir.filePath(name); }

    // The exit code, -1 when it crashed or hung; stdout and stderr are kept.
    int run(const QStringList &arguments, const QString &program = kHost)
    {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove(QStringLiteral("DISPLAY"));
        env.remove(QStringLiteral("WAYLAND_DISPLAY"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("config")));
        process.setProcessEnvironment(env);
        process.start(program, arguments);
        const bool finished = process.waitForFinished(120000);
        m_out = QString::fromUtf8(process.readAllStandardOutput());
        m_err = QString::fromUtf8(process.readAllStandardError());
        return finished && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    QImage screenshot(const QStringList &more = {})
    {
        QFile::remove(path(QStringLiteral("shot.png")));
        return run(QStringList{QStringLiteral("--screenshot"), path(QStringLiteral("shot.png"))} + more) == 0 ? QImage(path(QStringLiteral("shot.png"))) : QImage();
    }

private slots:
    void print_data()
    {
        QTest::addColumn<QString>("drawing");
        QTest::addColumn<QString>("layers"); // "colour mode" as printed
        // clang-format off
        QTest::newRow("sample drawing") << QString() << "Drawing of 8 shapes gives 7 layers: #0b00ff Cutting, #f48244 Cutting, #00cafc Shallow Engrave, #2431bd Cutting, #123456 Cutting, #000000 Cutting, #cc8b17 Cutting";
        // The image makes its layer an engraving one; the special colour comes last.
        QTest::newRow("project") << "drawing.lhp" << "Drawing of 3 shapes gives 2 layers: #0b00ff Shallow Engrave, #cc8b18 Cutting";
        // clang-format on
    }

    void print()
    {
        QFETCH(QString, drawing);
        QStringList arguments{QStringLiteral("--print")};
        if (!drawing.isEmpty()) {
            CProjectFile project;
            project.m_items = {CDrawItem::Rect(QRectF(0, 0, 10, 10), 0xCC8B18), CDrawItem::Image(QRectF(0, 0, 10, 10), 0x0B00FF),
                               CDrawItem::Line(QLineF(0, 0, 10, 10), 0x0B00FF)};
            QFile out(path(drawing));
            QVERIFY(out.open(QIODevice::WriteOnly) && project.Write(&out));
            arguments << out.fileName();
        }
        QVERIFY2(run(arguments) == 0, qPrintable(m_err));
        QStringList printed;
        const QRegularExpression row(QStringLiteral("^\\S+\\s+(#[0-9a-f]{6})\\s+(\\S+(?: Engrave)?)"), QRegularExpression::MultilineOption);
        for (auto it = row.globalMatch(m_out); it.hasNext();) {
            const QRegularExpressionMatch match = it.next();
            printed << match.captured(1) + QLatin1Char(' ') + match.captured(2);
        }
        QTEST(QString(m_out.section(QLatin1Char('\n'), 0, 0) + QLatin1Char(' ') + printed.join(QStringLiteral(", "))), "layers");
        QVERIFY2(m_out.contains(QRegularExpression(QStringLiteral("\nLayer stream for the document: \\d+ bytes\n"))), qPrintable(m_out));
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

    // The library manager opens from a double click on a layer, the others from it.
    void dialogScreenshots_data()
    {
        QTest::addColumn<QStringList>("arguments");
        for (const char *dialog :
             {"DlgLayerLibMgr", "DlgOne", "DlgTps", "DlgLayerParamSweep", "DlgLibraryMerge"})
            QTest::newRow(dialog) << QStringList{QString::fromLatin1(dialog)};
        QTest::newRow("in Chinese") << QStringList{"DlgLayerAddThickness", "--language", "Chs"};
    }

    void dialogScreenshots()
    {
        QFETCH(QStringList, arguments);
        QFile::remove(path(QStringLiteral("dialog.png")));
        arguments.insert(1, path(QStringLiteral("dialog.png")));
        QVERIFY2(run(QStringList{QStringLiteral("--screenshot-dialog")} + arguments) == 0, qPrintable(m_err));
        QVERIFY(QImage(path(QStringLiteral("dialog.png"))).width() > 100);
    }

    void screenshots()
    {
        const QImage sample = screenshot();
        QCOMPARE(sample.size(), kWindowSize);
        QVERIFY(sample.convertToFormat(QImage::Format_Indexed8).colorCount() > 50);
        // Each input changes the picture; nothing else does.
        QCOMPARE(screenshot(), sample);
        const QString svg = QStringLiteral(LAYERMGR_SOURCE_DIR "/resources/Samples/sample.svg");
        for (const QStringList &input : QList<QStringList>{{svg}, {"--language", "Chs"}, {"--laser2", "3,30"}}) {
            const QImage other = screenshot(input);
            QVERIFY2(!other.isNull() && other != sample, qPrintable(input.join(QLatin1Char(' '))));
        }
    }

    void demoScriptWithoutDisplay()
    {
        // A build tree of our own, so the script writes its screenshot here.
        const QString build = path(QStringLiteral("build"));
        QVERIFY(QDir().mkpath(build) && QFile::link(QStringLiteral(LAYERMGR_BUILD_BIN), build + QStringLiteral("/bin")));
        QVERIFY2(run({QStringLiteral(LAYERMGR_SOURCE_DIR "/scripts/demo.sh"), build}, QStringLiteral("bash")) == 0, qPrintable(m_err));
        const QString shot = build + QStringLiteral("/layerhost-screenshot.png");
        QCOMPARE(m_out.trimmed(), QStringLiteral("No display: wrote a screenshot of the demo host to ") + shot);
        QCOMPARE(QImage(shot).size(), kWindowSize);
    }
};

QTEST_GUILESS_MAIN(tst_LayerHostApp)
#include "tst_layerhostapp.moc"
