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
        QTest::addColumn<bool>("blackInk");
        QTest::newRow("black layer") << 1 << "A" << false;
        QTest::newRow("4 white") << 4 << "D" << false;
        QTest::newRow("5 first black") << 5 << "E" << true;
        QTest::newRow("11 last of first black run") << 11 << "K" << true;
        QTest::newRow("12 deliberately white") << 12 << "L" << false;
        QTest::newRow("13 black again") << 13 << "M" << true;
        QTest::newRow("16 last black") << 16 << "P" << true;
        QTest::newRow("17 white") << 17 << "Q" << false;
        QTest::newRow("26 last capital") << 26 << "Z" << false;
        QTest::newRow("27 first small letter") << 27 << "a" << false;
        QTest::newRow("52 last small letter") << 52 << "z" << false;
        QTest::newRow("53 Roman one") << 53 << "I" << false;
        QTest::newRow("56 Roman four") << 56 << "IV" << false;
        QTest::newRow("61 Roman nine") << 61 << "IX" << false;
        QTest::newRow("Roman 1994") << 52 + 1994 << "MCMXCIV" << false;
        QTest::newRow("garbage zero") << 0 << "" << false;
        QTest::newRow("garbage negative") << -1 << "" << false;
        QTest::newRow("garbage huge shows digits") << 2000000052 << "2000000000" << false;
    }

    void numberButton()
    {
        QFETCH(int, number);
        QFETCH(bool, blackInk);
        TestEnvironment env;
        CLayerNumberWidget widget;
        widget.SetColor(11, 0, 255, QStringLiteral("07"), number);
        auto *button = widget.findChild<QPushButton *>(QStringLiteral("pushButton_layerColor"));
        auto *label = widget.findChild<QLabel *>(QStringLiteral("label_craftColor"));
        QVERIFY(button && label);
        QTEST(button->text(), "letter");
        QCOMPARE(button->styleSheet(), QStringLiteral("QPushButton{background-color:rgb(11,0,255);color:rgb(%1)}")
                                           .arg(blackInk ? "0,0,0" : "255,255,255"));
        QCOMPARE(button->toolTip() + label->text() + label->toolTip(), QStringLiteral("070707"));
    }

    // A cell in row 20 of a table scrolled to it, row 0 selected. The wheel scrolls the table and
    // leaves the value; a press selects the cell's row.
    void cellInTable_data()
    {
        QTest::addColumn<QString>("cell");
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("scrolled"); // -1 up, 1 down
        QTest::addColumn<int>("rightClicks");
        QTest::newRow("wheel down over mode") << "mode" << "wheel down" << 0 << 1 << 0;
        QTest::newRow("wheel up over mode") << "mode" << "wheel up" << 0 << -1 << 0;
        QTest::newRow("wheel down over air") << "air" << "wheel down" << 0 << 1 << 0;
        QTest::newRow("press on mode") << "mode" << "left" << 20 << 0 << 0;
        QTest::newRow("left press on value") << "value" << "left" << 20 << 0 << 0;
        QTest::newRow("right press on value") << "value" << "right" << 20 << 0 << 1;
    }

    void cellInTable()
    {
        QFETCH(QString, cell);
        QFETCH(QString, action);
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
        QSignalSpy changed(combo ? combo : target, combo ? SIGNAL(currentIndexChanged(int)) : SIGNAL(textChanged(QString)));
        int rightClicks = 0;
        if (auto *edit = qobject_cast<CLayerLineEditWidget *>(widget))
            connect(edit, &CLayerLineEditWidget::rightButtonClicked, this, [&rightClicks] { ++rightClicks; });
        const int scroll = table.verticalScrollBar()->value();
        QVERIFY(scroll > 0);
        if (action.startsWith(QLatin1String("wheel"))) {
            const QPointF pos(target->width() / 2.0, target->height() / 2.0);
            QWheelEvent wheel(pos, target->mapToGlobal(pos), QPoint(), QPoint(0, action.endsWith(QLatin1String("up")) ? 120 : -120),
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(target, &wheel);
        } else {
            QTest::mousePress(target, action == QLatin1String("right") ? Qt::RightButton : Qt::LeftButton);
            if (combo) {
                combo->hidePopup();
                QTest::mouseRelease(combo, Qt::LeftButton);
            }
        }
        QTEST(table.currentRow(), "row");
        QVERIFY(table.selectionModel()->isRowSelected(table.currentRow(), QModelIndex()));
        QTEST(rightClicks, "rightClicks");
        QTEST((table.verticalScrollBar()->value() > scroll) - (table.verticalScrollBar()->value() < scroll), "scrolled");
        QCOMPARE(changed.count(), 0);
    }

    // Decimals -1: no range; 0: speeds of 0 to 3000; 1: powers of 0.1 to 100. Set rows hand the
    // text over as the panel does; typed rows type it and press Return ("<empty>": the field
    // showed 20 and was cleared first).
    void lineEdit_data()
    {
        QTest::addColumn<int>("decimals");
        QTest::addColumn<bool>("typed");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("finished");
        QTest::newRow("set, one decimal") << 1 << false << "12.345" << "12.3" << 0;
        QTest::newRow("set, no decimals") << 0 << false << "12.345" << "12" << 0;
        QTest::newRow("set, half rounds up") << 0 << false << "12.5" << "13" << 0;
        QTest::newRow("set, integer padded") << 1 << false << "20" << "20.0" << 0;
        QTest::newRow("set, slash as is") << 0 << false << "/" << "/" << 0;
        QTest::newRow("set, no validator leaves text") << -1 << false << "12.345" << "12.345" << 0;
        QTest::newRow("set, garbage text as is") << 1 << false << "abc" << "abc" << 0;
        QTest::newRow("set, garbage huge number") << 0 << false << "1e300" << QString::number(1e300, 'f', 0) << 0;
        QTest::newRow("speed inside") << 0 << true << "250" << "250" << 1;
        QTest::newRow("speed above range corrected") << 0 << true << "3001" << "3000" << 1;
        QTest::newRow("speed decimals refused") << 0 << true << "12.5" << "12." << 1;
        QTest::newRow("power inside") << 1 << true << "55.5" << "55.5" << 1;
        QTest::newRow("power second decimal refused") << 1 << true << "55.55" << "55.5" << 1;
        QTest::newRow("power zero corrected to the minimum") << 1 << true << "0" << "0.1" << 1;
        QTest::newRow("garbage letters refused") << 1 << true << "x" << "" << 0;
        QTest::newRow("emptied gives the shown value back") << 1 << true << "<empty>" << "20.0" << 1;
        QTest::newRow("lone point gives the shown value back") << 1 << true << "<empty>." << "20.0" << 1;
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
        // The value must stay readable in a narrow table column.
        QVERIFY2(edit->width() >= 60, qPrintable(QString::number(edit->width())));
        QCOMPARE(edit->height(), edit->sizeHint().height());
        QVERIFY(edit->geometry().center().x() - widget.rect().center().x() <= 1);
        edit->setFocus();
        QSignalSpy done(&widget, &CLayerLineEditWidget::editingFinished);
        if (!typed) {
            widget.SetText(input);
        } else {
            if (input.startsWith(QLatin1String("<empty>"))) {
                widget.SetText(QStringLiteral("20"));
                edit->clear();
                input = input.mid(7);
            }
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
