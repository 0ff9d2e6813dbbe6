#pragma once

#include "hostsdk_global.h"

#include <QString>

#include <functional>

// The host's log. Levels: 0 user actions, 1 coordinates and positions,
// 2 information, 3 internal faults.
HOSTSDK_EXPORT void ILog_WriteLog(int level, const char *text);
HOSTSDK_EXPORT void ILog_WriteLogF(int level, const char *format, ...)
    Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);

// The file that receives every line; empty to stop writing a file. The host
// points it into its user data directory at start-up.
HOSTSDK_EXPORT void ILog_SetLogFile(const QString &path);
HOSTSDK_EXPORT QString ILog_LogFile();

// A second receiver of every line (level and text without time stamp), so
// that tests can read the lines back. An empty function removes it.
using ILogSink = std::function<void(int level, const QString &line)>;
HOSTSDK_EXPORT void ILog_SetSink(ILogSink sink);
