#include "hostlib/graphics/ReliefLighting.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/core/Multiversion.h"
#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/RowSamples.h"

namespace {

using SCoefficients = CReliefLighting::SCoefficients;

// The brightest shade a slope can get over the plane's, reached only in the limit: it keeps low
// light from burning out every slope.
constexpr float kBrightest = 2.0F;
// The share of the plane's light that comes from the whole sky, and so falls on slopes that the
// light does not reach: the less, the steeper they are. What is turned away from the light gets
// some of it back from the ground. Both keep the shape of what lies in shadow.
constexpr float kSky = 0.28F;
constexpr float kGround = 0.12F;
// How fast slopes gather light, and lose it.
constexpr float kGlow = 1.3F;
constexpr float kShadow = 1.6F;
// What is lit brighter than this share of white, or than the picture was already, comes near white
// ever slower, so that lit slopes keep their shape; and by so much of what it loses it turns toward
// the light's colour. The way to white counts kRoom times.
constexpr float kShoulder = 0.7F;
constexpr float kRoom = 1.6F;
constexpr float kWhiten = 0.35F;
constexpr float kTiny = 1e-6F;
// No slope counts as steeper, whatever the depth.
constexpr float kSteepest = 3.0F;

// Shade and gloss of one point. The shade is the light over that of the flat plane (Lambert's
// cosine for the light itself), pulled together above 1; below, it falls off like exp(-x), by its
// series, so that shadows never close. The gloss is Blinn's halfway cosine from the plane's to its
// peak, given a lobe by Schlick's t / (n - n t + t).
template <bool kGlossy>
inline void LightPoint(float slope_x, float slope_y, const SCoefficients& by, float& shade,
                       float& gloss) {
    constexpr float kBend = 1.0F / (kSteepest * kSteepest);
    const float steep = slope_x * slope_x + slope_y * slope_y;
    const float normal = 1.0F / std::sqrt(1.0F + steep * (1.0F + kBend));
    const float normal_z = normal * std::sqrt(1.0F + steep * kBend);
    const float toward = slope_x * by.toward_x + slope_y * by.toward_y;
    const float cosine = normal_z - toward * normal;
    const float direct = std::max(cosine, 0.0F), away = std::max(-cosine, 0.0F);
    const float more = direct + kSky * (normal_z - direct) + kGround * away - 1.0F;
    const float bright = kGlow * std::max(more, 0.0F);
    const float pull = 1.0F + bright * (1.0F / kBrightest);
    const float dark = by.contrast * kShadow * std::max(-more, 0.0F);
    const float series = 1.0F + dark * (1.0F + dark * (0.5F + dark * (1.0F / 6.0F)));
    // Only one of the two is not 1.
    shade = (by.flat * pull + by.contrast * bright) / (pull * series);
    if constexpr (!kGlossy) {
        gloss = 0.0F;
        return;
    }

    const float halfway =
        by.half_z * normal_z - (slope_x * by.half_x + slope_y * by.half_y) * normal;
    const float t = std::clamp((halfway - by.half_z) * by.gloss_scale, 0.0F, 1.0F);
    gloss = by.gloss * t / (by.tightness - by.tightness * t + t);
}

CMDTEXTURE_MULTIVERSION void LightPoints(const float* slope_x, const float* slope_y,
                                         const SCoefficients* coefficients, float* shade,
                                         float* gloss, int pixels) {
    const SCoefficients by = *coefficients;
    if (by.gloss > 0) {
        for (int x = 0; x < pixels; ++x) {
            LightPoint<true>(slope_x[x], slope_y[x], by, shade[x], gloss[x]);
        }
    } else {
        for (int x = 0; x < pixels; ++x) {
            LightPoint<false>(slope_x[x], slope_y[x], by, shade[x], gloss[x]);
        }
    }
}

template <class Traits>
inline void ApplyLight(typename Traits::Sample* pixel, float shade, float gloss,
                       const SCoefficients& by) {
    constexpr float kMaximum = static_cast<float>(Traits::kMaximum);
    constexpr int kCount = Traits::kColourChannels;
    const float base = std::min(shade, by.flat);
    const float lit = std::max(shade - by.flat, 0.0F);
    float value[kCount];
    float was = kShoulder * kMaximum, peak = 0;
    for (int c = 0; c < kCount; ++c) {
        const float colour = kCount == 1 ? by.grey : by.colour[c];
        const float sample = static_cast<float>(pixel[c]);
        value[c] = sample * (base + lit * colour);
        was = std::max(was, sample);
        peak = std::max(peak, value[c]);
    }
    const float room = kRoom * (kMaximum - was), over = std::max(peak - was, 0.0F);
    const float taken = std::max(over * over, (peak - kMaximum) * (room + over));
    const float keep = 1.0F - taken / ((room + over + kTiny) * (peak + kTiny));
    const float highlight = 1.0F - (1.0F - gloss) * (kWhiten * keep + (1.0F - kWhiten));
    for (int c = 0; c < kCount; ++c) {
        const float colour = kMaximum * (kCount == 1 ? by.grey : by.colour[c]);
        const float kept = value[c] * keep;
        const float mixed = kept + highlight * (colour - kept);
        pixel[c] = static_cast<typename Traits::Sample>(static_cast<int>(mixed + 0.5F));
    }
}

template <class Traits>
CMDTEXTURE_MULTIVERSION void ApplyLights(typename Traits::Sample* row, const float* shade,
                                         const float* gloss, const SCoefficients* coefficients,
                                         int pixels) {
    const SCoefficients by = *coefficients;
    for (int x = 0; x < pixels; ++x) {
        ApplyLight<Traits>(row + x * Traits::kChannels, shade[x], gloss[x], by);
    }
}

// Adds the slopes of a row of heights by Scharr's operator, 3 10 3 across and a difference along:
// nearly round, so that shading does not depend on a slope's direction to the pixels. The rows
// begin one pixel left of the first slope.
template <class Sample>
CMDTEXTURE_MULTIVERSION void AddSlopes(const Sample* above, const Sample* at, const Sample* below,
                                       float rise, float* slope_x, float* slope_y, int pixels) {
    const float scale = rise / 32.0F;
    for (int x = 0; x < pixels; ++x) {
        const int right = 3 * (above[x + 2] + below[x + 2]) + 10 * at[x + 2];
        const int left = 3 * (above[x] + below[x]) + 10 * at[x];
        const int bottom = 3 * (below[x] + below[x + 2]) + 10 * below[x + 1];
        const int top = 3 * (above[x] + above[x + 2]) + 10 * above[x + 1];
        slope_x[x] += scale * static_cast<float>(right - left);
        slope_y[x] += scale * static_cast<float>(bottom - top);
    }
}

// Pixels of a row that are lit together, small enough to stay in the nearest cache.
constexpr int kPart = 512;

// Lights `pixels` of the destination's row y, from column x.
void LightPart(const CReliefLighting& lighting, std::initializer_list<SHeights> heights,
               CRowIteratorBands& destination, int x, int y, int pixels) {
    float slope_x[kPart] = {}, slope_y[kPart] = {}, shade[kPart], gloss[kPart];
    VisitDepth(heights.begin()->image.GetPixelFormat().Is16bit(), [&](auto sample) {
        using Sample = decltype(sample);
        constexpr float kWhite = sizeof(Sample) == 2 ? 65535.0F : 255.0F;
        for (const SHeights& layer : heights) {
            const auto row = [&](int dy) { return layer.image.Row<Sample>(y + dy) + x; };
            AddSlopes<Sample>(row(0), row(1), row(2), layer.rise * lighting.HeightScale() / kWhite,
                              slope_x, slope_y, pixels);
        }
    });
    lighting.LightRow(slope_x, slope_y, shade, gloss, pixels);
    const CNPixelFormat format = destination.GetPixelFormat();
    lighting.ApplyRow(
        format,
        destination.Row<std::uint8_t>(y) + std::size_t(x) * std::size_t(format.PixelBytes()), shade,
        gloss, pixels);
}

}  // namespace

CReliefLighting::CReliefLighting(const SReliefSettings& settings) {
    const auto within = [](int value, int low, int high) {
        return static_cast<double>(std::clamp(value, low, high));
    };
    const double turn = (settings.angle % 360) * std::numbers::pi / 180;
    const double rise = within(settings.elevation, 1, 90) * std::numbers::pi / 180;
    const double x = std::cos(rise) * std::sin(turn);
    const double y = -std::cos(rise) * std::cos(turn);  // rows run downwards
    const double z = std::sin(rise);
    // A light at the horizon would make every slope black or white: it never stands quite so low.
    const double slant = 1 / (z + 0.1);
    const double half = std::sqrt(x * x + y * y + (z + 1) * (z + 1));
    const double intensity = within(settings.intensity, 1, 100) / 50;
    const double shininess = within(settings.shininess, 0, 100) / 100;
    const CColorRef colour{settings.color};

    const auto f = [](double value) { return static_cast<float>(value); };
    by_.toward_x = f(x * slant);
    by_.toward_y = f(y * slant);
    by_.half_x = f(x / half);
    by_.half_y = f(y / half);
    by_.half_z = f((z + 1) / half);
    by_.gloss_scale = f(1 / std::max(1 - (z + 1) / half, 1e-3));
    by_.gloss = f(std::min(0.6 * shininess * intensity, 1.0));
    by_.tightness = f(2 + 10 * shininess);
    by_.flat = f(1 + 0.7 * within(settings.ambience, -100, 100) / 100);
    by_.contrast = f(intensity);
    by_.colour[0] = f(colour.Blue() / 255.0);
    by_.colour[1] = f(colour.Green() / 255.0);
    by_.colour[2] = f(colour.Red() / 255.0);
    by_.grey = f(colour.Grey() / 255.0);
    height_scale_ = f(std::sqrt(within(settings.depth, 1, 100)));
}

void CReliefLighting::LightRow(const float* slope_x, const float* slope_y, float* shade,
                               float* gloss, int pixels) const {
    LightPoints(slope_x, slope_y, &by_, shade, gloss, pixels);
}

void CReliefLighting::ApplyRow(CNPixelFormat format, void* row, const float* shade,
                               const float* gloss, int pixels) const {
    VisitPixelFormat(format, false, [&](auto traits) {
        using Traits = decltype(traits);
        ApplyLights<Traits>(static_cast<typename Traits::Sample*>(row), shade, gloss, &by_, pixels);
        return true;
    });
}

CErrorAutoThrow LightByHeights(CStatusControl* status, const CReliefLighting& lighting,
                               std::initializer_list<SHeights> heights,
                               CRowIteratorBands& destination,
                               const std::function<void(int y)>& paint) {
    constexpr int kBlock = 16;
    const int width = destination.GetWidth();
    return ForEachRowBlock(status, destination.GetHeight(), kBlock, [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            paint(y);
            for (int x = 0; x < width; x += kPart) {
                LightPart(lighting, heights, destination, x, y, std::min(kPart, width - x));
            }
        }
    });
}
