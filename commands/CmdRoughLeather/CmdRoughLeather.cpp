#include "commands/CmdRoughLeather/CmdRoughLeather.h"

#include "engine/Materials.h"

namespace CmdRoughLeather {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"Angle", EParameterKind::Integer, 0, 359, 45, 2458, 2459},
    {1, L"Blur", EParameterKind::Integer, 0, 100, 10, 2460, 2461},
    {2, L"Contrast", EParameterKind::Integer, 0, 100, 5, 2462, 2463},
    {3, L"LeatherColor", EParameterKind::Colour, 0, 0, 0x000000, 2464, 2465},
    {4, L"LightColor", EParameterKind::Colour, 0, 0, 0xFFFFFF, 2466, 2467},
    {5, L"Luminance", EParameterKind::Integer, -255, 255, 135, 2468, 2469},
    {6, L"Sharpness", EParameterKind::Integer, 0, 100, 14, 2470, 2471},
};

}  // namespace

const SCommandDescription kDescription{L"RoughLeather",
                                       MakeGuid("5150432B-74F7-41B0-AD7B-C291A5F8C169"),
                                       36013,
                                       {.textA = 2451,
                                        .textId = 2452,
                                        .name = 2453,
                                        .threePart = 2455,
                                        .textC = 2454,
                                        .textB = 2456,
                                        .imageId = 2457},
                                       {9, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}, {29, 0}},
                                       kParameters};

CErrorAutoThrow CCmdRoughLeather::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                              CRowIteratorBands& destination,
                                              const CRowIterator* /*mask*/,
                                              const SHostArguments& /*arguments*/,
                                              ICommandExecutionContext* /*context*/) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        return ApplyRoughLeather(*status, source, destination, parameters.Integer(0, 45),
                                 parameters.Integer(1, 10), parameters.Integer(6, 14),
                                 parameters.Integer(2, 5), parameters.Integer(5, 135),
                                 parameters.Colour(4, 0xFFFFFF), parameters.Colour(3, 0));
    });
}

}  // namespace CmdRoughLeather
