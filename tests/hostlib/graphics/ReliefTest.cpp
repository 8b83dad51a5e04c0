#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "Effects.h"

namespace {

using pictures::Difference;
using pictures::kAllFormats;
using pictures::Make;
using pictures::Name;
using pictures::Noise;
using pictures::Sample;
using pictures::SetSample;

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

// One slope under one light, worked out from vectors in double precision: what the light, the sky
// and the ground give it against the plane, with Blinn's highlight over it.
struct SLit {
    double shade, gloss;
};
SLit Light(const SReliefSettings& by, double rise_x, double rise_y) {
    const double steepness = std::sqrt(1 + (rise_x * rise_x + rise_y * rise_y) / 9);
    double n[3] = {-rise_x / steepness, -rise_y / steepness, 1};
    const double length = std::sqrt(n[0] * n[0] + n[1] * n[1] + 1);
    for (double& part : n) part /= length;
    const double turn = by.angle * M_PI / 180, up = by.elevation * M_PI / 180;
    const double light[3] = {std::cos(up) * std::sin(turn), -std::cos(up) * std::cos(turn),
                             std::sin(up)};
    const double facing = n[2] + (n[0] * light[0] + n[1] * light[1]) / (light[2] + 0.1);
    const double sky = 0.28, ground = 0.12;
    const double got =
        (1 - sky) * std::max(facing, 0.0) + sky * n[2] + ground * std::max(-facing, 0.0);
    const double plane = 1 + 0.7 * by.ambience / 100, contrast = by.intensity / 50.0;
    const double more = 1.3 * std::max(got - 1, 0.0),
                 less = 1.6 * contrast * std::max(1 - got, 0.0);
    SLit lit{plane / (1 + less + less * less / 2 + less * less * less / 6) +
                 contrast * more / (1 + more / 2),
             0};
    double half[3] = {light[0], light[1], light[2] + 1};
    const double wide = std::sqrt(half[0] * half[0] + half[1] * half[1] + half[2] * half[2]);
    const double cosine = (n[0] * half[0] + n[1] * half[1] + n[2] * half[2]) / wide;
    const double flat = half[2] / wide, shine = by.shininess / 100.0;
    const double t = std::clamp((cosine - flat) / std::max(1 - flat, 1e-3), 0.0, 1.0);
    const double tight = 2 + 10 * shine;
    lit.gloss = std::min(0.6 * shine * contrast, 1.0) * t / (tight - tight * t + t);
    return lit;
}

// All settings but smoothness, on slopes to all sides; the picture is dark enough not to reach the
// brightness that is held back.
TEST(Relief, SlopesAreLitAsVectorsSay) {
    const int sample = 8192;
    const CRowIteratorBands source =
        Make(ENPixelFormat::Colour16, 3, 3, [](int, int, int) { return 8192; });
    CRuntimeRandom random(1);
    const auto draw = [&](int low, int high) { return low + random.Next() % (high - low + 1); };
    for (int run = 0; run < 400; ++run) {
        SReliefSettings relief;
        relief.angle = draw(0, 360);
        relief.elevation = draw(1, 90);
        relief.intensity = draw(1, 100);
        relief.ambience = draw(-100, 100);
        relief.depth = draw(1, 100);
        relief.shininess = draw(0, 3) * 33;
        relief.color = 0x40A0FF;
        const int dx = draw(-6000, 6000), dy = draw(-6000, 6000);
        const CRowIteratorBands bump = Make(ENPixelFormat::Grey16, 5, 5, [&](int x, int y, int) {
            return 32768 + dx * (x - 2) + dy * (y - 2);
        });
        const double rise = 2.2 * std::sqrt(relief.depth) / 65535;
        const SLit lit = Light(relief, rise * dx, rise * dy);
        const double plane = 1 + 0.7 * relief.ambience / 100;
        const CRowIteratorBands made = Bumped(relief, source, bump);
        for (int c = 0; c < 3; ++c) {
            const int colours[] = {0x40, 0xA0, 0xFF};
            const double colour = colours[c] / 255.0;
            const double shade =
                std::min(lit.shade, plane) + std::max(lit.shade - plane, 0.0) * colour;
            const double expected = sample * shade + lit.gloss * (65535 * colour - sample * shade);
            ASSERT_NEAR(Sample(made, 1, 1, c), expected, 12)
                << "light at " << relief.angle << ", " << relief.elevation << ", slope " << dx
                << ", " << dy;
        }
    }
}

// Shading multiplies all channels alike; what comes near white turns toward it, in the same order
// of channels.
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
            if (r <= 180) {
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

// The shinier a dome, the smaller its highlight: the part that shines at least half as much as the
// brightest point.
TEST(Relief, ShineNarrowsTheHighlight) {
    const CRowIteratorBands source = Even(ENPixelFormat::Grey16, 33, 33, 2);
    const CRowIteratorBands dome = Make(ENPixelFormat::Grey16, 35, 35, [](int x, int y, int) {
        return 60000 - 40 * ((x - 17) * (x - 17) + (y - 17) * (y - 17));
    });
    const auto shining = [&](int shininess) {
        SReliefSettings relief;
        relief.depth = 100;
        relief.shininess = 0;
        const CRowIteratorBands matt = Bumped(relief, source, dome);
        relief.shininess = shininess;
        const CRowIteratorBands shiny = Bumped(relief, source, dome);
        std::vector<int> shine;
        for (int i = 0; i < 33 * 33; ++i) {
            shine.push_back(Sample(shiny, i % 33, i / 33, 0) - Sample(matt, i % 33, i / 33, 0));
        }
        const int half = *std::max_element(shine.begin(), shine.end()) / 2;
        EXPECT_GT(half, 500);
        return std::count_if(shine.begin(), shine.end(), [&](int s) { return s >= half; });
    };
    EXPECT_GT(shining(10), 2 * shining(100));
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

// A round bump in every effect that has an angle: brightest where the light comes from. By shape or
// by brightness, the picture is symmetric.
TEST(Relief, ARoundBumpIsBrightestTowardTheLight) {
    const auto dome = [](int x, int y) {
        const double far = std::hypot(x - 20, y - 20) / 20;
        return static_cast<int>(20000 + 30000 * std::max(1 - far * far, 0.0));
    };
    const CRowIteratorBands even = Even(ENPixelFormat::Grey16, 41, 41, 3);
    const CRowIteratorBands round =
        Make(ENPixelFormat::Grey16, 41, 41, [&](int x, int y, int) { return dome(x, y); });
    const CRowIteratorBands bump =
        Make(ENPixelFormat::Grey16, 43, 43, [&](int x, int y, int) { return dome(x - 1, y - 1); });
    const auto carve = [&](const SReliefSettings& relief) {
        CSculptureSettings settings;
        static_cast<SReliefSettings&>(settings) = relief;
        return Carved(settings, {}, round);
    };
    const auto tile = [&](const SReliefSettings& relief) {
        CTilesSettings settings;
        static_cast<SReliefSettings&>(settings) = relief;
        settings.tileShape = 1;
        settings.tileSize = 40;
        settings.tileAngularity = 0;
        settings.smoothness = 100;
        return Tiled(settings, even);
    };
    const std::function<CRowIteratorBands(const SReliefSettings&)> effects[] = {
        [&](const SReliefSettings& relief) { return Bumped(relief, even, bump); }, carve, tile};
    for (const auto& effect : effects) {
        for (const int angle : {0, 90, 180, 270}) {
            SReliefSettings relief;
            relief.angle = angle;
            relief.depth = 20;
            const CRowIteratorBands made = effect(relief);
            const int sides[] = {Sample(made, 20, 10, 0), Sample(made, 30, 20, 0),
                                 Sample(made, 20, 30, 0), Sample(made, 10, 20, 0)};
            EXPECT_EQ(std::max_element(sides, sides + 4) - sides, angle / 90);
            EXPECT_EQ(std::min_element(sides, sides + 4) - sides, (angle / 90 + 2) % 4);
        }
    }
}

// The largest difference of light between neighbouring pixels, in tiles of a size and in ones four
// times as large. A crisp bevel has jumps, which stay; in a soft one all is spread over more
// pixels.
TEST(Tiles, SmoothnessIsASoftEdge) {
    const CRowIteratorBands source = Even(ENPixelFormat::Grey16, 260, 260, 3);
    const auto jump = [&](CTilesSettings settings, int scale) {
        settings.tileSize = 60 * scale;
        settings.borderSize = 2 * scale;
        settings.shininess = 0;
        settings.groutShade = 0;
        const CRowIteratorBands made = Tiled(settings, source);
        int largest = 0;
        for (int y = 1; y < 260; ++y) {
            for (int x = 1; x < 260; ++x) {
                const int at = Sample(made, x, y, 0);
                largest = std::max({largest, std::abs(at - Sample(made, x - 1, y, 0)),
                                    std::abs(at - Sample(made, x, y - 1, 0))});
            }
        }
        return largest;
    };
    for (const int shape : {0, 1, 2}) {
        for (const int angularity : {0, 50, 100}) {
            CTilesSettings settings;
            settings.tileShape = shape;
            settings.tileAngularity = angularity;
            const auto shrinks = [&](int smoothness) {
                settings.smoothness = smoothness;
                return 1.0 * jump(settings, 4) / jump(settings, 1);
            };
            SCOPED_TRACE(std::to_string(shape) + ", angularity " + std::to_string(angularity));
            EXPECT_GT(shrinks(0), 0.8);
            EXPECT_LT(shrinks(50), 0.6);
            EXPECT_LT(shrinks(100), 0.6);
        }
    }
}

// What nobody sees of the layer, and of the pattern, does not count.
TEST(Sculpture, HiddenColoursCarveNothing) {
    const CRowIteratorBands pattern = Noise(ENPixelFormat::Colour8, 13, 7, 1);
    for (const ENPixelFormat format : {ENPixelFormat::GreyAlpha8, ENPixelFormat::ColourAlpha8,
                                       ENPixelFormat::GreyAlpha16, ENPixelFormat::ColourAlpha16}) {
        for (const int smoothness : {0, 50}) {
            CSculptureSettings settings;
            settings.smoothness = smoothness;
            const int alpha = CNPixelFormat(format).Channels() - 1;
            CRowIteratorBands layer = Noise(format, 61, 43, 1), other;
            for (int i = 0; i < 61 * 43; i += 2) SetSample(layer, i % 61, i / 61, alpha, 0);
            for (int y = 10; y < 30; ++y) {
                for (int x = 0; x < 40; ++x) SetSample(layer, x, y, alpha, 0);
            }
            other.Copy(layer, 0).ThrowIfFailed();
            const CRowIteratorBands noise = Noise(format, 61, 43, 2);
            for (int i = 0; i < 61 * 43; ++i) {
                if (Sample(layer, i % 61, i / 61, alpha) != 0) continue;
                for (int c = 0; c < alpha; ++c) {
                    SetSample(other, i % 61, i / 61, c, Sample(noise, i % 61, i / 61, c));
                }
            }
            EXPECT_EQ(
                Difference(Carved(settings, pattern, layer), Carved(settings, pattern, other)), "")
                << Name(format);
        }
        const CRowIteratorBands layer = Noise(ENPixelFormat::Colour16, 40, 30, 1);
        const CRowIteratorBands clear = Make(format, 3, 3, [&](int, int, int c) {
            return c == CNPixelFormat(format).Channels() - 1 ? 0 : 90;
        });
        const CRowIteratorBands white =
            Make(ENPixelFormat::Colour8, 3, 3, [](int, int, int) { return 255; });
        EXPECT_EQ(Difference(Carved({}, clear, layer), Carved({}, white, layer)), "")
            << Name(format);
    }
}

}  // namespace
