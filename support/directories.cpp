#include "directories.h"

#include "cuipermissionsmanager.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace {
QString &resourceDirOverride()
{
    static QString dir;
    return dir;
}
} // namespace

QString UserDataDir()
{
    const QString theme = CUiPermissionsManager::GetInstance()->GetThemeName();
    const QString base = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    const QString dir = theme == QLatin1String("Quorvantix")
        ? base + QStringLiteral("/../Quorvantix/Resources")
        : base + QStringLiteral("/../Tessavolia/Resources");
    const QString clean = QDir::cleanPath(dir);
    QDir().mkpath(clean);
    return clean;
}

QString AppResourceDir()
{
    if (!resourceDirOverride().isEmpty())
        return resourceDirOverride();
    return QDir(QCoreApplication::applicationDirPath() + QStringLiteral("/../Resources")).absolutePath();
}

void SetAppResourceDir(const QString &dir)
{
    resourceDirOverride() = dir;
}
