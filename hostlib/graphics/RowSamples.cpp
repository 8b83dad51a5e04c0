#include "hostlib/graphics/RowSamples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

#include "host/graphics/PixelMath.h"

namespace {

template <class Sample, int kFrom, int kTo, int kCount>
void CopyPixels(const void* from, void* to, int pixels) {
    const auto* in = static_cast<const Sample*>(from);
    auto* out = static_cast<Sample*>(to);
    for (int x = 0; x < pixels; ++x, in += kFrom, out += kTo) {
        for (int c = 0; c < kCount; ++c) out[c] = in[c];
    }
}

// The copy loops for 1 to 4 samples a pixel on either side: copies[from_step - 1][to_step - 1].
using CopyLoop = void (*)(const void*, void*, int);
template <class Sample, int kCount, int... kIndex>
constexpr std::array<CopyLoop, 16> MakeCopies(std::integer_sequence<int, kIndex...>) {
    return {CopyPixels<Sample, kIndex / 4 + 1, kIndex % 4 + 1,
                       std::min({kCount, kIndex / 4 + 1, kIndex % 4 + 1})>...};
}
template <class Sample, int kCount>
constexpr auto kCopies = MakeCopies<Sample, kCount>(std::make_integer_sequence<int, 16>{});

// The weights of red, green and blue in 1/65536, which they add up to exactly.
struct SWeights {
    std::uint32_t red, green, blue;
    explicit SWeights(const SColorSpecRGB& spec) {
        const double sum = spec.red + spec.green + spec.blue;
        const bool usable =
            spec.red >= 0 && spec.green >= 0 && spec.blue >= 0 && sum > 0 && std::isfinite(sum);
        const SColorSpecRGB by = usable ? spec : SColorSpecRGB{};
        const double scale = 65536 / (by.red + by.green + by.blue);
        red = static_cast<std::uint32_t>(by.red * scale + 0.5);
        blue = std::min(static_cast<std::uint32_t>(by.blue * scale + 0.5), 65536 - red);
        green = 65536 - red - blue;
    }
    // In the depth of To when that is the larger, and rounded to nearest; fits 32 bits for 16-bit
    // samples too. Equal channels keep their value.
    template <class To, class From>
    auto Brightness(const From* bgr) const {
        constexpr bool kWiden = sizeof(To) > sizeof(From);
        const std::uint32_t sum = blue * bgr[0] + green * bgr[1] + red * bgr[2];
        return static_cast<std::conditional_t<kWiden, To, From>>(
            (sum * (kWiden ? 257U : 1U) + 32768) >> 16);
    }
};

template <class To, class From>
To Rescale(From sample) {
    if constexpr (sizeof(To) == sizeof(From)) return sample;
    if constexpr (sizeof(To) > sizeof(From)) return static_cast<To>(pixel::Times257(sample));
    return static_cast<To>(pixel::NearestByte(sample));
}

template <class From, class To>
void ConvertPixels(const typename From::Sample* in, typename To::Sample* out, int pixels,
                   const SWeights& weights) {
    using Sample = typename To::Sample;
    for (int x = 0; x < pixels; ++x, in += From::kChannels, out += To::kChannels) {
        for (int c = 0; c < To::kColourChannels; ++c) {
            if constexpr (From::kColourChannels > To::kColourChannels) {
                out[c] = Rescale<Sample>(weights.Brightness<Sample>(in));
            } else {
                out[c] = Rescale<Sample>(in[From::kColourChannels == 1 ? 0 : c]);
            }
        }
        if constexpr (To::kHasAlpha) {
            out[To::kChannels - 1] = From::kHasAlpha ? Rescale<Sample>(in[From::kChannels - 1])
                                                     : static_cast<Sample>(To::kMaximum);
        }
    }
}

}  // namespace

SShownSamples ShownBy(const CRowIteratorBands& image) {
    const int channels = image.GetPixelFormat().Channels();
    const bool alpha_only = image.GetChannelAccess() == ENChannel::Alpha;
    return {alpha_only ? channels - 1 : 0, image.GetAccessFormat().Channels(), channels};
}

void CopySampleRow(const void* from, int from_step, void* to, int to_step, int count, int bytes,
                   int pixels) {
    if (from == to && from_step == to_step) return;
    if (count == from_step && count == to_step) {
        std::memcpy(to, from,
                    static_cast<std::size_t>(count * bytes) * static_cast<std::size_t>(pixels));
        return;
    }
    const auto loop = static_cast<std::size_t>((from_step - 1) * 4 + to_step - 1);
    if (bytes == 1) {
        (count == 1 ? kCopies<std::uint8_t, 1> : kCopies<std::uint8_t, 3>)[loop](from, to, pixels);
    } else {
        (count == 1 ? kCopies<std::uint16_t, 1> : kCopies<std::uint16_t, 3>)[loop](from, to,
                                                                                   pixels);
    }
}

void CopyShownRow(const CRowIteratorBands& source, int source_y, CRowIteratorBands& destination,
                  int destination_y) {
    const SShownSamples from = ShownBy(source);
    const SShownSamples to = ShownBy(destination);
    const int bytes = source.GetPixelFormat().SampleBytes();
    CopySampleRow(source.Row<std::uint8_t>(source_y) + from.first * bytes, from.step,
                  destination.Row<std::uint8_t>(destination_y) + to.first * bytes, to.step,
                  from.count, bytes, source.GetWidth());
}

void ConvertRow(const void* from, CNPixelFormat from_format, void* to, CNPixelFormat to_format,
                int pixels, const SColorSpecRGB& color_spec) {
    if (from_format == to_format) {
        CopySampleRow(from, from_format.Channels(), to, to_format.Channels(),
                      from_format.Channels(), from_format.SampleBytes(), pixels);
        return;
    }
    const SWeights weights(color_spec);
    VisitPixelFormat(from_format, false, [&](auto from_traits) {
        return VisitPixelFormat(to_format, false, [&](auto to_traits) {
            using From = decltype(from_traits);
            using To = decltype(to_traits);
            ConvertPixels<From, To>(static_cast<const typename From::Sample*>(from),
                                    static_cast<typename To::Sample*>(to), pixels, weights);
            return true;
        });
    });
}

// One period is converted, the rest copied from what is there already.
void TileRow(const CRowIteratorBands& tile, CRowIteratorBands& output, int y, int left, int width) {
    const CRect from = tile.GetRect(), to = output.GetRect();
    const CNPixelFormat format = output.GetPixelFormat();
    const auto from_bytes = static_cast<std::size_t>(tile.GetPixelFormat().PixelBytes());
    const auto to_bytes = static_cast<std::size_t>(format.PixelBytes());
    const auto* in =
        tile.Row<std::uint8_t>(FloorMod(long{y} + to.top - from.top, tile.GetHeight()));
    auto* out = output.Row<std::uint8_t>(y) + to_bytes * static_cast<std::size_t>(left);
    const int phase = FloorMod(long{left} + to.left - from.left, tile.GetWidth());
    const int period = std::min(tile.GetWidth(), width);
    const int head = std::min(tile.GetWidth() - phase, period);
    ConvertRow(in + from_bytes * static_cast<std::size_t>(phase), tile.GetPixelFormat(), out,
               format, head, {});
    ConvertRow(in, tile.GetPixelFormat(), out + to_bytes * static_cast<std::size_t>(head), format,
               period - head, {});
    for (int done = period; done < width;) {
        const int run = std::min(done, width - done);
        std::memcpy(out + to_bytes * static_cast<std::size_t>(done), out,
                    to_bytes * static_cast<std::size_t>(run));
        done += run;
    }
}

CErrorAutoThrow PrepareDestination(CRowIteratorBands& destination,
                                   const CRowIteratorBands& source) {
    if (!source.IsAttached()) return TolmErrorCode::UnusableInput;
    const CRect rect = source.GetRect();
    const CNPixelFormat format = source.GetAccessFormat();
    const bool fits = destination.IsAttached() && !destination.SharesPixelsWith(source) &&
                      destination.GetWidth() == source.GetWidth() &&
                      destination.GetHeight() == source.GetHeight() &&
                      destination.GetPixelFormat() == format;
    if (!fits) {
        return destination.Create(source.GetWidth(), source.GetHeight(), format,
                                  {rect.left, rect.top});
    }
    destination.SetOrigin({rect.left, rect.top});
    return destination.SetChannelAccess(ENChannel::All, 0);
}
