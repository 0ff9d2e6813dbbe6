// The built layerhost program, run as a user runs it.
#include "cprojectfile.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString kHost = QStringLiteral(LAYERMGR_BUILD_BIN "/layerhost");
const QString kSampleSvg = QStringLiteral(LAYERMGR_SOURCE_DIR "/resources/Samples/sample.svg");

// The colour column of the printed layer table, in order.
QStringList colourColumn(const QString &out)
{
    QStringList colours;
    const QRegularExpression row(QStringLiteral("^\\S+\\s+(#[0-9a-f]{6})\\s"), QRegularExpression::MultilineOption);
    for (auto it = row.globalMatch(out); it.hasNext();)
        colours.append(it.next().captured(1));
    return colours;
}

QString modeOf(const QString &out, const char *colour)
{
    return QRegularExpression(QLatin1String(colour) + QStringLiteral("\\s+(\\S+(?: Engrave)?)")).match(out).captured(1);
}

int distinctColours(const QImage &image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3) {
        for (int x = 0; x < image.width(); x += 3)
            colours.insert(image.pixel(x, y));
    }
    return int(colours.size());
}

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

    std::unique_ptr<QTemporaryDir> m_dir;

    QString path(const QString &name) const { return m_dir->filePath(name); }

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
        Run result;
        if (!process.waitForFinished(120000)) {
            process.kill();
            process.waitForFinished();
            result.err = QStringLiteral("timed out");
            return result;
        }
        result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        result.out = QString::fromUtf8(process.readAllStandardOutput());
        result.err = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

    QImage screenshot(const QString &name, const QStringList &more = {})
    {
        const Run result = run(QStringList{QStringLiteral("--screenshot"), path(name)} + more);
        if (result.exitCode != 0)
            qWarning("%s", qPrintable(result.err));
        return result.exitCode == 0 ? QImage(path(name), "PNG") : QImage();
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void cleanup()
    {
        m_dir->setAutoRemove(!QTest::currentTestFailed());
        m_dir.reset();
    }

    void print_data()
    {
        QTest::addColumn<QString>("drawing");
        QTest::addColumn<QString>("summary");
        QTest::addColumn<QStringList>("colours");
        QTest::newRow("sample drawing") << QString() << "Drawing of 8 shapes gives 7 layers:"
                                        << QStringList{"#0b00ff", "#f48244", "#00cafc", "#2431bd", "#123456",
                                                       "#000000", "#cc8b17"};
        QTest::newRow("sample SVG") << kSampleSvg << "Drawing of 11 shapes gives 8 layers:"
                                    << QStringList{"#0b00ff", "#000000", "#00cafc", "#2431bd", "#f48244",
                                                   "#f5400f", "#ffd700", "#336633"};
        QTest::newRow("project") << "drawing.lhp" << "Drawing of 3 shapes gives 2 layers:"
                                 << QStringList{"#cc8b18", "#0b00ff"};
    }

    void print()
    {
        QFETCH(QString, drawing);
        QFETCH(QString, summary);
        QFETCH(QStringList, colours);
        const bool project = drawing.endsWith(QLatin1String(".lhp"));
        if (project) {
            CProjectFile file;
            file.m_items = {CDrawItem::Rect(QRectF(0, 0, 10, 10), 0xCC8B18),
                            CDrawItem::Image(QRectF(0, 0, 10, 10), 0x0B00FF),
                            CDrawItem::Line(QLineF(0, 0, 10, 10), 0x0B00FF)};
            QFile out(path(drawing));
            QVERIFY(out.open(QIODevice::WriteOnly) && file.Write(&out));
            drawing = out.fileName();
        }
        QStringList arguments{QStringLiteral("--print")};
        if (!drawing.isEmpty())
            arguments << drawing;
        const Run result = run(arguments);
        QVERIFY2(result.exitCode == 0, qPrintable(result.err));
        QVERIFY2(result.out.startsWith(summary + QLatin1Char('\n')), qPrintable(result.out));
        QVERIFY(result.out.contains(QStringLiteral("No.   Colour   Mode")));
        QVERIFY(result.out.contains(QRegularExpression(QStringLiteral("Layer stream for the document: \\d+ bytes"))));
        const QStringList printed = colourColumn(result.out);
        // The plug-in orders its layers; the reserved colour comes last whatever else it does.
        QCOMPARE(QSet<QString>(printed.cbegin(), printed.cend()), QSet<QString>(colours.cbegin(), colours.cend()));
        QCOMPARE(printed.size(), colours.size());
        if (drawing.isEmpty()) {
            QCOMPARE(printed, colours);
            QCOMPARE(modeOf(result.out, "#00cafc"), QStringLiteral("Shallow Engrave"));
            QCOMPARE(modeOf(result.out, "#000000"), QStringLiteral("Cutting"));
        }
        if (project) {
            // The image made its layer an engraving one.
            QCOMPARE(modeOf(result.out, "#0b00ff"), QStringLiteral("Shallow Engrave"));
            QCOMPARE(printed.last(), QStringLiteral("#cc8b18"));
        }
    }

    void refused_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("error");
        // "@name" is a file of the test's folder, written with the row's bytes when it has any.
        const QStringList shot{"--screenshot", "@shot.png"};
        QTest::newRow("malformed SVG") << shot + QStringList{"@bad.svg"} << QByteArray("<svg><rect width=\"1\"></svg>")
                                       << 2 << "layerhost: bad.svg: The SVG file is not well-formed:";
        QTest::newRow("SVG without colours")
            << shot + QStringList{"@bad.svg"} << QByteArray("<svg><rect width=\"1\" height=\"1\" fill=\"none\"/></svg>")
            << 2 << "layerhost: bad.svg: The SVG file has no colours";
        QTest::newRow("huge SVG") << shot + QStringList{"@huge.svg"}
                                  << "<svg>" + QByteArray(21 * 1024 * 1024, ' ') + "<rect width=\"1\" height=\"1\"/></svg>"
                                  << 2 << "layerhost: huge.svg: The SVG file is larger than 20 MB.";
        QTest::newRow("damaged project") << QStringList{"--print", "@bad.lhp"}
                                         << QByteArray("\x89LHPRJ\r\n\0\0\0\x01\0\0\0\x04\0\0\0\0abcd", 24) << 2
                                         << "layerhost: bad.lhp: The project file is damaged.";
        QTest::newRow("missing drawing") << shot + QStringList{"@missing.svg"} << QByteArray() << 2
                                         << "layerhost: Cannot open";
        QTest::newRow("bad unit") << QStringList{"--print", "--unit", "7"} << QByteArray() << 2
                                  << "--unit takes 0, 1, 2 or 3, not 7";
        QTest::newRow("two drawings") << QStringList{"--print", kSampleSvg, kSampleSvg} << QByteArray() << 2
                                      << "Give one drawing at most.";
        QTest::newRow("screenshot nowhere") << QStringList{"--screenshot", "/nonexistent-folder/shot.png"}
                                            << QByteArray() << 3
                                            << "Cannot write the screenshot /nonexistent-folder/shot.png.";
    }

    void refused()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);
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
        QVERIFY2(result.err.contains(error), qPrintable(result.err));
        QVERIFY(!QFile::exists(path(QStringLiteral("shot.png"))));
        QVERIFY(!result.out.contains(QStringLiteral("Drawing of")));
    }

    void screenshotShowsTheDrawingAndLanguage()
    {
        const QImage sample = screenshot(QStringLiteral("sample.png"));
        QCOMPARE(sample.size(), QSize(1280, 800));
        QVERIFY(distinctColours(sample) > 50);
        const QImage svg = screenshot(QStringLiteral("svg.png"), {kSampleSvg});
        const QImage chinese = screenshot(QStringLiteral("chs.png"), {QStringLiteral("--language"), QStringLiteral("Chs")});
        QVERIFY(!svg.isNull() && !chinese.isNull());
        QVERIFY(sample != svg);
        QVERIFY(sample != chinese);
        // The same sample drawing twice is the same picture: nothing but the input changes it.
        QCOMPARE(screenshot(QStringLiteral("again.png")), sample);
    }

    void demoScriptWithoutDisplay()
    {
        // A build tree of our own, so the script writes its screenshot here.
        const QString build = path(QStringLiteral("build"));
        QVERIFY(QDir().mkpath(build));
        QVERIFY(QFile::link(QStringLiteral(LAYERMGR_BUILD_BIN), build + QStringLiteral("/bin")));
        const Run result = run({QStringLiteral(LAYERMGR_SOURCE_DIR "/scripts/demo.sh"), build}, QStringLiteral("bash"));
        QVERIFY2(result.exitCode == 0, qPrintable(result.err));
        const QString shot = build + QStringLiteral("/layerhost-screenshot.png");
        QCOMPARE(result.out.trimmed(), QStringLiteral("No display: wrote a screenshot of the demo host to ") + shot);
        QCOMPARE(QImage(shot).size(), QSize(1280, 800));
    }
};

QTEST_GUILESS_MAIN(tst_LayerHostApp)
#include "tst_layerhostapp.moc"
