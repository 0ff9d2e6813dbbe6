#include "librarytestdata.h"
#include "library/librarydocument.h"
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

const QByteArray kHeader =
    "tube\tpower\tmaterial\ticon\tthickness\tcraft\tspeed\tpower1\tpower1min\tfrequency\tair"
    "\tpasses\tdpi\tnote\n";

// A small factory table of our own, with both swatch kinds.
const QByteArray kTable = "# a comment line\n" + kHeader
    + "Glass\t60\tPlywood\tply.png\t3\tCutting\t20\t65\t55\t4000\t1\t2\t6\tmask it\n"
      "Glass\t60\tPlywood\tply.png\t3\tDeep Carving\t150.5\t47\t14\t4000\t1\t3\t5\t\n"
      "\n"
      "Glass\t60\tAcrylic\tacr.jpg\t5\tShallow Carving\t300\t22\t21\t5000\t0\t1\t8\tmirror\n"
      "Glass\t60\tPlywood\tply.png\t6\tTracing\t80\t24\t19\t4000\t1\t1\t6\n"
      "Fiber\t30\tSteel\tacr.jpg\t1\tVision Mark\t1000\t80\t80\t30000\t0\t1\t6\tblack mark\r\n";

void writeSwatches(const QString &dir)
{
    QDir().mkpath(dir);
    QImage ply(80, 40, QImage::Format_RGB32);
    ply.fill(qRgb(200, 160, 100));
    ply.save(dir + QStringLiteral("/ply.png"));
    QImage acr(64, 64, QImage::Format_RGB32);
    acr.fill(qRgb(180, 220, 240));
    acr.save(dir + QStringLiteral("/acr.jpg"), "JPG");
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
    void help()
    {
        TestEnvironment env;
        const Run run = runTool({QStringLiteral("--help")});
        QCOMPARE(run.exitCode, 0);
        for (const char *word : {"Usage:", "check FILE", "rewrite IN OUT", "generate TABLE"})
            QVERIFY2(run.out.contains(QLatin1String(word)), word);
        QCOMPARE(run.err, QString());
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");

        QTest::newRow("no command") << QStringList() << "no command";
        QTest::newRow("unknown command") << QStringList{"verify", "x"} << "unknown command \"verify\"";
        QTest::newRow("check without file") << QStringList{"check"} << "check takes 1 argument";
        QTest::newRow("check with two files") << QStringList{"check", "a", "b"}
                                              << "check takes 1 argument";
        QTest::newRow("rewrite with one file") << QStringList{"rewrite", "a"}
                                               << "rewrite takes 2 arguments";
        QTest::newRow("generate short") << QStringList{"generate", "t", "s"}
                                        << "generate takes 3 arguments";
    }

    void usageErrors()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        TestEnvironment env;
        const Run run = runTool(arguments);
        QCOMPARE(run.exitCode, 2);
        QVERIFY2(run.err.startsWith(QStringLiteral("layermgr-lib: ") + message + QLatin1Char('\n')),
                 qPrintable(run.err));
        QVERIFY(run.err.contains(QLatin1String("Usage:")));
        QCOMPARE(run.out, QString());
    }

    void check()
    {
        TestEnvironment env;
        CMaterialLibrary library = sampleLibrary();
        library.AddThickness(2, 60, QStringLiteral("Birch"), 6.0);
        library.AddMaterial(libMaterial(QStringLiteral("Oak"), {1.0, 2.0, 4.0}));
        library.AddTube(3);
        const QString path = env.root() + QStringLiteral("/lib.json");
        QVERIFY(WriteMaterialLibraryFile(path, library));

        const Run run = runTool({QStringLiteral("check"), path});
        QCOMPARE(run.exitCode, 0);
        const QStringList lines = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines, (QStringList{
                            path + QStringLiteral(": material library, Version 7, 2 materials, "
                                                  "5 parameter sets"),
                            // Tube types in the document's key order.
                            QStringLiteral("Fiber: no powers"),
                            QStringLiteral("RFBurning 60 W (user): 2 materials, 5 thicknesses; "
                                           "Cutting 1, Tracing 1, Shallow Carving 1, Deep Carving 1, "
                                           "Vision Mark 1"),
                            QStringLiteral("RFBurning 80 W: 0 materials, 0 thicknesses; Cutting 0, "
                                           "Tracing 0, Shallow Carving 0, Deep Carving 0, "
                                           "Vision Mark 0"),
                        }));
        QCOMPARE(run.err, QString());
    }

    void checkRefuses_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("reason");

        QTest::newRow("missing file") << QByteArray("<none>") << "cannot open";
        QTest::newRow("a folder") << QByteArray("<folder>") << "cannot open (is a directory)";
        QTest::newRow("not JSON") << QByteArray("Type: Glass") << "not JSON (";
        QTest::newRow("truncated") << jsonBytes(sampleLibrary()).left(200) << "not JSON (";
        QTest::newRow("no Type") << QByteArray(R"({"Version": 1})") << "no \"Type\"";
        QTest::newRow("not an object") << QByteArray("[{}]") << "not a JSON object";
        QTest::newRow("no material") << QByteArray(R"({"Type": {"Glass": [{"Power": 80}]}})")
                                     << "no material";
    }

    void checkRefuses()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, reason);
        TestEnvironment env;
        const QString path = env.root() + QStringLiteral("/in.json");
        if (bytes == "<folder>")
            QVERIFY(QDir().mkpath(path));
        else if (bytes != "<none>")
            QVERIFY(env.writeFile(path, bytes));

        const Run run = runTool({QStringLiteral("check"), path});
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.out, QString());
        // One line, naming the file and the reason.
        QVERIFY2(run.err.startsWith(QStringLiteral("layermgr-lib: ") + path + QStringLiteral(": ")
                                    + reason),
                 qPrintable(run.err));
        QCOMPARE(run.err.count(QLatin1Char('\n')), 1);
    }

    void rewrite()
    {
        TestEnvironment env;
        const QString in = env.root() + QStringLiteral("/in.json");
        const QString out = env.root() + QStringLiteral("/sub/out.json");
        QVERIFY(WriteMaterialLibraryFile(in, sampleLibrary()));
        const Run run = runTool({QStringLiteral("rewrite"), in, out});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.err, QString());
        // Import then export: what the reader takes, written back.
        QCOMPARE(env.readFile(out), jsonBytes(readLibrary(in)));
        QVERIFY(env.readFile(out) != env.readFile(in));
        QVERIFY(readLibrary(out) == readLibrary(in));
    }

    void rewriteRefuses_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("message");

        const QByteArray library = jsonBytes(sampleLibrary());
        QTest::newRow("input not a library") << QByteArray("{}") << "out.json" << "in.json: no \"Type\"";
        QTest::newRow("input without material")
            << QByteArray(R"({"Type": {}})") << "out.json" << "in.json: no material";
        QTest::newRow("target is a folder") << library << "folder" << "folder: cannot write";
        QTest::newRow("target below a file") << library << "in.json/out.json"
                                             << "in.json/out.json: cannot write";
    }

    void rewriteRefuses()
    {
        QFETCH(QByteArray, input);
        QFETCH(QString, target);
        QFETCH(QString, message);
        TestEnvironment env;
        const QString in = env.root() + QStringLiteral("/in.json");
        QVERIFY(env.writeFile(in, input));
        QVERIFY(QDir().mkpath(env.root() + QStringLiteral("/folder")));
        const QString old = env.root() + QStringLiteral("/out.json");
        if (target == QLatin1String("out.json"))
            QVERIFY(env.writeFile(old, "previous"));

        const Run run = runTool({QStringLiteral("rewrite"), in, env.root() + QLatin1Char('/') + target});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.err.contains(message), qPrintable(run.err));
        // Nothing written: an old target stays, no stray files appear.
        if (target == QLatin1String("out.json"))
            QCOMPARE(env.readFile(old), QByteArray("previous"));
        QCOMPARE(env.readFile(in), input);
        QVERIFY(QDir(env.root() + QStringLiteral("/folder")).isEmpty());
    }

    void generate()
    {
        TestEnvironment env;
        const QString swatches = env.root() + QStringLiteral("/swatches");
        writeSwatches(swatches);
        const QString table = env.root() + QStringLiteral("/materials.tsv");
        QVERIFY(env.writeFile(table, kTable));
        const QString out = env.root() + QStringLiteral("/Resources/Data/defaultMaterial.json");

        const Run run = runTool({QStringLiteral("generate"), table, swatches, out});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.err, QString());
        const QByteArray first = env.readFile(out);
        const CMaterialLibrary library = readLibrary(out);

        QCOMPARE(library.Version(), QJsonValue(1));
        QCOMPARE(library.Powers(0), (std::vector<CLibPower>{{60, false}}));
        QCOMPARE(library.Powers(3), (std::vector<CLibPower>{{30, false}}));
        QCOMPARE(library.MaterialNames(0, 60), (QStringList{"Plywood", "Acrylic"}));
        QCOMPARE(library.Thicknesses(0, 60, QStringLiteral("Plywood")),
                 (std::vector<double>{3.0, 6.0}));
        const CLibMaterial *ply = library.FindMaterial(0, 60, QStringLiteral("Plywood"));
        QCOMPARE(ply->iconPath, QStringLiteral("/Res/Icon/ply.png"));
        QCOMPARE(ply->iconBase64, EncodePicture(swatches + QStringLiteral("/ply.png")));
        QVERIFY(QByteArray::fromBase64(ply->iconBase64.toLatin1()).startsWith("\x89PNG"));
        QVERIFY(QByteArray::fromBase64(library.FindMaterial(0, 60, QStringLiteral("Acrylic"))
                                           ->iconBase64.toLatin1())
                    .startsWith("\xff\xd8"));

        // Columns the table does not have keep the record's defaults.
        CLibCutSet cut;
        cut.key = {0, 60, QStringLiteral("Plywood"), 3.0, 0};
        cut.speed = 20.0;
        cut.laser1.power = 65.0;
        cut.laser1.turnPower = 55.0;
        cut.blowing = true;
        cut.note = QStringLiteral("mask it");
        QVERIFY(library.FindCutSet(cut.key));
        QCOMPARE(*library.FindCutSet(cut.key), cut);
        const CLibCutSet *tracing = library.FindCutSet({0, 60, QStringLiteral("Plywood"), 6.0, 1});
        QVERIFY(tracing);
        QCOMPARE(tracing->note, QString());

        CLibSweepSet deep;
        deep.key = {0, 60, QStringLiteral("Plywood"), 3.0, 3};
        deep.blowing = true;
        deep.speed = 150.5;
        deep.laser1.power = 47.0;
        deep.minPower = 14.0;
        deep.maxPower = 47.0;
        deep.carvingNumber = 3;
        deep.dpi = 5;
        QVERIFY(library.FindSweepSet(deep.key));
        QCOMPARE(*library.FindSweepSet(deep.key), deep);
        const CLibSweepSet *shallow = library.FindSweepSet({0, 60, QStringLiteral("Acrylic"), 5.0, 2});
        QVERIFY(shallow);
        QCOMPARE(shallow->blowing, false);
        QCOMPARE(shallow->laser1.frequency, 5000);
        QCOMPARE(shallow->dpi, 8);
        QCOMPARE(shallow->carvingNumber, 0);
        QCOMPARE(shallow->note, QStringLiteral("mirror"));
        QVERIFY(library.FindMarkSet({3, 30, QStringLiteral("Steel"), 1.0, 4}));
        QCOMPARE(library.CutSetCount() + library.SweepSetCount() + library.MarkSetCount(), size_t(5));

        // The same table gives the same bytes.
        QCOMPARE(runTool({QStringLiteral("generate"), table, swatches, out}).exitCode, 0);
        QCOMPARE(env.readFile(out), first);
        QCOMPARE(runTool({QStringLiteral("check"), out}).exitCode, 0);
    }

    void generateRefuses_data()
    {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<QString>("message");

        const QByteArray row = "Glass\t60\tPlywood\tply.png\t3\tCutting\t20\t65\t55\t4000\t1\t1\t6\t\n";
        auto replaced = [&row](int column, const QByteArray &value) -> QByteArray {
            QList<QByteArray> fields = row.trimmed().split('\t');
            while (fields.size() < 14)
                fields.append(QByteArray());
            fields[column] = value;
            return fields.join('\t') + '\n';
        };
        QTest::newRow("empty table") << QByteArray("# only comments\n") << "no header line";
        QTest::newRow("header only") << kHeader << "no material";
        QTest::newRow("wrong header")
            << QByteArray("tube\tpower\tmaterial\n") + row << "line 1: the header must be:";
        QTest::newRow("unknown tube") << kHeader + replaced(0, "CO2") << "line 2: tube \"CO2\"";
        QTest::newRow("RF without burning is a tube too")
            << kHeader + replaced(0, "RFNoBurning") + replaced(5, "Scoring") << "line 3: craft";
        QTest::newRow("fractional line speed") << kHeader + replaced(6, "12.5")
                                               << "line 2: speed of a line craft must be a whole";
        QTest::newRow("power not a number") << kHeader + replaced(1, "sixty") << "line 2: power";
        QTest::newRow("percent above 100") << kHeader + replaced(7, "120") << "line 2: power1";
        QTest::newRow("zero thickness") << kHeader + replaced(4, "0") << "line 2: thickness";
        QTest::newRow("air not 0 or 1") << kHeader + replaced(10, "yes") << "line 2: air";
        QTest::newRow("missing swatch") << kHeader + replaced(3, "none.png")
                                        << "line 2: cannot read the picture";
        QTest::newRow("swatch path escapes") << kHeader + replaced(3, "../ply.png") << "line 2: icon";
        QTest::newRow("not a picture") << kHeader + replaced(3, "table.png")
                                       << "line 2: cannot read the picture";
        QTest::newRow("duplicate row") << kHeader + row + row << "line 3: a second row";
        QTest::newRow("two icons for one material")
            << kHeader + row + QByteArray(replaced(3, "acr.jpg")).replace("\t3\t", "\t4\t")
            << "line 3: material \"Plywood\" has another icon";
        QTest::newRow("too few fields") << kHeader + "Glass\t60\tPlywood\n"
                                        << "line 2: 3 fields, 14 expected";
        QTest::newRow("too many fields") << kHeader + row.trimmed() + "\tx\ty\n"
                                         << "line 2: 15 fields";
        QTest::newRow("empty material") << kHeader + replaced(2, "") << "line 2: material is empty";
    }

    void generateRefuses()
    {
        QFETCH(QByteArray, table);
        QFETCH(QString, message);
        TestEnvironment env;
        const QString swatches = env.root() + QStringLiteral("/swatches");
        writeSwatches(swatches);
        QVERIFY(env.writeFile(swatches + QStringLiteral("/table.png"), "not a picture"));
        const QString tablePath = env.root() + QStringLiteral("/materials.tsv");
        QVERIFY(env.writeFile(tablePath, table));
        const QString out = env.root() + QStringLiteral("/out/defaultMaterial.json");

        const Run run = runTool({QStringLiteral("generate"), tablePath, swatches, out});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.err.startsWith(QStringLiteral("layermgr-lib: ") + tablePath
                                    + QStringLiteral(": ") + message),
                 qPrintable(run.err));
        QVERIFY(!QFileInfo::exists(out));
    }

    void factoryLibraryOfTheBuild()
    {
        TestEnvironment env;
        const QString source = QStringLiteral(LAYERMGR_SOURCE_DIR "/resources-src/factory");
        const QString built = QStringLiteral(LAYERMGR_BUILD_BIN "/../Resources/Data/defaultMaterial.json");
        if (!QFileInfo::exists(source + QStringLiteral("/materials.tsv")))
            QSKIP("no factory table in this tree");
        QVERIFY2(QFileInfo::exists(built), "the build generates the factory library");
        const Run check = runTool({QStringLiteral("check"), built});
        QCOMPARE(check.exitCode, 0);

        // What the build made is what the table gives now.
        const QString fresh = env.root() + QStringLiteral("/fresh.json");
        const Run run = runTool({QStringLiteral("generate"), source + QStringLiteral("/materials.tsv"),
                                 source + QStringLiteral("/swatches"), fresh});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(env.readFile(built), env.readFile(fresh));
    }
};

QTEST_GUILESS_MAIN(tst_LayerMgrLib)
#include "tst_layermgrlib.moc"
