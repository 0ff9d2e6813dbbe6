#pragma once

#include <QString>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

// Points the user data directory into a temporary folder for the run.
class BenchEnvironment
{
public:
    BenchEnvironment();
    QString dataFile(const QString &name) const;

private:
    QTemporaryDir m_dir;
};

// Runs the registered benchmarks, then prints every benchmark "X" beside
// "X/floor" (same arguments) as a ratio, with the target when one is given
// through SetTarget.
int RunBenchmarksWithFloors(int argc, char **argv);
void SetTarget(const std::string &name, double maxRatio);
