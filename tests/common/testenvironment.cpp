#include "testenvironment.h"

#include "library/clayercontext.h"
#include "module/ilayerpanel.h"
#include "support/directories.h"
#include "support/settings.h"

#include "cuipermissionsmanager.h"
#include "ilog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

TestEnvironment::TestEnvironment()
    : m_log(new QStringList)
{
    m_hadXdg = qEnvironmentVariableIsSet("XDG_CONFIG_HOME");
    m_oldXdg = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_dir.path() + QStringLiteral("/config")));
    QDir().mkpath(m_dir.path() + QStringLiteral("/Resources"));
    SetAppResourceDir(resourceDir());
    CUiPermissionsManager::GetInstance()->SetThemeName(QString());
    g_LayerContext.Reset();
    QDir().mkpath(dataDir() + QStringLiteral("/Data"));
    QStringList *log = m_log;
    ILog_SetSink([log](int level, const QString &line) {
        log->append(QString::number(level) + QLatin1Char('|') + line);
    });
}

TestEnvironment::~TestEnvironment()
{
    ILog_SetSink({});
    CloseIniBatch();
    g_pLayerPanel = nullptr;
    g_LayerContext.Reset();
    CUiPermissionsManager::GetInstance()->SetThemeName(QString());
    SetAppResourceDir(QString());
    if (m_hadXdg)
        qputenv("XDG_CONFIG_HOME", m_oldXdg);
    else
        qunsetenv("XDG_CONFIG_HOME");
    m_dir.setAutoRemove(!QTest::currentTestFailed());
    if (QTest::currentTestFailed())
        qWarning("Test files kept in %s", qPrintable(m_dir.path()));
    delete m_log;
}

QString TestEnvironment::dataDir() const
{
    return UserDataDir();
}

QString TestEnvironment::dataFile(const QString &name) const
{
    return dataDir() + QStringLiteral("/Data/") + name;
}

QString TestEnvironment::resourceDir() const
{
    return m_dir.path() + QStringLiteral("/Resources");
}

bool TestEnvironment::writeFile(const QString &path, const QByteArray &bytes) const
{
    const QString full = QDir::isAbsolutePath(path) ? path : dataFile(path);
    QDir().mkpath(QFileInfo(full).absolutePath());
    QFile file(full);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(bytes) == bytes.size();
}

QByteArray TestEnvironment::readFile(const QString &path) const
{
    QFile file(QDir::isAbsolutePath(path) ? path : dataFile(path));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}
