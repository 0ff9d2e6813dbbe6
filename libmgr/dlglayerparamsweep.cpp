#include "dlglayerparamsweep.h"
#include "ui_DlgLayerParamSweep.h"

#include "cparamfields.h"

#include "module/layerlibrarysets.h"
#include "support/settings.h"

namespace {

const QString kMotorGroup = QStringLiteral("FACTORY_PARAM_MOTOR");
const QString kSweepGroup = QStringLiteral("LASER_PARAM_SWEEP");
const QString kVertKey = QStringLiteral("SWEEP_VERT_TYPE");

} // namespace

DlgLayerParamSweep::DlgLayerParamSweep(QWidget *parent)
    : CLayerParamEditor(parent)
    , ui(new Ui::DlgLayerParamSweep)
{
    ui->setupUi(this);
    setUpCommon();
    m_speedLimit = ReadIniDouble(kMotorGroup, QStringLiteral("MOTOR_SPEED_MAX_1"), 1000.0,
                                 FactoryParamIniPath());
    addFields();
    // Sets do not carry the vertical order: it is the user's choice.
    scratchLayer().SWEEP.SWEEP_VERT_TYPE = ReadIniInt(kSweepGroup, kVertKey, 0, UserParamIniPath());
    finishSetUp();
    SetDeepMode(false);
}

DlgLayerParamSweep::~DlgLayerParamSweep() = default;

void DlgLayerParamSweep::addFields()
{
    using F = CParamFields;
    using S = SweepParam;
    const auto sweep = &CLayerParam::SWEEP;
    CParamFields &f = fields();

    ui->comboBox_airAssist->setItemData(0, 1);
    ui->comboBox_airAssist->setItemData(1, 0);
    for (QComboBox *combo : {ui->comboBox_mode, ui->comboBox_direction, ui->comboBox_resolution,
                             ui->comboBox_offsetType}) {
        for (int i = 0; i < combo->count(); ++i)
            combo->setItemData(i, i);
    }

    addLaserFields(sweep, &S::SWEEP_SPEED, m_speedLimit, "lineEdit_minPower", &S::CARVING_NUMBER);

    f.AddCombo(ui->comboBox_mode, BlockField(sweep, &S::SWEEP_TYPE));
    f.AddCombo(ui->comboBox_direction, BlockField(sweep, &S::SWEEP_VERT_TYPE));
    f.AddCombo(ui->comboBox_resolution, BlockField(sweep, &S::SWEEP_DPI));
    f.AddCheck(ui->checkBox_slope, BlockField(sweep, &S::SWEEP_ISRAMP));
    f.AddEdit(ui->lineEdit_rampLength, F::KIND_LENGTH, 0.0, 20.0, 2,
              BlockField(sweep, &S::SWEEP_INCLINE_LEN), ui->label_rampLengthUnit);
    f.AddCheck(ui->checkBox_relief, BlockField(sweep, &S::SWEEP_IS3DRELIEF));
    f.AddCheck(ui->checkBox_offset, BlockField(sweep, &S::SWEEP_OFFSET_ENGRAVING));
    f.AddCombo(ui->comboBox_offsetType, BlockField(sweep, &S::SWEEP_OFFSET_TYPE));
    f.AddEdit(ui->lineEdit_offsetStep, F::KIND_LENGTH, 0.0, 20.0, 2,
              BlockField(sweep, &S::SWEEP_STEP), ui->label_offsetStepUnit);

    addFocusFields(sweep);

    f.AddDependency(ui->checkBox_slope, {ui->lineEdit_rampLength});
    f.AddDependency(ui->checkBox_offset, {ui->comboBox_offsetType, ui->lineEdit_offsetStep});
}

void DlgLayerParamSweep::SetDeepMode(bool deep)
{
    m_deep = deep;
    const std::initializer_list<QWidget *> deepOnly = {
        ui->label_minPower, ui->lineEdit_minPower,   ui->label_minPowerUnit,
        ui->checkBox_slope, ui->lineEdit_rampLength, ui->label_rampLengthUnit};
    for (QWidget *widget : deepOnly)
        widget->setVisible(deep);
}

void DlgLayerParamSweep::LoadSet(const CLibSweepSet &set)
{
    SetDeepMode(set.key.craft == LIB_CRAFT_DEEP);
    // Through a layer, so that sets and layers share one field table; what a
    // set does not carry stays as last loaded.
    CLayerParam layer = currentLayer();
    ApplySweepSet(set, layer);
    showLayer(layer);
}

void DlgLayerParamSweep::ReadSet(CLibSweepSet &set) const
{
    FillSweepSet(currentLayer(), set);
}

void DlgLayerParamSweep::LoadLayer(const CLayerParam &layer)
{
    SetDeepMode(layer.WORK_TYPE == WORK_DEEP_ENGRAVE);
    showLayer(layer);
}

void DlgLayerParamSweep::ReadLayer(CLayerParam &layer) const
{
    const CLayerParam shown = currentLayer();
    layer.BLOW = shown.BLOW;
    layer.SWEEP = shown.SWEEP;
}

void DlgLayerParamSweep::on_comboBox_direction_activated(int index)
{
    // New layers start with the order chosen last.
    WriteIniInt(kSweepGroup, kVertKey, ui->comboBox_direction->itemData(index).toInt(),
                UserParamIniPath());
}
