#include "library/clayercontext.h"
#include "support/units.h"
#include "testenvironment.h"

#include <QTest>

#include <cstring>

namespace {

// QCOMPARE on doubles is fuzzy; displayed values must match to the last bit.
QList<quint64> bits(const QList<double> &values)
{
    QList<quint64> out;
    for (const double v : values) {
        quint64 b;
        std::memcpy(&b, &v, sizeof b);
        out << b;
    }
    return out;
}

} // namespace

class tst_Units : public QObject
{
    Q_OBJECT

private slots:
    void convert_data();
    void convert();
};

void tst_Units::convert_data()
{
    // clang-format off
    QTest::addColumn<int>("mode");
    QTest::addColumn<double>("value");
    // Lengths and speeds shown for a value in millimetres, and stored for a value typed.
    QTest::addColumn<QList<double>>("expected");
    QTest::addColumn<QString>("labels");

    // Modes 0 and 2 are inches, 1 and 3 millimetres, anything else millimetres
    // untouched by the speeds. Inch lengths stay unrounded, millimetre lengths
    // are cut to two decimals, speeds never are. For 7 inch per minute the
    // order of the two steps changes the last bit, both ways.
    QTest::newRow("inch/s") << 0 << 7.0 << QList<double>{7.0 / 25.4, 7.0 * 25.4, 7.0 / 25.4, 7.0 * 25.4} << "inch inch/s";
    // Millimetres are rounded half away from zero, on the value times 100 as
    // the double it is: 1.005 gives 100.49999999999999, 2.675 exactly 267.5.
    QTest::newRow("mm/s") << 1 << 1.005 << QList<double>{1.0, 1.0, 1.005, 1.005} << "mm mm/s";
    QTest::newRow("mm/s: negative half") << 1 << -0.125 << QList<double>{-0.13, -0.13, -0.125, -0.125} << "mm mm/s";
    QTest::newRow("mm/s: no minus zero") << 1 << -0.004 << QList<double>{0.0, 0.0, -0.004, -0.004} << "mm mm/s";
    QTest::newRow("inch/min") << 2 << 7.0 << QList<double>{7.0 / 25.4, 7.0 * 25.4, 7.0 / 25.4 * 60.0, 7.0 * 25.4 / 60.0} << "inch inch/min";
    QTest::newRow("inch/min: typing 60 stores 25.4") << 2 << 60.0 << QList<double>{60.0 / 25.4, 60.0 * 25.4, 60.0 / 25.4 * 60.0, 25.4} << "inch inch/min";
    QTest::newRow("mm/min") << 3 << 2.675 << QList<double>{2.68, 2.68, 2.675 * 60.0, 2.675 / 60.0} << "mm mm/min";
    QTest::newRow("mode 4 as mm") << 4 << 1.2345 << QList<double>{1.23, 1.23, 1.2345, 1.2345} << " ";
    QTest::newRow("mode -1 as mm") << -1 << 25.4 << QList<double>{25.4, 25.4, 25.4, 25.4} << " ";
    // clang-format on
}

void tst_Units::convert()
{
    QFETCH(int, mode);
    QFETCH(double, value);
    QFETCH(QList<double>, expected);
    QFETCH(QString, labels);
    TestEnvironment env;
    g_LayerContext.m_unitMode = mode;
    const CLayerContext &context = g_LayerContext;
    QCOMPARE(bits({LengthToDisplay(value, mode), LengthFromDisplay(value, mode),
                   SpeedToDisplay(value, mode), SpeedFromDisplay(value, mode)}),
             bits(expected));
    QCOMPARE(bits({context.LengthToDisplay(value), context.LengthFromDisplay(value),
                   context.SpeedToDisplay(value), context.SpeedFromDisplay(value)}),
             bits(expected));
    // A host copies the labels as C strings: empty, never null.
    QVERIFY(LengthUnitLabel(mode) && SpeedUnitLabel(mode));
    QCOMPARE(QString::fromLatin1(LengthUnitLabel(mode)) + QLatin1Char(' ') +
                 QString::fromLatin1(SpeedUnitLabel(mode)),
             labels);
}

QTEST_GUILESS_MAIN(tst_Units)
#include "tst_units.moc"
