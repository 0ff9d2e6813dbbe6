#pragma once

#include "support/basedialog.h"

#include <QStringList>

#include <memory>

namespace Ui {
class DlgTps;
}

// Lists parameter changes before they take effect; "Save" confirms.
// Applying to layers adds a "Layer" column in front.
class DlgTps : public BaseDialog
{
    Q_OBJECT

public:
    DlgTps(QWidget *parent, bool applyToLayers);
    ~DlgTps() override;

    // One row; text i goes into column i.
    void AddRow(const QStringList &texts);
    void AddRows(const QList<QStringList> &rows);
    int RowCount() const;
    bool AppliesToLayers() const { return m_applyToLayers; }

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private slots:
    void on_btnSave_clicked();

private:
    void retranslate();
    void fitColumns();

    std::unique_ptr<Ui::DlgTps> ui;
    bool m_applyToLayers = false;
};
