#pragma once

#include "clayerparam.h"
#include "library/libraryrecords.h"

// Between the library's parameter sets and a layer's blocks. Applying a set
// gives the layer every value the set holds (air assist included); what the
// library does not keep (laser enable flags, cutting passes, link block)
// stays as the layer has it. Deep-carving-only values travel for craft 3 only.
void ApplyCutSet(const CLibCutSet &set, CLayerParam &layer);
void ApplySweepSet(const CLibSweepSet &set, CLayerParam &layer);

// The layer's values into a set; its key and note stay.
void FillCutSet(const CLayerParam &layer, CLibCutSet &set);
void FillSweepSet(const CLayerParam &layer, CLibSweepSet &set);
