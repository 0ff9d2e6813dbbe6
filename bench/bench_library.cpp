// The material library: read and write beside Qt's own JSON parse and
// serialisation of the same document, the look-ups the library manager
// makes on every click, and merging a shared file beside reading the two.
#include "benchsupport.h"

#include "library/librarydocument.h"
#include "library/librarymerge.h"

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

// A shared file against the user's library: the user changed every 97th
// cut set, the file every 13th (some of them the same) and adds ten
// materials with their sets.
struct MergeInput
{
    CMaterialLibrary user;
    CMaterialLibrary incoming;
    QByteArray userBytes;
    QByteArray incomingBytes;
};

const MergeInput &mergeInput()
{
    static const MergeInput input = [] {
        MergeInput in;
        in.user = largeLibrary();
        in.incoming = largeLibrary();
        const std::vector<CLibCutSet> cuts = largeLibrary().CutSets();
        for (size_t i = 0; i < cuts.size(); ++i) {
            CLibCutSet set = cuts[i];
            if (i % 97 == 0) {
                set.speed += 1;
                in.user.SetCutSet(set);
            }
            if (i % 13 == 0) {
                set.speed += 2;
                set.note = QStringLiteral("shared");
                in.incoming.SetCutSet(set);
            }
        }
        for (int m = 0; m < 10; ++m) {
            CLibMaterial material = *largeLibrary().FindMaterial(2, 60, materialName(m));
            material.name += QStringLiteral(" (shared)");
            in.incoming.AddMaterial(material);
            for (const CLibCutSet &cut : cuts) {
                if (cut.key.tube != 2 || cut.key.power != 60 || cut.key.material != materialName(m))
                    continue;
                CLibCutSet copy = cut;
                copy.key.material = material.name;
                in.incoming.SetCutSet(copy);
            }
        }
        in.userBytes = QJsonDocument(MaterialLibraryToJson(in.user)).toJson();
        in.incomingBytes = QJsonDocument(MaterialLibraryToJson(in.incoming)).toJson();
        return in;
    }();
    return input;
}

// Compare with the factory library as the baseline, then apply what is
// ticked by default.
void merge(benchmark::State &state)
{
    const MergeInput &in = mergeInput();
    size_t rows = 0;
    for (auto _ : state) {
        const CLibraryMerge merge(largeLibrary(), in.user, in.incoming);
        const CMaterialLibrary merged = merge.Apply();
        rows = merge.Rows().size();
        benchmark::DoNotOptimize(merged.CutSetCount());
    }
    state.counters["rows"] = double(rows);
    state.counters["sets"] = double(in.incoming.CutSetCount() + in.incoming.SweepSetCount());
}

// Reading the two files the merge compares.
void mergeFloor(benchmark::State &state)
{
    QByteArray bytes[2] = {mergeInput().userBytes, mergeInput().incomingBytes};
    for (auto _ : state) {
        for (QByteArray &document : bytes) {
            QBuffer buffer(&document);
            buffer.open(QIODevice::ReadOnly);
            CMaterialLibrary library;
            ReadMaterialLibrary(&buffer, library);
            benchmark::DoNotOptimize(library.CutSetCount());
        }
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
    benchmark::RegisterBenchmark("LibraryMerge", merge)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("LibraryMerge/floor", mergeFloor)->Unit(benchmark::kMillisecond);
    SetTarget("LibraryLoad", 2.0);
    SetTarget("LibraryMerge", 2.0);
    SetTarget("LibrarySave", 1.5);
    return RunBenchmarksWithFloors(argc, argv);
}
