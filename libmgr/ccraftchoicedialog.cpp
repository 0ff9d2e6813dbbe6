#include "ccraftchoicedialog.h"

#include "ilog.h"

#include <QCheckBox>

namespace {

const char *const kBoxNames[kLibCraftCount] = {"checkBox_cut", "checkBox_trc",
                                               "checkBox_swpShallow", "checkBox_swpDeep",
                                               "checkBox_vision"};

} // namespace

void CCraftChoiceDialog::setCraft(quint32 craft, bool on)
{
    m_crafts[craft] = on;
    if (auto *box = findChild<QCheckBox *>(QLatin1String(kBoxNames[craft])))
        box->setChecked(on);
}

void CCraftChoiceDialog::on_checkBox_cut_clicked(bool checked)
{
    ILog_WriteLogF(0, "checkBox_cut was clicked.");
    m_crafts[LIB_CRAFT_CUTTING] = checked;
}

void CCraftChoiceDialog::on_checkBox_trc_clicked(bool checked)
{
    ILog_WriteLogF(0, "checkBox_trc was clicked.");
    m_crafts[LIB_CRAFT_TRACING] = checked;
}

void CCraftChoiceDialog::on_checkBox_swpShallow_clicked(bool checked)
{
    ILog_WriteLogF(0, "checkBox_swpShallow was clicked.");
    m_crafts[LIB_CRAFT_SHALLOW] = checked;
}

void CCraftChoiceDialog::on_checkBox_swpDeep_clicked(bool checked)
{
    ILog_WriteLogF(0, "checkBox_swpDeep was clicked.");
    m_crafts[LIB_CRAFT_DEEP] = checked;
}

void CCraftChoiceDialog::on_checkBox_vision_clicked(bool checked)
{
    ILog_WriteLogF(0, "checkBox_Vision was clicked.");
    m_crafts[LIB_CRAFT_MARK] = checked;
}
