// The demo host: loads the LayerMgr plug-in as a design application does and
// gives it a drawing to keep layers for. With --print it lists the layers on
// stdout, with --screenshot it writes a picture of its window; otherwise it
// opens the window.
#include "cdrawing.h"
#include "cmainwindow.h"
#include "hostwording.h"
#include "layertableprinter.h"

#include "ctranslator.h"
#include "cuipermissionsmanager.h"
#include "ilog.h"

#include <QApplication>
#include <QBuffer>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QTextStream>

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

enum EEXIT_CODE { EXIT_OK = 0, EXIT_PLUGIN = 1, EXIT_INPUT = 2, EXIT_OUTPUT = 3 };

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
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
    parser.addOptions({printOption, screenshotOption, unitOption, languageOption, twoLasersOption});
    parser.addPositionalArgument(QStringLiteral("drawing"),
                                 QStringLiteral("An SVG file or a project to open instead of the sample drawing."),
                                 QStringLiteral("[drawing]"));
    parser.process(app);

    QTextStream out(stdout);
    QTextStream err(stderr);
    const bool print = parser.isSet(printOption);
    const QString screenshot = parser.value(screenshotOption);
    const bool windowed = !print && screenshot.isEmpty();
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
    const QStringList drawings = parser.positionalArguments();
    if (drawings.size() > 1)
        return fail(EXIT_INPUT, QStringLiteral("layerhost"), QStringLiteral("Give one drawing at most."));

    if (parser.isSet(languageOption))
        CTranslator::GetInstance()->SetLanguage(parser.value(languageOption));
    const QString dataDir = hostDataDir() + QStringLiteral("/Data");
    if (!QDir().mkpath(dataDir))
        return fail(EXIT_OUTPUT, QStringLiteral("layerhost"),
                    Wording("Cannot create the data folder %1").arg(dataDir));
    ILog_SetLogFile(hostDataDir() + QStringLiteral("/layerhost.log"));

    CMainWindow window;
    QString error;
    if (!window.LoadPlugin(QStringLiteral("libLayerMgr.so"), &error))
        return fail(EXIT_PLUGIN, QStringLiteral("layerhost"),
                    Wording("Cannot load the LayerMgr plug-in: %1").arg(error));
    window.SetUnitMode(unit);
    window.SetTwoLasers(parser.isSet(twoLasersOption));
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
