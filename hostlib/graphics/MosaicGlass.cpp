#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/core/Multiversion.h"
#include "hostlib/graphics/MosaicParts.h"
#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/RowSamples.h"

// The glass mosaic: a regular grid of rounded glass tiles. A row is made in three passes over plain
// arrays: where each pixel looks through its lens and how it is lit, what it sees there, and the
// tile over the mortar.
namespace {

// Along one axis: how far each pixel's centre is from the middle of its tile.
struct SAxis {
    std::vector<float> from_middle;
    double half;  // a tile's half size

    SAxis(int size, int tiles) : half(size / 2.0 / tiles) {
        for (int i = 0; i < size; ++i) {
            const double tile = std::floor((i + 0.5) * tiles / size);
            from_middle.push_back(static_cast<float>(i + 0.5 - (tile + 0.5) * size / tiles));
        }
    }
};

struct SLook {
    float half_x, half_y;
    float half_grout, wander, radius;
    float bend;            // of the lens
    float rim_share, rim;  // 1 / width of the shaded rim in pixels; its strength
    float gleam;           // strength of the reflection in the glass
    SMortar mortar;
};

// Pixels of a row that are worked on together, small enough to stay in the nearest cache.
constexpr int kPart = 512;
struct SPart {
    float wander[kPart];
    // Where the pixels look to, and how much of them is tile, how lit, how much a reflection.
    float x[kPart], y[kPart], cover[kPart], shade[kPart], gleam[kPart];
    // Of these places, the first pixel around them and the way from the second on.
    int first_x[kPart], first_y[kPart], inside[kPart];
    float way_x[kPart], way_y[kPart];
    float seen[3 * kPart + 3];  // colours, which are written as four floats
};

CMDTEXTURE_MULTIVERSION void LookThrough(const float* from_middle, float dy, int x, int y,
                                         const SLook* look, SPart* part, int pixels) {
    const SLook by = *look;
    const float v = dy / by.half_y;
    const float core_y = std::abs(dy) - (by.half_y - by.radius);
    const float out_y = std::max(core_y, 0.0F);
    for (int i = 0; i < pixels; ++i) {
        const float dx = from_middle[i];
        const float u = dx / by.half_x;
        const float square = u * u + v * v;
        const float bent = by.bend * (square - 0.4F);
        part->x[i] = static_cast<float>(x + i) + dx * bent;
        part->y[i] = static_cast<float>(y) + dy * bent;

        const float core_x = std::abs(dx) - (by.half_x - by.radius);
        const float out_x = std::max(core_x, 0.0F);
        const float round =
            std::sqrt(out_x * out_x + out_y * out_y) + std::min(std::max(core_x, core_y), 0.0F);
        const float inside = by.radius - round - by.half_grout - by.wander * part->wander[i];
        part->cover[i] = std::clamp(inside + 0.5F, 0.0F, 1.0F);

        const float depth = std::clamp(1.0F - inside * by.rim_share, 0.0F, 1.0F);
        const float facing = -(u + v) * 0.5F;
        part->shade[i] = 1.0F + by.rim * depth * depth * (facing * 1.1F - 0.35F);
        const float gu = u + 0.42F, gv = v + 0.46F;
        const float spot = std::max(1.0F - (gu * gu + gv * gv) * 7.0F, 0.0F);
        part->gleam[i] = by.gleam * spot * spot;
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
    CSize Size() const { return {image_.GetWidth(), image_.GetHeight()}; }
    int Step() const { return shown_.step; }
    std::ptrdiff_t Stride() const {
        return image_.Stride() / static_cast<std::ptrdiff_t>(sizeof(Sample));
    }

  private:
    int Inside(int at, int size) const {
        return wrap_ ? FloorMod(at, size) : std::clamp(at, 0, size - 1);
    }
    const CRowIteratorBands& image_;
    SShownSamples shown_;
    bool wrap_;
};

// Weights of the pixels around a place that is `t` on the way from the second to the third: linear
// for two; for four the cubic through the samples (Catmull and Rom), as polynomials in t.
inline void Weights(float t, float (&w)[2]) {
    w[0] = 1 - t;
    w[1] = t;
}
constexpr float kCubic[4][4] = {{-0.5F, 1.5F, -1.5F, 0.5F},
                                {1.0F, -2.5F, 2.0F, -0.5F},
                                {-0.5F, 0.0F, 0.5F, 0.0F},
                                {0.0F, 1.0F, 0.0F, 0.0F}};
inline void Weights(float t, float (&w)[4]) {
    for (int k = 0; k < 4; ++k) {
        w[k] = ((kCubic[0][k] * t + kCubic[1][k]) * t + kCubic[2][k]) * t + kCubic[3][k];
    }
}

// What is seen at a place: the weighted mean of kTaps by kTaps pixels, of each column first.
template <class Sample, int kColours, int kTaps>
inline void See(const CPicture<Sample>& picture, float at_x, float at_y, float* seen) {
    const float low_x = std::floor(at_x), low_y = std::floor(at_y);
    const int x = static_cast<int>(low_x) - (kTaps / 2 - 1);
    const int y = static_cast<int>(low_y) - (kTaps / 2 - 1);
    float wx[kTaps], wy[kTaps];
    Weights(at_x - low_x, wx);
    Weights(at_y - low_y, wy);
    for (int c = 0; c < kColours; ++c) {
        seen[c] = 0;
        for (int i = 0; i < kTaps; ++i) {
            float column = 0;
            for (int j = 0; j < kTaps; ++j) {
                column += wy[j] * static_cast<float>(picture.At(x + i, y + j)[c]);
            }
            seen[c] += wx[i] * column;
        }
    }
}

template <class Sample, int kColours, int kTaps>
void SeePlain(const CPicture<Sample>& picture, bool nearest, SPart& part, int pixels) {
    const auto place = [&](float at) { return nearest ? std::floor(at + 0.5F) : at; };
    for (int i = 0; i < pixels; ++i) {
        See<Sample, kColours, kTaps>(picture, place(part.x[i]), place(part.y[i]),
                                     part.seen + i * kColours);
    }
}

// Four floats for each of two pixels, side by side. All that works on them is inlined.
using Floats = float __attribute__((vector_size(32)));

// 16 bytes of each of two pixels' rows; bytes kAt to kAt + 3 and 16-bit samples kAt to kAt + 3 of
// both as floats. The bytes become numbers by being repeated and masked, in one shuffle.
using Bytes = std::uint8_t __attribute__((vector_size(32)));
using Words = std::uint16_t __attribute__((vector_size(32)));
using Ints = std::int32_t __attribute__((vector_size(32)));
inline Bytes Load(const void* left, const void* right) {
    using Half = std::int64_t __attribute__((vector_size(16)));
    Half halves[2];
    std::memcpy(&halves[0], left, sizeof halves[0]);
    std::memcpy(&halves[1], right, sizeof halves[1]);
    return reinterpret_cast<Bytes>(__builtin_shufflevector(halves[0], halves[1], 0, 1, 2, 3));
}
template <int kAt>
inline Floats BytesAt(Bytes b) {
    constexpr int i = kAt, j = kAt + 16;
    const Bytes repeated =
        __builtin_shufflevector(b, b, i, i, i, i, i + 1, i + 1, i + 1, i + 1, i + 2, i + 2, i + 2,
                                i + 2, i + 3, i + 3, i + 3, i + 3, j, j, j, j, j + 1, j + 1, j + 1,
                                j + 1, j + 2, j + 2, j + 2, j + 2, j + 3, j + 3, j + 3, j + 3);
    return __builtin_convertvector(reinterpret_cast<Ints>(repeated) & 0xFF, Floats);
}
template <int kAt>
inline Floats WordsAt(Bytes b) {
    constexpr int i = kAt, j = kAt + 8;
    const auto w = reinterpret_cast<Words>(b);
    const Words repeated =
        __builtin_shufflevector(w, w, i, i, i + 1, i + 1, i + 2, i + 2, i + 3, i + 3, j, j, j + 1,
                                j + 1, j + 2, j + 2, j + 3, j + 3);
    return __builtin_convertvector(reinterpret_cast<Ints>(repeated) & 0xFFFF, Floats);
}

// Samples 4 * kGroup to 4 * kGroup + 3 from two places on.
template <int kGroup>
inline Floats Group(const std::uint8_t* left, const std::uint8_t* right) {
    return BytesAt<4 * kGroup>(Load(left, right));
}
template <int kGroup>
inline Floats Group(const std::uint16_t* left, const std::uint16_t* right) {
    constexpr int kFirst = kGroup / 2 * 8;
    return WordsAt<4 * kGroup - kFirst>(Load(left + kFirst, right + kFirst));
}
// So many pixels from a place on are read at most, in loads of 16 bytes.
template <class Sample, int kStep>
constexpr int kReach = 4 + 16 / (kStep * static_cast<int>(sizeof(Sample)));

inline Floats Both(float left, float right) {
    return Floats{left, left, left, left, right, right, right, right};
}
inline Floats CubicWeights(Floats t) {
    const auto row = [](int i) {
        const float* k = kCubic[i];
        return Floats{k[0], k[1], k[2], k[3], k[0], k[1], k[2], k[3]};
    };
    return ((row(0) * t + row(1)) * t + row(2)) * t + row(3);
}
template <int kAt>
inline Floats Spread(Floats weights) {
    return __builtin_shufflevector(weights, weights, kAt, kAt, kAt, kAt, 4 + kAt, 4 + kAt, 4 + kAt,
                                   4 + kAt);
}

// The samples of column kColumn (and some that follow them) of two rows of 4 * kStep.
template <int kStep, int kColumn>
inline Floats Column(const Floats (&row)[kStep]) {
    constexpr int kFirst = kColumn * kStep / 4, kAt = kColumn * kStep % 4;
    const auto from = [](int i) { return i < 4 ? i : i + 4; };
    constexpr int k[4] = {from(kAt), from(kAt + 1), from(kAt + 2), from(kAt + 3)};
    return __builtin_shufflevector(row[kFirst], row[std::min(kFirst + 1, kStep - 1)], k[0], k[1],
                                   k[2], k[3], 4 + k[0], 4 + k[1], 4 + k[2], 4 + k[3]);
}

// Splits the places that the pixels look to into the first pixel around them and the way from the
// second on; and whether, from the first on, `reach` pixels can be read.
CMDTEXTURE_MULTIVERSION void Locate(SPart* part, int pixels, CSize picture, int reach) {
    for (int i = 0; i < pixels; ++i) {
        const float low_x = std::floor(part->x[i]), low_y = std::floor(part->y[i]);
        part->way_x[i] = part->x[i] - low_x;
        part->way_y[i] = part->y[i] - low_y;
        const int x = static_cast<int>(low_x) - 1, y = static_cast<int>(low_y) - 1;
        part->first_x[i] = x;
        part->first_y[i] = y;
        part->inside[i] = (x >= 0) & (y >= 0) & (x <= picture.cx - reach) & (y <= picture.cy - 4);
    }
}

// See of cubic weights for two places well inside the picture, to the bit: the same sums in the
// same order, of all samples of the columns at once. The first of each four floats are the colours.
template <class Sample, int kStep>
inline Floats SeeInside(const Sample* left, const Sample* right, std::ptrdiff_t stride, Floats wx,
                        Floats wy) {
    Floats sums[kStep] = {};
    const auto add = [&](int j, Floats weight) {
        const Sample *l = left + j * stride, *r = right + j * stride;
        sums[0] += weight * Group<0>(l, r);
        if constexpr (kStep > 1) sums[1] += weight * Group<1>(l, r);
        if constexpr (kStep > 2) sums[2] += weight * Group<2>(l, r);
        if constexpr (kStep > 3) sums[3] += weight * Group<3>(l, r);
    };
    add(0, Spread<0>(wy));
    add(1, Spread<1>(wy));
    add(2, Spread<2>(wy));
    add(3, Spread<3>(wy));
    return Spread<0>(wx) * Column<kStep, 0>(sums) + Spread<1>(wx) * Column<kStep, 1>(sums) +
           Spread<2>(wx) * Column<kStep, 2>(sums) + Spread<3>(wx) * Column<kStep, 3>(sums);
}

// Pairs of places inside the picture fast, the others one by one.
template <class Sample, int kColours, int kStep>
CMDTEXTURE_MULTIVERSION void SeeCubic(const CPicture<Sample>* picture, SPart* part, int pixels) {
    const CPicture<Sample> from = *picture;
    const Sample* origin = from.At(0, 0);
    const std::ptrdiff_t stride = from.Stride();
    const auto corner = [&](int i) {
        return origin + part->first_y[i] * stride + part->first_x[i] * kStep;
    };
    Locate(part, pixels, from.Size(), kReach<Sample, kStep>);
    for (int i = 0; i < pixels; i += 2) {
        const int next = std::min(i + 1, pixels - 1);
        float *seen = part->seen + i * kColours, *seen_next = part->seen + next * kColours;
        if (part->inside[i] & part->inside[next]) {
            const Floats colours =
                SeeInside<Sample, kStep>(corner(i), corner(next), stride,
                                         CubicWeights(Both(part->way_x[i], part->way_x[next])),
                                         CubicWeights(Both(part->way_y[i], part->way_y[next])));
            std::memcpy(seen, &colours, sizeof colours / 2);
            std::memcpy(seen_next, reinterpret_cast<const float*>(&colours) + 4,
                        sizeof colours / 2);
        } else {
            See<Sample, kColours, 4>(from, part->x[i], part->y[i], seen);
            See<Sample, kColours, 4>(from, part->x[next], part->y[next], seen_next);
        }
    }
}

template <class Sample, int kColours>
void SeePart(const CPicture<Sample>& picture, int resample, SPart& part, int pixels) {
    if (resample != 2) {
        SeePlain<Sample, kColours, 2>(picture, resample == 0, part, pixels);
    } else if (picture.Step() == kColours) {
        SeeCubic<Sample, kColours, kColours>(&picture, &part, pixels);
    } else if (picture.Step() == kColours + 1) {
        SeeCubic<Sample, kColours, kColours + 1>(&picture, &part, pixels);
    } else {
        SeePlain<Sample, kColours, 4>(picture, false, part, pixels);
    }
}

template <class Traits>
CMDTEXTURE_MULTIVERSION void Compose(const SPart* part, const SMortar* mortar,
                                     typename Traits::Sample* out, int pixels) {
    constexpr float kMaximum = static_cast<float>(Traits::kMaximum);
    const SMortar by = *mortar;
    for (int i = 0; i < pixels; ++i) {
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            const float sample = part->seen[i * Traits::kColourChannels + c] * part->shade[i];
            const float lit =
                std::clamp(sample + part->gleam[i] * (kMaximum - sample), 0.0F, kMaximum);
            const float mixed = by.colour[c] + part->cover[i] * (lit - by.colour[c]);
            out[i * Traits::kChannels + c] =
                static_cast<typename Traits::Sample>(static_cast<int>(mixed + 0.5F));
        }
    }
}

SLook LookOf(const SMosaicGrid& grid, const SGlass& glass, double half_x, double half_y,
             CNPixelFormat format) {
    const double smaller = std::min(half_x, half_y);
    const double half = std::min(grid.grout_width / 2, smaller / 2);
    // Bent glass shades its rim a little of itself.
    const double rim = 1 - (1 - glass.rim) * (1 - 0.5 * glass.curvature);
    const auto f = [](double value) { return static_cast<float>(value); };
    return {f(half_x), f(half_y),
            // Without grout, tiles meet: not even the joint's soft edge is seen.
            half > 0 ? f(half) : -1.0F,
            f(grid.grout_diffusion * std::min(half * 0.9, smaller * 0.22)),
            f(std::min(smaller * 0.7, 1.5 * half + 0.55 * rim * smaller)), f(glass.curvature * 1.4),
            f(1 / std::max(smaller * (0.25 + 0.35 * rim), 1.0)), f(rim), f(0.35 * glass.curvature),
            SMortar(format)};
}

}  // namespace

CErrorAutoThrow MakeGlassMosaic(CStatusControl* status, const CRowIteratorBands& source,
                                CRowIteratorBands& destination, const SMosaicGrid& grid,
                                const SGlass& glass, CRuntimeRandom& random) {
    const int width = source.GetWidth();
    const SAxis across(width, grid.columns), down(source.GetHeight(), grid.rows);
    const double smaller = std::min(across.half, down.half);
    const CWanderField field(random, std::max(smaller * 2 / 3, 1.5), width);
    const SLook look = LookOf(grid, glass, across.half, down.half, destination.GetPixelFormat());
    return VisitPixelFormat(
        destination.GetPixelFormat(), CErrorAutoThrow(TolmErrorCode::UnusableInput),
        [&](auto traits) {
            using Traits = decltype(traits);
            using Sample = typename Traits::Sample;
            const CPicture<Sample> picture(source, glass.wrap);
            return ForEachRowBlock(status, source.GetHeight(), 16, [&](int first, int last) {
                SPart part;
                for (int y = first; y < last; ++y) {
                    if (Traits::kHasAlpha) CopyShownRow(source, y, destination, y);
                    const float dy = down.from_middle[static_cast<std::size_t>(y)];
                    for (int x = 0; x < width; x += kPart) {
                        const int pixels = std::min(kPart, width - x);
                        field.Row(x, y, part.wander, pixels);
                        LookThrough(across.from_middle.data() + x, dy, x, y, &look, &part, pixels);
                        SeePart<Sample, Traits::kColourChannels>(picture, glass.resample, part,
                                                                 pixels);
                        Compose<Traits>(&part, &look.mortar,
                                        destination.Row<Sample>(y) + x * Traits::kChannels, pixels);
                    }
                }
            });
        });
}
