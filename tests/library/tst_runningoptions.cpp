#include "library/clayercontext.h"
#include "library/crunningoptions.h"
#include "support/texthelpers.h"
#include "testenvironment.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <cstring>

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

// Each reads as all zeros, not as the record's defaults.
const char *const kGarbageObjects[] = {
    R"({})",
    R"({"Type":"fiber","Craft":"tracing"})",
    R"({"Color":"red","Thickness":"thick","LaserPower":"12W"})",
    R"({"LaserPower":"-5","Color":"-1"})",
    R"({"Color":"4294967296"})",
    R"({"Color":"0xFF","LaserPower":"1.5"})",
    R"({"Thickness":"1,5"})",
    R"({"Color":255,"Type":1,"Thickness":1.5,"Craft":2,"LaserPower":60,"MaterialName":7})",
    R"({"Color":["255"],"MaterialName":{"a":"b"},"Type":null,"Thickness":true})"};

} // namespace

Q_DECLARE_METATYPE(RunningOptionEntry)

class tst_RunningOptions : public QObject
{
    Q_OBJECT

private slots:
    void defaults()
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

    void jsonText()
    {
        const RunningOptionList list = {entry(255, 1, QStringLiteral("Acrylic"), 3.0, 0, 60),
                                        entry(0x00FF00, 7, QStringLiteral("木板"), 0.5, 9, 100)};
        QCOMPARE(RunningOptionsToJson(list), QStringLiteral(
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
            "}\n"));
        QCOMPARE(RunningOptionsToJson({}), QStringLiteral("{\n    \"RunningOpition\": [\n    ]\n}\n"));
    }

    void thicknessText_data()
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

    void thicknessText()
    {
        QFETCH(double, thickness);
        QFETCH(QString, text);
        const QString json = RunningOptionsToJson({entry(1, 0, QString(), thickness, 0, 0)});
        QVERIFY2(json.contains(QStringLiteral("\"Thickness\": \"%1\"").arg(text)), qPrintable(json));
    }

    void readFields_data()
    {
        QTest::addColumn<QByteArray>("object");
        QTest::addColumn<RunningOptionEntry>("expected");
        QTest::newRow("all fields")
            << QByteArray(R"({"Color":"16711680","Type":"Fiber","MaterialName":"Steel","Thickness":"1.25","Craft":"Deep Carving","LaserPower":"30"})")
            << entry(16711680, 3, QStringLiteral("Steel"), 1.25, 3, 30);
        QTest::newRow("exponent thickness")
            << QByteArray(R"({"Thickness":"1e+06","Type":"Semiconductor","Craft":"Vision Mark"})")
            << entry(0, 4, QString(), 1e6, 4, 0);
        QTest::newRow("largest colour") << QByteArray(R"({"Color":"4294967295"})")
                                        << entry(4294967295u, 0, QString(), 0.0, 0, 0);
        QTest::newRow("unknown tube and craft names")
            << QByteArray(R"({"Type":"CO2","Craft":"Engrave","LaserPower":"80"})")
            << entry(0, 0, QString(), 0.0, 0, 80);
        QTest::newRow("escaped material name")
            << QByteArray("{\"MaterialName\":\"a\\\"b\\\\c\\u00e9\"}")
            << entry(0, 0, QStringLiteral("a\"b\\cé"), 0.0, 0, 0);
        for (const char *object : kGarbageObjects) {
            QTest::addRow("garbage reads as zeros: %s", object)
                << QByteArray(object) << entry(0, 0, QString(), 0.0, 0, 0);
        }
    }

    void readFields()
    {
        QFETCH(QByteArray, object);
        QFETCH(RunningOptionEntry, expected);
        RunningOptionList list = sentinelList();
        QVERIFY(RunningOptionsFromJson(QString::fromUtf8(wrap(object)), list));
        QCOMPARE(list.size(), size_t(1));
        const RunningOptionEntry &e = list.front();
        QCOMPARE(e.color, expected.color);
        QCOMPARE(e.options.type, expected.options.type);
        QCOMPARE(e.options.MaterialName(), expected.options.MaterialName());
        QCOMPARE(e.options.thickness, expected.options.thickness);
        QCOMPARE(e.options.craft, expected.options.craft);
        QCOMPARE(e.options.laserPower, expected.options.laserPower);
        QCOMPARE(e.options.secondText[0], '\0');
    }

    void readReplacesList_data()
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

    void readReplacesList()
    {
        QFETCH(QByteArray, json);
        QFETCH(int, count);
        RunningOptionList list = sentinelList();
        QVERIFY(RunningOptionsFromJson(QString::fromUtf8(json), list));
        QCOMPARE(int(list.size()), count);
        for (const RunningOptionEntry &e : list) {
            QCOMPARE(e.options.type, 0u);
            QCOMPARE(e.options.laserPower, 0u);
            QCOMPARE(e.options.thickness, 0.0);
            QCOMPARE(e.options.craft, 0u);
            QCOMPARE(e.options.materialName[0], '\0');
        }
    }

    void garbageKeepsList_data()
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

    void garbageKeepsList()
    {
        QFETCH(QString, text);
        RunningOptionList list = sentinelList();
        QVERIFY(!RunningOptionsFromJson(text, list));
        QCOMPARE(RunningOptionsToJson(list), RunningOptionsToJson(sentinelList()));
    }

    void roundTrip()
    {
        RunningOptionList written = {entry(1, 4, QStringLiteral("MDF"), 3.175, 1, 40),
                                     entry(2, 2, QStringLiteral("Glas \"klar\" / 透明"), 0.1, 4, 150),
                                     entry(1, 0, QString(), 1e6, 3, 0)};
        std::strcpy(written[0].options.secondText, "not stored");

        RunningOptionList read;
        QVERIFY(RunningOptionsFromJson(RunningOptionsToJson(written), read));
        QCOMPARE(read.size(), written.size());
        QCOMPARE(read[0].options.thickness, 3.175);
        QCOMPARE(read[1].options.MaterialName(), written[1].options.MaterialName());
        QCOMPARE(read[0].options.secondText[0], '\0');
        QCOMPARE(RunningOptionsToJson(read), RunningOptionsToJson(written));
    }

    void materialNameCut_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("keptBytes");
        const QString a253(253, QLatin1Char('a'));
        QTest::newRow("256 ASCII bytes kept whole") << QString(256, QLatin1Char('a')) << 256;
        QTest::newRow("257 ASCII bytes cut to 256") << QString(257, QLatin1Char('a')) << 256;
        QTest::newRow("1000 ASCII bytes cut to 256") << QString(1000, QLatin1Char('b')) << 256;
        QTest::newRow("two-byte character ends at 256") << a253 + "a" + QStringLiteral("é") << 256;
        QTest::newRow("two-byte character straddles 256") << a253 + "aa" + QStringLiteral("é") << 255;
        QTest::newRow("three-byte character straddles 256, one in") << a253 + "a" + QStringLiteral("木") << 254;
        QTest::newRow("three-byte character straddles 256, two in") << a253 + "aa" + QStringLiteral("木") << 255;
        QTest::newRow("three-byte characters only") << QString(100, QChar(0x6728)) << 255;
        QTest::newRow("four-byte character straddles 256") << a253 + QStringLiteral("\U0001F525") << 253;
        QTest::newRow("two-byte characters only") << QString(200, QChar(0xE9)) << 256;
        QTest::newRow("two-byte characters, odd start") << "a" + QString(200, QChar(0xE9)) << 255;
    }

    void materialNameCut()
    {
        QFETCH(QString, name);
        QFETCH(int, keptBytes);
        const QByteArray kept = name.toUtf8().left(keptBytes);

        CRunningOptions direct;
        std::memset(direct.secondText, 'Z', sizeof direct.secondText);
        direct.SetMaterialName(name);
        QCOMPARE(QByteArray(direct.materialName), kept);
        QCOMPARE(direct.secondText[0], 'Z');

        QJsonObject object;
        object.insert(QStringLiteral("MaterialName"), name);
        QJsonObject root;
        root.insert(QStringLiteral("RunningOpition"), QJsonArray{object});
        RunningOptionList list;
        QVERIFY(RunningOptionsFromJson(QString::fromUtf8(QJsonDocument(root).toJson()), list));
        QCOMPARE(QByteArray(list.front().options.materialName), kept);
    }

    void names_data()
    {
        QTest::addColumn<bool>("tube");
        QTest::addColumn<quint32>("index");
        QTest::addColumn<QString>("name");
        const char *tubes[] = {"Glass", "RFNoBurning", "RFBurning", "Fiber", "Semiconductor"};
        const char *crafts[] = {"Cutting", "Tracing", "Shallow Carving", "Deep Carving", "Vision Mark"};
        for (quint32 i = 0; i < 5; ++i) {
            QTest::addRow("tube %u", i) << true << i << QString::fromLatin1(tubes[i]);
            QTest::addRow("craft %u", i) << false << i << QString::fromLatin1(crafts[i]);
        }
    }

    void names()
    {
        QFETCH(bool, tube);
        QFETCH(quint32, index);
        QFETCH(QString, name);
        const auto toName = tube ? TubeTypeName : CraftName;
        const auto toIndex = tube ? TubeTypeIndex : CraftIndex;
        QCOMPARE(toName(index), name);
        QCOMPARE(toIndex(name), index);

        // Past the table, the first name; unknown names, index 0.
        QCOMPARE(toName(5), toName(0));
        QCOMPARE(toName(0xFFFFFFFFu), toName(0));
        QCOMPARE(toIndex(name.toUpper()), 0u);
        QCOMPARE(toIndex(name + QLatin1Char(' ')), 0u);
        QCOMPARE(toIndex(QLatin1Char(' ') + name), 0u);
        QCOMPARE(toIndex(QString()), 0u);
    }

    void contextFindSetRemove()
    {
        TestEnvironment env;
        QCOMPARE(g_LayerContext.FindRunningOption(1), nullptr);
        g_LayerContext.SetRunningOption(1, entry(1, 3, QStringLiteral("Steel"), 2.0, 0, 30).options);
        g_LayerContext.SetRunningOption(2, entry(2, 0, QStringLiteral("Wood"), 3.0, 2, 60).options);
        g_LayerContext.SetRunningOption(1, entry(1, 1, QStringLiteral("Brass"), 1.0, 1, 20).options);

        // Setting a known colour replaces its entry in place.
        QCOMPARE(g_LayerContext.RunningOptions().size(), size_t(2));
        QCOMPARE(g_LayerContext.RunningOptions()[0].color, 1u);
        QCOMPARE(g_LayerContext.FindRunningOption(1)->MaterialName(), QStringLiteral("Brass"));
        QCOMPARE(g_LayerContext.FindRunningOption(2)->laserPower, 60u);
        QCOMPARE(g_LayerContext.FindRunningOption(3), nullptr);

        g_LayerContext.RemoveRunningOption(3);
        QCOMPARE(g_LayerContext.RunningOptions().size(), size_t(2));
        g_LayerContext.RemoveRunningOption(1);
        QCOMPARE(g_LayerContext.RunningOptions().size(), size_t(1));
        QCOMPARE(g_LayerContext.FindRunningOption(1), nullptr);

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

    void contextJson()
    {
        TestEnvironment env;
        g_LayerContext.SetRunningOption(7, entry(7, 2, QStringLiteral("Leather"), 1.5, 1, 45).options);
        const QString json = g_LayerContext.RunningOptionsJson();
        QCOMPARE(json, RunningOptionsToJson(g_LayerContext.RunningOptions()));

        QVERIFY(!g_LayerContext.SetRunningOptionsJson(QStringLiteral("{")));
        QCOMPARE(g_LayerContext.RunningOptions().size(), size_t(1));
        QVERIFY(g_LayerContext.SetRunningOptionsJson(QStringLiteral(R"({"RunningOpition":[]})")));
        QCOMPARE(g_LayerContext.RunningOptions().size(), size_t(0));
        QVERIFY(g_LayerContext.SetRunningOptionsJson(json));
        QCOMPARE(g_LayerContext.FindRunningOption(7)->laserPower, 45u);
    }

    void boundedCopy_data()
    {
        QTest::addColumn<bool>("utf8");
        QTest::addColumn<int>("size");
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<QByteArray>("expected");

        QTest::newRow("10 into 8 keeps 7") << false << 8 << QByteArray("0123456789") << QByteArray("0123456");
        QTest::newRow("7 into 8 whole") << false << 8 << QByteArray("0123456") << QByteArray("0123456");
        QTest::newRow("8 into 8 keeps 7") << false << 8 << QByteArray("01234567") << QByteArray("0123456");
        QTest::newRow("short source zero-filled") << false << 8 << QByteArray("ab") << QByteArray("ab");
        QTest::newRow("empty source") << false << 4 << QByteArray() << QByteArray();
        QTest::newRow("size 1 holds only the zero") << false << 1 << QByteArray("abc") << QByteArray();
        QTest::newRow("zero inside the source copied") << false << 6 << QByteArray("a\0b", 3)
                                                       << QByteArray("a\0b", 3);
        QTest::newRow("utf8: fits") << true << 8 << QByteArray("abc") << QByteArray("abc");
        QTest::newRow("utf8: ASCII cut") << true << 8 << QByteArray("0123456789") << QByteArray("0123456");
        QTest::newRow("utf8: two-byte character cut whole") << true << 4 << QByteArray("ab\xC3\xA9") << QByteArray("ab");
        QTest::newRow("utf8: two-byte character fits") << true << 5 << QByteArray("ab\xC3\xA9") << QByteArray("ab\xC3\xA9");
        QTest::newRow("utf8: three-byte character cut whole") << true << 5 << QByteArray("ab\xE6\x9C\xA8") << QByteArray("ab");
        QTest::newRow("utf8: first character too long") << true << 3 << QByteArray("\xE6\x9C\xA8") << QByteArray();
        QTest::newRow("utf8: four-byte character kept") << true << 6 << QByteArray("a\xF0\x9F\x94\xA5z")
                                                        << QByteArray("a\xF0\x9F\x94\xA5");
        QTest::newRow("utf8: four-byte character cut at 3 of 4") << true << 5 << QByteArray("a\xF0\x9F\x94\xA5")
                                                                 << QByteArray("a");
        QTest::newRow("utf8: garbage continuation bytes only") << true << 3 << QByteArray("\x80\x80\x80\x80")
                                                               << QByteArray();
    }

    void boundedCopy()
    {
        QFETCH(bool, utf8);
        QFETCH(int, size);
        QFETCH(QByteArray, source);
        QFETCH(QByteArray, expected);

        // The destination is zero-filled past the copy; guard bytes catch a write past its end.
        QByteArray buffer(size + 8, '#');
        QVERIFY(utf8 ? BoundedCopyUtf8(buffer.data(), size_t(size), source)
                     : BoundedCopy(buffer.data(), size_t(size), source.constData(), size_t(source.size())));
        QCOMPARE(buffer.left(size), expected + QByteArray(size - expected.size(), '\0'));
        QCOMPARE(buffer.mid(size), QByteArray(8, '#'));
    }

    void boundedCopyRefuses()
    {
        char destination[4] = {'x', 'x', 'x', 'x'};
        QVERIFY(!BoundedCopy(nullptr, 4, "abc", 3));
        QVERIFY(!BoundedCopy(destination, 4, nullptr, 3));
        QVERIFY(!BoundedCopy(destination, 0, "abc", 3));
        QVERIFY(!BoundedCopyUtf8(nullptr, 4, QByteArray("abc")));
        QVERIFY(!BoundedCopyUtf8(destination, 0, QByteArray("abc")));
        QCOMPARE(QByteArray(destination, 4), QByteArray("xxxx"));
    }
};

QTEST_GUILESS_MAIN(tst_RunningOptions)
#include "tst_runningoptions.moc"
