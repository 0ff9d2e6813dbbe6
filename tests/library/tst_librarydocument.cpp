#include "librarytestdata.h"
#include "library/crunningoptions.h"
#include "testenvironment.h"

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <limits>

namespace {

// A value of the document written back from what was read: a path of keys
// and array indexes separated by "/". Undefined when it is not written.
QJsonValue writtenValue(const QByteArray &document, const QString &path)
{
    QJsonValue value = MaterialLibraryToJson(readBytes(document));
    for (const QString &key : path.split('/')) {
        bool index = false;
        const int i = key.toInt(&index);
        value = index ? value[i] : value[key];
    }
    return value;
}

QByteArray dataFile(const QString &name)
{
    QFile file(QStringLiteral(LAYERMGR_SOURCE_DIR "/tests/library/data/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing ") + name.toUtf8();
}

} // namespace

class tst_LibraryDocument : public QObject
{
    Q_OBJECT

private slots:
    // What the reader takes back: line speeds with a fraction, sweep modes
    // written as numbers, the keys read for "Cutting" only and mark notes are
    // lost; missing keys take their defaults. Fuzz findings (no expected
    // file) read or fail cleanly. Each settles by the second round.
    void readBack_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("expected");
        QTest::newRow("written library") << "written/sample.json" << "written/sample-read.json";
        QTest::newRow("empty blocks") << "written/empty-blocks.json" << "written/empty-blocks-read.json";
        const QDir dir(QStringLiteral(LAYERMGR_SOURCE_DIR "/tests/library/data"));
        for (const QString &file : dir.entryList(QDir::Files, QDir::Name))
            QTest::newRow(qPrintable(file)) << file << QString();
    }

    void readBack()
    {
        QFETCH(QString, input);
        QFETCH(QString, expected);
        TestEnvironment env;
        LibraryReadResult result;
        const CMaterialLibrary library = readBytes(dataFile(input), &result);
        QVERIFY(result.ok() || library.IsEmpty());
        const QByteArray once = jsonBytes(library), twice = jsonBytes(readBytes(once));
        if (!expected.isEmpty())
            QCOMPARE(once + twice, dataFile(expected) + once);
        QCOMPARE(jsonBytes(readBytes(twice)), twice);
    }

    void readField_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QJsonValue>("expected");
        const char *C = "Cutting", *T = "Tracing", *S = "Shallow Carving", *D = "Deep Carving",
                   *V = "Vision Mark";
        // A block of one craft under "M", 3 mm, RFBurning at power 60.
        auto row = [](const char *name, const char *craft, const char *block, const char *key,
                      const QJsonValue &expected) {
            const QByteArray prefix = "{\"Type\": {\"RFBurning\": [{\"Power\": 60, \"Material\": {\"M\": {\"Thickness\": {\"3.00\": {\"";
            QTest::newRow(name) << prefix + craft + "\": " + block + "}}}}}]}}"
                                << "Type/RFBurning/0/Material/M/Thickness/3.00/" + QString::fromLatin1(craft) + '/' + key
                                << expected;
        };
        auto doc = [](const char *name, const char *document, const char *path, const QJsonValue &expected) {
            QTest::newRow(name) << QByteArray(document) << QString::fromLatin1(path) << expected;
        };
        const QJsonValue none(QJsonValue::Undefined);

        row("cut speed with fraction reads 0", C, R"({"Speed": 12.5})", "Speed", 0.0);
        row("cut speed beyond int reads 0", C, R"({"Speed": 3e12})", "Speed", 0.0);
        row("seal length with fraction reads 0", T, R"({"Seal length": 0.5})", "Seal length", 0.0);
        row("sweep speed keeps fraction", S, R"({"Speed": 12.5})", "Speed", 12.5);
        row("mode number reads 0", S, R"({"Mode": 1})", "Mode", 0);
        row("mode one way by name", D, R"({"Mode": "One way laser"})", "Mode", 1);
        row("mode other text", S, R"({"Mode": "one way laser"})", "Mode", 0);
        row("bridges read for cutting", C, R"({"Bridges": true})", "Bridges", true);
        row("bridges ignored for tracing", T, R"({"Bridges": true})", "Bridges", false);
        row("compensation ignored for tracing", T, R"({"Laser Compensate": {"Compensate Size": 0.4}})", "Laser Compensate/Compensate Size", 0.25);
        row("compensation outward default", C, R"({"Laser Compensate": {}})", "Laser Compensate/Compensate Outward", true);
        row("frequency truncated", C, R"({"Frequency1": 4000.9})", "Frequency1", 4000);
        row("pulse width toward zero", C, R"({"Pulse Width1": -3.7})", "Pulse Width1", -3);
        row("huge frequency saturates", C, R"({"Frequency2": 1e300})", "Frequency2", std::numeric_limits<qint32>::max());
        row("pen key with three blanks", D, R"({"Pen Action": {"PenUp   Height": 7}})", "Pen Action/PenUp   Height", 7.0);
        row("pen key with one blank is not it", C, R"({"Pen Action": {"PenUp Height": 7}})", "Pen Action/PenUp   Height", 3.0);
        row("key given twice: the last counts", C, R"({"Speed": 1, "Note": "a", "Speed": 2})", "Speed", 2.0);

        row("garbage: blowing as number", C, R"({"Blowing": 1})", "Blowing", false);
        row("garbage: frequency as text", C, R"({"Frequency1": "9000"})", "Frequency1", 4000);
        row("garbage: pen as array", C, R"({"Pen Action": [1, 2]})", "Pen Action/PenUp   Height", 3.0);
        row("garbage: dpi as fraction", S, R"({"DPI output": 2.5})", "DPI output", 0);
        row("garbage: block as array", C, "[]", "Speed", none);

        row("mark: object with empty note", V, R"({"Note": ""})", "Note", QString());
        row("mark: empty object", V, "{}", "Note", none);
        row("mark: null", V, "null", "Note", none);
        row("mark: empty text", V, R"("")", "Note", none);
        row("mark: number", V, "0", "Note", QString());

        doc("version missing reads 0", R"({"Type": {}})", "Version", 0);
        doc("version text kept", R"({"Version": "2024a", "Type": {}})", "Version", "2024a");
        for (const char *tube : {"Glass", "RFNoBurning", "RFBurning", "Fiber", "Semiconductor"}) {
            QTest::addRow("tube %s", tube) << "{\"Type\": {\"" + QByteArray(tube) + "\": [{\"Power\": 45}]}}"
                                           << QStringLiteral("Type/%1/0/Power").arg(tube) << QJsonValue(45);
        }
        doc("unknown tube reads as Glass", R"({"Type": {"CO2": [{"Power": 45}]}})", "Type/Glass/0/Power", 45);
        doc("tube names: case matters", R"({"Type": {"fiber": [{"Power": 45}]}})", "Type/Glass/0/Power", 45);
        const char *m = R"({"Type": {"Glass": [{"Material": {"M": {"Thickness": {"%1": {"Vision Mark": 1}}}}}]}})";
        const char *key = "Type/Glass/0/Material/M/Thickness/%1/Vision Mark/Note";
        for (auto [thickness, written] : {std::pair{"3", "3.00"}, {"0.8", "0.80"}, {"12.3456", "12.35"}})
            QTest::addRow("thickness key %s", thickness) << QString::fromLatin1(m).arg(thickness).toUtf8()
                                                         << QString::fromLatin1(key).arg(written) << QJsonValue(QString());
    }

    void readField()
    {
        QFETCH(QByteArray, document);
        QFETCH(QString, path);
        QFETCH(QJsonValue, expected);
        TestEnvironment env;
        QCOMPARE(writtenValue(document, path), expected);
    }

    void materialOrder_data()
    {
        QTest::addColumn<QByteArray>("materials");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("gaps in the ids") << QByteArray(R"({"A": {"id": 30}, "B": {"id": 7}})") << QStringList{"B", "A"};
        QTest::newRow("equal ids keep key order") << QByteArray(R"({"B": {"id": 1}, "A": {"id": 1}, "C": {"id": 0.5}})") << QStringList{"A", "B", "C"};
        QTest::newRow("garbage ids follow in key order")
            << QByteArray(R"({"A": {"id": "1"}, "B": {"id": 1.5}, "C": {"id": -1}, "D": {}, "E": {"id": 3}, "G": {"id": 1e20}})")
            << QStringList{"E", "A", "B", "C", "D", "G"};
        QTest::newRow("a material that is not an object is skipped") << QByteArray(R"({"A": 5, "B": {"id": 1}, "C": []})") << QStringList{"B"};
        QTest::newRow("a material given twice: the last counts") << QByteArray(R"({"M": {"id": 1}, "N": {"id": 2}, "M": {"id": 3}})") << QStringList{"N", "M"};
    }

    // Written back, the ids number the materials in that order from 1.
    void materialOrder()
    {
        QFETCH(QByteArray, materials);
        QFETCH(QStringList, order);
        TestEnvironment env;
        const CMaterialLibrary library = readBytes(R"({"Type": {"RFBurning": [{"Power": 60, "Material": )" + materials + "}]}}");
        QCOMPARE(library.MaterialNames(2, 60), order);
        const QJsonObject written = writtenValue(jsonBytes(library), "Type/RFBurning/0/Material").toObject();
        QStringList byId = order;
        for (const QString &name : order)
            byId[written.value(name)[QStringLiteral("id")].toInt() - 1] = name;
        QCOMPARE(byId, order);
    }

    void duplicatesAndDefaults()
    {
        TestEnvironment env;
        const CMaterialLibrary defaults = readBytes(
            R"({"Type": {"Fiber": [{}, {"Power": 30, "Custom": true, "Material": {"M": {}}}]}})");
        QCOMPARE(defaults.Powers(3), (std::vector<CLibPower>{{80, false}, {30, true}}));
        const CLibMaterial *m = defaults.FindMaterial(3, 30, QStringLiteral("M"));
        QVERIFY(m && m->iconPath.isEmpty() && m->iconBase64.isEmpty() && m->thicknesses.empty());

        // "CO2" reads as Glass like "Glass" does: both name power 80, and "M" twice.
        const CMaterialLibrary library = readBytes(R"({"Type": {
            "CO2": [{"Power": 80, "Material": {"M": {"IconPath": "co2",
                     "Thickness": {"3.00": {"Cutting": {"Speed": 1}}}}, "X": {}}}],
            "Glass": [{"Power": 80, "Custom": true, "Material": {"M": {"IconPath": "glass",
                       "Thickness": {"3.00": {"Cutting": {"Speed": 2}}, "4": {}}}, "Y": {}}},
                      {"Power": 100}]}})");
        QCOMPARE(library.Tubes().size(), size_t(1));
        QCOMPARE(library.Powers(0), (std::vector<CLibPower>{{80, false}, {100, false}}));
        QCOMPARE(library.MaterialNames(0, 80), (QStringList{"M", "X", "Y"}));
        QCOMPARE(library.FindMaterial(0, 80, QStringLiteral("M"))->iconPath, QStringLiteral("co2"));
        QCOMPARE(library.FindCutSet(libKey(QStringLiteral("M"), 3.0, 0, 0, 80))->speed, 1.0);

        // Thickness keys that name one thickness share one entry and one set.
        const CMaterialLibrary near = readBytes(R"({"Type": {"Glass": [{"Material": {"M": {
            "Thickness": {"3.00": {"Cutting": {"Speed": 1}}, "3.0000004": {"Cutting": {"Speed": 2}},
                          "3": {}, "abc": {"Cutting": {}}, "inf": {}, "nan": {}, "-1": {}}}}}]}})");
        QCOMPARE(near.Thicknesses(0, 80, QStringLiteral("M")), (std::vector<double>{-1.0, 3.0}));
        QCOMPARE(near.CutSetCount(), size_t(1));
        QCOMPARE(near.FindCutSet(libKey(QStringLiteral("M"), 3.0000009, 0, 0, 80))->speed, 1.0);
    }

    void garbage_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("materials");
        const int ok = int(ELibraryRead::Ok), notJson = int(ELibraryRead::NotJson);
        const int noType = int(ELibraryRead::NoType);
        QTest::newRow("empty") << QByteArray() << notJson << 0;
        QTest::newRow("truncated") << QByteArray(R"({"Type": {"Glass": [{"Power": 8)") << notJson << 0;
        QTest::newRow("trailing garbage") << QByteArray(R"({"Type": {}} x)") << notJson << 0;
        QTest::newRow("array") << QByteArray("[1, 2]") << int(ELibraryRead::NotObject) << 0;
        QTest::newRow("Type as array") << QByteArray(R"({"Type": [{"Glass": []}]})") << noType << 0;
        QTest::newRow("type lower case") << QByteArray(R"({"type": {}})") << noType << 0;
        QTest::newRow("deep nesting in a material")
            << R"({"Type": {"Glass": [{"Material": {"M": )" + QByteArray(5000, '[') + QByteArray(5000, ']') + "}}]}}"
            << notJson << 0;
        QTest::newRow("not UTF-8") << QByteArray("{\"Type\": {\"\xff\xfe\": []}}") << notJson << 0;
        QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf{\"Type\": {\"Glass\": [{\"Material\": {\"M\": {}}}]}}") << ok << 1;
        QTest::newRow("wrong types everywhere")
            << QByteArray(R"({"Version": [], "Type": {"Glass": [{"Power": "80", "Custom": "yes",
                 "Material": {"M": {"id": {}, "IconPath": 5, "IconBase64Data": [],
                 "Thickness": {"3.00": {"Cutting": [], "Tracing": 5, "Shallow Carving": "x",
                 "Deep Carving": {"Speed": {}, "Mode": 1, "Pen Action": 5}, "Vision Mark": 0}}}}}],
                 "Fiber": [1, "x", null, []], "Semiconductor": 5}})")
            << ok << 1;
    }

    // Whatever was read writes and reads back the same; a failure leaves nothing.
    void garbage()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, status);
        QFETCH(int, materials);
        TestEnvironment env;
        LibraryReadResult result;
        const CMaterialLibrary library = readBytes(bytes, &result);
        QCOMPARE(int(result.status), status);
        QCOMPARE(result.reason().isEmpty(), result.ok());
        QCOMPARE(library.Materials().size(), size_t(materials));
        QCOMPARE(jsonBytes(readBytes(jsonBytes(library))), jsonBytes(library));
    }

    void devicesAndFiles()
    {
        TestEnvironment env;
        QBuffer closed;
        CMaterialLibrary read = sampleLibrary();
        QCOMPARE(int(ReadMaterialLibrary(&closed, read).status), int(ELibraryRead::CannotOpen));
        QVERIFY(read.IsEmpty());
        QVERIFY(!WriteMaterialLibrary(&closed, sampleLibrary()));

        const QString path = env.dataFile(QStringLiteral("export.json"));
        QVERIFY(WriteMaterialLibraryFile(path, sampleLibrary()));
        QCOMPARE(env.readFile(path), dataFile(QStringLiteral("written/sample.json")));
        QVERIFY(ReadMaterialLibraryFile(path, read).ok());
        QCOMPARE(jsonBytes(read), dataFile(QStringLiteral("written/sample-read.json")));

        // A path that cannot take a file leaves what was there.
        const QString dir = env.dataFile(QStringLiteral("folder.json"));
        QVERIFY(QDir().mkpath(dir));
        QVERIFY(!WriteMaterialLibraryFile(dir, sampleLibrary()));
        QVERIFY(QFileInfo(dir).isDir());
        QCOMPARE(ReadMaterialLibraryFile(dir, read).reason(), QStringLiteral("cannot open (is a directory)"));
        QVERIFY(read.IsEmpty());
    }

    void hostileSizes()
    {
        TestEnvironment env;
        const QString path = env.dataFile(QStringLiteral("huge.json"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(kMaxLibraryFileSize + 1)); // sparse
        file.close();
        CMaterialLibrary library = sampleLibrary();
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(int(ReadMaterialLibraryFile(path, library).status), int(ELibraryRead::TooLarge));
        QVERIFY(library.IsEmpty());
        QVERIFY2(timer.elapsed() < 2000, "the file must not be read");

        // A picture of 100 MiB, below the limit, reads whole.
        const qsizetype size = 100 * 1024 * 1024;
        library = readBytes("{\"Type\": {\"Glass\": [{\"Material\": {\"M\": {\"IconBase64Data\": \""
                            + QByteArray(size, 'A') + "\"}}}]}}");
        QCOMPARE(library.FindMaterial(0, 80, QStringLiteral("M"))->iconBase64.size(), size);
    }
};

QTEST_GUILESS_MAIN(tst_LibraryDocument)
#include "tst_librarydocument.moc"
