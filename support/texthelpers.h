#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>

QByteArray ToUtf8(const QString &text);
QString FromUtf8(const char *text);

// Zeroes the whole destination, then copies min(length, size - 1) bytes, so
// the result is always zero-terminated. False when a pointer is null or size
// is 0.
bool BoundedCopy(char *destination, size_t size, const char *source, size_t length);

// As BoundedCopy, but a cut never splits a UTF-8 sequence: the copy ends
// before the first byte of the character that does not fit.
bool BoundedCopyUtf8(char *destination, size_t size, const QByteArray &source);
