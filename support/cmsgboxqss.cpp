#include "cmsgboxqss.h"

#include "ctranslator.h"

#include <QAbstractButton>
#include <QEvent>

namespace {

struct ButtonName
{
    QMessageBox::StandardButton button;
    const char *text;
    const char *objectName;
};

// The object names are what the host's style sheets select on.
constexpr ButtonName kButtonNames[] = {
    {QMessageBox::No, "No", "messageBox_noButton"},
    {QMessageBox::Cancel, "Cancel", "messageBox_cancelButton"},
    {QMessageBox::Ok, "OK", "messageBox_okButton"},
    {QMessageBox::Yes, "Yes", "messageBox_yesButton"},
    {QMessageBox::Retry, "Retry", "messageBox_retryButton"},
};

} // namespace

CMsgBoxQss::CMsgBoxQss(QMessageBox::Icon icon, const QString &title, const QString &text,
                       QMessageBox::StandardButtons buttons, QWidget *parent)
    : QMessageBox(icon, title, text, buttons, parent, Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint)
{
    setObjectName(QStringLiteral("CMsgBoxQss"));
    translateButtons();
}

void CMsgBoxQss::translateButtons()
{
    const CTranslator *translator = CTranslator::GetInstance();
    for (const ButtonName &entry : kButtonNames) {
        if (QAbstractButton *b = button(entry.button)) {
            b->setText(translator->GetWording(QString::fromLatin1(entry.text)));
            b->setObjectName(QString::fromLatin1(entry.objectName));
        }
    }
}

bool CMsgBoxQss::event(QEvent *event)
{
    const bool handled = QMessageBox::event(event);
    if (event->type() == QEvent::LanguageChange)
        translateButtons();
    return handled;
}
