#include "commands/CmdFur/CmdFur.h"

#include <algorithm>

#include "engine/Materials.h"

namespace CmdFur {
namespace {

enum EParameter { kBlur, kDensity, kLength, kTransparency };

constexpr SParameterRow kParameters[] = {
    parameter::Integer(kBlur, L"Blur", 0, 100, 25, 1958, 1959),
    parameter::ScaledInteger(kDensity, L"Density", 1, 100, 90, 1960, 1961),
    parameter::Integer(kLength, L"Length", 1, 100, 11, 1962, 1963),
    parameter::Integer(kTransparency, L"Transparency", 0, 255, 44, 1964, 1965),
};

constexpr SControlRow kControls[] = {
    control::Number(1952, kBlur),
    control::Number(1953, kDensity),
    control::Number(1954, kLength),
    control::Number(1955, kTransparency),
};

}  // namespace

const SDialogTable kDialog{.template_id = 1966, .controls = kControls};

const SCommandDescription kDescription{
    L"Fur",          MakeGuid("B592387B-8BED-41B8-9E4C-80588D0A2A9B"),
    36005,           TextsFrom(1951),
    kind::kMaterial, kParameters};

CErrorAutoThrow CCmdFur::Apply(const SRun& run, const CParameterReader& read) {
    return ApplyFur(*run.status, run.source, run.destination, read.Integer(kBlur, 40),
                    std::min(DensityFor(run.context, run.source, read.Integer(kDensity, 40)), 100),
                    read.Integer(kLength, 4), read.Integer(kTransparency, 250));
}

}  // namespace CmdFur
