#include <gtest/gtest.h>

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
        for (int y = 10; y < 80; y += 20) {
            for (int x = 10; x < 100; x += 20) {
                ASSERT_NEAR(Sample(made, x, y, 0), cell(x, y), 0.05 * cell(x, y) + 1)
                    << Name(format);
            }
        }
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

TEST(GlassMosaic, FlatGlassWithoutGroutIsClear) {
    for (const ENPixelFormat format : kAllFormats) {
        const CRowIteratorBands source = Noise(format, 57, 43, 1);
        EXPECT_EQ(Difference(Glass(source, 7, 5, 0, 0, 0), source), "") << Name(format);
    }
}

// The colours of one pixel at once or one sample after the other: the same picture. Channels that
// lie beside alpha, or alone, go other ways through the loops; each takes its turn as the green
// one, for which the mortar is that of grey pictures.
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

}  // namespace
