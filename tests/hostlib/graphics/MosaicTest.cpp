#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "host/graphics/CIoDeformation.h"
#include "support/Pictures.h"

namespace {

using pictures::Difference;
using pictures::kAllFormats;
using pictures::Make;
using pictures::Name;
using pictures::Noise;
using pictures::Sample;

CRowIteratorBands Stones(const CRowIteratorBands& source, int columns, int rows, double grout,
                         double diffusion, double tiles, unsigned seed = 1) {
    CIoDeformation mosaic;
    mosaic.MosaicAdvanced(columns, rows, grout, diffusion, tiles);
    CRuntimeRandom::OfThisThread().Seed(seed);
    CRowIteratorBands made;
    mosaic(made, source).ThrowIfFailed();
    return made;
}

CRowIteratorBands Glass(const CRowIteratorBands& source, int columns, int rows, double grout,
                        double rim, double curvature) {
    CIoDeformation mosaic;
    mosaic.SetResampleMode(2);
    mosaic.SetEdgeMode(1);
    mosaic.Glasses(columns, rows, grout, 0, rim, curvature);
    CRuntimeRandom::OfThisThread().Seed(1);
    CRowIteratorBands made;
    mosaic(made, source).ThrowIfFailed();
    return made;
}

TEST(AntiqueMosaic, FollowsTheGeneratorAndNothingElse) {
    const CRowIteratorBands source = Noise(ENPixelFormat::Colour8, 80, 60, 1);
    const CRowIteratorBands made = Stones(source, 9, 7, 2, 50, 70);
    const int next = CRuntimeRandom::OfThisThread().Next();
    EXPECT_EQ(Difference(Stones(source, 9, 7, 2, 50, 70), made), "");
    EXPECT_NE(Difference(Stones(source, 9, 7, 2, 50, 70, 2), made), "");
    Stones(Noise(ENPixelFormat::GreyAlpha16, 300, 200, 2), 9, 7, 0, 0, 0);
    EXPECT_EQ(CRuntimeRandom::OfThisThread().Next(), next) << "draws depend on the grid alone";
}

// A stone has nearly the mean colour of its source area; here the areas are even, so that it is
// nearly theirs. Out of place, stones are no longer in line.
TEST(AntiqueMosaic, StonesTakeTheColourOfTheirPlace) {
    for (const ENPixelFormat format : kAllFormats) {
        const int unit = CNPixelFormat(format).Is16bit() ? 257 : 1;
        const auto cell = [&](int x, int y) { return unit * (40 + 20 * (x / 20) + 30 * (y / 20)); };
        const CRowIteratorBands source = Make(format, 100, 80, [&](int x, int y, int c) {
            return c == CNPixelFormat(format).ColourChannels() ? unit * 200 : cell(x, y);
        });
        const CRowIteratorBands made = Stones(source, 5, 4, 2, 50, 0);
        double sum = 0;
        for (int y = 10; y < 80; y += 20) {
            for (int x = 10; x < 100; x += 20) {
                const double share = 1.0 * Sample(made, x, y, 0) / cell(x, y);
                ASSERT_NEAR(share, 1, 0.15) << Name(format);
                sum += share / 20;
            }
        }
        EXPECT_NEAR(sum, 1, 0.04) << "the tones of all stones together";
    }
}

// Colour under alpha 0 does not count where there is other.
TEST(AntiqueMosaic, TransparentPixelsDoNotColourAStone) {
    const CRowIteratorBands source =
        Make(ENPixelFormat::ColourAlpha8, 40, 20, [](int x, int, int c) {
            return c == 3 ? (x % 2) * 255 : x % 2 ? 100 : 250;
        });
    const CRowIteratorBands made = Stones(source, 2, 1, 0, 0, 0);
    EXPECT_NEAR(Sample(made, 11, 10, 0), 100, 6);
    const CRowIteratorBands clear =
        Make(ENPixelFormat::ColourAlpha8, 40, 20, [](int, int, int c) { return c == 3 ? 0 : 180; });
    EXPECT_NEAR(Sample(Stones(clear, 2, 1, 0, 0, 0), 11, 10, 0), 180, 10);
}

// Joints of stones in place are straight lines; displaced, they are at many places.
TEST(AntiqueMosaic, TileDiffusionMovesTheJoints) {
    const CRowIteratorBands source =
        Make(ENPixelFormat::Grey8, 200, 200, [](int, int, int) { return 220; });
    const auto places = [&](double diffusion) {
        const CRowIteratorBands made = Stones(source, 10, 10, 3, 1, diffusion);
        std::set<int> columns;
        for (int y = 0; y < 200; ++y) {
            for (int x = 1; x < 199; ++x) {
                const int at = Sample(made, x, y, 0);
                if (at < 80 && at < Sample(made, x - 1, y, 0) - 40) columns.insert(x);
            }
        }
        return columns.size();
    };
    EXPECT_LT(places(0) * 2, places(100));
}

// Joints are dark shares of the colours around them, and no more than a sixth of a cell, with their
// wander, at the command's defaults.
TEST(AntiqueMosaic, JointsAreThinAndDark) {
    for (const int cell : {6, 8, 20, 60}) {
        for (const int value : {60, 220}) {
            const CRowIteratorBands source = Make(ENPixelFormat::Grey8, cell * 12, cell * 12,
                                                  [&](int, int, int) { return value; });
            const CRowIteratorBands made = Stones(source, 12, 12, 2, 50, 0);
            double covered = 0;
            int darkest = 255;
            const int rows[] = {cell / 2, cell / 2 + 3 * cell, cell / 2 + 8 * cell};
            for (const int y : rows) {
                for (int x = cell / 2; x < cell * 11 + cell / 2; ++x) {
                    const int at = Sample(made, x, y, 0);
                    darkest = std::min(darkest, at);
                    covered += std::clamp((0.8 * value - at) / (0.47 * value), 0.0, 1.0);
                }
            }
            EXPECT_LE(covered / 33, cell / 6.0) << cell << " pixels, " << value;
            EXPECT_GE(covered / 33, std::min(cell / 30.0, 0.6)) << cell << " pixels, " << value;
            // The thinnest cover only a part of their pixels.
            EXPECT_NEAR(darkest, (cell < 10 ? 0.5 : 0.36) * value, 0.2 * value);
        }
    }
}

// Half a cell beside a row of stones, a strong edge still finds joints that lie along it, where
// stones may leave their place.
TEST(AntiqueMosaic, StonesFollowAStrongEdge) {
    // How far the stones' colours are from the picture's; the light on them alone is not counted.
    const auto off = [](int edge, double diffusion) {
        const auto sum = [&](int dark, int bright) {
            const CRowIteratorBands source =
                Make(ENPixelFormat::Grey8, 200, 200,
                     [&](int x, int, int) { return x < edge ? dark : bright; });
            const CRowIteratorBands made = Stones(source, 10, 10, 0, 0, diffusion);
            int total = 0;
            for (int y = 0; y < 200; ++y) {
                for (int x = 80; x < 140; ++x) {
                    total += std::abs(Sample(made, x, y, 0) - Sample(source, x, y, 0));
                }
            }
            return total;
        };
        return sum(60, 200) - (sum(60, 60) * (edge - 80) + sum(200, 200) * (140 - edge)) / 60;
    };
    for (const int edge : {104, 108, 112}) EXPECT_LT(off(edge, 70) * 1.8, off(edge, 0)) << edge;
}

TEST(GlassMosaic, FlatGlassWithoutGroutIsClear) {
    for (const ENPixelFormat format : kAllFormats) {
        const CRowIteratorBands source = Noise(format, 57, 43, 1);
        EXPECT_EQ(Difference(Glass(source, 7, 5, 0, 0, 0), source), "") << Name(format);
    }
}

// The colours of one pixel at once or one sample after the other: the same picture. Channels that
// lie beside alpha, or alone, go other ways through the loops.
TEST(GlassMosaic, EveryPathSeesTheSame) {
    for (const bool deep : {false, true}) {
        const CRowIteratorBands grey = Noise(CNPixelFormat::Of(1, deep), 90, 61, 1);
        const CRowIteratorBands expected = Glass(grey, 6, 5, 2, 40, 80);
        for (const int channels : {2, 3, 4}) {
            const CRowIteratorBands source =
                Make(CNPixelFormat::Of(channels, deep), 90, 61,
                     [&](int x, int y, int) { return Sample(grey, x, y, 0); });
            const CRowIteratorBands made = Glass(source, 6, 5, 2, 40, 80);
            const CRowIteratorBands green =
                Make(CNPixelFormat::Of(1, deep), 90, 61,
                     [&](int x, int y, int) { return Sample(made, x, y, channels > 2 ? 1 : 0); });
            EXPECT_EQ(Difference(green, expected), "") << channels << " channels";
        }
        // As the alpha channel of a colour picture, which no fast loop takes.
        CRowIteratorBands alpha =
            Make(CNPixelFormat::Of(4, deep), 90, 61,
                 [&](int x, int y, int c) { return c == 3 ? Sample(grey, x, y, 0) : 7; });
        alpha.SetChannelAccess(ENChannel::Alpha, 0).ThrowIfFailed();
        EXPECT_EQ(Difference(Glass(alpha, 6, 5, 2, 40, 80), expected), "");
    }
}

// A lens enlarges what is behind its middle and brings more of it into view toward its rim.
TEST(GlassMosaic, CurvedGlassBendsThePicture) {
    const CRowIteratorBands ramp =
        Make(ENPixelFormat::Grey16, 200, 100, [](int x, int, int) { return 20000 + 100 * x; });
    const CRowIteratorBands made = Glass(ramp, 2, 1, 2, 0, 50);
    const auto slope = [&](int x) {
        return Sample(made, x + 1, 50, 0) - Sample(made, x - 1, 50, 0);
    };
    EXPECT_LT(slope(50), 170);
    EXPECT_GT(slope(50), 50);
    EXPECT_GT(Sample(made, 85, 50, 0) - Sample(made, 65, 50, 0), 2300);
}

// One tile of half size 100 with a joint of a pixel to each side: the light stands at the upper
// left. Its reflection is a streak along the rim there, 42 pixels wide: strongest 0.58 of the way
// from the rim's inner end to the outline, and half as strong an eighth of the rim to either side;
// it grows weak toward the far corners. Opposite it the rim is light, without a streak.
TEST(GlassMosaic, TheLightStandsAtTheUpperLeft) {
    const CRowIteratorBands source =
        Make(ENPixelFormat::Grey16, 200, 200, [](int, int, int) { return 20000; });
    const CRowIteratorBands made = Glass(source, 1, 1, 2, 0, 50);
    const auto at = [&](int x, int y) { return Sample(made, x, y, 0); };
    const int middle = at(100, 100);
    for (const bool down : {false, true}) {
        const auto along = [&](int i) { return down ? at(60, i) : at(i, 60); };
        int peak = 0;
        for (int i = 0; i < 100; ++i) peak = along(i) > along(peak) ? i : peak;
        EXPECT_NEAR(peak, 1 + 42 * (1 - 0.58), 2);
        EXPECT_GT(along(peak), middle * 3 / 2);
        int wide = 0;
        for (int i = 0; i < 60; ++i) wide += along(i) > (along(peak) + middle) / 2;
        EXPECT_NEAR(wide, 42 * 0.42 * 0.29 * 2, 3);
        EXPECT_GT(down ? at(140, 196) : at(196, 140), middle * 11 / 10) << "the light rim";
        EXPECT_LT(down ? at(140, 18) : at(18, 140), along(peak) * 3 / 4) << "toward the far corner";
    }
    EXPECT_EQ(at(0, 100), at(100, 0));
    EXPECT_NEAR(at(0, 100), 0.4 * 20000, 2100) << "the joint";
}

}  // namespace
