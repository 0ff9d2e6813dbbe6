#include "ctranslator.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFile>
#include <QWidget>

CTranslator::CTranslator() = default;

CTranslator *CTranslator::GetInstance()
{
    static CTranslator instance;
    return &instance;
}

QString CTranslator::GetWording(const QString &key) const
{
    return m_wordings.value(key, key);
}

void CTranslator::SetResourceDir(const QString &dir)
{
    m_resourceDir = dir;
}

QString CTranslator::ResourceDir() const
{
    if (!m_resourceDir.isEmpty())
        return m_resourceDir;
    return QDir(QCoreApplication::applicationDirPath() + QStringLiteral("/../Resources")).absolutePath();
}

static QString unescape(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\\') && i + 1 < text.size()) {
            const QChar n = text.at(++i);
            out += n == QLatin1Char('n') ? QChar(QLatin1Char('\n')) : n;
        } else {
            out += c;
        }
    }
    return out;
}

QHash<QString, QString> CTranslator::ParseWordings(const QByteArray &text)
{
    QHash<QString, QString> wordings;
    const QString all = QString::fromUtf8(text);
    const auto lines = QStringView(all).split(QLatin1Char('\n'));
    for (QStringView line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        if (line.isEmpty() || line.startsWith(QLatin1Char(';')) || line.startsWith(QLatin1Char('#'))
            || line.startsWith(QLatin1Char('[')))
            continue;
        qsizetype eq = -1;
        for (qsizetype i = 0; i < line.size(); ++i) {
            if (line.at(i) == QLatin1Char('\\')) {
                ++i;
            } else if (line.at(i) == QLatin1Char('=')) {
                eq = i;
                break;
            }
        }
        if (eq <= 0)
            continue;
        wordings.insert(unescape(line.left(eq).toString()), unescape(line.mid(eq + 1).toString()));
    }
    return wordings;
}

bool CTranslator::SetLanguage(const QString &language)
{
    m_wordings.clear();
    m_language = language;
    const QDir dir(ResourceDir() + QStringLiteral("/Lang/") + language);
    const bool found = !language.isEmpty() && dir.exists();
    if (found) {
        const QStringList files = dir.entryList({QStringLiteral("*.ini")}, QDir::Files, QDir::Name);
        for (const QString &name : files) {
            QFile file(dir.filePath(name));
            if (file.open(QIODevice::ReadOnly))
                m_wordings.insert(ParseWordings(file.read(4 * 1024 * 1024)));
        }
    }
    if (qobject_cast<QApplication *>(QCoreApplication::instance())) {
        const auto widgets = QApplication::topLevelWidgets();
        for (QWidget *widget : widgets) {
            QEvent event(QEvent::LanguageChange);
            QCoreApplication::sendEvent(widget, &event);
        }
    }
    return found;
}
