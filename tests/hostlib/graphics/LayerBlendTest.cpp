#include "hostlib/graphics/LayerBlend.h"

#include <array>

#include "support/Pictures.h"

namespace {

using Pixel = std::array<int, 4>;  // blue, green, red, alpha

// Worked in exact fractions from the published formulas, rounded to nearest; the first half at 8
// bits, the second at 16.
const struct SCase {
    ENBlendMode mode;
    double opacity;
    Pixel base, layer, expected;
} kCases[] = {
    {ENBlendMode::Normal, 1.0, {127, 189, 0, 255}, {119, 98, 240, 243}, {119, 98, 240, 243}},
    {ENBlendMode::Normal, 0.25, {51, 77, 255, 81}, {21, 154, 15, 137}, {40, 105, 168, 95}},
    {ENBlendMode::Multiply, 1.0, {198, 202, 68, 255}, {69, 253, 111, 132}, {54, 200, 30, 132}},
    {ENBlendMode::Multiply, 0.75, {154, 197, 51, 172}, {14, 143, 83, 172}, {46, 140, 41, 172}},
    {ENBlendMode::Screen, 1.0, {63, 255, 32, 255}, {176, 34, 210, 255}, {196, 255, 216, 255}},
    {ENBlendMode::Screen, 0.25, {150, 255, 0, 193}, {169, 142, 120, 18}, {152, 254, 4, 149}},
    {ENBlendMode::Overlay, 1.0, {255, 0, 101, 149}, {134, 79, 21, 173}, {205, 33, 18, 173}},
    {ENBlendMode::Overlay, 0.75, {127, 193, 235, 52}, {138, 220, 121, 154}, {137, 221, 153, 129}},
    {ENBlendMode::SoftLight, 1.0, {63, 0, 212, 255}, {68, 30, 170, 238}, {41, 0, 219, 238}},
    {ENBlendMode::SoftLight, 0.25, {63, 0, 0, 255}, {233, 152, 163, 90}, {69, 0, 0, 214}},
    {ENBlendMode::Luminosity, 1.0, {94, 63, 153, 255}, {67, 158, 113, 255}, {135, 104, 194, 255}},
    {ENBlendMode::Luminosity, 0.75, {127, 255, 52, 170}, {114, 224, 86, 40}, {123, 248, 54, 73}},
    {ENBlendMode::Screen, 0.5, {10, 20, 30, 0}, {255, 85, 7, 0}, {133, 53, 19, 0}},
    {ENBlendMode::Normal,
     1.0,
     {28576, 13107, 0, 65535},
     {24063, 36515, 44578, 11211},
     {24063, 36515, 44578, 11211}},
    {ENBlendMode::Normal,
     0.25,
     {16998, 16383, 60911, 65535},
     {55020, 53676, 4658, 65535},
     {26504, 25706, 46848, 65535}},
    {ENBlendMode::Multiply,
     1.0,
     {0, 62567, 0, 59856},
     {37885, 44704, 29814, 8921},
     {3283, 42855, 2584, 8921}},
    {ENBlendMode::Multiply,
     0.75,
     {13107, 0, 26013, 65535},
     {63051, 15835, 22520, 65535},
     {12734, 0, 13207, 65535}},
    {ENBlendMode::Screen,
     1.0,
     {2601, 65535, 32767, 33092},
     {62547, 8043, 46116, 33092},
     {62607, 37074, 51019, 33092}},
    {ENBlendMode::Screen,
     0.25,
     {65535, 13107, 32767, 65535},
     {52465, 6544, 35572, 32539},
     {65535, 13850, 35293, 57286}},
    {ENBlendMode::Overlay,
     1.0,
     {0, 61983, 0, 65535},
     {16335, 6531, 8967, 65535},
     {0, 59139, 0, 65535}},
    {ENBlendMode::Overlay,
     0.75,
     {11288, 32767, 65535, 65535},
     {51070, 39861, 47295, 65535},
     {16017, 38087, 65535, 65535}},
    {ENBlendMode::SoftLight,
     1.0,
     {43093, 32767, 457, 10472},
     {23403, 5631, 48925, 60400},
     {25875, 7799, 41285, 60400}},
    {ENBlendMode::SoftLight,
     0.25,
     {5693, 6955, 65031, 55117},
     {54826, 60403, 2349, 55117},
     {9320, 11431, 62442, 55117}},
    {ENBlendMode::Luminosity,
     1.0,
     {65535, 13107, 32767, 65535},
     {49051, 34364, 15918, 65535},
     {65535, 20404, 37328, 65535}},
    {ENBlendMode::Luminosity,
     0.75,
     {65535, 65535, 642, 65535},
     {50944, 5808, 12032, 13015},
     {47809, 47809, 402, 26145}},
    {ENBlendMode::Screen, 0.5, {10, 20, 30, 0}, {65535, 21845, 7, 0}, {32773, 10933, 19, 0}},
};

// The pixel as every format holds it that can: without alpha when that is opaque in both, as grey
// when the colours are equal.
CRowIteratorBands PictureOf(const Pixel& pixel, CNPixelFormat format) {
    return pictures::Make(format, 3, 2, [&](int, int, int c) {
        const bool is_alpha = format.IsAlphaChannelPresent() && c == format.ColourChannels();
        return pixel[is_alpha ? 3 : static_cast<std::size_t>(c)];
    });
}

TEST(LayerBlend, GivesTheWorkedValues) {
    const std::size_t half = std::size(kCases) / 2;
    for (std::size_t i = 0; i < std::size(kCases); ++i) {
        const SCase& test = kCases[i];
        const int largest = i < half ? 255 : 65535;
        const bool is_opaque = test.base[3] == largest && test.layer[3] == largest;
        // The separable modes work on each channel for itself, so that one alone is grey.
        const bool is_separable = test.mode != ENBlendMode::Luminosity;
        for (const CNPixelFormat format : pictures::kAllFormats) {
            if (format.Is16bit() != (i >= half)) continue;
            if (!format.IsAlphaChannelPresent() && !is_opaque) continue;
            if (format.ColourChannels() == 1 && !is_separable) continue;
            const CRowIteratorBands base = PictureOf(test.base, format);
            CRowIteratorBands layer = PictureOf(test.layer, format);
            ASSERT_FALSE(BlendLayer(base, test.mode, test.opacity, layer).Failed());
            EXPECT_EQ(pictures::Difference(layer, PictureOf(test.expected, format)), "")
                << "case " << i << ' ' << pictures::Name(format);
        }
    }
}

// Nothing of a layer, and all of it, are the pictures themselves, to the bit; grey is its own
// luminosity.
TEST(LayerBlend, EndsAreExact) {
    for (const CNPixelFormat format : pictures::kAllFormats) {
        const CRowIteratorBands base = pictures::Noise(format, 65, 31, 7);
        const CRowIteratorBands other = pictures::Noise(format, 65, 31, 8);
        const auto blended = [&](ENBlendMode mode, double opacity) {
            CRowIteratorBands layer;
            layer.Copy(other, 0).ThrowIfFailed();
            EXPECT_FALSE(BlendLayer(base, mode, opacity, layer).Failed());
            return layer;
        };
        EXPECT_EQ(pictures::Difference(blended(ENBlendMode::Normal, 1), other), "");
        if (!format.IsAlphaChannelPresent()) {
            EXPECT_EQ(pictures::Difference(blended(ENBlendMode::SoftLight, 0), base), "");
        }
        if (format.ColourChannels() == 1) {
            EXPECT_EQ(pictures::Difference(blended(ENBlendMode::Luminosity, 0.5),
                                           blended(ENBlendMode::Normal, 0.5)),
                      "");
        }
        CRowIteratorBands narrow = pictures::Noise(format, 64, 31, 8);
        EXPECT_EQ(BlendLayer(base, ENBlendMode::Screen, 1, narrow).Code(),
                  TolmErrorCode::UnusableInput);
    }
}

}  // namespace
