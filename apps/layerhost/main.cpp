// The demo host: loads the LayerMgr plug-in as a design application does,
// gives it a drawing and shows what it made of it.
#include "chostcallback.h"
#include "cpluginhost.h"
#include "sampledrawing.h"

#include "cshapelist.h"
#include "cuipermissionsmanager.h"
#include "ilog.h"

#include <QApplication>
#include <QBuffer>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTextStream>
#include <QWidget>

#include <cstdio>

namespace {

// The user data directory as the host lays it out; the host, not the
// plug-in, creates its Data/ folder.
QString hostDataDir()
{
    const QString theme = CUiPermissionsManager::GetInstance()->GetThemeName();
    const QString base = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    return QDir::cleanPath(base + (theme == QLatin1String("Quorvantix")
                                       ? QStringLiteral("/../Quorvantix/Resources")
                                       : QStringLiteral("/../Tessavolia/Resources")));
}

const char *modeName(qint32 workType)
{
    static const char *const names[] = {"Cutting", "Scoring", "Shallow Engrave", "Deep Engrave",
                                        "Mark"};
    return workType >= 0 && workType < 5 ? names[workType] : "Unknow";
}

void printLayers(QTextStream &out, ILayerMgr *manager)
{
    out << QStringLiteral("%1  %2  %3 %4 %5 %6 %7 %8\n")
               .arg(QStringLiteral("No."), -4)
               .arg(QStringLiteral("Colour"), -7)
               .arg(QStringLiteral("Mode"), -16)
               .arg(QStringLiteral("Speed"), 7)
               .arg(QStringLiteral("Power"), 6)
               .arg(QStringLiteral("Laser"), -7)
               .arg(QStringLiteral("Air"), -4)
               .arg(QStringLiteral("Output"));
    const quint64 count = manager->GetLayerCount();
    for (quint32 i = 0; i < count; ++i) {
        const CLayerParam *layer = manager->GetLayerAt(i);
        const bool line = layer->IsLineProcess();
        const LaserParam &l1 = line ? layer->CUT.LASER1 : layer->SWEEP.LASER1;
        const LaserParam &l2 = line ? layer->CUT.LASER2 : layer->SWEEP.LASER2;
        const bool mark = layer->WORK_TYPE == WORK_MARK;
        const quint32 number = manager->GetLayerNumber(layer->COLOR);
        out << QStringLiteral("%1  #%2  %3 %4 %5 %6 %7 %8\n")
                   .arg(number ? QString::number(number) : QStringLiteral("-"), -4)
                   .arg(layer->COLOR, 6, 16, QLatin1Char('0'))
                   .arg(QLatin1String(modeName(layer->WORK_TYPE)), -16)
                   .arg(mark ? QStringLiteral("/")
                             : QString::number(line ? layer->CUT.CUT_SPEED : layer->SWEEP.SWEEP_SPEED, 'f', 1),
                        7)
                   .arg(mark ? QStringLiteral("/") : QString::number((l1.ENABLE ? l1 : l2).POWER_MAX, 'g', 6), 6)
                   .arg(l1.ENABLE || mark ? QStringLiteral("Laser1") : QStringLiteral("Laser2"), -7)
                   .arg(layer->BLOW ? QStringLiteral("High") : QStringLiteral("Low"), -4)
                   .arg(layer->OUTPUT ? QStringLiteral("on") : QStringLiteral("off"));
    }
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("LayerMgr"));
    QCoreApplication::setApplicationName(QStringLiteral("layerhost"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Demo host of the LayerMgr plug-in."));
    parser.addHelpOption();
    QCommandLineOption unitOption(QStringLiteral("unit"),
                                  QStringLiteral("Display unit mode: 0 inch/s, 1 mm/s, 2 inch/min, 3 mm/min."),
                                  QStringLiteral("mode"), QStringLiteral("1"));
    parser.addOption(unitOption);
    parser.process(app);

    QTextStream out(stdout);
    const QString dataDir = hostDataDir() + QStringLiteral("/Data");
    if (!QDir().mkpath(dataDir)) {
        out << "Cannot create the data folder " << dataDir << '\n';
        return 1;
    }
    ILog_SetLogFile(hostDataDir() + QStringLiteral("/layerhost.log"));

    CHostCallback callback([&out](const QString &message) { out << "host: " << message << '\n'; });
    CPluginHost plugin;
    if (!plugin.Load(QStringLiteral("libLayerMgr.so"), &callback)) {
        out << "Cannot load the LayerMgr plug-in: " << plugin.ErrorString() << '\n';
        return 1;
    }
    CLayerMgrModuleApi *module = plugin.Module();
    ILayerMgr *manager = plugin.Manager();

    QWidget holder;
    DlgLayerMgr *panel = module->CreatePanel(&holder, nullptr);
    manager->AttachPanel(panel);
    module->SetUnitMode(parser.value(unitOption).toInt());
    module->SetPanelFlag(false);

    CShapeList *shapes = CShapeList::New();
    BuildSampleDrawing(shapes);
    manager->UpdateLayers(shapes);
    out << "Drawing of " << shapes->GetCount() << " shapes gives " << manager->GetLayerCount()
        << " layers:\n";
    printLayers(out, manager);

    // What a host does when it saves its document: the layers go with it.
    QBuffer document;
    document.open(QIODevice::WriteOnly);
    manager->SaveLayers(&document);
    out << "Layer stream for the document: " << document.size() << " bytes\n";

    const QString lpl = dataDir + QStringLiteral("/old.lpl");
    out << "Remembered parameters: " << lpl
        << (QFileInfo::exists(lpl) ? QStringLiteral(" (present)\n")
                                   : QStringLiteral(" (written when layer parameters are committed)\n"));
    shapes->Release();
    return 0;
}
