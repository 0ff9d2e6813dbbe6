#include "clayercontext.h"

#include "support/units.h"

#include <algorithm>

CLayerContext g_LayerContext;

double CLayerContext::LengthToDisplay(double mm) const
{
    return ::LengthToDisplay(mm, m_unitMode);
}

double CLayerContext::LengthFromDisplay(double value) const
{
    return ::LengthFromDisplay(value, m_unitMode);
}

double CLayerContext::SpeedToDisplay(double mmPerSecond) const
{
    return ::SpeedToDisplay(mmPerSecond, m_unitMode);
}

double CLayerContext::SpeedFromDisplay(double value) const
{
    return ::SpeedFromDisplay(value, m_unitMode);
}

const CRunningOptions *CLayerContext::FindRunningOption(quint32 color) const
{
    const auto it = std::find_if(m_runningOptions.cbegin(), m_runningOptions.cend(),
                                 [color](const RunningOptionEntry &e) { return e.color == color; });
    return it == m_runningOptions.cend() ? nullptr : &it->options;
}

void CLayerContext::SetRunningOption(quint32 color, const CRunningOptions &options)
{
    const auto it = std::find_if(m_runningOptions.begin(), m_runningOptions.end(),
                                 [color](const RunningOptionEntry &e) { return e.color == color; });
    if (it != m_runningOptions.end())
        it->options = options;
    else
        m_runningOptions.push_back({color, options});
}

void CLayerContext::RemoveRunningOption(quint32 color)
{
    const auto it = std::find_if(m_runningOptions.begin(), m_runningOptions.end(),
                                 [color](const RunningOptionEntry &e) { return e.color == color; });
    if (it != m_runningOptions.end())
        m_runningOptions.erase(it);
}

QString CLayerContext::RunningOptionsJson() const
{
    return RunningOptionsToJson(m_runningOptions);
}

bool CLayerContext::SetRunningOptionsJson(const QString &text)
{
    return RunningOptionsFromJson(text, m_runningOptions);
}

void CLayerContext::Reset()
{
    m_pHost = nullptr;
    m_pHostData = nullptr;
    m_unitMode = 0;
    m_runningOptions.clear();
}
