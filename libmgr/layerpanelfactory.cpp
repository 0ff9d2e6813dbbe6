// The module reaches the panel only through these, so that module/ needs no
// widget headers. The panel gets its library manager here, the one place
// that sees both.
#include "dlglayerlibmgr.h"

#include "layertable/dlglayermgr.h"

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
