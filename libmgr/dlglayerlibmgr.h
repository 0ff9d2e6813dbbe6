#pragma once

#include "library/crunningoptions.h"
#include "library/libraryrecords.h"
#include "module/clayerparam.h"
#include "ccraftchoicedialog.h"
#include "support/basedialog.h"

#include <QList>
#include <QStringList>
#include <QTimer>

#include <memory>
#include <vector>

class CLayerMgrIns;
class CMaterialLibrary;
class DlgLayerParamCut;
class DlgLayerParamPresets;
class DlgLayerParamSweep;
class IDevicesInfo;
class QListWidgetItem;
class QMenu;
struct LayerLibraryRequest;

namespace Ui {
class DlgLayerLibMgr;
}

// The library manager: every layer of the drawing gets its parameters from
// the material library by laser, material, thickness, process and scheme.
// The layers are edited in place and put back as they were unless the user
// confirms; the library itself is maintained here too (import, export,
// restore, materials and thicknesses).
class DlgLayerLibMgr : public BaseDialog
{
    Q_OBJECT

public:
    enum EScheme { SchemeSuggested = 0, SchemePersonalized = 1, SchemeTemporary = 2 };

    DlgLayerLibMgr(CLayerParam *layer, IDevicesInfo *devices, QWidget *parent = nullptr);
    ~DlgLayerLibMgr() override;

    // One text per layer row: the colour button text of the panel's rows.
    void SetRowLabels(const QStringList &labels);
    // Copies every layer aside and shows the list with `row` current.
    void Fill(CLayerMgrIns *manager, int row);

    // The panel's double-click opener: builds, fills and runs the dialog.
    static bool Open(const LayerLibraryRequest &request);

    int LaserTube() const { return m_tube; }
    int LaserPower() const { return m_power; }
    bool DeviceMode() const { return m_deviceMode; }
    bool DualLaser() const { return m_dualLaser; }
    int SchemeOfRow(int row) const;
    const QStringList &RowLabels() const { return m_rowLabels; }

    // No widget carries the name listWidget_WorkCraft: the presets panel's
    // signals reach these, never a by-name connection.
    void on_listWidget_WorkCraft_itemClicked(QListWidgetItem *item);
    void on_listWidget_WorkCraft_currentRowChanged(int currentRow);

public slots:
    void on_pushButton_ok_clicked();
    void on_pushButton_Advanced_clicked();
    void on_pushButton_Import_clicked();
    void on_pushButton_Export_clicked();
    void on_pushButton_default_clicked();
    void DeleteThicknessItemSlot(bool checked = false);
    void DeleteMaterialItemSlot(bool checked = false);
    void SortMaterialSlot(int from, int to);
    void on_listWidget_Layer_itemClicked(QListWidgetItem *item);
    void OnlistWidgetMaterialCurrentRowChanged(int row);
    void OnlistWidgetThicknessCurrentRowChanged(int row);
    void OnlistWidgetWorkCraftItemClicked(QListWidgetItem *item);
    void OnMaterialMean(int type, int index);
    void OnThicknessMeam(int type, int index);
    void OnlistWidgetSchemeChange(int scheme);
    void RenewOriginalLayerList();
    void SaveCurrentLayerBeforeSwitch();
    int IsRecommendedParameter();
    void MaterialItemEdit(QListWidgetItem *item);
    void OnLaserChange(int iLaser, ELASER_TUBE tube);

    void done(int result) override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void initialise();
    void readMachine();
    void retranslate();
    void buildLayerList();
    void updateLayerRow(int row);
    void switchToRow(int row);
    void refillMaterials(const QString &preferred = QString());
    void refillThicknesses();
    void refillCrafts();
    void selectMaterialRow(int row);
    void selectThicknessRow(int row);
    void showCurrentScheme();
    void showParameterSet(int craft);
    void onEditorDataChange();
    void onSaveUserParameters();
    void scheduleRefresh();
    void refreshOkButton();
    void writeSettings() const;
    bool checkMaterialName(const QString &name) const;
    void addMaterial();
    void addThickness();
    void addSetsFor(const CLibKey &key, const CCraftChoiceDialog::Crafts &crafts);
    void showListMenu(const QPoint &pos, bool material);

    CLayerParam *layerOfRow(int row) const;
    int schemeOfRow(int row) const;
    QString materialName() const;
    double thickness() const;
    int craft() const;
    bool keyValid() const;
    CLibKey currentKey() const;
    quint32 chosenTube() const;
    static CMaterialLibrary &userLibrary();
    static const CMaterialLibrary &recommendedLibrary();
    static bool saveLibrary();

    std::unique_ptr<Ui::DlgLayerLibMgr> ui;
    CLayerMgrIns *m_manager = nullptr;
    CLayerParam *m_layer = nullptr;
    IDevicesInfo *m_devices = nullptr;
    DlgLayerParamPresets *m_presets = nullptr;
    DlgLayerParamCut *m_cutEditor = nullptr;
    DlgLayerParamSweep *m_sweepEditor = nullptr;
    qint32 m_tube = 0;
    qint32 m_power = 130;
    bool m_deviceMode = false;
    bool m_dualLaser = false;
    bool m_secondLaserUsable = false;
    bool m_accepted = false;
    bool m_restoreOnClose = true;
    std::vector<CLayerParam> m_originals;
    int m_layerRow = -1;
    QList<int> m_schemes;
    QStringList m_rowLabels;
    QMenu *m_menu = nullptr;
    void *m_resolution = nullptr;

    // The choices shown: names and thicknesses of the rows, so that a click
    // never asks the library for the whole list again.
    QStringList m_materials;
    std::vector<double> m_thicknesses;
    QTimer m_refreshTimer;
    // Set while the dialog loads an editor, so that loading is no user edit.
    bool m_loading = false;
    // Set while a layer is being switched to: its own process is shown.
    bool m_switching = false;
};
