#include "dlglasertube.h"
#include "ui_DlgLaserTube.h"

#include "dlgone.h"

#include "library/clayercontext.h"
#include "support/settings.h"

#include "ctranslator.h"
#include "idevicesinfo.h"
#include "ilayerhost.h"
#include "ilog.h"

#include <QEvent>
#include <QListView>
#include <QSignalBlocker>

namespace {

constexpr int kAddPreset = 100;

enum ETUBE_ROW { ROW_GLASS = 0, ROW_RF = 1, ROW_SEMICONDUCTOR = 2, TUBE_ROWS = 3 };
const char *const kTubeNames[TUBE_ROWS] = {"Glass", "RF", "Semiconductor laser"};

QString wording(const char *english)
{
    return CTranslator::GetInstance()->GetWording(QString::fromLatin1(english));
}

// Glass tubes of 30 W and 50 W are not offered, whatever the library holds.
bool hiddenPower(int type, int power)
{
    return type == LASER_TUBE_GLASS && (power == 30 || power == 50);
}

} // namespace

DlgLaserTube::DlgLaserTube(CLibraryStore *store, QWidget *parent)
    : BaseDialog(parent)
    , ui(std::make_unique<Ui::DlgLaserTube>())
    , m_store(store)
{
    ui->setupUi(this);
    ui->comboBox_tube->setView(new QListView(ui->comboBox_tube));
    ui->comboBox_power->setView(new QListView(ui->comboBox_power));
    // Adding tube types is not offered; the button stays for style sheets.
    ui->pushButton_addTubePower->hide();
    retranslate();
    fillTubes();
}

DlgLaserTube::~DlgLaserTube() = default;

void DlgLaserTube::retranslate()
{
    setWindowTitle(wording("Laser tube"));
    ui->label_type->setText(wording("Type"));
    ui->label_power->setText(wording("Power"));
    ui->pushButton_add->setToolTip(wording("Add power"));
    ui->pushButton_del->setToolTip(wording("Delete power"));
    ui->pushButton_ok->setText(wording("OK"));
    for (int row = 0; row < ui->comboBox_tube->count() && row < TUBE_ROWS; ++row)
        ui->comboBox_tube->setItemText(row, wording(kTubeNames[row]));
}

void DlgLaserTube::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    BaseDialog::changeEvent(event);
}

void DlgLaserTube::SetPower(int power)
{
    m_power = power;
    fillTubes();
}

void DlgLaserTube::SetType(int type)
{
    m_type = type;
    fillTubes();
}

int DlgLaserTube::rfType() const
{
    // A machine whose first source reports the RF kind without burning gets
    // that kind; any other machine, or none, the RF kind with burning.
    const ILayerHost *host = g_LayerContext.m_pHost;
    const IDevicesInfo *info = host ? host->DevicesInfo() : nullptr;
    if (info && info->GetLaserCount() > 0 && info->GetLaser(0).tubeType == LASER_TUBE_RF_NO_BURNING)
        return LASER_TUBE_RF_NO_BURNING;
    return LASER_TUBE_RF_BURNING;
}

void DlgLaserTube::fillTubes()
{
    const int rf = rfType();
    {
        const QSignalBlocker blocker(ui->comboBox_tube);
        ui->comboBox_tube->clear();
        const int types[TUBE_ROWS] = {LASER_TUBE_GLASS, rf, LASER_TUBE_SEMICONDUCTOR};
        for (int row = 0; row < TUBE_ROWS; ++row) {
            ui->comboBox_tube->addItem(wording(kTubeNames[row]));
            if (m_store && m_store->UserLibrary().FindTube(quint32(types[row])))
                ui->comboBox_tube->setItemData(row, types[row], ROLE_TUBE);
        }
        int row = ROW_RF;
        if (m_type == LASER_TUBE_GLASS)
            row = ROW_GLASS;
        else if (m_type == LASER_TUBE_SEMICONDUCTOR)
            row = ROW_SEMICONDUCTOR;
        else
            m_type = rf;
        ui->comboBox_tube->setCurrentIndex(row);
    }
    fillPowers(m_power);
    updateDeleteButton();
}

int DlgLaserTube::selectedTubeType() const
{
    const QVariant data = ui->comboBox_tube->currentData(ROLE_TUBE);
    return data.isValid() ? data.toInt() : -1;
}

void DlgLaserTube::fillPowers(int wantedPower)
{
    QComboBox *combo = ui->comboBox_power;
    {
        const QSignalBlocker blocker(combo);
        combo->clear();
    }
    const int type = selectedTubeType();
    if (type < 0 || !m_store)
        return;
    const std::vector<CLibPower> powers = m_store->UserLibrary().Powers(quint32(type));
    if (!powers.empty())
        m_power = powers.front().power;
    int selected = -1;
    for (const CLibPower &entry : powers) {
        if (hiddenPower(type, entry.power))
            continue;
        {
            const QSignalBlocker blocker(combo);
            combo->addItem(wording("%1 W").arg(entry.power));
            const int index = combo->count() - 1;
            combo->setItemData(index, entry.power, ROLE_POWER);
            combo->setItemData(index, entry.custom, ROLE_DELETABLE);
            if (entry.power == wantedPower) {
                combo->setCurrentIndex(index);
                selected = index;
            }
        }
        if (selected == combo->count() - 1)
            powerChanged(selected);
    }
    if (selected < 0 && combo->count() > 0) {
        const QSignalBlocker blocker(combo);
        combo->setCurrentIndex(0);
        powerChanged(0);
    }
}

void DlgLaserTube::powerChanged(int index)
{
    if (index >= 0 && index < ui->comboBox_power->count())
        m_power = ui->comboBox_power->itemData(index, ROLE_POWER).toInt();
    updateDeleteButton();
}

void DlgLaserTube::updateDeleteButton()
{
    const int index = ui->comboBox_power->currentIndex();
    const bool deletable = index >= 0
        && ui->comboBox_power->itemData(index, ROLE_DELETABLE).toBool();
    ui->pushButton_del->setEnabled(deletable);
}

void DlgLaserTube::on_comboBox_tube_currentIndexChanged(int index)
{
    ILog_WriteLogF(0, "comboBox_tube was changed.");
    switch (index) {
    case ROW_GLASS:
        m_type = LASER_TUBE_GLASS;
        break;
    case ROW_RF:
        m_type = rfType();
        break;
    case ROW_SEMICONDUCTOR:
        m_type = LASER_TUBE_SEMICONDUCTOR;
        break;
    default:
        return;
    }
    fillPowers(m_power);
    updateDeleteButton();
}

void DlgLaserTube::on_comboBox_power_currentIndexChanged(int index)
{
    ILog_WriteLogF(0, "comboBox_power was changed.");
    powerChanged(index);
}

void DlgLaserTube::on_pushButton_add_clicked()
{
    ILog_WriteLogF(0, "pushButton_add was clicked.");
    const int type = selectedTubeType();
    if (type < 0 || !m_store)
        return;
    DlgOne dialog(kAddPreset, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const int power = dialog.Value();
    // An empty field confirmed with Enter gives 0, which is no tube power.
    if (power <= 0)
        return;
    CMaterialLibrary &library = m_store->UserLibrary();
    if (!library.HasPower(quint32(type), power)) {
        library.AddPower(quint32(type), power, true);
        m_store->Save();
        fillTubes();
        fillPowers(power);
        m_power = power;
        updateDeleteButton();
        return;
    }
    const int index = ui->comboBox_power->findData(power, ROLE_POWER);
    if (index >= 0 && index != ui->comboBox_power->currentIndex())
        ui->comboBox_power->setCurrentIndex(index);
    m_power = power;
}

void DlgLaserTube::on_pushButton_del_clicked()
{
    ILog_WriteLogF(0, "pushButton_del was clicked.");
    const int type = selectedTubeType();
    QComboBox *combo = ui->comboBox_power;
    const int index = combo->currentIndex();
    if (type < 0 || !m_store || index < 0 || !combo->itemData(index, ROLE_DELETABLE).toBool())
        return;
    if (!m_store->ConfirmDeletion())
        return;
    const int power = combo->itemData(index, ROLE_POWER).toInt();
    if (!m_store->UserLibrary().RemoveUserPower(quint32(type), power))
        return;
    // Saved at once, as adding is: the list must not come back with the
    // next start when the library manager is cancelled.
    m_store->Save();
    {
        const QSignalBlocker blocker(combo);
        combo->removeItem(index);
        combo->setCurrentIndex(index < combo->count() ? index : combo->count() - 1);
    }
    powerChanged(combo->currentIndex());
}

void DlgLaserTube::on_pushButton_addTubePower_clicked()
{
    ILog_WriteLogF(0, "pushButton_addTubePower was clicked.");
}

void DlgLaserTube::on_pushButton_ok_clicked()
{
    ILog_WriteLogF(0, "pushButton_ok was clicked.");
    const QString path = TmpParamIniPath();
    WriteIniInt(QStringLiteral("DLG_LIB_MGR"), QStringLiteral("LASER_POWER"), m_power, path);
    WriteIniInt(QStringLiteral("DLG_LIB_MGR"), QStringLiteral("LASER_TUBE"), m_type, path);
    accept();
}
