#include "dlglayerparampresets.h"
#include "ui_DlgLayerParamPresets.h"

#include "host/ctranslator.h"
#include "host/ilog.h"
#include "support/csubgallerylistview.h"
#include "support/directories.h"
#include "support/settings.h"

#include <QCursor>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QSignalBlocker>

#include <iterator>

namespace {

const QString kMenuName = QStringLiteral("CCustomGalleryOprMenu");
const char kTubeProperty[] = "LaserTubeType";
// The combo box keeps a picture handed in by the dialog beside the path.
constexpr int kPictureRole = Qt::UserRole + 1;
constexpr int kCraftsPerRow = 5;
// Keeps the menu from opening under the cursor.
const QPoint kMenuOffset(3, 0);

QString wording(const QString &english)
{
    return CTranslator::GetInstance()->GetWording(english);
}

// A tube type from FactoryParam.ini; anything unknown reads as the default.
ELASER_TUBE tubeType(int code)
{
    return code >= LASER_TUBE_GLASS && code <= LASER_TUBE_SEMICONDUCTOR ? ELASER_TUBE(code)
                                                                        : LASER_TUBE_GLASS;
}

QString tubeName(ELASER_TUBE tube)
{
    switch (tube) {
    case LASER_TUBE_RF_NO_BURNING:
    case LASER_TUBE_RF_BURNING:
        return wording(QStringLiteral("RF"));
    case LASER_TUBE_FIBER:
        return wording(QStringLiteral("Fiber"));
    case LASER_TUBE_SEMICONDUCTOR:
        return wording(QStringLiteral("Semiconductor laser"));
    case LASER_TUBE_GLASS:
        break;
    }
    return wording(QStringLiteral("Glass"));
}

const char *const kSchemes[] = {"Suggested", "Personalized", "Temporary"};
constexpr int kTemporaryScheme = 2;

void logAction(const QObject *object, const char *what)
{
    ILog_WriteLogF(0, "%s %s", qPrintable(object->objectName()), what);
}

} // namespace

DlgLayerParamPresets::DlgLayerParamPresets(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DlgLayerParamPresets>())
{
    ui->setupUi(this);
    ui->label_Material->clear();

    auto *materialView = new CSubGalleryListView(ui->comboBox_Material);
    auto *thicknessView = new CSubGalleryListView(ui->comboBox_Thickness);
    ui->comboBox_Material->setView(materialView);
    ui->comboBox_Thickness->setView(thicknessView);
    connect(materialView, &CSubGalleryListView::RightMouseButtonPress, this,
            &DlgLayerParamPresets::ShowMaterialMenuSlot);
    connect(thicknessView, &CSubGalleryListView::RightMouseButtonPress, this,
            &DlgLayerParamPresets::ShowThicknessMenuSlot);

    m_materialMenu = new QMenu(this);
    m_materialMenu->setObjectName(kMenuName);
    m_renameAction = m_materialMenu->addAction(QString());
    m_renameAction->setObjectName(QStringLiteral("action_Rename"));
    m_deleteMaterialAction = m_materialMenu->addAction(QString());
    m_deleteMaterialAction->setObjectName(QStringLiteral("action_DeleteMaterial"));
    m_thicknessMenu = new QMenu(this);
    m_thicknessMenu->setObjectName(kMenuName);
    m_deleteThicknessAction = m_thicknessMenu->addAction(QString());
    m_deleteThicknessAction->setObjectName(QStringLiteral("action_DeleteThickness"));

    connect(m_renameAction, &QAction::triggered, this, [this] {
        logAction(m_renameAction, "was clicked.");
        ui->comboBox_Material->hidePopup();
        emit SigMaterialMean(1, ui->comboBox_Material->currentIndex());
    });
    connect(m_deleteMaterialAction, &QAction::triggered, this, [this] {
        logAction(m_deleteMaterialAction, "was clicked.");
        ui->comboBox_Material->hidePopup();
        emit SigMaterialMean(2, ui->comboBox_Material->currentIndex());
    });
    connect(m_deleteThicknessAction, &QAction::triggered, this, [this] {
        logAction(m_deleteThicknessAction, "was clicked.");
        ui->comboBox_Thickness->hidePopup();
        emit SigThicknessMean(1, ui->comboBox_Thickness->currentIndex(), QString());
    });

    // A custom entry that is already current (the chooser holds nothing
    // else) changes no index when picked again, yet still asks to add.
    connect(ui->comboBox_Material, &QComboBox::activated, this, [this](int index) {
        if (index == MaterialCount() - 1 && ui->comboBox_Material->currentIndex() == index)
            on_comboBox_Material_currentIndexChanged(index);
    });
    connect(ui->comboBox_Thickness, &QComboBox::activated, this, [this](int index) {
        if (index == ThicknessCount() - 1 && ui->comboBox_Thickness->currentIndex() == index)
            on_comboBox_Thickness_currentIndexChanged(index);
    });

    ui->listWidget->SetItemCountPerRow(kCraftsPerRow);

    for (const char *scheme : kSchemes) {
        auto *item = new QListWidgetItem(ui->listWidget_scheme);
        item->setTextAlignment(Qt::AlignCenter);
        item->setData(Qt::UserRole, QString::fromLatin1(scheme));
    }
    ui->listWidget_scheme->SetItemCountPerRow(int(std::size(kSchemes)));
    SetCurrentScheme(kTemporaryScheme);

    ShowLaserChoice(false);
    translate();
}

DlgLayerParamPresets::~DlgLayerParamPresets() = default;

void DlgLayerParamPresets::translate()
{
    ui->label->setText(wording(QStringLiteral("Material settings")));
    ui->label_2->setText(wording(QStringLiteral("Material type:")));
    ui->label_3->setText(wording(QStringLiteral("Material thickness:")));
    ui->label_4->setText(wording(QStringLiteral("Parameter settings")));
    ui->label_5->setText(wording(QStringLiteral("Laser settings")));
    ui->label_6->setText(wording(QStringLiteral("Scheme setting")));
    for (int row = 0; row < ui->listWidget_scheme->count(); ++row) {
        QListWidgetItem *item = ui->listWidget_scheme->item(row);
        item->setText(wording(item->data(Qt::UserRole).toString()));
    }
    m_renameAction->setText(wording(QStringLiteral("Rename")));
    m_deleteMaterialAction->setText(wording(QStringLiteral("Delete")));
    m_deleteThicknessAction->setText(wording(QStringLiteral("Delete")));
    RefreshLaserTexts();
}

void DlgLayerParamPresets::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        translate();
    QWidget::changeEvent(event);
}

void DlgLayerParamPresets::RefreshLaserTexts()
{
    const LaserTypeCodes codes = ReadLaserTypes();
    const ELASER_TUBE first = tubeType(codes.laser1);
    const ELASER_TUBE second = tubeType(codes.laser2);
    ui->radioButton_laser1->setProperty(kTubeProperty, int(first));
    ui->radioButton_laser2->setProperty(kTubeProperty, int(second));
    ui->radioButton_laser1->setText(QStringLiteral("Laser1-") + tubeName(first));
    ui->radioButton_laser2->setText(QStringLiteral("Laser2-") + tubeName(second));
}

void DlgLayerParamPresets::AddMaterial(const QString &text, const QString &picturePath,
                                       const QImage &picture)
{
    QComboBox *combo = ui->comboBox_Material;
    const QSignalBlocker blocker(combo);
    combo->addItem(text, picturePath);
    if (!picture.isNull())
        combo->setItemData(combo->count() - 1, picture, kPictureRole);
    m_currentMaterial = combo->currentIndex();
}

void DlgLayerParamPresets::AddThickness(const QString &text)
{
    const QSignalBlocker blocker(ui->comboBox_Thickness);
    ui->comboBox_Thickness->addItem(text);
    m_currentThickness = ui->comboBox_Thickness->currentIndex();
}

void DlgLayerParamPresets::AddCraft(const QString &text, int craft)
{
    auto *item = new QListWidgetItem(text);
    item->setData(Qt::UserRole, craft);
    item->setTextAlignment(Qt::AlignCenter);
    item->setToolTip(text);
    {
        const QSignalBlocker blocker(ui->listWidget);
        ui->listWidget->addItem(item);
    }
    if (CraftCount() == ui->listWidget->ItemCountPerRow())
        ui->listWidget->SetItemCountPerRow(ui->listWidget->ItemCountPerRow());
}

void DlgLayerParamPresets::ClearMaterials()
{
    const QSignalBlocker blocker(ui->comboBox_Material);
    ui->comboBox_Material->clear();
    ui->label_Material->clear();
    m_currentMaterial = -1;
}

void DlgLayerParamPresets::ClearThicknesses()
{
    const QSignalBlocker blocker(ui->comboBox_Thickness);
    ui->comboBox_Thickness->clear();
    m_currentThickness = -1;
}

void DlgLayerParamPresets::ClearCrafts()
{
    const QSignalBlocker blocker(ui->listWidget);
    ui->listWidget->clear();
}

void DlgLayerParamPresets::RemoveMaterial(int row)
{
    const QSignalBlocker blocker(ui->comboBox_Material);
    ui->comboBox_Material->removeItem(row);
    m_currentMaterial = ui->comboBox_Material->currentIndex();
}

void DlgLayerParamPresets::RemoveThickness(int row)
{
    const QSignalBlocker blocker(ui->comboBox_Thickness);
    ui->comboBox_Thickness->removeItem(row);
    m_currentThickness = ui->comboBox_Thickness->currentIndex();
}

int DlgLayerParamPresets::MaterialCount() const
{
    return ui->comboBox_Material->count();
}

int DlgLayerParamPresets::ThicknessCount() const
{
    return ui->comboBox_Thickness->count();
}

int DlgLayerParamPresets::CraftCount() const
{
    return ui->listWidget->count();
}

void DlgLayerParamPresets::SetCurrentMaterial(int row)
{
    {
        const QSignalBlocker blocker(ui->comboBox_Material);
        ui->comboBox_Material->setCurrentIndex(row);
    }
    m_currentMaterial = ui->comboBox_Material->currentIndex();
    showMaterialPicture(m_currentMaterial);
}

void DlgLayerParamPresets::SetCurrentThickness(int row)
{
    const QSignalBlocker blocker(ui->comboBox_Thickness);
    ui->comboBox_Thickness->setCurrentIndex(row);
    m_currentThickness = ui->comboBox_Thickness->currentIndex();
}

void DlgLayerParamPresets::SetCurrentCraftRow(int row)
{
    const QSignalBlocker blocker(ui->listWidget);
    ui->listWidget->setCurrentRow(row);
}

int DlgLayerParamPresets::CurrentCraftRow() const
{
    return ui->listWidget->currentRow();
}

int DlgLayerParamPresets::CraftOfRow(int row) const
{
    const QListWidgetItem *item = ui->listWidget->item(row);
    return item ? item->data(Qt::UserRole).toInt() : -1;
}

void DlgLayerParamPresets::SetCurrentScheme(int row)
{
    const QSignalBlocker blocker(ui->listWidget_scheme);
    ui->listWidget_scheme->setCurrentRow(row);
}

int DlgLayerParamPresets::CurrentScheme() const
{
    return ui->listWidget_scheme->currentRow();
}

bool DlgLayerParamPresets::IsFirstLaserChecked() const
{
    return ui->radioButton_laser1->isChecked();
}

void DlgLayerParamPresets::ShowLaserChoice(bool show, bool checkSecond)
{
    ui->radioButton_laser2->setVisible(show);
    if (show && checkSecond)
        ui->radioButton_laser2->setChecked(true);
    else
        ui->radioButton_laser1->setChecked(true);
}

void DlgLayerParamPresets::SetSignalsEnabled(int enabled)
{
    m_signalsEnabled = enabled != 0;
}

void DlgLayerParamPresets::showMaterialPicture(int row)
{
    QLabel *label = ui->label_Material;
    if (!m_pictureSize.isValid())
        m_pictureSize = label->size();
    label->setFixedSize(m_pictureSize);

    const QComboBox *combo = ui->comboBox_Material;
    QImage picture = combo->itemData(row, kPictureRole).value<QImage>();
    const QVariant path = combo->itemData(row, Qt::UserRole);
    if (picture.isNull() && path.isValid() && !path.toString().isEmpty())
        picture.load(QDir(AppResourceDir()).filePath(path.toString()));
    if (picture.isNull()) {
        label->clear();
        return;
    }
    label->setPixmap(QPixmap::fromImage(
        picture.scaled(m_pictureSize, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}

void DlgLayerParamPresets::on_comboBox_Material_currentIndexChanged(int index)
{
    if (index < 0)
        return;
    QComboBox *combo = ui->comboBox_Material;
    if (!m_signalsEnabled) {
        m_currentMaterial = index;
        return;
    }
    logAction(combo, "was changed.");
    if (index == combo->count() - 1) {
        // The custom entry only asks for an addition; the choice stays.
        {
            const QSignalBlocker blocker(combo);
            combo->setCurrentIndex(m_currentMaterial < index ? m_currentMaterial : -1);
        }
        emit SigMaterialMean(0, m_currentMaterial);
        return;
    }
    m_currentMaterial = index;
    emit SigMaterialIndxChanged(index);
    showMaterialPicture(index);
}

void DlgLayerParamPresets::on_comboBox_Thickness_currentIndexChanged(int index)
{
    if (index < 0)
        return;
    QComboBox *combo = ui->comboBox_Thickness;
    if (!m_signalsEnabled) {
        m_currentThickness = index;
        return;
    }
    logAction(combo, "was changed.");
    if (index == combo->count() - 1) {
        {
            const QSignalBlocker blocker(combo);
            combo->setCurrentIndex(m_currentThickness < index ? m_currentThickness : -1);
        }
        emit SigThicknessMean(0, m_currentThickness, QString());
        return;
    }
    m_currentThickness = index;
    emit SigThicknessIndxChanged(index);
}

void DlgLayerParamPresets::on_listWidget_itemClicked(QListWidgetItem *item)
{
    if (!m_signalsEnabled)
        return;
    ILog_WriteLogF(0, "%s", "listWidget item was clicked.");
    emit SigCraftCilcked(item);
}

void DlgLayerParamPresets::on_listWidget_currentRowChanged(int currentRow)
{
    if (!m_signalsEnabled)
        return;
    ILog_WriteLogF(0, "%s", "listWidget was changed.");
    emit SigCraftCurChaged(currentRow);
}

void DlgLayerParamPresets::on_listWidget_scheme_currentRowChanged(int currentRow)
{
    ILog_WriteLogF(0, "%s", "listWidget_scheme was changed.");
    emit SigSchemeCurChaged(currentRow);
}

void DlgLayerParamPresets::on_listWidget_scheme_itemClicked(QListWidgetItem *item)
{
    ILog_WriteLogF(0, "%s", "listWidget_scheme item was clicked.");
    emit SigSchemeCilcked(item);
}

void DlgLayerParamPresets::ShowMaterialMenuSlot(QPoint pos)
{
    const QComboBox *combo = ui->comboBox_Material;
    const auto *view = qobject_cast<const CSubGalleryListView *>(combo->view());
    const int last = combo->count() - 1;
    const int row = view ? view->RightClickedRow() : combo->currentIndex();
    if (row < 0 || row >= last || combo->currentIndex() >= last)
        return;
    m_materialMenuIndex =
        view ? view->indexAt(view->viewport()->mapFromGlobal(QCursor::pos())).row() : row;
    ILog_WriteLogF(1, "material menu at %d,%d", pos.x(), pos.y());
    m_materialMenu->popup(pos + kMenuOffset);
}

void DlgLayerParamPresets::ShowThicknessMenuSlot(QPoint pos)
{
    const QComboBox *combo = ui->comboBox_Thickness;
    const auto *view = qobject_cast<const CSubGalleryListView *>(combo->view());
    const int last = combo->count() - 1;
    const int row = view ? view->RightClickedRow() : combo->currentIndex();
    if (row < 0 || row >= last || combo->currentIndex() >= last)
        return;
    ILog_WriteLogF(1, "thickness menu at %d,%d", pos.x(), pos.y());
    m_thicknessMenu->popup(pos + kMenuOffset);
}

void DlgLayerParamPresets::emitLaserChanged(int laser, const QRadioButton *button)
{
    logAction(button, "was clicked.");
    emit LaserChanged(laser, tubeType(button->property(kTubeProperty).toInt()));
}

void DlgLayerParamPresets::on_radioButton_laser1_clicked()
{
    emitLaserChanged(1, ui->radioButton_laser1);
}

void DlgLayerParamPresets::on_radioButton_laser2_clicked()
{
    emitLaserChanged(2, ui->radioButton_laser2);
}
