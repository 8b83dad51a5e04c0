#include "commands/CmdStrawWall/CmdStrawWall.h"

#include "engine/Materials.h"

namespace CmdStrawWall {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"Angle", EParameterKind::Integer, 0, 359, 100, 1458, 1459},
    {1, L"Blur", EParameterKind::Integer, 0, 100, 40, 1460, 1461},
    {2, L"Color", EParameterKind::Colour, 0, 0, 0x555555, 1462, 1463},
    {3, L"Density", EParameterKind::Integer, 1, 100, 15, 1464, 1465},
    {4, L"Length", EParameterKind::Integer, 1, 20, 14, 1466, 1467},
    {5, L"Transparency", EParameterKind::Integer, 0, 255, 0, 1468, 1469},
    {6, L"Width", EParameterKind::Integer, 1, 40, 1, 1470, 1471},
};

}  // namespace

const SCommandDescription kDescription{L"StrawWall",
                                       MakeGuid("7F695CF8-3354-4713-9961-9E1BBEB604D7"),
                                       36021,
                                       {.textA = 1451,
                                        .textId = 1452,
                                        .name = 1453,
                                        .threePart = 1455,
                                        .textC = 1454,
                                        .textB = 1456,
                                        .imageId = 1457},
                                       {9, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}, {29, 0}},
                                       kParameters};

CErrorAutoThrow CCmdStrawWall::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                           CRowIteratorBands& destination,
                                           const CRowIterator* /*mask*/,
                                           const SHostArguments& /*arguments*/,
                                           ICommandExecutionContext* context) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        return ApplyStrawWall(
            *status, source, destination, parameters.Integer(1, 40), parameters.Integer(4, 14),
            parameters.Integer(6, 1), DensityFor(context, source, parameters.Integer(3, 15)),
            parameters.Integer(0, 100), parameters.Integer(5, 0), parameters.Colour(2, 0x555555));
    });
}

}  // namespace CmdStrawWall
