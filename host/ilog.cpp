#include "ilog.h"

#include <QDateTime>
#include <QFile>

#include <cstdarg>
#include <cstdio>
#include <vector>

namespace {

struct LogState
{
    QString path;
    ILogSink sink;
};

LogState &state()
{
    static LogState s;
    return s;
}

void emitLine(int level, const QString &line)
{
    LogState &s = state();
    if (s.sink)
        s.sink(level, line);
    if (s.path.isEmpty())
        return;
    QFile file(s.path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        return;
    const QString stamped = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"))
        + QStringLiteral(" [") + QString::number(level) + QStringLiteral("] ") + line
        + QLatin1Char('\n');
    file.write(stamped.toUtf8());
}

} // namespace

void ILog_WriteLog(int level, const char *text)
{
    emitLine(level, QString::fromUtf8(text ? text : ""));
}

void ILog_WriteLogF(int level, const char *format, ...)
{
    if (!format)
        return;
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    const int needed = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    if (needed < 0) {
        va_end(args);
        return;
    }
    std::vector<char> buffer(size_t(needed) + 1);
    std::vsnprintf(buffer.data(), buffer.size(), format, args);
    va_end(args);
    emitLine(level, QString::fromUtf8(buffer.data(), needed));
}

void ILog_SetLogFile(const QString &path)
{
    state().path = path;
}

QString ILog_LogFile()
{
    return state().path;
}

void ILog_SetSink(ILogSink sink)
{
    state().sink = std::move(sink);
}
