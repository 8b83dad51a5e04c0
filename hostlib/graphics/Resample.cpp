#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "host/core/Multiversion.h"
#include "host/graphics/ImageHelpers.h"
#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/Resampling.h"
#include "hostlib/graphics/RowSamples.h"

// Separable resampling. An output row is first the weighted sum of source rows, a plain vector
// loop, and then the weighted sum of that row's pixels; nothing is kept between rows. Colour is
// weighted with its alpha, so that what lies under transparent pixels does not bleed into others.
namespace {

constexpr double kLobes = 3;

double Lanczos(double x) {
    if (x == 0) return 1;
    if (std::abs(x) >= kLobes) return 0;
    const double a = std::numbers::pi * x;
    return kLobes * std::sin(a) * std::sin(a / kLobes) / (a * a);
}

int Inside(int index, int size, bool seamless) {
    return seamless ? FloorMod(index, size) : std::clamp(index, 0, size - 1);
}

// For every output position the source positions and weights that make it.
class CTaps {
  public:
    // The positions from `first` to `last` - 1 of `out` that are scaled from `in`.
    CTaps(int in, int out, int first, int last, bool seamless, bool nearest) {
        const double scale = static_cast<double>(in) / out;
        const double stretch = std::max(scale, 1.0);
        begins_.push_back(0);
        for (int i = first; i < last; ++i) {
            const double centre = (FloorMod(i, out) + 0.5) * scale - 0.5;
            if (nearest || in == out) {
                Add(std::clamp(static_cast<int>(std::floor(centre + 0.5)), 0, in - 1), 1.0F);
            } else {
                AddLobes(centre, stretch, in, seamless);
            }
            begins_.push_back(indices_.size());
        }
    }
    std::size_t Begin(int i) const { return begins_[static_cast<std::size_t>(i)]; }
    std::size_t End(int i) const { return begins_[static_cast<std::size_t>(i) + 1]; }
    int Index(std::size_t tap) const { return indices_[tap]; }
    float Weight(std::size_t tap) const { return weights_[tap]; }

  private:
    void Add(int index, float weight) {
        indices_.push_back(index);
        weights_.push_back(weight);
    }
    void AddLobes(double centre, double stretch, int in, bool seamless) {
        const int first = static_cast<int>(std::ceil(centre - kLobes * stretch));
        const int last = static_cast<int>(std::floor(centre + kLobes * stretch));
        double sum = 0;
        for (int k = first; k <= last; ++k) sum += Lanczos((k - centre) / stretch);
        for (int k = first; k <= last; ++k) {
            const double weight = Lanczos((k - centre) / stretch) / sum;
            Add(Inside(k, in, seamless), static_cast<float>(weight));
        }
    }

    std::vector<std::size_t> begins_;
    std::vector<int> indices_;
    std::vector<float> weights_;
};

// A little weight that transparent pixels keep, so that colour under alpha 0 everywhere survives.
constexpr float kTransparentWeight = 1.0F / 1024;

template <class Traits>
CMDTEXTURE_MULTIVERSION void AddRow(const typename Traits::Sample* in, float weight, float* sums,
                                    int pixels) {
    if constexpr (!Traits::kHasAlpha) {
        for (int i = 0; i < pixels * Traits::kChannels; ++i) {
            sums[i] += weight * static_cast<float>(in[i]);
        }
        return;
    }
    constexpr float kFloor = kTransparentWeight * static_cast<float>(Traits::kMaximum);
    for (int x = 0; x < pixels; ++x) {
        const auto* pixel = in + x * Traits::kChannels;
        float* sum = sums + x * Traits::kChannels;
        const float alpha = weight * (static_cast<float>(pixel[Traits::kChannels - 1]) + kFloor);
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            sum[c] += alpha * static_cast<float>(pixel[c]);
        }
        sum[Traits::kChannels - 1] += alpha;
    }
}

template <class Traits>
void StorePixel(const float* sum, typename Traits::Sample* out) {
    constexpr float kMaximum = static_cast<float>(Traits::kMaximum);
    const auto rounded = [&](float value) {
        return static_cast<typename Traits::Sample>(std::clamp(value, 0.0F, kMaximum) + 0.5F);
    };
    if constexpr (!Traits::kHasAlpha) {
        for (int c = 0; c < Traits::kChannels; ++c) out[c] = rounded(sum[c]);
    } else {
        constexpr float kFloor = kTransparentWeight * kMaximum;
        const float alpha = std::max(sum[Traits::kChannels - 1], kFloor / 2);
        for (int c = 0; c < Traits::kColourChannels; ++c) out[c] = rounded(sum[c] / alpha);
        out[Traits::kChannels - 1] = rounded(sum[Traits::kChannels - 1] - kFloor);
    }
}

template <class Traits>
void SumPixels(const float* row, const CTaps& taps, int pixels, typename Traits::Sample* out) {
    for (int x = 0; x < pixels; ++x, out += Traits::kChannels) {
        float sum[Traits::kChannels] = {};
        for (std::size_t tap = taps.Begin(x); tap < taps.End(x); ++tap) {
            const float* pixel = row + taps.Index(tap) * Traits::kChannels;
            for (int c = 0; c < Traits::kChannels; ++c) sum[c] += taps.Weight(tap) * pixel[c];
        }
        StorePixel<Traits>(sum, out);
    }
}

template <class Traits>
CErrorAutoThrow ResampleRows(CStatusControl* status, const CRowIteratorBands& source,
                             CRowIteratorBands& output, const CTaps& across, const CTaps& down) {
    using Sample = typename Traits::Sample;
    const auto samples = static_cast<std::size_t>(source.GetWidth()) * Traits::kChannels;
    constexpr int kBlock = 8;
    return ForEachRowBlock(status, output.GetHeight(), kBlock, [&](int first, int last) {
        std::vector<float> sums(samples);
        for (int y = first; y < last; ++y) {
            std::fill(sums.begin(), sums.end(), 0.0F);
            for (std::size_t tap = down.Begin(y); tap < down.End(y); ++tap) {
                AddRow<Traits>(source.Row<Sample>(down.Index(tap)), down.Weight(tap), sums.data(),
                               source.GetWidth());
            }
            SumPixels<Traits>(sums.data(), across, output.GetWidth(), output.Row<Sample>(y));
        }
    });
}

}  // namespace

CErrorAutoThrow ResamplePart(CStatusControl* status, const CRowIteratorBands& source,
                             CRowIteratorBands& output, CSize scaled, const CRect& part,
                             bool seamless, bool nearest) {
    if (!source.IsAttached()) return TolmErrorCode::UnusableInput;
    const CSize size{source.GetWidth(), source.GetHeight()};
    if (scaled == size && part == CRect{0, 0, size.cx, size.cy}) {
        output.Destroy();
        return output.Copy(source, 0);
    }
    return CatchErrors([&]() -> CErrorAutoThrow {
        const CRect place = source.GetRect();
        CRowIteratorBands made;
        made.Create(part.Width(), part.Height(), source.GetPixelFormat(), {place.left, place.top})
            .ThrowIfFailed();
        const CTaps across(size.cx, scaled.cx, part.left, part.right, seamless, nearest);
        const CTaps down(size.cy, scaled.cy, part.top, part.bottom, seamless, nearest);
        CErrorAutoThrow result = VisitPixelFormat(
            source.GetPixelFormat(), CErrorAutoThrow(TolmErrorCode::UnusableInput),
            [&](auto traits) {
                return ResampleRows<decltype(traits)>(status, source, made, across, down);
            });
        if (!result.Failed()) output = made;
        return result;
    });
}

CErrorAutoThrow Resample(CStatusControl* status, const CRowIteratorBands& source,
                         CRowIteratorBands& output, ResampledSide width, ResampledSide height,
                         bool seamless, bool nearest) {
    const CSize scaled{width, height};
    return ResamplePart(status, source, output, scaled, {0, 0, width, height}, seamless, nearest);
}
