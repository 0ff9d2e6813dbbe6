#pragma once

// Parameter sets whose every field differs from its default and from its
// neighbours, so a value written under the wrong key or read into the wrong
// field shows.

#include "library/cmateriallibrary.h"
#include "library/librarydocument.h"
#include "programrun.h"

#include <QBuffer>
#include <QJsonDocument>

inline CLibKey libKey(const QString &material, double thickness, quint32 craft, quint32 tube = 2,
                      qint32 power = 60)
{
    return {tube, power, material, thickness, craft};
}

inline CLibCutSet sampleCutSet(const CLibKey &key)
{
    return {key, true, 12.5,
            {55.5, 11.25, 2000, 300, 1, 2, true, false, true, false, 7, 8, 9.5},
            {44.0, 22.0, 3000, 400, 3, 4, false, true, false, true, 5, 6, 1.5},
            0.75, true, 12.0, 1.5, true, 2, 1, 2.5, 1, 3.5, {true, false, true, 4.5, 6.5},
            true, false, 0.1, QStringLiteral("cut note")};
}

inline CLibSweepSet sampleSweepSet(const CLibKey &key)
{
    return {key, false, 300.5, {33.25, 0.0, 5000, 600, 5, 6}, {22.5, 20.0, 6000, 700, 7, 8},
            4, 1, 2.25, true, true, 2, 0.05, true, 10.5, 60.5, 3, {true, true, false, 2.5, 5.5},
            QStringLiteral("sweep note")};
}

inline CLibMaterial libMaterial(const QString &name, std::vector<double> thicknesses,
                                quint32 tube = 2, qint32 power = 60)
{
    CLibMaterial m;
    m.name = name;
    m.iconPath = QStringLiteral("/Res/Icon/") + name + QStringLiteral(".png");
    m.iconBase64 = QStringLiteral("iVBORw0KGgo=");
    m.tube = tube;
    m.power = power;
    m.thicknesses = std::move(thicknesses);
    return m;
}

// A library holding every craft under one material and thickness.
inline CMaterialLibrary sampleLibrary()
{
    CMaterialLibrary library;
    library.SetVersion(7);
    library.AddPower(2, 60, true);
    library.AddPower(2, 80, false);
    library.AddMaterial(libMaterial(QStringLiteral("Birch"), {3.0}));
    library.SetCutSet(sampleCutSet(libKey(QStringLiteral("Birch"), 3.0, 0)));
    library.SetCutSet(sampleCutSet(libKey(QStringLiteral("Birch"), 3.0, 1)));
    library.SetSweepSet(sampleSweepSet(libKey(QStringLiteral("Birch"), 3.0, 2)));
    library.SetSweepSet(sampleSweepSet(libKey(QStringLiteral("Birch"), 3.0, 3)));
    library.SetMarkSet({libKey(QStringLiteral("Birch"), 3.0, 4), QStringLiteral("mark note")});
    return library;
}

inline QByteArray jsonBytes(const CMaterialLibrary &library)
{
    return QJsonDocument(MaterialLibraryToJson(library)).toJson();
}

// The library read from bytes as from a file.
inline CMaterialLibrary readBytes(const QByteArray &bytes, LibraryReadResult *result = nullptr)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    CMaterialLibrary library;
    const LibraryReadResult read = ReadMaterialLibrary(&buffer, library);
    if (result)
        *result = read;
    return library;
}

// The command-line tool, run in `dir` (the current folder when empty).
inline ProgramRun runTool(const QStringList &arguments, const QString &dir = QString())
{
    return runProgram(QStringLiteral(LAYERMGR_BUILD_BIN "/layermgr-lib"), arguments, dir);
}
