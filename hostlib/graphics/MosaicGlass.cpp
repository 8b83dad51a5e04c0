#include <algorithm>
#include <cmath>

#include "host/core/Multiversion.h"
#include "hostlib/graphics/MosaicParts.h"
#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/PictureSampling.h"
#include "hostlib/graphics/RowSamples.h"

// The glass mosaic: a regular grid of rounded glass tiles. A row is made in three passes over plain
// arrays: where each pixel looks through its lens and how it is lit, what it sees there, and the
// tile over the joint.
namespace {

// How far a lens moves what is seen through it, in shares of the way to the tile's middle: at
// curvature 1 the middle comes nearer by kEnlarge, and toward the rim ever more of the neighbours
// comes into view.
constexpr float kBend = 1.5F;
constexpr float kEnlarge = 0.32F;
// The glass grows thicker over its rim: that is darker on the side of the light, which passes
// through, and bright on the opposite one, where it gathers. In shares of the picture's brightness,
// and of white.
constexpr float kRimShadow = 0.28F;
constexpr float kRimLight = 0.55F;
constexpr float kRimWhite = 0.26F;
constexpr float kBody = 0.14F;  // how much brighter the middle is than the rim
// The light is mirrored as a streak along the rim on its side; strength, and where on the way from
// the rim's inner end (0) to the outline (1) it is strongest.
constexpr float kGleam = 1.15F;
constexpr float kGleamAt = 0.58F;
constexpr float kGleamWidth = 0.42F;
// No two tiles are alike: how far each shifts what is seen through it, in shares of its half size,
// and how much it differs in brightness, at curvature 1.
constexpr double kShift = 0.5;
constexpr double kTone = 0.12;
// The joint is this share of what would be seen in its place, the more the smaller the tiles are,
// or a picture of small tiles would be seen through a grid; sizes are half a tile's, in pixels.
constexpr double kJoint = 0.40, kSmallJoint = 0.70;
constexpr double kSmallTile = 4, kLargeTile = 16;
// How fast glass gets a rim of its own as it bends.
constexpr double kOwnRim = 1.3;
constexpr double kThinnestRim = 2.2;  // in pixels
// Widest joint, with its wander, and farthest wander, in shares of a tile.
constexpr double kWidestJoint = 1.0 / 4;
constexpr double kUsualJoint = 1.0 / 12;
constexpr double kFarthestWander = 0.07;

// Along one axis: how far each pixel's centre is from the middle of its tile.
struct SAxis {
    std::vector<float> from_middle;
    std::vector<int> tile;  // of each pixel
    std::vector<int> end;   // the pixel after each tile's last
    double half;            // a tile's half size

    SAxis(int size, int tiles) : end(static_cast<std::size_t>(tiles)), half(size / 2.0 / tiles) {
        for (int i = 0; i < size; ++i) {
            tile.push_back(static_cast<int>((i + 0.5) * tiles / size));
            from_middle.push_back(static_cast<float>(i + 0.5 - (tile.back() + 0.5) * size / tiles));
            end[static_cast<std::size_t>(tile.back())] = i + 1;
        }
    }
};

struct SLook {
    float half_x, half_y;
    float half_joint, wander, radius;
    float closed;     // added to the cover: without joints, tiles meet
    float bend;       // of the lens
    float rim_share;  // 1 / width of the rim in pixels
    float rim;        // strength of its light and shadow
    float joint;      // its share of the picture's brightness
};

// Of the pixels of a row: how much is tile, how lit, how much a reflection.
struct SLight {
    SPlaces places;
    float shift_x[SPlaces::kMost], shift_y[SPlaces::kMost], tone[SPlaces::kMost];
    float wander[SPlaces::kMost];
    float cover[SPlaces::kMost], shade[SPlaces::kMost], gleam[SPlaces::kMost];
};

// What each tile has of its own, for pixels from x on; `shift` and `tone` at their greatest.
void FillOwn(const SAxis& across, int row, double shift, double tone, int x, SLight& light,
             int pixels) {
    for (int done = 0; done < pixels;) {
        const auto column =
            static_cast<std::uint32_t>(across.tile[static_cast<std::size_t>(x + done)]);
        std::uint32_t mixed =
            column * 2654435761U + static_cast<std::uint32_t>(row) * 2246822519U + 374761393U;
        mixed = (mixed ^ (mixed >> 15)) * 3266489917U;
        mixed ^= mixed >> 16;
        const auto part = [&](int bit, double most) {  // ten bits as -1 to 1
            return static_cast<float>(most * (((mixed >> bit) & 1023) / 511.5 - 1));
        };
        const int run = std::min(across.end[column] - x, pixels) - done;
        std::fill_n(light.shift_x + done, run, part(0, shift));
        std::fill_n(light.shift_y + done, run, part(10, shift));
        std::fill_n(light.tone + done, run, part(20, tone));
        done += run;
    }
}

CMDTEXTURE_MULTIVERSION void LookThrough(const float* from_middle, float dy, int x, int y,
                                         const SLook* look, SLight* light, int pixels) {
    const SLook by = *look;
    const float v = dy / by.half_y, across_x = 1.0F / by.half_x;
    const float core_y = std::abs(dy) - (by.half_y - by.radius);
    const float out_y = std::max(core_y, 0.0F);
    const float v3 = v * v * v;
    for (int i = 0; i < pixels; ++i) {
        const float dx = from_middle[i];
        const float u = dx * across_x;
        const float square = u * u + v * v;
        const float fourth = square * square;
        const float bent = by.bend * (fourth / (1.0F + 0.3F * fourth) - kEnlarge);

        const float core_x = std::abs(dx) - (by.half_x - by.radius);
        const float out_x = std::max(core_x, 0.0F);
        const float round =
            std::sqrt(out_x * out_x + out_y * out_y) + std::min(std::max(core_x, core_y), 0.0F);
        const float inside = by.radius - round - by.half_joint - by.wander * light->wander[i];
        const float cover = std::clamp(inside + 0.5F + by.closed, 0.0F, 1.0F);
        light->cover[i] = cover;
        light->places.x[i] = static_cast<float>(x + i) + (dx * bent + light->shift_x[i]) * cover;
        light->places.y[i] = static_cast<float>(y) + (dy * bent + light->shift_y[i]) * cover;

        // 0 at the rim's inner end to 1 at the outline; toward the light 1, away from it -1, and
        // most so at the tile's corner there.
        const float depth = std::clamp(1.0F - inside * by.rim_share, 0.0F, 1.0F);
        const float u3 = u * u * u;
        const float facing = -(u3 + v3) / (std::abs(u3) + std::abs(v3) + 1e-6F);
        const float corner = -0.5F * (u + v);
        const float lit = std::max(facing, 0.0F) * std::clamp(corner + 0.15F, 0.0F, 1.0F);
        const float away = std::max(-facing, 0.0F) * std::clamp(0.4F - corner, 0.0F, 1.0F);
        const float rim = by.rim * depth * depth;
        light->shade[i] = 1.0F + light->tone[i] + by.rim * kBody * (1.0F - square) +
                          rim * (kRimLight * away - kRimShadow * lit);
        const float streak =
            std::max(1.0F - std::abs(depth - kGleamAt) * (1.0F / kGleamWidth), 0.0F);
        light->gleam[i] =
            by.rim * (kGleam * streak * streak * lit * lit) + rim * (kRimWhite * away);
    }
}

template <class Traits>
CMDTEXTURE_MULTIVERSION void Compose(const SLight* light, float joint_share,
                                     typename Traits::Sample* out, int pixels) {
    constexpr float kMaximum = static_cast<float>(Traits::kMaximum);
    for (int i = 0; i < pixels; ++i) {
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            const float seen = light->places.seen[i * Traits::kColourChannels + c];
            const float sample = seen * light->shade[i];
            const float lit = sample + light->gleam[i] * (kMaximum - sample);
            const float joint = joint_share * seen;
            const float mixed = std::clamp(joint + light->cover[i] * (lit - joint), 0.0F, kMaximum);
            out[i * Traits::kChannels + c] =
                static_cast<typename Traits::Sample>(static_cast<int>(mixed + 0.5F));
        }
    }
}

SLook LookOf(const SMosaicGrid& grid, const SGlass& glass, double half_x, double half_y) {
    const double smaller = std::min(half_x, half_y);
    // Thin joints keep their width on small tiles, wide ones give way.
    const double widest =
        smaller * (kUsualJoint +
                   (kWidestJoint - kUsualJoint) * std::clamp((grid.grout_width - 2) / 8, 0.0, 1.0));
    const double half = std::min(grid.grout_width / 2, widest);
    // Bent glass has a rim of its own.
    const double rim = 1 - (1 - glass.rim) * (1 - std::min(kOwnRim * glass.curvature, 1.0));
    const auto f = [](double value) { return static_cast<float>(value); };
    return {f(half_x),
            f(half_y),
            f(half),
            f(grid.grout_diffusion * std::min(0.45 * smaller, kFarthestWander * smaller)),
            f(half > 0 ? smaller * (0.3 + 0.35 * glass.rim) : smaller * 0.55 * glass.rim),
            half > 0 ? 0.0F : 1e6F,
            f(glass.curvature * kBend),
            f(1 / std::max(smaller * (0.42 + 0.33 * glass.rim), kThinnestRim)),
            f(rim),
            f(kSmallJoint +
              (kJoint - kSmallJoint) *
                  std::clamp((smaller - kSmallTile) / (kLargeTile - kSmallTile), 0.0, 1.0))};
}

}  // namespace

CErrorAutoThrow MakeGlassMosaic(CStatusControl* status, const CRowIteratorBands& source,
                                CRowIteratorBands& destination, const SMosaicGrid& grid,
                                const SGlass& glass, CRuntimeRandom& random) {
    const int width = source.GetWidth();
    const SAxis across(width, grid.columns), down(source.GetHeight(), grid.rows);
    const double smaller = std::min(across.half, down.half);
    const CWanderField field(random, std::max(smaller * 2 / 3, 1.5), width);
    const SLook look = LookOf(grid, glass, across.half, down.half);
    const CPictureSampler picture(source, glass.resample, glass.wrap);
    return VisitPixelFormat(
        destination.GetPixelFormat(), CErrorAutoThrow(TolmErrorCode::UnusableInput),
        [&](auto traits) {
            using Traits = decltype(traits);
            using Sample = typename Traits::Sample;
            return ForEachRowBlock(status, source.GetHeight(), 16, [&](int first, int last) {
                SLight light;
                for (int y = first; y < last; ++y) {
                    if (Traits::kHasAlpha) CopyShownRow(source, y, destination, y);
                    const float dy = down.from_middle[static_cast<std::size_t>(y)];
                    for (int x = 0; x < width; x += SPlaces::kMost) {
                        const int pixels = std::min(SPlaces::kMost, width - x);
                        field.Row(x, y, light.wander, pixels);
                        FillOwn(across, down.tile[static_cast<std::size_t>(y)],
                                kShift * glass.curvature * smaller, kTone * glass.curvature, x,
                                light, pixels);
                        LookThrough(across.from_middle.data() + x, dy, x, y, &look, &light, pixels);
                        picture.See(light.places, pixels);
                        Compose<Traits>(&light, look.joint,
                                        destination.Row<Sample>(y) + x * Traits::kChannels, pixels);
                    }
                }
            });
        });
}
