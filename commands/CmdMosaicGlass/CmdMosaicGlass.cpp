#include "commands/CmdMosaicGlass/CmdMosaicGlass.h"

#include "effects/Mosaic.h"

namespace CmdMosaicGlass {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"NumRows", EParameterKind::Integer, 25, 100, 50, 957, 958},
    {1, L"NumColumns", EParameterKind::Integer, 25, 100, 50, 959, 960},
    {2, L"GroutWidth", EParameterKind::Integer, 0, 10, 2, 961, 962},
    {3, L"Symmetric", EParameterKind::Boolean, 0, 0, 1, 963, 964},
    {4, L"GroutDiffusion", EParameterKind::Integer, 0, 100, 50, 965, 966},
    {5, L"GlassCurvature", EParameterKind::Integer, 0, 100, 50, 967, 968},
    {6, L"EdgeCurvature", EParameterKind::Integer, 0, 100, 0, 969, 970},
    {7, L"FillColor", EParameterKind::Colour, 0, 0, 0x000000, 973, 974},
};

}  // namespace

const SCommandDescription kDescription{L"MosaicGlass",
                                       MakeGuid("E9EABC26-8FCF-4DD2-A784-00EB10F08B41"),
                                       36009,
                                       {.textA = 951,
                                        .textId = 952,
                                        .name = 953,
                                        .threePart = 954,
                                        .textC = 972,
                                        .textB = 955,
                                        .imageId = 956},
                                       {8, 9, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}},
                                       kParameters};

CErrorAutoThrow CCmdMosaicGlass::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                             CRowIteratorBands& destination,
                                             const CRowIterator* /*mask*/,
                                             const SHostArguments& /*arguments*/,
                                             ICommandExecutionContext* /*context*/) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        const auto glasses = [&](CIoDeformation& deformation) {
            deformation.Glasses(parameters.Integer(1, 50), parameters.Integer(0, 50),
                                parameters.Integer(2, 2), parameters.Integer(4, 50),
                                parameters.Integer(6, 0), parameters.Integer(5, 0));
        };
        return ApplyMosaic(status, glasses, source, destination, SourceIsTransparent(),
                           {parameters.Colour(7, 0)});
    });
}

// The effect reaches over the whole image: no part of it can be asked about alone.
CErrorAutoThrow CCmdMosaicGlass::ModifyRect(CRect& rect) {
    rect.SetRectEmpty();
    return {};
}

}  // namespace CmdMosaicGlass
