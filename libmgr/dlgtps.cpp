#include "dlgtps.h"
#include "ui_DlgTps.h"

#include "ctranslator.h"
#include "ilog.h"

#include <QEvent>
#include <QHeaderView>
#include <QTreeWidgetItem>

namespace {

QString wording(const char *english)
{
    return CTranslator::GetInstance()->GetWording(QString::fromLatin1(english));
}

} // namespace

DlgTps::DlgTps(QWidget *parent, bool applyToLayers)
    : BaseDialog(parent)
    , ui(std::make_unique<Ui::DlgTps>())
    , m_applyToLayers(applyToLayers)
{
    ui->setupUi(this);
    ui->treeWidget->setColumnCount(applyToLayers ? 4 : 3);
    ui->treeWidget->header()->setSectionResizeMode(QHeaderView::Stretch);
    retranslate();
}

DlgTps::~DlgTps() = default;

void DlgTps::retranslate()
{
    setWindowTitle(wording("Tips"));
    // Both texts are the program's own, the missing blank included.
    ui->label->setText(
        m_applyToLayers
            ? wording("The parameters are modified as follows,and the new parameters will be "
                      "used for processing:")
            : wording("The temporary parameters of the current material will be saved as "
                      "personalized parameters.\nPlease check and save the following changes:"));
    QStringList headers;
    if (m_applyToLayers)
        headers << wording("Layer");
    headers << wording("Parameter name") << wording("Original") << wording("Modified");
    ui->treeWidget->setHeaderLabels(headers);
    ui->btnSave->setText(wording("Save"));
}

void DlgTps::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    BaseDialog::changeEvent(event);
}

void DlgTps::AddRow(const QStringList &texts)
{
    auto *item = new QTreeWidgetItem(ui->treeWidget);
    for (int i = 0; i < texts.size(); ++i)
        item->setText(i, texts.at(i));
}

void DlgTps::AddRows(const QList<QStringList> &rows)
{
    for (const QStringList &row : rows)
        AddRow(row);
}

int DlgTps::RowCount() const
{
    return ui->treeWidget->topLevelItemCount();
}

void DlgTps::on_btnSave_clicked()
{
    ILog_WriteLogF(0, "btnSave was clicked.");
    accept();
}
