// The plug-in's only exported symbols.
#include "clayermgrmoduleins.h"

extern "C" Q_DECL_EXPORT CLayerMgrModuleApi *NewInterface()
{
    return NewLayerMgrModule();
}

extern "C" Q_DECL_EXPORT void ReleaseInterface(CLayerMgrModuleApi *module)
{
    ReleaseLayerMgrModule(module);
}
