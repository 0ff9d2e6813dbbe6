#pragma once

#include "ilayermgr.h"

#include <QLibrary>
#include <QString>

class ILayerHost;

// Loads the LayerMgr plug-in the way the real host does: QLibrary,
// NewInterface, CreateLayerMgr; and gives everything back in reverse order.
class CPluginHost
{
public:
    CPluginHost();
    ~CPluginHost();
    CPluginHost(const CPluginHost &) = delete;
    CPluginHost &operator=(const CPluginHost &) = delete;

    // path: the library file, or a bare name looked up beside the program.
    bool Load(const QString &path, ILayerHost *host);
    void Unload();
    QString ErrorString() const { return m_error; }

    CLayerMgrModuleApi *Module() const { return m_module; }
    ILayerMgr *Manager() const { return m_manager; }

private:
    QLibrary m_library;
    ReleaseInterfaceFunc m_release = nullptr;
    CLayerMgrModuleApi *m_module = nullptr;
    ILayerMgr *m_manager = nullptr;
    QString m_error;
};
