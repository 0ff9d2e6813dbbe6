#include "chostcallback.h"

#include "hostwording.h"

CHostCallback::CHostCallback(QObject *parent)
    : QObject(parent)
    , m_devices(std::make_unique<CDevicesInfoIns>())
{
    // A desktop machine, not connected, until the Machine menu says otherwise.
    m_devices->SetMachineKind(1);
    m_devices->SetValue(QStringLiteral("MaxPower"), 20);
    m_devices->SetValue(QStringLiteral("CurrentRdCardType"), 8);
    m_devices->SetValue(QStringLiteral("IsDualLaser"), false);
}

void CHostCallback::LayersChanged()
{
    emit SigLayersChanged();
}

void CHostCallback::LayerEvent(int code)
{
    emit SigLayerEvent(code);
}

void CHostCallback::CurrentLayerChanged()
{
    emit SigCurrentLayerChanged();
}

void CHostCallback::RefreshView()
{
    emit SigRefreshView();
}

IDevicesInfo *CHostCallback::DevicesInfo() const
{
    return m_devices.get();
}

QString CHostCallback::LayersChangedText()
{
    return Wording("Layer parameters changed");
}

QString CHostCallback::LayerEventText(int code)
{
    switch (code) {
    case 0:
        return Wording("Laser source of the layers changed");
    case 2:
        return Wording("Work type of a layer changed");
    case 3:
        return Wording("Layers moved");
    default:
        return Wording("Layer event %1").arg(code);
    }
}

QString CHostCallback::CurrentLayerChangedText()
{
    return Wording("Current layer changed");
}
