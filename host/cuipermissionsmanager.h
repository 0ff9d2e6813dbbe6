#pragma once

#include "hostsdk_global.h"

#include <QString>

// The host's user-interface permissions, here only the theme name, which
// decides where the user's data lives.
class HOSTSDK_EXPORT CUiPermissionsManager
{
public:
    static CUiPermissionsManager *GetInstance();

    QString GetThemeName() const { return m_themeName; }
    void SetThemeName(const QString &name) { m_themeName = name; }

private:
    CUiPermissionsManager() = default;
    QString m_themeName;
};
