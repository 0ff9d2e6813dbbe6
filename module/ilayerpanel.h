#pragma once

#include <QtGlobal>

class CLayerMgrIns;
class DlgLayerMgr;
class QWidget;

// What the layer manager and the module ask of the layer table panel.
class ILayerPanel
{
public:
    virtual ~ILayerPanel() = default;

    virtual void SetDualLaser(bool dualLaser) = 0;
    // Rewrites the speed column in the context's unit mode.
    virtual void RefreshSpeeds() = 0;
    virtual void SyncLayers(CLayerMgrIns *manager, bool force) = 0;
    virtual void AddPendingColor(quint32 color) = 0;
    virtual void SelectPendingColors() = 0;
    virtual quint32 CurrentLayerColor() const = 0;
    virtual void SetPanelData(void *data) = 0;
    virtual void *GetPanelData() const = 0;
};

// The panel of the module, or null. Every forwarding operation tests it.
extern ILayerPanel *g_pLayerPanel;

// Where the panel class lives: its constructor and its two faces.
DlgLayerMgr *NewLayerPanel(QWidget *parent);
ILayerPanel *LayerPanelInterface(DlgLayerMgr *panel);
QWidget *LayerPanelWidget(DlgLayerMgr *panel);
