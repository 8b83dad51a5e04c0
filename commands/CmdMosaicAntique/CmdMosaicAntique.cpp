#include "commands/CmdMosaicAntique/CmdMosaicAntique.h"

#include "effects/Mosaic.h"

namespace CmdMosaicAntique {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"GroutWidth", EParameterKind::Integer, 0, 10, 2, 707, 708, EMaximumRule::Scaled},
    {1, L"TileDiffusion", EParameterKind::Integer, 0, 100, 70, 709, 710},
    {2, L"Symmetric", EParameterKind::Boolean, 0, 0, 1, 711, 712},
    {3, L"NumRows", EParameterKind::Integer, 25, 100, 50, 713, 714, EMaximumRule::Scaled},
    {4, L"NumColumns", EParameterKind::Integer, 25, 100, 50, 715, 716, EMaximumRule::Scaled},
    {5, L"GroutDiffusion", EParameterKind::Integer, 0, 100, 50, 717, 718},
    {6, L"FillColor", EParameterKind::Colour, 0, 0, 0x000000, 721, 722},
};

}  // namespace

const SCommandDescription kDescription{L"MosaicAntique",
                                       MakeGuid("C41015B1-3A32-4331-B25B-CAA8ACA427F6"),
                                       36007,
                                       {.textA = 701,
                                        .textId = 702,
                                        .name = 703,
                                        .threePart = 704,
                                        .textC = 720,
                                        .textB = 705,
                                        .imageId = 706},
                                       {8, 9, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}},
                                       kParameters};

CErrorAutoThrow CCmdMosaicAntique::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                               CRowIteratorBands& destination,
                                               const CRowIterator* /*mask*/,
                                               const SHostArguments& /*arguments*/,
                                               ICommandExecutionContext* /*context*/) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        const int grout_diffusion = parameters.Integer(5, 50);
        // Without diffusion there is no grout either.
        const int grout_width = grout_diffusion == 0 ? 0 : parameters.Integer(0, 2);
        const auto antique = [&](CIoDeformation& deformation) {
            deformation.MosaicAdvanced(parameters.Integer(4, 50), parameters.Integer(3, 50),
                                       grout_width, grout_diffusion, parameters.Integer(1, 70));
        };
        return ApplyMosaic(status, antique, source, destination, SourceIsTransparent(),
                           {parameters.Colour(6, 0)});
    });
}

// The effect reaches over the whole image: no part of it can be asked about alone.
CErrorAutoThrow CCmdMosaicAntique::ModifyRect(CRect& rect) {
    rect.SetRectEmpty();
    return {};
}

}  // namespace CmdMosaicAntique
