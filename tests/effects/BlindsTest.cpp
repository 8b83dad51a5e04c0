#include "effects/Blinds.h"

#include <gtest/gtest.h>

#include <climits>

#include "support/Pictures.h"

namespace {

using pictures::Difference;
using pictures::kAllFormats;
using pictures::Name;
using pictures::Noise;
using pictures::Sample;
using pictures::Tight;

struct SSettings {
    int width = 20;
    int opacity = 100;
    bool horizontal = true;
    bool light = true;
    COLORREF color = 0;
    int canvas_height = 0;
};

CErrorAutoThrow Apply(const SSettings& s, const CRowIteratorBands& source,
                      CRowIteratorBands& destination, CStatusControl* status = nullptr) {
    return ApplyBlinds(status, source, destination, s.width, s.opacity, s.horizontal, s.light,
                       s.color, s.canvas_height);
}

// One sample, step by step: single precision up to the fraction, double precision after it.
int Expected(const SSettings& s, const CRowIteratorBands& source, int x, int y, int channel) {
    const CNPixelFormat format = source.GetPixelFormat();
    const bool is_colour = format.ColourChannels() == 3;
    const int sample = Sample(source, x, y, channel);
    if (channel >= format.ColourChannels()) return sample;

    const int max = format.Is16bit() ? 65535 : 255;
    const long period = s.width < 2 ? 2 : s.width;
    const long span = period - 1;
    const long strength = static_cast<long>(s.opacity) * max / 100;
    const CRect rect = source.GetRect();
    const long up = static_cast<long>(s.canvas_height) - rect.bottom + source.GetHeight() - y;
    const long p = (s.horizontal ? up : static_cast<long>(rect.left) + x) % period;
    const bool falls = s.horizontal && is_colour ? s.light : !s.light;
    const long colour_weight = falls ? span - p : p;
    const long source_weight = span - colour_weight;

    const int red = static_cast<int>(s.color % 256);
    const int green = static_cast<int>(s.color / 256 % 256);
    const int blue = static_cast<int>(s.color / 65536 % 256);
    const int bgr[] = {blue, green, red};
    const int component = is_colour ? bgr[channel] : (30 * red + 59 * green + 11 * blue) / 100;
    const auto k = static_cast<float>(component / 255.0);
    const auto v = static_cast<float>(sample / static_cast<double>(max));

    float value = static_cast<float>(source_weight) * v + static_cast<float>(colour_weight) * k;
    value = value * static_cast<float>(strength);
    value = value / static_cast<float>(span);
    value = value + static_cast<float>(max - strength) * v;
    value = value / static_cast<float>(max);
    const double out = value * (max + 0.9999);
    return out >= max ? max : out < 0 ? 0 : static_cast<int>(out);
}

void ExpectAsCalculated(const SSettings& s, const CRowIteratorBands& source) {
    const CRowIteratorBands expected =
        pictures::Make(source.GetPixelFormat(), source.GetWidth(), source.GetHeight(),
                       [&](int x, int y, int c) { return Expected(s, source, x, y, c); });
    CRowIteratorBands destination;
    ASSERT_FALSE(Apply(s, source, destination).Failed());
    EXPECT_EQ(Difference(destination, expected), "")
        << Name(source.GetPixelFormat()) << " " << source.GetWidth() << "x" << source.GetHeight()
        << " at " << source.GetRect().left << "," << source.GetRect().top << ", width " << s.width
        << " opacity " << s.opacity << " horizontal " << s.horizontal << " light " << s.light
        << " color " << s.color << " canvas height " << s.canvas_height;
    EXPECT_EQ(destination.GetRect(), source.GetRect());
}

TEST(Blinds, WorkedValues) {
    struct {
        COLORREF color;
        int opacity;
        int expected[4];
    } const cases[] = {{0, 100, {0, 66, 133, 200}},
                       {0, 50, {100, 134, 167, 200}},
                       {0xFFFFFF, 100, {255, 237, 219, 200}}};
    for (const auto& c : cases) {
        const auto source =
            pictures::Make(ENPixelFormat::Colour8, 4, 1, [](int, int, int) { return 200; });
        CRowIteratorBands destination;
        ASSERT_FALSE(Apply({4, c.opacity, false, false, c.color, 1}, source, destination).Failed());
        for (int x = 0; x < 4; ++x) {
            for (int i = 0; i < 3; ++i) EXPECT_EQ(Sample(destination, x, 0, i), c.expected[x]);
        }
    }
}

// The bottom canvas row has phase 1: with light from the top, colour images have their colour at a
// slat's lower edge (phase 0), grey ones at its upper edge.
TEST(Blinds, HorizontalSlatsOfGreyAndColourImagesAreShadedInOppositeDirections) {
    for (const auto& [format, expected_top] :
         {std::pair(ENPixelFormat::Colour8, 200), std::pair(ENPixelFormat::Grey8, 0)}) {
        const auto source = pictures::Make(format, 1, 4, [](int, int, int) { return 200; });
        CRowIteratorBands destination;
        ASSERT_FALSE(Apply({4, 100, true, true, 0, 7}, source, destination).Failed());
        EXPECT_EQ(Sample(destination, 0, 0, 0), expected_top) << "canvas row 0 has phase 3";
        EXPECT_EQ(Sample(destination, 0, 3, 0), 200 - expected_top) << "canvas row 3 has phase 0";
    }
}

// All sixteen variants, with and without alpha, at random settings and places, in memory without
// room around it; sizes reach both ways of shading 8-bit rows.
TEST(Blinds, EverySampleIsAsCalculated) {
    CRuntimeRandom random(11);
    std::vector<CSize> sizes(std::begin(pictures::kAwkwardSizes),
                             std::end(pictures::kAwkwardSizes));
    sizes.insert(sizes.end(), {{300, 20}, {523, 40}, {4, 300}});
    for (const ENPixelFormat format : kAllFormats) {
        for (const CSize size : sizes) {
            auto source =
                Tight(Noise(format, size.cx, size.cy, static_cast<unsigned>(random.Next())));
            for (int variant = 0; variant < 4; ++variant) {
                for (const int width : {random.Next() % 12, random.Next() % 40, random.Next()}) {
                    source.SetOrigin({random.Next() % 200 - 100, random.Next() % 200 - 100});
                    const auto color = static_cast<COLORREF>(random.Next() << 9 ^ random.Next());
                    ExpectAsCalculated(
                        {width, random.Next() % 3 ? random.Next() % 101 : 100, variant % 2 == 1,
                         variant / 2 == 1, color, random.Next() % 300},
                        source);
                }
            }
        }
    }
}

TEST(Blinds, ExtremeSettingsStayDefined) {
    for (const ENPixelFormat format : kAllFormats) {
        auto source = Tight(Noise(format, 40, 9, 3));
        for (const CPoint origin : {CPoint{0, 0}, {-20, 30}, {INT_MAX - 50, INT_MIN + 50}}) {
            source.SetOrigin(origin);
            for (const bool horizontal : {false, true}) {
                for (const int width : {INT_MIN, -1, 0, 1, 2, INT_MAX}) {
                    ExpectAsCalculated({width, 77, horizontal, true, 0x4080C0, 9}, source);
                    ExpectAsCalculated({width, 100, horizontal, false, 0xFF, INT_MAX}, source);
                }
                for (const int opacity : {-100, 1000, INT_MAX}) {
                    ExpectAsCalculated({7, opacity, horizontal, true, 0x4080C0, 9}, source);
                }
            }
        }
    }
}

// Every sample value of both depths.
TEST(Blinds, WithoutOpacityEverySampleIsKept) {
    for (const ENPixelFormat format : kAllFormats) {
        const auto source =
            pictures::Make(format, 256, 256, [](int x, int y, int) { return y * 256 + x; });
        for (const bool horizontal : {false, true}) {
            CRowIteratorBands destination;
            ASSERT_FALSE(
                Apply({9, 0, horizontal, true, 0xFFFFFF, 256}, source, destination).Failed());
            EXPECT_EQ(Difference(destination, source), "");
        }
    }
}

TEST(Blinds, APartOfTheCanvasIsThatPartOfTheWhole) {
    constexpr int kWidth = 90;
    constexpr int kHeight = 70;
    constexpr CPoint kPart{37, 13};
    for (const ENPixelFormat format : kAllFormats) {
        for (const bool horizontal : {false, true}) {
            const SSettings settings{23, 80, horizontal, true, 0x123456, kHeight};
            const auto source = Noise(format, kWidth, kHeight, 5);
            const auto cut = [&](const CRowIteratorBands& from) {
                auto part = pictures::Make(format, 30, 40, [&](int x, int y, int c) {
                    return Sample(from, x + kPart.x, y + kPart.y, c);
                });
                part.SetOrigin(kPart);
                return part;
            };
            CRowIteratorBands whole;
            CRowIteratorBands part;
            ASSERT_FALSE(Apply(settings, source, whole).Failed());
            ASSERT_FALSE(Apply(settings, cut(source), part).Failed());
            EXPECT_EQ(Difference(part, cut(whole)), "") << Name(format);
        }
    }
}

TEST(Blinds, CancellingAtAnyRowDestroysTheDestination) {
    const auto source = Noise(ENPixelFormat::Colour8, 5, 6, 1);
    for (const int cancel_at : {0, 1, 3, 6}) {
        pictures::CountingSink sink(cancel_at);
        CStatusControl status(&sink);
        CRowIteratorBands destination;
        const CErrorAutoThrow result = Apply({}, source, destination, &status);
        EXPECT_EQ(result.Code(), cancel_at ? TolmErrorCode::Cancelled : TolmErrorCode::Success);
        EXPECT_EQ(destination.IsAttached(), cancel_at == 0);
        EXPECT_EQ(sink.Calls(), cancel_at ? cancel_at : 6);
        EXPECT_TRUE(source.IsAttached());
    }
}

TEST(Blinds, WithoutASourceTheDestinationIsUntouched) {
    CRowIteratorBands destination = Noise(ENPixelFormat::Grey8, 3, 3, 1);
    EXPECT_EQ(Apply({}, CRowIteratorBands(), destination).Code(), TolmErrorCode::UnusableInput);
    EXPECT_EQ(Difference(destination, Noise(ENPixelFormat::Grey8, 3, 3, 1)), "");
}

}  // namespace
