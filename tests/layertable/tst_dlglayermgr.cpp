#include "layertable/clayermodewidget.h"
#include "layertable/ctablewidgetupdown.h"
#include "layertable/dlglayermgr.h"
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
#include <QPainter>
#include <QPushButton>
#include <QTest>

#include <memory>

using namespace paneltest;

namespace {

enum { COL_NUM, COL_MODE, COL_SPEED, COL_POWER, COL_TYPE, COL_AIR, COL_OUTPUT };

const QString kIconDir = QStringLiteral(LAYERMGR_SOURCE_DIR "/resources/Res/Icon/");

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

// Everything a panel test needs, in the order a host builds it.
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
    bool sync(bool force = false)
    {
        panel->show();
        const bool shown = QTest::qWaitForWindowExposed(panel.get());
        panel->SyncLayers(manager.get(), force);
        return shown;
    }
    // Layers of plain colours 0..count-1, or of the standard colours 1..count (letters B, C, ...).
    bool withLayers(int count, bool standard = false)
    {
        for (int i = 0; i < count; ++i)
            addLayer(*manager, standard ? StandardLayerColor(quint32(i) + 1, false) : plainColor(i));
        return sync();
    }
    // Through the manager, as the host drives it.
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
    QString tip(int row, int column) const { return cell(row, column)->toolTip(); }
    QComboBox *combo(int row, int column) const { return cell(row, column)->findChild<QComboBox *>(); }
    QPushButton *colorButton(int row) const
    {
        return cell(row, COL_NUM)->findChild<QPushButton *>(QStringLiteral("pushButton_layerColor"));
    }
    QString number(int row) const { return cell(row, COL_NUM)->findChild<QLabel *>(QStringLiteral("label_craftColor"))->text(); }
    QPushButton *eye(int row) const { return qobject_cast<QPushButton *>(cell(row, COL_OUTPUT)); }
    QString text(int row, int column) const { return table->item(row, column)->text(); }
    QPoint centre(int row, int column) const { return table->visualRect(table->model()->index(row, column)).center(); }
    int visibleRows() const
    {
        int count = 0;
        for (int row = 0; row < table->rowCount(); ++row)
            count += table->isRowHidden(row) ? 0 : 1;
        return count;
    }
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

// Which of the two eye icons a button shows.
QString eyeIcon(QPushButton *eye)
{
    const QImage shown = eye->icon().pixmap(QSize(20, 20)).toImage();
    for (const char *name : {"LayerEye", "LayerCloseEye"}) {
        if (shown == QIcon(kIconDir + name + ".svg").pixmap(QSize(20, 20)).toImage())
            return QLatin1String(name);
    }
    return QStringLiteral("other");
}

} // namespace

class tst_DlgLayerMgr : public QObject
{
    Q_OBJECT

private slots:
    // On the selected row an eye sits on the table's highlight colour:
    // enough of either icon must stand apart from that colour to be seen.
    void eyesShowOnSelectedRows()
    {
        PanelFixture f;
        const QColor hl = f.table->palette().color(QPalette::Active, QPalette::Highlight);
        for (const char *icon : {"LayerEye", "LayerCloseEye"}) {
            QImage image(20, 20, QImage::Format_ARGB32);
            image.fill(hl);
            QPainter painter(&image);
            QIcon(kIconDir + icon + ".svg").paint(&painter, image.rect());
            painter.end();
            int distinct = 0;
            for (int i = 0; i < 400; ++i) {
                const QColor c = image.pixelColor(i % 20, i / 20);
                distinct += std::abs(c.red() - hl.red()) + std::abs(c.green() - hl.green()) + std::abs(c.blue() - hl.blue()) > 150;
            }
            QVERIFY2(distinct >= 40, icon);
        }
    }

    // Headers; mode, air, laser and mode tip of a cutting row; the lists of every mode, of a
    // fill-locked row's modes and of air; the type header once two lasers are on.
    void languages_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("English") << "" << QStringList{"Num", "Mode", "Speed", "Power", "Type", "Blowing", "Output",
                                                      "Cutting", "High", "Fiber", "Cutting", "Cutting", "Scoring", "Shallow Engrave",
                                                      "Deep Engrave", "Mark", "Shallow Engrave", "Deep Engrave", "High", "Low", "Type⥮"};
        QTest::newRow("Chinese") << "Chs" << QStringList{"序号", "模式", "速度", "功率", "类型", "吹气", "输出",
                                                          "切割", "强", "光纤", "切割", "切割", "划线", "浅雕", "深雕", "标记",
                                                          "浅雕", "深雕", "强", "弱", "类型⥮"};
    }

    void languages()
    {
        QFETCH(QString, language);
        PanelFixture f(factoryLasers(3, 0));
        // Without the display-scale module the rows keep their design height.
        QCOMPARE(f.table->verticalHeader()->defaultSectionSize(), 40);
        // Without a layer manager nothing happens and nothing breaks.
        f.panel->MoveLayerSlot(0, 1);
        f.panel->HorzHeaderClickedSlot(4);
        f.panel->SelectPendingColors();
        f.panel->RefreshSpeeds();
        f.panel->SyncLayers(nullptr, true);
        QCOMPARE(f.visibleRows(), 0);
        QCOMPARE(f.panel->CurrentLayerColor(), 0u);

        addLayer(*f.manager, 0x123456, WORK_CUTTING);
        addLayer(*f.manager, 0x123457, WORK_DEEP_ENGRAVE)->FILL_LOCKED = true;
        f.sync();
        {
            LanguageGuard guard(language);
            QStringList texts;
            for (int column = 0; column <= COL_OUTPUT; ++column)
                texts << f.table->horizontalHeaderItem(column)->text();
            texts << f.combo(0, COL_MODE)->currentText() << f.combo(0, COL_AIR)->currentText() << f.text(0, COL_TYPE)
                  << f.table->item(0, COL_MODE)->toolTip();
            for (QComboBox *combo : {f.combo(0, COL_MODE), f.combo(1, COL_MODE), f.combo(0, COL_AIR)}) {
                for (int i = 0; i < combo->count(); ++i)
                    texts << combo->itemText(i);
            }
            f.panel->SetDualLaser(true);
            texts << f.table->horizontalHeaderItem(COL_TYPE)->text();
            QTEST(texts, "texts");
            // The language change touched no layer and no choice.
            QCOMPARE(f.manager->GetLayerAt(0)->WORK_TYPE + f.manager->GetLayerAt(1)->WORK_TYPE, int(WORK_DEEP_ENGRAVE));
            QCOMPARE(f.combo(1, COL_MODE)->currentIndex(), 1);
            QVERIFY(f.host.calls.isEmpty());
        }
        QCOMPARE(f.table->horizontalHeaderItem(COL_NUM)->text() + f.text(0, COL_TYPE), QStringLiteral("NumFiber"));
    }

    // Line speed 100, powers 55.5 and 33; fill speed 250.26, powers 12.345678 and 7. The laser
    // shown is the machine's first or second, by the laser the process has on.
    void rowTexts_data()
    {
        QTest::addColumn<QByteArray>("factory");
        QTest::addColumn<int>("workType");
        QTest::addColumn<bool>("laser1On");
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("speed");
        QTest::addColumn<QString>("speedTip");
        QTest::addColumn<QString>("power");
        QTest::addColumn<QString>("powerTip");
        QTest::addColumn<QString>("laser");
        const QByteArray two = factoryLasers(3, 4);
        QTest::newRow("cutting, laser 1") << two << 0 << true << "Cutting" << "100" << "100.0" << "55.5" << "55.5" << "Fiber";
        QTest::newRow("scoring, laser 2") << two << 1 << false << "Scoring" << "100" << "100.0" << "33.0" << "33" << "Semiconductor laser";
        QTest::newRow("shallow engrave, laser 1") << two << 2 << true << "Shallow Engrave" << "250" << "250.3" << "12.3" << "12.3457" << "Fiber";
        QTest::newRow("deep engrave, laser 2") << two << 3 << false << "Deep Engrave" << "250" << "250.3" << "7.0" << "7" << "Semiconductor laser";
        QTest::newRow("mark") << two << 4 << false << "Mark" << "/" << "/" << "/" << "/" << "Fiber";
        QTest::newRow("garbage work type 9") << two << 9 << true << "Unknow" << "250" << "250.3" << "12.3" << "12.3457" << "Fiber";
        QTest::newRow("garbage work type -1") << two << -1 << false << "Unknow" << "250" << "250.3" << "7.0" << "7" << "Semiconductor laser";
        const auto cutting = [](const char *name, const QByteArray &factory, const char *laser) {
            QTest::newRow(name) << factory << 0 << true << "Cutting" << "100" << "100.0" << "55.5" << "55.5" << laser;
        };
        cutting("no FactoryParam.ini", QByteArray(), "Glass");
        cutting("RF without burning", factoryLasers(1, 0), "RF");
        cutting("RF with burning", factoryLasers(2, 0), "RF");
        cutting("semiconductor", factoryLasers(4, 0), "Semiconductor laser");
        cutting("garbage type 5", factoryLasers(5, 3), "Glass");
    }

    void rowTexts()
    {
        QFETCH(QByteArray, factory);
        QFETCH(int, workType);
        QFETCH(bool, laser1On);
        QFETCH(QString, mode);
        QFETCH(QString, laser);
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

        QCOMPARE(f.visibleRows(), 1);
        QCOMPARE(f.table->item(0, COL_MODE)->toolTip(), mode);
        // What the cell paints: the chosen item, or the placeholder when none is.
        QComboBox *combo = f.combo(0, COL_MODE);
        QCOMPARE(combo->currentIndex() < 0 ? combo->placeholderText() : combo->currentText(), mode);
        QTEST(f.editor(0, COL_SPEED)->text(), "speed");
        QTEST(f.tip(0, COL_SPEED), "speedTip");
        QTEST(f.editor(0, COL_POWER)->text(), "power");
        QTEST(f.tip(0, COL_POWER), "powerTip");
        QCOMPARE(f.editor(0, COL_SPEED)->isEnabled(), workType != WORK_MARK);
        QCOMPARE(f.editor(0, COL_POWER)->isEnabled(), workType != WORK_MARK);
        QCOMPARE(f.text(0, COL_TYPE) + f.table->item(0, COL_TYPE)->toolTip(), laser + laser);
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
        QTest::newRow("alternate 5") << QList<quint32>{0x01CCFD} << stored << QList<int>{6} << QStringList{"F"};
        QTest::newRow("reserved colour keeps its own number") << QList<quint32>{kReservedColorA} << stored << QList<int>{99} << QStringList{"XLVII"};
        QTest::newRow("others from 37 up") << QList<quint32>{StandardLayerColor(1, false), plainColor(0), plainColor(1)}
                                           << QList<int>{-1, -1, -1} << QList<int>{2, 37, 38} << QStringList{"B", "k", "l"};
        QTest::newRow("first of a shared number moves on") << QList<quint32>{plainColor(0), plainColor(1), plainColor(2), plainColor(3), plainColor(4)}
                                                           << QList<int>{40, 40, -1, 37, 38} << QList<int>{39, 40, 41, 37, 38}
                                                           << QStringList{"m", "n", "o", "k", "l"};
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
        const QString rgb = QStringLiteral("%1,%2,%3").arg(qRed(colors[0])).arg(qGreen(colors[0])).arg(qBlue(colors[0]));
        QVERIFY2(f.colorButton(0)->styleSheet().startsWith(QStringLiteral("QPushButton{background-color:rgb(%1);").arg(rgb)),
                 qPrintable(f.colorButton(0)->styleSheet()));
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
        QCOMPARE(g.visibleRows(), 2);
        g.panel->SetDualLaser(true);
        QCOMPARE(g.numbers(), (QList<int>{37, 2, 38}));
        QCOMPARE(g.letters(), (QStringList{"k", "B", "l"}));
    }

    void rowsFollowTheList()
    {
        PanelFixture f;
        QVERIFY(f.withLayers(11));
        QCOMPARE(f.table->rowCount(), 14);
        QCOMPARE(f.visibleRows(), 11);
        QVERIFY(f.table->isRowHidden(11));
        QCOMPARE(f.number(10), QStringLiteral("11"));
        QVERIFY(!f.panel->HasRowWidgets(12));
        QVERIFY(!(f.table->item(12, COL_TYPE)->flags() & Qt::ItemIsEditable));

        // Unchanged layers leave the rows alone; a change or a forced sync refills.
        f.cell(0, COL_NUM)->findChild<QLabel *>()->setText(QStringLiteral("xx"));
        f.sync();
        QCOMPARE(f.number(0), QStringLiteral("xx"));
        f.manager->GetLayerAt(0)->CUT.CUT_SPEED = 42.0;
        f.sync();
        QCOMPARE(f.number(0) + f.editor(0, COL_SPEED)->text(), QStringLiteral("0142"));
        f.cell(0, COL_NUM)->findChild<QLabel *>()->setText(QStringLiteral("yy"));
        f.sync(true);
        QCOMPARE(f.number(0), QStringLiteral("01"));

        // Fewer layers hide rows but never delete them, nor keep their layers.
        f.update({plainColor(0), plainColor(1), plainColor(2)});
        QCOMPARE(f.table->rowCount(), 14);
        QCOMPARE(f.visibleRows(), 3);
        QVERIFY(!f.table->item(5, COL_MODE)->data(DlgLayerMgr::kLayerRole).value<void *>());
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
        QVERIFY(f.host.calls.isEmpty());

        f.panel->SetDualLaser(true);
        QCOMPARE(clickType(), QStringLiteral("Glass,Fiber"));
        QCOMPARE(f.host.calls, (QStringList{"LayerEvent 0", "RefreshView"}));
        QVERIFY(!f.manager->FiberFirst());
        header->sectionClicked(COL_SPEED); // other headers do nothing
        QCOMPARE(clickType(), QStringLiteral("Fiber,Glass"));
        QCOMPARE(f.host.calls.size(), 4);
        f.panel->SetDualLaser(false);
        QCOMPARE(f.table->horizontalHeaderItem(COL_TYPE)->text(), QStringLiteral("Type"));
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
        const QStringList current{"CurrentLayerChanged"};
        QTest::newRow("right button on a row") << "row right" << 2 << true << current << QStringList();
        QTest::newRow("right button in a value editor") << "editor right" << 2 << true << current << QStringList();
        QTest::newRow("left click on a cell") << "row left" << 2 << true << current << QStringList{"1|clickd row 2, column 4"};
        QTest::newRow("eye") << "eye" << 0 << false << QStringList{"LayersChanged"}
                             << QStringList{"0|pushButton_layerEye was clicked.", "1|clicke index 2,6"};
        QTest::newRow("eye clicked twice") << "eye twice" << 0 << true << QStringList{"LayersChanged", "LayersChanged"}
                                           << QStringList{"0|pushButton_layerEye was clicked.", "1|clicke index 2,6",
                                                          "0|pushButton_layerEye was clicked.", "1|clicke index 2,6"};
        QTest::newRow("output cell beside the eye") << "output cell" << 2 << false << QStringList{"CurrentLayerChanged", "LayersChanged"}
                                                    << QStringList{"1|clickd row 2, column 6"};
        QTest::newRow("eye of a row that lost its layer item") << "eye without item" << 0 << true << QStringList()
                                                               << QStringList{"0|pushButton_layerEye was clicked.", "1|clicke index 2,6", "3|787 item null !!!"};
    }

    void clicks()
    {
        QFETCH(QString, where);
        QFETCH(int, current);
        QFETCH(bool, output);
        PanelFixture f;
        QVERIFY(f.withLayers(4));
        f.env.clearLog();
        if (where == QLatin1String("row right"))
            QTest::mouseClick(f.table->viewport(), Qt::RightButton, Qt::NoModifier, f.centre(2, COL_TYPE));
        else if (where == QLatin1String("editor right"))
            QTest::mousePress(f.editor(2, COL_POWER), Qt::RightButton);
        else if (where == QLatin1String("row left"))
            QTest::mouseClick(f.table->viewport(), Qt::LeftButton, Qt::NoModifier, f.centre(2, COL_TYPE));
        else if (where == QLatin1String("output cell"))
            f.table->cellClicked(2, COL_OUTPUT);
        else if (where == QLatin1String("eye without item"))
            delete f.table->takeItem(2, COL_MODE);
        if (where.startsWith(QLatin1String("eye")))
            QTest::mouseClick(f.eye(2), Qt::LeftButton);
        if (where == QLatin1String("eye twice"))
            QTest::mouseClick(f.eye(2), Qt::LeftButton);
        QTEST(f.panel->CurrentRow(), "current");
        QCOMPARE(f.panel->CurrentLayerColor(), plainColor(current));
        // A press on a row selects it.
        if (where.startsWith(QLatin1String("row")) || where.startsWith(QLatin1String("editor")))
            QVERIFY(f.table->selectionModel()->isRowSelected(current, QModelIndex()));
        QTEST(f.host.calls, "calls");
        QTEST(f.env.logLines(), "log");
        QCOMPARE(f.manager->GetLayerAt(2)->OUTPUT, output);
        QCOMPARE(eyeIcon(f.eye(2)), output ? QStringLiteral("LayerEye") : QStringLiteral("LayerCloseEye"));
        if (where != QLatin1String("eye without item"))
            QCOMPARE(f.eye(2)->isChecked(), output);
        QList<quint32> off;
        f.manager->GetNonOutputColors(off);
        QCOMPARE(off, output ? QList<quint32>() : QList<quint32>{plainColor(2)});

        const QStringList calls = f.host.calls;
        QTest::mouseClick(f.table->viewport(), Qt::LeftButton, Qt::NoModifier, f.centre(current, COL_TYPE));
        QTest::mousePress(f.table->viewport(), Qt::RightButton, Qt::NoModifier, QPoint(10, f.table->viewport()->height() - 5));
        QCOMPARE(f.panel->CurrentRow(), current);
        QCOMPARE(f.host.calls, calls);
    }

    // Row 1 holds line speed 12.25, fill speed 30 and powers of 20; row 0 is never touched.
    // Speed and power are those of the block the final mode uses; "shown" is the edited
    // field, or the speed field after a choice in a list.
    void cellEdit_data()
    {
        QTest::addColumn<int>("before");
        QTest::addColumn<bool>("fillLocked");
        QTest::addColumn<int>("unitMode");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("input");
        QTest::addColumn<int>("after");
        QTest::addColumn<double>("speed");
        QTest::addColumn<double>("power");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QStringList>("calls");
        const QStringList mode{"LayersChanged", "LayerEvent 2", "RefreshView"}, air{"LayersChanged"}, value;
        QTest::newRow("cutting to mark") << 0 << false << 1 << int(COL_MODE) << "Mark" << 4 << 30.0 << 20.0 << "/" << mode;
        QTest::newRow("mark to scoring") << 4 << false << 1 << int(COL_MODE) << "Scoring" << 1 << 12.25 << 20.0 << "12" << mode;
        QTest::newRow("cutting to shallow engrave") << 0 << false << 1 << int(COL_MODE) << "Shallow Engrave" << 2 << 30.0 << 20.0 << "30" << mode;
        QTest::newRow("locked fill to deep engrave") << 2 << true << 1 << int(COL_MODE) << "Deep Engrave" << 3 << 30.0 << 20.0 << "30" << mode;
        QTest::newRow("air off") << 0 << false << 1 << int(COL_AIR) << "Low" << 0 << 12.25 << 20.0 << "12" << air;
        QTest::newRow("cutting speed") << 0 << false << 1 << int(COL_SPEED) << "120" << 0 << 120.0 << 20.0 << "120" << value;
        QTest::newRow("scoring power") << 1 << false << 1 << int(COL_POWER) << "45.5" << 1 << 12.25 << 45.5 << "45.5" << value;
        QTest::newRow("engraving speed") << 2 << false << 1 << int(COL_SPEED) << "80" << 2 << 80.0 << 20.0 << "80" << value;
        QTest::newRow("deep engraving power") << 3 << false << 1 << int(COL_POWER) << "9.5" << 3 << 30.0 << 9.5 << "9.5" << value;
        QTest::newRow("speed typed in mm/min") << 0 << false << 3 << int(COL_SPEED) << "600" << 0 << 10.0 << 20.0 << "600" << value;
        QTest::newRow("garbage speed above range corrected") << 0 << false << 1 << int(COL_SPEED) << "5000" << 0 << 3000.0 << 20.0 << "3000" << value;
        QTest::newRow("garbage power above range corrected") << 0 << false << 1 << int(COL_POWER) << "150" << 0 << 12.25 << 100.0 << "100.0" << value;
        QTest::newRow("garbage power below range corrected") << 2 << false << 1 << int(COL_POWER) << "0" << 2 << 30.0 << 0.1 << "0.1" << value;
        QTest::newRow("garbage work type keeps its values") << 7 << false << 1 << int(COL_POWER) << "50" << 7 << 30.0 << 20.0 << "20.0" << value;
    }

    void cellEdit()
    {
        QFETCH(int, before);
        QFETCH(bool, fillLocked);
        QFETCH(int, column);
        QFETCH(QString, input);
        QFETCH(int, after);
        QFETCH(double, power);
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
        QCOMPARE(f.combo(1, COL_MODE)->count(), fillLocked ? 2 : 5);

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
        QCOMPARE(layer->WORK_TYPE, after);
        QCOMPARE(layer->BLOW, column != COL_AIR);
        QCOMPARE(f.table->item(1, COL_MODE)->toolTip(), CLayerModeWidget::WorkTypeName(after));
        QTEST(shown->text(), "shown");
        QCOMPARE(f.editor(1, COL_SPEED)->isEnabled(), after != WORK_MARK);
        QCOMPARE(f.editor(1, COL_POWER)->isEnabled(), after != WORK_MARK);
        const bool line = after == WORK_CUTTING || after == WORK_SCORING;
        QTEST(line ? layer->CUT.CUT_SPEED : layer->SWEEP.SWEEP_SPEED, "speed");
        QCOMPARE(line ? layer->CUT.LASER1.POWER_MAX : layer->SWEEP.LASER1.POWER_MAX, power);
        QCOMPARE(line ? layer->CUT.LASER2.POWER_MAX : layer->SWEEP.LASER2.POWER_MAX, power);
        // The other process block, the scratch copy and the other layer are left alone.
        QCOMPARE(line ? layer->SWEEP.LASER1.POWER_MAX : layer->CUT.LASER1.POWER_MAX, 20.0);
        QVERIFY(!list || (f.panel->ScratchLayer().WORK_TYPE == before && f.panel->ScratchLayer().BLOW));
        QTEST(f.host.calls, "calls");
        QCOMPARE(f.manager->GetLayerAt(0)->WORK_TYPE, int(WORK_CUTTING));
        QVERIFY(f.manager->GetLayerAt(0)->BLOW);
    }

    void destroyedWhileEditing()
    {
        PanelFixture f;
        QVERIFY(f.withLayers(1));
        f.manager->GetLayerAt(0)->CUT.CUT_SPEED = 12.0;
        f.panel->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(f.panel.get()));
        QLineEdit *edit = f.editor(0, COL_SPEED);
        QTest::mouseClick(edit, Qt::LeftButton);
        edit->selectAll();
        QTest::keyClicks(edit, QStringLiteral("77"));
        QVERIFY(edit->hasFocus());
        // The editor loses its focus while the panel is half gone: nothing may reach the panel.
        f.panel.reset();
        QCOMPARE(f.manager->GetLayerAt(0)->CUT.CUT_SPEED, 12.0);
        QVERIFY(f.host.calls.isEmpty());
    }

    // The table reports a drag as a move from one row to another; the layers follow.
    void moveLayer_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QStringList>("letters");
        QTest::newRow("first to end") << 0 << 4 << QStringList{"C", "D", "E", "F", "B"};
        QTest::newRow("last to first") << 4 << 0 << QStringList{"F", "B", "C", "D", "E"};
        QTest::newRow("garbage negative row") << -1 << 2 << QStringList{"B", "C", "D", "E", "F"};
        QTest::newRow("garbage row past the layers") << 1 << 7 << QStringList{"B", "C", "D", "E", "F"};
    }

    void moveLayer()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(QStringList, letters);
        PanelFixture f;
        QVERIFY(f.withLayers(5, true));
        emit f.table->MoveLayerSignal(from, to);
        QCOMPARE(f.letters(), letters);
        if (letters.first() != QLatin1String("B")) {
            QCOMPARE(f.host.calls, (QStringList{"LayerEvent 3", "RefreshView", "LayersChanged"}));
            QCOMPARE(f.manager->GetLayerAt(quint32(to))->COLOR, StandardLayerColor(quint32(from) + 1, false));
            QCOMPARE(f.number(to), QString::number(to + 1).rightJustified(2, QLatin1Char('0')));
        }
    }

    void doubleClickOpensLibraryDialog_data()
    {
        QTest::addColumn<int>("answer"); // -1: the host gave no dialog
        QTest::addColumn<bool>("onButton");
        QTest::newRow("accepted from row") << 1 << false;
        QTest::newRow("cancelled from row") << 0 << false;
        QTest::newRow("accepted from colour button") << 1 << true;
        QTest::newRow("without a dialog") << -1 << false;
    }

    void doubleClickOpensLibraryDialog()
    {
        QFETCH(int, answer);
        QFETCH(bool, onButton);
        PanelFixture f;
        QVERIFY(f.withLayers(3, true));
        LayerLibraryRequest seen;
        int opened = 0;
        if (answer >= 0) {
            f.panel->SetLibraryDialogOpener([&](const LayerLibraryRequest &request) {
                ++opened;
                seen = request;
                // What the dialog does on OK: new parameters into the layer.
                f.manager->GetLayerAt(quint32(request.row))->CUT.CUT_SPEED = 77.0;
                return answer == 1;
            });
        }
        f.host.calls.clear();
        f.env.clearLog();
        if (onButton) {
            QTest::mouseClick(f.colorButton(1), Qt::LeftButton);
            QCOMPARE(opened, 0);
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
        QCOMPARE(f.panel->ScratchLayer().COLOR, StandardLayerColor(2, false));
        QCOMPARE(opened, answer < 0 ? 0 : 1);
        if (answer >= 0) {
            QCOMPARE(seen.row, 1);
            QVERIFY(seen.parent == f.panel.get() && seen.manager == f.manager.get() && seen.host == &f.host);
            QCOMPARE(seen.layer->COLOR, StandardLayerColor(2, false));
            QCOMPARE(seen.numberTexts, (QStringList{"B", "C", "D"}));
        }
    }

    // The host hands over the shapes; the rows of the selected shapes' layers are selected.
    void selectLayersOfShapes_data()
    {
        QTest::addColumn<QList<quint32>>("selectedColors");
        QTest::addColumn<int>("selected");
        QTest::addColumn<int>("current");
        QTest::newRow("none keeps current row") << QList<quint32>() << 1 << 1;
        QTest::newRow("one becomes current") << QList<quint32>{plainColor(3)} << 3 << 3;
        // Rows are selected in table order; single selection keeps the last.
        QTest::newRow("several") << QList<quint32>{plainColor(4), plainColor(2)} << 4 << 1;
        QTest::newRow("reserved colour never matched") << QList<quint32>{kReservedColorA} << 1 << 1;
        QTest::newRow("garbage unknown colour") << QList<quint32>{0xFFFFFEu} << 1 << 1;
    }

    void selectLayersOfShapes()
    {
        QFETCH(QList<quint32>, selectedColors);
        PanelFixture f;
        g_pLayerPanel = f.panel.get();
        for (int i = 0; i < 5; ++i)
            addLayer(*f.manager, plainColor(i));
        addLayer(*f.manager, kReservedColorA);
        f.sync();
        f.table->cellClicked(1, COL_TYPE);
        CShapeList shapes;
        shapes.AddTail(new CShape(plainColor(0)));
        for (quint32 color : std::as_const(selectedColors) + selectedColors) {
            shapes.AddTail(new CShape(color));
            shapes.GetShape(shapes.GetCount() - 1)->SetSelected(true);
        }
        f.manager->SelectLayersOfShapes(&shapes);
        const QModelIndexList rows = f.table->selectionModel()->selectedRows();
        QCOMPARE(rows.size(), 1);
        QTEST(rows.first().row(), "selected");
        QTEST(f.panel->CurrentRow(), "current");
        QCOMPARE(f.manager->GetCurrentLayerColor(), plainColor(f.panel->CurrentRow()));
    }

    void tenThousandLayers()
    {
        PanelFixture f;
        constexpr int count = 10000;
        QVERIFY(f.withLayers(count));
        QCOMPARE(f.visibleRows(), count);
        QCOMPARE(f.manager->GetLayerAt(count - 1)->AUX_INDEX, 37 + count - 1);
        auto rowsWithWidgets = [&f] {
            int rows = 0;
            for (int row = 0; row < f.table->rowCount(); ++row)
                rows += f.panel->HasRowWidgets(row) ? 1 : 0;
            return rows;
        };
        // Only the rows near the visible part carry cell widgets.
        QVERIFY(f.panel->HasRowWidgets(0) && !f.panel->HasRowWidgets(count / 2));
        QVERIFY(rowsWithWidgets() < 60);

        f.table->scrollToBottom();
        QApplication::processEvents();
        QVERIFY(f.panel->HasRowWidgets(count - 1) && !f.panel->HasRowWidgets(0));
        QVERIFY(rowsWithWidgets() < 60);
        QCOMPARE(f.table->rowAt(f.table->viewport()->height() - 2), count - 1);
        QCOMPARE(f.number(count - 1), QString::number(count));

        f.sync(true);
        g_LayerContext.m_unitMode = 3;
        f.panel->RefreshSpeeds();
        f.table->scrollToTop();
        QApplication::processEvents();
        QCOMPARE(f.tip(0, COL_SPEED), QStringLiteral("60.0"));
    }
};

QTEST_MAIN(tst_DlgLayerMgr)
#include "tst_dlglayermgr.moc"
