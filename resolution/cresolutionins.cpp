#include "cresolutionins.h"

#include <QGuiApplication>
#include <QScreen>

#include <new>

double CResolutionIns::Scale(double designPixels)
{
    const QScreen *screen = qobject_cast<QGuiApplication *>(QCoreApplication::instance())
        ? QGuiApplication::primaryScreen()
        : nullptr;
    const double dpi = screen ? screen->logicalDotsPerInch() : 96.0;
    return designPixels * (dpi > 0 ? dpi : 96.0) / 96.0;
}

extern "C" Q_DECL_EXPORT IResolution *NewInterface()
{
    return new (std::nothrow) CResolutionIns;
}

extern "C" Q_DECL_EXPORT void ReleaseInterface(IResolution *resolution)
{
    delete resolution;
}
