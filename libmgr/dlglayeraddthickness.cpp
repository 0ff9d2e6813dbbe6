#include "dlglayeraddthickness.h"
#include "ui_DlgLayerAddThickness.h"

#include "library/clayercontext.h"
#include "support/settings.h"
#include "support/units.h"
#include "support/validator.h"

#include "ctranslator.h"
#include "ilog.h"

#include <QEvent>
#include <QSignalBlocker>

namespace {

QString wording(const char *english)
{
    return CTranslator::GetInstance()->GetWording(QString::fromLatin1(english));
}

bool inchMode()
{
    return IsInchUnit(g_LayerContext.m_unitMode);
}

} // namespace

DlgLayerAddThickness::DlgLayerAddThickness(QWidget *parent)
    : BaseDialog(parent)
    , ui(std::make_unique<Ui::DlgLayerAddThickness>())
{
    ui->setupUi(this);
    m_validator = std::make_unique<Validator>(ui->lineEdit_Thickness, 0.0, 20.0, 2,
                                              int(Validator::VALUE_LENGTH),
                                              int(Validator::CHECK_DOUBLE_RANGE));
    ui->lineEdit_Thickness->setValidator(m_validator.get());
    SetThickness(m_thickness);
    retranslate();
}

DlgLayerAddThickness::~DlgLayerAddThickness() = default;

void DlgLayerAddThickness::retranslate()
{
    setWindowTitle(wording("Custom thickness"));
    // The label follows the ruler setting, the conversion the host's unit
    // mode; in normal use both come from the same setting.
    const int ruler =
        ReadIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), 1, CfgIniPath());
    ui->label_thickness->setText(IsInchUnit(ruler) ? wording("Thickness (inch)")
                                                   : wording("Thickness (mm)"));
    ui->checkBox_cut->setText(wording("Cutting"));
    ui->checkBox_trc->setText(wording("Line"));
    ui->checkBox_swpShallow->setText(wording("Shallow"));
    ui->checkBox_swpDeep->setText(wording("Deep"));
    ui->checkBox_vision->setText(wording("Mark"));
    ui->pushButton_OK->setText(wording("OK"));
}

void DlgLayerAddThickness::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    BaseDialog::changeEvent(event);
}

void DlgLayerAddThickness::SetCut(bool on)
{
    m_cut = on;
    ui->checkBox_cut->setChecked(on);
}

void DlgLayerAddThickness::SetTrc(bool on)
{
    m_trc = on;
    ui->checkBox_trc->setChecked(on);
}

void DlgLayerAddThickness::SetSwpDeep(bool on)
{
    m_swpDeep = on;
    ui->checkBox_swpDeep->setChecked(on);
}

void DlgLayerAddThickness::SetVision(bool on)
{
    m_vision = on;
    ui->checkBox_vision->setChecked(on);
}

void DlgLayerAddThickness::SetSwpShallow(bool on)
{
    m_swpShallow = on;
    ui->checkBox_swpShallow->setChecked(on);
}

void DlgLayerAddThickness::SetThickness(double mm)
{
    m_thickness = mm;
    const double shown = inchMode() ? mm / kMmPerInch : Round2(mm);
    // Showing must not store the rounded text back over the exact value.
    const QSignalBlocker blocker(ui->lineEdit_Thickness);
    ui->lineEdit_Thickness->setText(QString::number(shown, 'g', 6));
}

void DlgLayerAddThickness::on_checkBox_cut_clicked(bool checked)
{
    ILog_WriteLogF(0, "checkBox_cut was clicked.");
    m_cut = checked;
}

void DlgLayerAddThickness::on_checkBox_trc_clicked(bool checked)
{
    ILog_WriteLogF(0, "checkBox_trc was clicked.");
    m_trc = checked;
}

void DlgLayerAddThickness::on_checkBox_swpDeep_clicked(bool checked)
{
    ILog_WriteLogF(0, "checkBox_swpDeep was clicked.");
    m_swpDeep = checked;
}

void DlgLayerAddThickness::on_checkBox_swpShallow_clicked(bool checked)
{
    ILog_WriteLogF(0, "checkBox_swpShallow was clicked.");
    m_swpShallow = checked;
}

void DlgLayerAddThickness::on_checkBox_vision_clicked(bool checked)
{
    ILog_WriteLogF(0, "checkBox_Vision was clicked.");
    m_vision = checked;
}

void DlgLayerAddThickness::on_lineEdit_Thickness_textChanged(const QString &text)
{
    ILog_WriteLogF(0, "lineEdit_Thickness was changed.");
    const double value = text.toDouble();
    m_thickness = inchMode() ? value * kMmPerInch : Round2(value);
}

void DlgLayerAddThickness::on_pushButton_OK_clicked()
{
    ILog_WriteLogF(0, "pushButton_OK was clicked.");
    accept();
}
