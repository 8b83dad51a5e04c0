#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "host/core/RuntimeRandom.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"

// Pictures for tests, and what tells two pictures apart.
namespace pictures {

inline constexpr ENPixelFormat kAllFormats[] = {
    ENPixelFormat::Grey8,        ENPixelFormat::GreyAlpha8,   ENPixelFormat::Colour8,
    ENPixelFormat::ColourAlpha8, ENPixelFormat::Grey16,       ENPixelFormat::GreyAlpha16,
    ENPixelFormat::Colour16,     ENPixelFormat::ColourAlpha16};

// Sizes at which loops go wrong: single pixels, single rows and columns, around vector widths.
inline constexpr CSize kAwkwardSizes[] = {{1, 1},  {1, 7},  {7, 1},   {2, 2},   {5, 5},   {16, 3},
                                          {17, 9}, {63, 4}, {64, 64}, {65, 31}, {101, 3}, {3, 101}};

inline std::string Name(CNPixelFormat format) {
    const char* layouts[] = {"unknown", "grey", "grey-alpha", "colour", "colour-alpha"};
    return std::string(layouts[format.Channels()]) + (format.Is16bit() ? "-16" : "-8");
}

// One sample of a picture whose rows show all channels.
inline int Sample(const CRowIteratorBands& image, int x, int y, int channel) {
    const int at = x * image.GetPixelFormat().Channels() + channel;
    return image.GetPixelFormat().Is16bit() ? image.Row<std::uint16_t>(y)[at]
                                            : image.Row<std::uint8_t>(y)[at];
}
inline void SetSample(CRowIteratorBands& image, int x, int y, int channel, int value) {
    const int at = x * image.GetPixelFormat().Channels() + channel;
    if (image.GetPixelFormat().Is16bit()) {
        image.Row<std::uint16_t>(y)[at] = static_cast<std::uint16_t>(value);
    } else {
        image.Row<std::uint8_t>(y)[at] = static_cast<std::uint8_t>(value);
    }
}

// A picture whose samples are function(x, y, channel).
template <class Function>
CRowIteratorBands Make(CNPixelFormat format, int width, int height, Function&& function) {
    CRowIteratorBands image;
    image.Create(width, height, format).ThrowIfFailed();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < format.Channels(); ++c) {
                SetSample(image, x, y, c, function(x, y, c));
            }
        }
    }
    return image;
}

inline CRowIteratorBands Noise(CNPixelFormat format, int width, int height, unsigned seed) {
    CRuntimeRandom random(seed);
    const int mask = format.Is16bit() ? 65535 : 255;
    return Make(format, width, height, [&](int, int, int) {
        const int value = random.Next() << 8 ^ random.Next();
        // Now and then an extreme: clamps and carries are found there.
        return value % 16 == 0 ? 0 : value % 16 == 1 ? mask : (value >> 4) & mask;
    });
}

// The same picture in memory of exactly its size, each row ending where the next begins and the
// last at the end of the allocation, so that a sanitizer sees a read past it.
inline CRowIteratorBands Tight(const CRowIteratorBands& image) {
    const auto row = static_cast<std::size_t>(image.GetWidth()) *
                     static_cast<std::size_t>(image.GetPixelFormat().PixelBytes());
    auto* pixels =
        static_cast<std::uint8_t*>(std::malloc(row * static_cast<std::size_t>(image.GetHeight())));
    for (int y = 0; y < image.GetHeight(); ++y) {
        std::copy_n(image.Row<std::uint8_t>(y), row, pixels + row * static_cast<std::size_t>(y));
    }
    CRowIteratorBands tight;
    tight
        .Attach(pixels, static_cast<std::ptrdiff_t>(row), image.GetWidth(), image.GetHeight(),
                image.GetPixelFormat(), [pixels] { std::free(pixels); })
        .ThrowIfFailed();
    tight.SetOrigin({image.GetRect().left, image.GetRect().top});
    return tight;
}

// Empty when the pictures are equal in size, format and every sample; otherwise the first
// difference and the largest.
inline std::string Difference(const CRowIteratorBands& a, const CRowIteratorBands& b,
                              int tolerance = 0) {
    if (a.GetWidth() != b.GetWidth() || a.GetHeight() != b.GetHeight() ||
        a.GetPixelFormat() != b.GetPixelFormat()) {
        return "sizes or formats differ";
    }
    std::string first;
    int largest = 0;
    long count = 0;
    for (int y = 0; y < a.GetHeight(); ++y) {
        for (int x = 0; x < a.GetWidth(); ++x) {
            for (int c = 0; c < a.GetPixelFormat().Channels(); ++c) {
                const int va = Sample(a, x, y, c);
                const int vb = Sample(b, x, y, c);
                if (std::abs(va - vb) <= tolerance) continue;
                largest = std::max(largest, std::abs(va - vb));
                if (count++ == 0) {
                    first = "first at (" + std::to_string(x) + ", " + std::to_string(y) +
                            ") channel " + std::to_string(c) + ": " + std::to_string(va) +
                            " against " + std::to_string(vb);
                }
            }
        }
    }
    if (count == 0) return {};
    return first + "; " + std::to_string(count) + " samples of " + Name(a.GetPixelFormat()) +
           " differ, by at most " + std::to_string(largest);
}

// Counts progress calls; asks to stop at the call of the given number (1 is the first; 0 never).
class CountingSink : public IProgressSink {
  public:
    explicit CountingSink(int cancel_at = 0) : cancel_at_(cancel_at) {}
    bool OnProgress(double fraction) override {
        falling_ = falling_ || fraction < last_;
        last_ = fraction;
        return ++calls_ == cancel_at_ || (cancel_at_ > 0 && calls_ > cancel_at_);
    }
    int Calls() const { return calls_; }
    double Last() const { return last_; }
    bool EverFell() const { return falling_; }

  private:
    int cancel_at_;
    int calls_ = 0;
    double last_ = 0;
    bool falling_ = false;
};

}  // namespace pictures
