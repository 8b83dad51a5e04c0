#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/CAbstractTransform.h"

// The template of transforms that make each pixel from the source's pixel alone. The row loops
// load a pixel's samples into entry 0 of the channel arrays, call the layout's operation and store
// what it leaves in the out fields.
class CTemplateA : public CAbstractTransform {
  public:
    CErrorAutoThrow ProcessGrey() override;
    CErrorAutoThrow ProcessGreyAlpha() override;
    CErrorAutoThrow ProcessRGB() override;
    CErrorAutoThrow ProcessRGBA() override;

    // One pixel, from entry 0 of the layout's arrays to its out fields.
    virtual void ComputeGrey() = 0;
    virtual void ComputeGreyAlpha() = 0;
    virtual void ComputeRGB() = 0;
    virtual void ComputeRGBA() = 0;

  protected:
    // The row kernel: what the operation of the image's layout does to each of `pixels` pixels
    // (samples of `pixelFormat`), all at once. False when there is none for that format.
    virtual bool ComputeRow(const std::uint8_t* from, std::uint8_t* to, int pixels) = 0;

    // The row loop: one step of progress a row, then the row kernel or, without one,
    // `pixel(from, to)` for every pixel, given its samples.
    template <int kChannels, class Pixel>
    CErrorAutoThrow ProcessRows(Pixel&& pixel);
};

template <int kChannels, class Pixel>
CErrorAutoThrow CTemplateA::ProcessRows(Pixel&& pixel) {
    return AtDepth<kChannels>([&](auto traits) -> CErrorAutoThrow {
        using Sample = typename decltype(traits)::Sample;
        status->SetProgressRange(bottom - top);
        const int end = ColumnsInDestination(right);
        for (y = top; y < bottom; ++y) {
            if (StepCancelled()) return TolmErrorCode::Cancelled;
            if (!DestinationHasRow(y) || left >= end) continue;
            const std::ptrdiff_t first = std::ptrdiff_t{left} * kChannels;
            const Sample* from = source->Row<Sample>(y) + first;
            Sample* to = destination->Row<Sample>(y) + first;
            if (!use_plain_path && ComputeRow(reinterpret_cast<const std::uint8_t*>(from),
                                              reinterpret_cast<std::uint8_t*>(to), end - left)) {
                continue;
            }
            for (x = left; x < end; ++x, from += kChannels, to += kChannels) pixel(from, to);
        }
        return {};
    });
}
