#include "commands/CmdBlinds/CmdBlinds.h"

#include "effects/Blinds.h"

namespace CmdBlinds {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"Width", EParameterKind::Integer, 2, 0, 20, 205, 210, EMaximumRule::CanvasSide},
    {1, L"Opacity", EParameterKind::Integer, 1, 100, 100, 206, 211},
    {2, L"Horizontal", EParameterKind::Boolean, 0, 0, 1, 207, 212},
    {3, L"LightFromLeftTop", EParameterKind::Boolean, 0, 0, 1, 208, 213},
    {4, L"Color", EParameterKind::Colour, 0, 0, 0x000000, 209, 214},
};

}  // namespace

const SCommandDescription kDescription{L"Blinds",
                                       MakeGuid("4AEE87D5-19F6-4815-AA5E-F23631522E33"),
                                       36001,
                                       {.textA = 201,
                                        .textId = 216,
                                        .name = 202,
                                        .threePart = 203,
                                        .textC = 215,
                                        .textB = 204,
                                        .imageId = 205},
                                       {9, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}, {22, 1}},
                                       kParameters};

CErrorAutoThrow CCmdBlinds::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                        CRowIteratorBands& destination,
                                        const CRowIterator* /*mask*/,
                                        const SHostArguments& /*arguments*/,
                                        ICommandExecutionContext* context) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        return ApplyBlinds(status, source, destination, parameters.Integer(0, 0),
                           parameters.Integer(1, 0), parameters.Boolean(2, false),
                           parameters.Boolean(3, false), parameters.Colour(4, 0),
                           CanvasHeight(context, source));
    });
}

}  // namespace CmdBlinds
