#include "commands/CmdSoftPlastic/CmdSoftPlastic.h"

#include "engine/Materials.h"

namespace CmdSoftPlastic {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"Angle", EParameterKind::Integer, 0, 359, 45, 1208, 1209},
    {1, L"Blur", EParameterKind::Integer, 0, 100, 20, 1210, 1211},
    {2, L"Color", EParameterKind::Colour, 0, 0, 0xFFFFFF, 1212, 1213},
    {3, L"Density", EParameterKind::Integer, 1, 128, 32, 1214, 1215},
    {4, L"Detail", EParameterKind::Integer, 1, 100, 14, 1216, 1217},
};

}  // namespace

const SCommandDescription kDescription{L"SoftPlastic",
                                       MakeGuid("50882782-4CA9-4057-91EA-E38979F1DE86"),
                                       36019,
                                       {.textA = 1201,
                                        .textId = 1202,
                                        .name = 1203,
                                        .threePart = 1205,
                                        .textC = 1204,
                                        .textB = 1206,
                                        .imageId = 1207},
                                       {9, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}, {29, 0}},
                                       kParameters};

CErrorAutoThrow CCmdSoftPlastic::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                             CRowIteratorBands& destination,
                                             const CRowIterator* /*mask*/,
                                             const SHostArguments& /*arguments*/,
                                             ICommandExecutionContext* /*context*/) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        return ApplySoftPlastic(*status, source, destination, parameters.Integer(1, 20),
                                parameters.Integer(4, 14), parameters.Integer(3, 32),
                                parameters.Integer(0, 45), parameters.Colour(2, 0));
    });
}

}  // namespace CmdSoftPlastic
