#pragma once

#include "engine/CAbstractTransform.h"
#include "engine/IBandStage.h"

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

    // Run over the result of `before`, which has been announced and is made of the source a band at
    // a time. The source may be the destination itself; the two have one size and format. Same
    // pixels, progress and state when cancelled as with an image between the two stages.
    CErrorAutoThrow RunOver(const IBandStage& before);

  protected:
    // The row kernel: what the row loop of the image's layout does to `pixels` pixels (samples of
    // `pixelFormat`), alpha included. Reads one pixel more of `row`, unless the row `ends` with
    // them: then the last pixel is its own neighbour. Runs on any thread; `to` may be the place
    // that `row` and `below` were copied from, not they themselves.
    virtual void ComputeRow(const std::uint8_t* row, const std::uint8_t* below, std::uint8_t* to,
                            int pixels, bool ends) const = 0;
    // Whether the rectangle's last row and column are left as they are in images of this format.
    virtual bool LeavesLastRowAndColumn() const { return false; }

    // The row loop: one step of progress a row, then the row kernel or, on the plain path,
    // `pixel(pixel, below, right, to)` for every pixel, given the samples of its neighbours.
    template <int kChannels, class Pixel>
    CErrorAutoThrow ProcessRows(Pixel&& pixel);

    template <class Sample>
    void LoadGrey(const Sample* pixel, const Sample* below, const Sample* right_pixel) {
        grey[0] = pixel[0];
        grey[1] = below[0];
        grey[3] = right_pixel[0];
    }

  private:
    // The rows and columns that are written end before these.
    int RowsEnd() const { return LeavesLastRowAndColumn() ? bottom - 1 : bottom; }
    int ColumnsEnd() const { return LeavesLastRowAndColumn() ? right - 1 : right; }
    int RowBelow(int row) const { return row < bottom - 1 ? row + 1 : row; }
    void BeginRows();
    // Computes a row by the kernel, given the first samples of whole rows.
    void FilterRow(const std::uint8_t* row, const std::uint8_t* below, std::uint8_t* to) const;
    template <class Sample>
    void ComputeColour(const Sample* pixel, const Sample* below, const Sample* right_pixel,
                       Sample* to);
};

template <int kChannels, class Pixel>
CErrorAutoThrow CTemplateB::ProcessRows(Pixel&& pixel) {
    return AtDepth<kChannels>([&](auto traits) -> CErrorAutoThrow {
        using Sample = typename decltype(traits)::Sample;
        const auto plain_row = [&](const Sample* row, const Sample* below, Sample* to) {
            const std::ptrdiff_t first = std::ptrdiff_t{left} * kChannels;
            row += first, below += first, to += first;
            const int end = ColumnsInDestination(ColumnsEnd());
            for (x = left; x < end; ++x, row += kChannels, below += kChannels, to += kChannels) {
                pixel(row, below, x == right - 1 ? row : row + kChannels, to);
            }
        };
        BeginRows();
        return ForRows(RowsEnd(), [&](int first, int last) {
            for (int at = first; at < last && DestinationHasRow(at); ++at) {
                const auto* row = source->Row<Sample>(at);
                const auto* below = source->Row<Sample>(RowBelow(at));
                auto* to = destination->Row<Sample>(at);
                if (use_plain_path) {
                    y = at;
                    plain_row(row, below, to);
                } else {
                    FilterRow(reinterpret_cast<const std::uint8_t*>(row),
                              reinterpret_cast<const std::uint8_t*>(below),
                              reinterpret_cast<std::uint8_t*>(to));
                }
            }
        });
    });
}
