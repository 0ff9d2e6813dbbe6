#pragma once

#include "support/basedialog.h"

#include <memory>

class CLibraryMerge;
class CLibraryMergeModel;

namespace Ui {
class DlgLibraryMerge;
}

// Shows what importing a library would change before anything is written:
// one row per change, ticked when the file's value is taken. Conflicts (sets
// the user changed) start unticked and show in red. Save accepts the dialog
// with the ticks left in the merge; Cancel rejects it.
class DlgLibraryMerge : public BaseDialog
{
    Q_OBJECT

public:
    DlgLibraryMerge(CLibraryMerge *merge, QWidget *parent = nullptr);
    ~DlgLibraryMerge() override;

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private slots:
    void on_pushButton_save_clicked();
    void on_pushButton_cancel_clicked();
    void on_pushButton_tickAll_clicked();
    void on_pushButton_untickConflicts_clicked();

private:
    void retranslate();
    void updateCount();
    void fitColumns();

    std::unique_ptr<Ui::DlgLibraryMerge> ui;
    CLibraryMerge *m_merge;
    CLibraryMergeModel *m_model;
    bool m_fitted = false;
};
