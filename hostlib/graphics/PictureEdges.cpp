#include "hostlib/graphics/PictureEdges.h"

#include <algorithm>
#include <cmath>

#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/RowSamples.h"

namespace {

// Rows of each square that are looked at.
constexpr int kRowsOfSquare = 3;
// The pull of an edge that moves a point half of the way: a step of a tenth of the way from black
// to white, through all of the reach.
constexpr double kHalfWay = 0.01;

// The mean brightness of the columns of a row of squares, 0 to 1, as the picture shows it.
template <class Traits>
void MeanOfSquares(const CRowIteratorBands& picture, int first, int last, int columns,
                   float* means) {
    using Sample = typename Traits::Sample;
    constexpr double kWhite = static_cast<double>(Traits::kMaximum) * Traits::kColourChannels;
    const SShownSamples shown = ShownBy(picture);
    const int rows = std::min(last - first, kRowsOfSquare);
    for (int i = 0; i < columns; ++i) {
        const long width = picture.GetWidth();
        const int left = static_cast<int>(i * width / columns);
        const int right = static_cast<int>((i + 1) * width / columns);
        std::uint64_t sum = 0;
        for (int k = 0; k < rows; ++k) {
            const int y = first + (2 * k + 1) * (last - first) / (2 * rows);
            const Sample* pixel = picture.Row<Sample>(y) + left * shown.step + shown.first;
            for (int x = left; x < right; ++x, pixel += shown.step) {
                std::uint64_t colour = 0;
                for (int c = 0; c < Traits::kColourChannels; ++c) colour += pixel[c];
                if constexpr (Traits::kHasAlpha) {
                    colour = colour * pixel[Traits::kChannels - 1] / Traits::kMaximum;
                }
                sum += colour;
            }
        }
        means[i] = static_cast<float>(static_cast<double>(sum) / kWhite / (right - left) / rows);
    }
}

}  // namespace

CPictureEdges::CPictureEdges(CStatusControl* status, const CRowIteratorBands& picture,
                             double spacing)
    : columns_(std::max(static_cast<int>(picture.GetWidth() / std::max(spacing, 1.0)), 1)),
      rows_(std::max(static_cast<int>(picture.GetHeight() / std::max(spacing, 1.0)), 1)),
      step_x_(static_cast<double>(picture.GetWidth()) / columns_),
      step_y_(static_cast<double>(picture.GetHeight()) / rows_),
      gradients_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {
    std::vector<float> means(gradients_.size());
    const auto row_of = [&](auto& of, int row) {
        return of.data() + static_cast<std::ptrdiff_t>(std::clamp(row, 0, rows_ - 1)) * columns_;
    };
    const long height = picture.GetHeight();
    ForEachRowBlock(status, rows_, 4, [&](int first, int last) {
        VisitPixelFormat(picture.GetAccessFormat(), false, [&](auto traits) {
            for (int row = first; row < last; ++row) {
                MeanOfSquares<decltype(traits)>(picture, static_cast<int>(row * height / rows_),
                                                static_cast<int>((row + 1) * height / rows_),
                                                columns_, row_of(means, row));
            }
            return true;
        });
    }).ThrowIfFailed();
    for (int row = 0; row < rows_; ++row) {
        const float *above = row_of(means, row - 1), *at = row_of(means, row);
        const float* below = row_of(means, row + 1);
        SGradient* out = row_of(gradients_, row);
        for (int i = 0; i < columns_; ++i) {
            const int left = std::max(i - 1, 0), right = std::min(i + 1, columns_ - 1);
            out[i] = {(at[right] - at[left]) / 2, (below[i] - above[i]) / 2};
        }
    }
}

SPlanePoint CPictureEdges::Pulled(SPlanePoint from, double reach) const {
    const double x = from.x / step_x_ - 0.5, y = from.y / step_y_ - 0.5;
    const double by = std::max(reach / std::min(step_x_, step_y_), 1.0);
    double xx = 0, xy = 0, yy = 0, pull_x = 0, pull_y = 0;
    for (int j = std::max(static_cast<int>(std::ceil(y - by)), 0); j <= y + by && j < rows_; ++j) {
        const SGradient* row = gradients_.data() + static_cast<std::ptrdiff_t>(j) * columns_;
        for (int i = std::max(static_cast<int>(std::ceil(x - by)), 0); i <= x + by && i < columns_;
             ++i) {
            const double dx = i - x, dy = j - y;
            const double near = std::max(1 - (dx * dx + dy * dy) / (by * by), 0.0);
            const double weight = near * near;
            const double gx = row[i].x, gy = row[i].y;
            xx += weight * gx * gx;
            xy += weight * gx * gy;
            yy += weight * gy * gy;
            const double along = weight * (gx * dx + gy * dy);
            pull_x += along * gx;
            pull_y += along * gy;
        }
    }
    const double hold = kHalfWay * by;
    xx += hold;
    yy += hold;
    const double area = xx * yy - xy * xy;
    return {from.x + step_x_ * (pull_x * yy - pull_y * xy) / area,
            from.y + step_y_ * (pull_y * xx - pull_x * xy) / area};
}
