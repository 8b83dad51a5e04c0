#include "commands/CmdPolishedStone/CmdPolishedStone.h"

#include "engine/Materials.h"

namespace CmdPolishedStone {
namespace {

enum EParameter { kAngle, kBlur, kColor, kDetail, kPolishing };

constexpr SParameterRow kParameters[] = {
    parameter::Integer(kAngle, L"Angle", 0, 359, 45, 2208, 2209),
    parameter::Integer(kBlur, L"Blur", 0, 100, 20, 2210, 2211),
    parameter::Colour(kColor, L"Color", 0xFFFFFF, 2212, 2213),
    parameter::Integer(kDetail, L"Detail", 1, 256, 145, 2214, 2215),
    parameter::Integer(kPolishing, L"Polishing", 10, 20, 15, 2216, 2217),
};

constexpr SControlRow kControls[] = {
    control::Number(2203, kAngle),     control::Number(2202, kBlur), control::Number(2204, kDetail),
    control::Number(2205, kPolishing), control::Dial(2206, kAngle),  control::Swatch(2207, kColor),
};

}  // namespace

const SDialogTable kDialog{.template_id = 2218, .controls = kControls};

const SCommandDescription kDescription{L"PolishedStone",
                                       MakeGuid("1039E752-D879-4F3B-88EA-D71CEEF43339"),
                                       36011,
                                       TextsFrom(2201),
                                       kind::kMaterial,
                                       kParameters};

CErrorAutoThrow CCmdPolishedStone::Apply(const SRun& run, const CParameterReader& read) {
    return ApplyPolishedStone(*run.status, run.source, run.destination, read.Integer(kBlur, 20),
                              read.Integer(kDetail, 145), read.Integer(kPolishing, 15),
                              read.Integer(kAngle, 45), read.Colour(kColor, 0xFFFFFF));
}

}  // namespace CmdPolishedStone
