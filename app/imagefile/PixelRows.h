#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "host/graphics/CNPixelFormat.h"

// Rows of pixels between our order of samples (blue, green, red) and that of files.
namespace imagefile {

// Copies a row and exchanges first and third colour sample, which turns either order into the
// other. Pixels are written `step` bytes apart.
template <class Traits>
void SwapRow(Traits, const void* from, void* to, int pixels, std::ptrdiff_t step) {
    using Sample = typename Traits::Sample;
    constexpr int kChannels = Traits::kChannels;
    const auto* source = static_cast<const Sample*>(from);
    auto* bytes = static_cast<std::uint8_t*>(to);
    const auto copy = [&](std::ptrdiff_t distance) {
        for (int x = 0; x < pixels; ++x) {
            auto* pixel = reinterpret_cast<Sample*>(bytes + x * distance);
            for (int c = 0; c < kChannels; ++c) {
                const int other = kChannels >= 3 && c < 3 ? 2 - c : c;
                pixel[c] = source[x * kChannels + other];
            }
        }
    };
    constexpr std::ptrdiff_t kAdjacent = kChannels * sizeof(Sample);
    step == kAdjacent ? copy(kAdjacent) : copy(step);
}

}  // namespace imagefile
