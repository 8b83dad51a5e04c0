#include <gtest/gtest.h>

#include <cmath>

#include "Transforms.h"

namespace {

using transforms::Apply;
using transforms::Picture;
using transforms::Samples;
using transforms::Values;

constexpr ENPixelFormat kGrey8 = ENPixelFormat::Grey8;
constexpr ENPixelFormat kGrey16 = ENPixelFormat::Grey16;
constexpr ENPixelFormat kColour8 = ENPixelFormat::Colour8;
constexpr ENPixelFormat kColour16 = ENPixelFormat::Colour16;

struct SWorked {
    CNPixelFormat format;
    int width;
    Values own;
    Values input;
    Values output;
};

template <class Transform>
void Check(const std::vector<SWorked>& cases) {
    for (const SWorked& c : cases) {
        EXPECT_EQ(Samples(Apply<Transform>(Picture(c.format, c.width, c.input), c.own)), c.output)
            << pictures::Name(c.format) << ", first value " << c.own[0] << ", first sample "
            << c.input[0];
    }
}

TEST(Luminance, WorkedValues) {
    Check<CLuminance>({
        {kGrey8, 3, {135}, {100, 0, 255}, {181, 135, 254}},
        {kGrey8, 2, {-100}, {200, 0}, {121, 0}},
        {kGrey8, 2, {0}, {255, 1}, {254, 0}},
        {kGrey8, 2, {255}, {3, 200}, {255, 255}},
        {kGrey8, 2, {-999}, {3, 255}, {0, 0}},
        {kGrey16, 2, {135}, {25600, 0}, {46695, 34695}},
        {kGrey16, 2, {255}, {1, 65535}, {65535, 65535}},
        {ENPixelFormat::ColourAlpha8, 1, {135}, {100, 0, 255, 17}, {181, 135, 254, 17}},
    });
}

TEST(Luminance, LeavesTheAlphaOfGreyImagesToTheDestination) {
    CLuminance transform;
    transforms::Fill(transform, {135});
    const CRowIteratorBands source = Picture(ENPixelFormat::GreyAlpha8, 2, {100, 7, 0, 8});
    const CRowIteratorBands held = Picture(ENPixelFormat::GreyAlpha8, 2, {1, 50, 2, 60});
    EXPECT_EQ(Samples(transforms::Run(transform, source, held)), (Values{181, 50, 135, 60}));
    EXPECT_EQ(Samples(Apply<CLuminance>(source, {135})), (Values{181, 7, 135, 8}));
}

TEST(Periodic, WorkedValues) {
    Check<CPeriodic3>({
        {kGrey8, 4, {32, 10}, {0, 127, 200, 255}, {0, 0, 142, 255}},
        // The mean 100 gives wave 27, factor 270 of 1024 for every channel.
        {kColour8, 1, {32, 10}, {50, 100, 151}, {13, 26, 39}},
        {kColour8, 1, {256, 20}, {255, 255, 255}, {255, 255, 255}},
        // The mean of the whole samples, not of their high bytes: 0x00FF * 2 and 0x0102 give
        // 0x0100.
        {kColour16, 1, {32, 20}, {255, 255, 258}, {0, 0, 2 * 257}},
        {kGrey16, 2, {32, 10}, {200 * 256 + 99, 127 * 256}, {142 * 257, 0}},
    });
    Check<CPeriodic6>({
        {kGrey8, 3, {32, 10}, {255, 200, 100}, {255, 142, 26}},
        {kGrey8, 1, {32, 20}, {250}, {250}},
        {kGrey16, 1, {32, 20}, {4608}, {4626}},
    });
    Check<CPeriodic5>({
        {kGrey8, 3, {6, 16}, {10, 100, 200}, {75, 100, 227}},
        {kColour8, 1, {6, 16}, {10, 100, 200}, {75, 100, 227}},
        {kGrey16, 2, {6, 16}, {10 * 256 + 5, 200 * 256}, {75 * 257, 227 * 257}},
        // Step 256: phase 10 of 513 lies 246 below the middle.
        {kGrey8, 1, {1, 16}, {10}, {246}},
    });
}

// The lane arithmetic against the formulas written out, over the whole domain of 8-bit samples and
// every parameter value.
TEST(Periodic, FormulasHoldEverywhere) {
    const CRowIteratorBands ramp =
        pictures::Make(kGrey8, 256, 1, [](int x, int, int) { return x; });
    for (int periods = 1; periods <= 256; ++periods) {
        const int gain = 10 + periods % 11;
        const Values three = Samples(Apply<CPeriodic3>(ramp, {periods, gain}));
        const Values six = Samples(Apply<CPeriodic6>(ramp, {periods, gain}));
        for (int v = 0; v < 256; ++v) {
            const auto at = static_cast<std::size_t>(v);
            const int wave = std::abs((v * periods >> 5) % 255 - 127);
            const int scaled = (wave * v * gain) >> 10;
            ASSERT_EQ(three[at], std::min(scaled, 255)) << v << " at " << periods;
            ASSERT_EQ(six[at], std::min(scaled, v)) << v << " at " << periods;
        }
    }
    for (int periods = 2; periods <= 100; ++periods) {
        for (int slope = 1; slope <= 128; slope += periods < 20 ? 1 : 9) {
            const Values five = Samples(Apply<CPeriodic5>(ramp, {periods, slope}));
            const int step = 256 / (periods / 2);  // odd numbers count as the even one below
            for (int v = 0; v < 256; ++v) {
                const int wave = ((v * slope) >> 4) % (2 * step + 1) - step;
                const int lifted = 2 * std::abs(wave) - step + v;
                ASSERT_EQ(five[static_cast<std::size_t>(v)], std::clamp(lifted, v, 255))
                    << v << " at " << periods << ", " << slope;
            }
        }
    }
}

TEST(Contour, WorkedValues) {
    const Values white_ink = {10, 255, 255, 255};
    Check<CContour1>({
        // Without intensity every sample loses its 256th part.
        {kGrey8, 3, {0, 9, 9, 9}, {255, 100, 0}, {254, 99, 0}},
        // Weights 10 * 10 for the difference to the right, 0 in the last column.
        {kGrey8, 2, white_ink, {100, 110}, {(255 * 100 + 155 * 100) >> 8, 109}},
        // The difference to the pixel below, and both, cut at 255.
        {kGrey8, 1, white_ink, {100, 105}, {(255 * 50 + 205 * 100) >> 8, 104}},
        {kGrey8, 2, white_ink, {0, 99, 99, 0}, {254, 254, 254, 0}},
        // The mean of the ink's channels: 7 * 20 / 3 is 46.
        {kGrey8, 2, {10, 3, 3, 1}, {0, 2}, {46 >> 8, (255 * 2) >> 8}},
        // Each channel has a weight and an ink of its own: blue, green, red.
        {kColour8,
         2,
         {10, 200, 100, 50},
         {10, 20, 30, 10, 30, 40},
         {(255 * 10) >> 8, (100 * 100 + 155 * 20) >> 8, (100 * 200 + 155 * 30) >> 8,
          (255 * 10) >> 8, (255 * 30) >> 8, (255 * 40) >> 8}},
        // 16 bits: weight 2560 * 10 >> 8 = 100 of an ink of 255 * 257.
        {kGrey16, 2, white_ink, {0, 2560}, {(65535 * 100) >> 8, (255 * 2560) >> 8}},
    });
}

// Alpha is copied in place in grey images and from the row below in colour images.
TEST(Neighbourhood, AlphaMoves) {
    const CRowIteratorBands grey = Picture(ENPixelFormat::GreyAlpha8, 1, {10, 1, 20, 2, 30, 3});
    EXPECT_EQ(Samples(Apply<CContour1>(grey, {0, 0, 0, 0})), (Values{9, 1, 19, 2, 29, 3}));
    const CRowIteratorBands colour =
        Picture(ENPixelFormat::ColourAlpha8, 1, {10, 10, 10, 1, 10, 10, 10, 2, 10, 10, 10, 3});
    for (const bool relief : {false, true}) {
        const Values result = Samples(relief ? Apply<CTerrasseRelief>(colour, {45, 9, 9, 9})
                                             : Apply<CContour1>(colour, {0, 0, 0, 0}));
        EXPECT_EQ((Values{result[3], result[7], result[11]}), (Values{2, 3, 3}));
    }
}

TEST(Relief, WorkedValues) {
    // At angle 270 the light comes from the right: cos 1, and d = 4 * 3 * rise, one less where the
    // product falls short of a whole number.
    const auto lit = [](int value, int rise_right, int rise_below, int angle, int light) {
        const double radians = static_cast<double>(2 * (angle + 90)) * 3.1415926 / 360.0;
        const double slope =
            3.0 * rise_right * std::cos(radians) + 3.0 * rise_below * std::sin(radians);
        const double shade = std::trunc(slope * 4.0);
        return std::clamp(value + static_cast<int>(std::floor(shade * light / 256.0)), 0, 255);
    };
    EXPECT_EQ(lit(100, 5, 0, 270, 255), 158) << "59 or 60 times 255/256";
    const Values picture = {100, 105, 90, 95, 120, 90};
    Values expected;
    for (const int angle : {0, 45, 90, 135, 200, 270, 360}) {
        expected = {lit(100, 5, -5, angle, 77),  lit(105, -15, 15, angle, 77),
                    lit(90, 0, 0, angle, 77),    lit(95, 25, 0, angle, 77),
                    lit(120, -30, 0, angle, 77), 90};
        EXPECT_EQ(Samples(Apply<CTerrasseRelief>(Picture(kGrey8, 3, picture), {angle, 1, 77, 2})),
                  expected)
            << "angle " << angle << ", the green light alone";
    }
    // d * light = -1 shifts to -1, not 0: straight down light, one step darker below, light 1.
    EXPECT_EQ(Samples(Apply<CTerrasseRelief>(Picture(kColour8, 1, {9, 9, 9, 8, 9, 9}),
                                             {0, 1, 0, 255}))[2],
              8);
}

TEST(Relief, FlatAndUnlitPicturesStayAsTheyAre) {
    const CRowIteratorBands flat =
        pictures::Make(kColour8, 9, 9, [](int, int, int c) { return 40 * c; });
    EXPECT_EQ(pictures::Difference(Apply<CTerrasseRelief>(flat, {45, 255, 255, 255}), flat), "");
    const CRowIteratorBands noise = pictures::Noise(ENPixelFormat::Colour16, 9, 9, 5);
    const CRowIteratorBands high_bytes = pictures::Make(
        ENPixelFormat::Colour16, 9, 9,
        [&](int x, int y, int c) { return pictures::Sample(noise, x, y, c) / 256 * 257; });
    EXPECT_EQ(pictures::Difference(Apply<CTerrasseRelief>(noise, {45, 0, 0, 0}), high_bytes), "");
}

// The loop for grey with alpha leaves alpha, last row and last column to the destination.
TEST(Relief, GreyAlphaKeepsTheRest) {
    const Values held(18, 200);
    CTerrasseRelief transform;
    transforms::Fill(transform, {45, 0, 0, 0});
    const CRowIteratorBands result =
        transforms::Run(transform,
                        Picture(ENPixelFormat::GreyAlpha8, 3,
                                {1, 9, 2, 9, 3, 9, 4, 9, 5, 9, 6, 9, 7, 9, 8, 9, 9, 9}),
                        Picture(ENPixelFormat::GreyAlpha8, 3, held));
    EXPECT_EQ(Samples(result), (Values{1, 200, 2, 200, 200, 200, 4, 200, 5, 200, 200, 200, 200, 200,
                                       200, 200, 200, 200}));
}

TEST(Glass, WorkedValues) {
    const Values steps = {100, 110, 210, 0, 100, 110, 210, 0};
    Values grey_steps;
    for (const int value : steps) grey_steps.insert(grey_steps.end(), 3, value);
    Values expected;
    // Column 0 is pushed to 300 / 256: 44/256 of the way from 110 to 210. Column 1 is pushed to
    // 3256 and back from the far end to -1210, column 2 to -5788: grey images stop at 1/256, colour
    // images are mirrored to and fro until they stand at 834 and 344.
    for (const int value : {127, 0, 144, 0, 100, 110, 210, 0}) {
        expected.insert(expected.end(), 3, value);
    }
    Check<CGlass>({
        {kGrey8, 4, {10}, steps, {127, 100, 100, 0, 100, 110, 210, 0}},
        {kColour8, 4, {10}, grey_steps, expected},
        // Not pushed, the first column looks beside itself: by 1/256 in grey, 2/256 in colour.
        {kGrey8, 3, {0}, {200, 0, 7, 200, 0, 7}, {199, 0, 7, 200, 0, 7}},
        {kColour8,
         2,
         {0},
         {200, 200, 200, 0, 0, 0, 200, 200, 200, 0, 0, 0},
         {198, 198, 198, 0, 0, 0, 200, 200, 200, 0, 0, 0}},
        // A row down: 3 * 20 * 8 = 480 of 512, then 1.875 rows, beyond the last row's start.
        {kGrey8, 2, {20}, {2, 2, 10, 10}, {10, 2, 10, 10}},
        // 16 bits are seen as their high bytes.
        {kGrey16, 2, {0}, {0x7F12, 0x7F34, 0x7F56, 0x7F78}, {0x7F7F, 0x7F34, 0x7F56, 0x7F78}},
    });
}

// Grey images take alpha from their own column of the upper sampled row; colour images keep the
// destination's.
TEST(Glass, AlphaFollowsTheRowOnly) {
    const CRowIteratorBands grey =
        Picture(ENPixelFormat::GreyAlpha8, 2, {0, 1, 0, 2, 10, 3, 10, 4, 10, 5, 10, 6});
    EXPECT_EQ(Samples(Apply<CGlass>(grey, {10}))[1], 3) << "300 / 256 rows down";
    CGlass transform;
    transforms::Fill(transform, {10});
    const CRowIteratorBands colour = pictures::Noise(ENPixelFormat::ColourAlpha8, 5, 5, 1);
    const CRowIteratorBands held = pictures::Noise(ENPixelFormat::ColourAlpha8, 5, 5, 2);
    CRowIteratorBands destination;
    destination.Copy(held, 0).ThrowIfFailed();
    const CRowIteratorBands result = transforms::Run(transform, colour, destination);
    for (int i = 0; i < 25; ++i) {
        EXPECT_EQ(pictures::Sample(result, i % 5, i / 5, 3),
                  pictures::Sample(held, i % 5, i / 5, 3));
    }
}

}  // namespace
