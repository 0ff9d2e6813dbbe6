#pragma once

#include "ilayerhost.h"

#include <QString>
#include <QStringList>

namespace paneltest {

// Records what the plug-in tells its host, one line per call.
class FakeLayerHost : public ILayerHost
{
public:
    void LayersChanged() override { calls << QStringLiteral("LayersChanged"); }
    void LayerEvent(int code) override { calls << QStringLiteral("LayerEvent %1").arg(code); }
    void CurrentLayerChanged() override { calls << QStringLiteral("CurrentLayerChanged"); }
    void RefreshView() override { calls << QStringLiteral("RefreshView"); }

    QStringList calls;
};

} // namespace paneltest
