#include "clayermgrmoduleins.h"

#include "clayermgrins.h"
#include "deletequestion.h"
#include "ilayerpanel.h"
#include "library/clayercontext.h"
#include "support/moduleloader.h"

#include "ilog.h"

#include <QFile>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QWidget>

#include <new>

ILayerPanel *g_pLayerPanel = nullptr;

namespace {
void showLoaderError(const QString &title, const QString &text)
{
    QMessageBox::information(nullptr, title, text, QMessageBox::Ok);
}
} // namespace

CLayerMgrModuleIns::CLayerMgrModuleIns()
{
    SetModuleErrorPresenter(&showLoaderError);
    InstallDeletionQuestion();
    // Once per process: a second module object must not drop unsaved edits,
    // nor copy the factory library over one that ReloadLibrary took over.
    if (!g_LayerContext.Store().IsLoaded())
        g_LayerContext.Store().Load();
}

CLayerMgrModuleIns::~CLayerMgrModuleIns() = default;

DlgLayerMgr *CLayerMgrModuleIns::CreatePanel(QWidget *parent, void *hostData)
{
    g_LayerContext.m_pHostData = hostData;
    DlgLayerMgr *panel = NewLayerPanel(parent);
    if (!panel)
        return nullptr;
    g_pLayerPanel = LayerPanelInterface(panel);
    QWidget *widget = LayerPanelWidget(panel);
    widget->show();
    if (parent) {
        auto *layout = new QHBoxLayout;
        layout->setSpacing(0);
        layout->setContentsMargins(0, 0, 0, 0);
        parent->setLayout(layout);
        layout->addWidget(widget, 0);
    }
    return panel;
}

void CLayerMgrModuleIns::SetPanelFlag(bool dualLaser)
{
    if (g_pLayerPanel)
        g_pLayerPanel->SetDualLaser(dualLaser);
}

void CLayerMgrModuleIns::SetUnitMode(int mode)
{
    g_LayerContext.m_unitMode = mode;
    if (g_pLayerPanel)
        g_pLayerPanel->RefreshSpeeds();
}

ILayerMgr *CLayerMgrModuleIns::CreateLayerMgr(void *host)
{
    return new (std::nothrow) CLayerMgrIns(host);
}

void CLayerMgrModuleIns::ReleaseLayerMgr(ILayerMgr *manager)
{
    delete manager;
}

void CLayerMgrModuleIns::ReloadLibrary()
{
    const QString path = CLibraryStore::UserLibraryPath();
    const bool taken = g_LayerContext.Store().BackupAndTakeOver(path);
    ILog_WriteLogF(2, "ReloadLibrary: %s", taken ? "library taken over" : "nothing taken over");
    // Deleted whatever the outcome; the library stays in memory until the
    // next save writes the file again.
    QFile::remove(path);
}

CLayerMgrModuleApi *NewLayerMgrModule()
{
    return new (std::nothrow) CLayerMgrModuleIns;
}

void ReleaseLayerMgrModule(CLayerMgrModuleApi *module)
{
    if (g_pLayerPanel) {
        delete g_pLayerPanel;
        g_pLayerPanel = nullptr;
    }
    delete module;
}
