#pragma once

#include "engine/CAbstractTransform.h"

// The template of transforms that make each pixel from the source's pixel, the one below it and the
// one to its right. On the rectangle's last row and column the missing neighbour is the pixel
// itself. The row loops fill entries 0, 1 and 3 of the channel arrays.
//
// Alpha is copied: in grey images from the pixel, in colour images from the pixel below, so that
// it moves up by a row.
class CTemplateB : public CAbstractTransform {
  public:
    CErrorAutoThrow ProcessGrey() override;
    CErrorAutoThrow ProcessGreyAlpha() override;
    CErrorAutoThrow ProcessRGB() override;
    CErrorAutoThrow ProcessRGBA() override;

    // One pixel, from the neighbourhood arrays to the out fields.
    virtual void ComputeGrey() = 0;
    virtual void ComputeRGB() = 0;
    virtual void ComputeRGBA() {}  // the loops call ComputeRGB for either colour layout

  protected:
    // The row kernel: what the row loop of the image's layout does to `pixels` pixels (samples of
    // `pixelFormat`), alpha included. Reads one pixel more of `row`. False when there is none.
    virtual bool ComputeRow(const std::uint8_t* row, const std::uint8_t* below, std::uint8_t* to,
                            int pixels) = 0;

    // Computes columns left to `end` - 1 of row y from a row and the row below: by the kernel, or
    // else by `pixel(row, below, to, right)` for every pixel, given the samples of the pixel's
    // neighbours. Columns before `end` have a right neighbour.
    template <class Traits, class Pixel>
    void ComputeColumns(const typename Traits::Sample* row, const typename Traits::Sample* below,
                        typename Traits::Sample* to, int end, Pixel&& pixel);

    template <class Sample>
    void LoadGrey(const Sample* pixel, const Sample* below, const Sample* right_pixel) {
        grey[0] = pixel[0];
        grey[1] = below[0];
        grey[3] = right_pixel[0];
    }

  private:
    template <int kChannels, class Pixel>
    CErrorAutoThrow ProcessRows(Pixel&& pixel);
    template <class Sample>
    void ComputeColour(const Sample* pixel, const Sample* below, const Sample* right_pixel,
                       Sample* to);
};

template <class Traits, class Pixel>
void CTemplateB::ComputeColumns(const typename Traits::Sample* row,
                                const typename Traits::Sample* below, typename Traits::Sample* to,
                                int end, Pixel&& pixel) {
    if (left >= end) return;
    constexpr int n = Traits::kChannels;
    const std::ptrdiff_t first = std::ptrdiff_t{left} * n;
    row += first;
    below += first;
    to += first;
    if (!use_plain_path && ComputeRow(reinterpret_cast<const std::uint8_t*>(row),
                                      reinterpret_cast<const std::uint8_t*>(below),
                                      reinterpret_cast<std::uint8_t*>(to), end - left)) {
        return;
    }
    for (x = left; x < end; ++x, row += n, below += n, to += n) pixel(row, below, row + n, to);
}
