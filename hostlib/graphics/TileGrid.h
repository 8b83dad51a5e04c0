#pragma once

#include <array>

enum class ETileShape { Triangle = 0, Square = 1, Hexagon = 2 };

// A point's place in its tile: the distance to the tile's outline, positive inside, and the
// direction in which it grows.
struct STilePlace {
    double inside = 0;
    double grow_x = 0, grow_y = 0;
};

// A regular tiling of the plane by one shape, with rounded corners and gaps. Rows of tiles lie a
// whole number of pixels apart, so that all tiles look alike: hexagons and triangles are regular to
// within half a pixel. A corner of a square, or of the triangles' lattice, or the middle of a
// hexagon lies on (0, 0).
class CTileGrid {
  public:
    // `size` is the width of a tile and `gap` the distance between two, in pixels; `roundness` from
    // 0 (sharp corners) to 1 (circles).
    CTileGrid(ETileShape shape, int size, int gap, double roundness);

    // The tiling repeats after so many pixels.
    int PeriodX() const { return pitch_; }
    int PeriodY() const { return shape_ == ETileShape::Square ? pitch_ : 2 * row_; }
    // The distance from a tile's outline to its middle; at least a little above 0.
    double Inradius() const { return inradius_; }
    STilePlace PlaceOf(double x, double y) const;

  private:
    static constexpr int kMostCorners = 6;
    struct SPoint {
        double x = 0, y = 0;
    };
    // The convex core of a tile, about its middle: rounding adds `radius_` around it.
    struct SCore {
        int corners = 0;
        std::array<SPoint, kMostCorners> normals;      // outward, of the edge before each corner
        std::array<double, kMostCorners> distances{};  // of that edge from the middle
        std::array<SPoint, kMostCorners> points;       // where an edge meets the next
    };
    SPoint FromMiddle(double x, double y, bool& turned) const;
    SPoint FromHexagon(double x, double y) const;
    SPoint FromTriangle(double x, double y, bool& turned) const;
    void BuildCore(double gap, double roundness);

    ETileShape shape_;
    int pitch_;  // between the middles of neighbours in a row
    int row_;    // between rows
    double inradius_ = 0;
    double radius_ = 0;
    SCore core_;
};
