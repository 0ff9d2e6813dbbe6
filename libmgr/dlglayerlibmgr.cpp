#include "dlglayerlibmgr.h"
#include "ui_DlgLayerLibMgr.h"

#include "cmateriallistwidget.h"
#include "dlglasertube.h"
#include "dlglayeraddmaterials.h"
#include "dlglayeraddthickness.h"
#include "dlglayerparamcut.h"
#include "dlglayerparampresets.h"
#include "dlglayerparamsweep.h"
#include "dlglibrarymerge.h"
#include "dlgtps.h"

#include "layertable/dlglayermgr.h"
#include "library/clayercontext.h"
#include "library/librarydocument.h"
#include "library/librarymerge.h"
#include "library/pictureencoding.h"
#include "module/clayermgrins.h"
#include "module/layerlibrarysets.h"
#include "module/parameterchanges.h"
#include "support/cmsgboxqss.h"
#include "support/moduleloader.h"
#include "support/settings.h"

#include "ctranslator.h"
#include "idevicesinfo.h"
#include "ilayerhost.h"
#include "ilog.h"

#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QPainter>
#include <QSignalBlocker>

#include <algorithm>

namespace {

const QString kGroup = QStringLiteral("DLG_LIB_MGR");
constexpr QSize kLayerIconSize(100, 50);

QString wording(const char *text)
{
    return CTranslator::GetInstance()->GetWording(QString::fromUtf8(text));
}

QString craftText(int craft)
{
    return craft >= 0 ? MergeCraftText(quint32(craft)) : QString();
}

QString thicknessText(double thickness)
{
    QString text = QString::number(thickness, 'f', 2);
    if (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    return text + QStringLiteral("mm");
}

// Left: the layer number on white; right: the layer colour with its label.
QIcon layerIcon(int number, quint32 color, const QString &label)
{
    QPixmap pixmap(kLayerIconSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setFont(QFont(QStringLiteral("Arial"), 20));
    const QRect left(0, 0, kLayerIconSize.width() / 2, kLayerIconSize.height());
    const QRect right(left.width(), 0, kLayerIconSize.width() - left.width(), left.height());
    painter.fillRect(left, Qt::white);
    painter.setPen(Qt::black);
    painter.drawRect(left.adjusted(0, 0, -1, -1));
    painter.drawText(left, Qt::AlignCenter, QString::number(number));
    painter.fillRect(right, QColor::fromRgb(QRgb(color & 0xFFFFFF)));
    painter.setPen(Qt::white);
    painter.drawText(right, Qt::AlignCenter, label);
    painter.end();
    return QIcon(pixmap);
}

void setupList(QListWidget *list)
{
    list->setViewMode(QListView::ListMode);
    list->setMovement(QListView::Static);
    list->setResizeMode(QListView::Adjust);
}

// The row to show for a list of choices: the wanted one when present, else the first.
int rowOrFirst(int wanted, int count)
{
    return wanted >= 0 ? wanted : (count > 0 ? 0 : -1);
}

// The presets panel stays quiet while the dialog fills it.
class PresetsQuiet
{
public:
    explicit PresetsQuiet(DlgLayerParamPresets *presets)
        : m_presets(presets)
    {
        m_presets->SetSignalsEnabled(0);
    }
    ~PresetsQuiet() { m_presets->SetSignalsEnabled(1); }
    PresetsQuiet(const PresetsQuiet &) = delete;
    PresetsQuiet &operator=(const PresetsQuiet &) = delete;

private:
    DlgLayerParamPresets *m_presets;
};

// One spelling for both kinds of set, so that each dialog step is written once.
template <typename Set> const Set *findSet(const CMaterialLibrary &library, const CLibKey &key);
template <> const CLibCutSet *findSet(const CMaterialLibrary &library, const CLibKey &key)
{
    return library.FindCutSet(key);
}
template <> const CLibSweepSet *findSet(const CMaterialLibrary &library, const CLibKey &key)
{
    return library.FindSweepSet(key);
}
void storeSet(CMaterialLibrary &library, const CLibCutSet &set) { library.SetCutSet(set); }
void storeSet(CMaterialLibrary &library, const CLibSweepSet &set) { library.SetSweepSet(set); }
void fillSet(const CLayerParam &layer, CLibCutSet &set) { FillCutSet(layer, set); }
void fillSet(const CLayerParam &layer, CLibSweepSet &set) { FillSweepSet(layer, set); }
void applySet(const CLibCutSet &set, CLayerParam &layer) { ApplyCutSet(set, layer); }
void applySet(const CLibSweepSet &set, CLayerParam &layer) { ApplySweepSet(set, layer); }
QList<QStringList> setChanges(const CLibCutSet &a, const CLibCutSet &b, bool dual)
{
    return CutSetChanges(a, b, dual);
}
QList<QStringList> setChanges(const CLibSweepSet &a, const CLibSweepSet &b, bool dual)
{
    return SweepSetChanges(a, b, dual);
}

// A set filed under the key with the layer's values (defaults without a layer).
template <typename Set> Set layerSet(const CLayerParam *layer, const CLibKey &key)
{
    Set set;
    if (layer)
        fillSet(*layer, set);
    set.key = key;
    return set;
}

// What the editor shows for a scheme. A key the user library lacks is filed
// with the layer's values first, so that saving has a set to compare with.
template <typename Set>
Set setToShow(CMaterialLibrary &user, const CMaterialLibrary &recommended,
              const CLayerParam &layer, const CLibKey &key, int scheme)
{
    if (!findSet<Set>(user, key))
        storeSet(user, layerSet<Set>(&layer, key));
    Set shown = *findSet<Set>(user, key);
    const Set *suggested = findSet<Set>(recommended, key);
    if (scheme == DlgLayerLibMgr::SchemeSuggested && suggested)
        shown = *suggested;
    else if (scheme == DlgLayerLibMgr::SchemeTemporary)
        fillSet(layer, shown);
    return shown;
}

template <typename Set>
bool layerHoldsSet(const CMaterialLibrary &library, const CLibKey &key, const CLayerParam &layer)
{
    const Set *set = findSet<Set>(library, key);
    if (!set)
        return false;
    Set layerSet = *set;
    fillSet(layer, layerSet);
    return layerSet == *set;
}

template <typename Set, typename Editor> void readEditor(const Editor &editor, CLayerParam &layer)
{
    Set set;
    fillSet(layer, set);
    editor.ReadSet(set);
    applySet(set, layer);
}

// Files the editor's values under the key once the user confirms the summary.
template <typename Set, typename Editor>
bool saveEditedSet(CMaterialLibrary &library, const CLibKey &key, const Editor &editor,
                   bool dual, DlgTps &summary)
{
    const Set *stored = findSet<Set>(library, key);
    if (!stored)
        return false;
    Set edited = *stored;
    editor.ReadSet(edited);
    const QList<QStringList> rows = setChanges(*stored, edited, dual);
    if (rows.isEmpty())
        return false;
    summary.AddRows(rows);
    if (summary.exec() != QDialog::Accepted)
        return false;
    storeSet(library, edited);
    return true;
}

} // namespace

DlgLayerLibMgr::DlgLayerLibMgr(CLayerParam *layer, IDevicesInfo *devices, QWidget *parent)
    : BaseDialog(parent)
    , ui(std::make_unique<Ui::DlgLayerLibMgr>())
    , m_layer(layer)
    , m_devices(devices)
{
    ui->setupUi(this);
    m_menu = new QMenu(this);
    m_resolution = LoadModule(QStringLiteral("Resolution"), true);
    m_tube = 0;
    m_power = 130;

    m_presets = new DlgLayerParamPresets(ui->widget_presets);
    ui->widget_presets->layout()->addWidget(m_presets);
    m_cutEditor = new DlgLayerParamCut(ui->widget_param);
    m_sweepEditor = new DlgLayerParamSweep(ui->widget_param);
    ui->verticalLayout_editors->insertWidget(0, m_sweepEditor);
    ui->verticalLayout_editors->insertWidget(0, m_cutEditor);
    m_sweepEditor->hide();
    ui->widget_hint->hide();

    m_refreshTimer.setSingleShot(true);
    m_refreshTimer.setInterval(50);
    connect(&m_refreshTimer, &QTimer::timeout, this, &DlgLayerLibMgr::refreshOkButton);

    retranslate();
    initialise();
    scheduleRefresh();
}

DlgLayerLibMgr::~DlgLayerLibMgr()
{
    if (m_resolution)
        ReleaseModule(m_resolution);
}

void DlgLayerLibMgr::initialise()
{
    setupList(ui->listWidget_Layer);
    setupList(ui->listWidget_Thickness);
    ui->listWidget_Layer->setIconSize(kLayerIconSize);
    ui->listWidget_Material->setIconSize(QSize(50, 50));
    // Materials are reordered by dragging; the custom entry stays last.
    ui->listWidget_Material->setViewMode(QListView::ListMode);
    ui->listWidget_Material->setDragDropMode(QAbstractItemView::InternalMove);
    ui->listWidget_Material->setDefaultDropAction(Qt::MoveAction);
    const QFont listFont(QStringLiteral("Alibaba PuHuiTi 2.0 75 SemiBold"));
    ui->listWidget_Layer->setFont(listFont);
    ui->listWidget_Thickness->setFont(listFont);
    ui->pushButton_ok->setDefault(true);

    readMachine();

    QAction *deleteMaterial = m_menu->addAction(QString());
    deleteMaterial->setObjectName(QStringLiteral("action_deleteMaterial"));
    QAction *deleteThickness = m_menu->addAction(QString());
    deleteThickness->setObjectName(QStringLiteral("action_deleteThickness"));
    connect(deleteMaterial, &QAction::triggered, this, &DlgLayerLibMgr::DeleteMaterialItemSlot);
    connect(deleteThickness, &QAction::triggered, this, &DlgLayerLibMgr::DeleteThicknessItemSlot);
    retranslate();
    connect(ui->listWidget_Material, &QWidget::customContextMenuRequested, this,
            [this](const QPoint &pos) { showListMenu(pos, true); });
    connect(ui->listWidget_Thickness, &QWidget::customContextMenuRequested, this,
            [this](const QPoint &pos) { showListMenu(pos, false); });

    refillMaterials();

    connect(m_presets, &DlgLayerParamPresets::SigMaterialIndxChanged, this,
            &DlgLayerLibMgr::OnlistWidgetMaterialCurrentRowChanged);
    connect(m_presets, &DlgLayerParamPresets::SigThicknessIndxChanged, this,
            &DlgLayerLibMgr::OnlistWidgetThicknessCurrentRowChanged);
    connect(m_presets, &DlgLayerParamPresets::SigCraftCilcked, this,
            &DlgLayerLibMgr::OnlistWidgetWorkCraftItemClicked);
    connect(m_presets, &DlgLayerParamPresets::SigCraftCurChaged, this,
            &DlgLayerLibMgr::on_listWidget_WorkCraft_currentRowChanged);
    connect(m_presets, &DlgLayerParamPresets::SigMaterialMean, this,
            &DlgLayerLibMgr::OnMaterialMean);
    connect(m_presets, &DlgLayerParamPresets::SigThicknessMean, this,
            [this](int type, int index, const QString &) { OnThicknessMeam(type, index); });
    connect(m_presets, &DlgLayerParamPresets::SigSchemeCurChaged, this,
            &DlgLayerLibMgr::OnlistWidgetSchemeChange);
    connect(m_presets, &DlgLayerParamPresets::LaserChanged, this, &DlgLayerLibMgr::OnLaserChange);
    connect(ui->listWidget_Material, &CMaterialListWidget::SortMaterialsRequested, this,
            &DlgLayerLibMgr::SortMaterialSlot);

    // The dialog's own lists choose like the presets panel's combo boxes.
    connect(ui->listWidget_Material, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row < 0)
            return;
        if (row == ui->listWidget_Material->count() - 1) {
            const QSignalBlocker blocker(ui->listWidget_Material);
            ui->listWidget_Material->setCurrentRow(m_presets->CurrentMaterial());
            OnMaterialMean(0, m_presets->CurrentMaterial());
            return;
        }
        {
            PresetsQuiet quiet(m_presets);
            m_presets->SetCurrentMaterial(row);
        }
        OnlistWidgetMaterialCurrentRowChanged(row);
    });
    connect(ui->listWidget_Thickness, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row < 0)
            return;
        if (row == ui->listWidget_Thickness->count() - 1) {
            const QSignalBlocker blocker(ui->listWidget_Thickness);
            ui->listWidget_Thickness->setCurrentRow(m_presets->CurrentThickness());
            OnThicknessMeam(0, m_presets->CurrentThickness());
            return;
        }
        {
            PresetsQuiet quiet(m_presets);
            m_presets->SetCurrentThickness(row);
        }
        OnlistWidgetThicknessCurrentRowChanged(row);
    });

    connect(m_cutEditor, &DlgLayerParamCut::DataChange, this, &DlgLayerLibMgr::onEditorDataChange);
    connect(m_sweepEditor, &DlgLayerParamSweep::DataChange, this,
            &DlgLayerLibMgr::onEditorDataChange);
    connect(m_cutEditor, &DlgLayerParamCut::SigSaveUserPar, this,
            &DlgLayerLibMgr::onSaveUserParameters);
    connect(m_sweepEditor, &DlgLayerParamSweep::SigSaveUserPar, this,
            &DlgLayerLibMgr::onSaveUserParameters);
}

void DlgLayerLibMgr::readMachine()
{
    LaserSourceInfo lasers[2];
    int laserCount = 0;
    if (m_devices) {
        laserCount = std::min(m_devices->GetLaserCount(), 2);
        for (int i = 0; i < laserCount; ++i)
            lasers[i] = m_devices->GetLaser(i);
        m_deviceMode = m_devices->GetStatus() == 0;
    } else {
        // Without a device service the machine's set-up says which tubes there are.
        const LaserTypeCodes codes = ReadLaserTypes();
        lasers[0] = {codes.laser1, 0, true};
        lasers[1] = {codes.laser2, 0, false};
    }
    const int kind = m_devices ? m_devices->GetMachineKind() : 0;
    const auto value = [this](const char *name) {
        QVariant result;
        m_devices->GetValue(QString::fromLatin1(name), result);
        return result;
    };

    if (m_deviceMode) {
        if (kind == 1) {
            const int maxPower = value("MaxPower").toInt();
            m_power = maxPower == 1000 ? 10 : maxPower;
            m_tube = LASER_TUBE_SEMICONDUCTOR;
        } else {
            m_power = lasers[0].power;
            m_tube = lasers[0].tubeType;
        }
        WriteIniInt(kGroup, QStringLiteral("LASER_POWER"), m_power, TmpParamIniPath());
        WriteIniInt(kGroup, QStringLiteral("LASER_TUBE"), m_tube, TmpParamIniPath());
        ui->pushButton_Advanced->setEnabled(false);
    } else {
        m_power = ReadIniInt(kGroup, QStringLiteral("LASER_POWER"),
                             lasers[0].power == 0 ? 80 : lasers[0].power, TmpParamIniPath());
        m_tube = ReadIniInt(kGroup, QStringLiteral("LASER_TUBE"), lasers[0].tubeType,
                            TmpParamIniPath());
        ui->pushButton_Advanced->setEnabled(true);
    }

    if (!m_devices)
        return;
    if (kind == 2 && laserCount == 2 && value("CurrentRdCardType").toInt() == 8
        && lasers[1].present)
        m_dualLaser = true;
    if (kind == 1 && value("IsDualLaser").toBool()) {
        m_dualLaser = true;
        m_secondLaserUsable = true;
    }
}

void DlgLayerLibMgr::retranslate()
{
    setWindowTitle(wording("Processing parameter"));
    ui->label_craft->setText(wording("Layer"));
    ui->label_materials->setText(wording("Material"));
    ui->label_Thickness->setText(wording("Thickness"));
    ui->label_param->setText(wording("Parameters"));
    ui->labelParametersHint->setText(
        wording("Elements in the mark layer are not processed, \nno parameters need to be set!"));
    ui->pushButton_Import->setText(wording("Import"));
    ui->pushButton_Export->setText(wording("Export"));
    ui->pushButton_Advanced->setText(wording("Advance"));
    ui->pushButton_default->setText(wording("Restore Defaults"));
    ui->pushButton_ok->setText(wording("OK"));
    const QList<QAction *> actions = m_menu->actions();
    if (actions.size() == 2) {
        actions[0]->setText(wording("Delete material"));
        actions[1]->setText(wording("Delete thickness"));
    }
}

void DlgLayerLibMgr::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange && m_presets) {
        retranslate();
        for (int row = 0; row < ui->listWidget_Layer->count(); ++row)
            updateLayerRow(row);
        const int thicknessRow = ui->listWidget_Thickness->currentRow();
        refillMaterials(materialName());
        selectThicknessRow(thicknessRow);
    }
    BaseDialog::changeEvent(event);
}

void DlgLayerLibMgr::SetRowLabels(const QStringList &labels)
{
    m_rowLabels = labels;
}

void DlgLayerLibMgr::Fill(CLayerMgrIns *manager, int row)
{
    m_manager = manager;
    m_originals.clear();
    const int count = manager ? int(manager->GetLayerCount()) : 0;
    m_originals.reserve(size_t(count));
    for (int i = 0; i < count; ++i)
        m_originals.push_back(*manager->GetLayerAt(quint32(i)));
    m_schemes = QList<int>(count, -1);
    buildLayerList();
    if (row < 0 || row >= count)
        return;
    {
        const QSignalBlocker blocker(ui->listWidget_Layer);
        ui->listWidget_Layer->setCurrentRow(row);
    }
    switchToRow(row);
    scheduleRefresh();
}

bool DlgLayerLibMgr::Open(const LayerLibraryRequest &request)
{
    IDevicesInfo *devices = request.host ? request.host->DevicesInfo() : nullptr;
    DlgLayerLibMgr dialog(request.layer, devices, request.parent);
    dialog.SetRowLabels(request.numberTexts);
    dialog.Fill(request.manager, request.row);
    return dialog.exec() == QDialog::Accepted;
}

int DlgLayerLibMgr::SchemeOfRow(int row) const
{
    return schemeOfRow(row);
}

void DlgLayerLibMgr::buildLayerList()
{
    QListWidget *list = ui->listWidget_Layer;
    const QSignalBlocker blocker(list);
    list->clear();
    for (int row = 0; row < int(m_originals.size()); ++row) {
        const CLayerParam *layer = layerOfRow(row);
        if (!layer)
            continue;
        auto *item = new QListWidgetItem(layerIcon(row + 1, layer->COLOR, m_rowLabels.value(row)),
                                         QString(), list);
        item->setTextAlignment(Qt::AlignCenter);
        updateLayerRow(row);
    }
}

void DlgLayerLibMgr::updateLayerRow(int row)
{
    QListWidgetItem *item = ui->listWidget_Layer->item(row);
    const CLayerParam *layer = layerOfRow(row);
    if (!item || !layer)
        return;
    const QString text = craftText(layer->WORK_TYPE);
    item->setText(text);
    item->setToolTip(text);
}

CLayerParam *DlgLayerLibMgr::layerOfRow(int row) const
{
    if (!m_manager || row < 0 || row >= int(m_manager->GetLayerCount()))
        return nullptr;
    return m_manager->GetLayerAt(quint32(row));
}

int DlgLayerLibMgr::schemeOfRow(int row) const
{
    return m_schemes.value(row, -1);
}

CMaterialLibrary &DlgLayerLibMgr::userLibrary()
{
    return g_LayerContext.Store().UserLibrary();
}

const CMaterialLibrary &DlgLayerLibMgr::recommendedLibrary()
{
    return g_LayerContext.Store().FactoryLibrary();
}

bool DlgLayerLibMgr::saveLibrary()
{
    return g_LayerContext.Store().Save();
}

QString DlgLayerLibMgr::materialName() const
{
    return m_materials.value(m_presets->CurrentMaterial());
}

double DlgLayerLibMgr::thickness() const
{
    const int row = m_presets->CurrentThickness();
    return row >= 0 && row < int(m_thicknesses.size()) ? m_thicknesses[size_t(row)] : -1.0;
}

int DlgLayerLibMgr::craft() const
{
    return m_presets->CraftOfRow(m_presets->CurrentCraftRow());
}

bool DlgLayerLibMgr::keyValid() const
{
    const int material = m_presets->CurrentMaterial();
    const int thicknessRow = m_presets->CurrentThickness();
    return material >= 0 && material < m_materials.size() && thicknessRow >= 0
        && thicknessRow < int(m_thicknesses.size()) && craft() >= 0;
}

CLibKey DlgLayerLibMgr::currentKey() const
{
    return CLibKey{quint32(m_tube), m_power, materialName(), thickness(), quint32(craft())};
}

quint32 DlgLayerLibMgr::chosenTube() const
{
    if (m_dualLaser && !m_presets->IsFirstLaserChecked())
        return quint32(ReadLaserTypes().laser2);
    return quint32(m_tube);
}

void DlgLayerLibMgr::refillMaterials(const QString &preferred)
{
    const auto materials = userLibrary().MaterialsOf(quint32(m_tube), m_power);
    QListWidget *list = ui->listWidget_Material;
    {
        PresetsQuiet quiet(m_presets);
        const QSignalBlocker blocker(list);
        list->clear();
        m_presets->ClearMaterials();
        m_materials.clear();
        for (const CLibMaterial *material : materials) {
            const QImage picture = MaterialPicture(*material);
            const QString text = CTranslator::GetInstance()->GetWording(material->name);
            auto *item = new QListWidgetItem(text, list);
            if (!picture.isNull())
                item->setIcon(QIcon(QPixmap::fromImage(picture)));
            item->setData(Qt::UserRole, material->iconPath);
            m_presets->AddMaterial(text, material->iconPath, picture);
            m_materials << material->name;
        }
        const QString custom = wording("Custom material");
        new QListWidgetItem(custom, list);
        m_presets->AddMaterial(custom, QString());
    }

    // The layer's last choice, else the first material.
    QString wanted = preferred;
    if (wanted.isEmpty() && m_layer) {
        if (const CRunningOptions *option = g_LayerContext.FindRunningOption(m_layer->COLOR))
            wanted = option->MaterialName();
    }
    selectMaterialRow(rowOrFirst(m_materials.indexOf(wanted), int(m_materials.size())));
}

void DlgLayerLibMgr::selectMaterialRow(int row)
{
    {
        PresetsQuiet quiet(m_presets);
        const QSignalBlocker blocker(ui->listWidget_Material);
        ui->listWidget_Material->setCurrentRow(row);
        m_presets->SetCurrentMaterial(row);
    }
    refillThicknesses();
}

void DlgLayerLibMgr::refillThicknesses()
{
    const QString name = materialName();
    m_thicknesses = name.isEmpty()
        ? std::vector<double>()
        : userLibrary().Thicknesses(quint32(m_tube), m_power, name);
    // The file keeps them in key-text order ("10.00" before "3.00").
    std::sort(m_thicknesses.begin(), m_thicknesses.end());
    QListWidget *list = ui->listWidget_Thickness;
    {
        PresetsQuiet quiet(m_presets);
        const QSignalBlocker blocker(list);
        list->clear();
        m_presets->ClearThicknesses();
        for (double value : m_thicknesses) {
            const QString text = thicknessText(value);
            new QListWidgetItem(text, list);
            m_presets->AddThickness(text);
        }
        const QString custom = wording("Custom Thickness");
        new QListWidgetItem(custom, list);
        m_presets->AddThickness(custom);
    }

    int wanted = -1;
    if (m_layer) {
        if (const CRunningOptions *option = g_LayerContext.FindRunningOption(m_layer->COLOR)) {
            for (size_t i = 0; i < m_thicknesses.size() && wanted < 0; ++i) {
                if (SameThickness(m_thicknesses[i], option->thickness))
                    wanted = int(i);
            }
        }
    }
    selectThicknessRow(rowOrFirst(wanted, int(m_thicknesses.size())));
}

void DlgLayerLibMgr::selectThicknessRow(int row)
{
    {
        PresetsQuiet quiet(m_presets);
        const QSignalBlocker blocker(ui->listWidget_Thickness);
        if (row >= int(m_thicknesses.size()))
            row = -1;
        ui->listWidget_Thickness->setCurrentRow(row);
        m_presets->SetCurrentThickness(row);
    }
    refillCrafts();
}

void DlgLayerLibMgr::refillCrafts()
{
    const int previous = craft();
    int wanted = -1;
    int workTypeRow = -1;
    {
        PresetsQuiet quiet(m_presets);
        m_presets->ClearCrafts();
        if (m_presets->CurrentMaterial() >= 0 && thickness() >= 0.0) {
            CLibKey key = currentKey();
            for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
                key.craft = craft;
                if (!userLibrary().HasSet(key) && !recommendedLibrary().HasSet(key))
                    continue;
                const int row = m_presets->CraftCount();
                m_presets->AddCraft(craftText(int(craft)), int(craft));
                if (int(craft) == previous)
                    wanted = row;
                if (m_layer && int(craft) == m_layer->WORK_TYPE)
                    workTypeRow = row;
            }
        }
        // A new layer shows its own process; a new material keeps the chosen one.
        if (m_switching || wanted < 0)
            wanted = workTypeRow;
        m_presets->SetCurrentCraftRow(rowOrFirst(wanted, m_presets->CraftCount()));
    }
    showCurrentScheme();
}

void DlgLayerLibMgr::switchToRow(int row)
{
    m_layerRow = row;
    m_layer = layerOfRow(row);
    if (!m_layer)
        return;
    // A layer without a running option starts from the first one's choice.
    if (!g_LayerContext.FindRunningOption(m_layer->COLOR)) {
        CRunningOptions option;
        const RunningOptionList &options = g_LayerContext.RunningOptions();
        if (!options.empty()) {
            option.thickness = options.front().options.thickness;
            option.SetMaterialName(options.front().options.MaterialName());
        }
        option.type = quint32(m_tube);
        option.laserPower = quint32(m_power);
        option.craft = quint32(m_layer->WORK_TYPE);
        g_LayerContext.SetRunningOption(m_layer->COLOR, option);
    }
    m_switching = true;
    refillMaterials();
    m_switching = false;
}

void DlgLayerLibMgr::on_listWidget_Layer_itemClicked(QListWidgetItem *item)
{
    ILog_WriteLogF(0, "%s", "layerWidget item was double clicked.");
    SaveCurrentLayerBeforeSwitch();
    const int row = ui->listWidget_Layer->row(item);
    if (row < 0)
        return;
    switchToRow(row);
    scheduleRefresh();
}

void DlgLayerLibMgr::OnlistWidgetMaterialCurrentRowChanged(int row)
{
    ILog_WriteLogF(0, "%s", "listWidget_Material was changed.");
    {
        const QSignalBlocker blocker(ui->listWidget_Material);
        ui->listWidget_Material->setCurrentRow(row);
    }
    refillThicknesses();
    scheduleRefresh();
}

void DlgLayerLibMgr::OnlistWidgetThicknessCurrentRowChanged(int row)
{
    ILog_WriteLogF(0, "%s", "listWidget_Thickness was changed.");
    {
        const QSignalBlocker blocker(ui->listWidget_Thickness);
        ui->listWidget_Thickness->setCurrentRow(row);
    }
    refillCrafts();
    scheduleRefresh();
}

void DlgLayerLibMgr::on_listWidget_WorkCraft_itemClicked(QListWidgetItem *)
{
    showCurrentScheme();
}

void DlgLayerLibMgr::on_listWidget_WorkCraft_currentRowChanged(int)
{
    ILog_WriteLogF(0, "%s", "listWidget_WorkCraft was changed.");
}

void DlgLayerLibMgr::OnlistWidgetWorkCraftItemClicked(QListWidgetItem *item)
{
    ILog_WriteLogF(0, "%s", "listWidget_WorkCraft item was clicked.");
    on_listWidget_WorkCraft_itemClicked(item);
}

void DlgLayerLibMgr::showCurrentScheme()
{
    if (m_layerRow >= 0 && m_layerRow < m_schemes.size() && m_schemes[m_layerRow] < 0)
        m_schemes[m_layerRow] = IsRecommendedParameter();
    const int scheme = m_layerRow >= 0 ? schemeOfRow(m_layerRow) : int(SchemeTemporary);
    m_cutEditor->SetEditable(scheme == SchemeTemporary);
    m_sweepEditor->SetEditable(scheme == SchemeTemporary);
    m_presets->SetCurrentScheme(scheme < 0 ? int(SchemeTemporary) : scheme);
    showParameterSet(craft());
}

void DlgLayerLibMgr::showParameterSet(int craft)
{
    if (craft == LIB_CRAFT_MARK || !keyValid() || !m_layer) {
        m_cutEditor->hide();
        m_sweepEditor->hide();
        ui->widget_hint->setVisible(craft == LIB_CRAFT_MARK);
        return;
    }
    const CLibKey key = currentKey();
    const int scheme = m_layerRow >= 0 ? schemeOfRow(m_layerRow) : int(SchemeTemporary);
    const quint32 tube = chosenTube();
    const bool firstLaser = !m_dualLaser || m_presets->IsFirstLaserChecked();
    m_loading = true;
    const bool cut = IsCutCraft(quint32(craft));
    CLayerParamEditor *shown = cut ? static_cast<CLayerParamEditor *>(m_cutEditor) : m_sweepEditor;
    shown->SetTubeType(int(tube));
    shown->SetDualLaser(m_dualLaser);
    shown->SetFirstLaser(firstLaser);
    if (cut) {
        m_cutEditor->LoadSet(
            setToShow<CLibCutSet>(userLibrary(), recommendedLibrary(), *m_layer, key, scheme));
    } else {
        m_sweepEditor->SetDeepMode(craft == LIB_CRAFT_DEEP);
        m_sweepEditor->LoadSet(
            setToShow<CLibSweepSet>(userLibrary(), recommendedLibrary(), *m_layer, key, scheme));
    }
    (cut ? static_cast<CLayerParamEditor *>(m_sweepEditor) : m_cutEditor)->hide();
    ui->widget_hint->hide();
    shown->show();
    m_presets->ShowLaserChoice(m_dualLaser, !firstLaser);
    m_loading = false;
}

void DlgLayerLibMgr::OnlistWidgetSchemeChange(int scheme)
{
    if (m_layerRow < 0 || m_layerRow >= m_schemes.size() || scheme < 0)
        return;
    m_cutEditor->SetEditable(scheme == SchemeTemporary);
    m_sweepEditor->SetEditable(scheme == SchemeTemporary);
    if (m_schemes[m_layerRow] == SchemeTemporary)
        SaveCurrentLayerBeforeSwitch();
    m_schemes[m_layerRow] = scheme;
    showParameterSet(craft());
}

void DlgLayerLibMgr::OnLaserChange(int iLaser, ELASER_TUBE tube)
{
    showParameterSet(craft());
    m_cutEditor->SetTubeType(int(tube));
    m_sweepEditor->SetTubeType(int(tube));
    m_cutEditor->SetFirstLaser(iLaser == 1);
    m_sweepEditor->SetFirstLaser(iLaser == 1);
}

int DlgLayerLibMgr::IsRecommendedParameter()
{
    if (!m_layer)
        return SchemeTemporary;
    const CRunningOptions *option = g_LayerContext.FindRunningOption(m_layer->COLOR);
    if (!option)
        return SchemeTemporary;
    const CLibKey key{quint32(m_tube), m_power, option->MaterialName(), option->thickness,
                      quint32(m_layer->WORK_TYPE)};
    const bool holds = IsCutCraft(key.craft)
        ? layerHoldsSet<CLibCutSet>(recommendedLibrary(), key, *m_layer)
        : IsSweepCraft(key.craft) && layerHoldsSet<CLibSweepSet>(recommendedLibrary(), key, *m_layer);
    return holds ? SchemeSuggested : SchemeTemporary;
}

void DlgLayerLibMgr::onEditorDataChange()
{
    if (m_loading || !m_layer || schemeOfRow(m_layerRow) == SchemeTemporary)
        return;
    if (!keyValid())
        return;
    const int chosen = craft();
    if (IsCutCraft(quint32(chosen)))
        readEditor<CLibCutSet>(*m_cutEditor, *m_layer);
    else if (IsSweepCraft(quint32(chosen)))
        readEditor<CLibSweepSet>(*m_sweepEditor, *m_layer);
    m_cutEditor->SetEditable(true);
    m_sweepEditor->SetEditable(true);
    m_presets->SetCurrentScheme(SchemeTemporary);
    m_schemes[m_layerRow] = SchemeTemporary;
    showParameterSet(chosen);
}

void DlgLayerLibMgr::onSaveUserParameters()
{
    if (schemeOfRow(m_layerRow) != SchemeTemporary || !keyValid())
        return;
    const CLibKey key = currentKey();
    DlgTps summary(this, false);
    const bool saved = IsCutCraft(key.craft)
        ? saveEditedSet<CLibCutSet>(userLibrary(), key, *m_cutEditor, m_dualLaser, summary)
        : IsSweepCraft(key.craft)
            && saveEditedSet<CLibSweepSet>(userLibrary(), key, *m_sweepEditor, m_dualLaser, summary);
    if (!saved)
        return;
    saveLibrary();
}

void DlgLayerLibMgr::SaveCurrentLayerBeforeSwitch()
{
    if (!m_layer || !keyValid())
        return;
    const int chosen = craft();
    CRunningOptions option;
    if (const CRunningOptions *existing = g_LayerContext.FindRunningOption(m_layer->COLOR))
        option = *existing;
    option.type = chosenTube();
    option.laserPower = quint32(m_power);
    option.SetMaterialName(materialName());
    option.thickness = thickness();
    option.craft = quint32(chosen);
    g_LayerContext.SetRunningOption(m_layer->COLOR, option);

    if (IsCutCraft(quint32(chosen)) && m_cutEditor->isVisibleTo(this)) {
        CLibCutSet set;
        FillCutSet(*m_layer, set);
        m_cutEditor->ReadSet(set);
        ApplyCutSet(set, *m_layer);
    } else if (IsSweepCraft(quint32(chosen)) && m_sweepEditor->isVisibleTo(this)) {
        CLibSweepSet set;
        FillSweepSet(*m_layer, set);
        m_sweepEditor->ReadSet(set);
        ApplySweepSet(set, *m_layer);
    }
    // A fill-only layer never becomes a line process.
    if (!(m_layer->FILL_LOCKED && IsCutCraft(quint32(chosen))))
        m_layer->WORK_TYPE = chosen;
    updateLayerRow(m_layerRow);
}

void DlgLayerLibMgr::on_pushButton_ok_clicked()
{
    ILog_WriteLogF(0, "%s", "pushButton_ok was clicked.");
    SaveCurrentLayerBeforeSwitch();
    DlgTps summary(this, true);
    bool changed = false;
    for (size_t i = 0; i < m_originals.size() && m_manager; ++i) {
        const CLayerParam &original = m_originals[i];
        CLayerParam *live = m_manager->GetLayerByColor(original.COLOR);
        if (!live)
            continue;
        const QList<QStringList> rows = LayerChanges(original, *live, m_dualLaser);
        if (rows.isEmpty())
            continue;
        changed = true;
        const QString caption = QStringLiteral("%1 ").arg(int(i) + 1, 2, 10, QLatin1Char('0'))
            + m_rowLabels.value(int(i));
        for (int r = 0; r < rows.size(); ++r)
            summary.AddRow(QStringList{r == 0 ? caption : QString()} + rows[r]);
        m_manager->NotifyLayerEvent(2, live);
    }
    if (changed && summary.exec() != QDialog::Accepted)
        return;
    m_accepted = true;
    m_restoreOnClose = false;
    // The running options chosen here go with the library.
    saveLibrary();
    done(QDialog::Accepted);
}

void DlgLayerLibMgr::on_pushButton_Advanced_clicked()
{
    ILog_WriteLogF(0, "%s", "pushButton_Advanced was clicked.");
    DlgLaserTube tubeDialog(&g_LayerContext.Store(), this);
    tubeDialog.SetType(m_tube);
    tubeDialog.SetPower(m_power);
    if (tubeDialog.exec() != QDialog::Accepted)
        return;
    const int tube = tubeDialog.GetType();
    const int power = tubeDialog.GetPower();
    // A pair without materials starts as a copy of the one left.
    if (userLibrary().MaterialsOf(quint32(tube), power).empty()
        && userLibrary().ClonePair(quint32(m_tube), m_power, quint32(tube), power) > 0) {
        saveLibrary();
    }
    m_tube = tube;
    m_power = power;
    m_presets->RefreshLaserTexts();
    refillMaterials();
    scheduleRefresh();
}

void DlgLayerLibMgr::RenewOriginalLayerList()
{
    for (size_t i = 0; i < m_originals.size(); ++i) {
        if (CLayerParam *layer = layerOfRow(int(i)))
            *layer = m_originals[i];
    }
}

void DlgLayerLibMgr::done(int result)
{
    writeSettings();
    if (m_restoreOnClose)
        RenewOriginalLayerList();
    BaseDialog::done(result);
}

void DlgLayerLibMgr::writeSettings() const
{
    const QString path = TmpParamIniPath();
    WriteIniInt(kGroup, QStringLiteral("LASER_DEFAULT_POWER"), 80, path);
    WriteIniInt(kGroup, QStringLiteral("LASER_DEFAULT_TUBE"), 0, path);
    WriteIniInt(kGroup, QStringLiteral("LASER_POWER"), m_power, path);
    WriteIniInt(kGroup, QStringLiteral("LASER_TUBE"), m_tube, path);
    WriteIniInt(kGroup, QStringLiteral("LASER_WORK_CRAFT"), m_presets->CurrentCraftRow(), path);
    WriteIniInt(kGroup, QStringLiteral("LASER_THICKNESS"), ui->listWidget_Thickness->currentRow(),
                path);
}

void DlgLayerLibMgr::scheduleRefresh()
{
    m_refreshTimer.start();
}

void DlgLayerLibMgr::refreshOkButton()
{
    ui->pushButton_ok->setEnabled(ui->listWidget_Layer->currentRow() >= 0
                                  && ui->listWidget_Material->currentRow() >= 0
                                  && ui->listWidget_Thickness->currentRow() >= 0);
}

// Library maintenance.

void DlgLayerLibMgr::on_pushButton_Import_clicked()
{
    ILog_WriteLogF(0, "%s", "pushButton_Import was clicked.");
    const QString path = QFileDialog::getOpenFileName(this, wording("Open"), QString(),
                                                      QStringLiteral("(*.json)"));
    if (path.isEmpty() || !QFileInfo::exists(path))
        return;
    CMaterialLibrary imported;
    const LibraryReadResult result = ReadMaterialLibraryFile(path, imported);
    if (!result.ok() || imported.Materials().empty()) {
        ILog_WriteLogF(2, "Import of %s refused: %s", qPrintable(path),
                       result.ok() ? "no material" : qPrintable(result.reason()));
        CMsgBoxQss box(QMessageBox::Critical, wording("Tips"),
                       wording("Import failed, invalid parameter file!"), QMessageBox::Yes, this);
        box.exec();
        return;
    }
    CLibraryStore &store = g_LayerContext.Store();
    CLibraryMerge merge(store.FactoryLibrary(), store.UserLibrary(), imported);
    if (merge.IsEmpty()) {
        ILog_WriteLogF(1, "Import of %s changes nothing", qPrintable(path));
        CMsgBoxQss box(QMessageBox::Information, wording("Tips"),
                       wording("The file changes nothing in your library."), QMessageBox::Yes,
                       this);
        box.exec();
        return;
    }
    DlgLibraryMerge summary(&merge, this);
    if (summary.exec() != QDialog::Accepted)
        return;
    if (!store.TakeMerged(merge.Apply())) {
        CMsgBoxQss box(QMessageBox::Critical, wording("Tips"),
                       wording("Import failed, the library could not be saved!"),
                       QMessageBox::Yes, this);
        box.exec();
        return;
    }
    refillMaterials();
    scheduleRefresh();
}

void DlgLayerLibMgr::on_pushButton_Export_clicked()
{
    ILog_WriteLogF(0, "%s", "pushButton_Export was clicked.");
    const QString path = QFileDialog::getSaveFileName(this, wording("Save As"), QString(),
                                                      QStringLiteral("(*.json)"));
    if (!path.isEmpty())
        g_LayerContext.Store().WriteUserLibrary(path);
}

void DlgLayerLibMgr::on_pushButton_default_clicked()
{
    ILog_WriteLogF(0, "%s", "pushButton_default was changed.");
    CMsgBoxQss question(QMessageBox::Question, wording("Tips"),
                        wording("Whether to restore the default?"),
                        QMessageBox::Yes | QMessageBox::No, this);
    if (question.exec() != QMessageBox::Yes)
        return;
    if (QFileInfo::exists(CLibraryStore::FactoryLibraryPath())) {
        const QString path = TmpParamIniPath();
        WriteIniInt(kGroup, QStringLiteral("LASER_DEFAULT_TUBE"), 0, path);
        WriteIniInt(kGroup, QStringLiteral("LASER_DEFAULT_POWER"), 80, path);
        g_LayerContext.Store().RestoreFactoryLibrary();
        refillMaterials();
        scheduleRefresh();
    }
    refillMaterials();
}

void DlgLayerLibMgr::showListMenu(const QPoint &pos, bool material)
{
    QListWidget *list = material ? ui->listWidget_Material : ui->listWidget_Thickness;
    QListWidgetItem *item = list->itemAt(pos);
    // The custom entry at the end is no material or thickness.
    if (!item || list->row(item) >= list->count() - 1)
        return;
    list->setCurrentItem(item);
    const QList<QAction *> actions = m_menu->actions();
    actions[0]->setVisible(material);
    actions[1]->setVisible(!material);
    m_menu->popup(list->viewport()->mapToGlobal(pos));
}

void DlgLayerLibMgr::OnMaterialMean(int type, int index)
{
    if (type == 0)
        addMaterial();
    else if (type == 1)
        MaterialItemEdit(ui->listWidget_Material->item(index));
    else
        DeleteMaterialItemSlot();
}

void DlgLayerLibMgr::OnThicknessMeam(int type, int)
{
    if (type == 0)
        addThickness();
    else
        DeleteThicknessItemSlot();
}

void DlgLayerLibMgr::DeleteMaterialItemSlot(bool)
{
    const int index = m_presets->CurrentMaterial();
    const int last = ui->listWidget_Material->count() - 1;
    if (index < 0 || index >= last || index >= m_materials.size())
        return;
    if (!g_LayerContext.Store().ConfirmDeletion())
        return;
    userLibrary().RemoveMaterial(quint32(m_tube), m_power, m_materials[index]);
    m_materials.removeAt(index);
    {
        PresetsQuiet quiet(m_presets);
        const QSignalBlocker blocker(ui->listWidget_Material);
        delete ui->listWidget_Material->takeItem(index);
        m_presets->RemoveMaterial(index);
    }
    // The last real material takes the place of a deleted last one.
    const int next = index == last - 1 ? last - 2 : index;
    selectMaterialRow(next);
    ui->listWidget_Material->setFocus();
    saveLibrary();
    scheduleRefresh();
}

void DlgLayerLibMgr::DeleteThicknessItemSlot(bool)
{
    const int index = m_presets->CurrentThickness();
    const int last = ui->listWidget_Thickness->count() - 1;
    if (index < 0 || index >= last || index >= int(m_thicknesses.size()))
        return;
    if (!g_LayerContext.Store().ConfirmDeletion())
        return;
    userLibrary().RemoveThickness(quint32(m_tube), m_power, materialName(),
                                  m_thicknesses[size_t(index)]);
    m_thicknesses.erase(m_thicknesses.begin() + index);
    {
        PresetsQuiet quiet(m_presets);
        const QSignalBlocker blocker(ui->listWidget_Thickness);
        delete ui->listWidget_Thickness->takeItem(index);
        m_presets->RemoveThickness(index);
    }
    selectThicknessRow(index == last - 1 ? last - 2 : index);
    ui->listWidget_Thickness->setFocus();
    saveLibrary();
    scheduleRefresh();
}

void DlgLayerLibMgr::SortMaterialSlot(int from, int to)
{
    if (from < 0 || to < 0 || from >= m_materials.size() || to >= m_materials.size())
        return;
    // Rows count within the current tube and power; other pairs keep their places.
    if (!userLibrary().MoveMaterial(quint32(m_tube), m_power, from, to))
        return;
    const QString current = materialName();
    saveLibrary();
    // The list finishes its own move after this returns; the combo box follows then.
    QTimer::singleShot(0, this, [this, current] { refillMaterials(current); });
}

bool DlgLayerLibMgr::checkMaterialName(const QString &name) const
{
    for (int row = 0; row < ui->listWidget_Material->count() - 1; ++row) {
        if (ui->listWidget_Material->item(row)->text() != name)
            continue;
        CMsgBoxQss box(QMessageBox::Question, wording("Tips"),
                       wording("A material with this name already exists. Replace its parameter "
                               "library"),
                       QMessageBox::Ok | QMessageBox::Cancel,
                       const_cast<DlgLayerLibMgr *>(this));
        return box.exec() == QMessageBox::Ok;
    }
    return true;
}

void DlgLayerLibMgr::addSetsFor(const CLibKey &key, const CCraftChoiceDialog::Crafts &crafts)
{
    CMaterialLibrary &library = userLibrary();
    for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
        if (!crafts[craft])
            continue;
        CLibKey setKey = key;
        setKey.craft = craft;
        // New sets start from the layer being edited.
        if (IsCutCraft(craft))
            storeSet(library, layerSet<CLibCutSet>(m_layer, setKey));
        else if (IsSweepCraft(craft))
            storeSet(library, layerSet<CLibSweepSet>(m_layer, setKey));
        else
            library.SetMarkSet(CLibMarkSet{setKey, {}});
    }
}

void DlgLayerLibMgr::addMaterial()
{
    DlgLayerAddMaterials dialog(true, m_tube, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QString name = dialog.GetName().trimmed();
    const double value = dialog.GetThickness();
    if (name.isEmpty() || value <= 0.0 || !checkMaterialName(name))
        return;
    CLibMaterial material;
    material.name = name;
    material.iconPath = dialog.GetIconPath();
    material.iconBase64 = EncodePicture(material.iconPath, QSize(50, 50), 70);
    material.tube = quint32(m_tube);
    material.power = m_power;
    material.thicknesses = {value};
    CMaterialLibrary &library = userLibrary();
    // A confirmed name that exists gets the new thickness and sets.
    if (!library.AddMaterial(material))
        library.AddThickness(material.tube, material.power, name, value);
    addSetsFor(CLibKey{material.tube, m_power, name, value, 0}, dialog.GetCrafts());
    saveLibrary();
    refillMaterials(name);
    scheduleRefresh();
}

void DlgLayerLibMgr::MaterialItemEdit(QListWidgetItem *item)
{
    const int row = item ? ui->listWidget_Material->row(item) : -1;
    if (row < 0 || row >= m_materials.size())
        return;
    const QString name = m_materials[row];
    const CLibMaterial *material = userLibrary().FindMaterial(quint32(m_tube), m_power, name);
    if (!material)
        return;
    const QString oldIcon = material->iconPath;
    DlgLayerAddMaterials dialog(false, m_tube, this);
    dialog.SetName(name);
    if (row == m_presets->CurrentMaterial() && thickness() >= 0.0)
        dialog.SetThickness(thickness());
    dialog.SetIconPath(oldIcon);
    if (dialog.exec() != QDialog::Accepted)
        return;
    QString newName = dialog.GetName().trimmed();
    if (newName.isEmpty())
        newName = name;
    if (newName != name) {
        if (!checkMaterialName(newName)
            || !userLibrary().RenameMaterial(quint32(m_tube), m_power, name, newName)) {
            return;
        }
    }
    const QString icon = dialog.GetIconPath();
    if (icon != oldIcon) {
        userLibrary().SetMaterialIcon(quint32(m_tube), m_power, newName, icon,
                                      EncodePicture(icon, QSize(50, 50), 70));
    }
    saveLibrary();
    refillMaterials(newName);
}

void DlgLayerLibMgr::addThickness()
{
    const QString name = materialName();
    if (name.isEmpty())
        return;
    DlgLayerAddThickness dialog(this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const double value = dialog.GetThickness();
    if (value <= 0.0)
        return;
    userLibrary().AddThickness(quint32(m_tube), m_power, name, value);
    addSetsFor(CLibKey{quint32(m_tube), m_power, name, value, 0}, dialog.GetCrafts());
    saveLibrary();
    refillThicknesses();
    for (size_t i = 0; i < m_thicknesses.size(); ++i) {
        if (SameThickness(m_thicknesses[i], value))
            selectThicknessRow(int(i));
    }
    scheduleRefresh();
}
