#pragma once

#include "engine/CAbstractTransform.h"

// Blurs the whole image with the graphics library's Gaussian; the work rectangle plays no part.
// "Blur Strength" 0 to 100 is the standard deviation in fifths of a pixel; 0 copies.
class CGaussBlur : public CAbstractTransform {
  public:
    CGaussBlur();
    CErrorAutoThrow ProcessGrey() override { return Blur(); }
    CErrorAutoThrow ProcessGreyAlpha() override { return Blur(); }
    CErrorAutoThrow ProcessRGB() override { return Blur(); }
    CErrorAutoThrow ProcessRGBA() override { return Blur(); }
    void ReadParameters() override;
    // The geometry only: the blur makes the destination.
    CErrorAutoThrow PrepareImages() override;

  private:
    CErrorAutoThrow Blur();
    std::int32_t blurStrength = 0;
};
