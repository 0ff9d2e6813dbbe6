#include "ilayerhost.h"

ILayerHost::~ILayerHost() = default;

IDevicesInfo *ILayerHost::DevicesInfo() const
{
    return nullptr;
}
