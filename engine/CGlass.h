#pragma once

#include "engine/CTemplateE.h"

// The image seen through rippled glass whose thickness is the image itself: each pixel is taken,
// with bilinear interpolation at 1/256 pixel, from a place pushed away along the local differences
// of brightness. 16-bit images come out in 8-bit precision.
//
// The rectangle's last row and column, and the alpha of colour images, are left as the destination
// holds them. The alpha of grey images comes from the pixel's own column in the upper sampled row.
// "Intensity" 0 to 100. Sides up to 2^22 pixels; larger ones give error 101.
class CGlass : public CTemplateE {
  public:
    CGlass();
    CErrorAutoThrow ProcessGrey() override;
    CErrorAutoThrow ProcessGreyAlpha() override;
    CErrorAutoThrow ProcessRGB() override;
    CErrorAutoThrow ProcessRGBA() override;
    void ReadParameters() override;
    void ComputeGrey() override;
    void ComputeGreyAlpha() override { ComputeGrey(); }
    void ComputeRGB() override;
    void ComputeRGBA() override { ComputeRGB(); }

  private:
    template <class Traits>
    CErrorAutoThrow ProcessRows();
    template <class Traits>
    void ComputePlainRow(int end);

    std::int32_t intensity = 0;
};
