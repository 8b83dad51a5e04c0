#pragma once

#include "engine/CTemplateA.h"

// The periodic transforms: they map brightness through a periodic function, so that gradual changes
// become ridges and grooves for the relief to light. At 16 bits the pattern is computed on the high
// bytes of the samples. Alpha passes through.

class CPeriodic : public CTemplateA {
  public:
    void ComputeGreyAlpha() override;
    void ComputeRGBA() override;
};

// A triangle wave of the pixel's mean brightness scales the pixel.
// "Number of periods" 1 to 256, "Luminance" 10 to 20.
class CTriangleBands : public CPeriodic {
  public:
    void ReadParameters() override;
    void ComputeGrey() override;
    void ComputeRGB() override;

  protected:
    explicit CTriangleBands(bool only_darker);
    void ComputeRow(const std::uint8_t* from, std::uint8_t* to, int pixels) const override;

  private:
    const bool only_darker_;  // no channel may become brighter than it is, in 8-bit terms
    std::int32_t periods = 0;
    std::int32_t gain = 0;
};

class CPeriodic3 : public CTriangleBands {
  public:
    CPeriodic3() : CTriangleBands(false) {}
};

class CPeriodic6 : public CTriangleBands {
  public:
    CPeriodic6() : CTriangleBands(true) {}
};

// A sawtooth of each channel's own value is added; no channel may become darker than it is.
// "Number of periods" 2 to 100, "Slope" 1 to 128.
class CPeriodic5 : public CPeriodic {
  public:
    CPeriodic5();
    void ReadParameters() override;
    void ComputeGrey() override;
    void ComputeRGB() override;

  protected:
    void ComputeRow(const std::uint8_t* from, std::uint8_t* to, int pixels) const override;

  private:
    std::int32_t halfPeriods = 0;
    std::int32_t slope = 0;
    std::int32_t step = 0;
};
