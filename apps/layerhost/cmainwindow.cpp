#include "cmainwindow.h"

#include "ccanvas.h"
#include "ccolorpalette.h"
#include "cdrawing.h"
#include "chostcallback.h"
#include "cmachinemenu.h"
#include "cprojectfile.h"
#include "csvgimporter.h"
#include "hostwording.h"
#include "sampledrawing.h"
#include "toolicons.h"

#include "ctranslator.h"
#include "ilog.h"

#include <QActionGroup>
#include <QBuffer>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QSaveFile>
#include <QSet>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

constexpr int kStatusMilliseconds = 6000;
constexpr quint32 kSpecialColors[] = {0xCC8B17, 0xCC8B18};

// English texts of the unit modes, in mode order.
const char *const kUnitNames[] = {"inch/s", "mm/s", "inch/min", "mm/min"};

QString fileName(const QString &path)
{
    return QFileInfo(path).fileName();
}

} // namespace

CMainWindow::CMainWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_callback(new CHostCallback(this))
    , m_drawing(new CDrawing(this))
    , m_canvas(new CCanvas(m_drawing, this))
    , m_palette(new CColorPalette(this))
{
    setObjectName(QStringLiteral("CMainWindow"));
    setWindowIcon(ToolIcon(ICON_APP));
    setCentralWidget(m_canvas);
    createActions();
    createMenus();
    createToolBars();
    createDock();
    createStatusBar();

    connect(m_drawing, &CDrawing::SigChanged, this, [this] {
        setWindowModified(true);
        syncLayers();
    });
    connect(m_drawing, &CDrawing::SigSelectionChanged, this, &CMainWindow::syncLayers);
    connect(m_palette, &CColorPalette::SigColorChosen, this, &CMainWindow::onColorChosen);
    connect(m_canvas, &CCanvas::SigCursorMoved, this, [this](const QPointF &mm) {
        m_cursorLabel->setText(Wording("X %1  Y %2 mm")
                                   .arg(mm.x(), 0, 'f', 1)
                                   .arg(mm.y(), 0, 'f', 1));
    });
    m_canvas->SetOutputQuery([this](quint32 color) {
        const CLayerParam *layer = Manager() ? Manager()->GetLayerByColor(color) : nullptr;
        return !layer || layer->OUTPUT;
    });

    connect(m_callback, &CHostCallback::SigLayersChanged, this, [this] {
        setWindowModified(true);
        m_canvas->update();
        showStatus(CHostCallback::LayersChangedText());
    });
    connect(m_callback, &CHostCallback::SigLayerEvent, this, [this](int code) {
        setWindowModified(true);
        showStatus(CHostCallback::LayerEventText(code));
    });
    connect(m_callback, &CHostCallback::SigCurrentLayerChanged, this,
            &CMainWindow::onCurrentLayerChanged);
    connect(m_callback, &CHostCallback::SigRefreshView, m_canvas, qOverload<>(&QWidget::update));

    setDocument(QString(), QString());
    retranslate();
    // Wide enough for the panel's columns to show their longest texts
    // ("Shallow Engrave") in full.
    resize(1600, 900);
    resizeDocks({m_dock}, {920}, Qt::Horizontal);
}

CMainWindow::~CMainWindow()
{
    // The plug-in deletes its panel, which lives in our dock: before the dock goes.
    m_plugin.Unload();
}

QAction *CMainWindow::newAction(const char *objectName, const char *text, const char *tip)
{
    auto *action = new QAction(this);
    action->setObjectName(QLatin1String(objectName));
    m_actionTexts.append({action, text, tip});
    connect(action, &QAction::triggered, this, [action] {
        ILog_WriteLogF(0, "%s was triggered.", qPrintable(action->objectName()));
    });
    return action;
}

void CMainWindow::createActions()
{
    QAction *a = newAction("action_new", "&New");
    a->setShortcut(QKeySequence::New);
    a->setIcon(ToolIcon(ICON_NEW));
    connect(a, &QAction::triggered, this, &CMainWindow::onNew);

    a = newAction("action_open", "&Open Project…", "Open a project: shapes and layers");
    a->setShortcut(QKeySequence::Open);
    a->setIcon(ToolIcon(ICON_OPEN));
    connect(a, &QAction::triggered, this, &CMainWindow::onOpen);

    a = newAction("action_save", "&Save Project", "Save the shapes and layers as a project");
    a->setShortcut(QKeySequence::Save);
    a->setIcon(ToolIcon(ICON_SAVE));
    connect(a, &QAction::triggered, this, &CMainWindow::onSave);

    a = newAction("action_saveAs", "Save Project &As…");
    a->setShortcut(QKeySequence::SaveAs);
    connect(a, &QAction::triggered, this, &CMainWindow::onSaveAs);

    a = newAction("action_importSvg", "&Import SVG…", "Add the shapes of an SVG file to the drawing");
    a->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_I));
    a->setIcon(ToolIcon(ICON_IMPORT));
    connect(a, &QAction::triggered, this, &CMainWindow::onImportSvg);

    a = newAction("action_quit", "&Quit");
    a->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(a, &QAction::triggered, this, &QWidget::close);

    a = newAction("action_selectAll", "Select &All");
    a->setShortcut(QKeySequence::SelectAll);
    connect(a, &QAction::triggered, m_drawing, &CDrawing::SelectAll);

    a = newAction("action_delete", "&Delete", "Delete the selected shapes");
    a->setShortcuts({QKeySequence::Delete, QKeySequence(Qt::Key_Backspace)});
    a->setIcon(ToolIcon(ICON_DELETE));
    connect(a, &QAction::triggered, m_drawing, &CDrawing::DeleteSelected);

    a = newAction("action_group", "&Group", "Group the selected shapes; the group takes the first one's colour");
    a->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_G));
    a->setIcon(ToolIcon(ICON_GROUP));
    connect(a, &QAction::triggered, m_drawing, &CDrawing::GroupSelected);

    a = newAction("action_ungroup", "&Ungroup", "Split the selected groups into their shapes");
    a->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_G));
    a->setIcon(ToolIcon(ICON_UNGROUP));
    connect(a, &QAction::triggered, m_drawing, &CDrawing::UngroupSelected);

    m_toolGroup = new QActionGroup(this);
    struct Tool
    {
        const char *name;
        const char *text;
        const char *tip;
        ETOOL_ICON icon;
        ECANVAS_TOOL tool;
        Qt::Key key;
    };
    const Tool tools[] = {
        {"action_toolSelect", "Select", "Select shapes: click, Shift+click to add, drag a frame around them; drag a selected shape to move it",
         ICON_SELECT, TOOL_SELECT, Qt::Key_S},
        {"action_toolRect", "Rectangle", "Draw rectangles in the current colour", ICON_RECT, TOOL_RECT, Qt::Key_R},
        {"action_toolEllipse", "Ellipse", "Draw ellipses in the current colour", ICON_ELLIPSE, TOOL_ELLIPSE, Qt::Key_E},
        {"action_toolLine", "Line", "Draw lines in the current colour", ICON_LINE, TOOL_LINE, Qt::Key_L},
    };
    for (const Tool &tool : tools) {
        a = newAction(tool.name, tool.text, tool.tip);
        a->setCheckable(true);
        a->setIcon(ToolIcon(tool.icon));
        a->setShortcut(QKeySequence(tool.key));
        a->setChecked(tool.tool == TOOL_SELECT);
        m_toolGroup->addAction(a);
        const ECANVAS_TOOL which = tool.tool;
        connect(a, &QAction::triggered, this, [this, which] { m_canvas->SetTool(which); });
    }

    m_unitGroup = new QActionGroup(this);
    const char *const unitObjects[] = {"action_unitInchPerSec", "action_unitMmPerSec",
                                       "action_unitInchPerMin", "action_unitMmPerMin"};
    for (int mode = 0; mode < 4; ++mode) {
        a = newAction(unitObjects[mode], kUnitNames[mode]);
        a->setCheckable(true);
        a->setData(mode);
        a->setChecked(mode == m_unitMode);
        m_unitGroup->addAction(a);
        connect(a, &QAction::triggered, this, [this, mode] {
            SetUnitMode(mode);
            showStatus(Wording("Speeds in %1").arg(Wording(kUnitNames[mode])));
        });
    }

    m_languageGroup = new QActionGroup(this);
    const QPair<const char *, const char *> languages[] = {{"action_languageEn", "English"},
                                                           {"action_languageChs", "Chinese"}};
    for (const auto &language : languages) {
        a = newAction(language.first, language.second);
        a->setCheckable(true);
        m_languageGroup->addAction(a);
        const QString code = QLatin1String(language.first).mid(int(qstrlen("action_language")));
        a->setData(code);
        a->setChecked(code == (CTranslator::GetInstance()->Language() == QLatin1String("Chs")
                                   ? QLatin1String("Chs")
                                   : QLatin1String("En")));
        connect(a, &QAction::triggered, this, [this, code] { SetLanguage(code); });
    }
}

void CMainWindow::createMenus()
{
    auto addMenu = [this](const char *objectName, const char *text) {
        QMenu *menu = menuBar()->addMenu(QString());
        menu->setObjectName(QLatin1String(objectName));
        m_menuTexts.append({menu, text});
        return menu;
    };
    auto action = [this](const char *name) {
        return findChild<QAction *>(QLatin1String(name), Qt::FindDirectChildrenOnly);
    };
    QMenu *menu = addMenu("menu_file", "&File");
    menu->addAction(action("action_new"));
    menu->addAction(action("action_open"));
    menu->addAction(action("action_save"));
    menu->addAction(action("action_saveAs"));
    menu->addSeparator();
    menu->addAction(action("action_importSvg"));
    menu->addSeparator();
    menu->addAction(action("action_quit"));

    menu = addMenu("menu_edit", "&Edit");
    menu->addAction(action("action_selectAll"));
    menu->addAction(action("action_delete"));
    menu->addSeparator();
    menu->addAction(action("action_group"));
    menu->addAction(action("action_ungroup"));

    menu = addMenu("menu_tools", "&Tools");
    menu->addActions(m_toolGroup->actions());

    menu = addMenu("menu_units", "&Units");
    menu->addActions(m_unitGroup->actions());

    m_machineMenu = new CMachineMenu(m_callback->Devices(), this);
    menuBar()->addMenu(m_machineMenu);
    connect(m_machineMenu, &CMachineMenu::SigSecondLaserToggled, this, &CMainWindow::SetTwoLasers);

    menu = addMenu("menu_language", "&Language");
    menu->addActions(m_languageGroup->actions());
}

void CMainWindow::createToolBars()
{
    auto *tools = addToolBar(QString());
    tools->setObjectName(QStringLiteral("toolBar_tools"));
    tools->setIconSize(QSize(22, 22));
    tools->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    tools->setMovable(false);
    m_toolBarTexts.append({tools, "Tools"});
    auto action = [this](const char *name) {
        return findChild<QAction *>(QLatin1String(name), Qt::FindDirectChildrenOnly);
    };
    tools->addAction(action("action_open"));
    tools->addAction(action("action_save"));
    tools->addAction(action("action_importSvg"));
    tools->addSeparator();
    tools->addActions(m_toolGroup->actions());
    tools->addSeparator();
    tools->addAction(action("action_group"));
    tools->addAction(action("action_ungroup"));
    tools->addAction(action("action_delete"));

    auto *colours = new QToolBar(this);
    colours->setObjectName(QStringLiteral("toolBar_palette"));
    colours->setMovable(false);
    colours->addWidget(m_palette);
    m_toolBarTexts.append({colours, "Palette"});
    addToolBar(Qt::BottomToolBarArea, colours);
}

void CMainWindow::createDock()
{
    m_dock = new QDockWidget(this);
    m_dock->setObjectName(QStringLiteral("dockWidget_layers"));
    m_dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    m_dock->setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    m_panelHost = new QWidget(m_dock);
    m_panelHost->setObjectName(QStringLiteral("widget_panelHost"));
    m_panelHost->setMinimumWidth(360);
    m_dock->setWidget(m_panelHost);
    addDockWidget(Qt::RightDockWidgetArea, m_dock);
}

void CMainWindow::createStatusBar()
{
    m_cursorLabel = new QLabel(this);
    m_cursorLabel->setObjectName(QStringLiteral("label_cursor"));
    m_cursorLabel->setMinimumWidth(150);
    m_countLabel = new QLabel(this);
    m_countLabel->setObjectName(QStringLiteral("label_counts"));
    statusBar()->addPermanentWidget(m_cursorLabel);
    statusBar()->addPermanentWidget(m_countLabel);
}

void CMainWindow::retranslate()
{
    for (const ActionText &t : std::as_const(m_actionTexts)) {
        t.action->setText(Wording(t.text));
        const QString tip = t.tip ? Wording(t.tip) : QString();
        t.action->setToolTip(tip.isEmpty() ? QString(t.action->text()).remove(QLatin1Char('&')) : tip);
        t.action->setStatusTip(tip);
    }
    for (const auto &menu : std::as_const(m_menuTexts))
        menu.first->setTitle(Wording(menu.second));
    for (const auto &bar : std::as_const(m_toolBarTexts))
        bar.first->setWindowTitle(Wording(bar.second));
    m_dock->setWindowTitle(Wording("Layers"));
    if (m_placeholder)
        m_placeholder->setText(Wording("Layer panel unavailable"));
    m_cursorLabel->setText(QString());
    updateCounts();
    updateTitle();
}

void CMainWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QMainWindow::changeEvent(event);
}

bool CMainWindow::LoadPlugin(const QString &library, QString *error)
{
    if (!m_plugin.Load(library, m_callback)) {
        *error = m_plugin.ErrorString();
        return false;
    }
    ILayerMgr *manager = Manager();
    m_panel = Module()->CreatePanel(m_panelHost, nullptr);
    manager->AttachPanel(m_panel);
    if (!m_panel) {
        ILog_WriteLogF(2, "%s", "The plug-in made no layer panel");
        m_placeholder = new QLabel(m_panelHost);
        m_placeholder->setObjectName(QStringLiteral("label_panelUnavailable"));
        m_placeholder->setAlignment(Qt::AlignCenter);
        m_placeholder->setEnabled(false);
        auto *layout = new QVBoxLayout(m_panelHost);
        layout->addWidget(m_placeholder);
    }
    Module()->SetUnitMode(m_unitMode);
    Module()->SetPanelFlag(TwoLasers());

    QList<CColorPalette::Entry> entries{{0x000000, 0}};
    for (quint32 n = 1; n <= 35; ++n)
        entries.append({manager->GetLayerColor(n, false), int(n)});
    for (quint32 color : kSpecialColors)
        entries.append({color, 0});
    m_palette->SetEntries(entries);
    m_palette->SetCurrentColor(manager->GetLayerColor(1, false));
    m_canvas->SetColor(m_palette->CurrentColor());

    retranslate();
    syncLayers();
    statusBar()->showMessage(Wording("Choose a colour below and draw on the page; selected shapes select their layers."));
    return true;
}

void CMainWindow::syncLayers()
{
    // UpdateLayers also after a selection change: it refreshes the layers'
    // selected flags and clears what the panel was last told to select.
    if (ILayerMgr *manager = Manager()) {
        manager->UpdateLayers(m_drawing->ShapeList());
        manager->SelectLayersOfShapes(m_drawing->ShapeList());
    }
    m_canvas->update();
    updateCounts();
}

void CMainWindow::showStatus(const QString &text)
{
    statusBar()->showMessage(text, kStatusMilliseconds);
}

void CMainWindow::updateCounts()
{
    const qulonglong layers = Manager() ? Manager()->GetLayerCount() : 0;
    m_countLabel->setText(Wording("%1 shapes, %2 selected, %3 layers")
                              .arg(m_drawing->Count())
                              .arg(m_drawing->SelectedCount())
                              .arg(layers));
}

void CMainWindow::updateTitle()
{
    const QString name = m_documentName.isEmpty() ? Wording("Untitled") : m_documentName;
    setWindowTitle(name + QStringLiteral("[*] - ") + Wording("LayerMgr Demo Host"));
}

void CMainWindow::setDocument(const QString &projectPath, const QString &name)
{
    m_projectPath = projectPath;
    m_documentName = name;
    setWindowModified(false);
    updateTitle();
}

void CMainWindow::ShowSampleDrawing()
{
    m_drawing->SetItems(BuildSampleDrawing());
    m_canvas->FitToDrawing();
    setDocument(QString(), Wording("Sample drawing"));
}

bool CMainWindow::OpenDrawing(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = Wording("Cannot open %1: %2").arg(path, file.errorString());
        return false;
    }
    if (CProjectFile::LooksLikeProject(&file)) {
        file.close();
        return OpenProject(path, error);
    }
    CSvgImporter importer;
    if (!importer.Read(&file)) {
        *error = fileName(path) + QStringLiteral(": ") + importer.ErrorString();
        return false;
    }
    m_drawing->SetItems(importer.TakeItems());
    m_canvas->FitToDrawing();
    setDocument(QString(), fileName(path));
    showStatus(Wording("Opened %1.").arg(fileName(path)));
    return true;
}

bool CMainWindow::OpenProject(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = Wording("Cannot open %1: %2").arg(path, file.errorString());
        return false;
    }
    CProjectFile project;
    if (!project.Read(&file)) {
        *error = fileName(path) + QStringLiteral(": ") + project.ErrorString();
        return false;
    }
    if (!applyProject(project, error)) {
        *error = fileName(path) + QStringLiteral(": ") + *error;
        return false;
    }
    setDocument(path, fileName(path));
    showStatus(Wording("Opened %1.").arg(fileName(path)));
    return true;
}

bool CMainWindow::applyProject(CProjectFile &project, QString *error)
{
    ILayerMgr *manager = Manager();
    if (!manager) {
        *error = Wording("The LayerMgr plug-in is not loaded.");
        return false;
    }
    // The layer stream's reader is lenient; try it on a spare manager first so
    // that a stream with repeated colours changes nothing here.
    ILayerMgr *probe = Module()->CreateLayerMgr(nullptr);
    bool layersOk = probe != nullptr;
    if (probe) {
        QBuffer buffer(&project.m_layers);
        buffer.open(QIODevice::ReadOnly);
        probe->LoadLayers(&buffer);
        QSet<quint32> colors;
        for (quint32 i = 0; layersOk && i < probe->GetLayerCount(); ++i) {
            const quint32 color = probe->GetLayerAt(i)->COLOR;
            layersOk = color <= 0xFFFFFFu && !colors.contains(color);
            colors.insert(color);
        }
        Module()->ReleaseLayerMgr(probe);
    }
    if (!layersOk) {
        *error = Wording("The layers of the project cannot be read.");
        return false;
    }
    // Empty the layer list, bring in the project's layers, then the shapes:
    // layers whose colours the shapes use keep the project's parameters and order.
    m_drawing->Clear();
    QBuffer buffer(&project.m_layers);
    buffer.open(QIODevice::ReadOnly);
    manager->LoadLayers(&buffer);
    m_drawing->SetItems(std::move(project.m_items));
    m_canvas->FitToDrawing();
    return true;
}

bool CMainWindow::ImportSvg(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = Wording("Cannot open %1: %2").arg(path, file.errorString());
        return false;
    }
    CSvgImporter importer;
    if (!importer.Read(&file)) {
        *error = fileName(path) + QStringLiteral(": ") + importer.ErrorString();
        return false;
    }
    const int count = int(importer.Items().size());
    const int skipped = importer.SkippedCount();
    m_drawing->AddItems(importer.TakeItems());
    m_canvas->FitToDrawing();
    QString message = Wording("Imported %1 shapes from %2.").arg(count).arg(fileName(path));
    if (skipped > 0)
        message += QLatin1Char(' ') + Wording("%1 elements were left out.").arg(skipped);
    showStatus(message);
    return true;
}

bool CMainWindow::SaveProject(const QString &path, QString *error)
{
    CProjectFile project;
    project.m_items = m_drawing->Items();
    if (ILayerMgr *manager = Manager()) {
        QBuffer buffer(&project.m_layers);
        buffer.open(QIODevice::WriteOnly);
        manager->SaveLayers(&buffer);
    }
    QSaveFile file(path);
    // commit() alone does not see a write the disk cut short; flush() does.
    if (!file.open(QIODevice::WriteOnly) || !project.Write(&file) || !file.flush()
        || !file.commit()) {
        *error = Wording("Cannot save %1: %2").arg(path, file.errorString());
        return false;
    }
    setDocument(path, fileName(path));
    showStatus(Wording("Saved %1.").arg(fileName(path)));
    return true;
}

bool CMainWindow::SaveScreenshot(const QString &path, QString *error)
{
    const QPixmap pixmap = grab();
    if (pixmap.isNull() || !pixmap.save(path, "PNG")) {
        *error = Wording("Cannot write the screenshot %1.").arg(path);
        return false;
    }
    return true;
}

void CMainWindow::SetUnitMode(int mode)
{
    if (mode < 0 || mode > 3)
        return;
    m_unitMode = mode;
    for (QAction *action : m_unitGroup->actions()) {
        if (action->data().toInt() == mode)
            action->setChecked(true);
    }
    if (Module())
        Module()->SetUnitMode(mode);
}

bool CMainWindow::TwoLasers() const
{
    return m_callback->Devices()->GetLaser(1).present;
}

void CMainWindow::SetTwoLasers(bool twoLasers)
{
    CDevicesInfoIns *devices = m_callback->Devices();
    LaserSourceInfo second = devices->GetLaser(1);
    second.present = twoLasers;
    devices->SetLaser(1, second);
    m_machineMenu->Refresh();
    if (Module())
        Module()->SetPanelFlag(twoLasers);
}

void CMainWindow::SetMachine(const CDevicesInfoIns &machine)
{
    *m_callback->Devices() = machine;
    SetTwoLasers(machine.GetLaser(1).present);
}

void CMainWindow::SetLanguage(const QString &language)
{
    CTranslator::GetInstance()->SetLanguage(language);
    for (QAction *action : m_languageGroup->actions()) {
        if (action->data().toString() == language)
            action->setChecked(true);
    }
}

void CMainWindow::showError(const QString &title, const QString &text)
{
    ILog_WriteLogF(2, "%s", qPrintable(text));
    QMessageBox::warning(this, title, text);
}

void CMainWindow::onNew()
{
    if (!maybeSave())
        return;
    m_drawing->Clear();
    m_canvas->FitToDrawing();
    setDocument(QString(), QString());
}

void CMainWindow::onOpen()
{
    if (!maybeSave())
        return;
    const QString path = QFileDialog::getOpenFileName(
        this, Wording("Open Project"), QFileInfo(m_projectPath).absolutePath(),
        Wording("Layer host projects (*.lhp)") + QStringLiteral(";;")
            + Wording("SVG drawings (*.svg)"));
    if (path.isEmpty())
        return;
    QString error;
    if (!OpenDrawing(path, &error))
        showError(Wording("Open Project"), error);
}

bool CMainWindow::onSave()
{
    if (m_projectPath.isEmpty())
        return onSaveAs();
    QString error;
    if (!SaveProject(m_projectPath, &error)) {
        showError(Wording("Save Project"), error);
        return false;
    }
    return true;
}

bool CMainWindow::onSaveAs()
{
    QString path = QFileDialog::getSaveFileName(this, Wording("Save Project"), m_projectPath,
                                                Wording("Layer host projects (*.lhp)"));
    if (path.isEmpty())
        return false;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".lhp");
    QString error;
    if (!SaveProject(path, &error)) {
        showError(Wording("Save Project"), error);
        return false;
    }
    return true;
}

void CMainWindow::onImportSvg()
{
    const QString path = QFileDialog::getOpenFileName(this, Wording("Import SVG"), QString(),
                                                      Wording("SVG drawings (*.svg)"));
    if (path.isEmpty())
        return;
    QString error;
    if (!ImportSvg(path, &error))
        showError(Wording("Import SVG"), error);
}

void CMainWindow::onColorChosen(quint32 color)
{
    m_canvas->SetColor(color);
    const int moved = m_drawing->RecolorSelected(color);
    if (moved > 0)
        showStatus(Wording("%1 shapes moved to colour #%2")
                       .arg(moved)
                       .arg(color, 6, 16, QLatin1Char('0')));
}

void CMainWindow::onCurrentLayerChanged()
{
    showStatus(CHostCallback::CurrentLayerChangedText());
    // Only with a panel: the manager asks the panel for its current row.
    if (!m_panel || !Manager())
        return;
    const quint32 color = Manager()->GetCurrentLayerColor();
    if (m_palette->SetCurrentColor(color))
        m_canvas->SetColor(color);
}

bool CMainWindow::maybeSave()
{
    if (!isWindowModified())
        return true;
    const auto answer = QMessageBox::question(
        this, Wording("LayerMgr Demo Host"),
        Wording("The drawing has unsaved changes. Save them?"),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Cancel)
        return false;
    return answer == QMessageBox::Discard || onSave();
}

void CMainWindow::closeEvent(QCloseEvent *event)
{
    if (maybeSave())
        event->accept();
    else
        event->ignore();
}
