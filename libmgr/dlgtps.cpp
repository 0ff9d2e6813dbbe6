#include "dlgtps.h"
#include "ui_DlgTps.h"

#include "ctranslator.h"
#include "ilog.h"

#include <QEvent>
#include <QHeaderView>
#include <QTreeWidget>
#include <QTreeWidgetItem>

#include <algorithm>

namespace {

// Room between the widest text of a column and the next column.
constexpr int kColumnGap = 12;

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
    QTreeWidget *tree = ui->treeWidget;
    tree->setColumnCount(applyToLayers ? 4 : 3);
    tree->header()->setSectionResizeMode(QHeaderView::Stretch);
    // The layer cell holds a two-digit number: its room goes to the long
    // per-laser captions.
    if (applyToLayers)
        tree->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    tree->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
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

void DlgTps::showEvent(QShowEvent *event)
{
    fitColumns();
    BaseDialog::showEvent(event);
}

void DlgTps::fitColumns()
{
    // Grows the dialog until the widest text fits in every stretched column,
    // within the screen: a cut caption or value would defeat the summary.
    QTreeWidget *tree = ui->treeWidget;
    // The tree hides the measure its base class offers to everyone.
    const QAbstractItemView *view = tree;
    QHeaderView *header = tree->header();
    int fixed = 0;
    int widest = 0;
    int stretched = 0;
    for (int column = 0; column < tree->columnCount(); ++column) {
        const int wanted =
            std::max(view->sizeHintForColumn(column), header->sectionSizeHint(column));
        if (header->sectionResizeMode(column) == QHeaderView::Stretch) {
            widest = std::max(widest, wanted + kColumnGap);
            ++stretched;
        } else {
            fixed += wanted;
        }
    }
    const int missing = fixed + widest * stretched - tree->viewport()->width();
    GrowWidth(missing);
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
