#include "commands/CmdFur/CmdFur.h"

#include <algorithm>

#include "engine/Materials.h"

namespace CmdFur {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"Blur", EParameterKind::Integer, 0, 100, 25, 1958, 1959},
    {1, L"Density", EParameterKind::Integer, 1, 100, 90, 1960, 1961, EMaximumRule::Scaled},
    {2, L"Length", EParameterKind::Integer, 1, 100, 11, 1962, 1963},
    {3, L"Transparency", EParameterKind::Integer, 0, 255, 44, 1964, 1965},
};

}  // namespace

const SCommandDescription kDescription{L"Fur",
                                       MakeGuid("B592387B-8BED-41B8-9E4C-80588D0A2A9B"),
                                       36005,
                                       {.textA = 1951,
                                        .textId = 1952,
                                        .name = 1953,
                                        .threePart = 1955,
                                        .textC = 1954,
                                        .textB = 1956,
                                        .imageId = 1957},
                                       {9, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}, {29, 0}},
                                       kParameters};

CErrorAutoThrow CCmdFur::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                     CRowIteratorBands& destination, const CRowIterator* /*mask*/,
                                     const SHostArguments& /*arguments*/,
                                     ICommandExecutionContext* context) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        return ApplyFur(*status, source, destination, parameters.Integer(0, 40),
                        std::min(DensityFor(context, source, parameters.Integer(1, 40)), 100),
                        parameters.Integer(2, 4), parameters.Integer(3, 250));
    });
}

}  // namespace CmdFur
