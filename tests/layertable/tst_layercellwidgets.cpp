#include "layertable/clayerair.h"
#include "layertable/clayerlineeditwidget.h"
#include "layertable/clayermodewidget.h"
#include "layertable/clayernumberwidget.h"
#include "testenvironment.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QWheelEvent>

class tst_LayerCellWidgets : public QObject
{
    Q_OBJECT

private slots:
    void numberButton_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("letter");
        QTest::newRow("1 first capital") << 1 << "A";
        QTest::newRow("26 last capital") << 26 << "Z";
        QTest::newRow("27 first small letter") << 27 << "a";
        QTest::newRow("52 last small letter") << 52 << "z";
        QTest::newRow("53 Roman one") << 53 << "I";
        QTest::newRow("Roman 1949") << 52 + 1949 << "MCMXLIX";
        QTest::newRow("garbage zero") << 0 << "";
        QTest::newRow("garbage huge shows digits") << 2000000052 << "2000000000";
    }

    void numberButton()
    {
        QFETCH(int, number);
        TestEnvironment env;
        CLayerNumberWidget widget;
        widget.SetColor(11, 0, 255, QStringLiteral("07"), number);
        auto *button = widget.findChild<QPushButton *>(QStringLiteral("pushButton_layerColor"));
        auto *label = widget.findChild<QLabel *>(QStringLiteral("label_craftColor"));
        QTEST(button->text(), "letter");
        QCOMPARE(button->toolTip() + label->text() + label->toolTip(), QStringLiteral("070707"));
    }

    // A cell in row 20 of a table scrolled to it, row 0 selected. The wheel scrolls the table and
    // leaves the value; a press selects the cell's row.
    void cellInTable_data()
    {
        QTest::addColumn<QString>("cell");
        QTest::addColumn<bool>("wheel"); // or a press
        QTest::addColumn<int>("row");
        QTest::newRow("wheel over mode") << "mode" << true << 0;
        QTest::newRow("wheel over air") << "air" << true << 0;
        QTest::newRow("press on mode") << "mode" << false << 20;
        QTest::newRow("press on value") << "value" << false << 20;
    }

    void cellInTable()
    {
        QFETCH(QString, cell);
        QFETCH(bool, wheel);
        TestEnvironment env;
        QTableWidget table(40, 2);
        table.resize(300, 200);
        QWidget *widget = cell == QLatin1String("air") ? static_cast<QWidget *>(new CLayerAir)
                          : cell == QLatin1String("mode") ? static_cast<QWidget *>(new CLayerModeWidget)
                                                          : new CLayerLineEditWidget;
        table.setCellWidget(20, 1, widget);
        table.show();
        QVERIFY(QTest::qWaitForWindowExposed(&table));
        table.selectRow(0);
        table.scrollTo(table.model()->index(20, 1), QAbstractItemView::PositionAtCenter);
        auto *combo = widget->findChild<QComboBox *>();
        QWidget *target = combo ? static_cast<QWidget *>(combo) : widget->findChild<QLineEdit *>();
        if (combo)
            combo->setCurrentIndex(1);
        QSignalSpy changed(target, combo ? SIGNAL(currentIndexChanged(int)) : SIGNAL(textChanged(QString)));
        const int scroll = table.verticalScrollBar()->value();
        if (wheel) {
            const QPointF pos(target->width() / 2.0, target->height() / 2.0);
            QWheelEvent event(pos, target->mapToGlobal(pos), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                              Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(target, &event);
        } else {
            QTest::mousePress(target, Qt::LeftButton);
            if (combo) {
                combo->hidePopup();
                QTest::mouseRelease(combo, Qt::LeftButton);
            }
        }
        QTEST(table.currentRow(), "row");
        QVERIFY(table.selectionModel()->isRowSelected(table.currentRow(), QModelIndex()));
        QCOMPARE(table.verticalScrollBar()->value() > scroll, wheel);
        QCOMPARE(changed.count(), 0);
    }

    // Decimals -1: no range; 0: speeds of 0 to 3000; 1: powers of 0.1 to 100. Set rows hand the
    // text over as the panel does; typed rows type it and press Return ("<empty>": the field
    // showed 20 and was cleared). Corrections to the range are checked in the panel.
    void lineEdit_data()
    {
        QTest::addColumn<int>("decimals");
        QTest::addColumn<bool>("typed");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("finished");
        QTest::newRow("set, one decimal") << 1 << false << "12.345" << "12.3" << 0;
        QTest::newRow("set, half rounds up") << 0 << false << "12.5" << "13" << 0;
        QTest::newRow("set, slash as is") << 0 << false << "/" << "/" << 0;
        QTest::newRow("set, no validator leaves text") << -1 << false << "12.345" << "12.345" << 0;
        QTest::newRow("set, garbage huge number") << 0 << false << "1e300" << QString::number(1e300, 'f', 0) << 0;
        QTest::newRow("power inside") << 1 << true << "55.5" << "55.5" << 1;
        QTest::newRow("second decimal refused") << 1 << true << "55.55" << "55.5" << 1;
        QTest::newRow("garbage letters refused") << 1 << true << "x" << "" << 0;
        QTest::newRow("emptied gives the shown value back") << 1 << true << "<empty>" << "20.0" << 1;
    }

    void lineEdit()
    {
        QFETCH(int, decimals);
        QFETCH(bool, typed);
        QFETCH(QString, input);
        TestEnvironment env;
        CLayerLineEditWidget widget;
        if (decimals >= 0)
            widget.SetRange(decimals ? 0.1 : 0.0, decimals ? 100.0 : 3000.0, decimals, QLocale::C);
        widget.resize(80, 40);
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        auto *edit = widget.findChild<QLineEdit *>();
        edit->setFocus();
        QSignalSpy done(&widget, &CLayerLineEditWidget::editingFinished);
        if (!typed) {
            widget.SetText(input);
        } else if (input == QLatin1String("<empty>")) {
            widget.SetText(QStringLiteral("20"));
            edit->clear();
            QTest::keyClick(edit, Qt::Key_Return);
        } else {
            QTest::keyClicks(edit, input);
            QTest::keyClick(edit, Qt::Key_Return);
        }
        QTEST(edit->text(), "shown");
        QCOMPARE(widget.Text(), edit->text());
        QTEST(int(done.count()), "finished");
    }
};

QTEST_MAIN(tst_LayerCellWidgets)
#include "tst_layercellwidgets.moc"
