#include "layertable/clayerair.h"
#include "layertable/clayerlineeditwidget.h"
#include "layertable/clayermodewidget.h"
#include "layertable/clayernumberwidget.h"
#include "panelfixtures.h"
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

#include <memory>

using namespace paneltest;

namespace {

QStringList itemsOf(const QComboBox *combo)
{
    QStringList items;
    for (int i = 0; i < combo->count(); ++i)
        items << combo->itemText(i);
    return items;
}

// A shown table of 40 rows with a cell widget in row 20 (or the given row).
struct TableWithCell
{
    explicit TableWithCell(QWidget *cell, int row = 20)
    {
        table.setRowCount(40);
        table.setColumnCount(2);
        table.resize(300, 200);
        table.setCellWidget(row, 1, cell);
        table.show();
        QVERIFY(QTest::qWaitForWindowExposed(&table));
        table.scrollTo(table.model()->index(row, 1), QAbstractItemView::PositionAtCenter);
    }
    QTableWidget table;
};

QWidget *comboCell(bool air)
{
    return air ? static_cast<QWidget *>(new CLayerAir) : new CLayerModeWidget;
}

void turnWheel(QWidget *target, int delta)
{
    const QPointF pos(target->width() / 2.0, target->height() / 2.0);
    QWheelEvent wheel(pos, target->mapToGlobal(pos), QPoint(), QPoint(0, delta), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(target, &wheel);
}

} // namespace

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
        QFETCH(QString, letter);
        QFETCH(bool, blackInk);
        TestEnvironment env;
        CLayerNumberWidget widget;
        widget.SetColor(11, 0, 255, QStringLiteral("07"), number);
        auto *button = widget.findChild<QPushButton *>(QStringLiteral("pushButton_layerColor"));
        auto *label = widget.findChild<QLabel *>(QStringLiteral("label_craftColor"));
        QVERIFY(button && label);
        QCOMPARE(button->text(), letter);
        QCOMPARE(button->styleSheet(), QStringLiteral("QPushButton{background-color:rgb(11,0,255);color:rgb(%1)}")
                                           .arg(blackInk ? "0,0,0" : "255,255,255"));
        QCOMPARE(button->toolTip() + label->text() + label->toolTip(), QStringLiteral("070707"));
    }

    // The lists in both languages; a language change keeps the choice and says nothing.
    void comboLists_data()
    {
        QTest::addColumn<int>("kind"); // 0: every mode, 1: fill modes only, 2: air
        QTest::addColumn<QStringList>("english");
        QTest::addColumn<QStringList>("chinese");
        QTest::newRow("every mode") << 0 << QStringList{"Cutting", "Scoring", "Shallow Engrave", "Deep Engrave", "Mark"}
                                    << QStringList{"切割", "划线", "浅雕", "深雕", "标记"};
        QTest::newRow("fill modes") << 1 << QStringList{"Shallow Engrave", "Deep Engrave"} << QStringList{"浅雕", "深雕"};
        QTest::newRow("air") << 2 << QStringList{"High", "Low"} << QStringList{"强", "弱"};
    }

    void comboLists()
    {
        QFETCH(int, kind);
        QFETCH(QStringList, english);
        QFETCH(QStringList, chinese);
        TestEnvironment env;
        std::unique_ptr<QWidget> cell(comboCell(kind == 2));
        if (kind == 1)
            static_cast<CLayerModeWidget *>(cell.get())->BuildList(true);
        auto *combo = cell->findChild<QComboBox *>(kind == 2 ? QStringLiteral("comboBox_air") : QStringLiteral("comboBox_mode"));
        QVERIFY(combo);
        QCOMPARE(itemsOf(combo), english);
        combo->setCurrentText(english.at(1));
        QSignalSpy changed(combo, &QComboBox::currentIndexChanged);
        {
            LanguageGuard guard(QStringLiteral("Chs"));
            QCOMPARE(itemsOf(combo), chinese);
            QCOMPARE(combo->currentIndex(), 1);
        }
        QCOMPARE(combo->currentText(), english.at(1));
        QCOMPARE(changed.count(), 0);
    }

    void wheelScrollsTableNotValue_data()
    {
        QTest::addColumn<bool>("air");
        QTest::newRow("mode") << false;
        QTest::newRow("air") << true;
    }

    void wheelScrollsTableNotValue()
    {
        QFETCH(bool, air);
        TestEnvironment env;
        QWidget *cell = comboCell(air);
        TableWithCell fixture(cell);
        auto *combo = cell->findChild<QComboBox *>();
        QVERIFY(combo);
        combo->setCurrentIndex(1);
        QSignalSpy changed(combo, &QComboBox::currentIndexChanged);
        QScrollBar *bar = fixture.table.verticalScrollBar();
        const int before = bar->value();
        QVERIFY(before > 0);
        turnWheel(combo, -120);
        QCOMPARE(combo->currentIndex(), 1);
        QCOMPARE(changed.count(), 0);
        QVERIFY2(bar->value() > before, "scrolling down over the cell moves the table");
        const int lower = bar->value();
        turnWheel(combo, 120);
        QCOMPARE(combo->currentIndex(), 1);
        QVERIFY(bar->value() < lower);
    }

    void pressesSelectRow_data()
    {
        QTest::addColumn<bool>("onCombo");
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("rightClicks");
        QTest::newRow("combo") << true << int(Qt::LeftButton) << 0;
        QTest::newRow("line edit, right") << false << int(Qt::RightButton) << 1;
        QTest::newRow("line edit, left") << false << int(Qt::LeftButton) << 0;
    }

    void pressesSelectRow()
    {
        QFETCH(bool, onCombo);
        QFETCH(int, button);
        TestEnvironment env;
        QWidget *cell = onCombo ? static_cast<QWidget *>(new CLayerModeWidget) : new CLayerLineEditWidget;
        TableWithCell fixture(cell, 3);
        fixture.table.selectRow(0);
        if (auto *edit = qobject_cast<CLayerLineEditWidget *>(cell)) {
            QSignalSpy right(edit, &CLayerLineEditWidget::rightButtonClicked);
            QTest::mousePress(edit->findChild<QLineEdit *>(), Qt::MouseButton(button));
            QTEST(int(right.count()), "rightClicks");
        } else {
            auto *combo = cell->findChild<QComboBox *>();
            QTest::mousePress(combo, Qt::LeftButton);
            combo->hidePopup();
            QTest::mouseRelease(combo, Qt::LeftButton);
        }
        QCOMPARE(fixture.table.currentRow(), 3);
        QVERIFY(fixture.table.selectionModel()->isRowSelected(3, QModelIndex()));
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
        if (decimals == 0)
            widget.SetRange(0.0, 3000.0, 0, QLocale::C);
        else if (decimals == 1)
            widget.SetRange(0.1, 100.0, 1, QLocale::C);
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        auto *edit = widget.findChild<QLineEdit *>();
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

    void lineEditFillsNarrowCell()
    {
        TestEnvironment env;
        CLayerLineEditWidget widget;
        widget.SetRange(0.0, 3000.0, 0, QLocale::C);
        widget.SetText(QStringLiteral("120"));
        widget.resize(80, 40);
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        auto *edit = widget.findChild<QLineEdit *>();
        // The value must stay readable in a narrow table column.
        QVERIFY2(edit->width() >= 60, qPrintable(QString::number(edit->width())));
        QCOMPARE(edit->height(), edit->sizeHint().height());
        QVERIFY(edit->geometry().center().x() - widget.rect().center().x() <= 1);
    }
};

QTEST_MAIN(tst_LayerCellWidgets)
#include "tst_layercellwidgets.moc"
