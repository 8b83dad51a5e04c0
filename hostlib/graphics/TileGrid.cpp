#include "hostlib/graphics/TileGrid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr double kRowOfPitch = std::numbers::sqrt3 / 2;

double Fraction(double value) { return value - std::floor(value); }

}  // namespace

CTileGrid::CTileGrid(ETileShape shape, int size, int gap, double roundness) : shape_(shape) {
    // A gap takes half of its width from each edge, which shortens a triangle's side by more.
    const double pitch = shape == ETileShape::Triangle ? size + std::numbers::sqrt3 * gap
                                                       : static_cast<double>(size + gap);
    pitch_ = std::max(static_cast<int>(std::lround(pitch)), 1);
    row_ = std::max(static_cast<int>(std::lround(pitch * kRowOfPitch)), 1);
    BuildCore(gap, roundness);
}

void CTileGrid::BuildCore(double gap, double roundness) {
    const double half = pitch_ / 2.0;
    const double slanted = std::hypot(half, row_);
    const auto edge = [&](double x, double y, double distance) {
        const auto at = static_cast<std::size_t>(core_.corners++);
        core_.normals[at] = {x, y};
        core_.distances[at] = distance - gap / 2;
    };
    if (shape_ == ETileShape::Square) {
        for (const auto& n : {SPoint{1, 0}, {0, 1}, {-1, 0}, {0, -1}}) edge(n.x, n.y, half);
    } else if (shape_ == ETileShape::Hexagon) {
        const SPoint n{half / slanted, row_ / slanted};
        for (const auto& s : {SPoint{1, 0}, n, {-n.x, n.y}, {-1, 0}, {-n.x, -n.y}, {n.x, -n.y}}) {
            edge(s.x, s.y, s.y == 0 ? half : slanted / 2);
        }
    } else {
        // Its side is on top, its corner below; the middle is a third of the row's height down.
        const SPoint n{row_ / slanted, half / slanted};
        edge(0, -1, row_ / 3.0);
        edge(n.x, n.y, n.x * half - n.y * row_ / 3.0);
        edge(-n.x, n.y, n.x * half - n.y * row_ / 3.0);
    }
    inradius_ = std::max(
        *std::min_element(core_.distances.begin(), core_.distances.begin() + core_.corners), 0.05);
    radius_ = roundness * inradius_;
    const auto count = static_cast<std::size_t>(core_.corners);
    for (std::size_t i = 0; i < count; ++i) core_.distances[i] -= radius_;
    for (std::size_t i = 0; i < count; ++i) {
        const SPoint a = core_.normals[i], b = core_.normals[(i + 1) % count];
        const double da = core_.distances[i], db = core_.distances[(i + 1) % count];
        const double area = a.x * b.y - a.y * b.x;
        core_.points[i] = {(da * b.y - db * a.y) / area, (a.x * db - b.x * da) / area};
    }
}

CTileGrid::SPoint CTileGrid::FromHexagon(double x, double y) const {
    SPoint best;
    double nearest = std::numeric_limits<double>::max();
    const double first = std::floor(y / row_);
    for (const double row : {first, first + 1}) {
        const double shift = std::fmod(row, 2) == 0 ? 0 : pitch_ / 2.0;
        const double column = std::round((x - shift) / pitch_);
        const SPoint from{x - shift - column * pitch_, y - row * row_};
        const double distance = from.x * from.x + from.y * from.y;
        if (distance < nearest) {
            nearest = distance;
            best = from;
        }
    }
    return best;
}

// The lattice of corners is spanned by (pitch, 0) and (pitch / 2, row); each of its cells is one
// triangle with its side on top and one turned round.
CTileGrid::SPoint CTileGrid::FromTriangle(double x, double y, bool& turned) const {
    const double v = Fraction(y / row_);
    const double u = Fraction((x - std::floor(y / row_) * pitch_ / 2) / pitch_ - v / 2);
    turned = u + v > 1;
    const double middle = turned ? 2.0 / 3 : 1.0 / 3;
    const SPoint from{(u - middle + (v - middle) / 2) * pitch_, (v - middle) * row_};
    return turned ? SPoint{-from.x, -from.y} : from;
}

CTileGrid::SPoint CTileGrid::FromMiddle(double x, double y, bool& turned) const {
    if (shape_ == ETileShape::Hexagon) return FromHexagon(x, y);
    if (shape_ == ETileShape::Triangle) return FromTriangle(x, y, turned);
    return {(Fraction(x / pitch_) - 0.5) * pitch_, (Fraction(y / pitch_) - 0.5) * pitch_};
}

STilePlace CTileGrid::PlaceOf(double x, double y) const {
    bool turned = false;
    const SPoint p = FromMiddle(x, y, turned);
    const double sign = turned ? -1 : 1;
    const auto count = static_cast<std::size_t>(core_.corners);
    double outside = -std::numeric_limits<double>::max();
    std::size_t edge = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double beyond =
            core_.normals[i].x * p.x + core_.normals[i].y * p.y - core_.distances[i];
        if (beyond > outside) {
            outside = beyond;
            edge = i;
        }
    }
    const SPoint n = core_.normals[edge];
    if (outside <= 0 || radius_ == 0) {
        return {radius_ - outside, -sign * n.x, -sign * n.y};
    }
    // Outside the core: the distance to the nearest point of that edge, which is one of its corners
    // when the foot of the perpendicular lies beyond it.
    const SPoint from = core_.points[(edge + count - 1) % count], to = core_.points[edge];
    const SPoint along{to.x - from.x, to.y - from.y};
    const double length = along.x * along.x + along.y * along.y;
    const double at = (p.x - from.x) * along.x + (p.y - from.y) * along.y;
    const double share = length > 0 ? std::clamp(at / length, 0.0, 1.0) : 0.0;
    const SPoint off{p.x - from.x - share * along.x, p.y - from.y - share * along.y};
    const double distance = std::max(std::hypot(off.x, off.y), 1e-9);
    return {radius_ - distance, -sign * off.x / distance, -sign * off.y / distance};
}
