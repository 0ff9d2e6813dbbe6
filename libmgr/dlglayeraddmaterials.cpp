#include "dlglayeraddmaterials.h"
#include "ui_DlgLayerAddMaterials.h"

#include "library/crunningoptions.h"
#include "support/cmsgboxqss.h"
#include "support/directories.h"
#include "support/validator.h"

#include "ctranslator.h"
#include "ilog.h"

#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QPixmap>
#include <QSignalBlocker>
#include <QToolTip>

#include <cmath>

namespace {

constexpr int kNameLength = 40;

QString wording(const char *english)
{
    return CTranslator::GetInstance()->GetWording(QString::fromLatin1(english));
}

void showTipBelow(QWidget *field, const QString &text)
{
    QToolTip::showText(field->mapToGlobal(field->rect().bottomLeft()), text, field);
}

} // namespace

DlgLayerAddMaterials::DlgLayerAddMaterials(bool thicknessEditable, int tubeType, QWidget *parent)
    : CCraftChoiceDialog(parent)
    , ui(std::make_unique<Ui::DlgLayerAddMaterials>())
    , m_tubeType(tubeType)
    , m_iconPath(AppResourceDir() + QStringLiteral("/Res/Icon/Plywood.jpg"))
{
    ui->setupUi(this);
    m_nameValidator = std::make_unique<Validator>(ui->lineEdit_name, kNameLength,
                                                  int(Validator::CHECK_TEXT_LENGTH));
    ui->lineEdit_name->setValidator(m_nameValidator.get());
    // The thickness is typed in millimetres here, whatever the ruler unit.
    m_thicknessValidator = std::make_unique<Validator>(ui->lineEdit_Thickness, 0.0, 20.0, 2,
                                                       int(Validator::VALUE_PLAIN),
                                                       int(Validator::CHECK_DOUBLE_RANGE));
    ui->lineEdit_Thickness->setValidator(m_thicknessValidator.get());
    SetThickness(m_thickness);
    ui->lineEdit_Thickness->setEnabled(thicknessEditable);
    if (tubeType == LASER_TUBE_SEMICONDUCTOR) {
        // A diode source has a single fill process, which the deep craft stands for.
        SetSwpShallow(false);
        ui->checkBox_swpShallow->hide();
        // Close the gap the hidden box leaves: Fill takes its place, Mark
        // moves up beside it.
        QGridLayout *grid = ui->gridLayout_crafts;
        grid->removeWidget(ui->checkBox_swpDeep);
        grid->removeWidget(ui->checkBox_vision);
        grid->addWidget(ui->checkBox_swpDeep, 1, 0);
        grid->addWidget(ui->checkBox_vision, 1, 1);
    }
    retranslate();
    showIcon(m_iconPath);
}

DlgLayerAddMaterials::~DlgLayerAddMaterials() = default;

void DlgLayerAddMaterials::retranslate()
{
    setWindowTitle(wording("Add material"));
    ui->label_name->setText(wording("Name"));
    ui->label_thickness->setText(wording("Thickness"));
    ui->label_icon->setText(wording("Icon"));
    ui->checkBox_cut->setText(wording("Cutting"));
    ui->checkBox_trc->setText(wording("Scoring"));
    ui->checkBox_swpShallow->setText(wording("Shallow Engrave"));
    ui->checkBox_swpDeep->setText(m_tubeType == LASER_TUBE_SEMICONDUCTOR ? wording("Fill")
                                                                         : wording("Deep Engrave"));
    ui->checkBox_vision->setText(wording("Mark"));
    ui->pushButton_ok->setText(wording("OK"));
}

void DlgLayerAddMaterials::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    CCraftChoiceDialog::changeEvent(event);
}

void DlgLayerAddMaterials::SetThickness(double thickness)
{
    m_thickness = thickness;
    const QSignalBlocker blocker(ui->lineEdit_Thickness);
    ui->lineEdit_Thickness->setText(QString::number(thickness, 'g', 6));
}

void DlgLayerAddMaterials::SetName(const QString &name)
{
    m_name = name;
    const QSignalBlocker blocker(ui->lineEdit_name);
    ui->lineEdit_name->setText(CTranslator::GetInstance()->GetWording(name));
}

void DlgLayerAddMaterials::SetIconPath(const QString &path)
{
    m_iconPath = path;
    showIcon(path);
}

bool DlgLayerAddMaterials::showIcon(const QString &path)
{
    // Factory pictures are filed relative to the resource directory.
    QString file = path;
    if (!QFileInfo::exists(file) && path.startsWith(QLatin1String("/Res/")))
        file = AppResourceDir() + path;
    if (QPixmap(file).isNull())
        return false;
    ui->pushButton_icon->setStyleSheet(
        QStringLiteral("QPushButton{border-image: url(%1)}").arg(file));
    return true;
}

bool DlgLayerAddMaterials::LoadIcon(const QString &path)
{
    if (!showIcon(path)) {
        if (ui->pushButton_icon->isVisible()) {
            CMsgBoxQss box(QMessageBox::Information, wording("Tips"),
                           wording("Failed to open the image"), QMessageBox::Ok, this);
            box.exec();
        }
        return false;
    }
    m_iconPath = path;
    return true;
}

void DlgLayerAddMaterials::on_lineEdit_name_textChanged(const QString &text)
{
    ILog_WriteLogF(0, "lineEdit_eng was changed.");
    m_name = text;
}

void DlgLayerAddMaterials::on_lineEdit_Thickness_textChanged(const QString &text)
{
    ILog_WriteLogF(0, "lineEdit_Thickness was changed.");
    const double value = text.toDouble();
    m_thickness = std::isfinite(value) ? value : 0.0;
}

void DlgLayerAddMaterials::on_pushButton_icon_clicked()
{
    ILog_WriteLogF(0, "pushButton_icon was clicked.");
    QFileDialog dialog(this, wording("Open File"));
    dialog.setNameFilter(wording("Image Files (*.BMP *.JPG *.JPEG *.PNG)"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setLabelText(QFileDialog::Accept, wording("Open(O)"));
    dialog.setLabelText(QFileDialog::Reject, wording("Cancel"));
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QStringList files = dialog.selectedFiles();
    if (files.isEmpty() || files.first().isEmpty())
        return;
    LoadIcon(files.first());
}

void DlgLayerAddMaterials::on_pushButton_ok_clicked()
{
    ILog_WriteLogF(0, "pushButton_ok was clicked.");
    if (ui->lineEdit_name->text().isEmpty()) {
        showTipBelow(ui->lineEdit_name, wording("The material name cannot be empty"));
        return;
    }
    if (ui->lineEdit_Thickness->text().isEmpty()) {
        showTipBelow(ui->lineEdit_Thickness, wording("The material thickness cannot be empty"));
        return;
    }
    accept();
}
