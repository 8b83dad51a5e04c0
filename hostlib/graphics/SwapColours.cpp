#include "hostlib/graphics/SwapColours.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

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
CMDTEXTURE_INLINE void Store(const Block<Sample>& block, Sample* to, bool streams) {
#ifdef __SSE2__
    if (streams) {
        __m128i bits;
        std::memcpy(&bits, &block, sizeof bits);
        _mm_stream_si128(reinterpret_cast<__m128i*>(to), bits);
        return;
    }
#endif
    std::memcpy(to, &block, sizeof block);
}

// The kernels exchange 48 bytes of pixels with three samples, or 16 bytes of those with four, by
// shuffles: loops over single samples vectorise badly, and, where the rows are the same, not at
// all. All is loaded before anything is stored, since a load that overlaps a store just made waits
// for it.
CMDTEXTURE_INLINE void SwapThrees(const std::uint8_t* in, std::uint8_t* out, bool streams) {
    const auto a = Load(in), b = Load(in + 16), c = Load(in + 32);
    const auto first =
        __builtin_shufflevector(a, b, 2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 17);
    const auto middle =
        __builtin_shufflevector(b, c, 0, 0, 4, 3, 2, 7, 6, 5, 10, 9, 8, 13, 12, 11, 16, 15);
    Store(first, out, streams);
    Store(__builtin_shufflevector(middle, a, 0, 31, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15),
          out + 16, streams);
    Store(__builtin_shufflevector(b, c, 14, 19, 18, 17, 22, 21, 20, 25, 24, 23, 28, 27, 26, 31, 30,
                                  29),
          out + 32, streams);
}
CMDTEXTURE_INLINE void SwapThrees(const std::uint16_t* in, std::uint16_t* out, bool streams) {
    const auto a = Load(in), b = Load(in + 8), c = Load(in + 16);
    const auto middle = __builtin_shufflevector(b, c, 0, 3, 2, 1, 6, 5, 4, 9);
    Store(__builtin_shufflevector(a, b, 2, 1, 0, 5, 4, 3, 8, 7), out, streams);
    Store(__builtin_shufflevector(middle, a, 14, 1, 2, 3, 4, 5, 6, 7), out + 8, streams);
    Store(__builtin_shufflevector(b, c, 8, 7, 12, 11, 10, 15, 14, 13), out + 16, streams);
}
CMDTEXTURE_INLINE void SwapFours(const std::uint8_t* in, std::uint8_t* out, bool streams) {
    const auto a = Load(in);
    Store(__builtin_shufflevector(a, a, 2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15), out,
          streams);
}
CMDTEXTURE_INLINE void SwapFours(const std::uint16_t* in, std::uint16_t* out, bool streams) {
    const auto a = Load(in);
    Store(__builtin_shufflevector(a, a, 2, 1, 0, 3, 6, 5, 4, 7), out, streams);
}

CMDTEXTURE_INLINE void CopyBlock(const std::uint8_t* in, std::uint8_t* out, bool streams) {
    Store(Load(in), out, streams);
}

template <class Sample, int kChannels>
CMDTEXTURE_INLINE void SwapPixels(const std::uint8_t* from, std::uint8_t* to, int pixels,
                                  bool streams) {
    const auto* in = reinterpret_cast<const Sample*>(from);
    auto* out = reinterpret_cast<Sample*>(to);
    constexpr int kAtOnce =
        (kChannels == 3 ? 16 : 16 / kChannels) / static_cast<int>(sizeof(Sample));
    int x = 0;
    const auto one_by_one = [&](int end) {
        for (; x < end; ++x) {
            Sample pixel[kChannels];
            std::memcpy(pixel, in + x * kChannels, sizeof pixel);
            if constexpr (kChannels >= 3) std::swap(pixel[0], pixel[2]);
            std::memcpy(out + x * kChannels, pixel, sizeof pixel);
        }
    };
    if (streams) {
        const auto is_aligned = [&](int at) {
            return reinterpret_cast<std::uintptr_t>(out + at * kChannels) % 16 == 0;
        };
        int first = 0;
        while (!is_aligned(first) && first < std::min(pixels, 16)) ++first;
        one_by_one(first);
        streams = is_aligned(first);
    }
    for (; x <= pixels - kAtOnce; x += kAtOnce) {
        if constexpr (kChannels == 1) CopyBlock(in + x, out + x, streams);
        if constexpr (kChannels == 3) SwapThrees(in + x * 3, out + x * 3, streams);
        if constexpr (kChannels == 4) SwapFours(in + x * 4, out + x * 4, streams);
    }
    one_by_one(pixels);
#ifdef __SSE2__
    if (streams) _mm_sfence();
#endif
}

CMDTEXTURE_MULTIVERSION void StreamBytes(const std::uint8_t* from, std::uint8_t* to, int bytes) {
    SwapPixels<std::uint8_t, 1>(from, to, bytes, true);
}
// A row with the outer two of its colours exchanged. Rows of 16 bits lie at even addresses.
CMDTEXTURE_MULTIVERSION void SwapColour8(const std::uint8_t* from, std::uint8_t* to, int pixels,
                                         bool streams) {
    SwapPixels<std::uint8_t, 3>(from, to, pixels, streams);
}
CMDTEXTURE_MULTIVERSION void SwapAlpha8(const std::uint8_t* from, std::uint8_t* to, int pixels,
                                        bool streams) {
    SwapPixels<std::uint8_t, 4>(from, to, pixels, streams);
}
CMDTEXTURE_MULTIVERSION void SwapColour16(const std::uint8_t* from, std::uint8_t* to, int pixels,
                                          bool streams) {
    SwapPixels<std::uint16_t, 3>(from, to, pixels, streams);
}
CMDTEXTURE_MULTIVERSION void SwapAlpha16(const std::uint8_t* from, std::uint8_t* to, int pixels,
                                         bool streams) {
    SwapPixels<std::uint16_t, 4>(from, to, pixels, streams);
}

}  // namespace

void SwapColours(const void* from, void* to, int pixels, CNPixelFormat format, bool streams) {
    const auto* in = static_cast<const std::uint8_t*>(from);
    auto* out = static_cast<std::uint8_t*>(to);
    const bool has_alpha = format.IsAlphaChannelPresent();
    if (format.ColourChannels() == 1) {
        const int bytes = pixels * format.PixelBytes();
        if (streams) {
            StreamBytes(in, out, bytes);
        } else if (in != out) {
            std::memcpy(out, in, static_cast<std::size_t>(bytes));
        }
    } else if (format.Is16bit()) {
        (has_alpha ? SwapAlpha16 : SwapColour16)(in, out, pixels, streams);
    } else {
        (has_alpha ? SwapAlpha8 : SwapColour8)(in, out, pixels, streams);
    }
}
