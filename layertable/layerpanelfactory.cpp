// The layer table panel is not in this build yet: the module makes no panel,
// and every operation that would reach one does nothing.
#include "module/ilayerpanel.h"

DlgLayerMgr *NewLayerPanel(QWidget *parent)
{
    Q_UNUSED(parent);
    return nullptr;
}

ILayerPanel *LayerPanelInterface(DlgLayerMgr *panel)
{
    Q_UNUSED(panel);
    return nullptr;
}

QWidget *LayerPanelWidget(DlgLayerMgr *panel)
{
    Q_UNUSED(panel);
    return nullptr;
}
