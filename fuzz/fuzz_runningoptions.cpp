// Any bytes as the running options file "lm.tmp.json". Once read, writing and
// reading again must settle: the second text equals the first.
#include "library/crunningoptions.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));

    RunningOptionList list(1);
    if (!RunningOptionsFromJson(text, list)) {
        // A failed read leaves the list alone.
        if (list.size() != 1 || list.front().color != 0 || list.front().options.laserPower != 80)
            std::abort();
        return 0;
    }
    for (const RunningOptionEntry &entry : list) {
        const char *name = entry.options.materialName;
        if (::strnlen(name, sizeof entry.options.materialName) >= sizeof entry.options.materialName)
            std::abort();
        if (entry.options.type > 4 || entry.options.craft > 4)
            std::abort();
    }

    const QString once = RunningOptionsToJson(list);
    RunningOptionList reread;
    if (!RunningOptionsFromJson(once, reread) || reread.size() != list.size())
        std::abort();
    if (RunningOptionsToJson(reread) != once)
        std::abort();
    return 0;
}
