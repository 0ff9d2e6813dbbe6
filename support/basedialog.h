#pragma once

#include <QDialog>

// Base of every dialog of the module: a title bar with only a close button,
// and centred on the primary screen each time it is shown.
class BaseDialog : public QDialog
{
    Q_OBJECT

public:
    explicit BaseDialog(QWidget *parent = nullptr);

    bool CenterOnShow() const { return m_centerOnShow; }
    void SetCenterOnShow(bool center) { m_centerOnShow = center; }

protected:
    void showEvent(QShowEvent *event) override;
    // Widens the dialog by `missing` pixels, as far as the screen allows, so
    // that a table shows its widest texts whole.
    void GrowWidth(int missing);

private:
    bool m_centerOnShow = true;
};
