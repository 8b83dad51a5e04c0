#include <algorithm>
#include <array>
#include <cmath>

#include "host/core/Multiversion.h"
#include "hostlib/graphics/MosaicParts.h"
#include "hostlib/graphics/ParallelRows.h"
#include "hostlib/graphics/RowSamples.h"

// The antique mosaic: quadrilateral stones between the displaced points of a grid. A pixel belongs
// to the stone whose outline its centre lies in, found by the crossings of a row with the outlines;
// neighbours compute the crossings of their common edge alike, so no pixel is left out.
namespace {

// The most that a point of the grid is displaced, in cells: stones stay convex.
constexpr double kFarthest = 0.24;
// How much of the picture's detail is left within a stone, and how much stones differ in tone.
constexpr float kDetail = 0.10F;
constexpr float kTone = 0.05F;
// Light falls on the stones' worn edges from the upper left.
constexpr float kEdgeLight = 0.30F;

struct SPoint {
    double x = 0, y = 0;
};

// A stone's outline as inward normals and distances: nx x + ny y + d is the distance inside.
struct SStone {
    std::array<float, 4> nx, ny, d, light;
    float tone = 1;
    float mean[3] = {};
};

struct SLook {
    float half_grout, wander, radius, worn;
    SMortar mortar;
};

struct SSpan {
    int first = 0, last = 0;
};

class CStones {
  public:
    CStones(CSize size, const SMosaicGrid& grid, double diffusion, CRuntimeRandom& random)
        : size_(size), columns_(grid.columns), rows_(grid.rows) {
        for (int row = 0; row <= rows_; ++row) {
            for (int column = 0; column <= columns_; ++column) {
                points_.push_back(Displaced(column, row, diffusion, random));
            }
        }
        for (int row = 0; row < rows_; ++row) {
            for (int column = 0; column < columns_; ++column) {
                stones_.push_back(Outline(Corners(column, row)));
                stones_.back().tone =
                    1 + kTone * (static_cast<float>(random.Next()) / 16383.5F - 1);
            }
        }
    }
    int Columns() const { return columns_; }
    int Rows() const { return rows_; }
    SStone& At(int column, int row) { return stones_[Index(column, row, columns_)]; }
    const SStone& At(int column, int row) const { return stones_[Index(column, row, columns_)]; }

    // The columns of the picture's row y whose centres lie in a stone.
    SSpan SpanOf(int column, int row, int y) const {
        const std::array<SPoint, 4> p = Corners(column, row);
        const double centre = y + 0.5;
        double low = size_.cx, high = 0;
        const auto cross = [&](const SPoint& from, const SPoint& to) {
            if ((from.y <= centre) == (to.y <= centre)) return;
            const double x = from.x + (to.x - from.x) * (centre - from.y) / (to.y - from.y);
            low = std::min(low, x);
            high = std::max(high, x);
        };
        cross(p[0], p[1]);
        cross(p[0], p[2]);
        cross(p[1], p[3]);
        cross(p[2], p[3]);
        if (low >= high) return {};
        return {static_cast<int>(std::ceil(std::max(low, 0.0) - 0.5)),
                static_cast<int>(std::ceil(std::min(high, double(size_.cx)) - 0.5))};
    }
    // The rows of the picture that a row of stones may reach.
    SSpan Reach(int row) const {
        const double cell = static_cast<double>(size_.cy) / rows_;
        return {std::max(static_cast<int>((row - kFarthest) * cell) - 1, 0),
                std::min(static_cast<int>((row + 1 + kFarthest) * cell) + 2, size_.cy)};
    }

  private:
    static std::size_t Index(int column, int row, int columns) {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(column);
    }
    // Points on the picture's edge stay on it.
    SPoint Displaced(int column, int row, double diffusion, CRuntimeRandom& random) const {
        const double dx = (random.Next() / 16383.5 - 1) * kFarthest * diffusion;
        const double dy = (random.Next() / 16383.5 - 1) * kFarthest * diffusion;
        const bool at_side = column == 0 || column == columns_;
        const bool at_end = row == 0 || row == rows_;
        return {(column + (at_side ? 0 : dx)) * size_.cx / columns_,
                (row + (at_end ? 0 : dy)) * size_.cy / rows_};
    }
    // Upper left, upper right, lower left, lower right.
    std::array<SPoint, 4> Corners(int column, int row) const {
        const std::size_t top = Index(column, row, columns_ + 1);
        const std::size_t bottom = Index(column, row + 1, columns_ + 1);
        return {points_[top], points_[top + 1], points_[bottom], points_[bottom + 1]};
    }
    static SStone Outline(const std::array<SPoint, 4>& p) {
        SStone stone;
        const std::array<std::array<SPoint, 2>, 4> edges{
            {{p[0], p[1]}, {p[1], p[3]}, {p[3], p[2]}, {p[2], p[0]}}};
        for (std::size_t i = 0; i < 4; ++i) {
            const double x = edges[i][1].x - edges[i][0].x, y = edges[i][1].y - edges[i][0].y;
            const double length = std::max(std::hypot(x, y), 1e-6);
            stone.nx[i] = static_cast<float>(-y / length);
            stone.ny[i] = static_cast<float>(x / length);
            stone.d[i] = static_cast<float>((edges[i][0].x * y - edges[i][0].y * x) / length);
            stone.light[i] = kEdgeLight * static_cast<float>((x - y) / length * 0.70710678);
        }
        return stone;
    }

    CSize size_;
    int columns_, rows_;
    std::vector<SPoint> points_;
    std::vector<SStone> stones_;
};

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
                            CStones& stones) {
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
            sum.Mean(stones.At(column, row).mean);
        }
    });
}

// One pixel of a stone, `x` and `y` its centre.
template <class Traits>
inline void PaintPixel(typename Traits::Sample* pixel, float x, float y, float wander,
                       const SStone& stone, const SLook& look) {
    float nearest = 1e9F, light = 0, corner = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const float inside = stone.nx[i] * x + stone.ny[i] * y + stone.d[i];
        light = inside < nearest ? stone.light[i] : light;
        nearest = std::min(nearest, inside);
        const float in_corner = std::max(look.radius - inside, 0.0F);
        corner += in_corner * in_corner;
    }
    const float grout = look.half_grout + look.wander * wander;
    const float cover = std::clamp(look.radius - std::sqrt(corner) - grout + 0.5F, 0.0F, 1.0F);
    const float worn = std::clamp(1.0F - (nearest - grout) * look.worn, 0.0F, 1.0F);
    const float shade = stone.tone * (1.0F + light * worn * worn);
    constexpr float kMaximum = static_cast<float>(Traits::kMaximum);
    for (int c = 0; c < Traits::kColourChannels; ++c) {
        const float sample = static_cast<float>(pixel[c]);
        const float colour =
            std::min((stone.mean[c] + kDetail * (sample - stone.mean[c])) * shade, kMaximum);
        const float mixed = look.mortar.colour[c] + cover * (colour - look.mortar.colour[c]);
        pixel[c] = static_cast<typename Traits::Sample>(static_cast<int>(mixed + 0.5F));
    }
}

template <class Traits>
CMDTEXTURE_MULTIVERSION void PaintSpan(typename Traits::Sample* row, int first, int last, int y,
                                       const float* wander, const SStone* stone,
                                       const SLook* look) {
    const SStone by = *stone;
    const SLook as = *look;
    for (int x = first; x < last; ++x) {
        PaintPixel<Traits>(row + x * Traits::kChannels, static_cast<float>(x) + 0.5F,
                           static_cast<float>(y) + 0.5F, wander[x], by, as);
    }
}

template <class Traits>
void PaintRows(const CRowIteratorBands& source, CRowIteratorBands& destination,
               const CStones& stones, const CWanderField& field, const SLook& look, int first,
               int last) {
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
                                  wander.data(), &stones.At(column, row), &look);
            }
        }
    }
}

}  // namespace

CErrorAutoThrow MakeAntiqueMosaic(CStatusControl* status, const CRowIteratorBands& source,
                                  CRowIteratorBands& destination, const SMosaicGrid& grid,
                                  double tile_diffusion, CRuntimeRandom& random) {
    const CSize size{source.GetWidth(), source.GetHeight()};
    const double cell = std::min(static_cast<double>(size.cx) / grid.columns,
                                 static_cast<double>(size.cy) / grid.rows);
    CStones stones(size, grid, tile_diffusion, random);
    const CWanderField field(random, std::max(cell / 3, 1.5), size.cx);
    const double half = std::min(grid.grout_width / 2, cell / 4);
    const auto f = [](double value) { return static_cast<float>(value); };
    const SLook look{f(half), f(grid.grout_diffusion * std::min(half * 0.9, cell * 0.14)),
                     f(std::min(cell * 0.3, 1 + 2 * half)), f(1 / std::max(cell * 0.14, 1.2)),
                     SMortar(destination.GetPixelFormat())};
    if (status) status->SetNumberOfSteps(2);
    return VisitPixelFormat(
        destination.GetPixelFormat(), CErrorAutoThrow(TolmErrorCode::UnusableInput),
        [&](auto traits) {
            using Traits = decltype(traits);
            CErrorAutoThrow result = FindColours<Traits>(status, source, stones);
            if (result.Failed()) return result;
            return ForEachRowBlock(status, size.cy, 16, [&](int first, int last) {
                PaintRows<Traits>(source, destination, stones, field, look, first, last);
            });
        });
}
