#include "cuipermissionsmanager.h"

CUiPermissionsManager *CUiPermissionsManager::GetInstance()
{
    static CUiPermissionsManager instance;
    return &instance;
}
