#pragma once

#include <QApplication>
#include <QTimer>

#include <functional>

namespace smalldialogs {

// Runs `act` on the modal widget of type T as soon as one shows; the poll
// dies with `context`, so a box that never came leaves nothing behind.
template <typename T> void whenModal(QObject *context, std::function<void(T *)> act)
{
    auto *poll = new QTimer(context);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, act] {
        auto *widget = qobject_cast<T *>(QApplication::activeModalWidget());
        if (!widget)
            return;
        poll->stop();
        poll->deleteLater();
        act(widget);
    });
    poll->start(10);
}

} // namespace smalldialogs
