#include "libmgr/cmateriallistwidget.h"
#include "libmgr/dlglayerparampresets.h"
#include "libmgr/mylistwidget.h"
#include "libmgrwidgettest.h"
#include "testenvironment.h"

#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QMimeData>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>

namespace {

using Args = QVariantList;
using P = DlgLayerParamPresets;
const QString kMaterial = QStringLiteral("comboBox_Material");

Args first(const QSignalSpy &spy)
{
    return spy.isEmpty() ? Args() : spy.at(0);
}

// A shown panel with three materials, three thicknesses and five crafts, each
// chooser ending in its custom entry; material 1 and thickness 1 current.
struct PanelFixture
{
    PanelFixture()
    {
        for (const char *name : {"Plywood", "Acrylic", "Leather", "Custom material"})
            panel.AddMaterial(QString::fromLatin1(name), QString());
        for (const char *name : {"1.0mm", "3.0mm", "5.0mm", "Custom Thickness"})
            panel.AddThickness(QString::fromLatin1(name));
        panel.SetCurrentMaterial(1);
        panel.SetCurrentThickness(1);
        panel.show();
        // Crafts come and go while the panel is shown.
        for (int fill = 0; fill < 2; ++fill) {
            panel.ClearCrafts();
            for (int craft = 0; craft < 5; ++craft)
                panel.AddCraft(QString::number(craft), craft);
        }
    }
    // The chooser's request signal (mean) or its index signal.
    static QMetaMethod signal(const QString &combo, bool mean)
    {
        if (combo == kMaterial)
            return mean ? QMetaMethod::fromSignal(&P::SigMaterialMean)
                        : QMetaMethod::fromSignal(&P::SigMaterialIndxChanged);
        return mean ? QMetaMethod::fromSignal(&P::SigThicknessMean)
                    : QMetaMethod::fromSignal(&P::SigThicknessIndxChanged);
    }

    TestEnvironment env;
    P panel;
};

// Outside a real drag Qt delivers no drop event, so the test hands it over.
struct DropTarget : CMaterialListWidget
{
    using CMaterialListWidget::dropEvent;
};

} // namespace

class tst_DlgLayerParamPresets : public QObject
{
    Q_OBJECT

private slots:
    void chooseRow_data()
    {
        QTest::addColumn<QString>("combo");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("current");
        QTest::addColumn<Args>("changed");
        QTest::addColumn<Args>("mean");
        const QString thickness = QStringLiteral("comboBox_Thickness");
        QTest::newRow("material") << kMaterial << true << 2 << 2 << Args{2} << Args{};
        QTest::newRow("custom material") << kMaterial << true << 3 << 1 << Args{} << Args{0, 1};
        QTest::newRow("thickness") << thickness << true << 0 << 0 << Args{0} << Args{};
        QTest::newRow("custom thickness")
            << thickness << true << 3 << 1 << Args{} << Args{0, 1, QString()};
        QTest::newRow("material, signals off") << kMaterial << false << 2 << 2 << Args{} << Args{};
        QTest::newRow("custom thickness, signals off")
            << thickness << false << 3 << 3 << Args{} << Args{};
    }
    void chooseRow()
    {
        QFETCH(QString, combo);
        QFETCH(bool, enabled);
        QFETCH(int, row);
        PanelFixture f;
        f.panel.SetSignalsEnabled(enabled ? 1 : 0);
        QSignalSpy changed(&f.panel, f.signal(combo, false));
        QSignalSpy mean(&f.panel, f.signal(combo, true));
        child<QComboBox>(&f.panel, combo)->setCurrentIndex(row);

        QTEST(child<QComboBox>(&f.panel, combo)->currentIndex(), "current");
        QTEST(combo == kMaterial ? f.panel.CurrentMaterial() : f.panel.CurrentThickness(),
              "current");
        QTEST(first(changed), "changed");
        QTEST(first(mean), "mean");
        QCOMPARE(changed.count() + mean.count(), int(enabled));
        QCOMPARE(f.env.logLines().contains("0|" + combo + " was changed."), enabled);
    }

    void customEntryAlone()
    {
        TestEnvironment env;
        P panel;
        panel.AddMaterial(QStringLiteral("Custom material"), QString());
        QSignalSpy mean(&panel, &P::SigMaterialMean);
        auto *box = child<QComboBox>(&panel, kMaterial);
        emit box->activated(0); // picked again: no index change
        QCOMPARE(first(mean), (Args{0, 0}));
        QCOMPARE(box->currentIndex(), -1);
        emit box->activated(0); // picked after the change
        QCOMPARE(mean.count(), 1);
    }

    void listSignals_data()
    {
        QTest::addColumn<bool>("craft");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<int>("emitted");
        QTest::newRow("craft") << true << true << 1;
        QTest::newRow("craft, signals off") << true << false << 0;
        QTest::newRow("scheme") << false << true << 1;
        QTest::newRow("scheme, signals off") << false << false << 1;
    }
    void listSignals()
    {
        QFETCH(bool, craft);
        QFETCH(bool, enabled);
        QFETCH(int, emitted);
        PanelFixture f;
        QVERIFY(QTest::qWaitForWindowExposed(&f.panel));
        f.panel.SetSignalsEnabled(enabled ? 1 : 0);
        QSignalSpy clicked(&f.panel, craft ? &P::SigCraftCilcked : &P::SigSchemeCilcked);
        QSignalSpy rowChanged(&f.panel, craft ? &P::SigCraftCurChaged : &P::SigSchemeCurChaged);
        auto *list = child<QListWidget>(&f.panel, craft ? "listWidget" : "listWidget_scheme");
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(1)).center());

        QCOMPARE(clicked.count(), emitted);
        QCOMPARE(first(rowChanged), emitted ? Args{1} : Args{});
        if (emitted)
            QCOMPARE(clicked.at(0).at(0).value<QListWidgetItem *>(), list->item(1));
        QCOMPARE(craft ? f.panel.CurrentCraftRow() : f.panel.CurrentScheme(), 1);
        // Both are strips of equal cells across the panel: five crafts, three schemes.
        QCOMPARE(list->width(), f.panel.layout()->contentsRect().width());
        QCOMPARE(list->item(1)->sizeHint(), QSize(list->width() / (craft ? 5 : 3), list->height()));
    }

    void contextMenu_data()
    {
        QTest::addColumn<QString>("combo");
        QTest::addColumn<int>("row");
        QTest::addColumn<QStringList>("actions"); // none: no menu
        QTest::addColumn<Args>("lastAction");
        const QString thickness = QStringLiteral("comboBox_Thickness");
        QTest::newRow("material") << kMaterial << 0 << QStringList{"Rename", "Delete"}
                                  << Args{2, 1};
        QTest::newRow("custom material") << kMaterial << 3 << QStringList{} << Args{};
        QTest::newRow("thickness")
            << thickness << 2 << QStringList{"Delete"} << Args{1, 1, QString()};
        QTest::newRow("custom thickness") << thickness << 3 << QStringList{} << Args{};
    }
    void contextMenu()
    {
        QFETCH(QString, combo);
        QFETCH(int, row);
        QFETCH(QStringList, actions);
        PanelFixture f;
        QSignalSpy mean(&f.panel, f.signal(combo, true));
        auto *box = child<QComboBox>(&f.panel, combo);
        box->showPopup();
        QAbstractItemView *view = box->view();
        view->setCurrentIndex(view->model()->index(row, 0));
        const QRect rect = view->visualRect(view->currentIndex());
        QTest::mousePress(view->viewport(), Qt::RightButton, {}, rect.center());

        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QCOMPARE(bool(menu), !actions.isEmpty());
        if (!menu)
            return box->hidePopup();
        QCOMPARE(menu->objectName(), QStringLiteral("CCustomGalleryOprMenu"));
        QStringList texts;
        for (const QAction *action : menu->actions())
            texts << action->text();
        QCOMPARE(texts, actions);
        QCOMPARE(menu->pos(), view->viewport()->mapToGlobal(rect.topRight()) + QPoint(3, 0));
        // The action works on the chooser's current row, not on the clicked one.
        menu->actions().constLast()->trigger();
        menu->close();
        QTEST(first(mean), "lastAction");
        QVERIFY(!view->isVisible());
    }

    void lasers_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<QString>("texts");
        QTest::addColumn<QList<int>>("tubes");
        QTest::newRow("fibre and glass") << QByteArray("LASER1_TYPE=3\nLASER2_TYPE=0")
                                         << "Laser1-Fiber|Laser2-Glass" << QList<int>{3, 0};
        QTest::newRow("semiconductor and RF")
            << QByteArray("LASER1_TYPE=4\nLASER2_TYPE=2") << "Laser1-Semiconductor laser|Laser2-RF"
            << QList<int>{4, 2};
        QTest::newRow("unknown and garbage") << QByteArray("LASER1_TYPE=9\nLASER2_TYPE=x")
                                             << "Laser1-Glass|Laser2-Glass" << QList<int>{0, 0};
    }
    void lasers()
    {
        QFETCH(QByteArray, ini);
        QFETCH(QList<int>, tubes);
        TestEnvironment env;
        QVERIFY(env.writeFile(QStringLiteral("FactoryParam.ini"), "[FACTORY_PARAM_LASER]\n" + ini));
        P panel;
        panel.ShowLaserChoice(true, true);
        panel.show();
        QSignalSpy laser(&panel, &P::LaserChanged);
        QStringList texts;
        for (int i = 0; i < 2; ++i) {
            auto *button =
                child<QRadioButton>(&panel, "radioButton_laser" + QString::number(i + 1));
            texts << button->text();
            QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
            QCOMPARE(panel.IsFirstLaserChecked(), i == 0);
            QCOMPARE(laser.at(i), (Args{i + 1, QVariant::fromValue(ELASER_TUBE(tubes.at(i)))}));
        }
        QTEST(texts.join('|'), "texts");
        QVERIFY(env.logLines().contains(QStringLiteral("0|radioButton_laser2 was clicked.")));
        panel.ShowLaserChoice(false, true); // hiding the choice falls back to the first laser
        QVERIFY(panel.IsFirstLaserChecked());
    }

    void schemesAndLanguage()
    {
        TestEnvironment env;
        P panel;
        auto *schemes = child<QListWidget>(&panel, QStringLiteral("listWidget_scheme"));
        QSignalSpy changed(&panel, &P::SigSchemeCurChaged);
        QCOMPARE(panel.CurrentScheme(), 2);
        panel.SetCurrentScheme(0);
        QCOMPARE(panel.CurrentScheme(), 0);
        QCOMPARE(changed.count(), 0);

        const auto texts = [&] {
            return QStringList{schemes->item(0)->text(), schemes->item(2)->text(),
                               child<QLabel>(&panel, QStringLiteral("label_6"))->text()};
        };
        QCOMPARE(inLanguage(QStringLiteral("Chs"), texts),
                 (QStringList{"推荐", "临时", "方案设置"}));
        QCOMPARE(schemes->item(2)->text(), QStringLiteral("Temporary"));
    }

    void itemSizes_data()
    {
        QTest::addColumn<int>("items");
        QTest::addColumn<QSize>("itemSize");
        QTest::newRow("four items keep their size") << 4 << QSize(-1, -1);
        QTest::newRow("five items share the row") << 5 << QSize(80, 40);
        QTest::newRow("six items keep their size") << 6 << QSize(-1, -1);
    }
    void itemSizes()
    {
        QFETCH(int, items);
        QFETCH(QSize, itemSize);
        TestEnvironment env;
        MyListWidget list;
        for (int i = 0; i < items; ++i)
            list.addItem(QString::number(i));
        list.resize(400, 40);
        list.show();
        QVERIFY(QTest::qWaitForWindowExposed(&list));
        for (int row = 0; row < items; ++row)
            QCOMPARE(list.item(row)->sizeHint(), itemSize);
    }

    void drop_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("onto"); // -1: below the rows
        QTest::addColumn<Args>("sort");
        QTest::newRow("onto another material") << 0 << 2 << Args{0, 2};
        QTest::newRow("onto the custom entry") << 1 << 3 << Args{};
        QTest::newRow("outside any row") << 1 << -1 << Args{};
        QTest::newRow("custom entry dragged") << 3 << 0 << Args{};
    }
    void drop()
    {
        QFETCH(int, from);
        QFETCH(int, onto);
        TestEnvironment env;
        DropTarget list;
        list.setDragDropMode(QAbstractItemView::InternalMove);
        list.addItems({"Plywood", "Acrylic", "Leather", "Custom material"});
        list.resize(200, 200);
        list.show();
        list.setCurrentRow(from);
        QSignalSpy sorted(&list, &CMaterialListWidget::SortMaterialsRequested);

        const QPoint at =
            onto < 0 ? QPoint(100, 190) : list.visualItemRect(list.item(onto)).center();
        std::unique_ptr<QMimeData> mime(list.model()->mimeData({list.currentIndex()}));
        QDropEvent event(at, Qt::MoveAction, mime.get(), Qt::LeftButton, {});
        list.dropEvent(&event);
        QTEST(first(sorted), "sort");
        QCOMPARE(list.item(list.count() - 1)->text(), QStringLiteral("Custom material"));
    }
};

QTEST_MAIN(tst_DlgLayerParamPresets)
#include "tst_dlglayerparampresets.moc"
