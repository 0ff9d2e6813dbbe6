// The material library: read and write beside Qt's own JSON parse and
// serialisation of the same document, and the look-ups the library manager
// makes on every click.
#include "benchsupport.h"

#include "library/librarydocument.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QJsonDocument>

namespace {

using namespace largelib;

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
