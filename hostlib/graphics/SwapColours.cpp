#include "hostlib/graphics/SwapColours.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "host/core/Multiversion.h"

namespace {

using CBytes = std::uint8_t __attribute__((vector_size(16)));
using CWords = std::uint16_t __attribute__((vector_size(16)));
template <class Sample>
using Block = std::conditional_t<sizeof(Sample) == 1, CBytes, CWords>;

template <class Sample>
CMDTEXTURE_INLINE Block<Sample> Load(const Sample* from) {
    Block<Sample> block;
    std::memcpy(&block, from, sizeof block);
    return block;
}
template <class Sample>
CMDTEXTURE_INLINE void Store(const Block<Sample>& block, Sample* to) {
    std::memcpy(to, &block, sizeof block);
}

// The kernels exchange 48 bytes of pixels with three samples, or 16 bytes of those with four, by
// shuffles: loops over single samples vectorise badly, and, where the rows are the same, not at
// all. All is loaded before anything is stored, since a load that overlaps a store just made waits
// for it.
CMDTEXTURE_INLINE void SwapThrees(const std::uint8_t* in, std::uint8_t* out) {
    const auto a = Load(in), b = Load(in + 16), c = Load(in + 32);
    const auto first =
        __builtin_shufflevector(a, b, 2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 17);
    const auto middle =
        __builtin_shufflevector(b, c, 0, 0, 4, 3, 2, 7, 6, 5, 10, 9, 8, 13, 12, 11, 16, 15);
    Store(first, out);
    Store(__builtin_shufflevector(middle, a, 0, 31, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15),
          out + 16);
    Store(__builtin_shufflevector(b, c, 14, 19, 18, 17, 22, 21, 20, 25, 24, 23, 28, 27, 26, 31, 30,
                                  29),
          out + 32);
}
CMDTEXTURE_INLINE void SwapThrees(const std::uint16_t* in, std::uint16_t* out) {
    const auto a = Load(in), b = Load(in + 8), c = Load(in + 16);
    const auto middle = __builtin_shufflevector(b, c, 0, 3, 2, 1, 6, 5, 4, 9);
    Store(__builtin_shufflevector(a, b, 2, 1, 0, 5, 4, 3, 8, 7), out);
    Store(__builtin_shufflevector(middle, a, 14, 1, 2, 3, 4, 5, 6, 7), out + 8);
    Store(__builtin_shufflevector(b, c, 8, 7, 12, 11, 10, 15, 14, 13), out + 16);
}
CMDTEXTURE_INLINE void SwapFours(const std::uint8_t* in, std::uint8_t* out) {
    const auto a = Load(in);
    Store(__builtin_shufflevector(a, a, 2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15), out);
}
CMDTEXTURE_INLINE void SwapFours(const std::uint16_t* in, std::uint16_t* out) {
    const auto a = Load(in);
    Store(__builtin_shufflevector(a, a, 2, 1, 0, 3, 6, 5, 4, 7), out);
}

template <class Sample, int kChannels>
CMDTEXTURE_INLINE void SwapPixels(const std::uint8_t* from, std::uint8_t* to, int pixels) {
    const auto* in = reinterpret_cast<const Sample*>(from);
    auto* out = reinterpret_cast<Sample*>(to);
    constexpr int kAtOnce = (kChannels == 3 ? 16 : 4) / static_cast<int>(sizeof(Sample));
    int x = 0;
    for (; x <= pixels - kAtOnce; x += kAtOnce) {
        if constexpr (kChannels == 3) SwapThrees(in + x * 3, out + x * 3);
        if constexpr (kChannels == 4) SwapFours(in + x * 4, out + x * 4);
    }
    for (; x < pixels; ++x) {
        const Sample first = in[x * kChannels];
        const Sample second = in[x * kChannels + 1];
        const Sample third = in[x * kChannels + 2];
        out[x * kChannels] = third;
        out[x * kChannels + 1] = second;
        out[x * kChannels + 2] = first;
        if constexpr (kChannels == 4) out[x * 4 + 3] = in[x * 4 + 3];
    }
}

// A row with the outer two of its colours exchanged. Rows of 16 bits lie at even addresses.
CMDTEXTURE_MULTIVERSION void SwapColour8(const std::uint8_t* from, std::uint8_t* to, int pixels) {
    SwapPixels<std::uint8_t, 3>(from, to, pixels);
}
CMDTEXTURE_MULTIVERSION void SwapAlpha8(const std::uint8_t* from, std::uint8_t* to, int pixels) {
    SwapPixels<std::uint8_t, 4>(from, to, pixels);
}
CMDTEXTURE_MULTIVERSION void SwapColour16(const std::uint8_t* from, std::uint8_t* to, int pixels) {
    SwapPixels<std::uint16_t, 3>(from, to, pixels);
}
CMDTEXTURE_MULTIVERSION void SwapAlpha16(const std::uint8_t* from, std::uint8_t* to, int pixels) {
    SwapPixels<std::uint16_t, 4>(from, to, pixels);
}

}  // namespace

void SwapColours(const void* from, void* to, int pixels, CNPixelFormat format) {
    const auto* in = static_cast<const std::uint8_t*>(from);
    auto* out = static_cast<std::uint8_t*>(to);
    const bool has_alpha = format.IsAlphaChannelPresent();
    if (format.ColourChannels() == 1) {
        if (in != out)
            std::memcpy(
                out, in,
                static_cast<std::size_t>(pixels) * static_cast<std::size_t>(format.PixelBytes()));
    } else if (format.Is16bit()) {
        (has_alpha ? SwapAlpha16 : SwapColour16)(in, out, pixels);
    } else {
        (has_alpha ? SwapAlpha8 : SwapColour8)(in, out, pixels);
    }
}
