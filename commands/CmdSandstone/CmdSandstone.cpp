#include "commands/CmdSandstone/CmdSandstone.h"

#include "engine/Materials.h"

namespace CmdSandstone {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"Angle", EParameterKind::Integer, 0, 359, 45, 2708, 2709},
    {1, L"Blur", EParameterKind::Integer, 0, 100, 20, 2710, 2711},
    {2, L"Color", EParameterKind::Colour, 0, 0, 0xFFFFFF, 2712, 2713},
    {3, L"Detail", EParameterKind::Integer, 1, 256, 80, 2714, 2715},
    {4, L"Luminance", EParameterKind::Integer, 10, 20, 13, 2716, 2717},
};

}  // namespace

const SCommandDescription kDescription{L"Sandstone",
                                       MakeGuid("54FADC24-EBAA-4FB0-9324-BFA0F1D1AA93"),
                                       36015,
                                       {.textA = 2701,
                                        .textId = 2702,
                                        .name = 2703,
                                        .threePart = 2705,
                                        .textC = 2704,
                                        .textB = 2706,
                                        .imageId = 2707},
                                       {9, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}, {29, 0}},
                                       kParameters};

CErrorAutoThrow CCmdSandstone::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                           CRowIteratorBands& destination,
                                           const CRowIterator* /*mask*/,
                                           const SHostArguments& /*arguments*/,
                                           ICommandExecutionContext* /*context*/) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        return ApplySandstone(*status, source, destination, parameters.Integer(0, 45),
                              parameters.Integer(1, 20), parameters.Integer(3, 80),
                              parameters.Integer(4, 13), parameters.Colour(2, 0xFFFFFF));
    });
}

}  // namespace CmdSandstone
