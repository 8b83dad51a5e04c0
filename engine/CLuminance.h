#pragma once

#include "engine/CTemplateA.h"

// Scales every sample toward black and, for a positive "Luminance" (-255 to 255), lifts it toward
// white; 0 still scales by 255/256. Alpha is kept: passed through in colour images, not touched in
// grey ones.
class CLuminance : public CTemplateA {
  public:
    CLuminance();
    void ReadParameters() override;
    CErrorAutoThrow ProcessGreyAlpha() override;
    void ComputeGrey() override;
    void ComputeGreyAlpha() override {}  // the class's own loop does not call it
    void ComputeRGB() override;
    void ComputeRGBA() override;

  protected:
    void ComputeRow(const std::uint8_t* from, std::uint8_t* to, int pixels) const override;

  private:
    std::int32_t luminance = 0;
};
