#pragma once

#include "support/basedialog.h"

#include <memory>

namespace Ui {
class DlgLayerAddThickness;
}
class Validator;

// Asks for a new thickness of a material and the crafts it offers. The
// thickness is kept in millimetres and shown in the host's unit.
class DlgLayerAddThickness : public BaseDialog
{
    Q_OBJECT

public:
    explicit DlgLayerAddThickness(QWidget *parent = nullptr);
    ~DlgLayerAddThickness() override;

    void SetCut(bool on);
    void SetTrc(bool on);
    void SetSwpDeep(bool on);
    void SetVision(bool on);
    void SetSwpShallow(bool on);
    void SetThickness(double mm);

    bool IsCut() const { return m_cut; }
    bool IsTrc() const { return m_trc; }
    bool IsSwpDeep() const { return m_swpDeep; }
    bool IsVision() const { return m_vision; }
    bool IsSwpShallow() const { return m_swpShallow; }
    // Millimetres; 0 when the field was left empty.
    double GetThickness() const { return m_thickness; }

protected:
    void changeEvent(QEvent *event) override;

private slots:
    void on_checkBox_cut_clicked(bool checked);
    void on_checkBox_trc_clicked(bool checked);
    void on_checkBox_swpDeep_clicked(bool checked);
    void on_checkBox_swpShallow_clicked(bool checked);
    void on_checkBox_vision_clicked(bool checked);
    void on_lineEdit_Thickness_textChanged(const QString &text);
    void on_pushButton_OK_clicked();

private:
    void retranslate();

    std::unique_ptr<Ui::DlgLayerAddThickness> ui;
    std::unique_ptr<Validator> m_validator;
    bool m_cut = true;
    bool m_trc = true;
    bool m_swpDeep = true;
    bool m_vision = true;
    bool m_swpShallow = true;
    double m_thickness = 3.0;
};
