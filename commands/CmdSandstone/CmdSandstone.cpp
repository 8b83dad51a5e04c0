#include "commands/CmdSandstone/CmdSandstone.h"

#include "engine/Materials.h"

namespace CmdSandstone {
namespace {

enum EParameter { kAngle, kBlur, kColor, kDetail, kLuminance };

constexpr SParameterRow kParameters[] = {
    parameter::Integer(kAngle, L"Angle", 0, 359, 45, 2708, 2709),
    parameter::Integer(kBlur, L"Blur", 0, 100, 20, 2710, 2711),
    parameter::Colour(kColor, L"Color", 0xFFFFFF, 2712, 2713),
    parameter::Integer(kDetail, L"Detail", 1, 256, 80, 2714, 2715),
    parameter::Integer(kLuminance, L"Luminance", 10, 20, 13, 2716, 2717),
};

constexpr SControlRow kControls[] = {
    control::Number(2704, kAngle),     control::Number(2702, kBlur), control::Number(2703, kDetail),
    control::Number(2705, kLuminance), control::Dial(2706, kAngle),  control::Swatch(2707, kColor),
};

}  // namespace

const SDialogTable kDialog{
    .template_id = 2718, .controls = kControls, .dials_report_as_fields = true};

const SCommandDescription kDescription{
    L"Sandstone",    MakeGuid("54FADC24-EBAA-4FB0-9324-BFA0F1D1AA93"),
    36015,           TextsFrom(2701),
    kind::kMaterial, kParameters};

CErrorAutoThrow CCmdSandstone::Apply(const SRun& run, const CParameterReader& read) {
    return ApplySandstone(*run.status, run.source, run.destination, read.Integer(kAngle, 45),
                          read.Integer(kBlur, 20), read.Integer(kDetail, 80),
                          read.Integer(kLuminance, 13), read.Colour(kColor, 0xFFFFFF));
}

}  // namespace CmdSandstone
