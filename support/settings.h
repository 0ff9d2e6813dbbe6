#pragma once

#include <QString>

class QSettings;

// Every INI access of the plug-in goes through these. Reads open the file
// afresh each time, so a value just written anywhere is seen by the next read.
int ReadIniInt(QString group, QString key, int defaultValue, QString path);
double ReadIniDouble(QString group, QString key, double defaultValue, QString path);
QString ReadIniString(QString group, QString key, QString defaultValue, QString path);

// Writes go to the open batch, whatever path is named, when there is one.
void WriteIniInt(QString group, QString key, int value, QString path);
void WriteIniDouble(QString group, QString key, double value, QString path);
void WriteIniString(QString group, QString key, QString value, QString path);

void OpenIniBatch(QString path);
void CloseIniBatch();

// Readers of many keys of one file hold one QSettings and read through these,
// with the same key path and conversions as the functions above.
int ReadIniInt(const QSettings &settings, const QString &group, const QString &key, int defaultValue);
double ReadIniDouble(const QSettings &settings, const QString &group, const QString &key,
                     double defaultValue);
QString ReadIniString(const QSettings &settings, const QString &group, const QString &key,
                      const QString &defaultValue);

// LASER1_TYPE and LASER2_TYPE of FactoryParam.ini (default 0), through one
// QSettings.
struct LaserTypeCodes
{
    int laser1 = 0;
    int laser2 = 0;
};
LaserTypeCodes ReadLaserTypes();

// "%1/Data/<name>" below the user data directory.
QString DataFilePath(const QString &name);
QString CfgIniPath();
QString FactoryParamIniPath();
QString UserParamIniPath();
QString TmpParamIniPath();
