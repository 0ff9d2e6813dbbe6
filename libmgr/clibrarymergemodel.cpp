#include "clibrarymergemodel.h"

#include "ctranslator.h"

#include <QBrush>
#include <QColor>

#include <algorithm>

namespace {

const char *const kHeaders[CLibraryMergeModel::ColumnCount] = {
    "Apply",   "Laser tube",     "Material", "Thickness",
    "Process", "Parameter name", "Original", "Modified"};

// Dark enough to read on the white of the view and on its selection.
const QColor kConflictColor(0xb0, 0x1c, 0x1c);

QString wording(const char *english)
{
    return CTranslator::GetInstance()->GetWording(QString::fromLatin1(english));
}

QString tubeText(quint32 tube, qint32 power)
{
    // The tube names the library manager shows; both RF kinds read "RF".
    static const char *const names[] = {"Glass", "RF", "RF", "Fiber", "Semiconductor laser"};
    const char *name = tube < std::size(names) ? names[tube] : names[0];
    return wording(name) + QLatin1Char(' ') + QString::number(power) + QLatin1Char('W');
}

QString thicknessText(double thickness)
{
    QString text = QString::number(thickness, 'f', 2);
    if (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    return text + QStringLiteral("mm");
}

} // namespace

CLibraryMergeModel::CLibraryMergeModel(CLibraryMerge *merge, QObject *parent)
    : QAbstractTableModel(parent)
    , m_merge(merge)
{}

int CLibraryMergeModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_merge->Rows().size());
}

int CLibraryMergeModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant CLibraryMergeModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    const CLibMergeRow &row = m_merge->Rows()[size_t(index.row())];
    switch (role) {
    case Qt::CheckStateRole:
        if (index.column() == ColumnApply)
            return row.accepted ? Qt::Checked : Qt::Unchecked;
        return QVariant();
    case Qt::ForegroundRole:
        return row.conflict ? QBrush(kConflictColor) : QVariant();
    case Qt::ToolTipRole:
        return row.conflict ? wording("You changed this set yourself; tick it to take the file's "
                                      "value instead of yours.")
                            : QVariant();
    case Qt::DisplayRole:
        break;
    default:
        return QVariant();
    }
    // Columns stay empty where the row is about something larger.
    const bool material = row.kind != ELibMergeKind::NewPower;
    const bool thickness = material && row.kind != ELibMergeKind::NewMaterial;
    const bool craft = thickness && row.kind != ELibMergeKind::NewThickness;
    switch (index.column()) {
    case ColumnApply:
        return row.conflict ? wording("Conflict") : QString();
    case ColumnLaser:
        return tubeText(row.key.tube, row.key.power);
    case ColumnMaterial:
        // Material names read as the library manager shows them.
        return material ? CTranslator::GetInstance()->GetWording(row.key.material) : QString();
    case ColumnThickness:
        return thickness ? thicknessText(row.key.thickness) : QString();
    case ColumnCraft:
        return craft ? MergeCraftText(row.key.craft) : QString();
    case ColumnCaption:
        return row.caption;
    case ColumnOld:
        return row.oldText;
    case ColumnNew:
        return row.newText;
    default:
        return QVariant();
    }
}

bool CLibraryMergeModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || index.column() != ColumnApply ||
        !checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return false;
    const bool ticked = value.value<Qt::CheckState>() == Qt::Checked;
    CLibMergeRow &row = m_merge->Rows()[size_t(index.row())];
    if (row.accepted == ticked)
        return true;
    row.accepted = ticked;
    emit dataChanged(index, index, {Qt::CheckStateRole});
    emit SigRowToggled(index.row(), ticked);
    emit SigTicksChanged();
    return true;
}

Qt::ItemFlags CLibraryMergeModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (index.column() == ColumnApply)
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QVariant CLibraryMergeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= ColumnCount)
        return QAbstractTableModel::headerData(section, orientation, role);
    return wording(kHeaders[section]);
}

void CLibraryMergeModel::TickAll()
{
    setAccepted(true, false);
}

void CLibraryMergeModel::UntickConflicts()
{
    setAccepted(false, true);
}

int CLibraryMergeModel::TickedCount() const
{
    const auto &rows = m_merge->Rows();
    return int(std::count_if(rows.cbegin(), rows.cend(),
                             [](const CLibMergeRow &row) { return row.accepted; }));
}

void CLibraryMergeModel::Retranslate()
{
    emit headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
    if (rowCount() > 0)
        emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

void CLibraryMergeModel::setAccepted(bool accepted, bool conflictsOnly)
{
    bool changed = false;
    for (CLibMergeRow &row : m_merge->Rows()) {
        if ((conflictsOnly && !row.conflict) || row.accepted == accepted)
            continue;
        row.accepted = accepted;
        changed = true;
    }
    if (!changed)
        return;
    emit dataChanged(index(0, ColumnApply), index(rowCount() - 1, ColumnApply),
                     {Qt::CheckStateRole});
    emit SigTicksChanged();
}
