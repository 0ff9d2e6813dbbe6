#include "benchsupport.h"

#include "support/directories.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

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
