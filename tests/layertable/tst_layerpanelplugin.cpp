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
#include <QLibrary>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

using namespace paneltest;

namespace {

enum { COL_NUM, COL_MODE, COL_SPEED, COL_POWER, COL_TYPE };

const QString kBin = QStringLiteral(LAYERMGR_BUILD_BIN);

// One text per shown row: the number button's letter, the mode item's tool tip or the value.
QStringList column(const QTableWidget *table, int column)
{
    QStringList texts;
    for (int row = 0; row < table->rowCount() && !table->isRowHidden(row); ++row) {
        if (column == COL_MODE)
            texts << table->item(row, COL_MODE)->toolTip();
        else if (column == COL_NUM)
            texts << table->cellWidget(row, column)->findChild<QPushButton *>()->text();
        else
            texts << table->cellWidget(row, column)->findChild<QLineEdit *>()->text();
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
    auto releaseResolution = reinterpret_cast<void (*)(IResolution *)>(resolutionLibrary.resolve("ReleaseInterface"));
    QVERIFY(newResolution && releaseResolution);
    IResolution *resolution = newResolution();
    const int rowHeight = int(resolution->Scale(40.0));
    releaseResolution(resolution);

    QLibrary plugin(kBin + QStringLiteral("/libLayerMgr.so"));
    QVERIFY2(plugin.load(), qPrintable(plugin.errorString()));
    auto newInterface = reinterpret_cast<NewInterfaceFunc>(plugin.resolve("NewInterface"));
    auto releaseInterface = reinterpret_cast<ReleaseInterfaceFunc>(plugin.resolve("ReleaseInterface"));
    QVERIFY(newInterface && releaseInterface);
    CLayerMgrModuleApi *module = newInterface();
    QWidget window;
    window.resize(700, 420);
    int hostData = 0;
    DlgLayerMgr *panel = module->CreatePanel(&window, &hostData);
    QVERIFY(panel);
    auto *table = window.findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    auto *layout = qobject_cast<QHBoxLayout *>(window.layout());
    QVERIFY(table && layout);
    // The panel fills the host's widget edge to edge.
    QCOMPARE(layout->count(), 1);
    QCOMPARE(layout->spacing(), 0);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(table->verticalHeader()->defaultSectionSize(), rowHeight);
    QVERIFY2(!env.logLines().join('\n').contains(QStringLiteral("Load Resolution")), qPrintable(env.logLines().join('\n')));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    FakeLayerHost host;
    ILayerMgr *manager = module->CreateLayerMgr(&host);
    manager->AttachPanel(panel);
    module->SetUnitMode(1);
    CShapeList shapes;
    for (quint32 number : {1, 2, 1})
        shapes.AddTail(new CShape(StandardLayerColor(number, false)));
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

    module->ReleaseLayerMgr(manager);
    releaseInterface(module);
    QVERIFY(!window.findChild<QTableWidget *>(QStringLiteral("tableWidget")));
    QCOMPARE(window.layout()->count(), 0);
}

QTEST_MAIN(tst_LayerPanelPlugin)
#include "tst_layerpanelplugin.moc"
