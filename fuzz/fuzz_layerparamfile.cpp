// Any bytes as the remembered-parameters file "old.lpl".
#include "module/layerparamfile.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

std::unique_ptr<QTemporaryDir> g_dir;
quint64 g_serial = 0;

// A new name per input: QSettings keeps parsed files by name and would not
// see a rewrite of the same size within its time stamp resolution.
QString freshPath()
{
    return g_dir->filePath(QStringLiteral("old%1.lpl").arg(++g_serial));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    g_dir = std::make_unique<QTemporaryDir>();
    if (!g_dir->isValid())
        std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = freshPath();
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            std::abort();
        file.write(reinterpret_cast<const char *>(data), qint64(size));
    }

    LayerList first;
    ReadLayerParamFile(first, path);
    if (first.size() > 65536)
        std::abort();

    // Written back and read again, the file holds as many records. A count
    // of thousands of default records would make every run a slow write.
    if (first.size() > 8) {
        QFile::remove(path);
        return 0;
    }
    const QString again = freshPath();
    WriteLayerParamFile(first, again);
    LayerList second;
    ReadLayerParamFile(second, again);
    if (second.size() != first.size())
        std::abort();

    QFile::remove(path);
    QFile::remove(again);
    return 0;
}
