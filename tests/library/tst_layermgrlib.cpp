#include "librarytestdata.h"
#include "library/pictureencoding.h"
#include "testenvironment.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTest>

namespace {

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

Run runTool(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(LAYERMGR_BUILD_BIN "/layermgr-lib"), arguments);
    Run run;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return run;
    run.exitCode = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

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

CMaterialLibrary readLibrary(const QString &path)
{
    CMaterialLibrary library;
    ReadMaterialLibraryFile(path, library);
    return library;
}

} // namespace

class tst_LayerMgrLib : public QObject
{
    Q_OBJECT

private slots:
    void usage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        QTest::newRow("help") << QStringList{"--help"} << QString();
        QTest::newRow("no command") << QStringList() << "no command";
        QTest::newRow("unknown command") << QStringList{"verify", "x"} << "unknown command \"verify\"";
        QTest::newRow("check without file") << QStringList{"check"} << "check takes 1 argument";
        QTest::newRow("check with two files") << QStringList{"check", "a", "b"} << "check takes 1 argument";
        QTest::newRow("rewrite with one file") << QStringList{"rewrite", "a"} << "rewrite takes 2 arguments";
        QTest::newRow("generate short") << QStringList{"generate", "t", "s"} << "generate takes 3 arguments";
    }

    // Help on stdout with 0; a wrong call says why, with the usage, and 2.
    void usage()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        TestEnvironment env;
        const Run run = runTool(arguments);
        QCOMPARE(run.exitCode, message.isEmpty() ? 0 : 2);
        const QString text = message.isEmpty() ? run.out : run.err;
        QCOMPARE(message.isEmpty() ? run.err : run.out, QString());
        QVERIFY2(text.startsWith(message.isEmpty() ? QString() : "layermgr-lib: " + message + '\n'), qPrintable(text));
        for (const char *word : {"Usage:", "check FILE", "rewrite IN OUT", "generate TABLE"})
            QVERIFY2(text.contains(QLatin1String(word)), word);
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
        const Run run = runTool({"check", path});
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

    void refuses_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("message");
        const QByteArray library = jsonBytes(sampleLibrary());
        QTest::newRow("check: missing file") << "check" << QByteArray("<none>") << "" << "in.json: cannot open";
        QTest::newRow("check: a folder") << "check" << QByteArray("<folder>") << "" << "in.json: cannot open (is a directory)";
        QTest::newRow("check: not JSON") << "check" << QByteArray("Type: Glass") << "" << "in.json: not JSON (";
        QTest::newRow("check: truncated") << "check" << library.left(200) << "" << "in.json: not JSON (";
        QTest::newRow("check: no Type") << "check" << QByteArray(R"({"Version": 1})") << "" << "in.json: no \"Type\"";
        QTest::newRow("check: not an object") << "check" << QByteArray("[{}]") << "" << "in.json: not a JSON object";
        QTest::newRow("check: no material") << "check" << QByteArray(R"({"Type": {"Glass": [{"Power": 80}]}})") << ""
                                            << "in.json: no material";
        QTest::newRow("rewrite: not a library") << "rewrite" << QByteArray("{}") << "out.json" << "in.json: no \"Type\"";
        QTest::newRow("rewrite: no material") << "rewrite" << QByteArray(R"({"Type": {}})") << "out.json"
                                              << "in.json: no material";
        QTest::newRow("rewrite: target is a folder") << "rewrite" << library << "folder" << "folder: cannot write";
        QTest::newRow("rewrite: target below a file") << "rewrite" << library << "in.json/out.json"
                                                      << "in.json/out.json: cannot write";
    }

    // One line naming the file and the reason, exit 1, nothing written.
    void refuses()
    {
        QFETCH(QString, command);
        QFETCH(QByteArray, input);
        QFETCH(QString, target);
        QFETCH(QString, message);
        TestEnvironment env;
        const QString in = env.root() + QStringLiteral("/in.json");
        if (input == "<folder>")
            QVERIFY(QDir().mkpath(in));
        else if (input != "<none>")
            QVERIFY(env.writeFile(in, input));
        QVERIFY(QDir().mkpath(env.root() + QStringLiteral("/folder")));
        const QString old = env.root() + QStringLiteral("/out.json");
        QVERIFY(env.writeFile(old, "previous"));

        QStringList arguments{command, in};
        if (!target.isEmpty())
            arguments << env.root() + '/' + target;
        const Run run = runTool(arguments);
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.out, QString());
        QVERIFY2(run.err.startsWith("layermgr-lib: " + env.root() + '/' + message), qPrintable(run.err));
        QCOMPARE(run.err.count('\n'), 1);
        QCOMPARE(env.readFile(old), QByteArray("previous"));
        QVERIFY(QDir(env.root() + QStringLiteral("/folder")).isEmpty());
    }

    void rewrite_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<bool>("same");
        QTest::newRow("a written library loses what the reader drops") << QString() << false;
        QTest::newRow("the factory library of the build comes back whole") << kFactory << true;
    }

    // Import then export: what the reader takes, written back.
    void rewrite()
    {
        QFETCH(QString, input);
        QFETCH(bool, same);
        TestEnvironment env;
        const QString in = input.isEmpty() ? env.root() + QStringLiteral("/in.json") : input;
        if (input.isEmpty())
            QVERIFY(WriteMaterialLibraryFile(in, sampleLibrary()));
        const QString out = env.root() + QStringLiteral("/sub/out.json");
        const Run run = runTool({"rewrite", in, out});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.err, QString());
        QCOMPARE(env.readFile(out), jsonBytes(readLibrary(in)));
        QCOMPARE(env.readFile(out) == env.readFile(in), same);
    }

    void generate()
    {
        TestEnvironment env;
        const QString swatches = writeSwatches(env);
        const QString table = env.root() + QStringLiteral("/materials.tsv");
        QVERIFY(env.writeFile(table, kTable));
        const QString out = env.root() + QStringLiteral("/Resources/Data/defaultMaterial.json");
        const Run run = runTool({"generate", table, swatches, out});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.err, QString());
        const CMaterialLibrary library = readLibrary(out);

        QCOMPARE(library.Version(), QJsonValue(1));
        QCOMPARE(library.Powers(0), (std::vector<CLibPower>{{60, false}}));
        QCOMPARE(library.Powers(3), (std::vector<CLibPower>{{30, false}}));
        QCOMPARE(library.MaterialNames(0, 60), (QStringList{"Plywood", "Acrylic"}));
        QCOMPARE(library.Thicknesses(0, 60, "Plywood"), (std::vector<double>{3.0, 6.0}));
        const CLibMaterial *ply = library.FindMaterial(0, 60, "Plywood");
        QCOMPARE(ply->iconPath, QStringLiteral("/Res/Icon/ply.png"));
        QCOMPARE(ply->iconBase64, EncodePicture(swatches + QStringLiteral("/ply.png")));
        QVERIFY(QByteArray::fromBase64(ply->iconBase64.toLatin1()).startsWith("\x89PNG"));
        QVERIFY(QByteArray::fromBase64(library.FindMaterial(0, 60, "Acrylic")->iconBase64.toLatin1())
                    .startsWith("\xff\xd8"));

        // Columns the table does not have keep the record's defaults.
        CLibCutSet cut;
        cut.key = {0, 60, "Plywood", 3.0, 0};
        cut.speed = 20.0;
        cut.laser1.power = 65.0;
        cut.laser1.turnPower = 55.0;
        cut.blowing = true;
        cut.note = "mask it";
        QVERIFY(library.FindCutSet(cut.key) && *library.FindCutSet(cut.key) == cut);
        QCOMPARE(library.FindCutSet({0, 60, "Plywood", 6.0, 1})->note, QString());
        CLibSweepSet deep;
        deep.key = {0, 60, "Plywood", 3.0, 3};
        deep.blowing = true;
        deep.speed = 150.5;
        deep.laser1.power = deep.maxPower = 47.0;
        deep.minPower = 14.0;
        deep.carvingNumber = 3;
        deep.dpi = 5;
        QVERIFY(library.FindSweepSet(deep.key) && *library.FindSweepSet(deep.key) == deep);
        const CLibSweepSet *shallow = library.FindSweepSet({0, 60, "Acrylic", 5.0, 2});
        QVERIFY(shallow);
        QCOMPARE(shallow->blowing, false);
        QCOMPARE(shallow->laser1.frequency, 5000);
        QCOMPARE(shallow->dpi, 8);
        QCOMPARE(shallow->carvingNumber, 0);
        QCOMPARE(shallow->note, QStringLiteral("mirror"));
        QVERIFY(library.FindMarkSet({3, 30, "Steel", 1.0, 4}));
        QCOMPARE(library.CutSetCount() + library.SweepSetCount() + library.MarkSetCount(), size_t(5));

        // The same table gives the same bytes, and what the reader takes back.
        const QByteArray first = env.readFile(out);
        QCOMPARE(runTool({"generate", table, swatches, out}).exitCode, 0);
        QCOMPARE(env.readFile(out), first);
        QCOMPARE(jsonBytes(library), first);
    }

    void generateRefuses_data()
    {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<QString>("message");
        QTest::newRow("empty table") << QByteArray("# only comments\n") << "no header line";
        QTest::newRow("header only") << kHeader << "no material";
        QTest::newRow("wrong header") << "tube\tpower\tmaterial\n" + kRow << "line 1: the header must be:";
        QTest::newRow("unknown tube") << kHeader + replaced(0, "CO2") << "line 2: tube \"CO2\"";
        QTest::newRow("unknown craft") << kHeader + replaced(0, "RFNoBurning") + replaced(5, "Scoring") << "line 3: craft";
        QTest::newRow("fractional line speed") << kHeader + replaced(6, "12.5") << "line 2: speed of a line craft must be a whole";
        QTest::newRow("power not a number") << kHeader + replaced(1, "sixty") << "line 2: power";
        QTest::newRow("percent above 100") << kHeader + replaced(7, "120") << "line 2: power1";
        QTest::newRow("zero thickness") << kHeader + replaced(4, "0") << "line 2: thickness";
        QTest::newRow("air not 0 or 1") << kHeader + replaced(10, "yes") << "line 2: air";
        QTest::newRow("missing swatch") << kHeader + replaced(3, "none.png") << "line 2: cannot read the picture";
        QTest::newRow("swatch path escapes") << kHeader + replaced(3, "../ply.png") << "line 2: icon";
        QTest::newRow("not a picture") << kHeader + replaced(3, "table.png") << "line 2: cannot read the picture";
        QTest::newRow("duplicate row") << kHeader + kRow + kRow << "line 3: a second row";
        QTest::newRow("two icons for one material") << kHeader + kRow + replaced(3, "acr.jpg").replace("\t3\t", "\t4\t")
                                                    << "line 3: material \"Plywood\" has another icon";
        QTest::newRow("too few fields") << kHeader + "Glass\t60\tPlywood\n" << "line 2: 3 fields, 14 expected";
        QTest::newRow("too many fields") << kHeader + kRow.trimmed() + "\tx\ty\n" << "line 2: 16 fields";
        QTest::newRow("empty material") << kHeader + replaced(2, "") << "line 2: material is empty";
    }

    void generateRefuses()
    {
        QFETCH(QByteArray, table);
        QFETCH(QString, message);
        TestEnvironment env;
        const QString swatches = writeSwatches(env);
        const QString path = env.root() + QStringLiteral("/materials.tsv");
        QVERIFY(env.writeFile(path, table));
        const QString out = env.root() + QStringLiteral("/out/defaultMaterial.json");
        const Run run = runTool({"generate", path, swatches, out});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.err.startsWith("layermgr-lib: " + path + ": " + message), qPrintable(run.err));
        QVERIFY(!QFileInfo::exists(out));
    }

    // What the build made is what the table gives now, and checks clean.
    void factoryLibraryOfTheBuild()
    {
        TestEnvironment env;
        QVERIFY2(QFileInfo::exists(kFactory), "the build generates the factory library");
        QCOMPARE(runTool({"check", kFactory}).exitCode, 0);
        const QString fresh = env.root() + QStringLiteral("/fresh.json");
        const Run run = runTool({"generate", kFactorySource + "/materials.tsv", kFactorySource + "/swatches", fresh});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(env.readFile(kFactory), env.readFile(fresh));
    }
};

QTEST_GUILESS_MAIN(tst_LayerMgrLib)
#include "tst_layermgrlib.moc"
