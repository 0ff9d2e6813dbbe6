#pragma once

#include "cmateriallibrary.h"

#include <QJsonObject>
#include <QString>

class QIODevice;

// Larger library files are refused unread.
constexpr qint64 kMaxLibraryFileSize = qint64(512) * 1024 * 1024;

enum class ELibraryRead {
    Ok,
    CannotOpen,
    TooLarge,
    NotJson,
    NotObject,
    NoType,
};

struct LibraryReadResult
{
    ELibraryRead status = ELibraryRead::Ok;
    // What went wrong, for a log line or a tool's message.
    QString detail;

    bool ok() const { return status == ELibraryRead::Ok; }
    // One line: "not JSON (unterminated object at offset 12)", "no \"Type\"".
    QString reason() const;
};

// Readers replace the library's content. A document without a "Type"
// object leaves the library empty and reads as a failure; missing or
// mistyped keys take their defaults. Materials of a power entry come in
// ascending "id" (a positive whole number); materials without a usable id
// follow, and ties come in key order (a QJsonObject's: sorted). Of a key
// given twice in one object the last counts.
bool ReadMaterialLibrary(const QJsonObject &root, CMaterialLibrary &library);
LibraryReadResult ReadMaterialLibrary(QIODevice *device, CMaterialLibrary &library);
LibraryReadResult ReadMaterialLibraryFile(const QString &path, CMaterialLibrary &library);

QJsonObject MaterialLibraryToJson(const CMaterialLibrary &library);
// The document as indented JSON text.
QByteArray MaterialLibraryText(const CMaterialLibrary &library);
// Indented JSON; false when the device takes less than all of it.
bool WriteMaterialLibrary(QIODevice *device, const CMaterialLibrary &library);
// Atomic: the previous file stays whole unless the new one was written.
bool WriteMaterialLibraryFile(const QString &path, const CMaterialLibrary &library);

// The key of a thickness: two decimals, "3.00".
QString ThicknessKey(double thickness);
// "Two way laser" 0, "One way laser" 1, anything else 0.
qint32 SweepModeIndex(const QString &name);
