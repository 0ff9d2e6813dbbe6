#include "librarytestdata.h"
#include "library/crunningoptions.h"
#include "testenvironment.h"

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
        const QJsonValue none(QJsonValue::Undefined);

        row("cut speed with fraction reads 0", C, R"({"Speed": 12.5})", "Speed", 0.0);
        row("sweep speed keeps fraction", S, R"({"Speed": 12.5})", "Speed", 12.5);
        row("mode number reads 0", S, R"({"Mode": 1})", "Mode", 0);
        row("mode one way by name", D, R"({"Mode": "One way laser"})", "Mode", 1);
        row("bridges ignored for tracing", T, R"({"Bridges": true})", "Bridges", false);
        row("compensation outward default", C, R"({"Laser Compensate": {}})", "Laser Compensate/Compensate Outward", true);
        row("frequency truncated", C, R"({"Frequency1": 4000.9})", "Frequency1", 4000);
        row("huge frequency saturates", C, R"({"Frequency2": 1e300})", "Frequency2", std::numeric_limits<qint32>::max());
        row("pen key with one blank is not it", C, R"({"Pen Action": {"PenUp Height": 7}})", "Pen Action/PenUp   Height", 3.0);

        row("garbage: block as array", C, "[]", "Speed", none);

        row("mark: object with empty note", V, R"({"Note": ""})", "Note", QString());
        row("mark: empty object", V, "{}", "Note", none);

        QTest::newRow("version missing reads 0") << QByteArray(R"({"Type": {}})") << "Version" << QJsonValue(0);
        const char *m = R"({"Type": {"Glass": [{"Material": {"M": {"Thickness": {"%1": {"Vision Mark": 1}}}}}]}})";
        const char *key = "Type/Glass/0/Material/M/Thickness/%1/Vision Mark/Note";
        for (auto [thickness, written] : {std::pair{"3", "3.00"}, {"12.3456", "12.35"}})
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

    // Ascending "id"; ties and materials without a usable one keep the key
    // order. Written back, the ids number them in that order from 1.
    void materialOrder()
    {
        TestEnvironment env;
        const CMaterialLibrary library = readBytes(R"({"Type": {"RFBurning": [{"Power": 60, "Material": {
            "A": {"id": "1"}, "B": {"id": 1.5}, "C": {"id": -1}, "D": {}, "E": {"id": 3}, "F": 5,
            "G": {"id": 1e20}, "H": {"id": 1}, "I": {"id": 1}}}]}})");
        const QStringList order{"H", "I", "E", "A", "B", "C", "D", "G"};
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
        const int ok = int(ELibraryRead::Ok);
        QTest::newRow("array") << QByteArray("[1, 2]") << int(ELibraryRead::NotObject) << 0;
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
        CMaterialLibrary read;
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

        QFile huge(env.dataFile(QStringLiteral("huge.json")));
        QVERIFY(huge.open(QIODevice::WriteOnly) && huge.resize(kMaxLibraryFileSize + 1)); // sparse
        huge.close();
        read = sampleLibrary();
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(int(ReadMaterialLibraryFile(huge.fileName(), read).status), int(ELibraryRead::TooLarge));
        QVERIFY(read.IsEmpty());
        QVERIFY2(timer.elapsed() < 2000, "the file must not be read");
    }
};

QTEST_GUILESS_MAIN(tst_LibraryDocument)
#include "tst_librarydocument.moc"
