#include "librarytestdata.h"
#include "library/crunningoptions.h"
#include "library/librarydocument.h"
#include "library/libraryreader_p.h"
#include "testenvironment.h"

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QTest>

#include <functional>
#include <limits>

namespace {

const QByteArray kCutBlock = R"({
    "Blowing": true, "Speed": 12.5, "Power": 55.5, "Turn power": 11.25,
    "Frequency1": 2000, "Pulse Width1": 300, "Seal length": 0.75,
    "Bridges": true, "Bridges Space": 12, "Bridges Length": 1.5, "Use Guide Line": true,
    "Power2": 44, "Turn power2": 22, "Frequency2": 3000, "Pulse Width2": 400,
    "Jump Delay1": 1, "Corner Delay1": 2, "Jump Delay2": 3, "Corner Delay2": 4,
    "Laser Dwell Mode1": true, "Laser Dwell1": false, "Start Dwell1": true, "End Dwell1": false,
    "Start Dwell Time1": 7, "End Dwell Time1": 8, "Laser Dwell Power1": 9.5,
    "Laser Dwell Mode2": false, "Laser Dwell2": true, "Start Dwell2": false, "End Dwell2": true,
    "Start Dwell Time2": 5, "End Dwell Time2": 6, "Laser Dwell Power2": 1.5,
    "Guide Line": {"Guide Type": 2, "Guide In": 1, "Guide In Len": 2.5, "Guide Out": 1,
                   "Guide Out Len": 3.5},
    "Pen Action": {"Enable PenUpDown": true, "Enable PenDown": false, "Enable PenUp": true,
                   "PenDown Height": 4.5, "PenUp   Height": 6.5},
    "Laser Compensate": {"Use Laser Compensate": true, "Compensate Outward": false,
                         "Compensate Size": 0.1},
    "Note": "cut note"
})";

const QByteArray kShallowBlock = R"({
    "Blowing": false, "Speed": 300.5, "Power": 33.25, "Frequency1": 5000, "Pulse Width1": 600,
    "Power2": 22.5, "Frequency2": 6000, "Pulse Width2": 700, "DPI output": 4, "Mode": 1,
    "Ramp length": 2.25, "Is3DRelief": true, "Offset Engraving": true, "Offset Type": 2,
    "Offset Engraving Distance": 0.05,
    "Jump Delay1": 5, "Corner Delay1": 6, "Jump Delay2": 7, "Corner Delay2": 8,
    "Pen Action": {"Enable PenUpDown": true, "Enable PenDown": true, "Enable PenUp": false,
                   "PenDown Height": 2.5, "PenUp   Height": 5.5},
    "Note": "sweep note"
})";

// A document with one craft block under "M", 3 mm, RFBurning at power 60, as text.
QByteArray documentText(const QString &craft, const QByteArray &block)
{
    return R"({"Type": {"RFBurning": [{"Power": 60, "Material": {"M": {"Thickness": {"3.00": {")"
        + craft.toUtf8() + "\": " + block + "}}}}}]}}";
}

// A document read straight from its bytes, when the direct reader takes
// them, and through Qt's parser: the two libraries must be the same.
struct TwoWays
{
    CMaterialLibrary library; // through Qt's parser
    bool direct = false;
    bool agreed = false;
};

TwoWays readTwoWays(const QByteArray &bytes)
{
    TwoWays read;
    CMaterialLibrary direct;
    read.direct = ReadMaterialLibraryDirect(bytes, direct);
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    const bool ok = document.isObject() && ReadMaterialLibrary(document.object(), read.library);
    read.agreed = read.direct ? ok && direct == read.library
                                    && MaterialLibraryText(direct) == MaterialLibraryText(read.library)
                              : direct.IsEmpty();
    return read;
}

// The materials object of the first RFBurning power entry as written.
QJsonObject writtenMaterials(const CMaterialLibrary &library)
{
    const QJsonValue type = MaterialLibraryToJson(library).value(QStringLiteral("Type"));
    return type[QStringLiteral("RFBurning")][qsizetype(0)][QStringLiteral("Material")].toObject();
}

#define CUT(f) {QStringLiteral(#f), [](const CLibCutSet &s) { return QVariant(s.f); }}
#define SWEEP(f) {QStringLiteral(#f), [](const CLibSweepSet &s) { return QVariant(s.f); }}

QVariant fieldValue(const CMaterialLibrary &library, quint32 craft, const QString &field)
{
    static const QHash<QString, std::function<QVariant(const CLibCutSet &)>> cut = {
        CUT(speed), CUT(sealLength), CUT(blowing), CUT(laser1.power), CUT(laser2.power),
        CUT(laser2.turnPower), CUT(laser1.frequency), CUT(laser1.pulseWidth),
        CUT(laser2.frequency), CUT(laser2.pulseWidth), CUT(bridges), CUT(bridgesSpace),
        CUT(useGuideLine), CUT(guideInLen), CUT(compensateSize), CUT(compensateOutward),
        CUT(pen.upHeight), CUT(pen.enableDown), CUT(laser2.endDwellTime), CUT(note)};
    static const QHash<QString, std::function<QVariant(const CLibSweepSet &)>> sweep = {
        SWEEP(speed), SWEEP(mode), SWEEP(laser1.frequency), SWEEP(laser2.power),
        SWEEP(offsetDistance), SWEEP(isRamp), SWEEP(minPower), SWEEP(maxPower),
        SWEEP(carvingNumber), SWEEP(dpi), SWEEP(pen.upHeight)};
    const CLibKey key = libKey(QStringLiteral("M"), 3.0, craft);
    if (IsCutCraft(craft)) {
        const CLibCutSet *set = library.FindCutSet(key);
        return !cut.contains(field) ? QVariant(QStringLiteral("unknown field"))
             : set                  ? cut.value(field)(*set)
                                    : QVariant(QStringLiteral("no set"));
    }
    const CLibSweepSet *set = library.FindSweepSet(key);
    return !sweep.contains(field) ? QVariant(QStringLiteral("unknown field"))
         : set                    ? sweep.value(field)(*set)
                                  : QVariant(QStringLiteral("no set"));
}

QStringList names(const CMaterialLibrary &library, quint32 tube = 2, qint32 power = 60)
{
    return library.MaterialNames(tube, power);
}

CMaterialLibrary readBytes(const QByteArray &bytes, LibraryReadResult *result = nullptr)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    CMaterialLibrary library;
    const LibraryReadResult read = ReadMaterialLibrary(&buffer, library);
    if (result)
        *result = read;
    return library;
}

} // namespace

class tst_LibraryDocument : public QObject
{
    Q_OBJECT

private slots:
    void writesDocument()
    {
        TestEnvironment env;
        QJsonObject deep = jsonObject(kShallowBlock);
        deep.insert(QStringLiteral("IsRamp"), true);
        deep.insert(QStringLiteral("MinPower"), 10.5);
        deep.insert(QStringLiteral("MaxPower"), 60.5);
        deep.insert(QStringLiteral("CarvingNumber"), 3);
        const QJsonObject crafts{{QStringLiteral("Cutting"), jsonObject(kCutBlock)},
                                 {QStringLiteral("Tracing"), jsonObject(kCutBlock)},
                                 {QStringLiteral("Shallow Carving"), jsonObject(kShallowBlock)},
                                 {QStringLiteral("Deep Carving"), deep},
                                 {QStringLiteral("Vision Mark"), jsonObject(R"({"Note": "mark note"})")}};
        QJsonObject birch = jsonObject(R"({"id": 1, "IconPath": "/Res/Icon/Birch.png",
                                           "IconBase64Data": "iVBORw0KGgo="})");
        birch.insert(QStringLiteral("Thickness"), QJsonObject{{QStringLiteral("3.00"), crafts}});
        QJsonObject custom = jsonObject(R"({"Power": 60, "Custom": true})");
        custom.insert(QStringLiteral("Material"), QJsonObject{{QStringLiteral("Birch"), birch}});
        const QJsonObject factory = jsonObject(R"({"Power": 80, "Custom": false, "Material": {}})");
        const QJsonObject expected{
            {QStringLiteral("Version"), 7},
            {QStringLiteral("Type"), QJsonObject{{QStringLiteral("RFBurning"), QJsonArray{custom, factory}}}}};

        const QJsonObject written = MaterialLibraryToJson(sampleLibrary());
        QVERIFY2(written == expected, QJsonDocument(written).toJson().constData());
    }

    // The library's own text writer gives the very bytes of Qt's indented JSON.
    void textIsQtsText_data()
    {
        QTest::addColumn<QString>("shape");
        for (const char *shape :
             {"sample", "empty", "tube without powers", "power without materials", "numbers",
              "strings", "every BMP character", "stray surrogates", "names", "tube 7 and Glass",
              "thickness keys that collide", "version text", "version fraction", "version object",
              "version large integer"}) {
            QTest::newRow(shape) << QString::fromLatin1(shape);
        }
    }

    void textIsQtsText()
    {
        QFETCH(QString, shape);
        TestEnvironment env;

        CMaterialLibrary library;
        if (shape == QLatin1String("sample")) {
            library = sampleLibrary();
        } else if (shape == QLatin1String("tube without powers")) {
            library.AddTube(3);
        } else if (shape == QLatin1String("power without materials")) {
            library.AddPower(4, 5, true);
            library.AddPower(4, 10, false);
        } else if (shape == QLatin1String("numbers")) {
            library.AddMaterial(libMaterial(QStringLiteral("M"), {3.0}));
            const double values[] = {0.0, -0.0, 1e21, 1e-7, 0.1, 100000.0, 4e15, 1e16, 9.2e18,
                                     9007199254740994.0, 12345678901234567.0, -3.0, -0.5, 1e300,
                                     5e-324, std::numeric_limits<double>::quiet_NaN(),
                                     std::numeric_limits<double>::infinity(), 2.0 / 3.0};
            double thickness = 1.0;
            for (double value : values) {
                library.AddThickness(2, 60, QStringLiteral("M"), thickness);
                CLibCutSet cut = sampleCutSet(libKey(QStringLiteral("M"), thickness, 0));
                cut.speed = value;
                cut.laser2.dwellPower = -value;
                cut.laser1.frequency = std::numeric_limits<qint32>::min();
                library.SetCutSet(cut);
                CLibSweepSet sweep = sampleSweepSet(libKey(QStringLiteral("M"), thickness, 3));
                sweep.offsetDistance = value;
                library.SetSweepSet(sweep);
                thickness += 1.0;
            }
        } else if (shape == QLatin1String("strings") || shape == QLatin1String("every BMP character")
                   || shape == QLatin1String("stray surrogates")) {
            QString text;
            if (shape == QLatin1String("strings")) {
                text = QStringLiteral("quote \" backslash \\ slash / tab \t cr \r nl \n bell \a "
                                      "nul ") + QChar(0) + QStringLiteral(" del \x7f é 椴木 🪵 end");
            } else if (shape == QLatin1String("stray surrogates")) {
                text = QStringLiteral("a") + QChar(0xd800) + QStringLiteral("b") + QChar(0xdc00);
            } else {
                for (char16_t c = 1; c < 0xffff; ++c) {
                    if (!QChar::isSurrogate(c))
                        text += QChar(c);
                }
            }
            CLibMaterial material = libMaterial(QStringLiteral("M"), {3.0});
            material.iconPath = text;
            library.AddMaterial(material);
            CLibCutSet cut = sampleCutSet(libKey(QStringLiteral("M"), 3.0, 0));
            cut.note = text;
            library.SetCutSet(cut);
            library.SetMarkSet({libKey(QStringLiteral("M"), 3.0, 4), text});
        } else if (shape == QLatin1String("names")) {
            for (const QString &name :
                 {QStringLiteral("b"), QStringLiteral("a\"q"), QStringLiteral("Z"), QString(),
                  QStringLiteral("é"), QStringLiteral("椴木"), QStringLiteral("🪵 log"),
                  QStringLiteral("\uffff"), QStringLiteral("tab\tname"), QStringLiteral("back\\slash")}) {
                library.AddMaterial(libMaterial(name, {1.0}));
                library.SetMarkSet({libKey(name, 1.0, 4), name});
            }
        } else if (shape == QLatin1String("tube 7 and Glass")) {
            library.AddMaterial(libMaterial(QStringLiteral("G"), {1.0}, 0, 80));
            library.AddMaterial(libMaterial(QStringLiteral("S"), {2.0}, 7, 40));
        } else if (shape == QLatin1String("thickness keys that collide")) {
            library.AddMaterial(libMaterial(QStringLiteral("M"), {3.001, 3.004, -0.0, 10.0, 2.0}));
            library.SetCutSet(sampleCutSet(libKey(QStringLiteral("M"), 3.001, 0)));
            library.SetSweepSet(sampleSweepSet(libKey(QStringLiteral("M"), 3.004, 2)));
            library.SetMarkSet({libKey(QStringLiteral("M"), -0.0, 4), QString()});
        } else if (shape.startsWith(QLatin1String("version"))) {
            library = sampleLibrary();
            if (shape.endsWith(QLatin1String("text")))
                library.SetVersion(QStringLiteral("2024 \"b\""));
            else if (shape.endsWith(QLatin1String("fraction")))
                library.SetVersion(2.5);
            else if (shape.endsWith(QLatin1String("object")))
                library.SetVersion(jsonObject(R"({"major": 2, "list": [1, {"a": []}, {}]})"));
            else
                library.SetVersion(qint64(9007199254740993));
        }
        QCOMPARE(MaterialLibraryText(library), QJsonDocument(MaterialLibraryToJson(library)).toJson());
    }

    void roundTripKeepsWhatTheReaderReads()
    {
        TestEnvironment env;
        const CMaterialLibrary written = sampleLibrary();
        const CMaterialLibrary read = readBytes(jsonBytes(written));

        // What the reader deliberately does not take back.
        CMaterialLibrary expected = written;
        for (quint32 craft : {0u, 1u}) {
            const CLibCutSet full = *written.FindCutSet(libKey(QStringLiteral("Birch"), 3.0, craft));
            // Tracing takes no bridges, guide line or compensation.
            CLibCutSet cut = craft == 0 ? full : CLibCutSet();
            cut.key = full.key;
            cut.blowing = full.blowing;
            cut.laser1 = full.laser1;
            cut.laser2 = full.laser2;
            cut.pen = full.pen;
            cut.note = full.note;
            cut.speed = 0;
            cut.sealLength = 0;
            expected.SetCutSet(cut);
        }
        for (quint32 craft : {2u, 3u}) {
            CLibSweepSet sweep = *written.FindSweepSet(libKey(QStringLiteral("Birch"), 3.0, craft));
            sweep.mode = 0;
            if (craft == 2) {
                const CLibSweepSet defaults;
                sweep.isRamp = defaults.isRamp;
                sweep.minPower = defaults.minPower;
                sweep.maxPower = defaults.maxPower;
                sweep.carvingNumber = defaults.carvingNumber;
            }
            expected.SetSweepSet(sweep);
        }
        expected.SetMarkSet({libKey(QStringLiteral("Birch"), 3.0, 4), QString()});

        QCOMPARE(read.CutSets(), expected.CutSets());
        QCOMPARE(read.SweepSets(), expected.SweepSets());
        QCOMPARE(read.MarkSets(), expected.MarkSets());
        QVERIFY(read == expected);
        // A second round changes nothing more.
        QCOMPARE(jsonBytes(readBytes(jsonBytes(read))), jsonBytes(read));
    }

    void readField_data()
    {
        QTest::addColumn<QString>("craft");
        QTest::addColumn<QByteArray>("block");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QVariant>("expected");

        const QString cutting = QStringLiteral("Cutting");
        const QString tracing = QStringLiteral("Tracing");
        const QString shallow = QStringLiteral("Shallow Carving");
        const QString deep = QStringLiteral("Deep Carving");
        auto row = [](const char *name, const QString &craft, const char *block, const char *field,
                      const QVariant &expected) {
            QTest::newRow(name) << craft << QByteArray(block) << QString::fromLatin1(field) << expected;
        };

        row("cut speed with fraction reads 0", cutting, R"({"Speed": 12.5})", "speed", 0.0);
        row("cut speed whole", cutting, R"({"Speed": 12})", "speed", 12.0);
        row("cut speed negative whole", cutting, R"({"Speed": -3})", "speed", -3.0);
        row("cut speed beyond int reads 0", cutting, R"({"Speed": 3e12})", "speed", 0.0);
        row("seal length with fraction reads 0", tracing, R"({"Seal length": 0.5})", "sealLength", 0.0);
        row("seal length whole", cutting, R"({"Seal length": 2})", "sealLength", 2.0);
        row("sweep speed keeps fraction", shallow, R"({"Speed": 12.5})", "speed", 12.5);
        row("mode number reads 0", shallow, R"({"Mode": 1})", "mode", 0);
        row("mode one way by name", deep, R"({"Mode": "One way laser"})", "mode", 1);
        row("mode two way by name", shallow, R"({"Mode": "Two way laser"})", "mode", 0);
        row("mode other text", shallow, R"({"Mode": "one way laser"})", "mode", 0);
        row("bridges read for cutting", cutting, R"({"Bridges": true})", "bridges", true);
        row("bridges ignored for tracing", tracing, R"({"Bridges": true})", "bridges", false);
        row("bridge space ignored for tracing", tracing, R"({"Bridges Space": 4})", "bridgesSpace", 0.0);
        row("guide use ignored for tracing", tracing, R"({"Use Guide Line": true})", "useGuideLine", false);
        row("guide line read for cutting", cutting, R"({"Guide Line": {"Guide In Len": 4.5}})",
            "guideInLen", 4.5);
        row("guide line ignored for tracing", tracing, R"({"Guide Line": {"Guide In Len": 4.5}})",
            "guideInLen", 0.0);
        row("compensation read for cutting", cutting,
            R"({"Laser Compensate": {"Compensate Size": 0.4, "Compensate Outward": false}})",
            "compensateSize", 0.4);
        row("compensation ignored for tracing", tracing,
            R"({"Laser Compensate": {"Compensate Size": 0.4}})", "compensateSize", 0.25);
        row("compensation outward default", cutting, R"({"Laser Compensate": {}})",
            "compensateOutward", true);
        row("ramp read for deep", deep, R"({"IsRamp": true})", "isRamp", true);
        row("min power read for deep", deep, R"({"MinPower": 5.5})", "minPower", 5.5);
        row("max power read for deep", deep, R"({"MaxPower": 9.5})", "maxPower", 9.5);
        row("passes read for deep", deep, R"({"CarvingNumber": 4})", "carvingNumber", 4);
        row("ramp ignored for shallow", shallow, R"({"IsRamp": true})", "isRamp", false);
        row("passes ignored for shallow", shallow, R"({"CarvingNumber": 4})", "carvingNumber", 0);
        row("frequency truncated", cutting, R"({"Frequency1": 4000.9})", "laser1.frequency", 4000);
        row("negative pulse width truncated toward zero", cutting, R"({"Pulse Width1": -3.7})",
            "laser1.pulseWidth", -3);
        row("huge frequency saturates", cutting, R"({"Frequency2": 1e300})", "laser2.frequency",
            std::numeric_limits<qint32>::max());
        row("huge negative pulse width saturates", cutting, R"({"Pulse Width2": -1e300})",
            "laser2.pulseWidth", std::numeric_limits<qint32>::min());
        row("sweep frequency truncated", shallow, R"({"Frequency1": 20000.99})", "laser1.frequency", 20000);
        row("pen key with three blanks", cutting, R"({"Pen Action": {"PenUp   Height": 7}})",
            "pen.upHeight", 7.0);
        row("pen key with one blank is not it", cutting, R"({"Pen Action": {"PenUp Height": 7}})",
            "pen.upHeight", 3.0);
        row("sweep pen key with three blanks", deep, R"({"Pen Action": {"PenUp   Height": 8}})",
            "pen.upHeight", 8.0);
        row("dwell time of laser 2", cutting, R"({"End Dwell Time2": 9})", "laser2.endDwellTime", 9);
        row("note", cutting, R"({"Note": "keep dry"})", "note", QStringLiteral("keep dry"));
        row("key given twice: the last counts", cutting, R"({"Speed": 1, "Note": "a", "Speed": 2})",
            "speed", 2.0);

        row("default laser 2 power", cutting, "{}", "laser2.power", 20.0);
        row("default laser 2 corner power", cutting, "{}", "laser2.turnPower", 20.0);
        row("default laser 1 power", cutting, "{}", "laser1.power", 0.0);
        row("default frequency", cutting, "{}", "laser1.frequency", 4000);
        row("default pulse width", tracing, "{}", "laser1.pulseWidth", 500);
        row("default pen down", cutting, "{}", "pen.enableDown", true);
        row("default offset step", shallow, "{}", "offsetDistance", 0.1);
        row("default sweep laser 2 power", deep, "{}", "laser2.power", 20.0);

        row("garbage: speed as text", cutting, R"({"Speed": "12"})", "speed", 0.0);
        row("garbage: blowing as number", cutting, R"({"Blowing": 1})", "blowing", false);
        row("garbage: power as text", cutting, R"({"Power": "50"})", "laser1.power", 0.0);
        row("garbage: frequency as text", cutting, R"({"Frequency1": "9000"})", "laser1.frequency", 4000);
        row("garbage: pen as array", cutting, R"({"Pen Action": [1, 2]})", "pen.upHeight", 3.0);
        row("garbage: guide line as number", cutting, R"({"Guide Line": 5})", "guideInLen", 0.0);
        row("garbage: dpi as fraction", shallow, R"({"DPI output": 2.5})", "dpi", 0);
        row("garbage: note as number", cutting, R"({"Note": 5})", "note", QString());
    }

    void readField()
    {
        QFETCH(QString, craft);
        QFETCH(QByteArray, block);
        QFETCH(QString, field);
        QFETCH(QVariant, expected);
        TestEnvironment env;

        const TwoWays read = readTwoWays(documentText(craft, block));
        QVERIFY(read.agreed);
        QCOMPARE(fieldValue(read.library, CraftIndex(craft), field), expected);
    }

    void markPresence_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("present");
        QTest::newRow("object with note") << QByteArray(R"({"Note": "x"})") << true;
        QTest::newRow("object with empty note") << QByteArray(R"({"Note": ""})") << true;
        QTest::newRow("empty object") << QByteArray("{}") << false;
        QTest::newRow("null") << QByteArray("null") << false;
        QTest::newRow("empty text") << QByteArray(R"("")") << false;
        QTest::newRow("text") << QByteArray(R"("yes")") << true;
        QTest::newRow("empty array") << QByteArray("[]") << false;
        QTest::newRow("array") << QByteArray("[0]") << true;
        QTest::newRow("number") << QByteArray("0") << true;
        QTest::newRow("false") << QByteArray("false") << true;
    }

    void markPresence()
    {
        QFETCH(QByteArray, value);
        QFETCH(bool, present);
        TestEnvironment env;

        const TwoWays read = readTwoWays(documentText(QStringLiteral("Vision Mark"), value));
        QVERIFY(read.agreed);
        const CMaterialLibrary &library = read.library;
        const CLibMarkSet *set = library.FindMarkSet(libKey(QStringLiteral("M"), 3.0, 4));
        QCOMPARE(set != nullptr, present);
        QCOMPARE(library.MarkSetCount(), size_t(present ? 1 : 0));
        if (set)
            QCOMPARE(set->note, QString());
    }

    void directReader_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("direct");
        auto row = [](const char *name, const QByteArray &bytes, bool direct) {
            QTest::newRow(name) << bytes << direct;
        };
        const QString cutting = QStringLiteral("Cutting");
        auto cut = [&](const char *block) { return documentText(cutting, block); };
        auto materials = [](const char *materials) -> QByteArray {
            return R"({"Type": {"RFBurning": [{"Power": 60, "Material": )" + QByteArray(materials)
                + "}]}}";
        };

        row("written library", jsonBytes(sampleLibrary()), true);
        row("compact, keys in any order",
            R"({"Version":2,"Type":{"Glass":[{"Material":{"B":{"id":1},"A":{}},"Power":60}],)"
            R"("Fiber":[{"Power":20,"Custom":true}]}})", true);
        row("white space of every kind", "\r\n{\t\"Type\" :\n{ \"Glass\" : [ ] } }\n\n", true);
        row("materials out of key order", materials(R"({"C": {}, "A": {}, "B": {"id": 1}})"), true);
        row("thicknesses out of key order",
            materials(R"({"M": {"Thickness": {"3.00": {}, "10.00": {}, "1.50": {}}}})"), true);
        row("non-ASCII names and notes",
            materials(R"({"椴木": {"Thickness": {"3.00": {"Cutting": {"Note": "trocken lagern, ½"}}}},
                          "Ölholz": {}})"), true);
        row("whole number with a zero fraction", cut(R"({"Speed": 12.0, "Frequency1": 4000.000})"), true);
        row("decimal fractions", cut(R"({"Power": 0.3, "Turn power": 1.1, "Bridges Length": 2.675})"),
            true);
        row("fraction past the quick conversion", cut(R"({"Power": 0.12345678901234567890123})"), true);
        row("negative zeros", cut(R"({"Speed": -0, "Power": -0.0})"), true);
        row("whole number beyond int", cut(R"({"Speed": 123456789012345678})"), true);
        row("unknown keys of every type",
            cut(R"({"X": [{"y": [null, true, false, "s", -1.5, {}]}], "Z": {}, "Speed": 5})"), true);
        row("values of the wrong type", cut(R"({"Speed": "5", "Blowing": 1, "Pen Action": []})"), true);
        row("version as text", R"({"Version": "2024a", "Type": {}})", true);

        row("escape in a note", cut("{\"Note\": \"say \\\"dry\\\"\\n\"}"), false);
        row("escaped key", cut(R"({"Spe\u0065d": 7})"), false);
        row("exponent", cut(R"({"Power": 1e2})"), false);
        row("more than 18 digits", cut(R"({"Speed": 1234567890123456789})"), false);
        row("control character in a string", cut("{\"Note\": \"a\tb\"}"), false);
        row("key twice in a block", cut(R"({"Speed": 1, "Speed": 2})"), false);
        row("material twice, the last not an object", materials(R"({"M": {}, "M": 5})"), false);
        row("thickness key twice",
            materials(R"({"M": {"Thickness": {"3.00": {"Cutting": {"Speed": 1}},
                                              "3.00": {"Cutting": {"Speed": 2}}}}})"), false);
        row("tube twice", R"({"Type": {"Glass": [{"Power": 40}], "Glass": [{"Power": 60}]}})", false);
        row("names outside the basic plane", materials(R"({"😀": {}, "": {}})"), false);
        row("version with a fraction", R"({"Version": 2.5, "Type": {}})", false);
        row("version as an object", R"({"Version": {"major": 2}, "Type": {}})", false);
        row("byte order mark", "\xef\xbb\xbf{\"Type\": {}}", false);
        row("deep nesting in an unknown key",
            cut(QByteArray("{\"X\": " + QByteArray(100, '[') + QByteArray(100, ']') + "}").constData()),
            false);
        row("no Type", R"({"Version": 1})", false);
        row("not an object", "[]", false);
        row("trailing garbage", R"({"Type": {}} x)", false);
        row("truncated", R"({"Type": {"Glass": [{"Power": 8)", false);
        row("not UTF-8", "{\"Type\": {\"\xc0\xaf\": []}}", false);
        row("surrogate in UTF-8", "{\"Type\": {\"\xed\xa0\x80\": []}}", false);
        row("trailing comma", R"({"Type": {"Glass": [],}})", false);
        row("number with a bare point", cut(R"({"Speed": 1.})"), false);
    }

    // The direct reader takes plain documents and gives what Qt's parser
    // gives; anything else it leaves to Qt, and a device read still gives
    // Qt's library.
    void directReader()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, direct);
        TestEnvironment env;

        const TwoWays read = readTwoWays(bytes);
        QCOMPARE(read.direct, direct);
        QVERIFY(read.agreed);
        QCOMPARE(readBytes(bytes), read.library);
    }

    void materialOrder_data()
    {
        QTest::addColumn<QByteArray>("materials");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("ids reverse the key order")
            << QByteArray(R"({"A": {"id": 2}, "B": {"id": 1}})") << QStringList{"B", "A"};
        QTest::newRow("gaps in the ids") << QByteArray(R"({"A": {"id": 30}, "B": {"id": 7}})")
                                         << QStringList{"B", "A"};
        QTest::newRow("equal ids keep key order")
            << QByteArray(R"({"B": {"id": 1}, "A": {"id": 1}, "C": {"id": 0.5}})")
            << QStringList{"A", "B", "C"};
        QTest::newRow("materials without id follow")
            << QByteArray(R"({"A": {}, "B": {"id": 5}, "C": {"id": 2}})") << QStringList{"C", "B", "A"};
        QTest::newRow("garbage ids follow in key order")
            << QByteArray(R"({"A": {"id": "1"}, "B": {"id": 1.5}, "C": {"id": -1}, "D": {"id": 0},
                             "E": {"id": 3}, "F": {"id": null}, "G": {"id": 1e20}})")
            << QStringList{"E", "A", "B", "C", "D", "F", "G"};
        QTest::newRow("a material that is not an object is skipped")
            << QByteArray(R"({"A": 5, "B": {"id": 1}, "C": []})") << QStringList{"B"};
        QTest::newRow("unicode names") << QByteArray(R"({"椴木": {"id": 2}, "Ölholz": {"id": 1}})")
                                       << QStringList{QStringLiteral("Ölholz"), QStringLiteral("椴木")};
    }

    void materialOrder()
    {
        QFETCH(QByteArray, materials);
        QFETCH(QStringList, order);
        TestEnvironment env;

        LibraryReadResult result;
        const CMaterialLibrary library =
            readBytes(R"({"Type": {"RFBurning": [{"Power": 60, "Material": )" + materials + "}]}}", &result);
        QVERIFY2(result.ok(), qPrintable(result.reason()));
        QCOMPARE(names(library), order);

        // Written back, the ids number the materials in that order from 1.
        const QJsonObject written = writtenMaterials(library);
        for (int i = 0; i < order.size(); ++i)
            QCOMPARE(written.value(order.at(i)).toObject().value(QStringLiteral("id")).toInt(), i + 1);
        QCOMPARE(names(readBytes(jsonBytes(library))), order);
    }

    void version_data()
    {
        QTest::addColumn<QByteArray>("version");
        QTest::addColumn<QByteArray>("written");
        QTest::newRow("integer") << QByteArray(R"("Version": 3,)") << QByteArray("3");
        QTest::newRow("missing reads 0") << QByteArray() << QByteArray("0");
        QTest::newRow("fraction kept") << QByteArray(R"("Version": 2.5,)") << QByteArray("2.5");
        QTest::newRow("text kept") << QByteArray(R"("Version": "2024a",)") << QByteArray(R"("2024a")");
        QTest::newRow("large kept") << QByteArray(R"("Version": 4000000000,)") << QByteArray("4000000000");
    }

    void version()
    {
        QFETCH(QByteArray, version);
        QFETCH(QByteArray, written);
        TestEnvironment env;
        const CMaterialLibrary library = readBytes("{" + version + R"("Type": {}})");
        const QJsonValue expected = QJsonDocument::fromJson("[" + written + "]").array().at(0);
        QCOMPARE(MaterialLibraryToJson(library).value(QStringLiteral("Version")), expected);
    }

    void tubeNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<quint32>("type");
        QTest::addColumn<QString>("written");
        quint32 type = 0;
        for (const char *name : {"Glass", "RFNoBurning", "RFBurning", "Fiber", "Semiconductor"})
            QTest::newRow(name) << QString::fromLatin1(name) << type++ << QString::fromLatin1(name);
        QTest::newRow("unknown reads as Glass") << QStringLiteral("CO2") << 0u << QStringLiteral("Glass");
        QTest::newRow("case matters") << QStringLiteral("fiber") << 0u << QStringLiteral("Glass");
        QTest::newRow("empty name") << QString() << 0u << QStringLiteral("Glass");
    }

    void tubeNames()
    {
        QFETCH(QString, name);
        QFETCH(quint32, type);
        QFETCH(QString, written);
        TestEnvironment env;

        const QJsonObject root{{QStringLiteral("Type"),
                                QJsonObject{{name, jsonObject(R"({"a": [{"Power": 45, "Material": {"M": {}}}]})")
                                                       .value(QStringLiteral("a"))}}}};
        CMaterialLibrary library;
        QVERIFY(ReadMaterialLibrary(root, library));
        QCOMPARE(library.Tubes().size(), size_t(1));
        QCOMPARE(library.Tubes().front().type, type);
        QVERIFY(library.FindMaterial(type, 45, QStringLiteral("M")));
        QCOMPARE(MaterialLibraryToJson(library).value(QStringLiteral("Type")).toObject().keys(),
                 QStringList{written});
    }

    void thicknessKeys_data()
    {
        QTest::addColumn<double>("thickness");
        QTest::addColumn<QString>("key");
        QTest::newRow("whole number") << 3.0 << QStringLiteral("3.00");
        QTest::newRow("one decimal") << 1.5 << QStringLiteral("1.50");
        QTest::newRow("below one") << 0.8 << QStringLiteral("0.80");
        QTest::newRow("rounded to two decimals") << 12.3456 << QStringLiteral("12.35");
        QTest::newRow("ten") << 10.0 << QStringLiteral("10.00");
    }

    void thicknessKeys()
    {
        QFETCH(double, thickness);
        QFETCH(QString, key);
        TestEnvironment env;

        CMaterialLibrary library;
        library.AddMaterial(libMaterial(QStringLiteral("M"), {thickness}));
        library.SetMarkSet({libKey(QStringLiteral("M"), thickness, 4), QString()});
        const QJsonObject thicknesses =
            writtenMaterials(library).value(QStringLiteral("M"))[QStringLiteral("Thickness")].toObject();
        QCOMPARE(thicknesses.keys(), QStringList{key});
        QVERIFY(thicknesses.value(key).toObject().contains(QStringLiteral("Vision Mark")));

        const CMaterialLibrary read = readBytes(jsonBytes(library));
        QCOMPARE(read.Thicknesses(2, 60, QStringLiteral("M")), std::vector<double>{key.toDouble()});
        QVERIFY(read.FindMarkSet(libKey(QStringLiteral("M"), key.toDouble(), 4)));
    }

    void missingKeysTakeDefaults()
    {
        TestEnvironment env;
        const CMaterialLibrary library = readBytes(
            R"({"Type": {"Fiber": [{}, {"Power": 30, "Custom": true, "Material": {"M": {}}}]}})");
        QCOMPARE(library.Version(), QJsonValue(0));
        QCOMPARE(library.Powers(3), (std::vector<CLibPower>{{80, false}, {30, true}}));
        const CLibMaterial *m = library.FindMaterial(3, 30, QStringLiteral("M"));
        QVERIFY(m);
        QCOMPARE(m->iconPath, QString());
        QCOMPARE(m->iconBase64, QString());
        QVERIFY(m->thicknesses.empty());
    }

    void duplicatesFirstWins()
    {
        TestEnvironment env;
        // "CO2" reads as Glass like "Glass" does: both name power 80, and "M" twice.
        const CMaterialLibrary library = readBytes(R"({"Type": {
            "CO2": [{"Power": 80, "Material": {"M": {"IconPath": "co2",
                     "Thickness": {"3.00": {"Cutting": {"Speed": 1}}}}, "X": {}}}],
            "Glass": [{"Power": 80, "Custom": true, "Material": {"M": {"IconPath": "glass",
                       "Thickness": {"3.00": {"Cutting": {"Speed": 2}}, "4": {}}}, "Y": {}}},
                      {"Power": 100}]}})");
        QCOMPARE(library.Tubes().size(), size_t(1));
        QCOMPARE(library.Powers(0), (std::vector<CLibPower>{{80, false}, {100, false}}));
        QCOMPARE(names(library, 0, 80), (QStringList{"M", "X", "Y"}));
        QCOMPARE(library.FindMaterial(0, 80, QStringLiteral("M"))->iconPath, QStringLiteral("co2"));
        QCOMPARE(library.FindCutSet(libKey(QStringLiteral("M"), 3.0, 0, 0, 80))->speed, 1.0);

        // Thickness keys that name one thickness share one entry and one set.
        const CMaterialLibrary near = readBytes(R"({"Type": {"Glass": [{"Material": {"M": {
            "Thickness": {"3.00": {"Cutting": {"Speed": 1}}, "3.0000004": {"Cutting": {"Speed": 2}},
                          "3": {}, "abc": {"Cutting": {}}, "inf": {}, "nan": {}, "-1": {}}}}}]}})");
        QCOMPARE(near.Thicknesses(0, 80, QStringLiteral("M")), (std::vector<double>{-1.0, 3.0}));
        QCOMPARE(near.CutSetCount(), size_t(1));
        QCOMPARE(near.FindCutSet(libKey(QStringLiteral("M"), 3.0000009, 0, 0, 80))->speed, 1.0);
        QCOMPARE(near.FindCutSet(libKey(QStringLiteral("M"), 3.000002, 0, 0, 80)), nullptr);
    }

    void garbage_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("materials");

        const int ok = int(ELibraryRead::Ok);
        const int notJson = int(ELibraryRead::NotJson);
        const int noType = int(ELibraryRead::NoType);
        QTest::newRow("empty") << QByteArray() << notJson << 0;
        QTest::newRow("truncated") << QByteArray(R"({"Type": {"Glass": [{"Power": 8)") << notJson << 0;
        QTest::newRow("text") << QByteArray("lm.json") << notJson << 0;
        QTest::newRow("array") << QByteArray("[1, 2]") << int(ELibraryRead::NotObject) << 0;
        QTest::newRow("no Type") << QByteArray(R"({"Version": 1})") << noType << 0;
        QTest::newRow("Type as array") << QByteArray(R"({"Type": [{"Glass": []}]})") << noType << 0;
        QTest::newRow("type lower case") << QByteArray(R"({"type": {}})") << noType << 0;
        QTest::newRow("deep nesting") << QByteArray(100000, '[') << notJson << 0;
        QTest::newRow("deep nesting in a material")
            << QByteArray(R"({"Type": {"Glass": [{"Material": {"M": )" + QByteArray(5000, '[')
                          + QByteArray(5000, ']') + "}}]}}")
            << notJson << 0;
        QTest::newRow("not UTF-8") << QByteArray("{\"Type\": {\"\xff\xfe\": []}}") << notJson << 0;
        QTest::newRow("tube entries of wrong types")
            << QByteArray(R"({"Type": {"Glass": 5, "Fiber": [1, "x", null, []]}})") << ok << 0;
        QTest::newRow("wrong types everywhere")
            << QByteArray(R"({"Version": [], "Type": {"Glass": [{"Power": "80", "Custom": "yes",
                 "Material": {"M": {"id": {}, "IconPath": 5, "IconBase64Data": [],
                 "Thickness": {"3.00": {"Cutting": [], "Tracing": 5, "Shallow Carving": "x",
                 "Deep Carving": {"Speed": {}, "Mode": 1, "Pen Action": 5}, "Vision Mark": 0}}}}}]}})")
            << ok << 1;
        QTest::newRow("empty material list") << QByteArray(R"({"Type": {"Glass": [{"Power": 80}]}})")
                                             << ok << 0;
    }

    void garbage()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, status);
        QFETCH(int, materials);
        TestEnvironment env;

        LibraryReadResult result;
        const CMaterialLibrary library = readBytes(bytes, &result);
        QCOMPARE(int(result.status), status);
        QCOMPARE(result.ok(), status == int(ELibraryRead::Ok));
        QVERIFY(result.ok() || !result.reason().isEmpty());
        QCOMPARE(library.Materials().size(), size_t(materials));
        if (!result.ok())
            QVERIFY(library.IsEmpty());
        // Whatever was read writes and reads back the same.
        QCOMPARE(jsonBytes(readBytes(jsonBytes(library))), jsonBytes(library));
    }

    void devices()
    {
        TestEnvironment env;
        QBuffer closed;
        for (QIODevice *device : {static_cast<QIODevice *>(nullptr), static_cast<QIODevice *>(&closed)}) {
            CMaterialLibrary library = sampleLibrary();
            QCOMPARE(int(ReadMaterialLibrary(device, library).status), int(ELibraryRead::CannotOpen));
            QVERIFY(library.IsEmpty());
        }

        QVERIFY(!WriteMaterialLibrary(nullptr, sampleLibrary()));
        QBuffer readOnly;
        readOnly.open(QIODevice::ReadOnly);
        QVERIFY(!WriteMaterialLibrary(&readOnly, sampleLibrary()));

        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QVERIFY(WriteMaterialLibrary(&buffer, sampleLibrary()));
        QCOMPARE(buffer.data(), jsonBytes(sampleLibrary()));
        QVERIFY(buffer.data().startsWith("{\n    \""));
    }

    void files()
    {
        TestEnvironment env;
        const QString path = env.dataFile(QStringLiteral("export.json"));
        QVERIFY(WriteMaterialLibraryFile(path, sampleLibrary()));
        QCOMPARE(env.readFile(path), jsonBytes(sampleLibrary()));
        CMaterialLibrary read;
        QVERIFY(ReadMaterialLibraryFile(path, read).ok());
        QCOMPARE(jsonBytes(read), jsonBytes(readBytes(jsonBytes(sampleLibrary()))));

        // A path that cannot take a file leaves what was there.
        const QString dir = env.dataFile(QStringLiteral("folder.json"));
        QVERIFY(QDir().mkpath(dir));
        QVERIFY(!WriteMaterialLibraryFile(dir, sampleLibrary()));
        QVERIFY(QFileInfo(dir).isDir());
        QVERIFY(!WriteMaterialLibraryFile(env.dataFile(QStringLiteral("no/such/dir/x.json")),
                                          sampleLibrary()));

        QCOMPARE(int(ReadMaterialLibraryFile(dir, read).status), int(ELibraryRead::CannotOpen));
        QCOMPARE(int(ReadMaterialLibraryFile(env.dataFile(QStringLiteral("none.json")), read).status),
                 int(ELibraryRead::CannotOpen));
        QVERIFY(read.IsEmpty());
    }

    void tooLargeFileUnread()
    {
        TestEnvironment env;
        const QString path = env.dataFile(QStringLiteral("huge.json"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.resize(kMaxLibraryFileSize + 1)); // sparse: no disk, no memory
        file.close();
        CMaterialLibrary library = sampleLibrary();
        QElapsedTimer timer;
        timer.start();
        const LibraryReadResult result = ReadMaterialLibraryFile(path, library);
        QCOMPARE(int(result.status), int(ELibraryRead::TooLarge));
        QVERIFY(result.reason().startsWith(QLatin1String("too large")));
        QVERIFY(library.IsEmpty());
        QVERIFY2(timer.elapsed() < 2000, "the file must not be read");
    }

    void hugePicture()
    {
        TestEnvironment env;
        const qsizetype size = 100 * 1024 * 1024;
        QByteArray document = "{\"Type\": {\"Glass\": [{\"Material\": {\"M\": {\"IconBase64Data\": \"";
        document.append(QByteArray(size, 'A'));
        document.append("\"}}}]}}");
        LibraryReadResult result;
        const CMaterialLibrary library = readBytes(document, &result);
        document.clear();
        QVERIFY2(result.ok(), qPrintable(result.reason()));
        QCOMPARE(library.FindMaterial(0, 80, QStringLiteral("M"))->iconBase64.size(), size);
    }

    void manyEntriesScaleLinearly_data()
    {
        QTest::addColumn<QString>("shape");
        QTest::newRow("materials under one power") << QStringLiteral("materials");
        QTest::newRow("thicknesses of one material") << QStringLiteral("thicknesses");
        QTest::newRow("power entries of one tube") << QStringLiteral("powers");
    }

    void manyEntriesScaleLinearly()
    {
        QFETCH(QString, shape);
        TestEnvironment env;

        auto document = [&shape](int n) -> QByteArray {
            QByteArray text = "{\"Type\": {\"Glass\": [";
            if (shape == QLatin1String("powers")) {
                for (int i = 0; i < n; ++i)
                    text += (i ? "," : "") + QByteArray("{\"Power\": ") + QByteArray::number(i)
                        + ", \"Material\": {\"M\": {\"Thickness\": {\"1\": {\"Vision Mark\": 1}}}}}";
                return text + "]}}";
            }
            text += "{\"Material\": {";
            if (shape == QLatin1String("materials")) {
                // Ids reverse the key order, so the order has to be rebuilt.
                for (int i = 0; i < n; ++i)
                    text += (i ? "," : "") + QByteArray("\"M") + QByteArray::number(i)
                        + "\": {\"id\": " + QByteArray::number(n - i)
                        + ", \"Thickness\": {\"1.00\": {\"Vision Mark\": 1}}}";
            } else {
                text += "\"M\": {\"Thickness\": {";
                for (int i = 0; i < n; ++i)
                    text += (i ? "," : "") + QByteArray("\"") + QByteArray::number(i * 0.01, 'f', 2)
                        + "\": {\"Vision Mark\": 1}";
                text += "}}";
            }
            return text + "}}]}}";
        };
        auto seconds = [&](int n, size_t *marks) {
            const QByteArray bytes = document(n);
            QElapsedTimer timer;
            timer.start();
            const CMaterialLibrary library = readBytes(bytes);
            const QByteArray written = jsonBytes(library);
            *marks = library.MarkSetCount();
            return double(timer.nsecsElapsed()) / 1e9 + 1e-4;
        };

        size_t small = 0, large = 0;
        const double tSmall = seconds(2500, &small);
        const double tLarge = seconds(20000, &large);
        QCOMPARE(small, size_t(2500));
        QCOMPARE(large, size_t(20000));
        // Eight times the entries; quadratic work would take 64 times as long.
        QVERIFY2(tLarge < 24 * tSmall + 0.5,
                 qPrintable(QStringLiteral("%1 s for 2500, %2 s for 20000").arg(tSmall).arg(tLarge)));
    }

    void regressions_data()
    {
        QTest::addColumn<QString>("path");
        const QDir dir(QStringLiteral(LAYERMGR_SOURCE_DIR "/tests/library/data"));
        for (const QString &file : dir.entryList(QDir::Files, QDir::Name))
            QTest::newRow(qPrintable(file)) << dir.filePath(file);
    }

    void regressions()
    {
        QFETCH(QString, path);
        TestEnvironment env;
        CMaterialLibrary library;
        if (!ReadMaterialLibraryFile(path, library).ok()) {
            QVERIFY(library.IsEmpty());
            return;
        }
        // A mode written as a number reads back as 0: the text settles on the second round.
        const QByteArray twice = jsonBytes(readBytes(jsonBytes(library)));
        QCOMPARE(jsonBytes(readBytes(twice)), twice);
        QCOMPARE(MaterialLibraryText(library), jsonBytes(library));
    }
};

QTEST_GUILESS_MAIN(tst_LibraryDocument)
#include "tst_librarydocument.moc"
