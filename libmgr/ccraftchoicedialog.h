#pragma once

#include "library/libraryrecords.h"
#include "support/basedialog.h"

#include <array>

// The process boxes the add-material and add-thickness dialogs share. A box
// is found by its object name, so both forms keep their own layout.
class CCraftChoiceDialog : public BaseDialog
{
    Q_OBJECT

public:
    using Crafts = std::array<bool, kLibCraftCount>;

    using BaseDialog::BaseDialog;

    // Ticked processes, indexed by library craft.
    Crafts GetCrafts() const { return m_crafts; }

    bool IsCut() const { return m_crafts[LIB_CRAFT_CUTTING]; }
    bool IsTrc() const { return m_crafts[LIB_CRAFT_TRACING]; }
    bool IsSwpShallow() const { return m_crafts[LIB_CRAFT_SHALLOW]; }
    bool IsSwpDeep() const { return m_crafts[LIB_CRAFT_DEEP]; }
    bool IsVision() const { return m_crafts[LIB_CRAFT_MARK]; }
    void SetCut(bool on) { setCraft(LIB_CRAFT_CUTTING, on); }
    void SetTrc(bool on) { setCraft(LIB_CRAFT_TRACING, on); }
    void SetSwpShallow(bool on) { setCraft(LIB_CRAFT_SHALLOW, on); }
    void SetSwpDeep(bool on) { setCraft(LIB_CRAFT_DEEP, on); }
    void SetVision(bool on) { setCraft(LIB_CRAFT_MARK, on); }

private slots:
    void on_checkBox_cut_clicked(bool checked);
    void on_checkBox_trc_clicked(bool checked);
    void on_checkBox_swpShallow_clicked(bool checked);
    void on_checkBox_swpDeep_clicked(bool checked);
    void on_checkBox_vision_clicked(bool checked);

private:
    void setCraft(quint32 craft, bool on);

    Crafts m_crafts{true, true, true, true, true};
};
