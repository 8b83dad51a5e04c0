#include "commands/CmdSoftPlastic/CmdSoftPlastic.h"

#include "engine/Materials.h"

namespace CmdSoftPlastic {
namespace {

enum EParameter { kAngle, kBlur, kColor, kDensity, kDetail };

constexpr SParameterRow kParameters[] = {
    parameter::Integer(kAngle, L"Angle", 0, 359, 45, 1208, 1209),
    parameter::Integer(kBlur, L"Blur", 0, 100, 20, 1210, 1211),
    parameter::Colour(kColor, L"Color", 0xFFFFFF, 1212, 1213),
    parameter::Integer(kDensity, L"Density", 1, 128, 32, 1214, 1215),
    parameter::Integer(kDetail, L"Detail", 1, 100, 14, 1216, 1217),
};

constexpr SControlRow kControls[] = {
    control::Number(2105, kAngle, ETip::Range),
    control::Number(2100, kBlur, ETip::Range),
    control::Number(2102, kDensity, ETip::Range),
    control::Number(2101, kDetail, ETip::Range),
    control::Dial(2140, kAngle),
    control::Swatch(2120, kColor),
};

}  // namespace

const SDialogTable kDialog{.template_id = 1218, .controls = kControls};

const SCommandDescription kDescription{
    L"SoftPlastic",  MakeGuid("50882782-4CA9-4057-91EA-E38979F1DE86"),
    36019,           TextsFrom(1201),
    kind::kMaterial, kParameters};

CErrorAutoThrow CCmdSoftPlastic::Apply(const SRun& run, const CParameterReader& read) {
    return ApplySoftPlastic(*run.status, run.source, run.destination, read.Integer(kBlur, 20),
                            read.Integer(kDetail, 14), read.Integer(kDensity, 32),
                            read.Integer(kAngle, 45), read.Colour(kColor, 0));
}

}  // namespace CmdSoftPlastic
