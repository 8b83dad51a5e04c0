#include <algorithm>
#include <cmath>

#include "host/core/Multiversion.h"
#include "hostlib/graphics/MosaicParts.h"
#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/RowSamples.h"

// The glass mosaic: a regular grid of rounded glass tiles. A row is made in three passes over plain
// arrays: where each pixel looks through its lens and how it is lit, what it sees there, and the
// tile over the mortar.
namespace {

// Along one axis: where each pixel centre lies in its tile, from its middle.
struct SAxis {
    std::vector<float> from_middle;  // in pixels
    std::vector<float> middle;       // of the tile
    float half = 0;                  // a tile's half size

    SAxis(int size, int tiles) : half(static_cast<float>(size / 2.0 / tiles)) {
        for (int i = 0; i < size; ++i) {
            const double tile = std::floor((i + 0.5) * tiles / size);
            const double at = (tile + 0.5) * size / tiles;
            middle.push_back(static_cast<float>(at));
            from_middle.push_back(static_cast<float>(i + 0.5 - at));
        }
    }
};

struct SLook {
    float half_x, half_y;
    float half_grout, wander, radius;
    float bend;            // of the lens
    float rim_width, rim;  // width of the shaded rim in pixels, strength
    float gleam;           // strength of the reflection in the glass
    SMortar mortar;
};

// What the first pass finds for a row.
struct SRow {
    std::vector<float> x, y, shade, gleam, cover, wander;
    explicit SRow(int width)
        : x(static_cast<std::size_t>(width)), y(x), shade(x), gleam(x), cover(x), wander(x) {}
};

CMDTEXTURE_MULTIVERSION void LookThrough(const float* from_middle, const float* middle, float dy,
                                         float middle_y, const SLook* look, const float* wander,
                                         float* at_x, float* at_y, float* shade, float* gleam,
                                         float* cover, int width) {
    const SLook by = *look;
    const float v = dy / by.half_y;
    const float core_y = std::abs(dy) - (by.half_y - by.radius);
    for (int x = 0; x < width; ++x) {
        const float dx = from_middle[x];
        const float u = dx / by.half_x;
        const float square = u * u + v * v;
        const float lens = 1.0F + by.bend * (square - 0.4F);
        at_x[x] = middle[x] + dx * lens - 0.5F;
        at_y[x] = middle_y + dy * lens - 0.5F;

        const float core_x = std::abs(dx) - (by.half_x - by.radius);
        const float out_x = std::max(core_x, 0.0F), out_y = std::max(core_y, 0.0F);
        const float round =
            std::sqrt(out_x * out_x + out_y * out_y) + std::min(std::max(core_x, core_y), 0.0F);
        const float inside = by.radius - round - by.half_grout - by.wander * wander[x];
        cover[x] = std::clamp(inside + 0.5F, 0.0F, 1.0F);

        const float depth = std::clamp(1.0F - inside / by.rim_width, 0.0F, 1.0F);
        const float facing = -(u + v) * 0.5F;
        shade[x] = 1.0F + by.rim * depth * depth * (facing * 1.1F - 0.35F);
        const float gu = u + 0.42F, gv = v + 0.46F;
        const float spot = std::max(1.0F - (gu * gu + gv * gv) * 7.0F, 0.0F);
        gleam[x] = by.gleam * spot * spot;
    }
}

// Where samples come from, and how those beyond the edge are found.
template <class Sample>
class CPicture {
  public:
    CPicture(const CRowIteratorBands& image, bool wrap)
        : image_(image), shown_(ShownBy(image)), wrap_(wrap) {}
    const Sample* At(int x, int y) const {
        return image_.Row<Sample>(Inside(y, image_.GetHeight())) +
               Inside(x, image_.GetWidth()) * shown_.step + shown_.first;
    }
    // Whether `count` pixels each way from (x, y) need no looking after.
    bool Holds(int x, int y, int count) const {
        return x >= 0 && y >= 0 && x + count <= image_.GetWidth() &&
               y + count <= image_.GetHeight();
    }
    int Step() const { return shown_.step; }

  private:
    int Inside(int at, int size) const {
        return wrap_ ? FloorMod(at, size) : std::clamp(at, 0, size - 1);
    }
    const CRowIteratorBands& image_;
    SShownSamples shown_;
    bool wrap_;
};

// Weights of the pixels around a place that is `t` on the way from the second to the third: linear
// for two, cubic through the samples (Catmull and Rom) for four.
inline void Weights(float t, float (&w)[2]) {
    w[0] = 1 - t;
    w[1] = t;
}
inline void Weights(float t, float (&w)[4]) {
    w[0] = t * (t * (1 - 0.5F * t) - 0.5F);
    w[1] = 1 + t * t * (1.5F * t - 2.5F);
    w[2] = t * (0.5F + t * (2 - 1.5F * t));
    w[3] = t * t * (0.5F * t - 0.5F);
}

template <class Sample, int kColours, int kTaps>
inline void See(const CPicture<Sample>& picture, float at_x, float at_y, float* seen) {
    const float low_x = std::floor(at_x), low_y = std::floor(at_y);
    const int x = static_cast<int>(low_x) - (kTaps / 2 - 1);
    const int y = static_cast<int>(low_y) - (kTaps / 2 - 1);
    float wx[kTaps], wy[kTaps];
    Weights(at_x - low_x, wx);
    Weights(at_y - low_y, wy);
    for (int c = 0; c < kColours; ++c) seen[c] = 0;
    const bool whole = picture.Holds(x, y, kTaps);
    for (int j = 0; j < kTaps; ++j) {
        float line[kColours] = {};
        const Sample* row = whole ? picture.At(x, y + j) : nullptr;
        for (int i = 0; i < kTaps; ++i) {
            const Sample* pixel = whole ? row + i * picture.Step() : picture.At(x + i, y + j);
            for (int c = 0; c < kColours; ++c) line[c] += wx[i] * static_cast<float>(pixel[c]);
        }
        for (int c = 0; c < kColours; ++c) seen[c] += wy[j] * line[c];
    }
}

template <class Sample, int kColours>
void SeeRow(const CPicture<Sample>& picture, const SRow& row, int resample, float* seen) {
    const int width = static_cast<int>(row.x.size());
    for (int i = 0; i < width; ++i, seen += kColours) {
        const auto at = static_cast<std::size_t>(i);
        if (resample == 2) {
            See<Sample, kColours, 4>(picture, row.x[at], row.y[at], seen);
        } else if (resample == 1) {
            See<Sample, kColours, 2>(picture, row.x[at], row.y[at], seen);
        } else {
            See<Sample, kColours, 2>(picture, std::floor(row.x[at] + 0.5F),
                                     std::floor(row.y[at] + 0.5F), seen);
        }
    }
}

template <class Traits>
CMDTEXTURE_MULTIVERSION void Compose(const float* seen, const float* shade, const float* gleam,
                                     const float* cover, const SMortar* mortar,
                                     typename Traits::Sample* out, int width) {
    constexpr float kMaximum = static_cast<float>(Traits::kMaximum);
    const SMortar by = *mortar;
    for (int x = 0; x < width; ++x) {
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            const float sample = seen[x * Traits::kColourChannels + c] * shade[x];
            const float lit = std::clamp(sample + gleam[x] * (kMaximum - sample), 0.0F, kMaximum);
            const float mixed = by.colour[c] + cover[x] * (lit - by.colour[c]);
            out[x * Traits::kChannels + c] =
                static_cast<typename Traits::Sample>(static_cast<int>(mixed + 0.5F));
        }
    }
}

}  // namespace

CErrorAutoThrow MakeGlassMosaic(CStatusControl* status, const CRowIteratorBands& source,
                                CRowIteratorBands& destination, const SMosaicGrid& grid,
                                const SGlass& glass, CRuntimeRandom& random) {
    const int width = source.GetWidth();
    const SAxis across(width, grid.columns), down(source.GetHeight(), grid.rows);
    const double smaller = std::min(across.half, down.half);
    const CWanderField field(random, std::max(smaller * 2 / 3, 1.5), width);
    const double half = std::min(grid.grout_width / 2, smaller / 2);
    // Bent glass shades its rim a little of itself.
    const double rim = 1 - (1 - glass.rim) * (1 - 0.5 * glass.curvature);
    const auto f = [](double value) { return static_cast<float>(value); };
    const SLook look{across.half,
                     down.half,
                     f(half),
                     f(grid.grout_diffusion * std::min(half * 0.9, smaller * 0.22)),
                     f(std::min(smaller * (0.35 + 0.3 * rim), half + smaller * 0.5)),
                     f(glass.curvature * 1.4),
                     f(std::max(smaller * (0.25 + 0.35 * rim), 1.0)),
                     f(rim),
                     f(0.35 * glass.curvature),
                     SMortar(destination.GetPixelFormat())};
    return VisitPixelFormat(
        destination.GetPixelFormat(), CErrorAutoThrow(TolmErrorCode::UnusableInput),
        [&](auto traits) {
            using Traits = decltype(traits);
            using Sample = typename Traits::Sample;
            constexpr int kColours = Traits::kColourChannels;
            const CPicture<Sample> picture(source, glass.wrap);
            return ForEachRowBlock(status, source.GetHeight(), 16, [&](int first, int last) {
                SRow row(width);
                std::vector<float> seen(static_cast<std::size_t>(width) * kColours);
                for (int y = first; y < last; ++y) {
                    CopyShownRow(source, y, destination, y);
                    field.Row(y, row.wander.data());
                    const auto at = static_cast<std::size_t>(y);
                    LookThrough(across.from_middle.data(), across.middle.data(),
                                down.from_middle[at], down.middle[at], &look, row.wander.data(),
                                row.x.data(), row.y.data(), row.shade.data(), row.gleam.data(),
                                row.cover.data(), width);
                    SeeRow<Sample, kColours>(picture, row, glass.resample, seen.data());
                    Compose<Traits>(seen.data(), row.shade.data(), row.gleam.data(),
                                    row.cover.data(), &look.mortar, destination.Row<Sample>(y),
                                    width);
                }
            });
        });
}
