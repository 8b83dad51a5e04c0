#include "commands/CmdRoughLeather/CmdRoughLeather.h"

#include "engine/Materials.h"

namespace CmdRoughLeather {
namespace {

enum EParameter { kAngle, kBlur, kContrast, kLeatherColor, kLightColor, kLuminance, kSharpness };

constexpr SParameterRow kParameters[] = {
    parameter::Integer(kAngle, L"Angle", 0, 359, 45, 2458, 2459),
    parameter::Integer(kBlur, L"Blur", 0, 100, 10, 2460, 2461),
    parameter::Integer(kContrast, L"Contrast", 0, 100, 5, 2462, 2463),
    parameter::Colour(kLeatherColor, L"LeatherColor", 0x000000, 2464, 2465),
    parameter::Colour(kLightColor, L"LightColor", 0xFFFFFF, 2466, 2467),
    parameter::Integer(kLuminance, L"Luminance", -255, 255, 135, 2468, 2469),
    parameter::Integer(kSharpness, L"Sharpness", 0, 100, 14, 2470, 2471),
};

constexpr SControlRow kControls[] = {
    control::Number(2456, kAngle),        control::Number(2455, kBlur),
    control::Number(2453, kContrast),     control::Number(2452, kLuminance),
    control::Number(2454, kSharpness),    control::Dial(2457, kAngle),
    control::Swatch(2459, kLeatherColor), control::Swatch(2458, kLightColor),
};

}  // namespace

const SDialogTable kDialog{.template_id = 2472, .controls = kControls};

const SCommandDescription kDescription{
    L"RoughLeather", MakeGuid("5150432B-74F7-41B0-AD7B-C291A5F8C169"),
    36013,           TextsFrom(2451),
    kind::kMaterial, kParameters};

CErrorAutoThrow CCmdRoughLeather::Apply(const SRun& run, const CParameterReader& read) {
    return ApplyRoughLeather(*run.status, run.source, run.destination, read.Integer(kAngle, 45),
                             read.Integer(kBlur, 10), read.Integer(kSharpness, 14),
                             read.Integer(kContrast, 5), read.Integer(kLuminance, 135),
                             read.Colour(kLightColor, 0xFFFFFF), read.Colour(kLeatherColor, 0));
}

}  // namespace CmdRoughLeather
