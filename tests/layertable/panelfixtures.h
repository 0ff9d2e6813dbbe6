#pragma once

#include "ctranslator.h"
#include "ilayerhost.h"

#include <QString>
#include <QStringList>

namespace paneltest {

// Records what the plug-in tells its host, one line per call.
class FakeLayerHost : public ILayerHost
{
public:
    void LayersChanged() override { calls << QStringLiteral("LayersChanged"); }
    void LayerEvent(int code) override { calls << QStringLiteral("LayerEvent %1").arg(code); }
    void CurrentLayerChanged() override { calls << QStringLiteral("CurrentLayerChanged"); }
    void RefreshView() override { calls << QStringLiteral("RefreshView"); }

    QStringList calls;
};

// Switches the host's language to one of the wording folders of the source
// tree and back to English when it goes.
class LanguageGuard
{
public:
    explicit LanguageGuard(const QString &language)
    {
        CTranslator::GetInstance()->SetResourceDir(QStringLiteral(LAYERMGR_SOURCE_DIR "/resources"));
        CTranslator::GetInstance()->SetLanguage(language);
    }
    ~LanguageGuard()
    {
        CTranslator::GetInstance()->SetLanguage(QString());
        CTranslator::GetInstance()->SetResourceDir(QString());
    }
    LanguageGuard(const LanguageGuard &) = delete;
    LanguageGuard &operator=(const LanguageGuard &) = delete;
};

} // namespace paneltest
