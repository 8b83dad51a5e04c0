#include "engine/CTemplateB.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

// Rows kept by themselves, one after the other.
class CKeptRows {
  public:
    CKeptRows(int rows, std::size_t row_bytes)
        : row_bytes_(row_bytes), samples_(static_cast<std::size_t>(rows) * row_bytes) {}
    std::uint8_t* Row(int index) {
        return samples_.data() + static_cast<std::size_t>(index) * row_bytes_;
    }
    void Keep(int index, const std::uint8_t* row) { std::memcpy(Row(index), row, row_bytes_); }

  private:
    std::size_t row_bytes_;
    std::vector<std::uint8_t> samples_;
};

}  // namespace

void CTemplateB::BeginRows() {
    // What the answer to this call says is asked for again before the first row.
    static_cast<void>(status->SetProgress(0));
    status->SetProgressRange(RowsEnd() - top);
}

void CTemplateB::FilterRow(const std::uint8_t* row, const std::uint8_t* below,
                           std::uint8_t* to) const {
    const int end = ColumnsInDestination(ColumnsEnd());
    if (left >= end) return;
    const std::ptrdiff_t first = std::ptrdiff_t{left} * pixelFormat.PixelBytes();
    ComputeRow(row + first, below + first, to + first, end - left, end == right);
}

CErrorAutoThrow CTemplateB::RunOver(const IBandStage& before) {
    IRowWorkers& workers = *Workers();
    const auto row_bytes =
        static_cast<std::size_t>(width) * static_cast<std::size_t>(pixelFormat.PixelBytes());
    const int band_rows = BandRows(width, pixelFormat);
    const int stretch = band_rows * kBlocksBetweenSteps * workers.Threads();
    // The row below a band is overwritten by whoever makes the next one.
    CKeptRows seams(kBlocksBetweenSteps * workers.Threads(), row_bytes);
    CKeptRows bands((band_rows + 1) * workers.Threads(), row_bytes);

    const auto make_band = [&](int first, int last, const std::uint8_t* seam, int slot) {
        std::uint8_t* const pixels = bands.Row(slot * (band_rows + 1));
        const SBand band{pixels, static_cast<std::ptrdiff_t>(row_bytes), first,
                         RowBelow(last - 1) + 1};
        for (int at = first; at < last; ++at) {
            std::memcpy(band.Row(at), source->Row<std::uint8_t>(at), row_bytes);
        }
        if (band.last > last) std::memcpy(band.Row(last), seam, row_bytes);
        before.MakeBand(band);
        for (int at = first; at < last; ++at) {
            FilterRow(band.Row(at), band.Row(RowBelow(at)), destination->Row<std::uint8_t>(at));
        }
    };
    BeginRows();
    return ForEachStretch(
        RowsEnd() - top, stretch, [this](int) { return status->IncrementProgress(1); },
        [&](int start, int end) {
            for (int last = start; last < end;) {
                const int index = (last - start) / band_rows;
                last += std::min(band_rows, end - last);
                seams.Keep(index, source->Row<std::uint8_t>(RowBelow(top + last - 1)));
            }
            workers.ForEachBlock(end - start, band_rows, [&](int first, int last, int slot) {
                make_band(top + start + first, top + start + last, seams.Row(first / band_rows),
                          slot);
            });
        });
}

template <class Sample>
void CTemplateB::ComputeColour(const Sample* pixel, const Sample* below, const Sample* right_pixel,
                               Sample* to) {
    blue[0] = pixel[0], blue[1] = below[0], blue[3] = right_pixel[0];
    green[0] = pixel[1], green[1] = below[1], green[3] = right_pixel[1];
    red[0] = pixel[2], red[1] = below[2], red[3] = right_pixel[2];
    ComputeRGB();
    to[0] = static_cast<Sample>(outBlue);
    to[1] = static_cast<Sample>(outGreen);
    to[2] = static_cast<Sample>(outRed);
}

CErrorAutoThrow CTemplateB::ProcessGrey() {
    return ProcessRows<1>([this]<class Sample>(const Sample* pixel, const Sample* below,
                                               const Sample* right_pixel, Sample* to) {
        LoadGrey(pixel, below, right_pixel);
        ComputeGrey();
        to[0] = static_cast<Sample>(outGrey);
    });
}

CErrorAutoThrow CTemplateB::ProcessGreyAlpha() {
    return ProcessRows<2>([this]<class Sample>(const Sample* pixel, const Sample* below,
                                               const Sample* right_pixel, Sample* to) {
        LoadGrey(pixel, below, right_pixel);
        ComputeGrey();
        to[0] = static_cast<Sample>(outGrey);
        to[1] = pixel[1];
    });
}

CErrorAutoThrow CTemplateB::ProcessRGB() {
    return ProcessRows<3>(
        [this]<class Sample>(const Sample* pixel, const Sample* below, const Sample* right_pixel,
                             Sample* to) { ComputeColour(pixel, below, right_pixel, to); });
}

CErrorAutoThrow CTemplateB::ProcessRGBA() {
    return ProcessRows<4>([this]<class Sample>(const Sample* pixel, const Sample* below,
                                               const Sample* right_pixel, Sample* to) {
        ComputeColour(pixel, below, right_pixel, to);
        to[3] = below[3];
    });
}
