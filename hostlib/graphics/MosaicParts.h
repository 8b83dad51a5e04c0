#pragma once

#include <vector>

#include "host/core/RuntimeRandom.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"

// What the two mosaics share, and the two themselves.

// The grid that a mosaic is asked for. Counts are at least 1; widths in pixels, shares 0 to 1.
struct SMosaicGrid {
    int columns = 1, rows = 1;
    double grout_width = 0;
    double grout_diffusion = 0;
};

// A smooth random field by which edges wander, -1 to 1: numbers drawn at the points of a lattice,
// blended between them. It repeats after kLattice points.
class CWanderField {
  public:
    // Draws kLattice * kLattice numbers. `spacing` of the lattice in pixels, `width` of a row.
    CWanderField(CRuntimeRandom& random, double spacing, int width);
    // The field at `pixels` columns of row `y`, from column `x`.
    void Row(int x, int y, float* values, int pixels) const;

  private:
    static constexpr int kLattice = 64;
    double spacing_;
    std::vector<float> lattice_;
    std::vector<int> point_;     // left of each column
    std::vector<float> across_;  // and how far the column is on the way to the next
};

// Both make `destination`, which is prepared: of the source's size and the format that it shows.
// All random numbers are drawn on the calling thread.
CErrorAutoThrow MakeAntiqueMosaic(CStatusControl* status, const CRowIteratorBands& source,
                                  CRowIteratorBands& destination, const SMosaicGrid& grid,
                                  double tile_diffusion, CRuntimeRandom& random);

struct SGlass {
    double curvature = 0;  // 0 to 1
    double rim = 0;        // 0 to 1
    int resample = 2;      // as EResample
    bool wrap = false;     // beyond the edge, the opposite side
};
CErrorAutoThrow MakeGlassMosaic(CStatusControl* status, const CRowIteratorBands& source,
                                CRowIteratorBands& destination, const SMosaicGrid& grid,
                                const SGlass& glass, CRuntimeRandom& random);
