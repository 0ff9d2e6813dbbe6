#pragma once

#include "iresolution.h"

class CResolutionIns : public IResolution
{
public:
    // The primary screen's logical DPI over 96; 1 without a screen.
    double Scale(double designPixels) override;
};
