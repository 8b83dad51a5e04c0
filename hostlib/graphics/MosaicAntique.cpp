#include <algorithm>
#include <array>
#include <cmath>

#include "host/core/Multiversion.h"
#include "hostlib/graphics/MosaicParts.h"
#include "hostlib/graphics/MosaicStones.h"
#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/PictureEdges.h"
#include "hostlib/graphics/RowSamples.h"

// The antique mosaic: stones laid by hand along the picture's edges. Each has nearly one colour, a
// tone of its own, a face that is tilted a little, and worn edges, lit from the upper left; the
// joints are as dark as shadow makes the colours around them.
namespace {

// How much of the picture's detail is left within a stone and a joint.
constexpr float kDetail = 0.07F;
constexpr float kJointDetail = 0.2F;
// How much stones differ in brightness, and in red against blue; how much brighter one side of a
// stone is than its middle; and how much its grain changes it.
constexpr float kTone = 0.08F;
constexpr float kTint = 0.025F;
constexpr float kTilt = 0.1F;
constexpr float kGrain = 0.035F;
// Light on the worn edges, in shares of the stone's brightness and of white, and their width in
// shares of a cell.
constexpr float kEdgeLight = 0.62F;
constexpr float kEdgeWhite = 0.18F;
constexpr double kEdgeWidth = 0.15;
// A joint's brightness, in shares of the stone's beside it.
constexpr float kJoint = 0.33F;
// The widest joint and the farthest wander of its edges to one side, in cells: together no more
// than a sixth of a cell at usual settings, and never more than half of one.
constexpr double kUsualJoint = 1.0 / 18;
constexpr double kWidestJoint = 1.0 / 5;
constexpr double kFarthestWander = 1.0 / 18;
constexpr double kUsualWidth = 2;  // of grout in pixels, the command's default
constexpr double kWidestWidth = 10;
constexpr double kCorner = 0.22;  // radius of a stone's corners, in cells

// Squares of the picture's edges to a cell.
constexpr double kSquares = 8;

struct SStone {
    SStoneOutline outline;
    std::array<float, 4> light;    // of each edge
    float tone = 1, tint = 0;      // drawn
    float tilt_x = 0, tilt_y = 0;  // per pixel
    float at_x = 0, at_y = 0;      // the stone's middle
    float mean[3] = {};
};

struct SLook {
    float half_joint, wander, radius, worn;
};

// Two further numbers, -1 to 1, that follow from one that was drawn.
struct SFollowing {
    float first, second;
    explicit SFollowing(int drawn) {
        const auto of = [](std::uint32_t value) {
            return static_cast<float>((value >> 8) & 0xFFFF) / 32767.5F - 1.0F;
        };
        const std::uint32_t mixed = static_cast<std::uint32_t>(drawn) * 2654435761U;
        first = of(mixed);
        second = of((mixed ^ (mixed >> 15)) * 2246822519U);
    }
};

// What makes a stone one of its own; one number is drawn for it.
SStone Draw(double cell, CRuntimeRandom& random) {
    SStone stone;
    const int drawn = random.Next();
    const float value = static_cast<float>(drawn) / 16383.5F - 1;
    const SFollowing following(drawn);
    stone.tone = 1 + kTone * value;
    stone.tint = kTint * following.second;
    // Tilted faces are bright or dark as a whole, and toward one side.
    stone.tilt_x = kTilt * following.first / static_cast<float>(cell);
    stone.tilt_y = kTilt * following.second / static_cast<float>(cell);
    return stone;
}

void Lay(const CMosaicStones& stones, std::vector<SStone>& laid) {
    for (int row = 0; row < stones.Rows(); ++row) {
        for (int column = 0; column < stones.Columns(); ++column) {
            SStone& stone = laid[stones.Index(column, row)];
            stone.outline = stones.OutlineOf(column, row);
            const SPlanePoint middle = stones.MiddleOf(column, row);
            stone.at_x = static_cast<float>(middle.x);
            stone.at_y = static_cast<float>(middle.y);
            constexpr float kDiagonal = 0.70710678F;
            for (std::size_t i = 0; i < 4; ++i) {
                stone.light[i] =
                    kEdgeLight * kDiagonal * (stone.outline.nx[i] + stone.outline.ny[i]);
            }
        }
    }
}

// Adds up the colour of a stone's pixels, by their alpha where there is one.
template <class Traits>
struct SSum {
    double colour[3] = {};
    double plain[3] = {};
    double weight = 0, count = 0;

    void Add(const typename Traits::Sample* row, int step, int first, int last) {
        std::uint64_t sums[3] = {}, weighted[3] = {}, alphas = 0;
        for (int x = first; x < last; ++x) {
            const auto* pixel = row + x * step;
            for (int c = 0; c < Traits::kColourChannels; ++c) sums[c] += pixel[c];
            if constexpr (Traits::kHasAlpha) {
                const std::uint64_t alpha = pixel[Traits::kChannels - 1];
                for (int c = 0; c < Traits::kColourChannels; ++c) weighted[c] += pixel[c] * alpha;
                alphas += alpha;
            }
        }
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            plain[c] += static_cast<double>(sums[c]);
            colour[c] += static_cast<double>(weighted[c]);
        }
        weight += static_cast<double>(alphas);
        count += last - first;
    }
    void Mean(float* mean) const {
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            mean[c] = static_cast<float>(weight > 0  ? colour[c] / weight
                                         : count > 0 ? plain[c] / count
                                                     : 0);
        }
    }
};

template <class Traits>
CErrorAutoThrow FindColours(CStatusControl* status, const CRowIteratorBands& source,
                            const CMosaicStones& stones, std::vector<SStone>& laid) {
    using Sample = typename Traits::Sample;
    const SShownSamples shown = ShownBy(source);
    return ForEachRowBlock(status, stones.Rows(), 1, [&](int row, int) {
        for (int column = 0; column < stones.Columns(); ++column) {
            SSum<Traits> sum;
            const SSpan reach = stones.Reach(row);
            for (int y = reach.first; y < reach.last; ++y) {
                const SSpan span = stones.SpanOf(column, row, y);
                sum.Add(source.Row<Sample>(y) + shown.first, shown.step, span.first, span.last);
            }
            sum.Mean(laid[stones.Index(column, row)].mean);
        }
    });
}

// A stone's colour at one channel as base + kDetail * sample, and its joints' likewise.
struct SColours {
    float stone[3], joint[3];
    explicit SColours(const SStone& by, bool grey) {
        for (int c = 0; c < 3; ++c) {
            const float tint = grey ? 0 : by.tint * static_cast<float>(c - 1);
            stone[c] = by.mean[c] * (1 + tint - kDetail);
            joint[c] = by.mean[c] * kJoint * (1 - kJointDetail);
        }
    }
};

// One pixel of a stone, `x` and `y` its centre.
template <class Traits>
inline void PaintPixel(typename Traits::Sample* pixel, float x, float y, float wander,
                       const SStone& stone, const SColours& colours, const SLook& look) {
    const float joint = look.half_joint + look.wander * wander;
    float light = 0, corner = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const float inside = stone.outline.nx[i] * x + stone.outline.ny[i] * y + stone.outline.d[i];
        const float worn = std::clamp(1.0F - (inside - joint) * look.worn, 0.0F, 1.0F);
        light += stone.light[i] * worn;
        const float in_corner = std::max(look.radius - inside, 0.0F);
        corner += in_corner * in_corner;
    }
    const float cover = std::clamp(look.radius - std::sqrt(corner) - joint + 0.5F, 0.0F, 1.0F);
    const float face = stone.tilt_x * (x - stone.at_x) + stone.tilt_y * (y - stone.at_y);
    const float shade = stone.tone * (1.0F + light + face + kGrain * wander);
    constexpr float kMaximum = static_cast<float>(Traits::kMaximum);
    const float white = kEdgeWhite * kMaximum * std::max(light, 0.0F);
    for (int c = 0; c < Traits::kColourChannels; ++c) {
        const float sample = static_cast<float>(pixel[c]);
        const float colour = (colours.stone[c] + kDetail * sample) * shade + white;
        const float dark = colours.joint[c] + kJoint * kJointDetail * sample;
        const float mixed = std::clamp(dark + cover * (colour - dark), 0.0F, kMaximum);
        pixel[c] = static_cast<typename Traits::Sample>(static_cast<int>(mixed + 0.5F));
    }
}

template <class Traits>
CMDTEXTURE_MULTIVERSION void PaintSpan(typename Traits::Sample* row, int first, int last, int y,
                                       const float* wander, const SStone* stone,
                                       const SLook* look) {
    const SStone by = *stone;
    const SLook as = *look;
    const SColours colours(by, Traits::kColourChannels == 1);
    for (int x = first; x < last; ++x) {
        PaintPixel<Traits>(row + x * Traits::kChannels, static_cast<float>(x) + 0.5F,
                           static_cast<float>(y) + 0.5F, wander[x], by, colours, as);
    }
}

template <class Traits>
void PaintRows(const CRowIteratorBands& source, CRowIteratorBands& destination,
               const CMosaicStones& stones, const std::vector<SStone>& laid,
               const CWanderField& field, const SLook& look, int first, int last) {
    using Sample = typename Traits::Sample;
    std::vector<float> wander(static_cast<std::size_t>(destination.GetWidth()));
    int from = 0;
    for (int y = first; y < last; ++y) {
        CopyShownRow(source, y, destination, y);
        field.Row(0, y, wander.data(), destination.GetWidth());
        while (stones.Reach(from).last <= y) ++from;
        for (int row = from; row < stones.Rows() && stones.Reach(row).first <= y; ++row) {
            for (int column = 0; column < stones.Columns(); ++column) {
                const SSpan span = stones.SpanOf(column, row, y);
                PaintSpan<Traits>(destination.Row<Sample>(y), span.first, span.last, y,
                                  wander.data(), &laid[stones.Index(column, row)], &look);
            }
        }
    }
}

SLook LookOf(const SMosaicGrid& grid, double cell) {
    const double wide =
        std::clamp((grid.grout_width - kUsualWidth) / (kWidestWidth - kUsualWidth), 0.0, 1.0);
    const double half =
        std::min(grid.grout_width / 2, cell * (kUsualJoint + wide * (kWidestJoint - kUsualJoint)));
    const auto f = [](double value) { return static_cast<float>(value); };
    return {f(half), f(grid.grout_diffusion * std::min(half * 1.5, cell * kFarthestWander)),
            f(std::min(cell * kCorner, 1 + 2.5 * half)), f(1 / std::max(cell * kEdgeWidth, 1.2))};
}

}  // namespace

CErrorAutoThrow MakeAntiqueMosaic(CStatusControl* status, const CRowIteratorBands& source,
                                  CRowIteratorBands& destination, const SMosaicGrid& grid,
                                  double tile_diffusion, CRuntimeRandom& random) {
    const CSize size{source.GetWidth(), source.GetHeight()};
    const double cell = std::min(static_cast<double>(size.cx) / grid.columns,
                                 static_cast<double>(size.cy) / grid.rows);
    CMosaicStones stones(size, grid, tile_diffusion, random);
    std::vector<SStone> laid(stones.Index(0, stones.Rows()));
    for (SStone& stone : laid) stone = Draw(cell, random);
    const CWanderField field(random, std::max(cell / 3, 1.5), size.cx);
    if (status) status->SetNumberOfSteps(3);
    // Stones that are to lie straight do so; they need not be much out of place to be laid along
    // edges.
    stones.Follow(CPictureEdges(status, source, cell / kSquares),
                  std::min(2 * tile_diffusion, 1.0));
    Lay(stones, laid);
    const SLook look = LookOf(grid, cell);
    return VisitPixelFormat(
        destination.GetPixelFormat(), CErrorAutoThrow(TolmErrorCode::UnusableInput),
        [&](auto traits) {
            using Traits = decltype(traits);
            CErrorAutoThrow result = FindColours<Traits>(status, source, stones, laid);
            if (result.Failed()) return result;
            return ForEachRowBlock(status, size.cy, 16, [&](int first, int last) {
                PaintRows<Traits>(source, destination, stones, laid, field, look, first, last);
            });
        });
}
