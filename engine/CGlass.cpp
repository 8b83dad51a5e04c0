#include "engine/CGlass.h"

#include "engine/Planes.h"
#include "host/core/Multiversion.h"

namespace {

constexpr int kLargestSide = 1 << 22;  // 512 times it is within an int

// Mirrors a sample position at the far end of an extent, and at the near end too in colour images;
// grey ones stop there. Ends within 1 to 256 * extent - 1.
template <class Traits>
ENGINE_INLINE int Fold(int position, int extent) {
    const int last = extent * 256 - 1;
    while (position > last || position < 1) {
        if (position > last) position = extent * 512 - position - 2;
        if (position < 1) position = Traits::kColourChannels == 3 ? 2 - position : 1;
    }
    return position;
}

// Takes the pixel `to` from the position, already displaced, in 1/256 pixel. `own_column` is the
// pixel's column: grey images take their alpha there.
template <class Traits>
ENGINE_INLINE void Resample(const CRowIteratorBands& source, int position_x, int position_y,
                            int own_column, typename Traits::Sample* to) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    const int px = Fold<Traits>(position_x, source.GetWidth());
    const int py = Fold<Traits>(position_y, source.GetHeight());
    const int column = px >> 8, row = py >> 8;
    const int fx = px & 255, fy = py & 255;
    const std::ptrdiff_t step = column + 1 == source.GetWidth() ? 0 : n;
    const Sample* row0 = source.Row<Sample>(row);
    const Sample* upper = row0 + std::ptrdiff_t{column} * n;
    const Sample* lower = (row + 1 == source.GetHeight() ? row0 : source.Row<Sample>(row + 1)) +
                          std::ptrdiff_t{column} * n;
    for (int c = 0; c < Traits::kColourChannels; ++c) {
        const int above = pixel::ToByte<Sample>(upper[c]) * (256 - fx) +
                          pixel::ToByte<Sample>(upper[step + c]) * fx;
        const int beneath = pixel::ToByte<Sample>(lower[c]) * (256 - fx) +
                            pixel::ToByte<Sample>(lower[step + c]) * fx;
        const int value = (above * (256 - fy) + beneath * fy) >> 16;
        to[c] = static_cast<Sample>(pixel::FromByte<Sample>(value));
    }
    if constexpr (n == 2) to[1] = row0[std::ptrdiff_t{own_column} * n + 1];
}

// The brightness of a pixel as displacements weigh it: the sum of three channels in 8-bit terms.
template <class Sample, int kChannels>
ENGINE_INLINE int Brightness(const Lane (&channel)[kChannels][TPlanes<kChannels>::kLength], int x) {
    if constexpr (kChannels <= 2) {
        return 3 * pixel::ToByte<Sample>(channel[0][x]);
    } else {
        return pixel::ToByte<Sample>(channel[0][x]) + pixel::ToByte<Sample>(channel[1][x]) +
               pixel::ToByte<Sample>(channel[2][x]);
    }
}

// How far each pixel of a block is pushed, in 1/256 pixel.
struct SPush {
    alignas(64) int right[kBlockPixels];
    alignas(64) int down[kBlockPixels];
};

template <class Traits>
CMDTEXTURE_MULTIVERSION void PushBlock(const typename Traits::Sample* row,
                                       const typename Traits::Sample* below, int count,
                                       int intensity, SPush& push) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    TPlanes<n> here, under;
    Split<Traits>(row, count + 1, here);
    Split<Traits>(below, count, under);
    alignas(64) std::int16_t sum[TPlanes<1>::kLength];
    for (int x = 0; x <= count; ++x) {
        sum[x] = static_cast<std::int16_t>(Brightness<Sample>(here.channel, x));
    }
    for (int x = 0; x < count; ++x) {
        push.right[x] = intensity * (sum[x + 1] - sum[x]);
        push.down[x] = intensity * (Brightness<Sample>(under.channel, x) - sum[x]);
    }
}

template <class Traits>
void GlassRow(const CRowIteratorBands& source, int y, int first, int end, int intensity,
              typename Traits::Sample* to) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    const Sample* row = source.Row<Sample>(y);
    const Sample* below = source.Row<Sample>(y + 1);
    SPush push;
    for (int start = first; start < end; start += kBlockPixels) {
        const int count = std::min(kBlockPixels, end - start);
        const std::ptrdiff_t at = std::ptrdiff_t{start} * n;
        PushBlock<Traits>(row + at, below + at, count, intensity, push);
        for (int x = 0; x < count; ++x) {
            const int column = start + x;
            Resample<Traits>(source, column * 256 + push.right[x], y * 256 + push.down[x], column,
                             to + std::ptrdiff_t{column} * n);
        }
    }
}

}  // namespace

CGlass::CGlass() { params.Add(L"Intensity", 0, 100, 0, 0); }

void CGlass::ReadParameters() {
    params.ClampValues();
    intensity = ValueOf(L"Intensity");
}

void CGlass::ComputeGrey() {
    AtDepth<1>([this](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const int c = pixel::ToByte<Sample>(grey[0]);
        sampleX = x * 256 + 3 * intensity * (pixel::ToByte<Sample>(grey[3]) - c);
        sampleY = y * 256 + 3 * intensity * (pixel::ToByte<Sample>(grey[1]) - c);
    });
}

void CGlass::ComputeRGB() {
    AtDepth<3>([this](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const auto sum = [this](int entry) {
            return pixel::ToByte<Sample>(red[entry]) + pixel::ToByte<Sample>(green[entry]) +
                   pixel::ToByte<Sample>(blue[entry]);
        };
        sampleX = x * 256 + intensity * (sum(3) - sum(0));
        sampleY = y * 256 + intensity * (sum(1) - sum(0));
    });
}

template <class Traits>
void CGlass::ComputePlainRow(int end) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    const std::ptrdiff_t first = std::ptrdiff_t{left} * n;
    const Sample* here = source->Row<Sample>(y) + first;
    const Sample* below = source->Row<Sample>(y + 1) + first;
    Sample* to = destination->Row<Sample>(y) + first;
    for (x = left; x < end; ++x, here += n, below += n, to += n) {
        if constexpr (Traits::kColourChannels == 1) {
            grey[0] = here[0], grey[1] = below[0], grey[3] = here[n];
            n == 1 ? ComputeGrey() : ComputeGreyAlpha();
        } else {
            blue[0] = here[0], blue[1] = below[0], blue[3] = here[n];
            green[0] = here[1], green[1] = below[1], green[3] = here[n + 1];
            red[0] = here[2], red[1] = below[2], red[3] = here[n + 2];
            n == 3 ? ComputeRGB() : ComputeRGBA();
        }
        Resample<Traits>(*source, sampleX, sampleY, x, to);
    }
}

template <class Traits>
CErrorAutoThrow CGlass::ProcessRows() {
    if (width > kLargestSide || height > kLargestSide) return TolmErrorCode::UnusableInput;
    status->SetProgressRange(bottom - top - 1);
    const int end = ColumnsInDestination(right - 1);
    for (y = top; y < bottom - 1; ++y) {
        if (StepCancelled()) return TolmErrorCode::Cancelled;
        if (!DestinationHasRow(y)) continue;
        if (use_plain_path) {
            ComputePlainRow<Traits>(end);
        } else {
            GlassRow<Traits>(*source, y, left, end, intensity,
                             destination->Row<typename Traits::Sample>(y));
        }
    }
    return {};
}

CErrorAutoThrow CGlass::ProcessGrey() {
    return AtDepth<1>([this](auto traits) { return ProcessRows<decltype(traits)>(); });
}
CErrorAutoThrow CGlass::ProcessGreyAlpha() {
    return AtDepth<2>([this](auto traits) { return ProcessRows<decltype(traits)>(); });
}
CErrorAutoThrow CGlass::ProcessRGB() {
    return AtDepth<3>([this](auto traits) { return ProcessRows<decltype(traits)>(); });
}
CErrorAutoThrow CGlass::ProcessRGBA() {
    return AtDepth<4>([this](auto traits) { return ProcessRows<decltype(traits)>(); });
}
