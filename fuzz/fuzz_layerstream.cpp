// Any bytes as a saved document's layer stream. Whatever the reader makes of
// them must survive a write and a second read unchanged.
#include "module/layerstream.h"

#include <QBuffer>
#include <QtEndian>

#include <cstdint>
#include <cstdlib>

namespace {

QByteArray written(const LayerList &layers)
{
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    WriteLayerStream(&out, layers);
    return out.data();
}

LayerList read(const QByteArray &bytes)
{
    QBuffer in;
    in.setData(bytes);
    in.open(QIODevice::ReadOnly);
    LayerList layers;
    ReadLayerStream(&in, layers);
    return layers;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    // Random bytes mostly declare tens of thousands of layers, each read the
    // same way; a smaller count keeps the runs per second up. The cap itself
    // is a row of the stream tests.
    if (input.size() >= 8) {
        const qint32 version = qFromLittleEndian<qint32>(input.constData());
        const qint32 count = qFromLittleEndian<qint32>(input.constData() + 4);
        if (version >= 4 && count > 4096)
            qToLittleEndian<qint32>(count % 4097, input.data() + 4);
    }
    const LayerList first = read(input);
    if (first.size() > size_t(kMaxStreamLayers))
        std::abort();

    // Most inputs declare thousands of layers the bytes do not hold; writing
    // them all back would cut the runs per second a hundredfold.
    if (first.size() > 512)
        return 0;

    // Compared as bytes, so a NaN read from the input still compares equal.
    const QByteArray once = written(first);
    const LayerList second = read(once);
    if (second.size() != first.size() || written(second) != once)
        std::abort();
    return 0;
}
