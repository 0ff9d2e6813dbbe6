#include "layertable/ctablewidgetupdown.h"
#include "testenvironment.h"

#include <QDropEvent>
#include <QHeaderView>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

namespace {

constexpr int kRowHeight = 30;

// Visible rows, then hidden spares, as the layer panel keeps them.
std::unique_ptr<CTableWidgetUpDown> makeTable(int shown, int spare, int height = 300)
{
    auto table = std::make_unique<CTableWidgetUpDown>();
    table->setColumnCount(1);
    table->setRowCount(shown + spare);
    table->verticalHeader()->setDefaultSectionSize(kRowHeight);
    table->verticalHeader()->hide();
    table->horizontalHeader()->hide();
    for (int row = 0; row < shown + spare; ++row) {
        table->setItem(row, 0, new QTableWidgetItem(QStringLiteral("row %1").arg(row)));
        table->setRowHidden(row, row >= shown);
    }
    table->resize(200, height);
    table->show();
    if (!QTest::qWaitForWindowExposed(table.get()))
        return nullptr;
    return table;
}

QPoint centreOf(const QTableWidget &table, int row)
{
    return table.visualRect(table.model()->index(row, 0)).center();
}

void press(QTableWidget &table, const QPoint &pos)
{
    QTest::mousePress(table.viewport(), Qt::LeftButton, Qt::NoModifier, pos);
    QTest::mouseRelease(table.viewport(), Qt::LeftButton, Qt::NoModifier, pos);
}

// The drag manager hands move and drop events only to the widget that accepted the enter
// event, with the model's own row data.
struct DragSession
{
    explicit DragSession(QTableWidget &table)
        : viewport(table.viewport())
        , data(table.model()->mimeData({table.model()->index(0, 0)}))
    {
        send(QDragEnterEvent(QPoint(1, 1), kActions, data.get(), Qt::LeftButton, Qt::NoModifier));
    }
    void send(QEvent &&event) { QCoreApplication::sendEvent(viewport, &event); }
    void moveTo(const QPoint &pos) { send(QDragMoveEvent(pos, kActions, data.get(), Qt::LeftButton, Qt::NoModifier)); }

    static constexpr Qt::DropActions kActions = Qt::CopyAction | Qt::MoveAction;
    QWidget *viewport;
    std::unique_ptr<QMimeData> data;
};

} // namespace

class tst_TableWidgetUpDown : public QObject
{
    Q_OBJECT

private slots:
    // Five shown rows and three hidden spares; "to" -1: no move is reported.
    void dragAndDrop_data()
    {
        QTest::addColumn<int>("from"); // -1: pressed below the rows, after a press on row 2
        QTest::addColumn<int>("over");
        QTest::addColumn<int>("dy");
        QTest::addColumn<bool>("drop"); // or the drag leaves the table
        QTest::addColumn<QString>("state");
        QTest::addColumn<int>("to");
        QTest::newRow("below middle of last row") << 0 << 4 << 5 << true << "MoveToEnd" << 4;
        QTest::newRow("just above middle of last row") << 0 << 4 << -5 << true << "Moving" << 3;
        QTest::newRow("down onto a middle row") << 0 << 2 << 0 << true << "Moving" << 1;
        QTest::newRow("up onto first row") << 4 << 0 << -10 << true << "Moving" << 0;
        QTest::newRow("onto itself") << 2 << 2 << 0 << true << "Moving" << 2;
        QTest::newRow("leaving the table stops") << 0 << 2 << 0 << false << "Moving" << -1;
        QTest::newRow("from the empty space below the rows") << -1 << 2 << 0 << true << "Moving" << -1;
    }

    void dragAndDrop()
    {
        QFETCH(int, from);
        QFETCH(int, over);
        QFETCH(int, dy);
        QFETCH(int, to);
        TestEnvironment env;
        auto table = makeTable(5, 3);
        QVERIFY(table);
        QSignalSpy moved(table.get(), &CTableWidgetUpDown::MoveLayerSignal);
        press(*table, centreOf(*table, from < 0 ? 2 : from));
        if (from < 0) {
            press(*table, QPoint(50, 5 * kRowHeight + 40));
            QCOMPARE(table->currentRow(), 2);
            QVERIFY(table->selectionModel()->isRowSelected(2, QModelIndex()));
        }
        const QPoint target = centreOf(*table, over) + QPoint(0, dy);
        DragSession drag(*table);
        drag.moveTo(target);
        QTEST(table->property("state").toString(), "state");
        QCOMPARE(table->currentRow(), over);
        QVERIFY(table->IsAutoScrolling());

        QFETCH(bool, drop);
        if (drop)
            drag.send(QDropEvent(QPointF(target), DragSession::kActions, drag.data.get(), Qt::LeftButton, Qt::NoModifier));
        else
            drag.send(QDragLeaveEvent());
        QCOMPARE(moved.count(), to < 0 ? 0 : 1);
        if (to >= 0) {
            QCOMPARE(moved.first(), (QList<QVariant>{from, to}));
            QVERIFY(table->selectionModel()->isRowSelected(to, QModelIndex()));
        }
        QCOMPARE(table->property("state").toString(), QStringLiteral("Moved"));
        QVERIFY(!table->IsAutoScrolling());
        // The table reports the move; it never moves items itself.
        QCOMPARE(table->item(0, 0)->text() + table->item(4, 0)->text() + QString::number(table->rowCount()),
                 QStringLiteral("row 0row 48"));
    }

    void autoScroll_data()
    {
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("step");
        QTest::newRow("near top") << 10 << -5;
        QTest::newRow("near bottom") << 180 << 5;
        QTest::newRow("middle") << 100 << 0;
    }

    void autoScroll()
    {
        QFETCH(int, y);
        QFETCH(int, step);
        TestEnvironment env;
        auto table = makeTable(60, 0, 200);
        QVERIFY(table);
        table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        QScrollBar *bar = table->verticalScrollBar();
        bar->setValue(bar->maximum() / 2);
        const int before = bar->value();
        press(*table, QPoint(50, 100));
        DragSession drag(*table);
        drag.moveTo(QPoint(50, y));
        auto *timer = table->findChild<QTimer *>();
        QVERIFY(timer && timer->isActive());
        QCOMPARE(timer->interval(), 100);
        // One tick at a time, independent of the machine's speed.
        timer->stop();
        QMetaObject::invokeMethod(timer, "timeout");
        QCOMPARE(bar->value(), before + step);
        QMetaObject::invokeMethod(timer, "timeout");
        QCOMPARE(bar->value(), before + 2 * step);
        // The row under the pointer follows the scrolling.
        QCOMPARE(table->currentRow(), table->rowAt(y));
    }
};

QTEST_MAIN(tst_TableWidgetUpDown)
#include "tst_tablewidgetupdown.moc"
