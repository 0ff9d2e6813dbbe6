// The demo host: loads the LayerMgr plug-in as a design application does and
// gives it a drawing to keep layers for. With --print it lists the layers on
// stdout, with --screenshot it writes a picture of its window, with
// --screenshot-dialog one of the plug-in's dialogs; otherwise it opens the window.
#include "cdialogshooter.h"
#include "cdrawing.h"
#include "cmainwindow.h"
#include "hostwording.h"
#include "layertableprinter.h"
#include "mergesample.h"

#include "ctranslator.h"
#include "cuipermissionsmanager.h"
#include "idevicesinfo.h"
#include "ilog.h"

#include <QApplication>
#include <QBuffer>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTextStream>

#include <cstdio>
#include <memory>

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

enum EEXIT_CODE { EXIT_OK = 0, EXIT_PLUGIN = 1, EXIT_INPUT = 2, EXIT_OUTPUT = 3 };

// A whole number option within bounds; an empty error when it was not given.
int intOption(const QCommandLineParser &parser, const QString &name, int minimum, int maximum,
              int fallback, QString *error)
{
    if (!parser.isSet(name))
        return fallback;
    bool ok = false;
    const int value = parser.value(name).toInt(&ok);
    if (!ok || value < minimum || value > maximum)
        *error = QStringLiteral("--%1 takes a whole number from %2 to %3, not %4")
                     .arg(name)
                     .arg(minimum)
                     .arg(maximum)
                     .arg(parser.value(name));
    return value;
}

// "TUBE,WATTS": the laser is present.
bool laserOption(const QCommandLineParser &parser, const QString &name, LaserSourceInfo *laser,
                 QString *error)
{
    if (!parser.isSet(name))
        return false;
    const QStringList parts = parser.value(name).split(QLatin1Char(','));
    bool tubeOk = false;
    bool powerOk = false;
    laser->tubeType = parts.value(0).toInt(&tubeOk);
    laser->power = parts.value(1).toInt(&powerOk);
    laser->present = true;
    if (parts.size() != 2 || !tubeOk || !powerOk || laser->tubeType < 0 || laser->tubeType > 4
        || laser->power < 0 || laser->power > 100000)
        *error = QStringLiteral("--%1 takes TUBE,WATTS (tube 0 to 4, watts 0 to 100000), not %2")
                     .arg(name, parser.value(name));
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    bool dialogShot = false;
    for (int i = 1; i < argc; ++i)
        dialogShot = dialogShot || qstrcmp(argv[i], "--screenshot-dialog") == 0;
    // A dialog's picture never needs a display, and never shows on one.
    if (dialogShot
        || (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
            && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("LayerMgr"));
    QCoreApplication::setApplicationName(QStringLiteral("layerhost"));
    // The same look on every platform, screenshots included.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Demo host of the LayerMgr plug-in."));
    parser.addHelpOption();
    const QCommandLineOption printOption(QStringLiteral("print"),
                                         QStringLiteral("Print the layer table of the drawing and exit."));
    const QCommandLineOption screenshotOption(
        QStringLiteral("screenshot"), QStringLiteral("Write a PNG picture of the window and exit."),
        QStringLiteral("file"));
    const QCommandLineOption unitOption(
        QStringLiteral("unit"),
        QStringLiteral("Display unit mode: 0 inch/s, 1 mm/s, 2 inch/min, 3 mm/min."),
        QStringLiteral("mode"), QStringLiteral("1"));
    const QCommandLineOption languageOption(QStringLiteral("language"),
                                            QStringLiteral("User interface language: En or Chs."),
                                            QStringLiteral("language"));
    const QCommandLineOption twoLasersOption(QStringLiteral("two-lasers"),
                                             QStringLiteral("The machine has two laser sources."));
    const QCommandLineOption dialogOption(
        QStringLiteral("screenshot-dialog"),
        QStringLiteral("Write a PNG picture of one of the plug-in's dialogs, opened on the first "
                       "layer, to the file given next, and exit: %1.")
            .arg(CDialogShooter::DialogNames().join(QStringLiteral(", "))),
        QStringLiteral("name"));
    parser.addOptions({printOption, screenshotOption, dialogOption, unitOption, languageOption,
                       twoLasersOption});
    // What the host's device service reports to the plug-in; the Machine menu sets the same.
    const QList<QCommandLineOption> machineOptions{
        {QStringLiteral("device-status"),
         QStringLiteral("Device status: 0 a machine is connected (default 1, none)."),
         QStringLiteral("status")},
        {QStringLiteral("machine-kind"),
         QStringLiteral("Machine kind: 1 single-source desktop machine (default), 2 controller-card machine."),
         QStringLiteral("kind")},
        {QStringLiteral("max-power"), QStringLiteral("The machine's \"MaxPower\" (default 20)."),
         QStringLiteral("watts")},
        {QStringLiteral("rd-card-type"),
         QStringLiteral("The machine's \"CurrentRdCardType\" (default 8)."), QStringLiteral("type")},
        {QStringLiteral("dual-laser"), QStringLiteral("The machine's \"IsDualLaser\" is true.")},
        {QStringLiteral("laser1"),
         QStringLiteral("First laser: tube type (0 Glass, 1 RF without burning, 2 RF with burning, "
                        "3 Fiber, 4 Semiconductor) and power (default 0,80)."),
         QStringLiteral("tube,watts")},
        {QStringLiteral("laser2"),
         QStringLiteral("Second laser, present: tube type and power, as for --laser1."),
         QStringLiteral("tube,watts")},
    };
    parser.addOptions(machineOptions);
    parser.addPositionalArgument(QStringLiteral("drawing"),
                                 QStringLiteral("An SVG file or a project to open instead of the sample drawing "
                                                "(after the picture's file with --screenshot-dialog)."),
                                 QStringLiteral("[drawing]"));
    parser.process(app);

    QTextStream out(stdout);
    QTextStream err(stderr);
    const bool print = parser.isSet(printOption);
    const QString screenshot = parser.value(screenshotOption);
    const QString dialog = parser.value(dialogOption);
    const bool windowed = !print && screenshot.isEmpty() && !dialogShot;
    auto fail = [&](int code, const QString &title, const QString &message) {
        err << "layerhost: " << message << Qt::endl;
        if (windowed)
            QMessageBox::critical(nullptr, title, message);
        return code;
    };

    bool unitOk = false;
    const int unit = parser.value(unitOption).toInt(&unitOk);
    if (!unitOk || unit < 0 || unit > 3)
        return fail(EXIT_INPUT, QStringLiteral("layerhost"),
                    QStringLiteral("--unit takes 0, 1, 2 or 3, not %1").arg(parser.value(unitOption)));
    QStringList drawings = parser.positionalArguments();
    QString dialogFile;
    if (dialogShot) {
        if (!CDialogShooter::DialogNames().contains(dialog))
            return fail(EXIT_INPUT, QStringLiteral("layerhost"),
                        QStringLiteral("Unknown dialog %1; choose one of %2.")
                            .arg(dialog, CDialogShooter::DialogNames().join(QStringLiteral(", "))));
        if (drawings.isEmpty())
            return fail(EXIT_INPUT, QStringLiteral("layerhost"),
                        QStringLiteral("--screenshot-dialog needs the file to write the picture to."));
        dialogFile = drawings.takeFirst();
    }
    if (drawings.size() > 1)
        return fail(EXIT_INPUT, QStringLiteral("layerhost"), QStringLiteral("Give one drawing at most."));

    CDevicesInfoIns machine;
    QString optionError;
    machine.SetStatus(intOption(parser, QStringLiteral("device-status"), 0, 1000000, 1, &optionError));
    machine.SetMachineKind(intOption(parser, QStringLiteral("machine-kind"), 1, 2, 1, &optionError));
    machine.SetValue(QStringLiteral("MaxPower"),
                     intOption(parser, QStringLiteral("max-power"), 0, 100000, 20, &optionError));
    machine.SetValue(QStringLiteral("CurrentRdCardType"),
                     intOption(parser, QStringLiteral("rd-card-type"), 0, 1000, 8, &optionError));
    machine.SetValue(QStringLiteral("IsDualLaser"), parser.isSet(QStringLiteral("dual-laser")));
    for (int index = 0; index < 2; ++index) {
        LaserSourceInfo laser = machine.GetLaser(index);
        if (laserOption(parser, QStringLiteral("laser%1").arg(index + 1), &laser, &optionError))
            machine.SetLaser(index, laser);
    }
    if (parser.isSet(twoLasersOption)) {
        LaserSourceInfo second = machine.GetLaser(1);
        second.present = true;
        machine.SetLaser(1, second);
    }
    if (!optionError.isEmpty())
        return fail(EXIT_INPUT, QStringLiteral("layerhost"), optionError);

    if (parser.isSet(languageOption))
        CTranslator::GetInstance()->SetLanguage(parser.value(languageOption));
    QString error;
    std::unique_ptr<QTemporaryDir> privateData;
    if (dialogShot && CDialogShooter::UsesPrivateData(dialog)) {
        privateData = std::make_unique<QTemporaryDir>();
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(privateData->path()));
    }
    const QString dataDir = hostDataDir() + QStringLiteral("/Data");
    if (!QDir().mkpath(dataDir))
        return fail(EXIT_OUTPUT, QStringLiteral("layerhost"),
                    Wording("Cannot create the data folder %1").arg(dataDir));
    const QString importSample = privateData ? privateData->filePath(QStringLiteral("sample.json"))
                                             : QString();
    if (privateData
        && !WriteMergeSample(QCoreApplication::applicationDirPath()
                                 + QStringLiteral("/../Resources/Data/defaultMaterial.json"),
                             dataDir, importSample, &error))
        return fail(EXIT_OUTPUT, QStringLiteral("layerhost"), error);
    ILog_SetLogFile(hostDataDir() + QStringLiteral("/layerhost.log"));

    CMainWindow window;
    if (!window.LoadPlugin(QStringLiteral("libLayerMgr.so"), &error))
        return fail(EXIT_PLUGIN, QStringLiteral("layerhost"),
                    Wording("Cannot load the LayerMgr plug-in: %1").arg(error));
    window.SetUnitMode(unit);
    window.SetMachine(machine);
    // The sample drawing only when there is no other: its layers would stay
    // behind in the manager's memory and colour the first look at the file's.
    if (drawings.isEmpty()) {
        window.ShowSampleDrawing();
    } else if (!window.OpenDrawing(drawings.first(), &error)) {
        const int code = fail(EXIT_INPUT, QStringLiteral("layerhost"), error);
        if (!windowed)
            return code;
        window.ShowSampleDrawing();
    }

    if (print) {
        ILayerMgr *manager = window.Manager();
        out << "Drawing of " << window.Drawing()->Count() << " shapes gives "
            << manager->GetLayerCount() << " layers:\n";
        PrintLayerTable(out, manager);
        // What a host does when it saves its document: the layers go with it.
        QBuffer document;
        document.open(QIODevice::WriteOnly);
        manager->SaveLayers(&document);
        out << "Layer stream for the document: " << document.size() << " bytes\n";
        const QString lpl = dataDir + QStringLiteral("/old.lpl");
        out << "Remembered parameters: " << lpl
            << (QFileInfo::exists(lpl) ? QStringLiteral(" (present)\n")
                                       : QStringLiteral(" (written when layer parameters are committed)\n"));
        return EXIT_OK;
    }

    window.show();
    if (dialogShot) {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
        CDialogShooter shooter(window.PanelHost(), dialog, dialogFile);
        shooter.SetImportFile(importSample);
        QString shotError;
        QObject::connect(&shooter, &CDialogShooter::SigFinished, &app,
                         [&shotError](int code, const QString &message) {
                             shotError = message;
                             QCoreApplication::exit(code);
                         });
        shooter.Start();
        const int code = app.exec();
        if (code != EXIT_OK)
            err << "layerhost: " << shotError << Qt::endl;
        return code;
    }
    if (!screenshot.isEmpty()) {
        // Let layouts settle and the panel fill its rows before the picture.
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
        if (!window.SaveScreenshot(screenshot, &error))
            return fail(EXIT_OUTPUT, QStringLiteral("layerhost"), error);
        return EXIT_OK;
    }
    return app.exec();
}
