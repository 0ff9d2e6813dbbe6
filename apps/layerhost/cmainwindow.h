#pragma once

#include "cpluginhost.h"

#include <QList>
#include <QMainWindow>

class CCanvas;
class CColorPalette;
class CDrawing;
class CDevicesInfoIns;
class CHostCallback;
class CMachineMenu;
class CProjectFile;
class DlgLayerMgr;
class QActionGroup;
class QDockWidget;
class QLabel;

// The demo host's window: a drawing canvas, the colour palette and, in a
// dock beside them, the plug-in's layer panel. It keeps the plug-in's layer
// manager in step with the drawing as a design application does.
class CMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit CMainWindow(QWidget *parent = nullptr);
    ~CMainWindow() override;

    // Loads the plug-in (a path, or a name looked up beside the program) and
    // embeds its panel; without a panel the dock says so.
    bool LoadPlugin(const QString &library, QString *error);
    CLayerMgrModuleApi *Module() const { return m_plugin.Module(); }
    ILayerMgr *Manager() const { return m_plugin.Manager(); }
    DlgLayerMgr *Panel() const { return m_panel; }
    // The dock's widget that holds the panel.
    QWidget *PanelHost() const { return m_panelHost; }
    CHostCallback *HostCallback() const { return m_callback; }
    CDrawing *Drawing() const { return m_drawing; }
    CCanvas *Canvas() const { return m_canvas; }
    CColorPalette *Palette() const { return m_palette; }

    void ShowSampleDrawing();
    // A project or an SVG file, which replaces the drawing. On failure the
    // error says why and nothing changed; no message box is shown.
    bool OpenDrawing(const QString &path, QString *error);
    bool OpenProject(const QString &path, QString *error);
    // Adds the SVG file's shapes to the drawing, selected.
    bool ImportSvg(const QString &path, QString *error);
    bool SaveProject(const QString &path, QString *error);
    QString ProjectPath() const { return m_projectPath; }
    bool IsModified() const { return isWindowModified(); }
    bool SaveScreenshot(const QString &path, QString *error);

    int UnitMode() const { return m_unitMode; }
    void SetUnitMode(int mode);
    // The second laser's presence in the host's device service, which is
    // also the panel's dual-laser flag.
    bool TwoLasers() const;
    void SetTwoLasers(bool twoLasers);
    // Replaces what the host's device service reports.
    void SetMachine(const CDevicesInfoIns &machine);
    // "En" or "Chs".
    void SetLanguage(const QString &language);

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    struct ActionText
    {
        QAction *action;
        const char *text;
        const char *tip;
    };

    QAction *newAction(const char *objectName, const char *text, const char *tip = nullptr);
    void createActions();
    void createMenus();
    void createToolBars();
    void createDock();
    void createStatusBar();
    void retranslate();

    void syncLayers();
    void showStatus(const QString &text);
    void updateCounts();
    void updateTitle();
    void setDocument(const QString &projectPath, const QString &name);
    bool applyProject(CProjectFile &project, QString *error);
    bool maybeSave();
    void showError(const QString &title, const QString &text);

    void onNew();
    void onOpen();
    bool onSave();
    bool onSaveAs();
    void onImportSvg();
    void onColorChosen(quint32 color);
    void onCurrentLayerChanged();

    CHostCallback *m_callback;
    CPluginHost m_plugin;
    DlgLayerMgr *m_panel = nullptr;
    CDrawing *m_drawing;
    CCanvas *m_canvas;
    CColorPalette *m_palette;
    QDockWidget *m_dock = nullptr;
    QWidget *m_panelHost = nullptr;
    QLabel *m_placeholder = nullptr;
    QLabel *m_cursorLabel = nullptr;
    QLabel *m_countLabel = nullptr;
    QList<ActionText> m_actionTexts;
    QList<QPair<QMenu *, const char *>> m_menuTexts;
    QList<QPair<QToolBar *, const char *>> m_toolBarTexts;
    QActionGroup *m_toolGroup = nullptr;
    QActionGroup *m_unitGroup = nullptr;
    QActionGroup *m_languageGroup = nullptr;
    CMachineMenu *m_machineMenu = nullptr;
    QString m_projectPath;
    QString m_documentName;
    int m_unitMode = 1;
};
