#include "engine/CGlass.h"

#include <bit>
#include <cstring>
#include <string>

#include "engine/Planes.h"
#include "host/core/Multiversion.h"

namespace {

constexpr int kLargestSide = (1 << 22) - 1;  // 512 times it is within an int

// Mirrors a sample position at the far end of an extent, and at the near end too in colour images;
// grey ones stop there. Ends within 1 to 256 * extent - 1.
template <class Traits>
CMDTEXTURE_INLINE int Fold(int position, int extent) {
    const int last = extent * 256 - 1;
    while (position > last || position < 1) {
        if (position > last) position = extent * 512 - position - 2;
        if (position < 1) position = Traits::kColourChannels == 3 ? 2 - position : 1;
    }
    return position;
}

// The place that a pixel is taken from: the upper left of four source pixels, how far the others
// are from it (0 beyond the image's last column or row), and the shares of the right and lower
// ones in 1/256.
struct SPlace {
    int column, row;
    int step_right, step_down;
    int share_right, share_down;
};

template <class Traits>
CMDTEXTURE_INLINE SPlace PlaceAt(int position_x, int position_y, int width, int height) {
    const int px = Fold<Traits>(position_x, width);
    const int py = Fold<Traits>(position_y, height);
    const int column = px >> 8, row = py >> 8;
    return {column,   row,     column + 1 == width ? 0 : 1, row + 1 == height ? 0 : 1,
            px & 255, py & 255};
}

// The value, 0 to 255, between four values.
CMDTEXTURE_INLINE int Bilinear(int upper_left, int upper_right, int lower_left, int lower_right,
                               int share_right, int share_down) {
    const int upper = upper_left * 256 + (upper_right - upper_left) * share_right;
    const int lower = lower_left * 256 + (lower_right - lower_left) * share_right;
    return (upper * 256 + (lower - upper) * share_down) >> 16;
}

// The brightness of a pixel as displacements weigh it: the sum of three channels in 8-bit terms.
template <class Sample, int kChannels>
CMDTEXTURE_INLINE int Brightness(const Lane (&channel)[kChannels][TPlanes<kChannels>::kLength],
                                 int x) {
    if constexpr (kChannels <= 2) {
        return 3 * pixel::ToByte<Sample>(channel[0][x]);
    } else {
        return pixel::ToByte<Sample>(channel[0][x]) + pixel::ToByte<Sample>(channel[1][x]) +
               pixel::ToByte<Sample>(channel[2][x]);
    }
}

// A block of pixels on its way: the positions they are taken from, in 1/256 pixel, the colour
// channels of the four source pixels there, one byte a channel, and the shares of the right and
// lower ones.
struct SMixture {
    alignas(64) int position_x[kBlockPixels];
    alignas(64) int position_y[kBlockPixels];
    alignas(64) std::uint32_t corner[4][kBlockPixels];
    alignas(64) int share_right[kBlockPixels];
    alignas(64) int share_down[kBlockPixels];
};

// The positions, and the shares of those that need no folding, for `count` pixels from (x0, y).
template <class Traits>
CMDTEXTURE_MULTIVERSION void PlaceBlock(const typename Traits::Sample* row,
                                        const typename Traits::Sample* below, int x0, int y,
                                        int count, int intensity, SMixture& mixture) {
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
        const int px = (x0 + x) * 256 + intensity * (sum[x + 1] - sum[x]);
        const int py = y * 256 + intensity * (Brightness<Sample>(under.channel, x) - sum[x]);
        mixture.position_x[x] = px;
        mixture.position_y[x] = py;
        mixture.share_right[x] = px & 255;
        mixture.share_down[x] = py & 255;
    }
}

template <class Traits>
CMDTEXTURE_INLINE std::uint32_t PackChannels(const typename Traits::Sample* pixel) {
    std::uint32_t packed = 0;
    for (int c = 0; c < Traits::kColourChannels; ++c) {
        const int value = pixel::ToByte<typename Traits::Sample>(pixel[c]);
        packed |= static_cast<std::uint32_t>(value) << (8 * c);
    }
    return packed;
}

// The same for a pixel that is not the last of its row: what follows it may be read, and is packed
// with it.
template <class Traits>
CMDTEXTURE_INLINE std::uint32_t PackInside(const typename Traits::Sample* pixel) {
    if constexpr (Traits::kColourChannels == 3 && !Traits::kIs16bit &&
                  std::endian::native == std::endian::little) {
        std::uint32_t packed;
        std::memcpy(&packed, pixel, sizeof packed);
        return packed;
    } else {
        return PackChannels<Traits>(pixel);
    }
}

// Collects the source pixels of a block of `count` pixels from column x0, and for grey images with
// alpha the alpha samples.
template <class Traits>
void CollectBlock(const CRowIteratorBands& source, int x0, int count, SMixture& mixture,
                  TPlanes<Traits::kChannels>& out) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    const int width = source.GetWidth(), height = source.GetHeight();
    const std::uint8_t* const pixels = source.Row<std::uint8_t>(0);
    const std::ptrdiff_t stride = source.Stride();
    const auto pixel_at = [=](int column, int row) {
        return reinterpret_cast<const Sample*>(pixels + stride * row) + std::ptrdiff_t{column} * n;
    };
    // Positions from 1 to below these need no folding, and what follows their pixels is in the row.
    const int inside_x = std::max(width - 2, 0) * 256;
    const int inside_y = (height - 1) * 256;
    for (int x = 0; x < count; ++x) {
        const int px = mixture.position_x[x];
        const int py = mixture.position_y[x];
        int row = py >> 8;
        if (px >= 1 && px < inside_x && py >= 1 && py < inside_y) {
            const Sample* upper = pixel_at(px >> 8, row);
            const Sample* lower = pixel_at(px >> 8, row + 1);
            mixture.corner[0][x] = PackInside<Traits>(upper);
            mixture.corner[1][x] = PackInside<Traits>(upper + n);
            mixture.corner[2][x] = PackInside<Traits>(lower);
            mixture.corner[3][x] = PackInside<Traits>(lower + n);
        } else {
            const SPlace place = PlaceAt<Traits>(px, py, width, height);
            row = place.row;
            const Sample* upper = pixel_at(place.column, row);
            const Sample* lower = pixel_at(place.column, row + place.step_down);
            mixture.corner[0][x] = PackChannels<Traits>(upper);
            mixture.corner[1][x] = PackChannels<Traits>(upper + place.step_right * n);
            mixture.corner[2][x] = PackChannels<Traits>(lower);
            mixture.corner[3][x] = PackChannels<Traits>(lower + place.step_right * n);
            mixture.share_right[x] = place.share_right;
            mixture.share_down[x] = place.share_down;
        }
        if constexpr (n == 2) out.channel[1][x] = pixel_at(x0 + x, row)[1];
    }
}

template <class Traits>
CMDTEXTURE_MULTIVERSION void MixBlock(const SMixture& mixture, int count,
                                      TPlanes<Traits::kChannels>& out,
                                      typename Traits::Sample* to) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    for (int c = 0; c < Traits::kColourChannels; ++c) {
        for (int x = 0; x < count; ++x) {
            const auto channel = [&](int corner) {
                return static_cast<int>((mixture.corner[corner][x] >> (8 * c)) & 255U);
            };
            const int value = Bilinear(channel(0), channel(1), channel(2), channel(3),
                                       mixture.share_right[x], mixture.share_down[x]);
            out.channel[c][x] = ToLane(pixel::FromByte<Sample>(value));
        }
    }
    if constexpr (n == 4) {  // the destination keeps its alpha
        for (int x = 0; x < count; ++x) out.channel[3][x] = to[4 * x + 3];
    }
    Merge<Traits>(out, count, to);
}

template <class Traits>
void GlassRow(const CRowIteratorBands& source, int y, int first, int end, int intensity,
              typename Traits::Sample* to) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    const Sample* row = source.Row<Sample>(y);
    const Sample* below = source.Row<Sample>(y + 1);
    SMixture mixture;
    TPlanes<n> out;
    for (int start = first; start < end; start += kBlockPixels) {
        const int count = std::min(kBlockPixels, end - start);
        const std::ptrdiff_t at = std::ptrdiff_t{start} * n;
        PlaceBlock<Traits>(row + at, below + at, start, y, count, intensity, mixture);
        CollectBlock<Traits>(source, start, count, mixture, out);
        MixBlock<Traits>(mixture, count, out, to + at);
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
        const SPlace place = PlaceAt<Traits>(sampleX, sampleY, width, height);
        const Sample* row = source->Row<Sample>(place.row);
        const Sample* upper = row + std::ptrdiff_t{place.column} * n;
        const Sample* lower =
            source->Row<Sample>(place.row + place.step_down) + std::ptrdiff_t{place.column} * n;
        const int step = place.step_right * n;
        const auto byte = [](Sample sample) { return pixel::ToByte<Sample>(sample); };
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            const int value = Bilinear(byte(upper[c]), byte(upper[step + c]), byte(lower[c]),
                                       byte(lower[step + c]), place.share_right, place.share_down);
            to[c] = static_cast<Sample>(pixel::FromByte<Sample>(value));
        }
        if constexpr (n == 2) to[1] = row[std::ptrdiff_t{x} * n + 1];
    }
}

template <class Traits>
CErrorAutoThrow CGlass::ProcessRows() {
    if (width > kLargestSide || height > kLargestSide) {
        return {TolmErrorCode::UnusableInput,
                "a side of the image is longer than " + std::to_string(kLargestSide) + " pixels"};
    }
    status->SetProgressRange(bottom - top - 1);
    const int end = ColumnsInDestination(right - 1);
    return ForRows(bottom - 1, [&](int first, int last) {
        for (int row = first; row < last && DestinationHasRow(row); ++row) {
            if (use_plain_path) {
                y = row;
                ComputePlainRow<Traits>(end);
            } else {
                GlassRow<Traits>(*source, row, left, end, intensity,
                                 destination->Row<typename Traits::Sample>(row));
            }
        }
    });
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
