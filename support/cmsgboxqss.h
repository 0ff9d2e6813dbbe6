#pragma once

#include <QMessageBox>

// A message box whose buttons carry translated texts and fixed object names,
// so that the host's style sheet can style them.
class CMsgBoxQss : public QMessageBox
{
    Q_OBJECT

public:
    CMsgBoxQss(QMessageBox::Icon icon, const QString &title, const QString &text,
               QMessageBox::StandardButtons buttons, QWidget *parent = nullptr);

protected:
    // The button box puts Qt's own texts back on a language change, after
    // this box has seen the event: the wordings go on once it has.
    bool event(QEvent *event) override;

private:
    void translateButtons();
};
