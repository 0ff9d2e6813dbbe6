#pragma once

#include "library/cmateriallibrary.h"

#include <QString>

// The factory library's source table: UTF-8, tab-separated, '#' comment
// lines, a header line, then one parameter set per line:
//   tube power material icon thickness craft speed power1 power1min frequency
//   air passes dpi note
// Icons are PNG files in the swatch folder; each is stored as the library's
// picture text and named "/Res/Icon/<icon>".
//
// Returns false with "line N: reason" in *error on the first bad line.
bool ReadFactoryTable(const QByteArray &table, const QString &swatchDir,
                      CMaterialLibrary &library, QString *error);
