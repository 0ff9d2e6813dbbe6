// The built plug-in, loaded and driven the way a host does it.
#include "module/ilayermgr.h"
#include "module/layercolors.h"
#include "panelfixtures.h"
#include "resolution/iresolution.h"
#include "testenvironment.h"

#include "cshape.h"
#include "cshapelist.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLibrary>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

using namespace paneltest;

namespace {

enum { COL_NUM, COL_MODE, COL_SPEED, COL_POWER, COL_TYPE, COL_AIR, COL_OUTPUT };

const QString kBin = QStringLiteral(LAYERMGR_BUILD_BIN);

// One text per shown row: a cell's button or line edit, or the mode item's tool tip.
QStringList column(const QTableWidget *table, int column)
{
    QStringList texts;
    for (int row = 0; row < table->rowCount() && !table->isRowHidden(row); ++row) {
        QWidget *cell = table->cellWidget(row, column);
        if (column == COL_MODE)
            texts << table->item(row, COL_MODE)->toolTip();
        else if (const auto *button = cell->findChild<QPushButton *>(QStringLiteral("pushButton_layerColor")))
            texts << button->text();
        else if (const auto *edit = cell->findChild<QLineEdit *>())
            texts << edit->text();
    }
    return texts;
}

} // namespace

class tst_LayerPanelPlugin : public QObject
{
    Q_OBJECT

private slots:
    void hostDrivesPanel();
};

void tst_LayerPanelPlugin::hostDrivesPanel()
{
    TestEnvironment env;
    // Loaded first, the display-scale module is what the plug-in's loader finds under its bare name.
    QLibrary resolutionLibrary(kBin + QStringLiteral("/libResolution.so"));
    QVERIFY2(resolutionLibrary.load(), qPrintable(resolutionLibrary.errorString()));
    auto newResolution = reinterpret_cast<IResolution *(*)()>(resolutionLibrary.resolve("NewInterface"));
    auto releaseResolution =
        reinterpret_cast<void (*)(IResolution *)>(resolutionLibrary.resolve("ReleaseInterface"));
    QVERIFY(newResolution && releaseResolution);
    IResolution *resolution = newResolution();
    const int rowHeight = int(resolution->Scale(40.0));
    releaseResolution(resolution);

    QLibrary plugin(kBin + QStringLiteral("/libLayerMgr.so"));
    QVERIFY2(plugin.load(), qPrintable(plugin.errorString()));
    auto newInterface = reinterpret_cast<NewInterfaceFunc>(plugin.resolve("NewInterface"));
    auto releaseInterface = reinterpret_cast<ReleaseInterfaceFunc>(plugin.resolve("ReleaseInterface"));
    QVERIFY(newInterface && releaseInterface);
    QVERIFY2(!plugin.resolve("NewLayerPanel"), "only the two entry points are exported");

    CLayerMgrModuleApi *module = newInterface();
    QVERIFY(module);
    QWidget window;
    window.resize(700, 420);
    int hostData = 0;
    DlgLayerMgr *panel = module->CreatePanel(&window, &hostData);
    QVERIFY(panel);
    auto *table = window.findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    QVERIFY(table);
    auto *layout = qobject_cast<QHBoxLayout *>(window.layout());
    QVERIFY(layout);
    QCOMPARE(layout->count(), 1);
    QCOMPARE(layout->spacing(), 0);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(table->verticalHeader()->defaultSectionSize(), rowHeight);
    for (const QString &line : env.logLines())
        QVERIFY2(!line.contains(QStringLiteral("Load Resolution")), qPrintable(line));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    FakeLayerHost host;
    ILayerMgr *manager = module->CreateLayerMgr(&host);
    QVERIFY(manager);
    manager->AttachPanel(panel);
    module->SetUnitMode(1);

    CShapeList shapes;
    shapes.AddTail(new CShape(StandardLayerColor(1, false)));
    shapes.AddTail(new CShape(StandardLayerColor(2, false)));
    shapes.AddTail(new CShape(StandardLayerColor(1, false)));
    shapes.AddTail(new CShape(StandardLayerColor(3, false), SHAPE_IMAGE));
    manager->UpdateLayers(&shapes);
    QCOMPARE(manager->GetLayerCount(), 3u);

    QStringList letters, modes;
    for (quint32 i = 0; i < manager->GetLayerCount(); ++i) {
        const CLayerParam *layer = manager->GetLayerAt(i);
        letters << QString(QChar(u'A' + manager->GetLayerNumber(layer->COLOR)));
        modes << (layer->WORK_TYPE == 2 ? "Shallow Engrave" : "Cutting");
    }
    QCOMPARE(column(table, COL_NUM), letters);
    QCOMPARE(column(table, COL_MODE), modes);
    QVERIFY(modes.contains("Shallow Engrave"));
    QCOMPARE(column(table, COL_SPEED), (QStringList{"1", "1", "1"}));
    QCOMPARE(manager->GetCurrentLayerColor(), manager->GetLayerAt(0)->COLOR);

    module->SetUnitMode(3);
    QCOMPARE(column(table, COL_SPEED), (QStringList{"60", "60", "60"}));
    module->SetPanelFlag(true);
    QCOMPARE(table->horizontalHeaderItem(COL_TYPE)->text(), QString::fromUtf8("Type⥮"));

    env.clearLog();
    auto *eye = qobject_cast<QPushButton *>(table->cellWidget(1, COL_OUTPUT));
    QVERIFY(eye);
    QTest::mouseClick(eye, Qt::LeftButton);
    QList<quint32> off;
    manager->GetNonOutputColors(off);
    QCOMPARE(off, QList<quint32>{manager->GetLayerAt(1)->COLOR});
    QCOMPARE(host.calls, QStringList{"LayersChanged"});
    QCOMPARE(env.logLines(),
             (QStringList{"0|pushButton_layerEye was clicked.", "1|clicke index 1,6"}));

    // A shape gone takes its row with it.
    delete shapes.TakeAt(1);
    manager->UpdateLayers(&shapes);
    QCOMPARE(manager->GetLayerCount(), 2u);
    QCOMPARE(column(table, COL_MODE).size(), 2);

    module->ReleaseLayerMgr(manager);
    releaseInterface(module);
    QVERIFY(!window.findChild<QTableWidget *>(QStringLiteral("tableWidget")));
    QCOMPARE(window.layout()->count(), 0);
}

QTEST_MAIN(tst_LayerPanelPlugin)
#include "tst_layerpanelplugin.moc"
