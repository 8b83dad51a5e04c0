#include "engine/CTemplateB.h"

#include <algorithm>

template <int kChannels, class Pixel>
CErrorAutoThrow CTemplateB::ProcessRows(Pixel&& pixel) {
    return AtDepth<kChannels>([&](auto traits) -> CErrorAutoThrow {
        using Sample = typename decltype(traits)::Sample;
        // What the answer to this call says is asked for again before the first row.
        static_cast<void>(status->SetProgress(0));
        status->SetProgressRange(bottom - top);
        const int last = right - 1;
        for (y = top; y < bottom; ++y) {
            if (StepCancelled()) return TolmErrorCode::Cancelled;
            if (!DestinationHasRow(y) || left >= right) continue;
            const Sample* row = source->Row<Sample>(y);
            const Sample* below = source->Row<Sample>(y < bottom - 1 ? y + 1 : y);
            Sample* to = destination->Row<Sample>(y);
            ComputeColumns<decltype(traits)>(row, below, to, ColumnsInDestination(last), pixel);
            if (last >= ColumnsInDestination(right)) continue;
            x = last;
            const std::ptrdiff_t at = std::ptrdiff_t{last} * kChannels;
            pixel(row + at, below + at, row + at, to + at);
        }
        return {};
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
