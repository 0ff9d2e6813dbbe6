#pragma once

#include "ctranslator.h"
#include "idevicesinfo.h"
#include "ilayerhost.h"

#include <QAbstractButton>
#include <QApplication>
#include <QTimer>

#include <functional>

// Helpers shared by the widget tests of the library manager's dialogs.

// A named child widget; a missing one stops the test run with its name.
template <typename T = QWidget> T *child(const QObject *parent, const QString &name)
{
    T *widget = parent->findChild<T *>(name);
    if (!widget)
        qFatal("no %s", qPrintable(name));
    return widget;
}

inline void click(const QObject *parent, const QString &button)
{
    child<QAbstractButton>(parent, button)->click();
}

// Runs `act` on the modal widget of type T once one shows. The poll stops
// after five seconds, or with `context`, so a box that never came cannot
// answer a later test's.
template <typename T> void whenModal(QObject *context, std::function<void(T *)> act)
{
    auto *poll = new QTimer(context);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, act, tries = 0]() mutable {
        auto *widget = qobject_cast<T *>(QApplication::activeModalWidget());
        if (widget || ++tries > 500) {
            // Stopped first: `act` may run a nested event loop.
            poll->stop();
            poll->deleteLater();
        }
        if (widget)
            act(widget);
    });
    poll->start(10);
}

template <typename T> void whenModal(std::function<void(T *)> act)
{
    whenModal<T>(nullptr, std::move(act));
}

// A host with a machine the test sets up; it notes when the layers change.
class TestHost : public ILayerHost
{
public:
    void LayersChanged() override { layersChanged = true; }
    void LayerEvent(int) override {}
    void CurrentLayerChanged() override {}
    void RefreshView() override {}
    IDevicesInfo *DevicesInfo() const override { return const_cast<CDevicesInfoIns *>(&devices); }
    CDevicesInfoIns devices;
    bool layersChanged = false;
};

// What `read` returns while the interface speaks `language` (from the
// project's own resources); English is back afterwards.
template <typename Read> auto inLanguage(const QString &language, Read read)
{
    CTranslator *translator = CTranslator::GetInstance();
    translator->SetResourceDir(QStringLiteral(LAYERMGR_SOURCE_DIR "/resources"));
    translator->SetLanguage(language);
    const auto result = read();
    translator->SetLanguage(QString());
    translator->SetResourceDir(QString());
    return result;
}
