#pragma once

#include "cmateriallibrary.h"

#include <QByteArray>

// The reader of a library document straight from its bytes. It takes the
// documents a writer makes (plain JSON: no escapes, exponents, byte order
// mark or duplicate keys) and declines the rest, returning false with the
// library empty; callers then read the bytes with Qt's parser, which gives
// the same library or the reason the bytes are not one. A document without
// a "Type" object is declined too.
bool ReadMaterialLibraryDirect(const QByteArray &bytes, CMaterialLibrary &library);
