#pragma once

#include "cdrawitem.h"

#include <QByteArray>
#include <QString>

#include <vector>

class QIODevice;

// The demo host's document: the drawing items (geometry, colour, kind,
// grouping) and the plug-in's layer stream, as SaveLayers wrote it.
//
// Layout, big endian: the 8-byte magic, a version (quint32), the payload
// size (quint32) and its CRC-32 (quint32), then the payload: the item count
// and the items, then the layer stream as a length-prefixed byte array.
// An item is kind (quint8), colour (quint32), flags (quint8: 1 filled,
// 2 non-zero fill rule), then for a group its member count and members, for
// any other kind its path element count and elements (type quint8, x and y
// as doubles).
class CProjectFile
{
public:
    static constexpr int kVersion = 1;
    static constexpr qint64 kMaxBytes = 256 * 1024 * 1024;
    static constexpr int kMaxDepth = 64;
    static const QByteArray &Magic();

    // The CRC-32 of zlib and PNG.
    static quint32 Checksum(const QByteArray &data);

    // Whether the device's next bytes are a project file's magic (peeked, not read).
    static bool LooksLikeProject(QIODevice *device);

    bool Write(QIODevice *device) const;
    // Reads a whole project. On failure ErrorString() says why, in the user's
    // language, and the project keeps what it held before.
    bool Read(QIODevice *device);

    std::vector<CDrawItem> m_items;
    QByteArray m_layers;

    QString ErrorString() const { return m_error; }

private:
    QString m_error;
};
