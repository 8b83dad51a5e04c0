#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// Strokes sorted by the bands of rows that they touch. Strokes that cross are drawn over each other
// in a fixed order; within a band they keep it, and bands share no pixels, so bands may be drawn by
// different threads.
class CStrokeBands {
  public:
    // The rows that a stroke touches, both included.
    struct SRows {
        int first, last;
    };

    CStrokeBands() = default;
    // Bands of `height` rows that cover the rows from `top` to `bottom` - 1. `reach` more rows
    // below a band belong to it as well. rows_of(i) tells the rows of stroke i of `count`.
    template <class RowsOf>
    CStrokeBands(int top, int bottom, int height, int reach, std::size_t count, RowsOf&& rows_of)
        : top_(top), height_(height), starts_(BandAt(bottom - 1) + 2) {
        const auto for_bands = [&](std::size_t stroke, auto&& visit) {
            const SRows rows = rows_of(stroke);
            const int first = std::max(rows.first - reach, top);
            const int last = std::min(rows.last, bottom - 1);
            if (first > last) return;
            const std::size_t end = BandAt(last);
            for (std::size_t band = BandAt(first); band <= end; ++band) visit(band);
        };
        for (std::size_t i = 0; i < count; ++i) {
            for_bands(i, [&](std::size_t band) { ++starts_[band + 1]; });
        }
        for (std::size_t band = 1; band < starts_.size(); ++band)
            starts_[band] += starts_[band - 1];
        strokes_.resize(starts_.back());
        std::vector<std::size_t> next(starts_);
        for (std::size_t i = 0; i < count; ++i) {
            for_bands(i, [&](std::size_t band) {
                strokes_[next[band]++] = static_cast<std::uint32_t>(i);
            });
        }
    }

    // The strokes of the band that begins at a row, in their order.
    std::span<const std::uint32_t> Of(int row) const {
        const std::size_t band = BandAt(row);
        return std::span(strokes_).subspan(starts_[band], starts_[band + 1] - starts_[band]);
    }

  private:
    std::size_t BandAt(int row) const { return static_cast<std::size_t>((row - top_) / height_); }

    int top_ = 0;
    int height_ = 1;
    std::vector<std::size_t> starts_{0, 0};  // of each band's part of the next
    std::vector<std::uint32_t> strokes_;
};
