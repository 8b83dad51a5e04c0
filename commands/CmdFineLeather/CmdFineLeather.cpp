#include "commands/CmdFineLeather/CmdFineLeather.h"

#include "engine/Materials.h"

namespace CmdFineLeather {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"Angle", EParameterKind::Integer, 0, 359, 30, 1708, 1709},
    {1, L"Blur", EParameterKind::Integer, 0, 100, 40, 1710, 1711},
    {2, L"Color", EParameterKind::Colour, 0, 0, 0xDCDCDC, 1712, 1713},
    {3, L"FurrowCount", EParameterKind::Integer, 1, 1000, 40, 1714, 1715, EMaximumRule::Scaled},
    {4, L"FurrowLength", EParameterKind::Integer, 1, 10, 4, 1716, 1717, EMaximumRule::Scaled},
    {5, L"Transparency", EParameterKind::Integer, 0, 255, 250, 1718, 1719},
};

}  // namespace

const SCommandDescription kDescription{L"FineLeather",
                                       MakeGuid("952F8357-E81A-49DB-A2CD-867914F3A08C"),
                                       36003,
                                       {.textA = 1701,
                                        .textId = 1702,
                                        .name = 1703,
                                        .threePart = 1705,
                                        .textC = 1704,
                                        .textB = 1706,
                                        .imageId = 1707},
                                       {9, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}, {29, 0}},
                                       kParameters};

CErrorAutoThrow CCmdFineLeather::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                             CRowIteratorBands& destination,
                                             const CRowIterator* /*mask*/,
                                             const SHostArguments& /*arguments*/,
                                             ICommandExecutionContext* /*context*/) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        return ApplyFineLeather(*status, source, destination, parameters.Integer(0, 30),
                                parameters.Integer(1, 40), parameters.Integer(3, 40),
                                parameters.Integer(4, 4), parameters.Integer(5, 250),
                                parameters.Colour(2, 0));
    });
}

// The effect reaches over the whole image: no part of it can be asked about alone.
CErrorAutoThrow CCmdFineLeather::ModifyRect(CRect& rect) {
    rect.SetRectEmpty();
    return {};
}

}  // namespace CmdFineLeather
