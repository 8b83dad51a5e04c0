#pragma once

#include "host/graphics/CImageOp.h"

// Mosaics: the picture cut into a grid of columns by rows of tiles. What is irregular about them is
// drawn from the calling thread's CRuntimeRandom when the operation runs, always the same count in
// the same order, so that the same seed gives the same picture. Alpha stays as it is.
class HOST_API CIoDeformation : public CImageOp {
  public:
    enum class EResample { Nearest = 0, Bilinear = 1, Bicubic = 2 };
    enum class EEdge { Wrap = 0, Repeat = 1 };

    // How glass reads the picture between its pixels, and beyond its edge: by the outer sample
    // (Repeat) or the opposite side. Unknown numbers choose Bicubic and Repeat.
    void SetResampleMode(int mode);
    void SetEdgeMode(int mode);

    // Irregular stones, each of nearly one colour. `groutWidth` in pixels; `groutDiffusion` is how
    // far the grout's edges wander and `tileDiffusion` how far the stones are out of place, both 0
    // to 100. False, and no effect is chosen, for a count below 1 or a number that is not finite.
    bool MosaicAdvanced(int columns, int rows, double groutWidth, double groutDiffusion,
                        double tileDiffusion);
    // Glass tiles: lenses over the picture. `glassCurvature` bends what is seen through them,
    // `edgeCurvature` rounds and shades their rim, both 0 to 100.
    bool Glasses(int columns, int rows, double groutWidth, double groutDiffusion,
                 double edgeCurvature, double glassCurvature);

    using CImageOp::operator();
    // As in CImageOp; also error 101 when no effect is chosen.
    CErrorAutoThrow operator()(CRowIteratorBands& destination,
                               const CRowIteratorBands& source) override;

  private:
    enum class EMethod { None, Antique, Glass };
    struct SGrid {
        int columns = 0, rows = 0;
        double grout_width = 0, grout_diffusion = 0;
    };
    bool Choose(EMethod method, const SGrid& grid, double first, double second);

    EMethod method_ = EMethod::None;
    SGrid grid_;
    double tile_diffusion_ = 0;
    double edge_curvature_ = 0, glass_curvature_ = 0;
    EResample resample_ = EResample::Bicubic;
    EEdge edge_ = EEdge::Repeat;
};
