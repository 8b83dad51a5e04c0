#include "hostlib/graphics/TileGrid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <span>

namespace {

constexpr double kRowOfPitch = std::numbers::sqrt3 / 2;
constexpr int kIterations = 6;  // to far less than a thousandth of a pixel

double Fraction(double value) { return value - std::floor(value); }

// The directions out of a tile's edges. The triangle's side is on top.
struct SNormal {
    double x, y;
};
constexpr double kTall = std::numbers::sqrt3 / 2;
constexpr SNormal kTriangle[] = {{0, -1}, {kTall, 0.5}, {-kTall, 0.5}};
constexpr SNormal kSquare[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
constexpr SNormal kHexagon[] = {{1, 0},  {0.5, kTall},   {-0.5, kTall},
                                {-1, 0}, {-0.5, -kTall}, {0.5, -kTall}};
std::span<const SNormal> NormalsOf(ETileShape shape) {
    if (shape == ETileShape::Triangle) return kTriangle;
    if (shape == ETileShape::Square) return kSquare;
    return kHexagon;
}
// Half of an edge over its distance from the middle.
double HalfEdgeOf(ETileShape shape) {
    if (shape == ETileShape::Triangle) return std::numbers::sqrt3;
    return shape == ETileShape::Square ? 1 : std::numbers::inv_sqrt3;
}

}  // namespace

CTileGrid::CTileGrid(ETileShape shape, int size, int gap, double roundness, double softness)
    : shape_(shape), softness_(softness) {
    // A gap takes half of its width from each edge, which shortens a triangle's side by more.
    const double pitch = shape == ETileShape::Triangle ? size + std::numbers::sqrt3 * gap
                                                       : static_cast<double>(size + gap);
    pitch_ = std::max(static_cast<int>(std::lround(pitch)), 1);
    row_ = std::max(static_cast<int>(std::lround(pitch * kRowOfPitch)), 1);
    stretch_ = shape == ETileShape::Square ? 1 : row_ / (pitch_ * kRowOfPitch);
    const double half = shape == ETileShape::Triangle ? pitch_ * kRowOfPitch / 3 : pitch_ / 2.0;
    inradius_ = std::max(half - gap / 2.0, 0.05);
    straight_ = (1 - roundness) * inradius_;
    half_edge_ = HalfEdgeOf(shape);
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

// In half of the sector that belongs to an edge: `across` is the distance from the tile's middle
// toward the edge, `along` that from the edge's middle toward its end, which is not negative. The
// answer's growth is across and along, too.
//
// Seen from the middle, y = 1 is the outline and y = 0 the middle. The line of one y is a polygon
// of inradius m with a band of width inradius y - m around it, so that its corners have that
// radius: m falls like y where softness is 0, which leaves the outline's shape, and like the cube
// of y where it is 1, which soon leaves circles.
STilePlace CTileGrid::InHalfEdge(double across, double along) const {
    const double linear = straight_ * (1 - softness_), cubic = straight_ * softness_;
    const auto inner = [&](double y) { return y * (linear + cubic * y * y); };
    const double edge_y = across / inradius_;
    if (along <= half_edge_ * inner(edge_y)) return {inradius_ - across, -1, 0};

    // Beside the edge's straight part: the circle around the inner polygon's corner that goes
    // through the point, by Newton's method.
    double y = edge_y, nx = 0, ny = 0, rate = 1;
    for (int i = 0; i < kIterations; ++i) {
        const double m = inner(y), steep = linear + 3 * cubic * y * y;
        const double dx = across - m, dy = along - half_edge_ * m;
        const double distance = std::max(std::sqrt(dx * dx + dy * dy), 1e-9);
        nx = dx / distance;
        ny = dy / distance;
        rate = inradius_ + (nx + half_edge_ * ny - 1) * steep;
        y += (distance - (inradius_ * y - m)) / rate;
    }
    const double grow = -inradius_ / rate;
    return {inradius_ * (1 - y), grow * nx, grow * ny};
}

STilePlace CTileGrid::PlaceOf(double x, double y) const {
    bool turned = false;
    SPoint p = FromMiddle(x, y, turned);
    p.y /= stretch_;
    double across = -std::numeric_limits<double>::max();
    SNormal out{};
    for (const SNormal& normal : NormalsOf(shape_)) {
        const double at = normal.x * p.x + normal.y * p.y;
        if (at > across) {
            across = at;
            out = normal;
        }
    }
    const double along = out.x * p.y - out.y * p.x;
    const STilePlace place = InHalfEdge(across, std::abs(along));
    const double sign = turned ? -1 : 1, side = along < 0 ? -1 : 1;
    return {place.inside, sign * (out.x * place.grow_x - side * out.y * place.grow_y),
            sign * (out.y * place.grow_x + side * out.x * place.grow_y) / stretch_};
}
