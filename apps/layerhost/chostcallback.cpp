#include "chostcallback.h"

CHostCallback::CHostCallback(std::function<void(const QString &)> show)
    : m_show(std::move(show))
{
}

void CHostCallback::LayersChanged()
{
    m_show(QStringLiteral("Layers changed"));
}

void CHostCallback::LayerEvent(int code)
{
    m_show(QStringLiteral("Layer event %1").arg(code));
}

void CHostCallback::CurrentLayerChanged()
{
    m_show(QStringLiteral("Current layer changed"));
}

void CHostCallback::RefreshView()
{
    m_show(QStringLiteral("View refreshed"));
}
