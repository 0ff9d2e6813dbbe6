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
const QString kSampleSvg = QStringLiteral(LAYERMGR_SOURCE_DIR "/resources/Samples/sample.svg");
const QSize kWindowSize(1600, 900);

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

} // namespace

class tst_LayerHostApp : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const QString &name) const { return m_dir.filePath(name); }

    Run run(const QStringList &arguments, const QString &program = kHost)
    {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove(QStringLiteral("DISPLAY"));
        env.remove(QStringLiteral("WAYLAND_DISPLAY"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("config")));
        process.setProcessEnvironment(env);
        process.start(program, arguments);
        if (!process.waitForFinished(120000)) {
            process.kill();
            process.waitForFinished();
            return {-1, {}, QStringLiteral("timed out")};
        }
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromUtf8(process.readAllStandardOutput()), QString::fromUtf8(process.readAllStandardError())};
    }

    QImage screenshot(const QString &name, const QStringList &more = {})
    {
        return run(QStringList{QStringLiteral("--screenshot"), path(name)} + more).exitCode == 0 ? QImage(path(name), "PNG") : QImage();
    }

private slots:
    void print_data()
    {
        QTest::addColumn<QString>("drawing");
        QTest::addColumn<QString>("summary");
        QTest::addColumn<QString>("colours"); // in the printed order
        QTest::addColumn<QString>("modes");   // of the first and the last layer
        // clang-format off
        QTest::newRow("sample drawing") << QString() << "Drawing of 8 shapes gives 7 layers:" << "#0b00ff #f48244 #00cafc #2431bd #123456 #000000 #cc8b17" << "Cutting Cutting";
        QTest::newRow("sample SVG") << kSampleSvg << "Drawing of 11 shapes gives 8 layers:" << "#000000 #00cafc #0b00ff #2431bd #336633 #f48244 #f5400f #ffd700" << "";
        // The image makes its layer an engraving one; the special colour comes last.
        QTest::newRow("project") << "drawing.lhp" << "Drawing of 3 shapes gives 2 layers:" << "#0b00ff #cc8b18" << "Shallow Engrave Cutting";
        // clang-format on
    }

    void print()
    {
        QFETCH(QString, drawing);
        QFETCH(QString, colours);
        QFETCH(QString, modes);
        QStringList arguments{QStringLiteral("--print")};
        if (drawing.endsWith(QLatin1String(".lhp"))) {
            CProjectFile project;
            project.m_items = {CDrawItem::Rect(QRectF(0, 0, 10, 10), 0xCC8B18), CDrawItem::Image(QRectF(0, 0, 10, 10), 0x0B00FF),
                               CDrawItem::Line(QLineF(0, 0, 10, 10), 0x0B00FF)};
            QFile out(path(drawing));
            QVERIFY(out.open(QIODevice::WriteOnly) && project.Write(&out));
            drawing = out.fileName();
        }
        if (!drawing.isEmpty())
            arguments << drawing;
        const Run result = run(arguments);
        QVERIFY2(result.exitCode == 0, qPrintable(result.err));
        QFETCH(QString, summary);
        QVERIFY2(result.out.startsWith(summary + QLatin1Char('\n')), qPrintable(result.out));
        QVERIFY(result.out.contains(QRegularExpression(QStringLiteral("Layer stream for the document: \\d+ bytes"))));
        QStringList printed;
        QStringList printedModes;
        const QRegularExpression row(QStringLiteral("^\\S+\\s+(#[0-9a-f]{6})\\s+(\\S+(?: Engrave)?)"), QRegularExpression::MultilineOption);
        for (auto it = row.globalMatch(result.out); it.hasNext();) {
            const QRegularExpressionMatch match = it.next();
            printed << match.captured(1);
            printedModes << match.captured(2);
        }
        // The order of the SVG's layers is the plug-in's: only the set counts.
        if (modes.isEmpty())
            printed.sort();
        QCOMPARE(printed.join(QLatin1Char(' ')), colours);
        if (!modes.isEmpty())
            QCOMPARE(printedModes.first() + QLatin1Char(' ') + printedModes.last(), modes);
    }

    void refused_data()
    {
        QTest::addColumn<QStringList>("arguments"); // "@name": a file of the test's folder, written with the row's bytes
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("error");
        const QStringList shot{"--screenshot", "@shot.png"};
        // clang-format off
        QTest::newRow("malformed SVG") << shot + QStringList{"@bad.svg"} << QByteArray("<svg><rect width=\"1\"></svg>") << 2 << "layerhost: bad.svg: The SVG file is not well-formed:";
        QTest::newRow("damaged project") << QStringList{"--print", "@bad.lhp"} << QByteArray("\x89LHPRJ\r\n\0\0\0\x01\0\0\0\x04\0\0\0\0abcd", 24) << 2 << "layerhost: bad.lhp: The project file is damaged.";
        QTest::newRow("bad unit") << QStringList{"--print", "--unit", "7"} << QByteArray() << 2 << "--unit takes 0, 1, 2 or 3, not 7";
        QTest::newRow("two drawings") << QStringList{"--print", kSampleSvg, kSampleSvg} << QByteArray() << 2 << "Give one drawing at most.";
        QTest::newRow("screenshot nowhere") << QStringList{"--screenshot", "/nonexistent-folder/shot.png"} << QByteArray() << 3 << "Cannot write the screenshot /nonexistent-folder/shot.png.";
        QTest::newRow("machine kind 3") << QStringList{"--print", "--machine-kind", "3"} << QByteArray() << 2 << "--machine-kind takes a whole number from 1 to 2, not 3";
        QTest::newRow("laser without power") << QStringList{"--print", "--laser2", "3"} << QByteArray() << 2 << "--laser2 takes TUBE,WATTS (tube 0 to 4, watts 0 to 100000), not 3";
        QTest::newRow("unknown dialog") << QStringList{"--screenshot-dialog", "DlgNone", "@shot.png"} << QByteArray() << 2 << "Unknown dialog DlgNone; choose one of DlgLayerLibMgr, DlgLaserTube,";
        // clang-format on
    }

    void refused()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, bytes);
        for (QString &argument : arguments) {
            if (!argument.startsWith(QLatin1Char('@')))
                continue;
            argument = path(argument.mid(1));
            QFile file(argument);
            if (!bytes.isEmpty() && !argument.endsWith(QLatin1String(".png")))
                QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        }
        const Run result = run(arguments);
        QTEST(result.exitCode, "exitCode");
        QFETCH(QString, error);
        QVERIFY2(result.err.contains(error), qPrintable(result.err));
        QVERIFY(!QFile::exists(path(QStringLiteral("shot.png"))) && !result.out.contains(QStringLiteral("Drawing of")));
    }

    // The library manager opens from a double click on a layer and the others
    // from it; a dialog that cannot come up (Advance is off while a machine is
    // connected) is reported rather than waited for.
    void dialogScreenshots_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("error"); // empty: a picture is written
        QTest::newRow("library manager") << QStringList{"DlgLayerLibMgr"} << QString();
        QTest::newRow("power input behind the tube dialog") << QStringList{"DlgOne"} << QString();
        QTest::newRow("change summary") << QStringList{"DlgTps"} << QString();
        QTest::newRow("fill editor") << QStringList{"DlgLayerParamSweep"} << QString();
        QTest::newRow("add thickness") << QStringList{"DlgLayerAddThickness", "--language", "Chs"} << QString();
        QTest::newRow("import summary of a sample merge") << QStringList{"DlgLibraryMerge"} << QString();
        QTest::newRow("tube dialog while connected") << QStringList{"DlgOne", "--device-status", "0"}
                                                     << "layerhost: The dialog DlgLaserTube did not appear within 5 s.";
    }

    void dialogScreenshots()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, error);
        const QString shot = path(QStringLiteral("dialog.png"));
        QFile::remove(shot);
        arguments.insert(1, shot);
        const Run result = run(QStringList{QStringLiteral("--screenshot-dialog")} + arguments);
        if (error.isEmpty()) {
            QVERIFY2(result.exitCode == 0, qPrintable(result.err));
            QVERIFY(QImage(shot).width() > 100);
        } else {
            QCOMPARE(result.exitCode, 2);
            QVERIFY2(result.err.contains(error), qPrintable(result.err));
            QVERIFY(!QFile::exists(shot));
        }
    }

    void screenshots()
    {
        const QImage sample = screenshot(QStringLiteral("sample.png"));
        QCOMPARE(sample.size(), kWindowSize);
        QVERIFY(sample.convertToFormat(QImage::Format_Indexed8).colorCount() > 50);
        // Each input changes the picture; nothing else does.
        QCOMPARE(screenshot(QStringLiteral("again.png")), sample);
        const QList<QStringList> inputs{{kSampleSvg}, {QStringLiteral("--language"), QStringLiteral("Chs")},
                                        {QStringLiteral("--laser2"), QStringLiteral("3,30")}};
        for (const QStringList &input : inputs) {
            const QImage other = screenshot(QStringLiteral("other.png"), input);
            QVERIFY2(!other.isNull() && other != sample, qPrintable(input.join(QLatin1Char(' '))));
        }
    }

    void demoScriptWithoutDisplay()
    {
        // A build tree of our own, so the script writes its screenshot here.
        const QString build = path(QStringLiteral("build"));
        QVERIFY(QDir().mkpath(build) && QFile::link(QStringLiteral(LAYERMGR_BUILD_BIN), build + QStringLiteral("/bin")));
        const Run result = run({QStringLiteral(LAYERMGR_SOURCE_DIR "/scripts/demo.sh"), build}, QStringLiteral("bash"));
        QVERIFY2(result.exitCode == 0, qPrintable(result.err));
        const QString shot = build + QStringLiteral("/layerhost-screenshot.png");
        QCOMPARE(result.out.trimmed(), QStringLiteral("No display: wrote a screenshot of the demo host to ") + shot);
        QCOMPARE(QImage(shot).size(), kWindowSize);
    }
};

QTEST_GUILESS_MAIN(tst_LayerHostApp)
#include "tst_layerhostapp.moc"
