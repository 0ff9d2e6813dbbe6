#pragma once

#include "ccraftchoicedialog.h"

#include <memory>

namespace Ui {
class DlgLayerAddThickness;
}
class Validator;

// Asks for a new thickness of a material and the crafts it offers. The
// thickness is kept in millimetres and shown in the host's unit.
class DlgLayerAddThickness : public CCraftChoiceDialog
{
    Q_OBJECT

public:
    explicit DlgLayerAddThickness(QWidget *parent = nullptr);
    ~DlgLayerAddThickness() override;

    void SetThickness(double mm);

    // Millimetres; 0 when the field was left empty.
    double GetThickness() const { return m_thickness; }

protected:
    void changeEvent(QEvent *event) override;

private slots:
    void on_lineEdit_Thickness_textChanged(const QString &text);
    void on_pushButton_OK_clicked();

private:
    void retranslate();

    std::unique_ptr<Ui::DlgLayerAddThickness> ui;
    std::unique_ptr<Validator> m_validator;
    double m_thickness = 3.0;
};
