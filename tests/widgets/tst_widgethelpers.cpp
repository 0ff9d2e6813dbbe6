#include "support/widgethelpers.h"
#include "testenvironment.h"

#include <QLabel>
#include <QTest>

class tst_WidgetHelpers : public QObject
{
    Q_OBJECT

private slots:
    void restyleFollowsProperty_data();
    void restyleFollowsProperty();
    void nullWidgetIsIgnored();
};

void tst_WidgetHelpers::restyleFollowsProperty_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QColor>("color");

    QTest::newRow("error") << QStringLiteral("error") << QColor(200, 0, 0);
    QTest::newRow("ok") << QStringLiteral("ok") << QColor(0, 120, 0);
    QTest::newRow("no selector matches") << QStringLiteral("other") << QColor(10, 20, 30);
}

void tst_WidgetHelpers::restyleFollowsProperty()
{
    QFETCH(QString, state);
    QFETCH(QColor, color);
    TestEnvironment env;
    QLabel label(QStringLiteral("12.5"));
    label.setStyleSheet(QStringLiteral("QLabel { color: rgb(10, 20, 30); }"
                                       "QLabel[state=\"error\"] { color: rgb(200, 0, 0); }"
                                       "QLabel[state=\"ok\"] { color: rgb(0, 120, 0); }"));
    label.show();
    QVERIFY(QTest::qWaitForWindowExposed(&label));
    QCOMPARE(label.palette().color(QPalette::WindowText), QColor(10, 20, 30));

    // A style sheet does not look at dynamic properties again by itself.
    SetPropertyAndRestyle(&label, "state", state);

    QCOMPARE(label.property("state").toString(), state);
    QCOMPARE(label.palette().color(QPalette::WindowText), color);
}

void tst_WidgetHelpers::nullWidgetIsIgnored()
{
    TestEnvironment env;
    SetPropertyAndRestyle(nullptr, "state", QStringLiteral("error"));
    QLabel label;
    SetPropertyAndRestyle(&label, nullptr, QStringLiteral("error"));
    QVERIFY(label.dynamicPropertyNames().isEmpty());
}

QTEST_MAIN(tst_WidgetHelpers)
#include "tst_widgethelpers.moc"
