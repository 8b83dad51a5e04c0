#include "host/graphics/ImageHelpers.h"

#include <gtest/gtest.h>

#include "support/Pictures.h"

namespace {

using pictures::Difference;
using pictures::kAllFormats;
using pictures::kAwkwardSizes;
using pictures::Make;
using pictures::Name;
using pictures::Noise;
using pictures::Sample;
using pictures::Tight;

TEST(Helpers, AlphaIsPutOnAndKept) {
    for (const bool deep : {false, true}) {
        for (const int channels : {2, 4}) {
            const CRowIteratorBands whole =
                Tight(Noise(CNPixelFormat::Of(channels, deep), 17, 5, 1));
            CRowIteratorBands colour, made, shown = whole;
            colour.Create(17, 5, CNPixelFormat::Of(channels - 1, deep)).ThrowIfFailed();
            RowIterator_CopyColor(colour, whole).ThrowIfFailed();
            const CNPixelFormat format = whole.GetPixelFormat();
            AddAlphaChannel(nullptr, colour, made, format, whole, nullptr, true, nullptr)
                .ThrowIfFailed();
            EXPECT_EQ(Difference(made, whole), "") << Name(format);
            // From pictures that show their colour or alpha only.
            CRowIteratorBands alpha = whole;
            shown.SetChannelAccess(ENChannel::Colour, 0).ThrowIfFailed();
            alpha.SetChannelAccess(ENChannel::Alpha, 0).ThrowIfFailed();
            AddAlphaChannel(nullptr, shown, made, format, alpha, nullptr, true, nullptr)
                .ThrowIfFailed();
            EXPECT_EQ(Difference(made, whole), "") << Name(format);

            CRowIteratorBands other = Noise(format, 17, 5, 2);
            RowIterator_CopyAlpha(other, whole).ThrowIfFailed();
            RowIterator_CopyColor(other, colour).ThrowIfFailed();
            EXPECT_EQ(Difference(other, whole), "") << Name(format);
        }
    }
}

TEST(Helpers, PicturesThatDoNotFitAreErrors) {
    const CRowIteratorBands colour = Noise(ENPixelFormat::Colour8, 5, 4, 1);
    const CRowIteratorBands alpha = Noise(ENPixelFormat::ColourAlpha8, 5, 4, 1);
    CRowIteratorBands made, clear = Noise(ENPixelFormat::ColourAlpha8, 5, 4, 3);
    const auto add = [&](const CRowIteratorBands& of, ENPixelFormat format,
                         const CRowIteratorBands& from) {
        return AddAlphaChannel(nullptr, of, made, format, from, nullptr, true, nullptr).Code();
    };
    const auto unusable = TolmErrorCode::UnusableInput;
    EXPECT_EQ(add({}, ENPixelFormat::ColourAlpha8, alpha), unusable);
    EXPECT_EQ(add(colour, ENPixelFormat::Colour8, alpha), unusable);
    EXPECT_EQ(add(colour, ENPixelFormat::GreyAlpha8, alpha), unusable);
    EXPECT_EQ(add(colour, ENPixelFormat::ColourAlpha16, alpha), unusable);
    EXPECT_EQ(add(colour, ENPixelFormat::ColourAlpha8, colour), unusable);
    EXPECT_EQ(add(colour, ENPixelFormat::ColourAlpha8, Noise(ENPixelFormat::Grey8, 4, 4, 1)),
              unusable);
    EXPECT_FALSE(made.IsAttached());
    EXPECT_EQ(RowIterator_CopyAlpha(clear, colour).Code(), unusable);
    EXPECT_EQ(RowIterator_CopyColor(clear, {}).Code(), unusable);
    EXPECT_EQ(RowIterator_Tile(clear, {}).Code(), unusable);
    EXPECT_EQ(Resample(nullptr, {}, made, 3, 3, true, false).Code(), unusable);
    EXPECT_EQ(GreyScaleDIB(nullptr, {}, made, {}).Code(), unusable);
    EXPECT_EQ(FlattenIteratorWithColor(alpha, made, nullptr, {}).Code(), unusable);
}

// Against the exact value, rounded: over the whole of an 8-bit sample and alpha, and some deep
// ones.
TEST(Helpers, FlatteningRoundsToNearest) {
    const CColorRef colour = CColorRef::FromRgb(255, 100, 3);
    const int wanted[] = {3, 100, 255};
    for (const bool deep : {false, true}) {
        const int unit = deep ? 257 : 1;
        CRowIteratorBands source = Noise(CNPixelFormat::Of(4, deep), 256, 256, 1);
        for (int y = 0; y < 256; ++y) {
            for (int x = 0; x < 256 && !deep; ++x) {
                for (int c = 0; c < 4; ++c) pictures::SetSample(source, x, y, c, c == 3 ? y : x);
            }
        }
        CRowIteratorBands made;
        FlattenIteratorWithColor(source, made, GetMask64KLUT(), colour).ThrowIfFailed();
        ASSERT_EQ(made.GetPixelFormat(), CNPixelFormat::Of(3, deep));
        for (int y = 0; y < 256; ++y) {
            for (int x = 0; x < 256; ++x) {
                const double alpha = Sample(source, x, y, 3) / (255.0 * unit);
                for (int c = 0; c < 3; ++c) {
                    const double exact =
                        Sample(source, x, y, c) * alpha + wanted[c] * unit * (1 - alpha);
                    ASSERT_NEAR(Sample(made, x, y, c), exact, 0.5000001) << x << ", " << y;
                }
            }
        }
    }
    CRowIteratorBands grey;
    const CRowIteratorBands clear =
        Make(ENPixelFormat::GreyAlpha8, 2, 1, [](int x, int, int c) { return c ? 0 : x * 200; });
    DeleteAlphaChannel(clear, grey, GetMask64KLUT(), colour).ThrowIfFailed();
    EXPECT_EQ(Sample(grey, 1, 0, 0), colour.Grey());
    const CRowIteratorBands opaque = Noise(ENPixelFormat::Colour16, 9, 3, 1);
    DeleteAlphaChannel(opaque, grey, GetMask64KLUT(), colour).ThrowIfFailed();
    EXPECT_EQ(Difference(grey, opaque), "");
}

TEST(Helpers, TilesRepeatFromTheirPlaceOnTheCanvas) {
    for (const CSize tile_size : {CSize{1, 1}, {3, 2}, {50, 50}}) {
        const CRowIteratorBands tile =
            Tight(Make(ENPixelFormat::Grey8, tile_size.cx, tile_size.cy,
                       [](int x, int y, int) { return (x + 10 * y) % 256; }));
        for (const CPoint origin : {CPoint{0, 0}, {4, 1}, {-1, -7}}) {
            CRowIteratorBands image = Tight(Noise(ENPixelFormat::Grey8, 11, 7, 1));
            image.SetOrigin(origin);
            const CRowIteratorBands before = Tight(image);
            const CRect area{2, 3, 90, 6};
            RowIterator_Tile(image, tile, &area).ThrowIfFailed();
            const auto in_tile = [](int at, int size) { return ((at % size) + size) % size; };
            for (int y = 0; y < 7; ++y) {
                for (int x = 0; x < 11; ++x) {
                    const int expected = x >= 2 && y >= 3 && y < 6
                                             ? (in_tile(x + origin.x, tile_size.cx) +
                                                10 * in_tile(y + origin.y, tile_size.cy)) %
                                                   256
                                             : Sample(before, x, y, 0);
                    ASSERT_EQ(Sample(image, x, y, 0), expected) << x << ", " << y;
                }
            }
        }
    }
}

// Every conversion of a tile's pixel that the formats allow, at the ends and in the middle.
TEST(Helpers, TilesAreConvertedToTheFormat) {
    for (const ENPixelFormat from : kAllFormats) {
        for (const ENPixelFormat to : kAllFormats) {
            for (const int value : {0, 77, 255}) {
                const CNPixelFormat of = from, in = to;
                const CRowIteratorBands tile = Make(of, 1, 1, [&](int, int, int c) {
                    const bool alpha = of.IsAlphaChannelPresent() && c == of.Channels() - 1;
                    return (alpha ? 128 : value) * (of.Is16bit() ? 257 : 1);
                });
                CRowIteratorBands image = Noise(in, 3, 1, 1);
                RowIterator_Tile(image, tile).ThrowIfFailed();
                for (int c = 0; c < in.Channels(); ++c) {
                    const bool alpha = in.IsAlphaChannelPresent() && c == in.Channels() - 1;
                    const int expected = alpha ? (of.IsAlphaChannelPresent() ? 128 : 255) : value;
                    EXPECT_EQ(Sample(image, 2, 0, c), expected * (in.Is16bit() ? 257 : 1))
                        << Name(of) << " to " << Name(in) << " channel " << c;
                }
            }
        }
    }
}

TEST(Helpers, GreyFollowsTheColourSpecification) {
    const CRowIteratorBands colour = Make(ENPixelFormat::ColourAlpha8, 1, 1, [](int, int, int c) {
        const int bgra[] = {10, 100, 200, 33};
        return bgra[c];
    });
    CRowIteratorBands grey;
    GreyScaleDIB(nullptr, colour, grey, {}).ThrowIfFailed();
    EXPECT_NEAR(Sample(grey, 0, 0, 0), 257 * (59.8 + 58.7 + 1.14), 1) << "16 bits, all of use";
    EXPECT_EQ(Sample(grey, 0, 0, 1), 257 * 33);
    const struct {
        SColorSpecRGB spec;
        double grey;
    } cases[] = {{{1, 0, 0}, 200},
                 {{0, 0, 5}, 10},
                 {{2, 2, 0}, 150},
                 {{0, 0, 0}, 119.64},
                 {{-1, 2, 1}, 119.64}};
    for (const auto& each : cases) {
        GreyScaleDIB(nullptr, colour, grey, each.spec).ThrowIfFailed();
        EXPECT_NEAR(Sample(grey, 0, 0, 0), 257 * each.grey, 1);
    }
    const CRowIteratorBands white =
        Make(ENPixelFormat::Colour16, 1, 1, [](int, int, int) { return 65535; });
    GreyScaleDIB(nullptr, white, grey, {}).ThrowIfFailed();
    EXPECT_EQ(Sample(grey, 0, 0, 0), 65535);
}

CRowIteratorBands Scaled(const CRowIteratorBands& source, int width, int height,
                         bool seamless = false, bool nearest = false) {
    CRowIteratorBands made;
    Resample(nullptr, Tight(source), made, width, height, seamless, nearest).ThrowIfFailed();
    EXPECT_EQ(made.GetPixelFormat(), source.GetPixelFormat());
    return made;
}

TEST(Resample, AnEvenPictureStaysEvenAndTheSameSizeIsACopy) {
    for (const ENPixelFormat format : kAllFormats) {
        for (const CSize size : kAwkwardSizes) {
            const int value = CNPixelFormat(format).Is16bit() ? 54321 : 211;
            const auto even = [&](int, int, int) { return value; };
            const CRowIteratorBands source = Make(format, size.cx, size.cy, even);
            for (const CSize to : {CSize{1, 1}, {7, 40}, {130, 3}}) {
                ASSERT_EQ(Difference(Scaled(source, to.cx, to.cy, to.cx == 7),
                                     Make(format, to.cx, to.cy, even)),
                          "")
                    << Name(format);
            }
            const CRowIteratorBands noise = Noise(format, size.cx, size.cy, 1);
            ASSERT_EQ(Difference(Scaled(noise, size.cx, size.cy), noise), "");
        }
    }
    EXPECT_EQ(Scaled(Noise(ENPixelFormat::Grey8, 4, 4, 1), 0, -5).GetRect(), (CRect{0, 0, 1, 1}));
}

TEST(Resample, FinePatternsTurnGreyWhenTheyShrink) {
    const CRowIteratorBands board =
        Make(ENPixelFormat::Grey8, 200, 200, [](int x, int y, int) { return (x + y) % 2 * 255; });
    for (const int side : {140, 100, 67, 13, 1}) {
        const CRowIteratorBands made = Scaled(board, side, side, true);
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) ASSERT_NEAR(Sample(made, x, y, 0), 128, 8) << side;
        }
    }
}

// Straight ramps stay straight: places between pixels are where they should be, in both directions.
TEST(Resample, KeepsPlaces) {
    const CRowIteratorBands ramp = Make(ENPixelFormat::Grey16, 60, 60,
                                        [](int x, int y, int) { return 5000 + 400 * x + 200 * y; });
    for (const int side : {20, 45, 100, 240}) {
        const double scale = 60.0 / side;
        const CRowIteratorBands made = Scaled(ramp, side, side);
        for (int i = side / 5; i < side * 4 / 5; ++i) {
            const double x = (i + 0.5) * scale - 0.5, y = (side - i - 0.5) * scale - 0.5;
            ASSERT_NEAR(Sample(made, i, side - 1 - i, 0), 5000 + 400 * x + 200 * y, 60) << side;
        }
    }
    const CRowIteratorBands four = Scaled(ramp, 120, 60, false, true);
    EXPECT_EQ(Sample(four, 11, 9, 0), Sample(ramp, 5, 9, 0)) << "nearest";
}

TEST(Resample, SeamlessTilesFitTogether) {
    const CRowIteratorBands tile = Noise(ENPixelFormat::Colour8, 12, 10, 1);
    CRowIteratorBands twice;
    twice.Create(36, 30, ENPixelFormat::Colour8).ThrowIfFailed();
    RowIterator_Tile(twice, tile).ThrowIfFailed();
    const CRowIteratorBands all = Scaled(twice, 63, 75), one = Scaled(tile, 21, 25, true);
    for (int y = 0; y < 25; ++y) {
        for (int x = 0; x < 21; ++x) {
            ASSERT_NEAR(Sample(all, 21 + x, 25 + y, 1), Sample(one, x, y, 1), 1);
        }
    }
}

// What lies under transparent pixels does not bleed into the others, and does not vanish.
TEST(Resample, ColourGoesByItsAlpha) {
    const CRowIteratorBands half = Make(ENPixelFormat::ColourAlpha8, 80, 4, [](int x, int, int c) {
        return c == 3 ? (x < 40 ? 255 : 0) : x < 40 ? 40 : 240;
    });
    const CRowIteratorBands made = Scaled(half, 25, 2);
    EXPECT_NEAR(Sample(made, 12, 0, 0), 40, 2);
    EXPECT_NEAR(Sample(made, 12, 0, 3), 128, 3);
    EXPECT_NEAR(Sample(made, 20, 0, 0), 240, 2);
}

}  // namespace
