#include "module/ilayermgr.h"
#include "module/layerparamfile.h"
#include "testenvironment.h"

#include "cshape.h"
#include "cshapelist.h"

#include <QLibrary>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

// The built plug-in, loaded as a host loads it.
namespace {
const QString kPluginPath = QStringLiteral(LAYERMGR_BUILD_BIN "/libLayerMgr.so");
}

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

    // Code and data the library defines ("address type name"); linker markers aside.
    static const QRegularExpression symbol(QStringLiteral("^\\S+ \\S ((?!_)\\S+|_Z\\S+)$"),
                                           QRegularExpression::MultilineOption);
    QStringList defined;
    const QString out = QString::fromLocal8Bit(process.readAllStandardOutput());
    for (const QRegularExpressionMatch &m : symbol.globalMatch(out))
        defined << m.captured(1);
    defined.sort();
    QCOMPARE(defined, QStringList({"NewInterface", "ReleaseInterface"}));
}

// What a host does from loading to unloading; the behaviour behind the
// interface has suites of its own.
void tst_Plugin::hostSession()
{
    TestEnvironment env;
    // The user's remembered parameters, in the folder the host set up.
    LayerList remembered;
    remembered.push_back(std::make_unique<CLayerParam>(0x123456));
    remembered[0]->CUT.CUT_SPEED = 42;
    WriteLayerParamFile(remembered);

    QLibrary library(kPluginPath);
    QVERIFY2(library.load(), qPrintable(library.errorString()));
    const auto newInterface = reinterpret_cast<NewInterfaceFunc>(library.resolve("NewInterface"));
    const auto releaseInterface =
        reinterpret_cast<ReleaseInterfaceFunc>(library.resolve("ReleaseInterface"));
    QVERIFY(newInterface && releaseInterface);
    CLayerMgrModuleApi *module = newInterface();
    QVERIFY(module);
    ILayerMgr *manager = module->CreateLayerMgr(nullptr);
    CShapeList shapes;
    shapes.AddTail(new CShape(0x123456));
    QCOMPARE(manager->UpdateLayers(&shapes), 1u);
    QCOMPARE(manager->GetLayerByColor(0x123456)->CUT.CUT_SPEED, 42.0);
    module->ReleaseLayerMgr(manager);
    releaseInterface(module);
    releaseInterface(nullptr);
    QVERIFY(env.logLines().isEmpty());
}

QTEST_GUILESS_MAIN(tst_Plugin)
#include "tst_plugin.moc"
