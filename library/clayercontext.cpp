#include "clayercontext.h"

#include "support/units.h"

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

void CLayerContext::Reset()
{
    m_pHost = nullptr;
    m_pHostData = nullptr;
    m_unitMode = 0;
    m_store.Reset();
}
