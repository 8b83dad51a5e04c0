#pragma once

enum class ETileShape { Triangle = 0, Square = 1, Hexagon = 2 };

// A point's place in its tile: the distance to the tile's outline, positive inside, and by how much
// it grows to the right and downwards. Toward a corner it grows slower.
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
    // 0 (sharp corners) to 1 (circles). `softness` is how soon the lines of one distance become
    // circles on their way to the middle: from 0 (they keep the outline's shape, so that sharp
    // corners make creases) to 1. Above 0 the distance has no creases.
    CTileGrid(ETileShape shape, int size, int gap, double roundness, double softness);

    // The tiling repeats after so many pixels.
    int PeriodX() const { return pitch_; }
    int PeriodY() const { return shape_ == ETileShape::Square ? pitch_ : 2 * row_; }
    // The distance from a tile's outline to its middle; at least a little above 0.
    double Inradius() const { return inradius_; }
    STilePlace PlaceOf(double x, double y) const;

  private:
    struct SPoint {
        double x = 0, y = 0;
    };
    SPoint FromMiddle(double x, double y, bool& turned) const;
    SPoint FromHexagon(double x, double y) const;
    SPoint FromTriangle(double x, double y, bool& turned) const;
    STilePlace InHalfEdge(double across, double along) const;

    ETileShape shape_;
    int pitch_;       // between the middles of neighbours in a row
    int row_;         // between rows
    double stretch_;  // of what is regular, upright, to fit the rows
    double inradius_ = 0;
    double straight_ = 0;  // inradius of the outline without its corners' radius
    double half_edge_ = 0;
    double softness_;
};
