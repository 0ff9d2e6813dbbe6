#pragma once

// The plug-in's interface as a host sees it. A host resolves NewInterface and
// ReleaseInterface from the library and reaches everything else through the
// two classes below; the slot order of their virtual operations is part of
// the interface.

#include "clayerparam.h"

#include <QList>
#include <QSet>

class CShapeList;
class DlgLayerMgr;
class QIODevice;
class QWidget;

class ILayerMgr
{
public:
    virtual ~ILayerMgr() = default;

    // Brings the layers in step with the drawing. Returns 1 when the layer
    // list changed, 0 when not.
    virtual quint64 UpdateLayers(CShapeList *shapes) = 0;
    virtual void AttachPanel(DlgLayerMgr *panel) = 0;
    virtual quint64 GetLayerCount() = 0;
    virtual quint32 GetLayerColor(quint32 number, bool alternate) = 0;
    virtual quint32 GetLayerNumber(quint32 color) = 0;
    virtual CLayerParam *GetLayerByColor(quint32 color) = 0;
    virtual CLayerParam *GetLayerAt(quint32 index) = 0;
    virtual quint32 GetLayerIndex(CLayerParam *layer) = 0;
    virtual quint64 GetOutputLayers(QList<CLayerParam *> &layers) = 0;
    virtual quint64 GetNonOutputColors(QList<quint32> &colors) = 0;
    virtual void SetNonOutputColors(QSet<quint32> *colors) = 0;
    // Takes ownership unless a layer of that colour exists.
    virtual void AddLayer(CLayerParam *layer) = 0;
    virtual bool MoveLayer(int from, int to) = 0;
    virtual quint64 LoadLayers(QIODevice *device) = 0;
    virtual quint64 SaveLayers(QIODevice *device) = 0;
    virtual void RestoreLayerParams() = 0;
    virtual void SelectLayersOfShapes(CShapeList *shapes) = 0;
    virtual quint32 GetCurrentLayerColor() = 0;
    virtual void GetRunningOption(quint32 *type, QString *materialName, double *thickness) = 0;
    virtual void SetLaserCheck(bool check) = 0;
    virtual void SetPanelData(void *data) = 0;
    virtual void *GetPanelData() = 0;
};

class CLayerMgrModuleApi
{
public:
    virtual ~CLayerMgrModuleApi() = default;

    virtual DlgLayerMgr *CreatePanel(QWidget *parent, void *hostData) = 0;
    virtual void SetPanelFlag(bool dualLaser) = 0;
    virtual void SetUnitMode(int mode) = 0;
    // host is the host's ILayerHost, or null.
    virtual ILayerMgr *CreateLayerMgr(void *host) = 0;
    virtual void ReleaseLayerMgr(ILayerMgr *manager) = 0;
    virtual void ReloadLibrary() = 0;
};

// Exported with C linkage by the plug-in.
extern "C" {
using NewInterfaceFunc = CLayerMgrModuleApi *(*)();
using ReleaseInterfaceFunc = void (*)(CLayerMgrModuleApi *);
}
