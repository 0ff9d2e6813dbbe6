#include "benchsupport.h"

#include "library/cmateriallibrary.h"
#include "module/clayermgrins.h"
#include "module/layercolors.h"
#include "support/directories.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

std::unique_ptr<CLayerMgrIns> BenchLayers(int count)
{
    auto manager = std::make_unique<CLayerMgrIns>(nullptr);
    for (int i = 0; i < count; ++i) {
        const quint32 color = i < int(kStandardLayerCount)
            ? StandardLayerColor(quint32(i) + 1, false)
            : 0x300000u + quint32(i) * 7u;
        auto *layer = new CLayerParam(color);
        layer->WORK_TYPE = i % 5;
        layer->CUT.CUT_SPEED = 10.0 + i % 90;
        layer->SWEEP.SWEEP_SPEED = 100.0 + i % 400;
        layer->CUT.LASER1.POWER_MAX = 5.5 + i % 50;
        manager->AddLayer(layer);
    }
    return manager;
}

BenchEnvironment::BenchEnvironment()
{
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_dir.path()));
    QDir().mkpath(UserDataDir() + QStringLiteral("/Data"));
}

QString BenchEnvironment::dataFile(const QString &name) const
{
    return UserDataDir() + QStringLiteral("/Data/") + name;
}

namespace {

std::map<std::string, double> &targets()
{
    static std::map<std::string, double> t;
    return t;
}

class FloorReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred)
                continue;
            const double ns = run.GetAdjustedRealTime()
                * (1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit));
            m_times.emplace_back(run.benchmark_name(), ns);
        }
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        std::map<std::string, double> byName(m_times.begin(), m_times.end());
        std::printf("\n%-58s %12s %12s %7s %7s\n", "operation", "time", "floor", "ratio", "target");
        for (const auto &[name, ns] : m_times) {
            // "X/floor/args" belongs to "X/args".
            const auto slash = name.find("/floor");
            if (slash != std::string::npos)
                continue;
            const auto first = name.find('/');
            const std::string base = name.substr(0, first);
            const std::string args = first == std::string::npos ? std::string() : name.substr(first);
            const auto floor = byName.find(base + "/floor" + args);
            const auto target = targets().find(base);
            char targetText[16] = "-";
            if (target != targets().end())
                std::snprintf(targetText, sizeof targetText, "%.1fx", target->second);
            if (floor == byName.end()) {
                std::printf("%-58s %10.3fms %12s %7s %7s\n", name.c_str(), ns / 1e6, "-", "-",
                            targetText);
            } else {
                std::printf("%-58s %10.3fms %10.3fms %6.2fx %7s\n", name.c_str(), ns / 1e6,
                            floor->second / 1e6, ns / floor->second, targetText);
            }
        }
    }

private:
    std::vector<std::pair<std::string, double>> m_times;
};

} // namespace

void SetTarget(const std::string &name, double maxRatio)
{
    targets()[name] = maxRatio;
}

int RunBenchmarksWithFloors(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    FloorReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}

namespace largelib {

QString materialName(int m)
{
    return QStringLiteral("Material %1").arg(m, 2, 10, QLatin1Char('0'));
}

// 6 tube/power pairs x 60 materials x 8 thicknesses x 4 crafts: 11,520 sets.
const CMaterialLibrary &largeLibrary()
{
    static const CMaterialLibrary library = [] {
        CMaterialLibrary lib;
        for (int p = 0; p < kPairs; ++p) {
            lib.AddPower(kTubes[p], kPowers[p], p % 2 == 1);
            for (int m = 0; m < kMaterials; ++m) {
                CLibMaterial material;
                material.name = materialName(m);
                material.tube = kTubes[p];
                material.power = kPowers[p];
                material.iconPath = QStringLiteral("/Res/Icon/m%1.png").arg(m);
                material.iconBase64 = QString(800, QLatin1Char('Q'));
                for (int i = 0; i < kThicknesses; ++i)
                    material.thicknesses.push_back(1.0 + i * 1.5);
                lib.AddMaterial(material);
                for (double thickness : material.thicknesses) {
                    for (quint32 craft = 0; craft < 4; ++craft) {
                        const CLibKey key{kTubes[p], kPowers[p], material.name, thickness, craft};
                        if (IsCutCraft(craft)) {
                            CLibCutSet set;
                            set.key = key;
                            set.speed = 10 + m;
                            set.laser1.power = 30.0 + thickness * 2.0;
                            lib.SetCutSet(set);
                        } else {
                            CLibSweepSet set;
                            set.key = key;
                            set.speed = 200.5 + m;
                            set.dpi = 6;
                            lib.SetSweepSet(set);
                        }
                    }
                }
            }
        }
        return lib;
    }();
    return library;
}

} // namespace largelib
