#pragma once

#include "hostsdk_global.h"

#include <QHash>
#include <QString>

// The host's translation service. The key of every wording is its English
// text; a key without a wording in the current language comes back as is.
class HOSTSDK_EXPORT CTranslator
{
public:
    static CTranslator *GetInstance();

    QString GetWording(const QString &key) const;

    // Directory holding Lang/<language>/*.ini; the application resource
    // directory unless set.
    void SetResourceDir(const QString &dir);
    QString ResourceDir() const;

    // Loads the wordings of a language ("En", "Chs", ...) and sends
    // QEvent::LanguageChange to every top-level widget. Returns false when the
    // language has no folder; the wordings are then cleared (English).
    bool SetLanguage(const QString &language);
    QString Language() const { return m_language; }

    // Parses one wording file: "English text=Translation" per line, "\=" for
    // an equals sign inside the key, "\n" for a line break; lines starting
    // with ';', '#' or '[' are comments.
    static QHash<QString, QString> ParseWordings(const QByteArray &text);

private:
    CTranslator();
    QString m_resourceDir;
    QString m_language;
    QHash<QString, QString> m_wordings;
};
