#include "hostlib/graphics/MosaicStones.h"

#include <algorithm>
#include <cmath>

namespace {

// The most that chance displaces a point of the grid, in cells: stones stay convex. Edges of the
// picture may move it farther.
constexpr double kFarthestByChance = 0.24;
constexpr double kFarthest = 0.45;
// Joints of an undisplaced grid run through the middle of pixels where a cell is a whole number of
// them: a thin one is then one sharp row, and not two pale ones.
constexpr double kHalfPixel = 0.5;
// An edge moves points that lie within this many cells, and step by step, nearer ones the more.
constexpr double kReach = 0.6;
constexpr int kSteps = 3;
// Twice the area of the smallest corner of a stone, in cells: what is left of it stays a stone.
constexpr double kNarrowest = 0.3;

}  // namespace

CMosaicStones::CMosaicStones(CSize size, const SMosaicGrid& grid, double diffusion,
                             CRuntimeRandom& random)
    : size_(size), columns_(grid.columns), rows_(grid.rows) {
    const auto displaced = [&](int at, int count, int length) {
        const double by = (random.Next() / 16383.5 - 1) * kFarthestByChance * diffusion;
        if (at == 0) return 0.0;
        if (at == count) return static_cast<double>(length);
        return (at + by) * length / count + kHalfPixel;
    };
    points_.reserve(Index(columns_ + 1, rows_, columns_ + 1));
    for (int row = 0; row <= rows_; ++row) {
        for (int column = 0; column <= columns_; ++column) {
            const double x = displaced(column, columns_, size.cx);
            points_.push_back({x, displaced(row, rows_, size.cy)});
        }
    }
}

SPlanePoint CMosaicStones::Held(int column, int row, SPlanePoint point) const {
    const auto held = [](double at, int index, int count, int length) {
        const double cell = static_cast<double>(length) / count;
        const double far = index == 0 || index == count ? 0 : kFarthest;
        return std::clamp(at, (index - far) * cell, (index + far) * cell);
    };
    return {held(point.x, column, columns_, size_.cx), held(point.y, row, rows_, size_.cy)};
}

// Whether all corners of a stone turn the same way, and widely enough.
bool CMosaicStones::IsSound(int column, int row) const {
    if (column < 0 || row < 0 || column >= columns_ || row >= rows_) return true;
    const std::array<SPlanePoint, 4> p = Corners(column, row);
    const double cell = static_cast<double>(size_.cx) / columns_ * size_.cy / rows_;
    const auto wide = [&](const SPlanePoint& a, const SPlanePoint& b, const SPlanePoint& c) {
        return (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x) >= kNarrowest * cell;
    };
    return wide(p[0], p[1], p[3]) && wide(p[1], p[3], p[2]) && wide(p[3], p[2], p[0]) &&
           wide(p[2], p[0], p[1]);
}

void CMosaicStones::Follow(const CPictureEdges& edges, double share) {
    const double reach =
        kReach * std::min(static_cast<double>(size_.cx) / columns_, double(size_.cy) / rows_);
    for (int row = 0; row <= rows_; ++row) {
        for (int column = 0; column <= columns_; ++column) {
            SPlanePoint& point = Point(column, row);
            const SPlanePoint from = point;
            SPlanePoint to = from;
            for (int step = 0; step < kSteps; ++step) {
                to = Held(column, row, edges.Pulled(to, reach));
            }
            for (int halvings = 0; halvings < 3; ++halvings) {
                const double part = std::ldexp(share, -halvings);
                point = {from.x + part * (to.x - from.x), from.y + part * (to.y - from.y)};
                if (IsSound(column - 1, row - 1) && IsSound(column, row - 1) &&
                    IsSound(column - 1, row) && IsSound(column, row)) {
                    break;
                }
                point = from;
            }
        }
    }
}

std::array<SPlanePoint, 4> CMosaicStones::Corners(int column, int row) const {
    const std::size_t top = Index(column, row, columns_ + 1);
    const std::size_t bottom = Index(column, row + 1, columns_ + 1);
    return {points_[top], points_[top + 1], points_[bottom], points_[bottom + 1]};
}

SPlanePoint CMosaicStones::MiddleOf(int column, int row) const {
    SPlanePoint sum;
    for (const SPlanePoint& p : Corners(column, row)) {
        sum.x += p.x / 4;
        sum.y += p.y / 4;
    }
    return sum;
}

SStoneOutline CMosaicStones::OutlineOf(int column, int row) const {
    const std::array<SPlanePoint, 4> p = Corners(column, row);
    const std::array<std::array<SPlanePoint, 2>, 4> edges{
        {{p[0], p[1]}, {p[1], p[3]}, {p[3], p[2]}, {p[2], p[0]}}};
    SStoneOutline outline;
    for (std::size_t i = 0; i < 4; ++i) {
        const SPlanePoint from = edges[i][0];
        const double x = edges[i][1].x - from.x, y = edges[i][1].y - from.y;
        const double length = std::max(std::sqrt(x * x + y * y), 1e-6);
        outline.nx[i] = static_cast<float>(-y / length);
        outline.ny[i] = static_cast<float>(x / length);
        outline.d[i] = static_cast<float>((from.x * y - from.y * x) / length);
    }
    return outline;
}

SSpan CMosaicStones::SpanOf(int column, int row, int y) const {
    const std::array<SPlanePoint, 4> p = Corners(column, row);
    const double centre = y + 0.5;
    double low = size_.cx, high = 0;
    const auto cross = [&](const SPlanePoint& from, const SPlanePoint& to) {
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

SSpan CMosaicStones::Reach(int row) const {
    const double cell = static_cast<double>(size_.cy) / rows_;
    return {std::max(static_cast<int>((row - kFarthest) * cell) - 1, 0),
            std::min(static_cast<int>((row + 1 + kFarthest) * cell) + 2, size_.cy)};
}
