#include "texthelpers.h"

#include <QTextCodec>

#include <algorithm>
#include <cstring>

QByteArray ToUtf8(const QString &text)
{
    QTextCodec *codec = QTextCodec::codecForName("utf-8");
    return codec ? codec->fromUnicode(text) : text.toUtf8();
}

QString FromUtf8(const char *text)
{
    if (!text)
        return {};
    QTextCodec *codec = QTextCodec::codecForName("utf-8");
    return codec ? codec->toUnicode(text) : QString::fromUtf8(text);
}

bool BoundedCopy(char *destination, size_t size, const char *source, size_t length)
{
    if (!destination || !source || size == 0)
        return false;
    std::memset(destination, 0, size);
    std::memcpy(destination, source, std::min(length, size - 1));
    return true;
}

bool BoundedCopyUtf8(char *destination, size_t size, const QByteArray &source)
{
    if (!destination || size == 0)
        return false;
    size_t length = size_t(source.size());
    if (length > size - 1) {
        length = size - 1;
        // Back off over continuation bytes (10xxxxxx) to the start of the
        // character that was cut.
        while (length > 0 && (uchar(source.at(qsizetype(length))) & 0xC0) == 0x80)
            --length;
    }
    return BoundedCopy(destination, size, source.constData(), length);
}
