#pragma once

#include "ccraftchoicedialog.h"

#include <memory>

namespace Ui {
class DlgLayerAddMaterials;
}
class Validator;

// Gathers a new material (or the edits of one): name, first thickness,
// picture and the crafts it offers. The caller writes the library.
class DlgLayerAddMaterials : public CCraftChoiceDialog
{
    Q_OBJECT

public:
    DlgLayerAddMaterials(bool thicknessEditable, int tubeType, QWidget *parent = nullptr);
    ~DlgLayerAddMaterials() override;

    void SetThickness(double thickness);
    void SetName(const QString &name);
    // Edit mode: the material's picture ("/Res/..." paths below the resource
    // directory); shown when it loads, kept as given either way.
    void SetIconPath(const QString &path);

    double GetThickness() const { return m_thickness; }
    QString GetName() const { return m_name; }
    QString GetIconPath() const { return m_iconPath; }

    // Takes the picture and shows it on the icon button. A file that is not
    // an image changes nothing and, while the button is visible, says so in a
    // message box: a broken path must not reach the library.
    bool LoadIcon(const QString &path);

protected:
    void changeEvent(QEvent *event) override;

private slots:
    void on_lineEdit_name_textChanged(const QString &text);
    void on_lineEdit_Thickness_textChanged(const QString &text);
    void on_pushButton_icon_clicked();
    void on_pushButton_ok_clicked();

private:
    void retranslate();
    bool showIcon(const QString &path);

    std::unique_ptr<Ui::DlgLayerAddMaterials> ui;
    std::unique_ptr<Validator> m_nameValidator;
    std::unique_ptr<Validator> m_thicknessValidator;
    int m_tubeType = 0;
    double m_thickness = 3.0;
    QString m_name;
    QString m_iconPath;
};
