#include "clayerparameditor.h"

#include "cparamfields.h"

#include "library/clayercontext.h"
#include "support/settings.h"

#include "ilog.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>

namespace {

const QString kBlockGroup = QStringLiteral("BLOCK");
const QString kBlockKey = QStringLiteral("BLOCK_PROCESS_PARAM");

QString tubeName(int type)
{
    switch (type) {
    case 1:
    case 2:
        return QStringLiteral("RF");
    case 3:
        return QStringLiteral("Fiber");
    case 4:
        return QStringLiteral("Semiconductor laser");
    default:
        return QStringLiteral("Glass");
    }
}

} // namespace

CLayerParamEditor::CLayerParamEditor(QWidget *parent)
    : QWidget(parent)
{}

CLayerParamEditor::~CLayerParamEditor() = default;

void CLayerParamEditor::setUpCommon()
{
    m_fields = std::make_unique<CParamFields>(g_LayerContext.m_unitMode);
    connect(m_fields.get(), &CParamFields::Edited, this, &CLayerParamEditor::DataChange);

    m_laserCombo = findChild<QComboBox *>(QStringLiteral("comboBox_laser"));
    m_tubeLabel = findChild<QLabel *>(QStringLiteral("label_tube"));
    m_laserEnable = findChild<QAbstractButton *>(QStringLiteral("checkBox_laserEnable"));
    m_lock = findChild<QAbstractButton *>(QStringLiteral("checkBox_lock"));
    m_save = findChild<QAbstractButton *>(QStringLiteral("pushButton_save"));
    Q_ASSERT(m_laserCombo && m_tubeLabel && m_laserEnable && m_lock && m_save);

    // Any non-zero value locks, whoever wrote it.
    m_locked = ReadIniInt(kBlockGroup, kBlockKey, 0, UserParamIniPath()) != 0;
}

void CLayerParamEditor::finishSetUp()
{
    CParamFields::RememberWordings(this);
    CParamFields::Translate(this);
    m_lock->setChecked(m_locked);
    updateLaserTexts();
    applyState();
    showLayer(m_layer);
}

CLayerParam CLayerParamEditor::currentLayer() const
{
    CLayerParam layer = m_layer;
    m_fields->Collect(layer, m_laser);
    return layer;
}

void CLayerParamEditor::showLayer(const CLayerParam &layer)
{
    m_layer = layer;
    m_fields->Show(m_layer, m_laser);
}

void CLayerParamEditor::SetTubeType(int tube)
{
    m_tube = tube;
    updateLaserTexts();
}

int CLayerParamEditor::TubeType() const
{
    if (m_tube >= 0)
        return m_tube;
    const LaserTypeCodes types = ReadLaserTypes();
    return m_laser == 2 ? types.laser2 : types.laser1;
}

void CLayerParamEditor::SetFirstLaser(bool first)
{
    m_wantFirst = first;
    selectLaser(m_dual && !first ? 2 : 1);
}

void CLayerParamEditor::SetDualLaser(bool dual)
{
    m_dual = dual;
    selectLaser(m_dual && !m_wantFirst ? 2 : 1);
    updateLaserTexts();
}

void CLayerParamEditor::SetEditable(bool editable)
{
    m_editable = editable;
    applyState();
}

void CLayerParamEditor::selectLaser(int laser)
{
    if (laser == m_laser)
        return;
    // The values typed for the laser that goes out of view stay in the
    // scratch layer.
    m_fields->Collect(m_layer, m_laser);
    m_laser = laser;
    m_fields->Show(m_layer, m_laser);
    updateLaserTexts();
}

void CLayerParamEditor::applyState()
{
    m_fields->SetState(m_editable, m_locked);
    m_save->setEnabled(m_editable);
}

void CLayerParamEditor::updateLaserTexts()
{
    m_laserCombo->setVisible(m_dual);
    m_laserEnable->setVisible(m_dual);
    m_laserCombo->setCurrentIndex(m_laser - 1);
    m_tubeLabel->setText(CParamFields::Wording(tubeName(TubeType())));
}

void CLayerParamEditor::on_comboBox_laser_activated(int index)
{
    ILog_WriteLogF(0, "comboBox_laser was changed.");
    m_wantFirst = index != 1;
    selectLaser(m_dual && index == 1 ? 2 : 1);
}

void CLayerParamEditor::on_checkBox_lock_clicked(bool checked)
{
    ILog_WriteLogF(0, "checkBox_lock was clicked.");
    m_locked = checked;
    applyState();
}

void CLayerParamEditor::on_pushButton_save_clicked()
{
    ILog_WriteLogF(0, "pushButton_save was clicked.");
    WriteIniInt(kBlockGroup, kBlockKey, m_locked ? 1 : 0, UserParamIniPath());
    emit SigSaveUserPar();
}

void CLayerParamEditor::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange && m_fields) {
        CParamFields::Translate(this);
        updateLaserTexts();
        retranslate();
    }
    QWidget::changeEvent(event);
}

namespace {

template <typename T> T *named(const QWidget *form, const char *name)
{
    return form->findChild<T *>(QLatin1String(name));
}

} // namespace

template <typename Block, typename Speed, typename Passes>
void CLayerParamEditor::addLaserFields(Block CLayerParam::*block, Speed Block::*speed,
                                       double speedLimit, const char *secondPower,
                                       Passes Block::*passes)
{
    using F = CParamFields;
    using L = LaserParam;
    CParamFields &f = fields();
    auto edit = [this](const char *name) { return named<QLineEdit>(this, name); };
    f.AddEdit(edit("lineEdit_speed"), F::KIND_SPEED, 0.0, speedLimit, 2, BlockField(block, speed),
              named<QLabel>(this, "label_speedUnit"));
    f.AddEdit(edit("lineEdit_maxPower"), F::KIND_NUMBER, 0.1, 100.0, 1,
              LaserField(block, &L::POWER_MAX));
    f.AddEdit(edit(secondPower), F::KIND_NUMBER, 0.1, 100.0, 1, LaserField(block, &L::POWER_MIN));
    f.AddCombo(named<QComboBox>(this, "comboBox_airAssist"), BlowField());
    f.AddEdit(edit("lineEdit_passes"), F::KIND_INTEGER, 1, 100, 0, BlockField(block, passes));
    f.AddCheck(m_laserEnable, LaserField(block, &L::ENABLE));

    f.AddEdit(edit("lineEdit_frequency"), F::KIND_INTEGER, 1, 1000000, 0,
              LaserField(block, &L::FREQ));
    f.AddEdit(edit("lineEdit_pulseWidth"), F::KIND_INTEGER, 0, 100000, 0,
              LaserField(block, &L::PULSE_WIDTH));
    f.AddEdit(edit("lineEdit_jumpDelay"), F::KIND_INTEGER, 0, 100000, 0,
              LaserField(block, &L::JUMP_DELAY));
    f.AddEdit(edit("lineEdit_cornerDelay"), F::KIND_INTEGER, 0, 100000, 0,
              LaserField(block, &L::CORNER_DELAY));
}

template <typename Block> void CLayerParamEditor::addFocusFields(Block CLayerParam::*block)
{
    CParamFields &f = fields();
    const double height = ReadIniInt(QStringLiteral("FACTORY_PARAM_MOTOR"),
                                     QStringLiteral("MOTOR_SIZE_3"), 99, FactoryParamIniPath());
    auto *dynamicFocus = named<QAbstractButton>(this, "checkBox_dynamicFocus");
    auto *penDown = named<QAbstractButton>(this, "checkBox_penDown");
    auto *penUp = named<QAbstractButton>(this, "checkBox_penUp");
    auto *processing = named<QDoubleSpinBox>(this, "doubleSpinBox_processingFocus");
    auto *safety = named<QDoubleSpinBox>(this, "doubleSpinBox_safetyFocus");
    f.AddCheck(dynamicFocus, PenField(block, &PenParam::ENABLE_PEN_UP_DOWN));
    f.AddCheck(penDown, PenField(block, &PenParam::ENABLE_PEN_DOWN));
    f.AddHeight(processing, height, PenField(block, &PenParam::PEN_DOWN_HRIGHT),
                named<QLabel>(this, "label_processingFocusUnit"));
    f.AddCheck(penUp, PenField(block, &PenParam::ENABLE_PEN_UP));
    f.AddHeight(safety, height, PenField(block, &PenParam::PEN_UP_HRIGHT),
                named<QLabel>(this, "label_safetyFocusUnit"));
    f.AddDependency(dynamicFocus, {penDown, penUp});
    f.AddDependency(penDown, {processing});
    f.AddDependency(penUp, {safety});
}

template void CLayerParamEditor::addLaserFields(CutParam CLayerParam::*, double CutParam::*, double,
                                                const char *, qint32 CutParam::*);
template void CLayerParamEditor::addLaserFields(SweepParam CLayerParam::*, double SweepParam::*,
                                                double, const char *,
                                                qint32 SweepParam::*);
template void CLayerParamEditor::addFocusFields(CutParam CLayerParam::*);
template void CLayerParamEditor::addFocusFields(SweepParam CLayerParam::*);
