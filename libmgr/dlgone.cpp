#include "dlgone.h"
#include "ui_DlgOne.h"

#include "support/validator.h"

#include "ctranslator.h"
#include "ilog.h"

#include <QEvent>

namespace {

constexpr int kMinPower = 1;
constexpr int kMaxPower = 999;

QString wording(const char *english)
{
    return CTranslator::GetInstance()->GetWording(QString::fromLatin1(english));
}

} // namespace

DlgOne::DlgOne(int value, QWidget *parent)
    : BaseDialog(parent)
    , ui(std::make_unique<Ui::DlgOne>())
    , m_value(value)
{
    ui->setupUi(this);
    retranslate();
    m_validator =
        std::make_unique<Validator>(ui->lineEdit, kMinPower, kMaxPower, int(Validator::VALUE_PLAIN),
                                    int(Validator::CHECK_INT_RANGE));
    ui->lineEdit->setValidator(m_validator.get());
    ui->lineEdit->setText(QStringLiteral("%1").arg(value));
}

DlgOne::~DlgOne() = default;

void DlgOne::retranslate()
{
    setWindowTitle(wording("Laser power"));
    ui->label->setText(wording("Laser power"));
    ui->pushButton_ok->setText(wording("Ok"));
    ui->pushButton_cancel->setText(wording("Cancel"));
}

void DlgOne::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    BaseDialog::changeEvent(event);
}

void DlgOne::on_pushButton_ok_clicked()
{
    ILog_WriteLogF(0, "pushButton_ok was changed.");
    bool ok = false;
    int value = ui->lineEdit->text().toInt(&ok, 10);
    if (!ok)
        value = 0;
    else if (value < kMinPower)
        // What leaving the field would have written; Enter confirms without
        // leaving it.
        value = kMinPower;
    m_value = value;
    accept();
}

void DlgOne::on_pushButton_cancel_clicked()
{
    ILog_WriteLogF(0, "pushButton_cancel was changed.");
    reject();
}
