#include <gtest/gtest.h>

#include "Effects.h"

namespace {

using pictures::Difference;
using pictures::kAllFormats;
using pictures::Make;
using pictures::Name;
using pictures::Noise;
using pictures::Sample;

CRowIteratorBands Even(CNPixelFormat format, int width, int height, int eighth) {
    return Make(format, width, height,
                [&](int, int, int) { return (format.Is16bit() ? 8192 : 32) * eighth; });
}

CRowIteratorBands Bumped(const SReliefSettings& relief, const CRowIteratorBands& source,
                         const CRowIteratorBands& bump) {
    CBumpMapEffectSettings settings;
    static_cast<SReliefSettings&>(settings) = relief;
    CRowIteratorBands destination;
    destination.Copy(source, 0).ThrowIfFailed();
    BumpMap2(nullptr, settings, source, bump, {}, destination, 1, nullptr).ThrowIfFailed();
    return destination;
}

// The plane keeps the picture to the bit wherever the light stands, and however strong it is.
TEST(Relief, AFlatTextureLeavesThePictureAsItIs) {
    for (const ENPixelFormat format : kAllFormats) {
        const CRowIteratorBands source = Noise(format, 65, 9, 1);
        for (const ENPixelFormat depth : {ENPixelFormat::Grey8, ENPixelFormat::Grey16}) {
            for (const int angle : {0, 45, 315, 359}) {
                for (const int elevation : {1, 30, 90}) {
                    SReliefSettings relief;
                    relief.angle = angle;
                    relief.elevation = elevation;
                    relief.intensity = 1 + elevation;
                    relief.depth = 1 + angle / 4;
                    relief.shininess = 100;
                    ASSERT_EQ(Difference(Bumped(relief, source, Even(depth, 67, 11, 3)), source),
                              "")
                        << Name(format) << ", light at " << angle << ", " << elevation;
                }
            }
        }
    }
}

// A slope that rises to one side is dark under light from there and bright under light from the
// opposite side; a right angle to the light tells it from the plane by its steepness only.
TEST(Relief, TheLightStandsWhereACompassSays) {
    const struct {
        int dx, dy;  // where the relief rises to
        int dark, bright;
    } slopes[] = {{1, 0, 90, 270}, {-1, 0, 270, 90}, {0, -1, 0, 180},
                  {0, 1, 180, 0},  {1, -1, 45, 225}, {1, 1, 135, 315}};
    const CRowIteratorBands source = Even(ENPixelFormat::Grey8, 9, 9, 3);
    for (const auto& slope : slopes) {
        const CRowIteratorBands bump = Make(ENPixelFormat::Grey8, 11, 11, [&](int x, int y, int) {
            return 128 + 10 * (slope.dx * (x - 5) + slope.dy * (y - 5));
        });
        const auto light = [&](int angle) {
            SReliefSettings relief;
            relief.angle = angle;
            relief.shininess = 0;
            relief.depth = 20;
            return Sample(Bumped(relief, source, bump), 4, 4, 0);
        };
        EXPECT_LT(light(slope.dark), 60) << slope.dx << ", " << slope.dy;
        EXPECT_GT(light(slope.bright), 120) << slope.dx << ", " << slope.dy;
        EXPECT_EQ(light(slope.dark), light(slope.dark + 360));
    }
}

// Shading multiplies all channels alike; what would be brighter than white turns toward white, in
// the same order of channels.
TEST(Relief, EmbossingDoesNotShiftColours) {
    const int bgr[] = {30, 90, 180};
    const CRowIteratorBands source =
        Make(ENPixelFormat::Colour8, 64, 64, [&](int, int, int c) { return bgr[c]; });
    SReliefSettings relief;
    relief.shininess = 0;
    relief.depth = 10;
    const CRowIteratorBands made = Bumped(relief, source, Noise(ENPixelFormat::Grey8, 66, 66, 1));
    int dark = 0, bright = 0;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const int b = Sample(made, x, y, 0), g = Sample(made, x, y, 1);
            const int r = Sample(made, x, y, 2);
            if (r < 255) {
                EXPECT_NEAR(b * 6, r, 6) << x << ", " << y;
                EXPECT_NEAR(g * 2, r, 2) << x << ", " << y;
            }
            EXPECT_TRUE(b <= g && g <= r);
            dark += r < 150;
            bright += r > 200;
        }
    }
    EXPECT_GT(dark, 500);
    EXPECT_GT(bright, 500);
}

// Depth, intensity and ambience each do what they say; the light's colour tints lit slopes only.
TEST(Relief, SettingsActInTheirOwnWay) {
    const CRowIteratorBands source = Even(ENPixelFormat::Colour8, 3, 3, 3);
    const CRowIteratorBands rising =
        Make(ENPixelFormat::Grey8, 5, 5, [](int x, int, int) { return 60 + 20 * x; });
    const auto light = [&](const CRowIteratorBands& bump, int channel, auto change) {
        SReliefSettings relief;
        relief.angle = 270;
        relief.shininess = 0;
        change(relief);
        return Sample(Bumped(relief, source, bump), 1, 1, channel);
    };
    const int plain = light(rising, 2, [](auto&) {});
    EXPECT_GT(plain, 96);
    EXPECT_GT(light(rising, 2, [](auto& to) { to.depth = 10; }), plain);
    EXPECT_GT(light(rising, 2, [](auto& to) { to.intensity = 100; }), plain);
    EXPECT_GT(light(rising, 2, [](auto& to) { to.ambience = 50; }), plain);
    EXPECT_LT(light(rising, 2, [](auto& to) { to.ambience = -50; }), plain);
    EXPECT_GT(light(rising, 2, [](auto& to) { to.shininess = 100; }), plain);
    const auto red = [](auto& to) { to.color = 0x0000FF; };
    EXPECT_EQ(light(rising, 2, red), plain);
    EXPECT_EQ(light(rising, 0, red), 96);
    EXPECT_EQ(light(Even(ENPixelFormat::Grey8, 5, 5, 2), 2, red), 96);
}

CRowIteratorBands Tiled(const CTilesSettings& settings, const CRowIteratorBands& source) {
    CRowIteratorBands made;
    CIoTilesEffect effect(settings);
    effect(made, source).ThrowIfFailed();
    return made;
}

CRowIteratorBands Part(const CRowIteratorBands& image, CRect part) {
    CRowIteratorBands made =
        Make(image.GetPixelFormat(), part.Width(), part.Height(),
             [&](int x, int y, int c) { return Sample(image, part.left + x, part.top + y, c); });
    made.SetOrigin({image.GetRect().left + part.left, image.GetRect().top + part.top});
    return made;
}

TEST(Tiles, APartOfTheCanvasIsThatPartOfTheWhole) {
    CRowIteratorBands whole = Noise(ENPixelFormat::Colour8, 90, 70, 1);
    whole.SetOrigin({-33, -21});
    const CRect parts[] = {{0, 0, 90, 70}, {17, 5, 18, 6}, {40, 30, 90, 70}, {1, 2, 60, 12}};
    for (const int shape : {0, 1, 2}) {
        for (const int size : {8, 15, 200}) {
            CTilesSettings settings;
            settings.tileShape = shape;
            settings.tileSize = size;
            const CRowIteratorBands made = Tiled(settings, whole);
            for (const CRect& part : parts) {
                ASSERT_EQ(Difference(Tiled(settings, Part(whole, part)), Part(made, part)), "")
                    << "shape " << shape << ", size " << size;
            }
        }
    }
}

// Widths in pixels: on an even picture the tops of the tiles keep their brightness, the grout is
// dark, and tiles follow each other at their width and the grout's together.
TEST(Tiles, HaveTheirShapeSizeAndGrout) {
    const CRowIteratorBands source = Even(ENPixelFormat::Grey8, 200, 200, 6);
    CTilesSettings settings;
    settings.tileSize = 36;
    settings.borderSize = 4;
    settings.tileAngularity = 100;
    settings.tileShape = 1;
    const CRowIteratorBands squares = Tiled(settings, source);
    for (int x = 0; x < 80; ++x) {
        const int at = (x + 2) % 40;  // the grout is from 0 to 3
        const bool is_grout = at<4, is_top = at> 16 && at < 28;
        if (is_grout || is_top) {
            EXPECT_EQ(Sample(squares, x, 20, 0), is_grout ? 86 : 192) << x;
        }
    }
    EXPECT_GT(Sample(squares, 4, 20, 0), 192) << "light comes from the upper left";
    EXPECT_LT(Sample(squares, 39, 20, 0), 150);

    const auto grout = [&](int shape, int angularity) {
        settings.tileShape = shape;
        settings.tileAngularity = angularity;
        settings.elevation = 90;
        settings.smoothness = 0;
        const CRowIteratorBands made = Tiled(settings, source);
        int count = 0;
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x < 200; ++x) count += Sample(made, x, y, 0) < 139;
        }
        return count / 400.0;  // per cent
    };
    // The share of the grout: what the tiles' inscribed sizes leave of the plane.
    EXPECT_NEAR(grout(1, 100), 100 * (1 - 36.0 * 36 / (40.0 * 40)), 2);
    EXPECT_NEAR(grout(2, 100), 100 * (1 - 36.0 * 36 / (40.0 * 40)), 2);
    EXPECT_NEAR(grout(0, 100), 100 * (1 - 36.0 * 36 / (42.93 * 42.93)), 3);
    EXPECT_NEAR(grout(1, 0), 100 * (1 - 3.1416 * 18 * 18 / (40.0 * 40)), 3);
}

CRowIteratorBands Carved(const CSculptureSettings& settings, const CRowIteratorBands& pattern,
                         const CRowIteratorBands& layer, const CRowIteratorBands& mask = {}) {
    CIoSculptureEffect effect;
    effect.SetSourceDib(pattern, true);
    effect.SetBumpDib(layer, true);
    effect.SetMaskDib(mask, true);
    effect.UpdateSettings(settings);
    CRowIteratorBands made;
    effect.ApplyEffect(nullptr, made, {}).ThrowIfFailed();
    return made;
}

// An even layer carves nothing: what comes out is the pattern, laid over the canvas.
TEST(Sculpture, AnEvenLayerShowsThePattern) {
    for (const ENPixelFormat format : kAllFormats) {
        for (const int smoothness : {0, 60}) {
            CRowIteratorBands layer = Even(format, 70, 41, 5);
            layer.SetOrigin({-4, 9});
            CSculptureSettings settings;
            settings.smoothness = smoothness;
            const CRowIteratorBands pattern = Noise(ENPixelFormat::Colour8, 13, 7, 1);
            CRowIteratorBands expected;
            expected.Copy(layer, 0).ThrowIfFailed();
            RowIterator_Tile(expected, pattern).ThrowIfFailed();
            if (expected.GetPixelFormat().IsAlphaChannelPresent()) {
                RowIterator_CopyAlpha(expected, layer).ThrowIfFailed();
            }
            EXPECT_EQ(Difference(Carved(settings, pattern, layer), expected), "") << Name(format);
        }
    }
}

TEST(Sculpture, TheMaskSaysWhereItShows) {
    const CRowIteratorBands layer = Noise(ENPixelFormat::Colour16, 20, 10, 1);
    const CRowIteratorBands pattern = Noise(ENPixelFormat::Colour8, 7, 7, 2);
    const CRowIteratorBands mask =
        Make(ENPixelFormat::Grey8, 20, 10, [](int x, int, int) { return x < 10 ? 0 : 255; });
    const CRowIteratorBands made = Carved({}, pattern, layer, mask);
    EXPECT_EQ(Difference(Part(made, {0, 0, 10, 10}), Part(layer, {0, 0, 10, 10})), "");
    EXPECT_EQ(
        Difference(Part(made, {10, 0, 20, 10}), Part(Carved({}, pattern, layer), {10, 0, 20, 10})),
        "");
}

// Only the part of a scaled pattern that is seen is made: it is the same as scaling it whole.
TEST(Sculpture, ScalesThePatternOverTheCanvas) {
    const CRowIteratorBands pattern = Noise(ENPixelFormat::Colour8, 11, 6, 1);
    for (const int size : {25, 100, 230, 400}) {
        CRowIteratorBands layer = Even(ENPixelFormat::Colour8, 19, 33, 4), expected, scaled;
        layer.SetOrigin({-7, 13});
        expected.Copy(layer, 0).ThrowIfFailed();
        Resample(nullptr, pattern, scaled, 11 * size / 100, 6 * size / 100, true, false)
            .ThrowIfFailed();
        RowIterator_Tile(expected, scaled).ThrowIfFailed();
        CSculptureSettings settings;
        settings.size = size;
        EXPECT_EQ(Difference(Carved(settings, pattern, layer), expected), "") << size;
    }
}

}  // namespace
