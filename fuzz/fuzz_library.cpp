// Any bytes as a material library file ("lm.json", an imported library).
// A failed read leaves the library empty; once read, the library holds each
// material once, in its tube/power run, and writing and reading again must
// settle.
#include "library/librarydocument.h"

#include <QBuffer>
#include <QJsonDocument>

#include <cmath>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);

    CMaterialLibrary library;
    if (!ReadMaterialLibrary(&buffer, library).ok()) {
        if (!library.IsEmpty())
            std::abort();
        return 0;
    }

    // Each tube/power run holds exactly its materials, in one piece.
    size_t inRuns = 0;
    for (const CLibTube &tube : library.Tubes()) {
        for (const CLibPower &power : tube.powers) {
            for (const CLibMaterial *m : library.MaterialsOf(tube.type, power.power)) {
                if (m->tube != tube.type || m->power != power.power)
                    std::abort();
                if (library.FindMaterial(m->tube, m->power, m->name) != m)
                    std::abort();
                for (size_t i = 0; i < m->thicknesses.size(); ++i) {
                    if (!std::isfinite(m->thicknesses[i]))
                        std::abort();
                    for (size_t j = 0; j < i; ++j) {
                        if (SameThickness(m->thicknesses[i], m->thicknesses[j]))
                            std::abort();
                    }
                }
                ++inRuns;
            }
        }
    }
    if (inRuns != library.Materials().size())
        std::abort();

    // A mode written as a number reads back as 0, so the text settles on the
    // second round, not the first.
    auto round = [](const CMaterialLibrary &from) {
        const QByteArray text = QJsonDocument(MaterialLibraryToJson(from)).toJson();
        CMaterialLibrary to;
        if (!ReadMaterialLibrary(QJsonDocument::fromJson(text).object(), to))
            std::abort();
        return to;
    };
    const CMaterialLibrary once = round(library);
    const CMaterialLibrary twice = round(once);
    if (!(round(twice) == twice))
        std::abort();
    return 0;
}
