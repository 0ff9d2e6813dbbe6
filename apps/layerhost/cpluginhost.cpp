#include "cpluginhost.h"

#include <QCoreApplication>
#include <QDir>

CPluginHost::CPluginHost() = default;

CPluginHost::~CPluginHost()
{
    Unload();
}

bool CPluginHost::Load(const QString &path, ILayerHost *host)
{
    Unload();
    m_library.setFileName(QDir::isRelativePath(path)
                              ? QCoreApplication::applicationDirPath() + QLatin1Char('/') + path
                              : path);
    // Released in reverse order, but never unmapped: Qt keeps pointers into
    // the plug-in's code (meta-type records of the types it put in QVariants),
    // which a later load of the same library would trip over.
    m_library.setLoadHints(QLibrary::PreventUnloadHint);
    if (!m_library.load()) {
        m_error = m_library.errorString();
        return false;
    }
    auto create = reinterpret_cast<NewInterfaceFunc>(m_library.resolve("NewInterface"));
    m_release = reinterpret_cast<ReleaseInterfaceFunc>(m_library.resolve("ReleaseInterface"));
    if (!create || !m_release) {
        m_error = QStringLiteral("%1 does not export NewInterface and ReleaseInterface").arg(path);
        m_library.unload();
        return false;
    }
    m_module = create();
    if (!m_module) {
        m_error = QStringLiteral("NewInterface returned null");
        return false;
    }
    m_manager = m_module->CreateLayerMgr(host);
    if (!m_manager) {
        m_error = QStringLiteral("CreateLayerMgr returned null");
        return false;
    }
    return true;
}

void CPluginHost::Unload()
{
    if (m_module) {
        m_module->ReleaseLayerMgr(m_manager);
        m_manager = nullptr;
        m_release(m_module);
        m_module = nullptr;
    }
    if (m_library.isLoaded())
        m_library.unload();
}
