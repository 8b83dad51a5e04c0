#pragma once

#include "engine/CAbstractTransform.h"

// Draws straight hairs across the contours of the image, each along the gradient at a random point
// and in the colour of that point. Alpha is left alone.
// "Number of lines" 1 to 100, each 320 hairs; "Length of lines" 1 to 100, half a hair in pixels;
// "Transparency" 0 to 255.
class CCotangentLines : public CAbstractTransform {
  public:
    CCotangentLines();
    CErrorAutoThrow ProcessGrey() override { return DrawHairs<1>(); }
    CErrorAutoThrow ProcessGreyAlpha() override { return DrawHairs<2>(); }
    CErrorAutoThrow ProcessRGB() override { return DrawHairs<3>(); }
    CErrorAutoThrow ProcessRGBA() override { return DrawHairs<4>(); }
    void ReadParameters() override;

  private:
    template <int kChannels>
    CErrorAutoThrow DrawHairs();

    std::int32_t lineCount = 0;
    std::int32_t lineLength = 0;
    std::int32_t transparency = 0;
};
