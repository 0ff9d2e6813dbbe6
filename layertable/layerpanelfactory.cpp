// The module reaches the panel only through these, so that module/ needs no
// widget headers.
#include "dlglayermgr.h"

DlgLayerMgr *NewLayerPanel(QWidget *parent)
{
    return new DlgLayerMgr(parent);
}

ILayerPanel *LayerPanelInterface(DlgLayerMgr *panel)
{
    return panel;
}

QWidget *LayerPanelWidget(DlgLayerMgr *panel)
{
    return panel;
}
