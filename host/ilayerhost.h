#pragma once

#include "hostsdk_global.h"

class IDevicesInfo;

// The host object handed to CreateLayerMgr. The plug-in calls it after the
// user changed layers in the panel; what the host does then is its own
// business (redraw, mark the document modified, ...).
class HOSTSDK_EXPORT ILayerHost
{
public:
    virtual ~ILayerHost();

    // A layer's parameters, its output flag or the layer order changed.
    virtual void LayersChanged() = 0;
    // A layer event: 0 laser selection changed, 2 work type changed,
    // 3 layers moved. RefreshView() follows each one.
    virtual void LayerEvent(int code) = 0;
    // The current layer in the panel changed.
    virtual void CurrentLayerChanged() = 0;
    virtual void RefreshView() = 0;
    // The connected machine as the host knows it; null when the host has no
    // such service.
    virtual IDevicesInfo *DevicesInfo() const;
};
