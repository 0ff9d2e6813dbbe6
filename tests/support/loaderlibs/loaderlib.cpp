// One source, built into several libraries that each lack a different piece
// of the plug-in entry points. ReleaseInterface writes a log line, so a test
// sees which interface went back, and in which order.
#include "loadertestinterface.h"

#include "ilog.h"

#include <QtGlobal>

#include <cstring>

namespace {
int g_serial = 0;
}

#ifndef LOADERLIB_NO_NEW
extern "C" Q_DECL_EXPORT void *NewInterface()
{
#ifdef LOADERLIB_NULL_INTERFACE
    ++g_serial;
    return nullptr;
#else
#ifdef LOADERLIB_NULL_EVERY_SECOND
    if (++g_serial % 2 == 0)
        return nullptr;
    --g_serial;
#endif
    auto *made = new LoaderTestInterface;
    std::strncpy(made->tag, LOADERLIB_TAG, sizeof made->tag - 1);
    made->tag[sizeof made->tag - 1] = '\0';
    made->serial = ++g_serial;
    ILog_WriteLogF(2, "new %s %d", made->tag, made->serial);
    return made;
#endif
}
#endif

#ifndef LOADERLIB_NO_RELEASE
extern "C" Q_DECL_EXPORT void ReleaseInterface(void *module)
{
    auto *made = static_cast<LoaderTestInterface *>(module);
    if (!made) {
        ILog_WriteLogF(2, "release %s null", LOADERLIB_TAG);
        return;
    }
    ILog_WriteLogF(2, "release %s %d", made->tag, made->serial);
    delete made;
}
#endif

// Resolvable, so the library is a real one even when both entry points are missing.
extern "C" Q_DECL_EXPORT int LoaderLibSerial()
{
    return g_serial;
}
