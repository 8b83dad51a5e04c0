#include "host/graphics/CIoDeformation.h"

#include <algorithm>
#include <cmath>

#include "hostlib/graphics/MosaicParts.h"
#include "hostlib/graphics/RowSamples.h"

void CIoDeformation::SetResampleMode(int mode) {
    resample_ = mode == 0 || mode == 1 ? static_cast<EResample>(mode) : EResample::Bicubic;
}

void CIoDeformation::SetEdgeMode(int mode) { edge_ = mode == 0 ? EEdge::Wrap : EEdge::Repeat; }

bool CIoDeformation::Choose(EMethod method, const SGrid& grid, double first, double second) {
    const bool usable = grid.columns >= 1 && grid.rows >= 1 && std::isfinite(grid.grout_width) &&
                        std::isfinite(grid.grout_diffusion) && std::isfinite(first) &&
                        std::isfinite(second);
    method_ = usable ? method : EMethod::None;
    grid_ = grid;
    return usable;
}

bool CIoDeformation::MosaicAdvanced(int columns, int rows, double groutWidth, double groutDiffusion,
                                    double tileDiffusion) {
    tile_diffusion_ = tileDiffusion;
    return Choose(EMethod::Antique, {columns, rows, groutWidth, groutDiffusion}, tileDiffusion, 0);
}

bool CIoDeformation::Glasses(int columns, int rows, double groutWidth, double groutDiffusion,
                             double edgeCurvature, double glassCurvature) {
    edge_curvature_ = edgeCurvature;
    glass_curvature_ = glassCurvature;
    return Choose(EMethod::Glass, {columns, rows, groutWidth, groutDiffusion}, edgeCurvature,
                  glassCurvature);
}

CErrorAutoThrow CIoDeformation::operator()(CRowIteratorBands& destination,
                                           const CRowIteratorBands& source) {
    if (method_ == EMethod::None || !source.IsAttached()) return TolmErrorCode::UnusableInput;
    const CRowIteratorBands input = source;  // the destination may be the same object
    const auto share = [](double percent) { return std::clamp(percent / 100, 0.0, 1.0); };
    // Tiles are at least a pixel wide, and never all grout.
    const SMosaicGrid grid{
        std::min(grid_.columns, input.GetWidth()), std::min(grid_.rows, input.GetHeight()),
        std::clamp(grid_.grout_width, 0.0, 1000.0), share(grid_.grout_diffusion)};
    CRuntimeRandom& random = CRuntimeRandom::OfThisThread();
    return CatchErrors([&]() -> CErrorAutoThrow {
        PrepareDestination(destination, input).ThrowIfFailed();
        if (method_ == EMethod::Antique) {
            return MakeAntiqueMosaic(Status(), input, destination, grid, share(tile_diffusion_),
                                     random);
        }
        const SGlass glass{share(glass_curvature_), share(edge_curvature_),
                           static_cast<int>(resample_), edge_ == EEdge::Wrap};
        return MakeGlassMosaic(Status(), input, destination, grid, glass, random);
    });
}
