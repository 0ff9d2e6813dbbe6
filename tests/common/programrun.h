#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

// A built program run as a user runs it: its exit code (-1 when it crashed or
// hung) and what it printed, kept in either case for the failure message.
struct ProgramRun
{
    int exitCode = -1;
    QString out;
    QString err;
};

inline ProgramRun runProgram(const QString &program, const QStringList &arguments,
                             const QString &dir = QString(),
                             const QProcessEnvironment &env = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setWorkingDirectory(dir);
    process.setProcessEnvironment(env);
    process.start(program, arguments);
    const bool finished = process.waitForFinished(120000);
    return {finished && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}
