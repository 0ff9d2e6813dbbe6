// The built layerhost program, run as a user runs it.
#include "cprojectfile.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

class tst_LayerHostApp : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void print_data();
    void print();
    void refused_data();
    void refused();
    void screenshot();
    void screenshotShowsTheDrawingAndLanguage();
    void demoScriptWithoutDisplay();

private:
    struct Run
    {
        int exitCode = -1;
        QString out;
        QString err;
    };
    Run run(const QStringList &arguments, const QString &program = QString());
    QString path(const QString &name) const { return m_dir->filePath(name); }
    QString write(const QString &name, const QByteArray &bytes) const;

    std::unique_ptr<QTemporaryDir> m_dir;
};

namespace {

const QString kHost = QStringLiteral(LAYERMGR_BUILD_BIN "/layerhost");
const QString kSampleSvg = QStringLiteral(LAYERMGR_SOURCE_DIR "/resources/Samples/sample.svg");

// The colour column of the printed layer table, in order.
QStringList colourColumn(const QString &out)
{
    QStringList colours;
    const QRegularExpression row(QStringLiteral("^\\S+\\s+(#[0-9a-f]{6})\\s"), QRegularExpression::MultilineOption);
    auto it = row.globalMatch(out);
    while (it.hasNext())
        colours.append(it.next().captured(1));
    return colours;
}

QString modeOf(const QString &out, const QString &colour)
{
    const QRegularExpression row(QRegularExpression::escape(colour) + QStringLiteral("\\s+(\\S+(?: Engrave)?)"));
    return row.match(out).captured(1);
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

} // namespace

void tst_LayerHostApp::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_LayerHostApp::cleanup()
{
    m_dir->setAutoRemove(!QTest::currentTestFailed());
    m_dir.reset();
}

tst_LayerHostApp::Run tst_LayerHostApp::run(const QStringList &arguments, const QString &program)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("DISPLAY"));
    env.remove(QStringLiteral("WAYLAND_DISPLAY"));
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("config")));
    process.setProcessEnvironment(env);
    process.start(program.isEmpty() ? kHost : program, arguments);
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

QString tst_LayerHostApp::write(const QString &name, const QByteArray &bytes) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

void tst_LayerHostApp::print_data()
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
    QTest::newRow("project") << "project" << "Drawing of 3 shapes gives 2 layers:"
                             << QStringList{"#cc8b18", "#0b00ff"};
}

void tst_LayerHostApp::print()
{
    QFETCH(QString, drawing);
    QFETCH(QString, summary);
    QFETCH(QStringList, colours);

    if (drawing == QLatin1String("project")) {
        CProjectFile project;
        project.m_items.push_back(CDrawItem::Rect(QRectF(0, 0, 10, 10), 0xCC8B18));
        project.m_items.push_back(CDrawItem::Image(QRectF(0, 0, 10, 10), 0x0B00FF));
        project.m_items.push_back(CDrawItem::Line(QLineF(0, 0, 10, 10), 0x0B00FF));
        QFile file(path(QStringLiteral("drawing.lhp")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(project.Write(&file));
        file.close();
        drawing = file.fileName();
    }
    QStringList arguments{QStringLiteral("--print")};
    if (!drawing.isEmpty())
        arguments.append(drawing);
    const Run result = run(arguments);
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    QVERIFY2(result.out.startsWith(summary + QLatin1Char('\n')), qPrintable(result.out));
    QVERIFY(result.out.contains(QStringLiteral("No.   Colour   Mode")));
    const QStringList printed = colourColumn(result.out);
    // The plug-in orders its layers; the reserved colour comes last whatever else it does.
    QCOMPARE(QSet<QString>(printed.cbegin(), printed.cend()), QSet<QString>(colours.cbegin(), colours.cend()));
    QCOMPARE(printed.size(), colours.size());
    if (drawing.isEmpty()) {
        QCOMPARE(printed, colours);
        QCOMPARE(modeOf(result.out, QStringLiteral("#00cafc")), QStringLiteral("Shallow Engrave"));
        QCOMPARE(modeOf(result.out, QStringLiteral("#000000")), QStringLiteral("Cutting"));
    }
    if (drawing.endsWith(QLatin1String(".lhp"))) {
        // The image made its layer an engraving one.
        QCOMPARE(modeOf(result.out, QStringLiteral("#0b00ff")), QStringLiteral("Shallow Engrave"));
        QCOMPARE(printed.last(), QStringLiteral("#cc8b18"));
    }
    QVERIFY(result.out.contains(QRegularExpression(QStringLiteral("Layer stream for the document: \\d+ bytes"))));
}

void tst_LayerHostApp::refused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error");

    const QStringList shot{QStringLiteral("--screenshot"), QStringLiteral("@shot.png")};
    const QStringList print{QStringLiteral("--print")};
    QTest::newRow("malformed SVG") << shot << "bad.svg" << QByteArray("<svg><rect width=\"1\"></svg>") << 2
                                   << "layerhost: bad.svg: The SVG file is not well-formed:";
    QTest::newRow("SVG without colours")
        << shot << "bad.svg" << QByteArray("<svg><rect width=\"1\" height=\"1\" fill=\"none\"/></svg>") << 2
        << "layerhost: bad.svg: The SVG file has no colours";
    QByteArray huge = "<svg>" + QByteArray(21 * 1024 * 1024, ' ') + "<rect width=\"1\" height=\"1\"/></svg>";
    QTest::newRow("huge SVG") << shot << "huge.svg" << huge << 2
                              << "layerhost: huge.svg: The SVG file is larger than 20 MB.";
    QTest::newRow("damaged project") << print << "bad.lhp" << QByteArray("\x89LHPRJ\r\n\0\0\0\x01\0\0\0\x04\0\0\0\0abcd", 24)
                                     << 2 << "layerhost: bad.lhp: The project file is damaged.";
    QTest::newRow("missing drawing") << shot << "" << QByteArray() << 2 << "layerhost: Cannot open";
    QTest::newRow("bad unit") << QStringList{QStringLiteral("--print"), QStringLiteral("--unit"), QStringLiteral("7")}
                              << "" << QByteArray() << 2 << "--unit takes 0, 1, 2 or 3, not 7";
    QTest::newRow("two drawings") << QStringList{QStringLiteral("--print"), kSampleSvg, kSampleSvg} << ""
                                  << QByteArray() << 2 << "Give one drawing at most.";
    QTest::newRow("screenshot nowhere")
        << QStringList{QStringLiteral("--screenshot"), QStringLiteral("/nonexistent-folder/shot.png")} << ""
        << QByteArray() << 3 << "Cannot write the screenshot /nonexistent-folder/shot.png.";
}

void tst_LayerHostApp::refused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, file);
    QFETCH(QByteArray, bytes);
    QFETCH(int, exitCode);
    QFETCH(QString, error);

    for (QString &argument : arguments) {
        if (argument.startsWith(QLatin1Char('@')))
            argument = path(argument.mid(1));
    }
    if (!file.isEmpty())
        arguments.append(write(file, bytes));
    else if (error.contains(QLatin1String("Cannot open")))
        arguments.append(path(QStringLiteral("missing.svg")));
    const Run result = run(arguments);
    QCOMPARE(result.exitCode, exitCode);
    QVERIFY2(result.err.contains(error), qPrintable(result.err));
    QVERIFY(!QFile::exists(path(QStringLiteral("shot.png"))));
    QVERIFY(!result.out.contains(QStringLiteral("Drawing of")));
}

void tst_LayerHostApp::screenshot()
{
    const QString shot = path(QStringLiteral("shot.png"));
    const Run result = run({QStringLiteral("--screenshot"), shot});
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    QImage image;
    QVERIFY(image.load(shot, "PNG"));
    QCOMPARE(image.size(), QSize(1280, 800));
    QVERIFY(distinctColours(image) > 50);
}

void tst_LayerHostApp::screenshotShowsTheDrawingAndLanguage()
{
    const Run sample = run({QStringLiteral("--screenshot"), path(QStringLiteral("sample.png"))});
    const Run svg = run({QStringLiteral("--screenshot"), path(QStringLiteral("svg.png")), kSampleSvg});
    const Run chinese = run({QStringLiteral("--screenshot"), path(QStringLiteral("chs.png")),
                             QStringLiteral("--language"), QStringLiteral("Chs")});
    QVERIFY2(sample.exitCode == 0 && svg.exitCode == 0 && chinese.exitCode == 0,
             qPrintable(sample.err + svg.err + chinese.err));
    const QImage a(path(QStringLiteral("sample.png")));
    const QImage b(path(QStringLiteral("svg.png")));
    const QImage c(path(QStringLiteral("chs.png")));
    QVERIFY(!a.isNull() && !b.isNull() && !c.isNull());
    QVERIFY(a != b);
    QVERIFY(a != c);
    // The same sample drawing twice is the same picture: nothing but the input changes it.
    const Run again = run({QStringLiteral("--screenshot"), path(QStringLiteral("again.png"))});
    QCOMPARE(again.exitCode, 0);
    QCOMPARE(QImage(path(QStringLiteral("again.png"))), a);
}

void tst_LayerHostApp::demoScriptWithoutDisplay()
{
    // A build tree of our own, so the script writes its screenshot here.
    const QString build = path(QStringLiteral("build"));
    QVERIFY(QDir().mkpath(build));
    QVERIFY(QFile::link(QStringLiteral(LAYERMGR_BUILD_BIN), build + QStringLiteral("/bin")));
    const Run result = run({QStringLiteral(LAYERMGR_SOURCE_DIR "/scripts/demo.sh"), build},
                           QStringLiteral("bash"));
    QVERIFY2(result.exitCode == 0, qPrintable(result.err));
    const QString shot = build + QStringLiteral("/layerhost-screenshot.png");
    QCOMPARE(result.out.trimmed(), QStringLiteral("No display: wrote a screenshot of the demo host to ") + shot);
    QCOMPARE(QImage(shot).size(), QSize(1280, 800));
}

QTEST_GUILESS_MAIN(tst_LayerHostApp)
#include "tst_layerhostapp.moc"
