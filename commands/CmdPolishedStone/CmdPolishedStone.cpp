#include "commands/CmdPolishedStone/CmdPolishedStone.h"

#include "engine/Materials.h"

namespace CmdPolishedStone {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"Angle", EParameterKind::Integer, 0, 359, 45, 2208, 2209},
    {1, L"Blur", EParameterKind::Integer, 0, 100, 20, 2210, 2211},
    {2, L"Color", EParameterKind::Colour, 0, 0, 0xFFFFFF, 2212, 2213},
    {3, L"Detail", EParameterKind::Integer, 1, 256, 145, 2214, 2215},
    {4, L"Polishing", EParameterKind::Integer, 10, 20, 15, 2216, 2217},
};

}  // namespace

const SCommandDescription kDescription{L"PolishedStone",
                                       MakeGuid("1039E752-D879-4F3B-88EA-D71CEEF43339"),
                                       36011,
                                       {.textA = 2201,
                                        .textId = 2202,
                                        .name = 2203,
                                        .threePart = 2205,
                                        .textC = 2204,
                                        .textB = 2206,
                                        .imageId = 2207},
                                       {9, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}, {29, 0}},
                                       kParameters};

CErrorAutoThrow CCmdPolishedStone::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                               CRowIteratorBands& destination,
                                               const CRowIterator* /*mask*/,
                                               const SHostArguments& /*arguments*/,
                                               ICommandExecutionContext* /*context*/) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        return ApplyPolishedStone(*status, source, destination, parameters.Integer(1, 20),
                                  parameters.Integer(3, 145), parameters.Integer(4, 15),
                                  parameters.Integer(0, 45), parameters.Colour(2, 0xFFFFFF));
    });
}

}  // namespace CmdPolishedStone
