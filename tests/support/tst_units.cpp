#include "library/clayercontext.h"
#include "support/units.h"
#include "testenvironment.h"

#include <QHash>
#include <QTest>

#include <cstring>

class tst_Units : public QObject
{
    Q_OBJECT

private slots:
    void convert_data();
    void convert();
    void unitLabels_data();
    void unitLabels();
};

void tst_Units::convert_data()
{
    // clang-format off
    QTest::addColumn<QString>("function");
    QTest::addColumn<int>("mode");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");

    // Modes 0 and 2 are inches, 1 and 3 millimetres, anything else millimetres
    // untouched by the speeds. Inch lengths stay unrounded, millimetres are
    // cut to two decimals, half away from zero.
    QTest::newRow("round: exact") << "Round2" << 0 << 12.34 << 12.34;
    QTest::newRow("round: zero") << "Round2" << 0 << 0.0 << 0.0;
    QTest::newRow("round: 1.005 times 100 is 100.49999999999999") << "Round2" << 0 << 1.005 << 1.0;
    QTest::newRow("round: 2.675 times 100 is exact 267.5") << "Round2" << 0 << 2.675 << 2.68;
    QTest::newRow("round: half up") << "Round2" << 0 << 0.125 << 0.13;
    QTest::newRow("round: half away from zero, negative") << "Round2" << 0 << -0.125 << -0.13;
    QTest::newRow("round: smallest negative half") << "Round2" << 0 << -0.005 << -0.01;
    QTest::newRow("round: below half, negative, no minus zero") << "Round2" << 0 << -0.004 << 0.0;
    QTest::newRow("round: negative 1.005") << "Round2" << 0 << -1.005 << -1.0;
    QTest::newRow("round: negative many decimals") << "Round2" << 0 << -3.14659 << -3.15;
    QTest::newRow("round: large") << "Round2" << 0 << 123456.789 << 123456.79;
    QTest::newRow("length out, inch/s: 25.4 mm is exactly 1") << "LengthToDisplay" << 0 << 25.4 << 1.0;
    QTest::newRow("length out, inch/s: unrounded") << "LengthToDisplay" << 0 << 1.0 << 1.0 / 25.4;
    QTest::newRow("length out, inch/s: negative") << "LengthToDisplay" << 0 << -12.7 << -12.7 / 25.4;
    QTest::newRow("length out, mm/s: 1.005 cut to 1") << "LengthToDisplay" << 1 << 1.005 << 1.0;
    QTest::newRow("length out, mm/s: negative half") << "LengthToDisplay" << 1 << -0.125 << -0.13;
    QTest::newRow("length out, inch/min: 50.8 mm is 2") << "LengthToDisplay" << 2 << 50.8 << 2.0;
    QTest::newRow("length out, inch/min: unrounded") << "LengthToDisplay" << 2 << 7.0 << 7.0 / 25.4;
    QTest::newRow("length out, mm/min: two decimals") << "LengthToDisplay" << 3 << 2.675 << 2.68;
    QTest::newRow("length out, mode 4 as mm") << "LengthToDisplay" << 4 << 1.2345 << 1.23;
    QTest::newRow("length out, mode -1 as mm") << "LengthToDisplay" << -1 << 25.4 << 25.4;
    QTest::newRow("length in, inch/s: 1 is 25.4") << "LengthFromDisplay" << 0 << 1.0 << 25.4;
    QTest::newRow("length in, inch/s: unrounded") << "LengthFromDisplay" << 0 << 0.123 << 0.123 * 25.4;
    QTest::newRow("length in, mm/s: two decimals") << "LengthFromDisplay" << 1 << 3.14159 << 3.14;
    QTest::newRow("length in, inch/min: negative") << "LengthFromDisplay" << 2 << -0.5 << -12.7;
    QTest::newRow("length in, mm/min: negative half") << "LengthFromDisplay" << 3 << -0.005 << -0.01;
    QTest::newRow("length in, mode 4 as mm") << "LengthFromDisplay" << 4 << 0.125 << 0.13;
    QTest::newRow("speed out, inch/s: 25.4 is 1") << "SpeedToDisplay" << 0 << 25.4 << 1.0;
    QTest::newRow("speed out, inch/s: 7") << "SpeedToDisplay" << 0 << 7.0 << 7.0 / 25.4;
    QTest::newRow("speed out, mm/s: untouched, not rounded") << "SpeedToDisplay" << 1 << 1.005 << 1.005;
    QTest::newRow("speed out, inch/min: 25.4 mm/s is 60") << "SpeedToDisplay" << 2 << 25.4 << 60.0;
    // For 1, 7 and 13 the order of the two steps changes the last bit.
    QTest::newRow("speed out, inch/min: 1, divide first") << "SpeedToDisplay" << 2 << 1.0 << 1.0 / 25.4 * 60.0;
    QTest::newRow("speed out, inch/min: 7, divide first") << "SpeedToDisplay" << 2 << 7.0 << 7.0 / 25.4 * 60.0;
    QTest::newRow("speed out, inch/min: 13, divide first") << "SpeedToDisplay" << 2 << 13.0 << 13.0 / 25.4 * 60.0;
    QTest::newRow("speed out, mm/min: 0.3") << "SpeedToDisplay" << 3 << 0.3 << 0.3 * 60.0;
    QTest::newRow("speed out, mode 4 untouched") << "SpeedToDisplay" << 4 << 1.005 << 1.005;
    QTest::newRow("speed out, mode -1 untouched") << "SpeedToDisplay" << -1 << 25.4 << 25.4;
    QTest::newRow("speed in, inch/s: 1 is 25.4") << "SpeedFromDisplay" << 0 << 1.0 << 25.4;
    QTest::newRow("speed in, mm/s: untouched") << "SpeedFromDisplay" << 1 << 3.14159 << 3.14159;
    QTest::newRow("speed in, inch/min: typing 60 stores 25.4") << "SpeedFromDisplay" << 2 << 60.0 << 25.4;
    // For 10, 33.3 and 123 the order of the two steps changes the last bit.
    QTest::newRow("speed in, inch/min: 10, multiply first") << "SpeedFromDisplay" << 2 << 10.0 << 10.0 * 25.4 / 60.0;
    QTest::newRow("speed in, inch/min: 33.3, multiply first") << "SpeedFromDisplay" << 2 << 33.3 << 33.3 * 25.4 / 60.0;
    QTest::newRow("speed in, inch/min: 123, multiply first") << "SpeedFromDisplay" << 2 << 123.0 << 123.0 * 25.4 / 60.0;
    QTest::newRow("speed in, mm/min: 12000 is 200") << "SpeedFromDisplay" << 3 << 12000.0 << 200.0;
    QTest::newRow("speed in, mm/min: 1") << "SpeedFromDisplay" << 3 << 1.0 << 1.0 / 60.0;
    QTest::newRow("speed in, mode 7 untouched") << "SpeedFromDisplay" << 7 << 1.005 << 1.005;
    // clang-format on
}

void tst_Units::convert()
{
    QFETCH(QString, function);
    QFETCH(int, mode);
    QFETCH(double, value);
    QFETCH(double, expected);
    TestEnvironment env;
    g_LayerContext.m_unitMode = mode;
    using Pair = std::pair<double (*)(double, int), double (CLayerContext::*)(double) const>;
    const QHash<QString, Pair> functions = {
        {QStringLiteral("Round2"), {[](double v, int) { return Round2(v); }, nullptr}},
        {QStringLiteral("LengthToDisplay"), {&LengthToDisplay, &CLayerContext::LengthToDisplay}},
        {QStringLiteral("LengthFromDisplay"),
         {&LengthFromDisplay, &CLayerContext::LengthFromDisplay}},
        {QStringLiteral("SpeedToDisplay"), {&SpeedToDisplay, &CLayerContext::SpeedToDisplay}},
        {QStringLiteral("SpeedFromDisplay"), {&SpeedFromDisplay, &CLayerContext::SpeedFromDisplay}},
    };
    const Pair f = functions.value(function);
    QVERIFY(f.first);
    // QCOMPARE on doubles is fuzzy; displayed values must match to the last bit.
    QList<double> results{f.first(value, mode)};
    if (f.second)
        results << (g_LayerContext.*f.second)(value);
    for (const double actual : results) {
        QVERIFY2(std::memcmp(&actual, &expected, sizeof actual) == 0,
                 qPrintable(QStringLiteral("actual %1 expected %2")
                                .arg(actual, 0, 'g', 17)
                                .arg(expected, 0, 'g', 17)));
    }
}

void tst_Units::unitLabels_data()
{
    // clang-format off
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("length");
    QTest::addColumn<QByteArray>("speed");

    QTest::newRow("0") << 0 << QByteArray("inch") << QByteArray("inch/s");
    QTest::newRow("1") << 1 << QByteArray("mm") << QByteArray("mm/s");
    QTest::newRow("2") << 2 << QByteArray("inch") << QByteArray("inch/min");
    QTest::newRow("3") << 3 << QByteArray("mm") << QByteArray("mm/min");
    QTest::newRow("4 has none") << 4 << QByteArray("") << QByteArray("");
    QTest::newRow("-1 has none") << -1 << QByteArray("") << QByteArray("");
    // clang-format on
}

void tst_Units::unitLabels()
{
    QFETCH(int, mode);
    QFETCH(QByteArray, length);
    QFETCH(QByteArray, speed);
    QVERIFY(LengthUnitLabel(mode) && SpeedUnitLabel(mode));
    QCOMPARE(QByteArray(LengthUnitLabel(mode)), length);
    QCOMPARE(QByteArray(SpeedUnitLabel(mode)), speed);
}

QTEST_GUILESS_MAIN(tst_Units)
#include "tst_units.moc"
