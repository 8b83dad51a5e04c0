#pragma once

#include <cstdint>

// Pixel formats by code. Colour pixels lie in memory as blue, green, red, then alpha; grey pixels
// as grey, then alpha. Alpha is straight (colour is not multiplied with it).
enum class ENPixelFormat : int {
    None = 0,
    Grey8 = 5,
    GreyAlpha8 = 6,
    Colour8 = 7,
    ColourAlpha8 = 8,
    Grey16 = 10,
    GreyAlpha16 = 11,
    Colour16 = 12,
    ColourAlpha16 = 13,
};

// The format code and what follows from it. Formats are equal when their codes are.
class CNPixelFormat {
  public:
    constexpr CNPixelFormat() = default;
    constexpr CNPixelFormat(ENPixelFormat code) : code_(code) {}  // NOLINT: a code is a format
    // The format of a layout: 1 to 4 channels of 8 or 16 bits.
    static constexpr CNPixelFormat Of(int channels, bool is16bit) {
        return static_cast<ENPixelFormat>((is16bit ? 9 : 4) + channels);
    }

    constexpr ENPixelFormat Code() const { return code_; }
    constexpr bool IsKnown() const {
        const int code = static_cast<int>(code_);
        return (code >= 5 && code <= 8) || (code >= 10 && code <= 13);
    }
    constexpr bool Is16bit() const { return static_cast<int>(code_) >= 10; }
    // 1 grey, 2 grey with alpha, 3 colour, 4 colour with alpha; 0 for an unknown format.
    constexpr int Channels() const {
        if (!IsKnown()) return 0;
        return static_cast<int>(code_) - (Is16bit() ? 9 : 4);
    }
    constexpr int ColourChannels() const { return Channels() >= 3 ? 3 : Channels() > 0 ? 1 : 0; }
    constexpr bool IsAlphaChannelPresent() const { return Channels() == 2 || Channels() == 4; }
    constexpr int SampleBytes() const { return Is16bit() ? 2 : 1; }
    constexpr int PixelBytes() const { return Channels() * SampleBytes(); }
    constexpr int BitsPerPixel() const { return PixelBytes() * 8; }

    friend constexpr bool operator==(CNPixelFormat, CNPixelFormat) = default;

  private:
    ENPixelFormat code_ = ENPixelFormat::None;
};

// What a row loop knows at compile time once the format has been dispatched.
template <class SampleType, int ChannelCount>
struct TPixelTraits {
    using Sample = SampleType;
    static constexpr int kChannels = ChannelCount;
    static constexpr int kColourChannels = ChannelCount >= 3 ? 3 : 1;
    static constexpr bool kHasAlpha = ChannelCount % 2 == 0;
    static constexpr bool kIs16bit = sizeof(Sample) == 2;
    static constexpr int kMaximum = kIs16bit ? 65535 : 255;
};

// Calls `visitor` with the TPixelTraits of `format` and returns its answer; for a format outside
// the eight, returns `otherwise` without calling it. The one place where formats are told apart.
template <class Result, class Visitor>
Result VisitPixelFormat(CNPixelFormat format, Result otherwise, Visitor&& visitor) {
    switch (format.Code()) {
        case ENPixelFormat::Grey8:
            return visitor(TPixelTraits<std::uint8_t, 1>{});
        case ENPixelFormat::GreyAlpha8:
            return visitor(TPixelTraits<std::uint8_t, 2>{});
        case ENPixelFormat::Colour8:
            return visitor(TPixelTraits<std::uint8_t, 3>{});
        case ENPixelFormat::ColourAlpha8:
            return visitor(TPixelTraits<std::uint8_t, 4>{});
        case ENPixelFormat::Grey16:
            return visitor(TPixelTraits<std::uint16_t, 1>{});
        case ENPixelFormat::GreyAlpha16:
            return visitor(TPixelTraits<std::uint16_t, 2>{});
        case ENPixelFormat::Colour16:
            return visitor(TPixelTraits<std::uint16_t, 3>{});
        case ENPixelFormat::ColourAlpha16:
            return visitor(TPixelTraits<std::uint16_t, 4>{});
        default:
            return otherwise;
    }
}
