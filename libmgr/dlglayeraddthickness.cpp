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
    : CCraftChoiceDialog(parent)
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
    CCraftChoiceDialog::changeEvent(event);
}

void DlgLayerAddThickness::SetThickness(double mm)
{
    m_thickness = mm;
    const double shown = inchMode() ? mm / kMmPerInch : Round2(mm);
    // Showing must not store the rounded text back over the exact value.
    const QSignalBlocker blocker(ui->lineEdit_Thickness);
    ui->lineEdit_Thickness->setText(QString::number(shown, 'g', 6));
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
