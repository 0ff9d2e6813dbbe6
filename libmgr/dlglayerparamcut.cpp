#include "dlglayerparamcut.h"
#include "ui_DlgLayerParamCut.h"

#include "cparamfields.h"

#include "module/layerlibrarysets.h"
#include "support/settings.h"

#include <algorithm>

namespace {

const QString kMotorGroup = QStringLiteral("FACTORY_PARAM_MOTOR");

void setItemValues(QComboBox *combo, std::initializer_list<int> values)
{
    int index = 0;
    for (int value : values)
        combo->setItemData(index++, value);
}

} // namespace

DlgLayerParamCut::DlgLayerParamCut(QWidget *parent)
    : CLayerParamEditor(parent)
    , ui(new Ui::DlgLayerParamCut)
{
    ui->setupUi(this);
    setUpCommon();
    // The slower of the two axes bounds a cut.
    const QString path = FactoryParamIniPath();
    m_speedLimit =
        std::min(ReadIniInt(kMotorGroup, QStringLiteral("MOTOR_SPEED_MAX_1"), 200, path),
                 ReadIniInt(kMotorGroup, QStringLiteral("MOTOR_SPEED_MAX_2"), 200, path));
    addFields();
    finishSetUp();
}

DlgLayerParamCut::~DlgLayerParamCut() = default;

void DlgLayerParamCut::addFields()
{
    using F = CParamFields;
    using L = LaserParam;
    const auto cut = &CLayerParam::CUT;
    CParamFields &f = fields();

    setItemValues(ui->comboBox_airAssist, {1, 0});
    setItemValues(ui->comboBox_leadType, {0, 1});
    setItemValues(ui->comboBox_compensationDirection, {1, 0});

    addLaserFields(cut, &CutParam::CUT_SPEED, m_speedLimit, "lineEdit_cornerPower",
                   &CutParam::CUTTING_NUMBER);

    f.AddCheck(ui->checkBox_dwellMode, LaserField(cut, &L::DWELL_MODE));
    f.AddCheck(ui->checkBox_laserOn, LaserField(cut, &L::DWELL_ON));
    f.AddCheck(ui->checkBox_startDwell, LaserField(cut, &L::START_DWELL));
    f.AddEdit(ui->lineEdit_startDwellTime, F::KIND_INTEGER, 0, 100000, 0,
              LaserField(cut, &L::START_DWELL_TIME));
    f.AddCheck(ui->checkBox_endDwell, LaserField(cut, &L::END_DWELL));
    f.AddEdit(ui->lineEdit_endDwellTime, F::KIND_INTEGER, 0, 100000, 0,
              LaserField(cut, &L::END_DWELL_TIME));
    f.AddEdit(ui->lineEdit_dwellPower, F::KIND_NUMBER, 0.0, 100.0, 1,
              LaserField(cut, &L::DWELL_POWER));

    f.AddEdit(ui->lineEdit_sealLength, F::KIND_LENGTH, 0.0, 20.0, 2,
              BlockField(cut, &CutParam::CUT_JOINT_LEN), ui->label_sealLengthUnit);
    f.AddCheck(ui->checkBox_tabs, BlockField(cut, &CutParam::CUT_BRIDGES));
    f.AddEdit(ui->lineEdit_tabSize, F::KIND_LENGTH, 0.0, 20.0, 2,
              BlockField(cut, &CutParam::CUT_BRIDGES_LEN), ui->label_tabSizeUnit);
    f.AddEdit(ui->lineEdit_tabDistance, F::KIND_LENGTH, 0.0, 4000.0, 2,
              BlockField(cut, &CutParam::CUT_BRIDGES_SPACE), ui->label_tabDistanceUnit);
    f.AddCheck(ui->checkBox_leads, BlockField(cut, &CutParam::USE_GUIDE_LINE));
    f.AddCombo(ui->comboBox_leadType, BlockField(cut, &CutParam::GUIDE_TYPE));
    f.AddCheck(ui->checkBox_leadIn, BlockField(cut, &CutParam::IS_GUIDE_IN));
    f.AddEdit(ui->lineEdit_leadInLength, F::KIND_LENGTH, 0.0, 500.0, 2,
              BlockField(cut, &CutParam::GUIDE_IN_LEN), ui->label_leadInLengthUnit);
    f.AddCheck(ui->checkBox_leadOut, BlockField(cut, &CutParam::IS_GUIDE_OUT));
    f.AddEdit(ui->lineEdit_leadOutLength, F::KIND_LENGTH, 0.0, 500.0, 2,
              BlockField(cut, &CutParam::GUIDE_OUT_LEN), ui->label_leadOutLengthUnit);

    addFocusFields(cut);
    f.AddCheck(ui->checkBox_compensation, BlockField(cut, &CutParam::CUT_COMPENSATE_ENABLE));
    f.AddCombo(ui->comboBox_compensationDirection,
               BlockField(cut, &CutParam::CUT_COMPENSATE_OUTWARD));
    f.AddEdit(ui->lineEdit_compensationSize, F::KIND_LENGTH, 0.01, 5.0, 2,
              BlockField(cut, &CutParam::CUT_COMPENSATE_SIZE), ui->label_compensationSizeUnit);

    f.AddDependency(ui->checkBox_dwellMode, {ui->checkBox_laserOn, ui->checkBox_startDwell,
                                             ui->checkBox_endDwell, ui->lineEdit_dwellPower});
    f.AddDependency(ui->checkBox_startDwell, {ui->lineEdit_startDwellTime});
    f.AddDependency(ui->checkBox_endDwell, {ui->lineEdit_endDwellTime});
    f.AddDependency(ui->checkBox_tabs, {ui->lineEdit_tabSize, ui->lineEdit_tabDistance});
    f.AddDependency(ui->checkBox_leads,
                    {ui->comboBox_leadType, ui->checkBox_leadIn, ui->checkBox_leadOut});
    f.AddDependency(ui->checkBox_leadIn, {ui->lineEdit_leadInLength});
    f.AddDependency(ui->checkBox_leadOut, {ui->lineEdit_leadOutLength});
    f.AddDependency(ui->checkBox_compensation,
                    {ui->comboBox_compensationDirection, ui->lineEdit_compensationSize});
}

void DlgLayerParamCut::LoadSet(const CLibCutSet &set)
{
    // Through a layer, so that sets and layers share one field table; what a
    // set does not carry (passes, laser switches) stays as last loaded.
    CLayerParam layer = currentLayer();
    ApplyCutSet(set, layer);
    showLayer(layer);
}

void DlgLayerParamCut::ReadSet(CLibCutSet &set) const
{
    FillCutSet(currentLayer(), set);
}

void DlgLayerParamCut::LoadLayer(const CLayerParam &layer)
{
    showLayer(layer);
}

void DlgLayerParamCut::ReadLayer(CLayerParam &layer) const
{
    const CLayerParam shown = currentLayer();
    layer.BLOW = shown.BLOW;
    layer.CUT = shown.CUT;
}
