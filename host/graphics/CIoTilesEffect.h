#pragma once

#include "host/graphics/CImageOp.h"
#include "host/graphics/SReliefSettings.h"

// Lit tiles with grout between them.
struct CTilesSettings : SReliefSettings {
    int tileShape = 2;        // 0 triangles, 1 squares, 2 hexagons
    int tileAngularity = 75;  // 0 round tiles to 100 sharp corners
    int tileSize = 15;        // width of a tile in pixels, 1 to 1024
    int borderSize = 1;       // width of the grout in pixels, 0 to 256
    int groutShade = 55;      // how much darker than the picture the grout is, in per cent
};

// Turns a picture into raised tiles of one shape. The tiling is anchored to the canvas: a part of a
// picture comes out as that part of the whole. Alpha stays as it is.
class HOST_API CIoTilesEffect : public CImageOp {
  public:
    explicit CIoTilesEffect(const CTilesSettings& settings) : settings_(settings) {}
    using CImageOp::operator();
    CErrorAutoThrow operator()(CRowIteratorBands& destination,
                               const CRowIteratorBands& source) override;

  private:
    CTilesSettings settings_;
};
