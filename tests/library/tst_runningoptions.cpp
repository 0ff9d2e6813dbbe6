#include "library/clayercontext.h"
#include "library/crunningoptions.h"
#include "support/texthelpers.h"
#include "testenvironment.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <cstring>

class tst_RunningOptions : public QObject
{
    Q_OBJECT

private slots:
    void defaults();
    void jsonShape();
    void emptyListShape();
    void thicknessText_data();
    void thicknessText();
    void readFields_data();
    void readFields();
    void readReplacesList_data();
    void readReplacesList();
    void garbageKeepsList_data();
    void garbageKeepsList();
    void roundTrip();
    void materialNameCut_data();
    void materialNameCut();
    void tubeNames_data();
    void tubeNames();
    void craftNames_data();
    void craftNames();
    void contextFindSetRemove();
    void contextJson();
    void boundedCopy_data();
    void boundedCopy();
    void boundedCopyRefuses();
    void boundedCopyUtf8_data();
    void boundedCopyUtf8();
};

namespace {

RunningOptionEntry entry(quint32 color, quint32 type, const QString &material, double thickness,
                         quint32 craft, quint32 power)
{
    RunningOptionEntry e;
    e.color = color;
    e.options.type = type;
    e.options.SetMaterialName(material);
    e.options.thickness = thickness;
    e.options.craft = craft;
    e.options.laserPower = power;
    return e;
}

QByteArray wrap(const QByteArray &entries)
{
    return "{\"RunningOpition\": [" + entries + "]}";
}

// A list the garbage rows must leave alone.
RunningOptionList sentinelList()
{
    return {entry(0xFF0000, 3, QStringLiteral("Steel"), 2.0, 0, 30)};
}

// Every lead byte followed by as many continuation bytes as it announces;
// in particular no sequence cut short at the end.
bool validUtf8(const char *text)
{
    const auto *p = reinterpret_cast<const unsigned char *>(text);
    while (*p) {
        const unsigned char lead = *p++;
        int follow = 0;
        if (lead < 0x80)
            follow = 0;
        else if ((lead & 0xE0) == 0xC0)
            follow = 1;
        else if ((lead & 0xF0) == 0xE0)
            follow = 2;
        else if ((lead & 0xF8) == 0xF0)
            follow = 3;
        else
            return false;
        for (; follow > 0; --follow, ++p) {
            if ((*p & 0xC0) != 0x80)
                return false;
        }
    }
    return true;
}

} // namespace

void tst_RunningOptions::defaults()
{
    const CRunningOptions o;
    QCOMPARE(o.type, 0u);
    QCOMPARE(o.laserPower, 80u);
    QCOMPARE(o.thickness, 1.0);
    QCOMPARE(o.craft, 2u);
    QCOMPARE(o.MaterialName(), QString());
    QCOMPARE(sizeof o.materialName, size_t(257));
    QCOMPARE(sizeof o.secondText, size_t(257));
}

void tst_RunningOptions::jsonShape()
{
    const RunningOptionList list = {entry(255, 1, QStringLiteral("Acrylic"), 3.0, 0, 60),
                                    entry(0x00FF00, 7, QStringLiteral("木板"), 0.5, 9, 100)};
    const QString expected = QStringLiteral(
        "{\n"
        "    \"RunningOpition\": [\n"
        "        {\n"
        "            \"Color\": \"255\",\n"
        "            \"Craft\": \"Cutting\",\n"
        "            \"LaserPower\": \"60\",\n"
        "            \"MaterialName\": \"Acrylic\",\n"
        "            \"Thickness\": \"3\",\n"
        "            \"Type\": \"RFNoBurning\"\n"
        "        },\n"
        "        {\n"
        "            \"Color\": \"65280\",\n"
        "            \"Craft\": \"Cutting\",\n"
        "            \"LaserPower\": \"100\",\n"
        "            \"MaterialName\": \"木板\",\n"
        "            \"Thickness\": \"0.5\",\n"
        "            \"Type\": \"Glass\"\n"
        "        }\n"
        "    ]\n"
        "}\n");
    QCOMPARE(RunningOptionsToJson(list), expected);

    // Every value is a string, and there is nothing but the one array.
    const QJsonObject root = QJsonDocument::fromJson(RunningOptionsToJson(list).toUtf8()).object();
    QCOMPARE(root.keys(), QStringList(QStringLiteral("RunningOpition")));
    for (const QJsonValue &element : root.value(QStringLiteral("RunningOpition")).toArray()) {
        const QJsonObject object = element.toObject();
        QCOMPARE(object.size(), 6);
        for (const QJsonValue &value : object)
            QVERIFY(value.isString());
    }
}

void tst_RunningOptions::emptyListShape()
{
    QCOMPARE(RunningOptionsToJson({}), QStringLiteral("{\n    \"RunningOpition\": [\n    ]\n}\n"));
}

void tst_RunningOptions::thicknessText_data()
{
    QTest::addColumn<double>("thickness");
    QTest::addColumn<QString>("text");

    QTest::newRow("1.25") << 1.25 << "1.25";
    QTest::newRow("0.1") << 0.1 << "0.1";
    QTest::newRow("one million") << 1e6 << "1e+06";
    QTest::newRow("six digits") << 123456.0 << "123456";
    QTest::newRow("rounded to six digits") << 123456.7 << "123457";
    QTest::newRow("seven digits") << 1234567.0 << "1.23457e+06";
    QTest::newRow("small") << 0.0001 << "0.0001";
    QTest::newRow("smaller") << 0.00001 << "1e-05";
    QTest::newRow("zero") << 0.0 << "0";
    QTest::newRow("negative") << -2.5 << "-2.5";
    QTest::newRow("one third") << 1.0 / 3.0 << "0.333333";
}

void tst_RunningOptions::thicknessText()
{
    QFETCH(double, thickness);
    QFETCH(QString, text);
    const QString json = RunningOptionsToJson({entry(1, 0, QString(), thickness, 0, 0)});
    const QJsonObject object = QJsonDocument::fromJson(json.toUtf8())
                                   .object()
                                   .value(QStringLiteral("RunningOpition"))
                                   .toArray()
                                   .at(0)
                                   .toObject();
    QCOMPARE(object.value(QStringLiteral("Thickness")).toString(), text);
}

void tst_RunningOptions::readFields_data()
{
    QTest::addColumn<QByteArray>("object");
    QTest::addColumn<quint32>("color");
    QTest::addColumn<quint32>("type");
    QTest::addColumn<QString>("material");
    QTest::addColumn<double>("thickness");
    QTest::addColumn<quint32>("craft");
    QTest::addColumn<quint32>("power");

    QTest::newRow("all fields")
        << QByteArray(R"({"Color":"16711680","Type":"Fiber","MaterialName":"Steel","Thickness":"1.25","Craft":"Deep Carving","LaserPower":"30"})")
        << 16711680u << 3u << "Steel" << 1.25 << 3u << 30u;
    QTest::newRow("exponent thickness")
        << QByteArray(R"({"Thickness":"1e+06","Type":"Semiconductor","Craft":"Vision Mark"})")
        << 0u << 4u << "" << 1e6 << 4u << 0u;
    QTest::newRow("largest colour") << QByteArray(R"({"Color":"4294967295"})") << 4294967295u << 0u << ""
                                    << 0.0 << 0u << 0u;
    QTest::newRow("empty object gives zeros, not defaults")
        << QByteArray("{}") << 0u << 0u << "" << 0.0 << 0u << 0u;
    QTest::newRow("unknown tube and craft names")
        << QByteArray(R"({"Type":"CO2","Craft":"Engrave","LaserPower":"80"})") << 0u << 0u << "" << 0.0
        << 0u << 80u;
    QTest::newRow("names are case sensitive")
        << QByteArray(R"({"Type":"fiber","Craft":"tracing"})") << 0u << 0u << "" << 0.0 << 0u << 0u;
    QTest::newRow("garbage numbers as text")
        << QByteArray(R"({"Color":"red","Thickness":"thick","LaserPower":"12W"})") << 0u << 0u << ""
        << 0.0 << 0u << 0u;
    QTest::newRow("garbage negative power") << QByteArray(R"({"LaserPower":"-5","Color":"-1"})") << 0u
                                            << 0u << "" << 0.0 << 0u << 0u;
    QTest::newRow("garbage overflowing colour") << QByteArray(R"({"Color":"4294967296"})") << 0u << 0u
                                                << "" << 0.0 << 0u << 0u;
    QTest::newRow("garbage hexadecimal") << QByteArray(R"({"Color":"0xFF","LaserPower":"1.5"})") << 0u
                                         << 0u << "" << 0.0 << 0u << 0u;
    QTest::newRow("garbage comma decimal") << QByteArray(R"({"Thickness":"1,5"})") << 0u << 0u << ""
                                           << 0.0 << 0u << 0u;
    QTest::newRow("garbage JSON numbers instead of strings")
        << QByteArray(R"({"Color":255,"Type":1,"Thickness":1.5,"Craft":2,"LaserPower":60,"MaterialName":7})")
        << 0u << 0u << "" << 0.0 << 0u << 0u;
    QTest::newRow("garbage nested values")
        << QByteArray(R"({"Color":["255"],"MaterialName":{"a":"b"},"Type":null,"Thickness":true})") << 0u
        << 0u << "" << 0.0 << 0u << 0u;
    QTest::newRow("escaped material name") << QByteArray(R"({"MaterialName":"a\"b\\c\u00e9"})") << 0u
                                           << 0u << QStringLiteral("a\"b\\cé") << 0.0 << 0u << 0u;
}

void tst_RunningOptions::readFields()
{
    QFETCH(QByteArray, object);
    QFETCH(quint32, color);
    QFETCH(quint32, type);
    QFETCH(QString, material);
    QFETCH(double, thickness);
    QFETCH(quint32, craft);
    QFETCH(quint32, power);

    RunningOptionList list = sentinelList();
    QVERIFY(RunningOptionsFromJson(QString::fromUtf8(wrap(object)), list));
    QCOMPARE(list.size(), size_t(1));
    const RunningOptionEntry &e = list.front();
    QCOMPARE(e.color, color);
    QCOMPARE(e.options.type, type);
    QCOMPARE(e.options.MaterialName(), material);
    QCOMPARE(e.options.thickness, thickness);
    QCOMPARE(e.options.craft, craft);
    QCOMPARE(e.options.laserPower, power);
    QCOMPARE(e.options.secondText[0], '\0');
}

void tst_RunningOptions::readReplacesList_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("count");

    QTest::newRow("empty array empties") << QByteArray(R"({"RunningOpition":[]})") << 0;
    QTest::newRow("two entries") << wrap(R"({"Color":"1"},{"Color":"2"})") << 2;
    QTest::newRow("other keys ignored") << QByteArray(R"({"Other":1,"RunningOpition":[{}]})") << 1;
    QTest::newRow("garbage: key missing") << QByteArray(R"({"Other":[{}]})") << 0;
    QTest::newRow("garbage: key spelt the usual way") << QByteArray(R"({"RunningOption":[{}]})") << 0;
    QTest::newRow("garbage: not an array") << QByteArray(R"({"RunningOpition":{"Color":"1"}})") << 0;
    QTest::newRow("garbage: a string") << QByteArray(R"({"RunningOpition":"[]"})") << 0;
    QTest::newRow("garbage: elements not objects") << wrap(R"(1,"x",null,[],true)") << 5;
    QTest::newRow("garbage: empty object") << QByteArray("{}") << 0;
    QTest::newRow("garbage: empty array") << QByteArray("[]") << 0;
    QTest::newRow("garbage: root is an array") << QByteArray(R"([{"RunningOpition":[{}]}])") << 0;
}

void tst_RunningOptions::readReplacesList()
{
    QFETCH(QByteArray, json);
    QFETCH(int, count);

    RunningOptionList list = sentinelList();
    QVERIFY(RunningOptionsFromJson(QString::fromUtf8(json), list));
    QCOMPARE(int(list.size()), count);
    // Whatever an element is, its entry is read from strings that are not
    // there: all zeros, not the record's defaults.
    for (const RunningOptionEntry &e : list) {
        QCOMPARE(e.options.type, 0u);
        QCOMPARE(e.options.laserPower, 0u);
        QCOMPARE(e.options.thickness, 0.0);
        QCOMPARE(e.options.craft, 0u);
        QCOMPARE(e.options.materialName[0], '\0');
    }
}

void tst_RunningOptions::garbageKeepsList_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("empty") << "";
    QTest::newRow("blank") << "  \n ";
    QTest::newRow("not JSON") << "RunningOpition";
    QTest::newRow("truncated") << R"({"RunningOpition":[{"Color":"1"})";
    QTest::newRow("trailing comma") << R"({"RunningOpition":[],})";
    QTest::newRow("two documents") << R"({"RunningOpition":[]}{})";
    QTest::newRow("bare string") << R"("RunningOpition")";
    QTest::newRow("nul inside") << QString::fromUtf8("{\"RunningOpition\":[\0]}", 21);
}

void tst_RunningOptions::garbageKeepsList()
{
    QFETCH(QString, text);
    RunningOptionList list = sentinelList();
    QVERIFY(!RunningOptionsFromJson(text, list));
    QCOMPARE(list.size(), size_t(1));
    QCOMPARE(list.front().color, 0xFF0000u);
    QCOMPARE(list.front().options.MaterialName(), QStringLiteral("Steel"));
    QCOMPARE(list.front().options.laserPower, 30u);
}

void tst_RunningOptions::roundTrip()
{
    RunningOptionList written = {entry(1, 4, QStringLiteral("MDF"), 3.175, 1, 40),
                                 entry(2, 2, QStringLiteral("Glas \"klar\" / 透明"), 0.1, 4, 150),
                                 entry(1, 0, QString(), 1e6, 3, 0)};
    std::strcpy(written[0].options.secondText, "not stored");

    RunningOptionList read;
    QVERIFY(RunningOptionsFromJson(RunningOptionsToJson(written), read));
    QCOMPARE(read.size(), written.size());
    for (size_t i = 0; i < read.size(); ++i) {
        QCOMPARE(read[i].color, written[i].color);
        QCOMPARE(read[i].options.type, written[i].options.type);
        QCOMPARE(read[i].options.MaterialName(), written[i].options.MaterialName());
        QCOMPARE(read[i].options.thickness, written[i].options.thickness);
        QCOMPARE(read[i].options.craft, written[i].options.craft);
        QCOMPARE(read[i].options.laserPower, written[i].options.laserPower);
    }
    QCOMPARE(read[0].options.secondText[0], '\0');
    // Written again, the text is the same.
    QCOMPARE(RunningOptionsToJson(read), RunningOptionsToJson(written));
}

void tst_RunningOptions::materialNameCut_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("keptBytes");

    const QString a255(255, QLatin1Char('a'));
    QTest::newRow("256 ASCII bytes kept whole") << QString(256, QLatin1Char('a')) << 256;
    QTest::newRow("257 ASCII bytes cut to 256") << QString(257, QLatin1Char('a')) << 256;
    QTest::newRow("1000 ASCII bytes cut to 256") << QString(1000, QLatin1Char('b')) << 256;
    QTest::newRow("two-byte character ends at 256") << QString(254, QLatin1Char('a')) + QStringLiteral("é")
                                                    << 256;
    QTest::newRow("two-byte character straddles 256") << a255 + QStringLiteral("é") << 255;
    QTest::newRow("three-byte character straddles 256, one in")
        << QString(254, QLatin1Char('a')) + QStringLiteral("木") << 254;
    QTest::newRow("three-byte character straddles 256, two in") << a255 + QStringLiteral("木") << 255;
    QTest::newRow("three-byte characters only") << QString(100, QChar(0x6728)) << 255;
    QTest::newRow("four-byte character straddles 256")
        << QString(253, QLatin1Char('a')) + QStringLiteral("\U0001F525") << 253;
    QTest::newRow("two-byte characters only") << QString(200, QChar(0xE9)) << 256;
    QTest::newRow("two-byte characters, odd start")
        << QStringLiteral("a") + QString(200, QChar(0xE9)) << 255;
}

void tst_RunningOptions::materialNameCut()
{
    QFETCH(QString, name);
    QFETCH(int, keptBytes);
    const QByteArray utf8 = name.toUtf8();

    // Directly, and through the JSON reader.
    CRunningOptions direct;
    std::memset(direct.secondText, 'Z', sizeof direct.secondText);
    direct.SetMaterialName(name);
    QCOMPARE(int(std::strlen(direct.materialName)), keptBytes);
    QCOMPARE(QByteArray(direct.materialName), utf8.left(keptBytes));
    QVERIFY(validUtf8(direct.materialName));
    // The neighbouring buffer is untouched.
    QCOMPARE(direct.secondText[0], 'Z');

    QJsonObject object;
    object.insert(QStringLiteral("MaterialName"), name);
    QJsonObject root;
    root.insert(QStringLiteral("RunningOpition"), QJsonArray{object});
    RunningOptionList list;
    QVERIFY(RunningOptionsFromJson(QString::fromUtf8(QJsonDocument(root).toJson()), list));
    QCOMPARE(list.size(), size_t(1));
    QCOMPARE(QByteArray(list.front().options.materialName), utf8.left(keptBytes));
    QVERIFY(name.startsWith(list.front().options.MaterialName()));
}

void tst_RunningOptions::tubeNames_data()
{
    QTest::addColumn<quint32>("index");
    QTest::addColumn<QString>("name");

    QTest::newRow("0") << 0u << "Glass";
    QTest::newRow("1") << 1u << "RFNoBurning";
    QTest::newRow("2") << 2u << "RFBurning";
    QTest::newRow("3") << 3u << "Fiber";
    QTest::newRow("4") << 4u << "Semiconductor";
}

void tst_RunningOptions::tubeNames()
{
    QFETCH(quint32, index);
    QFETCH(QString, name);
    QCOMPARE(TubeTypeName(index), name);
    QCOMPARE(TubeTypeIndex(name), index);

    // Past the table, the first name; unknown names, index 0.
    QCOMPARE(TubeTypeName(5), QStringLiteral("Glass"));
    QCOMPARE(TubeTypeName(0xFFFFFFFFu), QStringLiteral("Glass"));
    QCOMPARE(TubeTypeIndex(name.toUpper()), 0u);
    QCOMPARE(TubeTypeIndex(name + QLatin1Char(' ')), 0u);
    QCOMPARE(TubeTypeIndex(QString()), 0u);
}

void tst_RunningOptions::craftNames_data()
{
    QTest::addColumn<quint32>("index");
    QTest::addColumn<QString>("name");

    QTest::newRow("0") << 0u << "Cutting";
    QTest::newRow("1") << 1u << "Tracing";
    QTest::newRow("2") << 2u << "Shallow Carving";
    QTest::newRow("3") << 3u << "Deep Carving";
    QTest::newRow("4") << 4u << "Vision Mark";
}

void tst_RunningOptions::craftNames()
{
    QFETCH(quint32, index);
    QFETCH(QString, name);
    QCOMPARE(CraftName(index), name);
    QCOMPARE(CraftIndex(name), index);

    QCOMPARE(CraftName(5), QStringLiteral("Cutting"));
    QCOMPARE(CraftName(1000), QStringLiteral("Cutting"));
    QCOMPARE(CraftIndex(name.toUpper()), 0u);
    QCOMPARE(CraftIndex(QLatin1Char(' ') + name), 0u);
}

void tst_RunningOptions::contextFindSetRemove()
{
    TestEnvironment env;
    QCOMPARE(g_LayerContext.FindRunningOption(1), nullptr);

    g_LayerContext.SetRunningOption(1, entry(1, 3, QStringLiteral("Steel"), 2.0, 0, 30).options);
    g_LayerContext.SetRunningOption(2, entry(2, 0, QStringLiteral("Wood"), 3.0, 2, 60).options);
    g_LayerContext.SetRunningOption(1, entry(1, 1, QStringLiteral("Brass"), 1.0, 1, 20).options);

    // Setting a known colour replaces its entry in place.
    QCOMPARE(g_LayerContext.RunningOptions().size(), size_t(2));
    QCOMPARE(g_LayerContext.RunningOptions()[0].color, 1u);
    QCOMPARE(g_LayerContext.RunningOptions()[1].color, 2u);
    QVERIFY(g_LayerContext.FindRunningOption(1));
    QCOMPARE(g_LayerContext.FindRunningOption(1)->MaterialName(), QStringLiteral("Brass"));
    QCOMPARE(g_LayerContext.FindRunningOption(2)->laserPower, 60u);
    QCOMPARE(g_LayerContext.FindRunningOption(3), nullptr);

    g_LayerContext.RemoveRunningOption(3);
    QCOMPARE(g_LayerContext.RunningOptions().size(), size_t(2));
    g_LayerContext.RemoveRunningOption(1);
    QCOMPARE(g_LayerContext.RunningOptions().size(), size_t(1));
    QCOMPARE(g_LayerContext.FindRunningOption(1), nullptr);
    QCOMPARE(g_LayerContext.FindRunningOption(2)->MaterialName(), QStringLiteral("Wood"));

    // A file may hold a colour twice: the first entry answers and goes first.
    QVERIFY(g_LayerContext.SetRunningOptionsJson(QString::fromUtf8(
        wrap(R"({"Color":"5","MaterialName":"first"},{"Color":"5","MaterialName":"second"})"))));
    QCOMPARE(g_LayerContext.FindRunningOption(5)->MaterialName(), QStringLiteral("first"));
    g_LayerContext.SetRunningOption(5, entry(5, 0, QStringLiteral("third"), 1.0, 0, 0).options);
    QCOMPARE(g_LayerContext.RunningOptions()[1].options.MaterialName(), QStringLiteral("second"));
    g_LayerContext.RemoveRunningOption(5);
    QCOMPARE(g_LayerContext.RunningOptions().size(), size_t(1));
    QCOMPARE(g_LayerContext.FindRunningOption(5)->MaterialName(), QStringLiteral("second"));
}

void tst_RunningOptions::contextJson()
{
    TestEnvironment env;
    g_LayerContext.SetRunningOption(7, entry(7, 2, QStringLiteral("Leather"), 1.5, 1, 45).options);
    const QString json = g_LayerContext.RunningOptionsJson();
    QCOMPARE(json, RunningOptionsToJson(g_LayerContext.RunningOptions()));
    QVERIFY(json.contains(QLatin1String("\"Leather\"")));

    QVERIFY(!g_LayerContext.SetRunningOptionsJson(QStringLiteral("{")));
    QCOMPARE(g_LayerContext.RunningOptions().size(), size_t(1));
    QVERIFY(g_LayerContext.SetRunningOptionsJson(QStringLiteral(R"({"RunningOpition":[]})")));
    QCOMPARE(g_LayerContext.RunningOptions().size(), size_t(0));
    QVERIFY(g_LayerContext.SetRunningOptionsJson(json));
    QCOMPARE(g_LayerContext.FindRunningOption(7)->laserPower, 45u);
}

void tst_RunningOptions::boundedCopy_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("10 into 8 keeps 7") << 8 << QByteArray("0123456789") << QByteArray("0123456\0", 8);
    QTest::newRow("7 into 8 whole") << 8 << QByteArray("0123456") << QByteArray("0123456\0", 8);
    QTest::newRow("8 into 8 keeps 7") << 8 << QByteArray("01234567") << QByteArray("0123456\0", 8);
    QTest::newRow("short source zero-filled") << 8 << QByteArray("ab") << QByteArray("ab\0\0\0\0\0\0", 8);
    QTest::newRow("empty source") << 4 << QByteArray() << QByteArray("\0\0\0\0", 4);
    QTest::newRow("size 1 holds only the zero") << 1 << QByteArray("abc") << QByteArray("\0", 1);
    QTest::newRow("zero inside the source copied") << 6 << QByteArray("a\0b", 3)
                                                   << QByteArray("a\0b\0\0\0", 6);
}

void tst_RunningOptions::boundedCopy()
{
    QFETCH(int, size);
    QFETCH(QByteArray, source);
    QFETCH(QByteArray, expected);

    // Guard bytes after the destination catch a write past its end.
    QByteArray buffer(size + 8, '#');
    QVERIFY(BoundedCopy(buffer.data(), size_t(size), source.constData(), size_t(source.size())));
    QCOMPARE(buffer.left(size), expected);
    QCOMPARE(buffer.mid(size), QByteArray(8, '#'));
}

void tst_RunningOptions::boundedCopyRefuses()
{
    char destination[4] = {'x', 'x', 'x', 'x'};
    QVERIFY(!BoundedCopy(nullptr, 4, "abc", 3));
    QVERIFY(!BoundedCopy(destination, 4, nullptr, 3));
    QVERIFY(!BoundedCopy(destination, 0, "abc", 3));
    QVERIFY(!BoundedCopyUtf8(nullptr, 4, QByteArray("abc")));
    QVERIFY(!BoundedCopyUtf8(destination, 0, QByteArray("abc")));
    QCOMPARE(QByteArray(destination, 4), QByteArray("xxxx"));
}

void tst_RunningOptions::boundedCopyUtf8_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("fits") << 8 << QByteArray("abc") << QByteArray("abc");
    QTest::newRow("ASCII cut like BoundedCopy") << 8 << QByteArray("0123456789") << QByteArray("0123456");
    QTest::newRow("two-byte character cut whole") << 4 << QByteArray("ab\xC3\xA9") << QByteArray("ab");
    QTest::newRow("two-byte character fits") << 5 << QByteArray("ab\xC3\xA9") << QByteArray("ab\xC3\xA9");
    QTest::newRow("three-byte character cut whole") << 5 << QByteArray("ab\xE6\x9C\xA8")
                                                    << QByteArray("ab");
    QTest::newRow("first character too long") << 3 << QByteArray("\xE6\x9C\xA8") << QByteArray();
    QTest::newRow("four-byte character cut whole") << 6 << QByteArray("a\xF0\x9F\x94\xA5z")
                                                   << QByteArray("a\xF0\x9F\x94\xA5");
    QTest::newRow("four-byte character cut at 3 of 4") << 5 << QByteArray("a\xF0\x9F\x94\xA5")
                                                       << QByteArray("a");
    QTest::newRow("garbage: continuation bytes only") << 3 << QByteArray("\x80\x80\x80\x80")
                                                      << QByteArray();
}

void tst_RunningOptions::boundedCopyUtf8()
{
    QFETCH(int, size);
    QFETCH(QByteArray, source);
    QFETCH(QByteArray, expected);

    QByteArray buffer(size + 8, '#');
    QVERIFY(BoundedCopyUtf8(buffer.data(), size_t(size), source));
    QCOMPARE(QByteArray(buffer.constData()), expected);
    QCOMPARE(buffer.left(size), expected + QByteArray(size - expected.size(), '\0'));
    QCOMPARE(buffer.mid(size), QByteArray(8, '#'));
}

QTEST_GUILESS_MAIN(tst_RunningOptions)
#include "tst_runningoptions.moc"
