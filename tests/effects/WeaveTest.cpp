#include "effects/Weave.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "host/graphics/PixelMath.h"
#include "support/Pictures.h"

namespace {

using pictures::Difference;
using pictures::kAllFormats;
using pictures::Name;
using pictures::Noise;
using pictures::Sample;
using pictures::SetSample;
using pictures::Tight;

struct SSettings {
    int weave_width = 4;
    int gap_width = 2;
    int opacity = 100;
    COLORREF weave_color = 0;
    COLORREF gap_color = 0;
    bool fill_gaps = true;
    int canvas_height = 0;
};

CErrorAutoThrow Apply(const SSettings& s, CRowIteratorBands& source, CRowIteratorBands& destination,
                      CStatusControl* status = nullptr) {
    return ApplyWeave(status, source, destination, s.weave_width, s.gap_width, s.opacity,
                      s.weave_color, s.gap_color, s.fill_gaps, s.canvas_height);
}

// The pattern pixel by pixel: the profile at a phase of column `u` and row `q`, or -1 in a gap.
int ProfileAt(const SSettings& s, long u, long q) {
    const long w = s.weave_width, g = s.gap_width, pitch = w + g, half = (w + 2 * g) / 2;
    const long ends = (100 - s.opacity) * 255 / 100, radius = 255 - ends;
    const auto prof = [&](long d) {
        EXPECT_LE(std::abs(d), half);
        const long e = half ? d * radius / half : 0;
        return static_cast<int>(std::sqrt(static_cast<double>(radius * radius - e * e)) +
                                static_cast<double>(ends));
    };
    const auto zone = [&](long at) {
        return at < g ? 'A' : at < pitch ? '1' : at < pitch + g ? 'B' : '2';
    };
    const char column = zone(u);
    switch (zone(q)) {
        case 'A':
            return column == '1' ? prof(q - g + half) : column == '2' ? prof(half - q) : -1;
        case '1':
            return column == '2' ? prof(half - q) : prof(u - half);
        case 'B':
            return column == '1' ? prof(half - (q - pitch)) : column == '2' ? prof(q - half) : -1;
        default:
            return column == '1'   ? prof(half - (q - pitch))
                   : column == 'A' ? prof(u - g + half)
                                   : prof(u - pitch - half);
    }
}

int Expected(const SSettings& s, const CRowIteratorBands& source, int x, int y, int channel,
             int sample) {
    const bool is_colour = source.GetPixelFormat().ColourChannels() == 3;
    const long period = 2L * (static_cast<long>(s.weave_width) + s.gap_width);
    const auto phase = [&](long at) { return (at % period + period) % period; };
    const CRect rect = source.GetRect();
    const int profile = ProfileAt(
        s, phase(static_cast<long>(rect.left) + x),
        phase(static_cast<long>(s.canvas_height) - rect.bottom + source.GetHeight() - 1 - y));
    const CColorRef colour{profile < 0 ? s.gap_color : s.weave_color};
    const int bgr[] = {colour.Blue(), colour.Green(), colour.Red()};
    const int k = is_colour ? bgr[channel] : colour.Grey();
    if (profile < 0) return s.fill_gaps ? k : sample;
    return (sample * profile + k * (255 - profile)) / 255;
}

// The expected picture. Of a 16-bit image only the first bytes of each row are woven, as grey.
CRowIteratorBands Calculated(const SSettings& s, const CRowIteratorBands& source) {
    const CNPixelFormat format = source.GetPixelFormat();
    CRowIteratorBands expected;
    expected.Copy(source, 0).ThrowIfFailed();
    const CNPixelFormat view = format.Is16bit() ? CNPixelFormat(ENPixelFormat::Grey8) : format;
    CRowIteratorBands rows;
    rows.Attach(expected.Row<std::uint8_t>(0), expected.Stride(), source.GetWidth(),
                source.GetHeight(), view)
        .ThrowIfFailed();
    rows.SetOrigin({source.GetRect().left, source.GetRect().top});
    for (int y = 0; y < rows.GetHeight(); ++y) {
        for (int x = 0; x < rows.GetWidth(); ++x) {
            for (int c = 0; c < view.ColourChannels(); ++c) {
                SetSample(rows, x, y, c, Expected(s, rows, x, y, c, Sample(rows, x, y, c)));
            }
        }
    }
    return expected;
}

void ExpectAsCalculated(const SSettings& s, CRowIteratorBands& source) {
    CRowIteratorBands destination;
    ASSERT_FALSE(Apply(s, source, destination).Failed());
    EXPECT_EQ(Difference(destination, Calculated(s, source)), "")
        << Name(source.GetPixelFormat()) << " " << source.GetWidth() << "x" << source.GetHeight()
        << " at " << source.GetRect().left << "," << source.GetRect().top << ", weave "
        << s.weave_width << " gap " << s.gap_width << " opacity " << s.opacity << " fill "
        << s.fill_gaps << " canvas height " << s.canvas_height;
}

TEST(PixelMath, ThePairOfDepthsIsExactOverItsDomain) {
    for (int sample = 0; sample < 65536; ++sample) {
        const int byte = pixel::NearestByte(sample);
        ASSERT_LE(std::abs(2 * (sample - 257 * byte)), 257) << sample;
    }
    for (int byte = 0; byte < 256; ++byte) {
        ASSERT_EQ(pixel::NearestByte(pixel::Times257(byte)), byte);
    }
}

TEST(PixelMath, DivisionBy255IsExactForEveryBlend) {
    for (int value = 0; value <= 255 * 255; ++value) {
        ASSERT_EQ(pixel::DivideBy255(static_cast<std::uint16_t>(value)), value / 255);
    }
}

// Under black the white image shows the profiles, the bytes of 200 how they are blended.
TEST(Weave, WorkedValues) {
    struct {
        int sample, opacity, row;
        std::vector<int> expected;
    } const cases[] = {
        {255, 100, 4, {0, 168, 221, 247, 255, 247, 221, 168, 255, 255, 255, 255}},
        {255, 50, 4, {127, 211, 237, 250, 255, 250, 237, 211, 255, 255, 255, 255}},
        {200, 100, 4, {0, 131, 173, 193, 200, 193, 173, 131, 200, 200, 200, 200}},
        {255, 100, 0, {99, 99, 221, 221, 221, 221, 99, 99, 0, 0, 0, 0}},
        {255, 100, 10, {221, 168, 255, 255, 255, 255, 0, 168, 221, 247, 255, 247}},
    };
    for (const auto& c : cases) {
        auto source =
            pictures::Make(ENPixelFormat::Grey8, 12, 12, [&](int, int, int) { return c.sample; });
        CRowIteratorBands destination;
        const SSettings settings{.opacity = c.opacity, .gap_color = 0x636363, .canvas_height = 12};
        ASSERT_FALSE(Apply(settings, source, destination).Failed());
        std::vector<int> row;
        for (int x = 0; x < 12; ++x) row.push_back(Sample(destination, x, 11 - c.row, 0));
        EXPECT_EQ(row, c.expected) << "row " << c.row << " opacity " << c.opacity;
    }
}

TEST(Weave, EverySampleIsAsCalculated) {
    CRuntimeRandom random(21);
    for (const ENPixelFormat format : kAllFormats) {
        for (const CSize size : pictures::kAwkwardSizes) {
            auto source =
                Tight(Noise(format, size.cx, size.cy, static_cast<unsigned>(random.Next())));
            for (int round = 0; round < 12; ++round) {
                source.SetOrigin({random.Next() % 200 - 100, random.Next() % 200 - 100});
                const auto color = [&] {
                    return static_cast<COLORREF>(random.Next() << 9 ^ random.Next());
                };
                ExpectAsCalculated(
                    {random.Next() % (round < 6 ? 4 : 40), 1 + random.Next() % (round < 6 ? 3 : 20),
                     round % 3 ? random.Next() % 101 : 100, color(), color(), round % 2 == 0,
                     random.Next() % 300},
                    source);
            }
        }
    }
}

TEST(Weave, ExtremeSettingsStayDefined) {
    auto source = Tight(Noise(ENPixelFormat::ColourAlpha8, 40, 9, 3));
    for (const CPoint origin : {CPoint{0, 0}, {-20, 30}, {INT_MAX - 50, INT_MIN + 50}}) {
        source.SetOrigin(origin);
        for (const CSize widths : {CSize{1, 0},
                                   {2, 0},
                                   {3, 0},
                                   {0, 1},
                                   {1, 1},
                                   {32767, 32767},
                                   {INT_MAX, 1},
                                   {1, INT_MAX},
                                   {INT_MAX, INT_MAX}}) {
            ExpectAsCalculated({widths.cx, widths.cy, 60, 0x4080C0, 0xFF, true, 9}, source);
            ExpectAsCalculated({widths.cx, widths.cy, 100, 0x4080C0, 0xFF, false, INT_MAX}, source);
        }
    }
}

// Also across the left edge of the canvas and below its bottom, where positions turn negative.
TEST(Weave, ThePatternRepeatsWithoutASeam) {
    auto source = Noise(ENPixelFormat::Colour8, 31, 31, 8);
    constexpr int kPeriod = 12;
    CRowIteratorBands at_home;
    ASSERT_FALSE(Apply({.canvas_height = 31}, source, at_home).Failed());
    for (const CPoint periods : {CPoint{-1, 0}, {0, 1}, {-2, 3}, {1, -1}}) {
        source.SetOrigin({periods.x * kPeriod, periods.y * kPeriod});
        CRowIteratorBands moved;
        ASSERT_FALSE(Apply({.canvas_height = 31}, source, moved).Failed());
        EXPECT_EQ(Difference(moved, at_home), "") << periods.x << "," << periods.y;
    }
}

// Reports which channels the source shows while the work goes on.
struct SAccessSink : pictures::CountingSink {
    SAccessSink(int cancel_at, const CRowIteratorBands& image)
        : CountingSink(cancel_at), source(image) {}
    bool OnProgress(double fraction) override {
        seen = source.GetChannelAccess();
        return CountingSink::OnProgress(fraction);
    }
    const CRowIteratorBands& source;
    ENChannel seen = ENChannel::Alpha;
};

TEST(Weave, ChannelAccessIsPutBackAlsoWhenCancelled) {
    struct {
        ENPixelFormat format;
        ENChannel during;
    } const cases[] = {{ENPixelFormat::ColourAlpha8, ENChannel::Colour},
                       {ENPixelFormat::GreyAlpha8, ENChannel::Grey},
                       {ENPixelFormat::Colour8, ENChannel::All},
                       {ENPixelFormat::ColourAlpha16, ENChannel::All}};
    for (const auto& c : cases) {
        for (const int cancel_at : {0, 1, 3, 6}) {
            auto source = Noise(c.format, 5, 6, 1);
            source.SetChannelAccess(ENChannel::All, 7).ThrowIfFailed();
            SAccessSink sink(cancel_at, source);
            CStatusControl status(&sink);
            CRowIteratorBands destination;
            const CErrorAutoThrow result = Apply({}, source, destination, &status);
            EXPECT_EQ(result.Code(), cancel_at ? TolmErrorCode::Cancelled : TolmErrorCode::Success);
            EXPECT_EQ(sink.Calls(), cancel_at ? cancel_at : 6);
            EXPECT_EQ(sink.seen, c.during) << Name(c.format);
            EXPECT_EQ(source.GetChannelAccess(), ENChannel::All);
            EXPECT_EQ(source.GetImageModifyMode(), 7);
            EXPECT_EQ(destination.GetChannelAccess(), ENChannel::All);
            EXPECT_EQ(destination.IsAttached(), cancel_at == 0);
        }
    }
}

TEST(Weave, UnusableInputLeavesTheDestinationUntouched) {
    const auto before = Noise(ENPixelFormat::Grey8, 3, 3, 1);
    CRowIteratorBands destination;
    destination.Copy(before, 0).ThrowIfFailed();
    CRowIteratorBands none;
    auto source = Noise(ENPixelFormat::Grey8, 3, 3, 2);
    EXPECT_EQ(Apply({}, none, destination).Code(), TolmErrorCode::UnusableInput);
    for (const CSize widths : {CSize{0, 0}, {-1, 5}, {5, -1}, {-5, 5}}) {
        EXPECT_EQ(Apply({widths.cx, widths.cy}, source, destination).Code(),
                  TolmErrorCode::UnusableInput);
    }
    EXPECT_EQ(Difference(destination, before), "");
}

}  // namespace
