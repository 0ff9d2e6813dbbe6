#pragma once

#include "idevicesinfo.h"
#include "ilayerhost.h"

#include <QObject>

#include <memory>

// The demo host's side of the plug-in's notifications, as signals: the
// window shows them in its status bar and repaints what they touch. It also
// answers for the machine, as the host's device service set by hand.
class CHostCallback : public QObject, public ILayerHost
{
    Q_OBJECT

public:
    explicit CHostCallback(QObject *parent = nullptr);

    void LayersChanged() override;
    void LayerEvent(int code) override;
    void CurrentLayerChanged() override;
    void RefreshView() override;
    IDevicesInfo *DevicesInfo() const override;
    CDevicesInfoIns *Devices() const { return m_devices.get(); }

    // The status bar text of a notification, in the user's language.
    static QString LayersChangedText();
    static QString LayerEventText(int code);
    static QString CurrentLayerChangedText();

signals:
    void SigLayersChanged();
    void SigLayerEvent(int code);
    void SigCurrentLayerChanged();
    void SigRefreshView();

private:
    std::unique_ptr<CDevicesInfoIns> m_devices;
};
