#pragma once

#include "engine/CTemplateB.h"

// Blends each channel toward a contour colour in proportion to its difference from the pixels
// right and below, so that edges take the colour. The weights sum to 255 and are divided by 256:
// where there is no edge most values still come out one step darker.
// "Intensity" 0 to 100; "Red", "Green", "Blue" 0 to 255.
class CContour1 : public CTemplateB {
  public:
    CContour1();
    void ReadParameters() override;
    void ComputeGrey() override;
    void ComputeRGB() override;
    void ComputeRGBA() override { ComputeRGB(); }

  protected:
    void ComputeRow(const std::uint8_t* row, const std::uint8_t* below, std::uint8_t* to,
                    int pixels, bool ends) const override;

  private:
    std::int32_t intensity = 0;
    std::int32_t contourRed = 0, contourGreen = 0, contourBlue = 0;  // in the image's depth
};
