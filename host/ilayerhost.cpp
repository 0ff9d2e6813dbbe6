#include "ilayerhost.h"

ILayerHost::~ILayerHost() = default;
