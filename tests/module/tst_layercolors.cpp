#include "module/clayermgrins.h"
#include "testenvironment.h"

#include <QTest>

class tst_LayerColors : public QObject
{
    Q_OBJECT

private slots:
    void colorOfNumber_data();
    void colorOfNumber();
    void numberOfColor_data();
    void numberOfColor();
    void everyColorMapsBack();
};

void tst_LayerColors::colorOfNumber_data()
{
    QTest::addColumn<quint32>("number");
    QTest::addColumn<bool>("alternate");
    QTest::addColumn<quint32>("color");

    QTest::newRow("first") << 1u << false << 0x0B00FFu;
    QTest::newRow("first alternate") << 1u << true << 0x0C01FFu;
    QTest::newRow("five steps green by two") << 5u << true << 0x01CCFDu;
    QTest::newRow("saturated channels stay") << 7u << true << 0x84FBFFu;
    QTest::newRow("last") << 35u << false << 0x227756u;
    QTest::newRow("zero") << 0u << false << 0u;
    QTest::newRow("zero alternate") << 0u << true << 0x010101u;
    QTest::newRow("36") << 36u << false << 0u;
    QTest::newRow("36 alternate") << 36u << true << 0x010101u;
    QTest::newRow("huge alternate") << 0xFFFFFFFFu << true << 0x010101u;
}

void tst_LayerColors::colorOfNumber()
{
    QFETCH(quint32, number);
    QFETCH(bool, alternate);
    QFETCH(quint32, color);
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    QCOMPARE(manager.GetLayerColor(number, alternate), color);
}

void tst_LayerColors::numberOfColor_data()
{
    QTest::addColumn<quint32>("color");
    QTest::addColumn<quint32>("number");

    QTest::newRow("standard 5") << 0x00CAFCu << 5u;
    QTest::newRow("alternate 5") << 0x01CCFDu << 5u;
    QTest::newRow("alternate 35") << 0x237857u << 35u;
    QTest::newRow("grey of no layer") << 0x010101u << 0u;
    QTest::newRow("black") << 0u << 0u;
    QTest::newRow("special A") << 0xCC8B17u << 0u;
    QTest::newRow("special B") << 0xCC8B18u << 0u;
}

void tst_LayerColors::numberOfColor()
{
    QFETCH(quint32, color);
    QFETCH(quint32, number);
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    QCOMPARE(manager.GetLayerNumber(color), number);
}

void tst_LayerColors::everyColorMapsBack()
{
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    for (quint32 n = 1; n <= 35; ++n) {
        QCOMPARE(manager.GetLayerNumber(manager.GetLayerColor(n, false)), n);
        QCOMPARE(manager.GetLayerNumber(manager.GetLayerColor(n, true)), n);
    }
}

QTEST_GUILESS_MAIN(tst_LayerColors)
#include "tst_layercolors.moc"
