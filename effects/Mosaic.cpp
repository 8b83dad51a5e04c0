#include "effects/Mosaic.h"

#include "host/core/RuntimeRandom.h"
#include "host/graphics/ImageHelpers.h"

namespace {

constexpr int kResampleMode = 2;
constexpr int kEdgeMode = 1;
constexpr unsigned kSeed = 1;
constexpr int kCompatibleMode = 2;

// The destination takes the source's alpha and the mosaic's colour.
CErrorAutoThrow Recombine(const CRowIteratorBands& source, const CRowIteratorBands& mosaic,
                          CRowIteratorBands& destination) {
    destination.CreateCompatible(source, kCompatibleMode).Ignore();
    CErrorAutoThrow error = RowIterator_CopyAlpha(destination, source);
    if (!error.Failed()) error = RowIterator_CopyColor(destination, mosaic);
    if (error.Failed()) destination.Destroy();
    return error;
}

}  // namespace

CErrorAutoThrow ApplyMosaic(CStatusControl* status,
                            const std::function<void(CIoDeformation&)>& choose,
                            const CRowIteratorBands& source, CRowIteratorBands& destination,
                            bool transparent, CColorRef fill_colour) {
    CRowIteratorBands input = source;
    if (transparent) {
        CRowIteratorBands flat;
        CErrorAutoThrow error =
            FlattenIteratorWithColor(source, flat, GetMask64KLUT(), fill_colour);
        if (error.Failed()) return error;
        input.Consume(flat);
    }
    CIoDeformation deformation;
    deformation.SetStatusControl(status);
    deformation.SetResampleMode(kResampleMode);
    deformation.SetEdgeMode(kEdgeMode);
    choose(deformation);
    CRuntimeRandom::OfThisThread().Seed(kSeed);
    CRowIteratorBands mosaic;
    CErrorAutoThrow error = deformation(CIoData(mosaic, input));
    input.Detach();
    if (error.Failed()) return error;
    if (transparent) return Recombine(source, mosaic, destination);
    destination.Consume(mosaic);
    return error;
}
