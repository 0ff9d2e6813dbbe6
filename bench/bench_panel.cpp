// The layer table panel: refilling its rows, making them, rewriting speeds,
// each beside the same texts written into a plain table or plain editors.
#include "benchsupport.h"

#include "layertable/dlglayermgr.h"
#include "library/clayercontext.h"
#include "module/clayermgrins.h"
#include "module/ilayerpanel.h"
#include "module/layercolors.h"

#include <QApplication>
#include <QLineEdit>
#include <QTableWidget>

#include <memory>
#include <vector>

namespace {

constexpr int kColumns = 7;

std::unique_ptr<DlgLayerMgr> shownPanel()
{
    auto panel = std::make_unique<DlgLayerMgr>();
    panel->resize(700, 500);
    panel->show();
    QApplication::processEvents();
    return panel;
}

// The texts a refill writes per row, precomputed.
std::vector<QString> rowTexts(int count)
{
    std::vector<QString> texts;
    texts.reserve(size_t(count) * kColumns);
    for (int row = 0; row < count; ++row) {
        texts.push_back(QStringLiteral("%1").arg(row + 1, 2, 10, QLatin1Char('0')));
        texts.push_back(QStringLiteral("Cutting"));
        texts.push_back(QString::number(10.0 + row % 90, 'f', 1));
        texts.push_back(QString::number(5.5 + row % 50, 'g', 6));
        texts.push_back(QStringLiteral("Glass"));
        texts.push_back(QStringLiteral("High"));
        texts.push_back(QStringLiteral("B"));
    }
    return texts;
}

// Every refill shows new speeds, so no row is left as it was.
void syncRefill(benchmark::State &state)
{
    const int count = int(state.range(0));
    auto manager = BenchLayers(count);
    auto panel = shownPanel();
    panel->SyncLayers(manager.get(), false);
    bool odd = false;
    for (auto _ : state) {
        state.PauseTiming();
        odd = !odd;
        for (quint32 i = 0; i < quint32(count); ++i) {
            CLayerParam *layer = manager->GetLayerAt(i);
            layer->CUT.CUT_SPEED = odd ? 20.0 + i % 50 : 10.0 + i % 90;
            layer->SWEEP.SWEEP_SPEED = odd ? 50.0 + i % 50 : 100.0 + i % 400;
        }
        state.ResumeTiming();
        panel->SyncLayers(manager.get(), false);
    }
}

void syncForced(benchmark::State &state)
{
    auto manager = BenchLayers(int(state.range(0)));
    auto panel = shownPanel();
    panel->SyncLayers(manager.get(), false);
    for (auto _ : state)
        panel->SyncLayers(manager.get(), true);
}

void refillFloor(benchmark::State &state)
{
    const int count = int(state.range(0));
    const std::vector<QString> texts = rowTexts(count);
    QTableWidget table(count, kColumns);
    table.resize(700, 500);
    table.show();
    for (int row = 0; row < count; ++row) {
        for (int column = 0; column < kColumns; ++column)
            table.setItem(row, column, new QTableWidgetItem);
    }
    QApplication::processEvents();
    bool odd = false;
    for (auto _ : state) {
        odd = !odd;
        for (int row = 0; row < count; ++row) {
            for (int column = 0; column < kColumns; ++column) {
                const QString &text = texts[size_t(row) * kColumns + size_t(column)];
                table.item(row, column)->setText(odd ? text : text + QLatin1Char(' '));
            }
        }
    }
}

void syncFromEmpty(benchmark::State &state)
{
    auto manager = BenchLayers(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto panel = shownPanel();
        state.ResumeTiming();
        panel->SyncLayers(manager.get(), false);
        state.PauseTiming();
        panel.reset();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}

void fromEmptyFloor(benchmark::State &state)
{
    const int count = int(state.range(0));
    const int rows = int(count * 1.3);
    const std::vector<QString> texts = rowTexts(count);
    for (auto _ : state) {
        state.PauseTiming();
        auto table = std::make_unique<QTableWidget>(0, kColumns);
        table->resize(700, 500);
        table->show();
        QApplication::processEvents();
        state.ResumeTiming();
        table->setRowCount(rows);
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < kColumns; ++column) {
                auto *item = new QTableWidgetItem;
                if (row < count)
                    item->setText(texts[size_t(row) * kColumns + size_t(column)]);
                table->setItem(row, column, item);
            }
            table->setRowHidden(row, row >= count);
        }
        state.PauseTiming();
        table.reset();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}

void refreshSpeeds(benchmark::State &state)
{
    auto manager = BenchLayers(int(state.range(0)));
    auto panel = shownPanel();
    panel->SyncLayers(manager.get(), false);
    g_pLayerPanel = panel.get();
    int mode = 0;
    for (auto _ : state) {
        g_LayerContext.m_unitMode = mode;
        panel->RefreshSpeeds();
        mode = (mode + 1) % 4;
    }
    g_pLayerPanel = nullptr;
}

void refreshSpeedsFloor(benchmark::State &state)
{
    const int count = int(state.range(0));
    std::vector<std::unique_ptr<QLineEdit>> edits;
    for (int i = 0; i < count; ++i)
        edits.push_back(std::make_unique<QLineEdit>());
    int mode = 0;
    for (auto _ : state) {
        for (int i = 0; i < count; ++i) {
            const double speed = (10.0 + i % 90) * (mode == 3 ? 60.0 : 1.0);
            edits[size_t(i)]->setText(QString::number(speed, 'f', 1));
        }
        mode = (mode + 1) % 4;
    }
}

void layers(benchmark::internal::Benchmark *b)
{
    // 48 layers make 62 rows, every one with its cell widgets; 256 make 332.
    b->Arg(48)->Arg(256)->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    BenchEnvironment env;

    benchmark::RegisterBenchmark("SyncLayersRefill", syncRefill)->Apply(layers);
    benchmark::RegisterBenchmark("SyncLayersRefill/floor", refillFloor)->Apply(layers);
    benchmark::RegisterBenchmark("SyncLayersForced", syncForced)->Apply(layers);
    benchmark::RegisterBenchmark("SyncLayersForced/floor", refillFloor)->Apply(layers);
    benchmark::RegisterBenchmark("SyncLayersFromEmpty", syncFromEmpty)->Apply(layers);
    benchmark::RegisterBenchmark("SyncLayersFromEmpty/floor", fromEmptyFloor)->Apply(layers);
    benchmark::RegisterBenchmark("RefreshSpeeds", refreshSpeeds)->Apply(layers);
    benchmark::RegisterBenchmark("RefreshSpeeds/floor", refreshSpeedsFloor)->Apply(layers);
    // Absolute goal: a refill of 256 layers within one 60 Hz frame (16 ms).
    SetTarget("SyncLayersRefill", 4.0);
    return RunBenchmarksWithFloors(argc, argv);
}
