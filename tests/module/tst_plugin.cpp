#include "library/clayercontext.h"
#include "module/ilayermgr.h"
#include "module/layerparamfile.h"
#include "testenvironment.h"

#include "cshape.h"
#include "cshapelist.h"

#include <QBuffer>
#include <QLibrary>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

// The built plug-in, loaded as a host loads it. It has its own copy of every
// module-wide variable; only the host libraries and the environment are shared.
namespace {

const QString kPluginPath = QStringLiteral(LAYERMGR_BUILD_BIN "/libLayerMgr.so");

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

quint64 update(ILayerMgr *manager, std::initializer_list<quint32> colors)
{
    CShapeList list;
    for (const quint32 color : colors)
        list.AddTail(new CShape(color));
    return manager->UpdateLayers(&list);
}

QList<quint32> colorsOf(ILayerMgr *manager)
{
    QList<quint32> colors;
    for (quint32 i = 0; i < manager->GetLayerCount(); ++i)
        colors << manager->GetLayerAt(i)->COLOR;
    return colors;
}

} // namespace

class tst_Plugin : public QObject
{
    Q_OBJECT

private slots:
    void exportsOnlyTheEntryPoints();
    void hostSession();
};

void tst_Plugin::exportsOnlyTheEntryPoints()
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
    // The user's remembered parameters, from the folder the host set up.
    LayerList remembered;
    remembered.push_back(std::make_unique<CLayerParam>(0x123456));
    remembered[0]->CUT.CUT_SPEED = 42;
    remembered[0]->WORK_TYPE = WORK_SCORING;
    WriteLayerParamFile(remembered);

    Plugin plugin;
    QVERIFY2(plugin.load(), qPrintable(plugin.library.errorString()));
    plugin.releaseInterface(nullptr);
    CLayerMgrModuleApi *module = plugin.newInterface();
    QVERIFY(module);
    ILayerMgr *manager = module->CreateLayerMgr(nullptr);
    QVERIFY(manager);

    QCOMPARE(update(manager, {0x0000FF, 0x123456, 0x0000FF}), 1u);
    // Scoring goes before cutting.
    QCOMPARE(colorsOf(manager), (QList<quint32>{0x123456, 0x0000FF}));
    const CLayerParam *layer = manager->GetLayerByColor(0x123456);
    QCOMPARE(layer->CUT.CUT_SPEED, 42.0);
    QCOMPARE(layer->WORK_TYPE, qint32(WORK_SCORING));

    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    QCOMPARE(manager->SaveLayers(&buffer), 0u);
    ILayerMgr *second = module->CreateLayerMgr(nullptr);
    buffer.seek(0);
    QCOMPARE(second->LoadLayers(&buffer), 0u);
    QCOMPARE(colorsOf(second), colorsOf(manager));
    QCOMPARE(second->GetLayerByColor(0x123456)->CUT.CUT_SPEED, 42.0);
    module->ReleaseLayerMgr(second);

    // The plug-in's unit mode is its own.
    module->SetUnitMode(3);
    QCOMPARE(g_LayerContext.m_unitMode, 0);

    module->ReleaseLayerMgr(manager);
    module->ReleaseLayerMgr(nullptr);
    plugin.releaseInterface(module);
    plugin.releaseInterface(nullptr);
    QVERIFY(env.logLines().isEmpty());
}

QTEST_GUILESS_MAIN(tst_Plugin)
#include "tst_plugin.moc"
