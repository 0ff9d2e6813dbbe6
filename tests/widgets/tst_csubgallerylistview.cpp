#include "support/csubgallerylistview.h"
#include "testenvironment.h"

#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

class tst_CSubGalleryListView : public QObject
{
    Q_OBJECT

private slots:
    void rightPress_data();
    void rightPress();
    void doubleClickClearsCurrent();
    void leftPressSelects();
    void noRightClickYet();
};

// A shown view over four material names.
struct GalleryFixture
{
    GalleryFixture()
    {
        for (const char *name : {"Plywood", "Acrylic", "Leather", "Slate"})
            model.appendRow(new QStandardItem(QString::fromLatin1(name)));
        view.setModel(&model);
        view.resize(240, 200);
        view.move(30, 40);
        view.show();
    }
    QPoint rowCentre(int row) const { return view.visualRect(model.index(row, 0)).center(); }

    QStandardItemModel model;
    CSubGalleryListView view;
};

void tst_CSubGalleryListView::rightPress_data()
{
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("pressedRow");
    QTest::addColumn<bool>("onViewport");

    QTest::newRow("press on the current row") << 1 << 1 << true;
    QTest::newRow("press on another row") << 0 << 2 << true;
    QTest::newRow("last row") << 3 << 3 << true;
    QTest::newRow("no current row") << -1 << 2 << true;
    QTest::newRow("press sent to the view itself") << 2 << 2 << false;
}

void tst_CSubGalleryListView::rightPress()
{
    QFETCH(int, current);
    QFETCH(int, pressedRow);
    QFETCH(bool, onViewport);
    TestEnvironment env;
    GalleryFixture f;
    QVERIFY(QTest::qWaitForWindowExposed(&f.view));
    f.view.setCurrentIndex(f.model.index(current, 0));

    // The menu opens at the current item's top-right corner, wherever the
    // cursor is; compute it before the press clears the current index.
    const QPoint expected =
        f.view.viewport()->mapToGlobal(f.view.visualRect(f.model.index(current, 0)).topRight());
    QSignalSpy menu(&f.view, &CSubGalleryListView::RightMouseButtonPress);
    QSignalSpy pressed(&f.view, &QAbstractItemView::pressed);

    QWidget *target = onViewport ? f.view.viewport() : static_cast<QWidget *>(&f.view);
    const QPoint at = f.view.viewport()->mapTo(target, f.rowCentre(pressedRow));
    QTest::mousePress(target, Qt::RightButton, {}, at);

    QCOMPARE(menu.count(), 1);
    QCOMPARE(menu.takeFirst().at(0).toPoint(), expected);
    QCOMPARE(f.view.RightClickedRow(), current);
    QVERIFY(!f.view.currentIndex().isValid());
    // Consumed: the view never saw the press.
    QCOMPARE(pressed.count(), 0);
}

void tst_CSubGalleryListView::doubleClickClearsCurrent()
{
    TestEnvironment env;
    GalleryFixture f;
    QVERIFY(QTest::qWaitForWindowExposed(&f.view));
    f.view.setCurrentIndex(f.model.index(1, 0));
    QSignalSpy doubleClicked(&f.view, &QAbstractItemView::doubleClicked);
    QSignalSpy menu(&f.view, &CSubGalleryListView::RightMouseButtonPress);

    QTest::mouseDClick(f.view.viewport(), Qt::LeftButton, {}, f.rowCentre(1));

    QVERIFY(!f.view.currentIndex().isValid());
    QCOMPARE(doubleClicked.count(), 0);
    QCOMPARE(menu.count(), 0);
    QCOMPARE(f.view.RightClickedRow(), -1);
}

void tst_CSubGalleryListView::leftPressSelects()
{
    TestEnvironment env;
    GalleryFixture f;
    QVERIFY(QTest::qWaitForWindowExposed(&f.view));
    QSignalSpy menu(&f.view, &CSubGalleryListView::RightMouseButtonPress);
    QSignalSpy pressed(&f.view, &QAbstractItemView::pressed);

    QTest::mouseClick(f.view.viewport(), Qt::LeftButton, {}, f.rowCentre(2));

    QCOMPARE(f.view.currentIndex().row(), 2);
    QCOMPARE(f.view.currentIndex().data().toString(), QStringLiteral("Leather"));
    QCOMPARE(pressed.count(), 1);
    QCOMPARE(menu.count(), 0);
}

void tst_CSubGalleryListView::noRightClickYet()
{
    TestEnvironment env;
    CSubGalleryListView view;
    QCOMPARE(view.RightClickedRow(), -1);
}

QTEST_MAIN(tst_CSubGalleryListView)
#include "tst_csubgallerylistview.moc"
