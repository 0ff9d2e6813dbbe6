// Synchronisation and selection on large drawings, beside the bare loop over
// the same shapes that no implementation can beat.
#include "benchsupport.h"

#include "module/clayermgrins.h"
#include "module/layercolors.h"

#include "cshape.h"
#include "cshapelist.h"

#include <QCoreApplication>

#include <map>
#include <memory>
#include <random>

namespace {

BenchEnvironment *g_env = nullptr;

quint32 colorOf(int index)
{
    if (index < int(kStandardLayerCount))
        return StandardLayerColor(quint32(index) + 1, false);
    return 0x100000u + quint32(index) * 0x010203u % 0xEFFFFFu;
}

// Shapes in random colour order, one in a hundred selected: the last-colour
// shortcut gets no help.
CShapeList *drawing(int shapes, int colors)
{
    static std::map<std::pair<int, int>, std::unique_ptr<CShapeList>> cache;
    auto &list = cache[{shapes, colors}];
    if (!list) {
        list = std::make_unique<CShapeList>();
        list->Reserve(shapes);
        std::mt19937 random(42);
        for (int i = 0; i < shapes; ++i) {
            // Every colour at least once, the rest at random.
            const int c = i < colors ? i : int(random() % unsigned(colors));
            auto *shape = new CShape(colorOf(c), i % 7 == 0 ? SHAPE_TEXT : SHAPE_PATH);
            shape->SetSelected(random() % 100 == 0);
            list->AddTail(shape);
        }
    }
    return list.get();
}

void floorLoop(benchmark::State &state)
{
    CShapeList *shapes = drawing(int(state.range(0)), int(state.range(1)));
    for (auto _ : state) {
        quint64 sum = 0;
        const int count = shapes->GetCount();
        for (int i = 0; i < count; ++i) {
            const CShape *shape = shapes->GetShape(i);
            sum += shape->GetColor();
            sum += shape->IsSelected() ? 1 : 0;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * shapes->GetCount());
}

void updateLayersFirst(benchmark::State &state)
{
    CShapeList *shapes = drawing(int(state.range(0)), int(state.range(1)));
    for (auto _ : state) {
        state.PauseTiming();
        auto manager = std::make_unique<CLayerMgrIns>(nullptr);
        state.ResumeTiming();
        manager->UpdateLayers(shapes);
        state.PauseTiming();
        if (manager->GetLayerCount() != quint64(state.range(1)))
            state.SkipWithError("wrong layer count");
        manager.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * shapes->GetCount());
}

void updateLayersRepeat(benchmark::State &state)
{
    CShapeList *shapes = drawing(int(state.range(0)), int(state.range(1)));
    CLayerMgrIns manager(nullptr);
    manager.UpdateLayers(shapes);
    for (auto _ : state)
        benchmark::DoNotOptimize(manager.UpdateLayers(shapes));
    state.SetItemsProcessed(state.iterations() * shapes->GetCount());
}

void selectLayersOfShapes(benchmark::State &state)
{
    CShapeList *shapes = drawing(int(state.range(0)), int(state.range(1)));
    CLayerMgrIns manager(nullptr);
    manager.UpdateLayers(shapes);
    for (auto _ : state)
        manager.SelectLayersOfShapes(shapes);
    state.SetItemsProcessed(state.iterations() * shapes->GetCount());
}

void sizes(benchmark::internal::Benchmark *b)
{
    for (int shapes : {10000, 100000, 1000000}) {
        for (int colors : {8, 64, 256})
            b->Args({shapes, colors});
    }
    b->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    BenchEnvironment env;
    g_env = &env;

    benchmark::RegisterBenchmark("UpdateLayersFirst", updateLayersFirst)->Apply(sizes);
    benchmark::RegisterBenchmark("UpdateLayersFirst/floor", floorLoop)->Apply(sizes);
    benchmark::RegisterBenchmark("UpdateLayersRepeat", updateLayersRepeat)->Apply(sizes);
    benchmark::RegisterBenchmark("UpdateLayersRepeat/floor", floorLoop)->Apply(sizes);
    benchmark::RegisterBenchmark("SelectLayersOfShapes", selectLayersOfShapes)
        ->Args({1000000, 256})
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("SelectLayersOfShapes/floor", floorLoop)
        ->Args({1000000, 256})
        ->Unit(benchmark::kMillisecond);
    SetTarget("UpdateLayersFirst", 2.0);
    SetTarget("UpdateLayersRepeat", 2.0);
    SetTarget("SelectLayersOfShapes", 2.0);
    return RunBenchmarksWithFloors(argc, argv);
}
