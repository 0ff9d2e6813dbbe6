#pragma once

#include "library/crunningoptions.h"

#include <QImage>
#include <QSize>
#include <QWidget>

#include <memory>

class QListWidgetItem;
class QMenu;
class QRadioButton;

namespace Ui {
class DlgLayerParamPresets;
}

// The panel of the library manager on which the user picks material,
// thickness, craft, laser and scheme. It holds no library data: the dialog
// fills its lists and listens to its signals.
//
// The last row of the material and thickness choosers is the dialog's custom
// entry ("Custom material", "Custom Thickness"): choosing it keeps the current
// row and asks for an addition (type 0); it has no context menu.
//
// After construction the scheme is "Temporary" and only the first laser's
// button shows, checked.
class DlgLayerParamPresets : public QWidget
{
    Q_OBJECT

public:
    explicit DlgLayerParamPresets(QWidget *parent = nullptr);
    ~DlgLayerParamPresets() override;

    // Rows of the material chooser: text, picture path under Qt::UserRole; a
    // non-null picture is shown instead of loading the path. A relative path
    // is taken below the application resource directory.
    void AddMaterial(const QString &text, const QString &picturePath, const QImage &picture = {});
    void AddThickness(const QString &text);
    // The craft number goes under Qt::UserRole.
    void AddCraft(const QString &text, int craft);
    void ClearMaterials();
    void ClearThicknesses();
    void ClearCrafts();
    void RemoveMaterial(int row);
    void RemoveThickness(int row);
    int MaterialCount() const;
    int ThicknessCount() const;
    int CraftCount() const;

    // The operations change the lists without emitting anything: only what
    // the user does is signalled.

    // Also shows the material's picture.
    void SetCurrentMaterial(int row);
    void SetCurrentThickness(int row);
    int CurrentMaterial() const { return m_currentMaterial; }
    int CurrentThickness() const { return m_currentThickness; }
    void SetCurrentCraftRow(int row);
    int CurrentCraftRow() const;
    // -1 when there is no such row.
    int CraftOfRow(int row) const;

    // 0 "Suggested", 1 "Personalized", 2 "Temporary"; set without signals.
    void SetCurrentScheme(int row);
    int CurrentScheme() const;

    bool IsFirstLaserChecked() const;
    // Shows or hides the second laser's button; hiding checks the first.
    void ShowLaserChoice(bool show, bool checkSecond = false);
    // 0 while the dialog refills the lists: material, thickness and craft
    // changes then emit nothing; scheme changes always do.
    void SetSignalsEnabled(int enabled);
    bool SignalsEnabled() const { return m_signalsEnabled; }
    // Reads the tube types of FactoryParam.ini into the laser buttons.
    void RefreshLaserTexts();

    // The row under the cursor when the material menu last opened.
    int MaterialMenuIndex() const { return m_materialMenuIndex; }

signals: // the names are part of the interface, spelling included
    void SigMaterialIndxChanged(int index);
    void SigThicknessIndxChanged(int index);
    void SigCraftCilcked(QListWidgetItem *item);
    void SigCraftCurChaged(int currentRow);
    // type 0 add, 1 rename, 2 delete
    void SigMaterialMean(int type, int Index);
    // type 0 add, 1 delete; text is empty
    void SigThicknessMean(int type, int Index, QString text);
    void SigSchemeCilcked(QListWidgetItem *item);
    void SigSchemeCurChaged(int currentRow);
    void LaserChanged(int iLaser, ELASER_TUBE tube);

public slots:
    void on_comboBox_Thickness_currentIndexChanged(int index);
    void on_comboBox_Material_currentIndexChanged(int index);
    void on_listWidget_itemClicked(QListWidgetItem *item);
    void on_listWidget_currentRowChanged(int currentRow);
    void on_listWidget_scheme_currentRowChanged(int currentRow);
    void on_listWidget_scheme_itemClicked(QListWidgetItem *item);
    void ShowMaterialMenuSlot(QPoint pos);
    void ShowThicknessMenuSlot(QPoint pos);
    void on_radioButton_laser1_clicked();
    void on_radioButton_laser2_clicked();

protected:
    void changeEvent(QEvent *event) override;

private:
    void translate();
    void showMaterialPicture(int row);
    void emitLaserChanged(int laser, const QRadioButton *button);

    std::unique_ptr<Ui::DlgLayerParamPresets> ui;
    QMenu *m_materialMenu = nullptr;
    QMenu *m_thicknessMenu = nullptr;
    QAction *m_renameAction = nullptr;
    QAction *m_deleteMaterialAction = nullptr;
    QAction *m_deleteThicknessAction = nullptr;
    bool m_signalsEnabled = true;
    int m_currentMaterial = -1;
    int m_currentThickness = -1;
    int m_materialMenuIndex = -1;
    QSize m_pictureSize;
};
