#pragma once

#include "ilayermgr.h"

class CLayerMgrModuleIns : public CLayerMgrModuleApi
{
public:
    CLayerMgrModuleIns();
    ~CLayerMgrModuleIns() override;

    DlgLayerMgr *CreatePanel(QWidget *parent, void *hostData) override;
    void SetPanelFlag(bool dualLaser) override;
    void SetUnitMode(int mode) override;
    ILayerMgr *CreateLayerMgr(void *host) override;
    void ReleaseLayerMgr(ILayerMgr *manager) override;
    void ReloadLibrary() override;
};

// The bodies of the two exported functions.
CLayerMgrModuleApi *NewLayerMgrModule();
void ReleaseLayerMgrModule(CLayerMgrModuleApi *module);
