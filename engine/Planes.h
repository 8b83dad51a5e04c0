#pragma once

#include <algorithm>
#include <cstdint>

#include "host/core/Multiversion.h"
#include "host/graphics/CNPixelFormat.h"

// What the row kernels share. A kernel works on a row in blocks: it splits a block into planes, one
// array a channel, computes on the planes, and merges them again. The planes are 16 bits wide at
// either depth: wide enough for most intermediate results, and twice as many of them fit into a
// vector register as of ints. Loops over one plane are what compilers turn into vector code; loops
// over interleaved pixels they do not, or do badly.
//
// Everything here is inlined into the kernels, which are compiled for several processors.

inline constexpr int kBlockPixels = 256;

// The lane of a plane: a sample, or an intermediate result of 0 to 65535.
using Lane = std::uint16_t;
// Cuts an intermediate result to a lane; the value fits unless said.
constexpr Lane ToLane(int value) { return static_cast<Lane>(value); }

// The samples of up to kBlockPixels pixels and of the pixel right of them.
template <int kChannels>
struct TPlanes {
    static constexpr int kLength = kBlockPixels + 64;
    alignas(64) Lane channel[kChannels][kLength];
};

template <class Traits>
CMDTEXTURE_INLINE void Split(const typename Traits::Sample* from, int pixels,
                             TPlanes<Traits::kChannels>& planes) {
    constexpr int n = Traits::kChannels;
    if constexpr (Traits::kIs16bit || n == 1) {
        for (int x = 0; x < pixels; ++x) {
            for (int c = 0; c < n; ++c) planes.channel[c][x] = from[n * x + c];
        }
    } else {
        // Taking bytes apart and widening them are two loops: compilers vectorise each, not both.
        alignas(64) std::uint8_t bytes[n][TPlanes<n>::kLength];
        for (int x = 0; x < pixels; ++x) {
            for (int c = 0; c < n; ++c) bytes[c][x] = from[n * x + c];
        }
        for (int c = 0; c < n; ++c) {
            for (int x = 0; x < pixels; ++x) planes.channel[c][x] = bytes[c][x];
        }
    }
}

// Splits a block and the pixel right of it, whose place the last pixel takes when the row ends
// there.
template <class Traits>
CMDTEXTURE_INLINE void SplitWithNeighbour(const typename Traits::Sample* from, int pixels,
                                          bool ends, TPlanes<Traits::kChannels>& planes) {
    Split<Traits>(from, ends ? pixels : pixels + 1, planes);
    if (!ends) return;
    for (auto& plane : planes.channel) plane[pixels] = plane[pixels - 1];
}

// Stores the low bits of every lane.
template <class Traits>
CMDTEXTURE_INLINE void Merge(const TPlanes<Traits::kChannels>& planes, int pixels,
                             typename Traits::Sample* to) {
    constexpr int n = Traits::kChannels;
    using Sample = typename Traits::Sample;
    if constexpr (Traits::kIs16bit || n == 1) {
        for (int x = 0; x < pixels; ++x) {
            for (int c = 0; c < n; ++c) to[n * x + c] = static_cast<Sample>(planes.channel[c][x]);
        }
    } else {
        alignas(64) std::uint8_t bytes[n][TPlanes<n>::kLength];
        for (int c = 0; c < n; ++c) {
            for (int x = 0; x < pixels; ++x)
                bytes[c][x] = static_cast<Sample>(planes.channel[c][x]);
        }
        for (int x = 0; x < pixels; ++x) {
            for (int c = 0; c < n; ++c) to[n * x + c] = bytes[c][x];
        }
    }
}
