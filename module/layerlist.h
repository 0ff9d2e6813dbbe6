#pragma once

#include "clayerparam.h"

#include <memory>
#include <vector>

// An owning, ordered list of layer records. Pointers handed out stay valid
// while the record is in the list.
using LayerList = std::vector<std::unique_ptr<CLayerParam>>;
