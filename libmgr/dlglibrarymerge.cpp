#include "dlglibrarymerge.h"
#include "ui_DlgLibraryMerge.h"

#include "clibrarymergemodel.h"

#include "library/librarymerge.h"

#include "ctranslator.h"
#include "ilog.h"

#include <QEvent>
#include <QHeaderView>
#include <QStyle>

namespace {

// Rows measured when the columns are fitted (about 0.1 s per thousand):
// the whole of a usual merge, a bounded wait on a huge one.
constexpr int kMeasuredRows = 5000;
// Room between the widest text of a column and the next column.
constexpr int kColumnGap = 12;

QString wording(const char *english)
{
    return CTranslator::GetInstance()->GetWording(QString::fromLatin1(english));
}

} // namespace

DlgLibraryMerge::DlgLibraryMerge(CLibraryMerge *merge, QWidget *parent)
    : BaseDialog(parent)
    , ui(std::make_unique<Ui::DlgLibraryMerge>())
    , m_merge(merge)
    , m_model(new CLibraryMergeModel(merge, this))
{
    ui->setupUi(this);
    ui->tableView->setModel(m_model);
    QHeaderView *header = ui->tableView->horizontalHeader();
    header->setResizeContentsPrecision(kMeasuredRows);
    header->setStretchLastSection(true);
    ui->tableView->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    ui->pushButton_untickConflicts->setEnabled(merge->ConflictCount() > 0);
    connect(m_model, &CLibraryMergeModel::SigRowToggled, this, [](int row, bool ticked) {
        ILog_WriteLogF(0, "%s", "tableView was changed.");
        ILog_WriteLogF(1, "merge row %d %s", row, ticked ? "ticked" : "unticked");
    });
    connect(m_model, &CLibraryMergeModel::SigTicksChanged, this, &DlgLibraryMerge::updateCount);
    retranslate();
}

DlgLibraryMerge::~DlgLibraryMerge() = default;

void DlgLibraryMerge::retranslate()
{
    setWindowTitle(wording("Merge library"));
    ui->label->setText(wording("The file changes your library as follows. Ticked rows are taken "
                               "over when you save; conflicts, in red, are sets you changed "
                               "yourself and keep your values unless ticked."));
    ui->pushButton_tickAll->setText(wording("Tick all"));
    ui->pushButton_untickConflicts->setText(wording("Untick conflicts"));
    ui->pushButton_save->setText(wording("Save"));
    ui->pushButton_cancel->setText(wording("Cancel"));
    m_model->Retranslate();
    updateCount();
}

void DlgLibraryMerge::updateCount()
{
    ui->label_count->setText(wording("Changes: %1, conflicts: %2, ticked: %3")
                                 .arg(m_model->rowCount())
                                 .arg(m_merge->ConflictCount())
                                 .arg(m_model->TickedCount()));
}

void DlgLibraryMerge::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        retranslate();
        m_fitted = false;
        if (isVisible())
            fitColumns();
    }
    BaseDialog::changeEvent(event);
}

void DlgLibraryMerge::showEvent(QShowEvent *event)
{
    if (!m_fitted)
        fitColumns();
    BaseDialog::showEvent(event);
}

void DlgLibraryMerge::fitColumns()
{
    // Grows the dialog, within the screen, until every column shows its
    // widest text: a cut value would hide what the merge changes.
    m_fitted = true;
    QTableView *view = ui->tableView;
    QHeaderView *header = view->horizontalHeader();
    view->resizeColumnsToContents();
    int wanted = view->frameWidth() * 2;
    for (int column = 0; column < header->count(); ++column) {
        const int width = header->sectionSize(column) + kColumnGap;
        header->resizeSection(column, width);
        wanted += width;
    }
    wanted += view->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, view);
    const int missing = wanted - view->width();
    GrowWidth(missing);
}

void DlgLibraryMerge::on_pushButton_save_clicked()
{
    ILog_WriteLogF(0, "%s", "pushButton_save was clicked.");
    accept();
}

void DlgLibraryMerge::on_pushButton_cancel_clicked()
{
    ILog_WriteLogF(0, "%s", "pushButton_cancel was clicked.");
    reject();
}

void DlgLibraryMerge::on_pushButton_tickAll_clicked()
{
    ILog_WriteLogF(0, "%s", "pushButton_tickAll was clicked.");
    m_model->TickAll();
}

void DlgLibraryMerge::on_pushButton_untickConflicts_clicked()
{
    ILog_WriteLogF(0, "%s", "pushButton_untickConflicts was clicked.");
    m_model->UntickConflicts();
}
