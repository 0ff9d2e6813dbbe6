#pragma once

// The display-scale plug-in "Resolution": design sizes, made for a 96 dpi
// screen, to device pixels of the screen in use.
class IResolution
{
public:
    virtual ~IResolution() = default;
    virtual double Scale(double designPixels) = 0;
};
