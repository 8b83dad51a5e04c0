#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/CAbstractTransform.h"
#include "engine/IBandStage.h"

// The template of transforms that make each pixel from the source's pixel alone. The row loops
// load a pixel's samples into entry 0 of the channel arrays, call the layout's operation and store
// what it leaves in the out fields.
class CTemplateA : public CAbstractTransform, public IBandStage {
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

    // A stage before another in one pass: its progress, then its rows (CTemplateB::RunOver).
    CErrorAutoThrow Announce() override;
    void MakeBand(const SBand& band) const override;

  protected:
    // The row kernel: what the operation of the image's layout does to each of `pixels` pixels
    // (samples of `pixelFormat`), all at once; in place when `from` is `to`. Runs on any thread.
    virtual void ComputeRow(const std::uint8_t* from, std::uint8_t* to, int pixels) const = 0;

    // The row loop: one step of progress a row, then the row kernel or, on the plain path,
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
        const auto row = [&](int at) {
            if (!DestinationHasRow(at) || left >= end) return;
            const std::ptrdiff_t first = std::ptrdiff_t{left} * kChannels;
            const Sample* from = source->Row<Sample>(at) + first;
            Sample* to = destination->Row<Sample>(at) + first;
            if (!use_plain_path) {
                ComputeRow(reinterpret_cast<const std::uint8_t*>(from),
                           reinterpret_cast<std::uint8_t*>(to), end - left);
                return;
            }
            y = at;
            for (x = left; x < end; ++x, from += kChannels, to += kChannels) pixel(from, to);
        };
        return ForRows(bottom, [&](int first, int last) {
            for (int at = first; at < last; ++at) row(at);
        });
    });
}
