#pragma once

#include "support/basedialog.h"

#include <memory>

namespace Ui {
class DlgOne;
}
class Validator;

// Asks for one laser power in watts, 1 to 999.
class DlgOne : public BaseDialog
{
    Q_OBJECT

public:
    explicit DlgOne(int value, QWidget *parent = nullptr);
    ~DlgOne() override;

    // The power given at construction, or the one confirmed with OK: 0 when
    // the field was left empty.
    int Value() const { return m_value; }

protected:
    void changeEvent(QEvent *event) override;

private slots:
    void on_pushButton_ok_clicked();
    void on_pushButton_cancel_clicked();

private:
    void retranslate();

    std::unique_ptr<Ui::DlgOne> ui;
    std::unique_ptr<Validator> m_validator;
    int m_value = 0;
};
