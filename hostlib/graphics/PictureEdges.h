#pragma once

#include <vector>

#include "host/core/Geometry.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"

struct SPlanePoint {
    double x = 0, y = 0;
};

// Where a picture's brightness changes: its edges, seen at a coarse scale.
class CPictureEdges {
  public:
    // Compares the brightness of squares of about `spacing` pixels; pixels count by their alpha.
    // Throws what the run over the rows answers.
    CPictureEdges(CStatusControl* status, const CRowIteratorBands& picture, double spacing);

    // A point within about `reach` pixels of `from`, moved onto a strong edge there, or to where
    // several meet (Foerstner's point of least distance to all lines that the gradients say there
    // are); weak edges move it less, and none not at all.
    SPlanePoint Pulled(SPlanePoint from, double reach) const;

  private:
    struct SGradient {
        float x, y;
    };
    int columns_, rows_;
    double step_x_, step_y_;  // pixels of a square
    std::vector<SGradient> gradients_;
};
