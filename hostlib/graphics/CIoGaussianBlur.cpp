#include "host/graphics/CIoGaussianBlur.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "hostlib/graphics/BlurRows.h"
#include "hostlib/graphics/GaussianPlan.h"
#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/RowSamples.h"

namespace {

using blur::SGaussianAccuracy;
using blur::SGaussianPlan;

// Chosen so that the errors, each at its worst and added up, stay below 1 and 8 steps: two cut
// kernels and the interpolation's cut ends, the distorted waves of half the range, and rounding.
constexpr SGaussianAccuracy kByteAccuracy{3e-4, 9e-4, 0.85, 3};
constexpr SGaussianAccuracy kWordAccuracy{2e-5, 7e-5, 0.95, 4};

// Fixed point may lose half of 1/256 with each term; an even picture stays even while all of them
// together lose less than half a step. Reached at a standard deviation of about 24.
constexpr int kMostTermsInFixedPoint = 160;

constexpr int kBlockRows = 8;   // rows that a thread takes on at a time
constexpr int kBatchRows = 32;  // blurred rows that are made before rows of the result
// Rows are summed in tiles of so many samples, the same tile of one row after the other: the rows
// that they share stay in the cache.
constexpr std::ptrdiff_t kColumnTile = 2048;

// Weights as the sums take them. In fixed point with 2^16 for `whole`: each is cut so that the
// error of its predecessors is made good, and all of them add up exactly.
template <class Sum>
std::vector<Sum> WeightsFor(const std::vector<double>& exact, double whole) {
    std::vector<Sum> weights;
    double sum = 0;
    double given = 0;
    for (const double weight : exact) {
        if constexpr (std::is_same_v<Sum, float>) {
            weights.push_back(static_cast<float>(weight));
            continue;
        }
        sum += weight;
        const double rounded = std::min(std::round(sum / whole * 65536) - given, 65535.0);
        weights.push_back(static_cast<Sum>(rounded));
        given += rounded;
    }
    return weights;
}

// Gathers the shown samples of a row.
template <class Sample>
void Pick(const SShownSamples& shown, const Sample* from, Sample* to, std::ptrdiff_t pixels) {
    for (std::ptrdiff_t x = 0; x < pixels; ++x) {
        for (int c = 0; c < shown.count; ++c) {
            to[x * shown.count + c] = from[x * shown.step + shown.first + c];
        }
    }
}

// One blur of an image of Samples, with sums of type Sum (see BlurRows.h).
template <class Sample, class Sum>
class CBlurRun {
  public:
    CBlurRun(const SGaussianPlan& plan, const CRowIteratorBands& source,
             CRowIteratorBands& destination)
        : source_(source),
          destination_(destination),
          shown_(ShownBy(source)),
          step_(plan.step),
          before_(plan.before),
          span_(plan.Span()),
          blurred_rows_(plan.BlurredRows(source.GetHeight())),
          down_(WeightsFor<Sum>(plan.down, 0.5)),
          along_(WeightsFor<Sum>(plan.along, 0.5)) {
        for (const auto& weights : plan.between) between_.push_back(WeightsFor<Sum>(weights, 1));
    }

    CErrorAutoThrow Run(CStatusControl* status) {
        if (step_ > 1) return RunInBatches(status);
        return ForEachRowBlock(status, source_.GetHeight(), kBlockRows, [&](int first, int last) {
            BlurRows(first, last, [&](int y) { return destination_.Row<Sample>(y); });
        });
    }

  private:
    std::ptrdiff_t RowLength() const { return std::ptrdiff_t{source_.GetWidth()} * shown_.count; }
    // Where blurred row number k, counted from 0, is held until a later batch needs its place.
    Sum* HeldRow(int k) { return held_.get() + k % (kBatchRows + span_) * RowLength(); }

    // Makes a batch of blurred rows, then the rows of the result that they complete, and so on.
    // The last blurred rows of a batch are held for the next.
    CErrorAutoThrow RunInBatches(CStatusControl* status) {
        const auto held_rows = std::size_t{kBatchRows} + static_cast<std::size_t>(span_);
        held_ = std::make_unique_for_overwrite<Sum[]>(held_rows *
                                                      static_cast<std::size_t>(RowLength()));
        CStatusControl batches(status);
        batches.SetNumberOfSteps(2 * ((blurred_rows_ - 1) / kBatchRows + 1));
        int y = 0;
        for (int k = 0; k < blurred_rows_; k += kBatchRows) {
            const int made = std::min(k + kBatchRows, blurred_rows_);
            CErrorAutoThrow result =
                ForEachRowBlock(&batches, made - k, kBlockRows, [&](int first, int last) {
                    BlurRows(k + first, k + last, [&](int row) { return HeldRow(row); });
                });
            if (result.Failed()) return result;
            const int end = std::min((made - span_ + 1) * step_, source_.GetHeight());
            result = ForEachRowBlock(&batches, end - y, kBlockRows, [&](int first, int last) {
                Interpolate(y + first, y + last);
            });
            if (result.Failed()) return result;
            y = end;
        }
        return {};
    }

    // The blurred rows `first` to `last` - 1, counted from 0, into the rows that row_of gives.
    template <class RowOf>
    void BlurRows(int first, int last, RowOf&& row_of) {
        const auto padding = static_cast<std::ptrdiff_t>(along_.size() - 1) * shown_.count;
        const std::ptrdiff_t stride = RowLength() + 2 * padding;
        const auto rows = std::make_unique_for_overwrite<Sum[]>(
            static_cast<std::size_t>(stride * (last - first)));
        SumDown(first, last, rows.get() + padding, stride);
        for (int k = first; k < last; ++k) {
            Sum* row = rows.get() + padding + stride * (k - first);
            RepeatEnds(row, padding);
            SumAlong(row, row_of(k));
        }
    }

    void SumDown(int first, int last, Sum* rows, std::ptrdiff_t stride) const {
        if (shown_.count < shown_.step) return SumDownShown(first, last, rows, stride);
        for (std::ptrdiff_t at = 0; at < RowLength(); at += kColumnTile) {
            const std::ptrdiff_t length = std::min(kColumnTile, RowLength() - at);
            for (int k = first; k < last; ++k) {
                SumColumns(k, at, length, rows + stride * (k - first) + at);
            }
        }
    }

    // Under a channel selection all channels are summed, and those shown are picked from the sums.
    void SumDownShown(int first, int last, Sum* rows, std::ptrdiff_t stride) const {
        const int width = source_.GetWidth();
        const std::ptrdiff_t length = std::ptrdiff_t{width} * shown_.step;
        const auto sums = std::make_unique_for_overwrite<Sum[]>(static_cast<std::size_t>(length));
        for (int k = first; k < last; ++k) {
            SumColumns(k, 0, length, sums.get());
            Pick(shown_, sums.get(), rows + stride * (k - first), width);
        }
    }

    void SumColumns(int k, std::ptrdiff_t at, std::ptrdiff_t length, Sum* out) const {
        const int y = (k - before_) * step_;
        std::vector<const Sample*> above(down_.size());
        std::vector<const Sample*> below(down_.size());
        for (int j = 0; j < static_cast<int>(down_.size()); ++j) {
            above[static_cast<std::size_t>(j)] = SourceRow(y - j) + at;
            below[static_cast<std::size_t>(j)] = SourceRow(y + j) + at;
        }
        blur::WeighPairs(above.data(), below.data(), down_.data(), static_cast<int>(down_.size()),
                         out, length);
    }

    const Sample* SourceRow(int y) const {
        return source_.Row<Sample>(std::clamp(y, 0, source_.GetHeight() - 1));
    }

    void RepeatEnds(Sum* row, std::ptrdiff_t padding) const {
        const Sum* last = row + RowLength() - shown_.count;
        for (std::ptrdiff_t i = 0; i < padding; ++i) {
            row[i - padding] = row[i % shown_.count];
            row[RowLength() + i] = last[i % shown_.count];
        }
    }

    template <class Out>
    void SumAlong(const Sum* row, Out* out) const {
        std::vector<const Sum*> left(along_.size());
        std::vector<const Sum*> right(along_.size());
        for (std::size_t j = 0; j < along_.size(); ++j) {
            left[j] = row - static_cast<std::ptrdiff_t>(j) * shown_.count;
            right[j] = row + static_cast<std::ptrdiff_t>(j) * shown_.count;
        }
        blur::WeighPairs(left.data(), right.data(), along_.data(), static_cast<int>(along_.size()),
                         out, RowLength());
    }

    // Rows `first` to `last` - 1 of the result.
    void Interpolate(int first, int last) {
        std::vector<const Sum*> rows(static_cast<std::size_t>(span_));
        for (std::ptrdiff_t at = 0; at < RowLength(); at += kColumnTile) {
            for (int y = first; y < last; ++y) {
                for (int j = 0; j < span_; ++j) {
                    rows[static_cast<std::size_t>(j)] = HeldRow(y / step_ + j) + at;
                }
                blur::WeighRows(rows.data(), between_[static_cast<std::size_t>(y % step_)].data(),
                                span_, destination_.Row<Sample>(y) + at,
                                std::min(kColumnTile, RowLength() - at));
            }
        }
    }

    const CRowIteratorBands& source_;
    CRowIteratorBands& destination_;
    const SShownSamples shown_;
    const int step_;
    const int before_;
    const int span_;
    const int blurred_rows_;
    const std::vector<Sum> down_;
    const std::vector<Sum> along_;
    std::vector<std::vector<Sum>> between_;
    std::unique_ptr<Sum[]> held_;  // the last blurred rows
};

template <class Sample>
CErrorAutoThrow Blur(double sigma, const CRowIteratorBands& source, CRowIteratorBands& destination,
                     CStatusControl* status) {
    const bool bytes = sizeof(Sample) == 1;
    const SGaussianPlan plan = blur::PlanGaussian(sigma, {source.GetWidth(), source.GetHeight()},
                                                  bytes ? kByteAccuracy : kWordAccuracy);
    if constexpr (sizeof(Sample) == 1) {
        if (plan.Terms() <= kMostTermsInFixedPoint) {
            return CBlurRun<Sample, std::uint16_t>(plan, source, destination).Run(status);
        }
    }
    return CBlurRun<Sample, float>(plan, source, destination).Run(status);
}

// Copies the samples that the source shows.
template <class Sample>
CErrorAutoThrow CopyShown(const CRowIteratorBands& source, CRowIteratorBands& destination,
                          CStatusControl* status) {
    const SShownSamples shown = ShownBy(source);
    return ForEachRowBlock(status, source.GetHeight(), kBlockRows, [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            Pick(shown, source.Row<Sample>(y), destination.Row<Sample>(y), source.GetWidth());
        }
    });
}

// Whether the destination has the size and the format that the source shows.
bool Fits(const CRowIteratorBands& destination, const CRowIteratorBands& source) {
    return destination.IsAttached() && destination.GetWidth() == source.GetWidth() &&
           destination.GetHeight() == source.GetHeight() &&
           destination.GetPixelFormat() == source.GetAccessFormat();
}

// Whether two images lie over each other in memory, through one store or through two that somebody
// made of the same memory.
bool Overlap(const CRowIteratorBands& a, const CRowIteratorBands& b) {
    const auto bytes = [](const CRowIteratorBands& image) {
        const auto first = reinterpret_cast<std::uintptr_t>(image.Row<std::uint8_t>(0));
        const auto last =
            reinterpret_cast<std::uintptr_t>(image.Row<std::uint8_t>(image.GetHeight() - 1));
        const auto row = static_cast<std::uintptr_t>(image.GetWidth()) *
                         static_cast<std::uintptr_t>(image.GetPixelFormat().PixelBytes());
        return std::pair(std::min(first, last), std::max(first, last) + row);
    };
    const auto [a_begin, a_end] = bytes(a);
    const auto [b_begin, b_end] = bytes(b);
    return a_begin < b_end && b_begin < a_end;
}

}  // namespace

CIoGaussianBlur::CIoGaussianBlur(double sigma, int /*mode*/) : sigma_(sigma) {}

CErrorAutoThrow CIoGaussianBlur::operator()(CRowIteratorBands& destination,
                                            const CRowIteratorBands& source) {
    return CatchErrors([&]() -> CErrorAutoThrow {
        if (!source.IsAttached()) return TolmErrorCode::UnusableInput;
        CRowIteratorBands from = source;
        const CPoint origin{source.GetRect().left, source.GetRect().top};
        if (!Fits(destination, source)) {
            destination
                .Create(source.GetWidth(), source.GetHeight(), source.GetAccessFormat(), origin)
                .ThrowIfFailed();
        } else if (Overlap(destination, source)) {
            // Rows are read again after their place has been written.
            CRowIteratorBands copy;
            copy.Copy(source, 0).ThrowIfFailed();
            copy.SetChannelAccess(source.GetChannelAccess(), 0).ThrowIfFailed();
            from = std::move(copy);
        }
        destination.SetOrigin(origin);
        destination.SetChannelAccess(ENChannel::All, 0).ThrowIfFailed();
        return VisitPixelFormat(
            from.GetAccessFormat(), CErrorAutoThrow(TolmErrorCode::UnusableInput),
            [&]<class Traits>(Traits) {
                using Sample = typename Traits::Sample;
                return sigma_ > 0 ? Blur<Sample>(sigma_, from, destination, Status())
                                  : CopyShown<Sample>(from, destination, Status());
            });
    });
}
