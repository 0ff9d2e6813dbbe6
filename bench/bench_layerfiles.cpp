// The remembered-parameters file and the binary layer stream.
#include "benchsupport.h"

#include "module/clayermgrins.h"
#include "module/layerparamfile.h"
#include "module/layerstream.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QSettings>

namespace {

BenchEnvironment *g_env = nullptr;

LayerList makeLayers(int count)
{
    LayerList layers;
    for (int i = 0; i < count; ++i) {
        auto layer = std::make_unique<CLayerParam>(quint32(0x010000 + i));
        layer->WORK_TYPE = i % 4;
        layer->CUT.CUT_SPEED = 10.0 + i % 90;
        layer->SWEEP.LASER1.POWER_MAX = 5.5 + i % 50;
        layers.push_back(std::move(layer));
    }
    return layers;
}

void writeRemembered(int count)
{
    WriteLayerParamFile(makeLayers(count));
}

void managerWithRemembered(benchmark::State &state)
{
    writeRemembered(int(state.range(0)));
    for (auto _ : state) {
        CLayerMgrIns manager(nullptr);
        benchmark::DoNotOptimize(manager.RememberedLayers().size());
    }
}

void readKeysFloor(benchmark::State &state)
{
    writeRemembered(int(state.range(0)));
    const QString path = LayerParamFilePath();
    QStringList keys;
    {
        QSettings settings(path, QSettings::IniFormat);
        settings.beginGroup(QStringLiteral("LAYER0"));
        keys = settings.childKeys();
    }
    for (auto _ : state) {
        QSettings settings(path, QSettings::IniFormat);
        double sum = 0;
        for (int i = 0; i < state.range(0); ++i) {
            const QString group = QStringLiteral("LAYER%1").arg(i);
            for (const QString &key : std::as_const(keys))
                sum += settings.value(group + QLatin1Char('/') + key, 0).toDouble();
        }
        benchmark::DoNotOptimize(sum);
    }
}

QByteArray savedStream(int count)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    WriteLayerStream(&buffer, makeLayers(count));
    return buffer.data();
}

void saveLayers(benchmark::State &state)
{
    const LayerList layers = makeLayers(int(state.range(0)));
    for (auto _ : state) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        WriteLayerStream(&buffer, layers);
        benchmark::DoNotOptimize(buffer.data().size());
    }
}

void saveFloor(benchmark::State &state)
{
    const QByteArray bytes = savedStream(int(state.range(0)));
    for (auto _ : state) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        buffer.write(bytes);
        benchmark::DoNotOptimize(buffer.data().size());
    }
}

void loadLayers(benchmark::State &state)
{
    QByteArray bytes = savedStream(int(state.range(0)));
    for (auto _ : state) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        LayerList layers;
        ReadLayerStream(&buffer, layers);
        benchmark::DoNotOptimize(layers.size());
    }
}

void loadFloor(benchmark::State &state)
{
    QByteArray bytes = savedStream(int(state.range(0)));
    for (auto _ : state) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        benchmark::DoNotOptimize(buffer.readAll().size());
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    BenchEnvironment env;
    g_env = &env;

    benchmark::RegisterBenchmark("ConstructWithRemembered", managerWithRemembered)
        ->Arg(1000)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("ConstructWithRemembered/floor", readKeysFloor)
        ->Arg(1000)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("SaveLayers", saveLayers)->Arg(10000)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("SaveLayers/floor", saveFloor)->Arg(10000)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("LoadLayers", loadLayers)->Arg(10000)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("LoadLayers/floor", loadFloor)->Arg(10000)->Unit(benchmark::kMillisecond);
    SetTarget("ConstructWithRemembered", 3.0);
    return RunBenchmarksWithFloors(argc, argv);
}
