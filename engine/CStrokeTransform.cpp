#include "engine/CStrokeTransform.h"

#include <algorithm>

namespace {

constexpr int kBandRows = 32;
// Pixels drawn between two looks at progress: a few milliseconds' worth.
constexpr int kPixelsBetweenSteps = 2'000'000;

}  // namespace

CErrorAutoThrow CStrokeTransform::DrawStrokes() {
    if (WorkRectangle().IsRectEmpty()) return {};
    const SField field = Field();
    const std::unique_ptr<IStrokeParts> parts = MakeParts();
    IRowWorkers* const workers = Workers();
    const int rows = DestinationEnd();
    const auto part_at = [&](int stroke) {
        return static_cast<std::size_t>(stroke) * static_cast<std::size_t>(field.parts_a_stroke);
    };
    const auto draw = [&](int first, int last) {
        const std::size_t start = part_at(first);
        const std::size_t count = part_at(last) - start;
        if (!workers) {
            const SCanvas canvas = DestinationRows(0, rows);
            for (std::size_t i = 0; i < count; ++i) parts->Draw(start + i, canvas);
            return;
        }
        const CStrokeBands bands(0, rows, kBandRows, 0, count,
                                 [&](std::size_t i) { return parts->RowsOf(start + i); });
        workers->ForEachBlock(rows, kBandRows, [&](int top_row, int end_row, int /*slot*/) {
            const SCanvas canvas = DestinationRows(top_row, end_row);
            for (const std::uint32_t i : bands.Of(top_row)) parts->Draw(start + i, canvas);
        });
    };
    status->SetProgressRange(field.strokes);
    const int length = workers ? std::max(kPixelsBetweenSteps / field.pixels_a_stroke, 1) : 1;
    return ForEachStretch(
        field.strokes, length, [this](int) { return status->IncrementProgress(1); }, draw);
}

CErrorAutoThrow CStrokeTransform::Announce() {
    if (WorkRectangle().IsRectEmpty()) return {};
    const SField field = Field();
    status->SetProgressRange(field.strokes);
    CErrorAutoThrow announced = AnnounceSteps(*status, field.strokes);
    if (announced.Failed()) return announced;
    parts_ = MakeParts();
    bands_ = CStrokeBands(top, bottom, BandRows(width, pixelFormat), 1, parts_->Count(),
                          [this](std::size_t i) { return parts_->RowsOf(i); });
    return {};
}

void CStrokeTransform::MakeBand(const SBand& band) const {
    if (!parts_) return;  // the work rectangle is empty
    const SCanvas canvas{band.pixels, band.stride, width, band.first, band.last};
    for (const std::uint32_t i : bands_.Of(band.first)) parts_->Draw(i, canvas);
}
