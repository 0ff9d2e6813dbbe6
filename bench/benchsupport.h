#pragma once

#include <QString>
#include <QtGlobal>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

class CLayerMgrIns;
class CMaterialLibrary;

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

// A drawing of `count` colours, the standard ones first, with work types,
// speeds and powers that vary from row to row.
std::unique_ptr<CLayerMgrIns> BenchLayers(int count);

// The generated large library that the library benchmarks share:
// 6 tube/power pairs x 60 materials x 8 thicknesses x 4 crafts, 11,520 sets.
namespace largelib {
constexpr int kPairs = 6;
constexpr int kMaterials = 60;
constexpr int kThicknesses = 8;
constexpr quint32 kTubes[kPairs] = {0, 0, 2, 2, 3, 4};
constexpr qint32 kPowers[kPairs] = {60, 100, 30, 60, 30, 10};

QString materialName(int m);
const CMaterialLibrary &largeLibrary();
} // namespace largelib
