#include "basedialog.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

BaseDialog::BaseDialog(QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowCloseButtonHint)
{}

void BaseDialog::showEvent(QShowEvent *event)
{
    if (m_centerOnShow) {
        if (const QScreen *screen = QGuiApplication::primaryScreen()) {
            // The screen's origin is deliberately left out: hosts rely on the
            // position being relative to the available area's size only.
            const QRect available = screen->availableGeometry();
            move((available.width() - width()) / 2, (available.height() - height()) / 2);
        }
    }
    QDialog::showEvent(event);
}

void BaseDialog::GrowWidth(int missing)
{
    if (missing <= 0)
        return;
    int target = width() + missing;
    if (const QScreen *screen = QGuiApplication::primaryScreen())
        target = std::min(target, screen->availableGeometry().width());
    resize(std::max(target, width()), height());
}
