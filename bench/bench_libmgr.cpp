// The library manager dialog on the large library and a drawing of 256
// colours: opening it, and each step of a user choosing parameters, beside
// plain Qt widgets showing the same rows.
#include "benchsupport.h"

#include "libmgr/dlglayerlibmgr.h"
#include "library/clayercontext.h"
#include "library/librarydocument.h"
#include "module/clayermgrins.h"
#include "module/layercolors.h"
#include "support/directories.h"
#include "support/settings.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QListWidget>
#include <QPainter>

#include <memory>

namespace {

using namespace largelib;

constexpr int kLayers = 256;

QStringList labels(int count)
{
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts << QString::number(i + 1);
    return texts;
}

std::unique_ptr<DlgLayerLibMgr> openDialog(CLayerMgrIns &manager)
{
    auto dialog = std::make_unique<DlgLayerLibMgr>(manager.GetLayerAt(0), nullptr);
    dialog->SetRowLabels(labels(kLayers));
    dialog->Fill(&manager, 0);
    dialog->show();
    QApplication::processEvents();
    return dialog;
}

void open(benchmark::State &state)
{
    auto manager = BenchLayers(kLayers);
    for (auto _ : state) {
        auto dialog = openDialog(*manager);
        state.PauseTiming();
        dialog.reset();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}

// A plain dialog with the same rows: layer icons painted, material and
// thickness texts in lists.
void openFloor(benchmark::State &state)
{
    const QStringList names = largeLibrary().MaterialNames(kTubes[0], kPowers[0]);
    for (auto _ : state) {
        auto dialog = std::make_unique<QDialog>();
        dialog->resize(1180, 700);
        auto *layers = new QListWidget(dialog.get());
        layers->setGeometry(0, 0, 230, 700);
        layers->setIconSize(QSize(100, 50));
        for (int i = 0; i < kLayers; ++i) {
            QPixmap pixmap(100, 50);
            pixmap.fill(Qt::white);
            QPainter painter(&pixmap);
            painter.drawText(pixmap.rect(), Qt::AlignCenter, QString::number(i + 1));
            painter.end();
            new QListWidgetItem(QIcon(pixmap), QStringLiteral("Cutting"), layers);
        }
        auto *materials = new QListWidget(dialog.get());
        materials->setGeometry(240, 0, 190, 400);
        auto *combo = new QComboBox(dialog.get());
        combo->move(440, 0);
        for (const QString &name : names) {
            new QListWidgetItem(name, materials);
            combo->addItem(name);
        }
        dialog->show();
        QApplication::processEvents();
        state.PauseTiming();
        dialog.reset();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}

template<typename T>
T *child(QObject *parent, const char *name)
{
    return parent->findChild<T *>(QString::fromLatin1(name));
}

enum EStep { StepLayer, StepMaterial, StepThickness, StepCraft, StepScheme };

void step(benchmark::State &state)
{
    auto manager = BenchLayers(kLayers);
    auto dialog = openDialog(*manager);
    auto *layers = child<QListWidget>(dialog.get(), "listWidget_Layer");
    auto *material = child<QComboBox>(dialog.get(), "comboBox_Material");
    auto *thickness = child<QComboBox>(dialog.get(), "comboBox_Thickness");
    auto *crafts = child<QListWidget>(dialog.get(), "listWidget");
    auto *schemes = child<QListWidget>(dialog.get(), "listWidget_scheme");
    if (!layers || !material || !thickness || !crafts || !schemes) {
        state.SkipWithError("a list of the dialog was not found");
        return;
    }
    int i = 0;
    for (auto _ : state) {
        ++i;
        switch (EStep(state.range(0))) {
        case StepLayer: {
            QListWidgetItem *item = layers->item(i % kLayers);
            layers->setCurrentItem(item);
            emit layers->itemClicked(item);
            break;
        }
        case StepMaterial:
            material->setCurrentIndex(i % kMaterials);
            break;
        case StepThickness:
            thickness->setCurrentIndex(i % kThicknesses);
            break;
        case StepCraft: {
            QListWidgetItem *item = crafts->item(i % crafts->count());
            crafts->setCurrentItem(item);
            emit crafts->itemClicked(item);
            break;
        }
        case StepScheme:
            schemes->setCurrentRow(i % 3);
            break;
        }
        QApplication::processEvents();
    }
}

// The texts one step changes, written into plain widgets: the material and
// thickness rows of a list and a combo box, and one repaint.
void stepFloor(benchmark::State &state)
{
    const QStringList names = largeLibrary().MaterialNames(kTubes[0], kPowers[0]);
    QWidget window;
    window.resize(1180, 700);
    auto *list = new QListWidget(&window);
    list->setGeometry(0, 0, 190, 400);
    auto *combo = new QComboBox(&window);
    combo->move(200, 0);
    auto *thicknesses = new QComboBox(&window);
    thicknesses->move(200, 40);
    window.show();
    QApplication::processEvents();
    int i = 0;
    for (auto _ : state) {
        ++i;
        if (state.range(0) == StepLayer) {
            list->clear();
            combo->clear();
            for (const QString &name : names) {
                new QListWidgetItem(name, list);
                combo->addItem(name);
            }
            list->setCurrentRow(i % kMaterials);
        }
        thicknesses->clear();
        for (int t = 0; t < kThicknesses; ++t)
            thicknesses->addItem(QString::number(1.0 + t * 1.5, 'f', 1));
        thicknesses->setCurrentIndex(i % kThicknesses);
        QApplication::processEvents();
    }
}

void steps(benchmark::internal::Benchmark *b)
{
    b->ArgName("step");
    for (int s = StepLayer; s <= StepScheme; ++s)
        b->Arg(s);
    b->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    BenchEnvironment env;

    // The large library is the user's and the factory's.
    QTemporaryDir resources;
    SetAppResourceDir(resources.path());
    QDir().mkpath(resources.path() + QStringLiteral("/Data"));
    WriteMaterialLibraryFile(CLibraryStore::FactoryLibraryPath(), largeLibrary());
    g_LayerContext.Store().Load();
    WriteIniInt(QStringLiteral("DLG_LIB_MGR"), QStringLiteral("LASER_TUBE"), int(kTubes[0]),
                TmpParamIniPath());
    WriteIniInt(QStringLiteral("DLG_LIB_MGR"), QStringLiteral("LASER_POWER"), kPowers[0],
                TmpParamIniPath());

    benchmark::RegisterBenchmark("LibMgrOpen", open)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("LibMgrOpen/floor", openFloor)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("LibMgrStep", step)->Apply(steps);
    benchmark::RegisterBenchmark("LibMgrStep/floor", stepFloor)->Apply(steps);
    return RunBenchmarksWithFloors(argc, argv);
}
