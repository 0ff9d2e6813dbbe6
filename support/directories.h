#pragma once

#include <QString>

// The user's writable data directory, per theme; created when missing.
QString UserDataDir();
// The application's read-only resource directory: <bin>/../Resources.
QString AppResourceDir();

// Tests and embedding hosts may point the resource directory elsewhere;
// an empty path restores the default.
void SetAppResourceDir(const QString &dir);
