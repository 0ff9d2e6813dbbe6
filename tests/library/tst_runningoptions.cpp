#include "library/clayercontext.h"
#include "library/crunningoptions.h"
#include "testenvironment.h"

#include <QTest>

#include <cstring>

namespace {

RunningOptionEntry entry(quint32 color, quint32 type, const QString &material, double thickness,
                         quint32 craft, quint32 power)
{
    RunningOptionEntry e;
    e.color = color;
    e.options = {type, power, thickness, craft, {}, {}};
    e.options.SetMaterialName(material);
    return e;
}

QString wrap(const QByteArray &entries)
{
    return QString::fromUtf8("{\"RunningOpition\": [" + entries + "]}");
}

// One line per entry: colour, tube, material, thickness, craft, power, and
// whether the unused second text is empty.
QString dump(const RunningOptionList &list)
{
    QStringList lines;
    for (const RunningOptionEntry &e : list) {
        lines << QStringLiteral("%1 %2 %3 %4 %5 %6%7").arg(e.color).arg(e.options.type)
                     .arg(e.options.MaterialName()).arg(e.options.thickness).arg(e.options.craft)
                     .arg(e.options.laserPower).arg(e.options.secondText[0] ? " second" : "");
    }
    return lines.join('\n');
}

const RunningOptionList kSentinel = {entry(0xFF0000, 3, "Steel", 2.0, 0, 30)};

} // namespace

class tst_RunningOptions : public QObject
{
    Q_OBJECT

private slots:
    // The record's layout is the host's; the defaults are what a layer starts with.
    void defaults()
    {
        QCOMPARE(dump({RunningOptionEntry()}), QStringLiteral("0 0  1 2 80"));
        QCOMPARE(sizeof(CRunningOptions::materialName), size_t(257));
        QCOMPARE(sizeof(CRunningOptions::secondText), size_t(257));
    }

    void jsonText()
    {
        // Thicknesses with six significant digits; out-of-range tube and craft as the first name.
        const RunningOptionList list = {entry(255, 1, "Acrylic", 123456.7, 0, 60),
                                        entry(0x00FF00, 7, QStringLiteral("木板"), 1234567.0, 9, 100)};
        QCOMPARE(RunningOptionsToJson(list), QStringLiteral(
            "{\n    \"RunningOpition\": [\n"
            "        {\n            \"Color\": \"255\",\n            \"Craft\": \"Cutting\",\n"
            "            \"LaserPower\": \"60\",\n            \"MaterialName\": \"Acrylic\",\n"
            "            \"Thickness\": \"123457\",\n            \"Type\": \"RFNoBurning\"\n        },\n"
            "        {\n            \"Color\": \"65280\",\n            \"Craft\": \"Cutting\",\n"
            "            \"LaserPower\": \"100\",\n            \"MaterialName\": \"木板\",\n"
            "            \"Thickness\": \"1.23457e+06\",\n            \"Type\": \"Glass\"\n        }\n"
            "    ]\n}\n"));
    }

    void read_data()
    {
        QTest::addColumn<QString>("json");
        QTest::addColumn<bool>("read");
        QTest::addColumn<QString>("entries");
        const QString zeros = "0 0  0 0 0";
        auto row = [](const char *name, const QString &json, bool read, const QString &entries) {
            QTest::newRow(name) << json << read << entries;
        };
        row("all fields", wrap(R"({"Color":"16711680","Type":"Fiber","MaterialName":"Steel",
            "Thickness":"1.25","Craft":"Deep Carving","LaserPower":"30"})"), true, "16711680 3 Steel 1.25 3 30");
        row("unknown tube and craft names", wrap(R"({"Type":"CO2","Craft":"Engrave","LaserPower":"80"})"), true, "0 0  0 0 80");
        row("two entries, the order kept", wrap(R"({"Color":"2"},{"Color":"1"})"), true, "2 0  0 0 0\n1 0  0 0 0");
        row("empty array empties", R"({"RunningOpition":[]})", true, "");
        for (const char *garbage : {R"({"LaserPower":"-5","Color":"4294967296"})",
                                    R"({"Color":255,"Type":1,"Thickness":1.5,"Craft":2,"LaserPower":60,"MaterialName":7})"})
            QTest::addRow("garbage reads as zeros: %s", garbage) << wrap(garbage) << true << zeros;
        row("garbage: key spelt the usual way", R"({"RunningOption":[{}]})", true, "");
        // Text that does not parse leaves the list as it was.
        const QString kept = dump(kSentinel);
        row("refused: empty", "", false, kept);
        row("refused: truncated", R"({"RunningOpition":[{"Color":"1"})", false, kept);
    }

    void read()
    {
        QFETCH(QString, json);
        QFETCH(bool, read);
        QFETCH(QString, entries);
        RunningOptionList list = kSentinel;
        QCOMPARE(RunningOptionsFromJson(json, list), read);
        QCOMPARE(dump(list), entries);
    }

    void materialNameCut_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("keptBytes");
        const QString a253(253, 'a');
        QTest::newRow("256 ASCII bytes kept whole") << QString(256, 'a') << 256;
        QTest::newRow("257 ASCII bytes cut to 256") << QString(257, 'a') << 256;
        QTest::newRow("two-byte character straddles 256") << a253 + "aa" + QStringLiteral("é") << 255;
        QTest::newRow("four-byte character straddles 256") << a253 + QStringLiteral("\U0001F525") << 253;
    }

    // Cut at a character boundary, the rest of the field zeros, the next field untouched.
    void materialNameCut()
    {
        QFETCH(QString, name);
        QFETCH(int, keptBytes);
        const QByteArray kept = name.toUtf8().left(keptBytes);
        CRunningOptions direct;
        std::memset(direct.materialName, 'Z', sizeof direct.materialName);
        std::memset(direct.secondText, 'Z', sizeof direct.secondText);
        direct.SetMaterialName(name);
        QCOMPARE(QByteArray(direct.materialName, kRunningTextSize), kept + QByteArray(kRunningTextSize - keptBytes, '\0'));
        QCOMPARE(direct.secondText[0], 'Z');
    }

    // The module-wide list: one entry per colour, replaced in place; of a
    // colour given twice by a file the first answers, then the second.
    void context()
    {
        TestEnvironment env;
        g_LayerContext.SetRunningOption(1, entry(1, 3, "Steel", 2.0, 0, 30).options);
        g_LayerContext.SetRunningOption(2, entry(2, 0, "Wood", 3.0, 2, 60).options);
        g_LayerContext.SetRunningOption(1, entry(1, 1, "Brass", 1.0, 1, 20).options);
        QCOMPARE(dump(g_LayerContext.RunningOptions()), QStringLiteral("1 1 Brass 1 1 20\n2 0 Wood 3 2 60"));
        QCOMPARE(g_LayerContext.FindRunningOption(3), nullptr);
        g_LayerContext.RemoveRunningOption(1);
        QCOMPARE(g_LayerContext.RunningOptionsJson(), RunningOptionsToJson({entry(2, 0, "Wood", 3.0, 2, 60)}));

        QVERIFY(g_LayerContext.SetRunningOptionsJson(wrap(R"({"Color":"5","MaterialName":"first"},{"Color":"5","MaterialName":"second"})")));
        QCOMPARE(g_LayerContext.FindRunningOption(5)->MaterialName(), QStringLiteral("first"));
        g_LayerContext.SetRunningOption(5, entry(5, 0, "third", 1.0, 0, 0).options);
        QCOMPARE(dump(g_LayerContext.RunningOptions()), QStringLiteral("5 0 third 1 0 0\n5 0 second 0 0 0"));
        g_LayerContext.RemoveRunningOption(5);
        QCOMPARE(g_LayerContext.FindRunningOption(5)->MaterialName(), QStringLiteral("second"));
    }
};

QTEST_GUILESS_MAIN(tst_RunningOptions)
#include "tst_runningoptions.moc"
