#include "layertable/clayermodewidget.h"
#include "layertable/ctablewidgetupdown.h"
#include "layertable/dlglayermgr.h"
#include "libmgrwidgettest.h"
#include "library/clayercontext.h"
#include "module/clayermgrins.h"
#include "module/layercolors.h"
#include "panelfixtures.h"
#include "support/directories.h"
#include "testenvironment.h"

#include "cshape.h"
#include "cshapelist.h"

#include <QComboBox>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <memory>

using namespace paneltest;

namespace {

enum { COL_NUM, COL_MODE, COL_SPEED, COL_POWER, COL_TYPE, COL_AIR, COL_OUTPUT };

// Far from the palette, never a reserved colour.
quint32 plainColor(int i)
{
    return 0x200000u + quint32(i) * 3u;
}

CLayerParam *addLayer(CLayerMgrIns &manager, quint32 color, int workType = WORK_CUTTING)
{
    auto *layer = new CLayerParam(color);
    layer->WORK_TYPE = workType;
    manager.AddLayer(layer);
    return layer;
}

QByteArray factoryLasers(int laser1, int laser2)
{
    return QStringLiteral("[FACTORY_PARAM_LASER]\nLASER1_TYPE=%1\nLASER2_TYPE=%2\n").arg(laser1).arg(laser2).toUtf8();
}

struct PanelFixture
{
    explicit PanelFixture(const QByteArray &factory = QByteArray())
    {
        SetAppResourceDir(QStringLiteral(LAYERMGR_SOURCE_DIR "/resources"));
        g_LayerContext.m_unitMode = 1;
        if (!factory.isEmpty())
            env.writeFile(QStringLiteral("FactoryParam.ini"), factory);
        manager = std::make_unique<CLayerMgrIns>(&host);
        panel = std::make_unique<DlgLayerMgr>();
        table = panel->findChild<CTableWidgetUpDown *>(QStringLiteral("tableWidget"));
        // Tall enough that rows 0-35 carry their cell widgets.
        panel->resize(640, 1000);
    }
    // Shown first, as the host does: rows get their widgets only where they are seen.
    bool sync()
    {
        panel->show();
        const bool shown = QTest::qWaitForWindowExposed(panel.get());
        panel->SyncLayers(manager.get(), false);
        return shown;
    }
    // Layers of plain colours 0..count-1, or of the standard colours 1..count (letters B, C, ...).
    bool withLayers(int count, bool standard = false)
    {
        for (int i = 0; i < count; ++i)
            addLayer(*manager, standard ? StandardLayerColor(quint32(i) + 1, false) : plainColor(i));
        return sync();
    }
    void update(const QList<quint32> &colors)
    {
        g_pLayerPanel = panel.get();
        CShapeList shapes;
        for (quint32 color : colors)
            shapes.AddTail(new CShape(color));
        manager->UpdateLayers(&shapes);
    }
    QWidget *cell(int row, int column) const { return table->cellWidget(row, column); }
    QLineEdit *editor(int row, int column) const { return cell(row, column)->findChild<QLineEdit *>(); }
    QComboBox *combo(int row, int column) const { return cell(row, column)->findChild<QComboBox *>(); }
    QPushButton *colorButton(int row) const
    {
        return cell(row, COL_NUM)->findChild<QPushButton *>(QStringLiteral("pushButton_layerColor"));
    }
    QString number(int row) const { return cell(row, COL_NUM)->findChild<QLabel *>()->text(); }
    QPushButton *eye(int row) const { return qobject_cast<QPushButton *>(cell(row, COL_OUTPUT)); }
    QString text(int row, int column) const { return table->item(row, column)->text(); }
    QPoint centre(int row, int column) const { return table->visualRect(table->model()->index(row, column)).center(); }
    QStringList letters() const
    {
        QStringList out;
        for (int row = 0; row < table->rowCount() && !table->isRowHidden(row); ++row)
            out << colorButton(row)->text();
        return out;
    }
    QList<int> numbers() const
    {
        QList<int> out;
        for (quint32 i = 0; i < manager->GetLayerCount(); ++i)
            out << manager->GetLayerAt(i)->AUX_INDEX;
        return out;
    }

    TestEnvironment env;
    FakeLayerHost host;
    std::unique_ptr<CLayerMgrIns> manager;
    std::unique_ptr<DlgLayerMgr> panel;
    CTableWidgetUpDown *table = nullptr;
};

} // namespace

class tst_DlgLayerMgr : public QObject
{
    Q_OBJECT

private slots:
    // Headers; mode, air, laser and mode tip of a cutting row; the list of a fill-locked row.
    void languages_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("English") << "" << QStringList{"Num", "Mode", "Speed", "Power", "Type", "Blowing", "Output", "Cutting",
                                                      "High", "Fiber", "Cutting", "Shallow Engrave", "Deep Engrave"};
        QTest::newRow("Chinese") << "Chs" << QStringList{"序号", "模式", "速度", "功率", "类型", "吹气", "输出",
                                                          "切割", "强", "光纤", "切割", "浅雕", "深雕"};
    }

    void languages()
    {
        QFETCH(QString, language);
        PanelFixture f(factoryLasers(3, 0));
        addLayer(*f.manager, plainColor(0), WORK_CUTTING);
        addLayer(*f.manager, plainColor(1), WORK_DEEP_ENGRAVE)->FILL_LOCKED = true;
        f.sync();
        const QStringList texts = inLanguage(language, [&f] {
            QStringList texts;
            for (int column = 0; column <= COL_OUTPUT; ++column)
                texts << f.table->horizontalHeaderItem(column)->text();
            return texts << f.combo(0, COL_MODE)->currentText() << f.combo(0, COL_AIR)->currentText()
                         << f.text(0, COL_TYPE) << f.table->item(0, COL_MODE)->toolTip()
                         << f.combo(1, COL_MODE)->itemText(0) << f.combo(1, COL_MODE)->itemText(1);
        });
        QTEST(texts, "texts");
        // The language change touched no layer and no choice.
        QVERIFY(f.manager->GetLayerAt(1)->WORK_TYPE == WORK_DEEP_ENGRAVE && f.combo(1, COL_MODE)->currentIndex() == 1);
    }

    // Line speed 100, powers 55.5 and 33; fill speed 250.26, powers 12.345678 and 7. The laser
    // shown is the machine's first or second, by the laser the process has on. "shown" lists
    // mode, speed, speed tip, power, power tip and laser.
    void rowTexts_data()
    {
        QTest::addColumn<QByteArray>("factory");
        QTest::addColumn<int>("workType");
        QTest::addColumn<bool>("laser1On");
        QTest::addColumn<QStringList>("shown");
        const auto row = [](const char *name, const QByteArray &factory, int workType, bool laser1On, const char *shown) {
            QTest::newRow(name) << factory << workType << laser1On << QString::fromUtf8(shown).split(QLatin1Char('|'));
        };
        const QByteArray two = factoryLasers(3, 4);
        row("scoring, laser 2", two, 1, false, "Scoring|100|100.0|33.0|33|Semiconductor laser");
        row("shallow engrave, laser 1", two, 2, true, "Shallow Engrave|250|250.3|12.3|12.3457|Fiber");
        row("mark", two, 4, false, "Mark|/|/|/|/|Fiber");
        row("garbage work type 5", two, 5, true, "Unknow|250|250.3|12.3|12.3457|Fiber");
        row("garbage work type -1", two, -1, false, "Unknow|250|250.3|7.0|7|Semiconductor laser");
        row("no FactoryParam.ini", QByteArray(), 0, true, "Cutting|100|100.0|55.5|55.5|Glass");
        row("garbage laser type 5", factoryLasers(5, 3), 0, true, "Cutting|100|100.0|55.5|55.5|Glass");
    }

    void rowTexts()
    {
        QFETCH(QByteArray, factory);
        QFETCH(int, workType);
        QFETCH(bool, laser1On);
        PanelFixture f(factory);
        CLayerParam *layer = addLayer(*f.manager, StandardLayerColor(3, false), workType);
        layer->CUT.CUT_SPEED = 100.0;
        layer->CUT.LASER1.ENABLE = laser1On;
        layer->CUT.LASER1.POWER_MAX = 55.5;
        layer->CUT.LASER2.POWER_MAX = 33.0;
        layer->SWEEP.SWEEP_SPEED = 250.26;
        layer->SWEEP.LASER1.ENABLE = laser1On;
        layer->SWEEP.LASER1.POWER_MAX = 12.345678;
        layer->SWEEP.LASER2.POWER_MAX = 7.0;
        layer->BLOW = false;
        f.sync();

        // What the mode cell paints: the chosen item, or the placeholder when none is.
        QComboBox *mode = f.combo(0, COL_MODE);
        const QStringList shown{mode->currentIndex() < 0 ? mode->placeholderText() : mode->currentText(),
                                f.editor(0, COL_SPEED)->text(), f.cell(0, COL_SPEED)->toolTip(),
                                f.editor(0, COL_POWER)->text(), f.cell(0, COL_POWER)->toolTip(), f.text(0, COL_TYPE)};
        QTEST(shown, "shown");
        QCOMPARE(f.combo(0, COL_AIR)->currentText(), QStringLiteral("Low"));
    }

    // Palette colours show their own number whatever was stored; other colours keep a stored
    // number of 37 or more that no other layer holds, and take the lowest free one otherwise.
    void numbers_data()
    {
        QTest::addColumn<QList<quint32>>("colors");
        QTest::addColumn<QList<int>>("stored");
        QTest::addColumn<QList<int>>("numbers");
        QTest::addColumn<QStringList>("letters");
        const QList<int> stored{99};
        QTest::newRow("black") << QList<quint32>{0} << stored << QList<int>{1} << QStringList{"A"};
        QTest::newRow("grey of no layer is black's") << QList<quint32>{0x010101} << stored << QList<int>{1} << QStringList{"A"};
        QTest::newRow("reserved colour keeps its own number") << QList<quint32>{kReservedColorA} << stored << QList<int>{99}
                                                              << QStringList{"XLVII"};
        QTest::newRow("others from 37 up") << QList<quint32>{StandardLayerColor(1, false), plainColor(0), plainColor(1)}
                                           << QList<int>{-1, -1, -1} << QList<int>{2, 37, 38} << QStringList{"B", "k", "l"};
        QTest::newRow("first of a shared number moves on")
            << QList<quint32>{plainColor(0), plainColor(1), plainColor(2), plainColor(3), plainColor(4)}
            << QList<int>{40, 40, -1, 37, 38} << QList<int>{39, 40, 41, 37, 38} << QStringList{"m", "n", "o", "k", "l"};
    }

    void numbers()
    {
        QFETCH(QList<quint32>, colors);
        QFETCH(QList<int>, stored);
        PanelFixture f;
        for (int i = 0; i < colors.size(); ++i)
            addLayer(*f.manager, colors[i])->AUX_INDEX = stored[i];
        f.sync();
        QTEST(f.numbers(), "numbers");
        QTEST(f.letters(), "letters");
    }

    void numbersOnLaterRefills()
    {
        // Refills without new layers keep whatever is stored; a new layer renumbers.
        PanelFixture f;
        QVERIFY(f.withLayers(3));
        f.manager->GetLayerAt(0)->AUX_INDEX = 38;
        f.sync();
        QCOMPARE(f.letters(), (QStringList{"l", "l", "m"}));
        addLayer(*f.manager, plainColor(9));
        f.sync();
        QCOMPARE(f.numbers(), (QList<int>{37, 38, 39, 40}));

        // A special layer held back from the panel gets a number of its own once it is shown.
        PanelFixture g;
        g.update({plainColor(0), kReservedColorA, StandardLayerColor(1, false)});
        QCOMPARE(g.letters().size(), 2);
        g.panel->SetDualLaser(true);
        QCOMPARE(g.numbers(), (QList<int>{37, 2, 38}));
        QCOMPARE(g.letters(), (QStringList{"k", "B", "l"}));
    }

    void rowsFollowTheList()
    {
        PanelFixture f;
        QVERIFY(f.withLayers(11));
        QCOMPARE(f.number(10), QStringLiteral("11"));
        QVERIFY(!f.panel->HasRowWidgets(12));
        QVERIFY(!(f.table->item(12, COL_TYPE)->flags() & Qt::ItemIsEditable));
        // Fewer layers hide rows but never delete them, nor keep their layers.
        const int rows = f.table->rowCount();
        f.update({plainColor(0), plainColor(1), plainColor(2)});
        QCOMPARE(f.table->rowCount(), rows);
        QCOMPARE(f.letters().size(), 3);
        QVERIFY(!f.table->item(5, COL_MODE)->data(DlgLayerMgr::kLayerRole).value<void *>());
    }

    // Only the rows near the visible part carry cell widgets; rows scrolled to get theirs,
    // showing speeds in the unit in force.
    void widgetsFollowScrolling()
    {
        PanelFixture f;
        QVERIFY(f.withLayers(300));
        QVERIFY(f.panel->HasRowWidgets(0) && !f.panel->HasRowWidgets(150));
        g_LayerContext.m_unitMode = 3;
        f.panel->RefreshSpeeds();
        f.table->scrollToBottom();
        QApplication::processEvents();
        QVERIFY(f.panel->HasRowWidgets(299) && !f.panel->HasRowWidgets(0));
        QCOMPARE(f.number(299) + QLatin1Char(' ') + f.cell(299, COL_SPEED)->toolTip(), QStringLiteral("300 60.0"));
    }

    void typeHeaderToggleNeedsTwoLasers()
    {
        PanelFixture f(factoryLasers(3, 0));
        addLayer(*f.manager, plainColor(1))->CUT.LASER1.ENABLE = true;
        addLayer(*f.manager, plainColor(2))->CUT.LASER1.ENABLE = false;
        QVERIFY(f.sync());
        QHeaderView *header = f.table->horizontalHeader();
        auto clickType = [&]() -> QString {
            QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier,
                              QPoint(header->sectionViewportPosition(COL_TYPE) + 5, header->height() / 2));
            return f.text(0, COL_TYPE) + QLatin1Char(',') + f.text(1, COL_TYPE);
        };
        QCOMPARE(clickType(), QStringLiteral("Fiber,Glass"));
        f.panel->SetDualLaser(true);
        QCOMPARE(clickType(), QStringLiteral("Glass,Fiber"));
        header->sectionClicked(COL_SPEED); // other headers do nothing
        QCOMPARE(clickType(), QStringLiteral("Fiber,Glass"));
        QCOMPARE(f.host.calls, (QStringList{"LayerEvent 0", "RefreshView", "LayerEvent 0", "RefreshView"}));
    }

    // On a table of four layers, row 0 current. Below the rows there is nothing to select, and
    // the current row clicked again tells the host nothing.
    void clicks_data()
    {
        QTest::addColumn<QString>("where");
        QTest::addColumn<int>("current");
        QTest::addColumn<bool>("output"); // of row 2
        QTest::addColumn<QStringList>("calls");
        QTest::addColumn<QStringList>("log");
        const QStringList current{"CurrentLayerChanged"}, changed{"LayersChanged"};
        const QStringList eye{"0|pushButton_layerEye was clicked.", "1|clicke index 2,6"};
        QTest::newRow("right button on a row") << "row right" << 2 << true << current << QStringList();
        QTest::newRow("left click on a cell") << "row left" << 2 << true << current << QStringList{"1|clickd row 2, column 4"};
        QTest::newRow("eye") << "eye" << 0 << false << changed << eye;
        QTest::newRow("eye clicked twice") << "eye twice" << 0 << true << changed + changed << eye + eye;
        QTest::newRow("output cell beside the eye") << "output cell" << 2 << false << current + changed
                                                    << QStringList{"1|clickd row 2, column 6"};
    }

    void clicks()
    {
        QFETCH(QString, where);
        QFETCH(int, current);
        QFETCH(bool, output);
        PanelFixture f;
        QVERIFY(f.withLayers(4));
        f.env.clearLog();
        if (where.startsWith(QLatin1String("row")))
            QTest::mouseClick(f.table->viewport(), where.endsWith(QLatin1String("left")) ? Qt::LeftButton : Qt::RightButton,
                              Qt::NoModifier, f.centre(2, COL_TYPE));
        else if (where == QLatin1String("output cell"))
            f.table->cellClicked(2, COL_OUTPUT);
        for (int i = where.startsWith(QLatin1String("eye")) + where.endsWith(QLatin1String("twice")); i > 0; --i)
            QTest::mouseClick(f.eye(2), Qt::LeftButton);
        QTEST(f.panel->CurrentRow(), "current");
        QCOMPARE(f.panel->CurrentLayerColor(), plainColor(current));
        if (where.startsWith(QLatin1String("row")))
            QVERIFY(f.table->selectionModel()->isRowSelected(current, QModelIndex()));
        QTEST(f.host.calls, "calls");
        QTEST(f.env.logLines(), "log");
        QCOMPARE(f.manager->GetLayerAt(2)->OUTPUT, output);
        QCOMPARE(f.eye(2)->isChecked(), output);

        const QStringList calls = f.host.calls;
        QTest::mouseClick(f.table->viewport(), Qt::LeftButton, Qt::NoModifier, f.centre(current, COL_TYPE));
        QTest::mousePress(f.table->viewport(), Qt::RightButton, Qt::NoModifier, QPoint(10, f.table->viewport()->height() - 5));
        QCOMPARE(f.panel->CurrentRow(), current);
        QCOMPARE(f.host.calls, calls);
    }

    // Row 1 holds line speed 12.25, fill speed 30 and powers of 20; row 0 is never touched.
    // "after": the work type, the speed and power of the block it uses, and the edited field
    // (the speed field after a choice in a list).
    void cellEdit_data()
    {
        QTest::addColumn<int>("before");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("after");
        QTest::addColumn<bool>("fillLocked");
        QTest::addColumn<int>("unitMode");
        const auto row = [](const char *name, int before, int column, const char *input, const char *after,
                            bool fillLocked = false, int unitMode = 1) {
            QTest::newRow(name) << before << column << QString::fromUtf8(input) << QString::fromUtf8(after) << fillLocked
                                << unitMode;
        };
        row("cutting to mark", 0, COL_MODE, "Mark", "4 30 20 /");
        row("mark to scoring", 4, COL_MODE, "Scoring", "1 12.25 20 12");
        row("cutting to shallow engrave", 0, COL_MODE, "Shallow Engrave", "2 30 20 30");
        row("locked fill to deep engrave", 2, COL_MODE, "Deep Engrave", "3 30 20 30", true);
        row("air off", 0, COL_AIR, "Low", "0 12.25 20 12");
        row("cutting speed", 0, COL_SPEED, "120", "0 120 20 120");
        row("engraving speed", 2, COL_SPEED, "80", "2 80 20 80");
        row("speed typed in mm/min", 0, COL_SPEED, "600", "0 10 20 600", false, 3);
        row("scoring power above range corrected", 1, COL_POWER, "150", "1 12.25 100 100.0");
        row("deep engraving power below range corrected", 3, COL_POWER, "0", "3 30 0.1 0.1");
        row("garbage work type keeps its values", 7, COL_POWER, "50", "7 30 20 20.0");
    }

    void cellEdit()
    {
        QFETCH(int, before);
        QFETCH(int, column);
        QFETCH(QString, input);
        QFETCH(bool, fillLocked);
        PanelFixture f;
        QFETCH(int, unitMode);
        g_LayerContext.m_unitMode = unitMode;
        addLayer(*f.manager, plainColor(0));
        CLayerParam *layer = addLayer(*f.manager, plainColor(1), before);
        layer->FILL_LOCKED = fillLocked;
        layer->CUT.CUT_SPEED = 12.25;
        layer->SWEEP.SWEEP_SPEED = 30.0;
        for (LaserParam *laser : {&layer->CUT.LASER1, &layer->CUT.LASER2, &layer->SWEEP.LASER1, &layer->SWEEP.LASER2})
            laser->POWER_MAX = 20.0;
        f.sync();

        const bool list = column == COL_MODE || column == COL_AIR;
        QLineEdit *shown = f.editor(1, list ? int(COL_SPEED) : column);
        if (list) {
            f.combo(1, column)->setCurrentText(input);
        } else {
            shown->setFocus();
            shown->selectAll();
            QTest::keyClicks(shown, input);
            QTest::keyClick(shown, Qt::Key_Return);
        }
        const bool line = layer->WORK_TYPE == WORK_CUTTING || layer->WORK_TYPE == WORK_SCORING;
        const LaserParam &laser1 = line ? layer->CUT.LASER1 : layer->SWEEP.LASER1;
        QTEST(QStringLiteral("%1 %2 %3 %4").arg(layer->WORK_TYPE).arg(line ? layer->CUT.CUT_SPEED : layer->SWEEP.SWEEP_SPEED)
                  .arg(laser1.POWER_MAX).arg(shown->text()), "after");
        QCOMPARE((line ? layer->CUT.LASER2 : layer->SWEEP.LASER2).POWER_MAX, laser1.POWER_MAX);
        QCOMPARE(layer->BLOW, column != COL_AIR);
        QCOMPARE(f.table->item(1, COL_MODE)->toolTip(), CLayerModeWidget::WorkTypeName(layer->WORK_TYPE));
        QCOMPARE(f.editor(1, COL_SPEED)->isEnabled() + f.editor(1, COL_POWER)->isEnabled(),
                 layer->WORK_TYPE == WORK_MARK ? 0 : 2);
        const QStringList calls = column == COL_MODE ? QStringList{"LayersChanged", "LayerEvent 2", "RefreshView"}
                                  : column == COL_AIR ? QStringList{"LayersChanged"}
                                                      : QStringList();
        QCOMPARE(f.host.calls, calls);
        // The other process block and the other layer are left alone.
        QCOMPARE((line ? layer->SWEEP.LASER1 : layer->CUT.LASER1).POWER_MAX, 20.0);
        QVERIFY(f.manager->GetLayerAt(0)->WORK_TYPE == WORK_CUTTING && f.manager->GetLayerAt(0)->BLOW);
    }

    void moveLayer_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QStringList>("letters");
        QTest::newRow("first to end") << 0 << 4 << QStringList{"C", "D", "E", "F", "B"};
        QTest::newRow("last to first") << 4 << 0 << QStringList{"F", "B", "C", "D", "E"};
    }

    void moveLayer()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        PanelFixture f;
        QVERIFY(f.withLayers(5, true));
        emit f.table->MoveLayerSignal(from, to);
        QTEST(f.letters(), "letters");
        QCOMPARE(f.host.calls, (QStringList{"LayerEvent 3", "RefreshView", "LayersChanged"}));
        QCOMPARE(f.number(to), QStringLiteral("0%1").arg(to + 1));
    }

    // The host hands over the shapes; the rows of the selected shapes' layers are selected.
    void selectLayersOfShapes_data()
    {
        QTest::addColumn<QList<quint32>>("selectedColors");
        QTest::addColumn<int>("selected");
        QTest::addColumn<int>("current");
        QTest::newRow("none keeps current row") << QList<quint32>() << 1 << 1;
        // Rows are selected in table order; single selection keeps the last.
        QTest::newRow("several") << QList<quint32>{plainColor(4), plainColor(2)} << 4 << 1;
        QTest::newRow("reserved colour never matched") << QList<quint32>{kReservedColorA} << 1 << 1;
    }

    void selectLayersOfShapes()
    {
        QFETCH(QList<quint32>, selectedColors);
        PanelFixture f;
        g_pLayerPanel = f.panel.get();
        for (quint32 color : {plainColor(0), plainColor(1), plainColor(2), plainColor(3), plainColor(4), kReservedColorA})
            addLayer(*f.manager, color);
        f.sync();
        f.table->cellClicked(1, COL_TYPE);
        CShapeList shapes;
        for (quint32 color : std::as_const(selectedColors)) {
            shapes.AddTail(new CShape(color));
            shapes.GetShape(shapes.GetCount() - 1)->SetSelected(true);
        }
        f.manager->SelectLayersOfShapes(&shapes);
        const QModelIndexList rows = f.table->selectionModel()->selectedRows();
        QCOMPARE(rows.size(), 1);
        QTEST(rows.first().row(), "selected");
        QTEST(f.panel->CurrentRow(), "current");
    }

    // The library dialog itself has its own suite; here, how the panel opens it and takes its OK.
    void doubleClickOpensLibraryDialog_data()
    {
        QTest::addColumn<int>("answer"); // -1: the host gave no dialog
        QTest::addColumn<bool>("onButton");
        QTest::newRow("accepted from row") << 1 << false;
        QTest::newRow("accepted from colour button") << 1 << true;
        QTest::newRow("without a dialog") << -1 << false;
    }

    void doubleClickOpensLibraryDialog()
    {
        QFETCH(int, answer);
        QFETCH(bool, onButton);
        PanelFixture f;
        QVERIFY(f.withLayers(3, true));
        QStringList seen; // row, colour and numbers handed to each dialog opened
        if (answer >= 0) {
            f.panel->SetLibraryDialogOpener([&](const LayerLibraryRequest &request) {
                seen << QString::number(request.row) << QString::number(request.layer->COLOR, 16) << request.numberTexts;
                // What the dialog does on OK: new parameters into the layer.
                f.manager->GetLayerAt(quint32(request.row))->CUT.CUT_SPEED = 77.0;
                return answer == 1;
            });
        }
        f.host.calls.clear();
        f.env.clearLog();
        if (onButton) {
            QTest::mouseClick(f.colorButton(1), Qt::LeftButton);
            QVERIFY(seen.isEmpty());
            QTest::mouseDClick(f.colorButton(1), Qt::LeftButton);
        } else {
            // As a window system delivers it: press, release, double click, release.
            const QPoint pos = f.centre(1, COL_TYPE);
            QTest::mouseClick(f.table->viewport(), Qt::LeftButton, Qt::NoModifier, pos);
            QTest::mouseDClick(f.table->viewport(), Qt::LeftButton, Qt::NoModifier, pos);
            QTest::mouseRelease(f.table->viewport(), Qt::LeftButton, Qt::NoModifier, pos);
        }
        QCOMPARE(f.panel->CurrentRow(), 1);
        const bool accepted = answer == 1;
        QCOMPARE(QFile::exists(f.env.dataFile(QStringLiteral("old.lpl"))), accepted);
        QCOMPARE(f.host.calls.count(QStringLiteral("LayersChanged")), accepted ? 1 : 0);
        QCOMPARE(f.editor(1, COL_SPEED)->text(), accepted ? QStringLiteral("77") : QStringLiteral("1"));
        QVERIFY(f.env.logLines().contains("0|tableWidget item was double clicked."));
        const QStringList handed{"1", QString::number(StandardLayerColor(2, false), 16), "B", "C", "D"};
        QCOMPARE(seen, answer < 0 ? QStringList() : handed);
    }
};

QTEST_MAIN(tst_DlgLayerMgr)
#include "tst_dlglayermgr.moc"
