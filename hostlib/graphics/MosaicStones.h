#pragma once

#include <array>
#include <vector>

#include "host/core/Geometry.h"
#include "host/core/RuntimeRandom.h"
#include "hostlib/graphics/MosaicParts.h"
#include "hostlib/graphics/PictureEdges.h"

// A stone's outline as inward normals and distances: nx x + ny y + d is the distance inside.
struct SStoneOutline {
    std::array<float, 4> nx, ny, d;
};

// From a number on to the one before another.
struct SSpan {
    int first = 0, last = 0;
};

// The stones of a mosaic: convex quadrilaterals between the displaced points of a grid. A pixel
// belongs to the stone whose outline its centre lies in, found by the crossings of a row with the
// outlines; neighbours compute the crossings of their common edge alike, so no pixel is left out.
class CMosaicStones {
  public:
    // Draws two numbers for every point of the grid. `diffusion`, 0 to 1, is how far points are
    // displaced.
    CMosaicStones(CSize size, const SMosaicGrid& grid, double diffusion, CRuntimeRandom& random);

    // Moves points onto the picture's strong edges, as far as stones stay convex and not too
    // narrow. `share`, 0 to 1, is how much of the way.
    void Follow(const CPictureEdges& edges, double share);

    int Columns() const { return columns_; }
    int Rows() const { return rows_; }
    std::size_t Index(int column, int row) const { return Index(column, row, columns_); }
    SStoneOutline OutlineOf(int column, int row) const;
    SPlanePoint MiddleOf(int column, int row) const;
    // The columns of the picture's row y whose centres lie in a stone.
    SSpan SpanOf(int column, int row, int y) const;
    // The rows of the picture that a row of stones may reach.
    SSpan Reach(int row) const;

  private:
    static std::size_t Index(int column, int row, int columns) {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(column);
    }
    SPlanePoint& Point(int column, int row) { return points_[Index(column, row, columns_ + 1)]; }
    // Points on the picture's edge stay on it, and no point goes farther than kFarthest.
    SPlanePoint Held(int column, int row, SPlanePoint point) const;
    bool IsSound(int column, int row) const;
    // Upper left, upper right, lower left, lower right.
    std::array<SPlanePoint, 4> Corners(int column, int row) const;

    CSize size_;
    int columns_, rows_;
    std::vector<SPlanePoint> points_;
};
