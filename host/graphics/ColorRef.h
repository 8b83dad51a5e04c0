#pragma once

#include <cstdint>

// A colour packed as 0x00BBGGRR: red in bits 0 to 7, green in 8 to 15, blue in 16 to 23.
using COLORREF = std::uint32_t;

struct CColorRef {
    COLORREF value = 0;

    constexpr int Red() const { return static_cast<int>(value & 255U); }
    constexpr int Green() const { return static_cast<int>((value >> 8) & 255U); }
    constexpr int Blue() const { return static_cast<int>((value >> 16) & 255U); }
    // Brightness 0 to 255 as the pattern effects weigh it: 30, 59 and 11 per cent, rounded down.
    constexpr int Grey() const { return (30 * Red() + 59 * Green() + 11 * Blue()) / 100; }

    static constexpr CColorRef FromRgb(int red, int green, int blue) {
        return {static_cast<COLORREF>(red) | static_cast<COLORREF>(green) << 8 |
                static_cast<COLORREF>(blue) << 16};
    }
};
