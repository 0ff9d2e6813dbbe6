#pragma once

#include "ilayermgr.h"
#include "layerlist.h"

#include <QHash>
#include <QSet>
#include <QString>

class ILayerHost;

// The layers of the open document, one per colour in the drawing, and the
// remembered parameters of every colour ever used.
class CLayerMgrIns : public ILayerMgr
{
public:
    explicit CLayerMgrIns(void *host);
    ~CLayerMgrIns() override;

    quint64 UpdateLayers(CShapeList *shapes) override;
    void AttachPanel(DlgLayerMgr *panel) override;
    quint64 GetLayerCount() override;
    quint32 GetLayerColor(quint32 number, bool alternate) override;
    quint32 GetLayerNumber(quint32 color) override;
    CLayerParam *GetLayerByColor(quint32 color) override;
    CLayerParam *GetLayerAt(quint32 index) override;
    quint32 GetLayerIndex(CLayerParam *layer) override;
    quint64 GetOutputLayers(QList<CLayerParam *> &layers) override;
    quint64 GetNonOutputColors(QList<quint32> &colors) override;
    void SetNonOutputColors(QSet<quint32> *colors) override;
    void AddLayer(CLayerParam *layer) override;
    bool MoveLayer(int from, int to) override;
    quint64 LoadLayers(QIODevice *device) override;
    quint64 SaveLayers(QIODevice *device) override;
    void RestoreLayerParams() override;
    void SelectLayersOfShapes(CShapeList *shapes) override;
    quint32 GetCurrentLayerColor() override;
    void GetRunningOption(quint32 *type, QString *materialName, double *thickness) override;
    void SetLaserCheck(bool check) override;
    void SetPanelData(void *data) override;
    void *GetPanelData() override;

    // For the panel and the library dialogs.
    void SaveRememberedParams();
    void SetFiberFirst(bool fiberFirst);
    bool FiberFirst() const { return m_fiberFirst; }
    bool LaserCheck() const { return m_laserCheck; }
    // Regroups by laser source; mode 0 and 2 act, others leave the order.
    void Regroup(int mode, CLayerParam *reference = nullptr);
    std::unique_ptr<CLayerParam> CreateLayer(quint32 color) const;
    const LayerList &Layers() const { return m_layers; }
    const LayerList &RememberedLayers() const { return m_remembered; }
    ILayerHost *Host() const { return m_host; }

    static QString LaserTypeName(int type);
    static QString LayerLaserName(const CLayerParam *layer, const QString &laser1,
                                  const QString &laser2);

    // Host notifications, each only with a host.
    void NotifyLayersChanged();
    void NotifyLayerEvent(int code, CLayerParam *layer);
    void NotifyCurrentLayerChanged();

private:
    struct LaserGroups;
    static int userSweepVertType();
    std::unique_ptr<CLayerParam> createLayer(quint32 color, int sweepVertType) const;
    void refill(LaserGroups &groups);
    void remember(const CLayerParam &layer);
    void rebuildRememberedIndex();

    LayerList m_layers;
    LayerList m_remembered;
    QSet<quint32> m_pendingNonOutput;
    ILayerHost *m_host = nullptr;
    bool m_fiberFirst = true;
    bool m_laserCheck = true;
    // Colour to the first remembered record of that colour.
    QHash<quint32, int> m_rememberedIndex;
};
