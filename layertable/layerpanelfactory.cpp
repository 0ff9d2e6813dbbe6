// The module reaches the panel only through these, so that module/ needs no
// widget headers. This is also where the panel meets the library manager.
#include "dlglayermgr.h"

#include "libmgr/dlglayerlibmgr.h"

DlgLayerMgr *NewLayerPanel(QWidget *parent)
{
    auto *panel = new DlgLayerMgr(parent);
    panel->SetLibraryDialogOpener(&DlgLayerLibMgr::Open);
    return panel;
}

ILayerPanel *LayerPanelInterface(DlgLayerMgr *panel)
{
    return panel;
}

QWidget *LayerPanelWidget(DlgLayerMgr *panel)
{
    return panel;
}
