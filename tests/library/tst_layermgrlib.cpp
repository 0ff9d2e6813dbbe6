#include "librarytestdata.h"
#include "library/pictureencoding.h"
#include "testenvironment.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTest>

namespace {

const QString kFactory = QStringLiteral(LAYERMGR_BUILD_BIN "/../Resources/Data/defaultMaterial.json");
const QString kFactorySource = QStringLiteral(LAYERMGR_SOURCE_DIR "/resources-src/factory");

const QByteArray kHeader = "tube\tpower\tmaterial\ticon\tthickness\tcraft\tspeed\tpower1\tpower1min"
                           "\tfrequency\tair\tpasses\tdpi\tnote\n";
const QByteArray kRow = "Glass\t60\tPlywood\tply.png\t3\tCutting\t20\t65\t55\t4000\t1\t2\t6\tmask it\n";

// A small factory table of our own, with both swatch kinds.
const QByteArray kTable = "# a comment line\n" + kHeader + kRow
    + "Glass\t60\tPlywood\tply.png\t3\tDeep Carving\t150.5\t47\t14\t4000\t1\t3\t5\t\n"
      "\n"
      "Glass\t60\tAcrylic\tacr.jpg\t5\tShallow Carving\t300\t22\t21\t5000\t0\t1\t8\tmirror\n"
      "Glass\t60\tPlywood\tply.png\t6\tTracing\t80\t24\t19\t4000\t1\t1\t6\n"
      "Fiber\t30\tSteel\tacr.jpg\t1\tVision Mark\t1000\t80\t80\t30000\t0\t1\t6\tblack mark\r\n";

// kRow with one field replaced.
QByteArray replaced(int column, const QByteArray &value)
{
    QList<QByteArray> fields = kRow.trimmed().split('\t');
    fields[column] = value;
    return fields.join('\t') + '\n';
}

QString writeSwatches(const TestEnvironment &env)
{
    const QString dir = env.root() + QStringLiteral("/swatches");
    QDir().mkpath(dir);
    QImage ply(80, 40, QImage::Format_RGB32);
    ply.fill(qRgb(200, 160, 100));
    ply.save(dir + QStringLiteral("/ply.png"));
    QImage acr(64, 64, QImage::Format_RGB32);
    acr.fill(qRgb(180, 220, 240));
    acr.save(dir + QStringLiteral("/acr.jpg"), "JPG");
    env.writeFile(dir + QStringLiteral("/table.png"), "not a picture");
    return dir;
}

} // namespace

class tst_LayerMgrLib : public QObject
{
    Q_OBJECT

private slots:
    void calls_data()
    {
        QTest::addColumn<QStringList>("arguments"); // "@" stands for the test's folder
        QTest::addColumn<QByteArray>("input");      // @/in: bytes or "<none>"
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message"); // how stderr starts, after the tool's name; stdout for 0
        auto row = [](const char *name, const QStringList &arguments, const QByteArray &input, int exitCode,
                      const QString &message) { QTest::newRow(name) << arguments << input << exitCode << message; };
        const QStringList check{"check", "@/in"}, generate{"generate", "@/in", "@/swatches", "@/new/lib.json"};
        const QByteArray none = "<none>";
        row("help", {"--help"}, none, 0, "Usage: layermgr-lib COMMAND");
        row("unknown command", {"verify", "x"}, none, 2, "unknown command \"verify\"\n");
        row("check without file", {"check"}, none, 2, "check takes 1 argument\n");
        row("rewrite with one file", {"rewrite", "a"}, none, 2, "rewrite takes 2 arguments\n");

        row("check: missing file", check, none, 1, "@/in: cannot open");
        row("check: no material", check, R"({"Type": {"Glass": [{"Power": 80}]}})", 1, "@/in: no material");
        row("rewrite: target is a folder", {"rewrite", "@/in", "@/folder"}, jsonBytes(sampleLibrary()), 1, "@/folder: cannot write");

        row("generate: wrong header", generate, "tube\tpower\tmaterial\n" + kRow, 1, "@/in: line 1: the header must be:");
        row("generate: unknown craft", generate, kHeader + replaced(0, "RFNoBurning") + replaced(5, "Scoring"), 1, "@/in: line 3: craft");
        row("generate: fractional line speed", generate, kHeader + replaced(6, "12.5"), 1, "@/in: line 2: speed of a line craft must be a whole");
        row("generate: percent above 100", generate, kHeader + replaced(7, "120"), 1, "@/in: line 2: power1");
        row("generate: swatch path escapes", generate, kHeader + replaced(3, "../ply.png"), 1, "@/in: line 2: icon");
        row("generate: not a picture", generate, kHeader + replaced(3, "table.png"), 1, "@/in: line 2: cannot read the picture");
        row("generate: duplicate row", generate, kHeader + kRow + kRow, 1, "@/in: line 3: a second row");
        row("generate: too few fields", generate, kHeader + "Glass\t60\tPlywood\n", 1, "@/in: line 2: 3 fields, 14 expected");
    }

    // Help on stdout with 0; a wrong call says why with the usage, and 2; an
    // unusable input or target gives one line naming the file and the
    // reason, and 1, and nothing is written.
    void calls()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, input);
        QFETCH(int, exitCode);
        QFETCH(QString, message);
        TestEnvironment env;
        writeSwatches(env);
        const QString in = env.root() + QStringLiteral("/in");
        if (input != "<none>")
            QVERIFY(env.writeFile(in, input));
        QVERIFY(QDir().mkpath(env.root() + QStringLiteral("/folder")));
        QVERIFY(env.writeFile(env.root() + QStringLiteral("/out.json"), "previous"));

        const ProgramRun run = runTool(arguments.replaceInStrings(QStringLiteral("@"), env.root()));
        QCOMPARE(run.exitCode, exitCode);
        const QString text = exitCode ? run.err : run.out;
        QCOMPARE(exitCode ? run.out : run.err, QString());
        message.replace(QStringLiteral("@"), env.root());
        QVERIFY2(text.startsWith(exitCode ? "layermgr-lib: " + message : message), qPrintable(text));
        for (const char *word : {"Usage:", "check FILE", "rewrite IN OUT", "generate TABLE"})
            QCOMPARE(text.contains(QLatin1String(word)), exitCode != 1);
        if (exitCode == 1)
            QCOMPARE(text.count('\n'), 1);
        QCOMPARE(env.readFile(env.root() + QStringLiteral("/out.json")), QByteArray("previous"));
        QVERIFY(QDir(env.root() + QStringLiteral("/folder")).isEmpty());
        QVERIFY(!QFileInfo::exists(env.root() + QStringLiteral("/new")));
    }

    void check()
    {
        TestEnvironment env;
        CMaterialLibrary library = sampleLibrary();
        library.AddThickness(2, 60, "Birch", 6.0);
        library.AddMaterial(libMaterial("Oak", {1.0, 2.0, 4.0}));
        library.AddTube(3);
        const QString path = env.root() + QStringLiteral("/lib.json");
        QVERIFY(WriteMaterialLibraryFile(path, library));
        const ProgramRun run = runTool({"check", path});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.err, QString());
        // Tube types in the document's key order.
        QCOMPARE(run.out.split('\n', Qt::SkipEmptyParts), (QStringList{
            path + ": material library, Version 7, 2 materials, 5 parameter sets",
            "Fiber: no powers",
            "RFBurning 60 W (user): 2 materials, 5 thicknesses; Cutting 1, Tracing 1, Shallow Carving 1, "
            "Deep Carving 1, Vision Mark 1",
            "RFBurning 80 W: 0 materials, 0 thicknesses; Cutting 0, Tracing 0, Shallow Carving 0, "
            "Deep Carving 0, Vision Mark 0"}));
    }

    void generate()
    {
        TestEnvironment env;
        const QString swatches = writeSwatches(env);
        const QString table = env.root() + QStringLiteral("/materials.tsv");
        QVERIFY(env.writeFile(table, kTable));
        const QString out = env.root() + QStringLiteral("/Resources/Data/defaultMaterial.json");
        const ProgramRun run = runTool({"generate", table, swatches, out});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.err, QString());
        CMaterialLibrary library;
        QVERIFY(ReadMaterialLibraryFile(out, library).ok());

        QCOMPARE(library.Version(), QJsonValue(1));
        QCOMPARE(library.Powers(3), (std::vector<CLibPower>{{30, false}}));
        QCOMPARE(library.MaterialNames(0, 60), (QStringList{"Plywood", "Acrylic"}));
        QCOMPARE(library.Thicknesses(0, 60, "Plywood"), (std::vector<double>{3.0, 6.0}));
        const CLibMaterial *ply = library.FindMaterial(0, 60, "Plywood");
        QCOMPARE(ply->iconPath, QStringLiteral("/Res/Icon/ply.png"));
        QCOMPARE(ply->iconBase64, EncodePicture(swatches + QStringLiteral("/ply.png")));
        QVERIFY(QByteArray::fromBase64(library.FindMaterial(0, 60, "Acrylic")->iconBase64.toLatin1())
                    .startsWith("\xff\xd8"));

        // Columns the table does not have keep the record's defaults.
        CLibCutSet cut;
        cut.key = {0, 60, "Plywood", 3.0, 0};
        cut.blowing = true;
        cut.speed = 20.0;
        cut.laser1.power = 65.0;
        cut.laser1.turnPower = 55.0;
        cut.note = "mask it";
        QVERIFY(library.FindCutSet(cut.key) && *library.FindCutSet(cut.key) == cut);
        QVERIFY(library.FindMarkSet({3, 30, "Steel", 1.0, 4}));
        QCOMPARE(library.CutSetCount() + library.SweepSetCount() + library.MarkSetCount(), size_t(5));
        // What the reader takes back, byte for byte.
        QCOMPARE(jsonBytes(library), env.readFile(out));
    }

    // What the build made is what the table gives now, checks clean, and
    // comes back whole through an import and an export (the rewrite).
    void factoryLibraryOfTheBuild()
    {
        TestEnvironment env;
        QVERIFY2(QFileInfo::exists(kFactory), "the build generates the factory library");
        QCOMPARE(runTool({"check", kFactory}).exitCode, 0);
        const QString fresh = env.root() + QStringLiteral("/fresh.json");
        const ProgramRun run = runTool({"generate", kFactorySource + "/materials.tsv", kFactorySource + "/swatches", fresh});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(env.readFile(kFactory), env.readFile(fresh));
        const QString out = env.root() + QStringLiteral("/sub/out.json");
        QCOMPARE(runTool({"rewrite", kFactory, out}).exitCode, 0);
        QCOMPARE(env.readFile(out), env.readFile(kFactory));
    }
};

QTEST_GUILESS_MAIN(tst_LayerMgrLib)
#include "tst_layermgrlib.moc"
