#include "library/clayercontext.h"
#include "support/units.h"
#include "testenvironment.h"

#include <QTest>

#include <cstring>

class tst_Units : public QObject
{
    Q_OBJECT

private slots:
    void round2_data();
    void round2();
    void lengthToDisplay_data();
    void lengthToDisplay();
    void lengthFromDisplay_data();
    void lengthFromDisplay();
    void speedToDisplay_data();
    void speedToDisplay();
    void speedFromDisplay_data();
    void speedFromDisplay();
    void unitLabels_data();
    void unitLabels();
};

namespace {

// QCOMPARE on doubles is fuzzy; displayed values must match to the last bit.
bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

QByteArray describe(double actual, double expected)
{
    return QByteArray("actual ") + QByteArray::number(actual, 'g', 17) + " expected "
        + QByteArray::number(expected, 'g', 17);
}

#define COMPARE_BITS(actual, expected)                                                            \
    QVERIFY2(sameBits((actual), (expected)), describe((actual), (expected)).constData())


} // namespace

void tst_Units::round2_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");

    QTest::newRow("exact") << 12.34 << 12.34;
    QTest::newRow("zero") << 0.0 << 0.0;
    // 1.005 * 100 is 100.49999999999999 in doubles, so it rounds down.
    QTest::newRow("1.005 rounds down") << 1.005 << 1.0;
    QTest::newRow("2.675 times 100 is exact 267.5") << 2.675 << 2.68;
    QTest::newRow("half up") << 0.125 << 0.13;
    QTest::newRow("half away from zero, negative") << -0.125 << -0.13;
    QTest::newRow("smallest negative half") << -0.005 << -0.01;
    QTest::newRow("below half, negative") << -0.004 << 0.0;
    QTest::newRow("negative 1.005") << -1.005 << -1.0;
    QTest::newRow("many decimals") << 3.14159 << 3.14;
    QTest::newRow("negative many decimals") << -3.14659 << -3.15;
    QTest::newRow("large") << 123456.789 << 123456.79;
}

void tst_Units::round2()
{
    QFETCH(double, value);
    QFETCH(double, expected);
    COMPARE_BITS(Round2(value), expected);
}

// Rows per mode: mode 0 and 2 are inches, 1 and 3 millimetres, anything else
// falls back to millimetres.
void tst_Units::lengthToDisplay_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<double>("stored");
    QTest::addColumn<double>("expected");

    QTest::newRow("inch/s: 25.4 mm is exactly 1") << 0 << 25.4 << 1.0;
    QTest::newRow("inch/s: unrounded") << 0 << 1.0 << 1.0 / 25.4;
    QTest::newRow("inch/s: negative") << 0 << -12.7 << -12.7 / 25.4;
    QTest::newRow("mm/s: 1.005 cut to 1") << 1 << 1.005 << 1.0;
    QTest::newRow("mm/s: two decimals") << 1 << 3.14159 << 3.14;
    QTest::newRow("mm/s: negative half") << 1 << -0.125 << -0.13;
    QTest::newRow("inch/min: 50.8 mm is 2") << 2 << 50.8 << 2.0;
    QTest::newRow("inch/min: unrounded") << 2 << 7.0 << 7.0 / 25.4;
    QTest::newRow("mm/min: two decimals") << 3 << 2.675 << 2.68;
    QTest::newRow("mode 4 as mm") << 4 << 1.2345 << 1.23;
    QTest::newRow("mode -1 as mm") << -1 << 25.4 << 25.4;
    QTest::newRow("mode 100 as mm") << 100 << 1.005 << 1.0;
}

void tst_Units::lengthToDisplay()
{
    QFETCH(int, mode);
    QFETCH(double, stored);
    QFETCH(double, expected);
    TestEnvironment env;
    COMPARE_BITS(LengthToDisplay(stored, mode), expected);
    g_LayerContext.m_unitMode = mode;
    COMPARE_BITS(g_LayerContext.LengthToDisplay(stored), expected);
}

void tst_Units::lengthFromDisplay_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<double>("typed");
    QTest::addColumn<double>("expected");

    QTest::newRow("inch/s: 1 is 25.4") << 0 << 1.0 << 25.4;
    QTest::newRow("inch/s: unrounded") << 0 << 0.123 << 0.123 * 25.4;
    QTest::newRow("mm/s: two decimals") << 1 << 3.14159 << 3.14;
    QTest::newRow("mm/s: 1.005 cut to 1") << 1 << 1.005 << 1.0;
    QTest::newRow("inch/min: 2 is 50.8") << 2 << 2.0 << 50.8;
    QTest::newRow("inch/min: negative") << 2 << -0.5 << -12.7;
    QTest::newRow("mm/min: negative half") << 3 << -0.005 << -0.01;
    QTest::newRow("mode 4 as mm") << 4 << 0.125 << 0.13;
    QTest::newRow("mode -1 as mm") << -1 << 1.0 << 1.0;
}

void tst_Units::lengthFromDisplay()
{
    QFETCH(int, mode);
    QFETCH(double, typed);
    QFETCH(double, expected);
    TestEnvironment env;
    COMPARE_BITS(LengthFromDisplay(typed, mode), expected);
    g_LayerContext.m_unitMode = mode;
    COMPARE_BITS(g_LayerContext.LengthFromDisplay(typed), expected);
}

void tst_Units::speedToDisplay_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<double>("stored");
    QTest::addColumn<double>("expected");

    QTest::newRow("inch/s: 25.4 is 1") << 0 << 25.4 << 1.0;
    QTest::newRow("inch/s: 7") << 0 << 7.0 << 7.0 / 25.4;
    QTest::newRow("mm/s: untouched, not rounded") << 1 << 1.005 << 1.005;
    QTest::newRow("inch/min: 25.4 mm/s is 60") << 2 << 25.4 << 60.0;
    // For 1, 7 and 13 the order of the two steps changes the last bit.
    QTest::newRow("inch/min: 1, divide first") << 2 << 1.0 << 1.0 / 25.4 * 60.0;
    QTest::newRow("inch/min: 7, divide first") << 2 << 7.0 << 7.0 / 25.4 * 60.0;
    QTest::newRow("inch/min: 13, divide first") << 2 << 13.0 << 13.0 / 25.4 * 60.0;
    QTest::newRow("mm/min: 0.3") << 3 << 0.3 << 0.3 * 60.0;
    QTest::newRow("mm/min: 200") << 3 << 200.0 << 12000.0;
    QTest::newRow("mode 4 untouched") << 4 << 1.005 << 1.005;
    QTest::newRow("mode -1 untouched") << -1 << 25.4 << 25.4;
}

void tst_Units::speedToDisplay()
{
    QFETCH(int, mode);
    QFETCH(double, stored);
    QFETCH(double, expected);
    TestEnvironment env;
    COMPARE_BITS(SpeedToDisplay(stored, mode), expected);
    g_LayerContext.m_unitMode = mode;
    COMPARE_BITS(g_LayerContext.SpeedToDisplay(stored), expected);
}

void tst_Units::speedFromDisplay_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<double>("typed");
    QTest::addColumn<double>("expected");

    QTest::newRow("inch/s: 1 is 25.4") << 0 << 1.0 << 25.4;
    QTest::newRow("mm/s: untouched") << 1 << 3.14159 << 3.14159;
    QTest::newRow("inch/min: typing 60 stores 25.4") << 2 << 60.0 << 25.4;
    // For 10, 33.3 and 123 the order of the two steps changes the last bit.
    QTest::newRow("inch/min: 10, multiply first") << 2 << 10.0 << 10.0 * 25.4 / 60.0;
    QTest::newRow("inch/min: 33.3, multiply first") << 2 << 33.3 << 33.3 * 25.4 / 60.0;
    QTest::newRow("inch/min: 123, multiply first") << 2 << 123.0 << 123.0 * 25.4 / 60.0;
    QTest::newRow("mm/min: 12000 is 200") << 3 << 12000.0 << 200.0;
    QTest::newRow("mm/min: 1") << 3 << 1.0 << 1.0 / 60.0;
    QTest::newRow("mode 7 untouched") << 7 << 1.005 << 1.005;
}

void tst_Units::speedFromDisplay()
{
    QFETCH(int, mode);
    QFETCH(double, typed);
    QFETCH(double, expected);
    TestEnvironment env;
    COMPARE_BITS(SpeedFromDisplay(typed, mode), expected);
    g_LayerContext.m_unitMode = mode;
    COMPARE_BITS(g_LayerContext.SpeedFromDisplay(typed), expected);
}

void tst_Units::unitLabels_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("length");
    QTest::addColumn<QByteArray>("speed");

    QTest::newRow("0") << 0 << QByteArray("inch") << QByteArray("inch/s");
    QTest::newRow("1") << 1 << QByteArray("mm") << QByteArray("mm/s");
    QTest::newRow("2") << 2 << QByteArray("inch") << QByteArray("inch/min");
    QTest::newRow("3") << 3 << QByteArray("mm") << QByteArray("mm/min");
    QTest::newRow("4 has none") << 4 << QByteArray() << QByteArray();
    QTest::newRow("-1 has none") << -1 << QByteArray() << QByteArray();
}

void tst_Units::unitLabels()
{
    QFETCH(int, mode);
    QFETCH(QByteArray, length);
    QFETCH(QByteArray, speed);
    QVERIFY(LengthUnitLabel(mode));
    QVERIFY(SpeedUnitLabel(mode));
    QCOMPARE(QByteArray(LengthUnitLabel(mode)), length);
    QCOMPARE(QByteArray(SpeedUnitLabel(mode)), speed);
}

QTEST_GUILESS_MAIN(tst_Units)
#include "tst_units.moc"
