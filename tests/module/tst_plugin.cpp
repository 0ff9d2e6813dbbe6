#include "library/clayercontext.h"
#include "module/ilayermgr.h"
#include "module/layerparamfile.h"
#include "testenvironment.h"

#include "cshape.h"
#include "cshapelist.h"
#include "ilayerhost.h"

#include <QBuffer>
#include <QLibrary>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

// The built plug-in, loaded as a host loads it. It has its own copy of every
// module-wide variable; only the host libraries and the environment are shared.
namespace {

const QString kPluginPath = QStringLiteral(LAYERMGR_BUILD_BIN "/libLayerMgr.so");

class RecordingHost : public ILayerHost
{
public:
    void LayersChanged() override { ++calls; }
    void LayerEvent(int) override { ++calls; }
    void CurrentLayerChanged() override { ++calls; }
    void RefreshView() override { ++calls; }
    int calls = 0;
};

struct Plugin
{
    QLibrary library{kPluginPath};
    NewInterfaceFunc newInterface = nullptr;
    ReleaseInterfaceFunc releaseInterface = nullptr;

    bool load()
    {
        if (!library.load())
            return false;
        newInterface = reinterpret_cast<NewInterfaceFunc>(library.resolve("NewInterface"));
        releaseInterface =
            reinterpret_cast<ReleaseInterfaceFunc>(library.resolve("ReleaseInterface"));
        return newInterface && releaseInterface;
    }
};

void draw(CShapeList &list, std::initializer_list<quint32> colors)
{
    for (const quint32 color : colors)
        list.AddTail(new CShape(color));
}

QList<quint32> colorsOf(ILayerMgr &manager)
{
    QList<quint32> colors;
    for (quint32 i = 0; i < manager.GetLayerCount(); ++i)
        colors << manager.GetLayerAt(i)->COLOR;
    return colors;
}

} // namespace

class tst_Plugin : public QObject
{
    Q_OBJECT

private slots:
    void exportsOnlyTheEntryPoints_data();
    void exportsOnlyTheEntryPoints();
    void dynamicSymbolTable();
    void hostSession();
    void readsRememberedParamsOfThisUser();
    void releaseWithoutModule();
};

void tst_Plugin::exportsOnlyTheEntryPoints_data()
{
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<bool>("resolves");

    QTest::newRow("NewInterface") << "NewInterface" << true;
    QTest::newRow("ReleaseInterface") << "ReleaseInterface" << true;
    QTest::newRow("UpdateLayers") << "_ZN12CLayerMgrIns12UpdateLayersEP10CShapeList" << false;
    QTest::newRow("manager constructor") << "_ZN12CLayerMgrInsC1EPv" << false;
    QTest::newRow("panel pointer") << "g_pLayerPanel" << false;
    QTest::newRow("layer context") << "g_LayerContext" << false;
    QTest::newRow("settings reader") << "_Z10ReadIniInt7QStringS_iS_" << false;
    QTest::newRow("stream reader") << "_Z15ReadLayerStreamP9QIODeviceRSt6vectorISt10unique_ptrI11"
                                      "CLayerParamSt14default_deleteIS3_EESaIS6_EE"
                                   << false;
}

void tst_Plugin::exportsOnlyTheEntryPoints()
{
    QFETCH(QString, symbol);
    QFETCH(bool, resolves);
    QLibrary library(kPluginPath);
    QVERIFY2(library.load(), qPrintable(library.errorString()));
    QCOMPARE(library.resolve(symbol.toLatin1().constData()) != nullptr, resolves);
}

void tst_Plugin::dynamicSymbolTable()
{
    const QString nm = QStandardPaths::findExecutable(QStringLiteral("nm"));
    if (nm.isEmpty())
        QSKIP("nm is not installed");
    QProcess process;
    process.start(nm, {QStringLiteral("-D"), QStringLiteral("--defined-only"), kPluginPath});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);

    // Code and data the library defines; linker markers aside.
    QStringList defined;
    const QString out = QString::fromLocal8Bit(process.readAllStandardOutput());
    for (const QString &line : out.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QStringList fields = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        const QString &name = fields.last();
        const bool marker =
            name.startsWith(QLatin1Char('_')) && !name.startsWith(QStringLiteral("_Z"));
        if (fields.size() == 3 && !marker)
            defined << name;
    }
    defined.sort();
    QCOMPARE(defined, QStringList({"NewInterface", "ReleaseInterface"}));
}

void tst_Plugin::hostSession()
{
    TestEnvironment env;
    Plugin plugin;
    QVERIFY2(plugin.load(), qPrintable(plugin.library.errorString()));
    CLayerMgrModuleApi *module = plugin.newInterface();
    QVERIFY(module);
    RecordingHost host;
    ILayerMgr *manager = module->CreateLayerMgr(&host);
    QVERIFY(manager);

    CShapeList shapes;
    draw(shapes, {0x0000FF, 0x00FF00, 0x0000FF});
    QCOMPARE(manager->UpdateLayers(&shapes), 1u);
    QCOMPARE(manager->UpdateLayers(&shapes), 0u);
    QCOMPARE(manager->UpdateLayers(nullptr), 0u);
    QCOMPARE(colorsOf(*manager), (QList<quint32>{0x0000FF, 0x00FF00}));
    QCOMPARE(manager->GetLayerByColor(0x00FF00), manager->GetLayerAt(1));
    QCOMPARE(manager->GetLayerIndex(manager->GetLayerAt(1)), 1u);
    QCOMPARE(manager->GetLayerColor(5, true), 0x01CCFDu);
    QCOMPARE(manager->GetLayerNumber(0x00CAFC), 5u);

    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    QCOMPARE(manager->SaveLayers(&buffer), 0u);
    QCOMPARE(buffer.data().left(8), QByteArray::fromHex("0e000000"
                                                        "02000000"));
    ILayerMgr *second = module->CreateLayerMgr(nullptr);
    buffer.seek(0);
    QCOMPARE(second->LoadLayers(&buffer), 0u);
    QCOMPARE(colorsOf(*second), colorsOf(*manager));
    QVERIFY(second->MoveLayer(0, 1));
    QCOMPARE(colorsOf(*second), (QList<quint32>{0x00FF00, 0x0000FF}));
    QVERIFY(!second->MoveLayer(1, 1));
    module->ReleaseLayerMgr(second);

    // The plug-in's unit mode is its own.
    module->SetUnitMode(3);
    QCOMPARE(g_LayerContext.m_unitMode, 0);
    QCOMPARE(host.calls, 0);

    module->ReleaseLayerMgr(manager);
    module->ReleaseLayerMgr(nullptr);
    plugin.releaseInterface(module);
}

void tst_Plugin::readsRememberedParamsOfThisUser()
{
    TestEnvironment env;
    LayerList remembered;
    remembered.push_back(std::make_unique<CLayerParam>(0x123456));
    remembered[0]->CUT.CUT_SPEED = 42;
    remembered[0]->WORK_TYPE = WORK_SCORING;
    WriteLayerParamFile(remembered);

    Plugin plugin;
    QVERIFY2(plugin.load(), qPrintable(plugin.library.errorString()));
    CLayerMgrModuleApi *module = plugin.newInterface();
    ILayerMgr *manager = module->CreateLayerMgr(nullptr);
    CShapeList shapes;
    draw(shapes, {0x123456});
    manager->UpdateLayers(&shapes);
    const CLayerParam *layer = manager->GetLayerByColor(0x123456);
    QVERIFY(layer);
    QCOMPARE(layer->CUT.CUT_SPEED, 42.0);
    QCOMPARE(layer->WORK_TYPE, qint32(WORK_SCORING));
    module->ReleaseLayerMgr(manager);
    plugin.releaseInterface(module);
}

void tst_Plugin::releaseWithoutModule()
{
    TestEnvironment env;
    Plugin plugin;
    QVERIFY2(plugin.load(), qPrintable(plugin.library.errorString()));
    plugin.releaseInterface(nullptr);
    plugin.releaseInterface(nullptr);
    QVERIFY(env.logLines().isEmpty());
}

QTEST_GUILESS_MAIN(tst_Plugin)
#include "tst_plugin.moc"
