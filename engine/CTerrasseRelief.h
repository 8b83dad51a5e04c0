#pragma once

#include "engine/CTemplateB.h"

// Takes the image for a height field and lights it with a coloured light from a direction: slopes
// that face the light brighten, the others darken. Grey images are lit by the green component.
// 16-bit images are lit in 8-bit terms. In grey images with alpha the rectangle's last row and
// column and all of the alpha are left as the destination holds them.
// "Angle" 0 to 360 degrees; "Red Light", "Green Light", "Blue Light" 0 to 255.
class CTerrasseRelief : public CTemplateB {
  public:
    CTerrasseRelief();
    void ReadParameters() override;
    CErrorAutoThrow ProcessGreyAlpha() override;
    void ComputeGrey() override;
    void ComputeRGB() override;

  protected:
    void ComputeRow(const std::uint8_t* row, const std::uint8_t* below, std::uint8_t* to,
                    int pixels, bool ends) const override;

    bool LeavesLastRowAndColumn() const override { return pixelFormat.Channels() == 2; }

  private:
    std::int32_t lightAngle = 0;  // degrees: "Angle" + 90
    std::int32_t lightRed = 0, lightGreen = 0, lightBlue = 0;
    double cosAngle = 0.0, sinAngle = 0.0;
};
