#include "idevicesinfo.h"

IDevicesInfo::~IDevicesInfo() = default;

bool CDevicesInfoIns::GetValue(const QString &name, QVariant &value) const
{
    const auto it = m_values.constFind(name);
    if (it == m_values.cend())
        return false;
    value = *it;
    return true;
}

LaserSourceInfo CDevicesInfoIns::GetLaser(int index) const
{
    if (index < 0 || index > 1)
        return {};
    return m_lasers[index];
}

void CDevicesInfoIns::SetLaser(int index, const LaserSourceInfo &info)
{
    if (index >= 0 && index <= 1)
        m_lasers[index] = info;
}
