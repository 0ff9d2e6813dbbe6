// The built plug-in, loaded and driven the way a host does it.
#include "module/ilayermgr.h"
#include "module/layercolors.h"
#include "panelfixtures.h"
#include "testenvironment.h"

#include "cshape.h"
#include "cshapelist.h"

#include <QLayout>
#include <QLibrary>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

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
    QLibrary resolution(QStringLiteral(LAYERMGR_BUILD_BIN "/libResolution.so"));
    QVERIFY2(resolution.load(), qPrintable(resolution.errorString()));
    QLibrary plugin(QStringLiteral(LAYERMGR_BUILD_BIN "/libLayerMgr.so"));
    QVERIFY2(plugin.load(), qPrintable(plugin.errorString()));
    auto newInterface = reinterpret_cast<NewInterfaceFunc>(plugin.resolve("NewInterface"));
    auto releaseInterface = reinterpret_cast<ReleaseInterfaceFunc>(plugin.resolve("ReleaseInterface"));
    QVERIFY(newInterface && releaseInterface);
    CLayerMgrModuleApi *module = newInterface();
    QWidget window;
    window.resize(700, 420);
    DlgLayerMgr *panel = module->CreatePanel(&window, nullptr);
    auto *table = window.findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    QVERIFY(panel && table);
    QCOMPARE(window.layout()->count(), 1);
    QVERIFY2(!env.logLines().join('\n').contains(QStringLiteral("Load Resolution")), qPrintable(env.logLines().join('\n')));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    paneltest::FakeLayerHost host;
    ILayerMgr *manager = module->CreateLayerMgr(&host);
    manager->AttachPanel(panel);
    module->SetUnitMode(1);
    CShapeList shapes;
    for (quint32 number : {1, 2, 1})
        shapes.AddTail(new CShape(StandardLayerColor(number, false)));
    shapes.AddTail(new CShape(StandardLayerColor(3, false), SHAPE_IMAGE));
    manager->UpdateLayers(&shapes);
    // The image's colour is engraved, and a new engraving goes before the cutting.
    QStringList letters;
    for (int row = 0; row < table->rowCount() && !table->isRowHidden(row); ++row)
        letters << table->cellWidget(row, 0)->findChild<QPushButton *>()->text();
    QCOMPARE(letters, (QStringList{"D", "B", "C"}));
    QCOMPARE(manager->GetCurrentLayerColor(), StandardLayerColor(3, false));
    // Unit and laser settings of the host reach the panel it shows.
    auto speed = [table] { return table->cellWidget(0, 2)->findChild<QLineEdit *>()->text(); };
    QCOMPARE(speed(), QStringLiteral("1"));
    module->SetUnitMode(3);
    QCOMPARE(speed(), QStringLiteral("60"));
    module->SetPanelFlag(true);
    QCOMPARE(table->horizontalHeaderItem(4)->text(), QString::fromUtf8("Type⥮"));

    module->ReleaseLayerMgr(manager);
    releaseInterface(module);
    QVERIFY(!window.findChild<QTableWidget *>(QStringLiteral("tableWidget")));
    QCOMPARE(window.layout()->count(), 0);
}

QTEST_MAIN(tst_LayerPanelPlugin)
#include "tst_layerpanelplugin.moc"
