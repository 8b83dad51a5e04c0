#include "commands/CmdWeave/CmdWeave.h"

#include "effects/Weave.h"

namespace CmdWeave {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"FillGaps", EParameterKind::Boolean, 0, 0, 1, 557, 564},
    {1, L"GapColor", EParameterKind::Colour, 0, 0, 0x000000, 559, 565},
    {2, L"WeaveColor", EParameterKind::Colour, 0, 0, 0x000000, 560, 566},
    {3, L"WeaveWidth", EParameterKind::Integer, 1, 0, 75, 562, 567, EMaximumRule::CanvasSide, true},
    {4, L"GapWidth", EParameterKind::Integer, 1, 0, 25, 570, 568, EMaximumRule::CanvasSide, true},
    {5, L"Opacity", EParameterKind::Integer, 1, 100, 100, 563, 569},
};

}  // namespace

const SCommandDescription kDescription{L"Weave",
                                       MakeGuid("F2EB6F66-1BFD-4368-BA17-A757345A12F6"),
                                       36027,
                                       {.textA = 551,
                                        .textId = 572,
                                        .name = 553,
                                        .threePart = 554,
                                        .textC = 571,
                                        .textB = 555,
                                        .imageId = 556},
                                       {10, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}, {22, 1}},
                                       kParameters};

CErrorAutoThrow CCmdWeave::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                       CRowIteratorBands& destination, const CRowIterator* /*mask*/,
                                       const SHostArguments& /*arguments*/,
                                       ICommandExecutionContext* context) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        return ApplyWeave(status, source, destination, parameters.Integer(3, 0),
                          parameters.Integer(4, 0), parameters.Integer(5, 0),
                          parameters.Colour(2, 0), parameters.Colour(1, 0),
                          parameters.Boolean(0, false), CanvasHeight(context, source));
    });
}

}  // namespace CmdWeave
