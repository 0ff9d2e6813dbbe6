#pragma once

#include "ilayerhost.h"

#include <QString>

#include <functional>

// The demo host's answer to the plug-in's notifications: each one becomes a
// message (the status bar of the windowed host, stdout of the console one).
class CHostCallback : public ILayerHost
{
public:
    explicit CHostCallback(std::function<void(const QString &)> show);

    void LayersChanged() override;
    void LayerEvent(int code) override;
    void CurrentLayerChanged() override;
    void RefreshView() override;

private:
    std::function<void(const QString &)> m_show;
};
