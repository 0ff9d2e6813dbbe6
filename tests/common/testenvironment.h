#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <utility>
#include <vector>

// A private user data directory and resource directory for one test: points
// XDG_CONFIG_HOME and the resource directory into a temporary folder, and
// restores everything (theme, unit mode, running options, log sink, panel,
// batch) when it goes.
class TestEnvironment
{
public:
    TestEnvironment();
    ~TestEnvironment();
    TestEnvironment(const TestEnvironment &) = delete;
    TestEnvironment &operator=(const TestEnvironment &) = delete;

    bool isValid() const { return m_dir.isValid(); }
    QString root() const { return m_dir.path(); }
    // The user data directory (created by the plug-in's UserDataDir) and its
    // Data/ folder, created here as the host would.
    QString dataDir() const;
    QString dataFile(const QString &name) const;
    QString resourceDir() const;

    // Writes text into a file below the data folder (or anywhere, with an
    // absolute path); parents are created.
    bool writeFile(const QString &path, const QByteArray &bytes) const;
    QByteArray readFile(const QString &path) const;

    // Every log line written while the environment lives, as "level|text".
    const QStringList &logLines() const { return *m_log; }
    void clearLog() { m_log->clear(); }

private:
    QTemporaryDir m_dir;
    QByteArray m_oldXdg;
    bool m_hadXdg = false;
    QStringList *m_log;
};
