// The material library: read and write beside Qt's own JSON parse and
// serialisation of the same document, and the look-ups the library manager
// makes on every click.
#include "benchsupport.h"

#include "library/librarydocument.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QJsonDocument>

namespace {

constexpr int kPairs = 6;
constexpr int kMaterials = 60;
constexpr int kThicknesses = 8;

const quint32 kTubes[kPairs] = {0, 0, 2, 2, 3, 4};
const qint32 kPowers[kPairs] = {60, 100, 30, 60, 30, 10};

double t(double thickness)
{
    return thickness * 2.0;
}

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
                for (int t = 0; t < kThicknesses; ++t)
                    material.thicknesses.push_back(1.0 + t * 1.5);
                lib.AddMaterial(material);
                for (double thickness : material.thicknesses) {
                    for (quint32 craft = 0; craft < 4; ++craft) {
                        const CLibKey key{kTubes[p], kPowers[p], material.name, thickness, craft};
                        if (IsCutCraft(craft)) {
                            CLibCutSet set;
                            set.key = key;
                            set.speed = 10 + m;
                            set.laser1.power = 30.0 + t(thickness);
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

const QByteArray &largeBytes()
{
    static const QByteArray bytes = QJsonDocument(MaterialLibraryToJson(largeLibrary())).toJson();
    return bytes;
}

void load(benchmark::State &state, const QByteArray &document)
{
    QByteArray bytes = document;
    for (auto _ : state) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        CMaterialLibrary library;
        if (!ReadMaterialLibrary(&buffer, library).ok()
            || library.CutSetCount() != largeLibrary().CutSetCount()) {
            state.SkipWithError("the library did not read back whole");
            break;
        }
        benchmark::DoNotOptimize(library.CutSetCount());
    }
    state.counters["sets"] = double(largeLibrary().CutSetCount() + largeLibrary().SweepSetCount());
    state.counters["MB"] = double(bytes.size()) / 1e6;
}

void loadFloor(benchmark::State &state, const QByteArray &document)
{
    const QByteArray bytes = document;
    for (auto _ : state) {
        const QJsonDocument document = QJsonDocument::fromJson(bytes);
        benchmark::DoNotOptimize(document.isObject());
    }
}

void save(benchmark::State &state)
{
    const CMaterialLibrary &library = largeLibrary();
    for (auto _ : state) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        WriteMaterialLibrary(&buffer, library);
        benchmark::DoNotOptimize(buffer.data().size());
    }
}

void saveFloor(benchmark::State &state)
{
    const QJsonDocument document(MaterialLibraryToJson(largeLibrary()));
    for (auto _ : state) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        buffer.write(document.toJson());
        benchmark::DoNotOptimize(buffer.data().size());
    }
}

// One set per iteration, walking every key of the library in turn.
void findSet(benchmark::State &state)
{
    const CMaterialLibrary &library = largeLibrary();
    std::vector<CLibKey> keys;
    for (int p = 0; p < kPairs; ++p) {
        for (int m = 0; m < kMaterials; ++m) {
            for (int i = 0; i < kThicknesses; ++i) {
                for (quint32 craft = 0; craft < 4; ++craft)
                    keys.push_back({kTubes[p], kPowers[p], materialName(m), 1.0 + i * 1.5, craft});
            }
        }
    }
    size_t i = 0;
    size_t found = 0;
    for (auto _ : state) {
        const CLibKey &key = keys[i++ % keys.size()];
        const bool hit = IsCutCraft(key.craft) ? library.FindCutSet(key) != nullptr
                                               : library.FindSweepSet(key) != nullptr;
        found += hit;
        benchmark::DoNotOptimize(found);
    }
    if (found != size_t(state.iterations()))
        state.SkipWithError("a set was not found");
}

void listMaterials(benchmark::State &state)
{
    const CMaterialLibrary &library = largeLibrary();
    int p = 0;
    for (auto _ : state) {
        const QStringList names = library.MaterialNames(kTubes[p], kPowers[p]);
        p = (p + 1) % kPairs;
        benchmark::DoNotOptimize(names.size());
    }
}

void listThicknesses(benchmark::State &state)
{
    const CMaterialLibrary &library = largeLibrary();
    int m = 0;
    const QString names[3] = {materialName(3), materialName(30), materialName(59)};
    for (auto _ : state) {
        const std::vector<double> list = library.Thicknesses(2, 60, names[m]);
        m = (m + 1) % 3;
        benchmark::DoNotOptimize(list.size());
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    BenchEnvironment env;
    largeBytes();

    benchmark::RegisterBenchmark("LibraryLoad", load, largeBytes())->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("LibraryLoad/floor", loadFloor, largeBytes())
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("LibrarySave", save)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("LibrarySave/floor", saveFloor)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("LibraryFindSet", findSet)
        ->Unit(benchmark::kNanosecond)
        ->Repetitions(7)
        ->ReportAggregatesOnly(true);
    benchmark::RegisterBenchmark("LibraryListMaterials", listMaterials)
        ->Unit(benchmark::kMicrosecond)
        ->Repetitions(7)
        ->ReportAggregatesOnly(true);
    benchmark::RegisterBenchmark("LibraryListThicknesses", listThicknesses)
        ->Unit(benchmark::kNanosecond)
        ->Repetitions(7)
        ->ReportAggregatesOnly(true);
    SetTarget("LibraryLoad", 2.0);
    SetTarget("LibrarySave", 1.5);
    return RunBenchmarksWithFloors(argc, argv);
}
