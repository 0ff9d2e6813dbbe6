#include "settings.h"

#include "directories.h"

#include <QSettings>

#include <memory>

namespace {

std::unique_ptr<QSettings> &batch()
{
    static std::unique_ptr<QSettings> settings;
    return settings;
}

QString keyPath(const QString &group, const QString &key)
{
    return QStringLiteral("%1%2%3").arg(group, QStringLiteral("/"), key);
}

template<typename T>
void writeValue(const QString &group, const QString &key, const T &value, const QString &path)
{
    auto write = [&](QSettings &settings) {
        settings.beginGroup(group);
        settings.setValue(key, QVariant::fromValue(value));
        settings.endGroup();
    };
    if (QSettings *open = batch().get()) {
        write(*open);
        return;
    }
    QSettings settings(path, QSettings::IniFormat);
    write(settings);
}

} // namespace

int ReadIniInt(const QSettings &settings, const QString &group, const QString &key, int defaultValue)
{
    return settings.value(keyPath(group, key), defaultValue).toInt();
}

double ReadIniDouble(const QSettings &settings, const QString &group, const QString &key,
                     double defaultValue)
{
    return settings.value(keyPath(group, key), defaultValue).toDouble();
}

QString ReadIniString(const QSettings &settings, const QString &group, const QString &key,
                      const QString &defaultValue)
{
    return settings.value(keyPath(group, key), defaultValue).toString();
}

int ReadIniInt(QString group, QString key, int defaultValue, QString path)
{
    const QSettings settings(path, QSettings::IniFormat);
    return ReadIniInt(settings, group, key, defaultValue);
}

double ReadIniDouble(QString group, QString key, double defaultValue, QString path)
{
    const QSettings settings(path, QSettings::IniFormat);
    return ReadIniDouble(settings, group, key, defaultValue);
}

QString ReadIniString(QString group, QString key, QString defaultValue, QString path)
{
    const QSettings settings(path, QSettings::IniFormat);
    return ReadIniString(settings, group, key, defaultValue);
}

void WriteIniInt(QString group, QString key, int value, QString path)
{
    writeValue(group, key, value, path);
}

void WriteIniDouble(QString group, QString key, double value, QString path)
{
    writeValue(group, key, value, path);
}

void WriteIniString(QString group, QString key, QString value, QString path)
{
    writeValue(group, key, value, path);
}

void OpenIniBatch(QString path)
{
    // A batch still open is flushed and replaced; callers must not interleave.
    batch() = std::make_unique<QSettings>(path, QSettings::IniFormat);
}

void CloseIniBatch()
{
    batch().reset();
}

QString DataFilePath(const QString &name)
{
    return QStringLiteral("%1/Data/%2").arg(UserDataDir(), name);
}

QString CfgIniPath()
{
    return DataFilePath(QStringLiteral("cfg.ini"));
}

QString FactoryParamIniPath()
{
    return DataFilePath(QStringLiteral("FactoryParam.ini"));
}

QString UserParamIniPath()
{
    return DataFilePath(QStringLiteral("UserParam.ini"));
}

QString TmpParamIniPath()
{
    return DataFilePath(QStringLiteral("tmpParam.ini"));
}

LaserTypeCodes ReadLaserTypes()
{
    const QSettings settings(FactoryParamIniPath(), QSettings::IniFormat);
    const QString group = QStringLiteral("FACTORY_PARAM_LASER");
    return {ReadIniInt(settings, group, QStringLiteral("LASER1_TYPE"), 0),
            ReadIniInt(settings, group, QStringLiteral("LASER2_TYPE"), 0)};
}
