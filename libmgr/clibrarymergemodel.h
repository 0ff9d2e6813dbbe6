#pragma once

#include "library/librarymerge.h"

#include <QAbstractTableModel>

// The rows of a library merge as a table: a tick box per row that toggles
// whether Apply() takes it, then where the row is and what it changes.
// Reads the merge's rows in place, so thousands of rows cost no item objects.
class CLibraryMergeModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum EColumn {
        ColumnApply,
        ColumnLaser,
        ColumnMaterial,
        ColumnThickness,
        ColumnCraft,
        ColumnCaption,
        ColumnOld,
        ColumnNew,
        ColumnCount
    };

    explicit CLibraryMergeModel(CLibraryMerge *merge, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    // Ticks every row, or unticks the conflicts only.
    void TickAll();
    void UntickConflicts();
    int TickedCount() const;
    // Header and mark texts follow the language; the rows' own texts were
    // translated when the merge was made.
    void Retranslate();

signals:
    // A row was ticked or unticked through the view.
    void SigRowToggled(int row, bool ticked);
    // Any change of the ticks, the view's or TickAll/UntickConflicts.
    void SigTicksChanged();

private:
    void setAccepted(bool accepted, bool conflictsOnly);

    CLibraryMerge *m_merge;
};
