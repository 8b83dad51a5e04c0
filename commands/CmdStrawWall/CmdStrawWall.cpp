#include "commands/CmdStrawWall/CmdStrawWall.h"

#include <string>

#include "engine/Materials.h"

namespace CmdStrawWall {
namespace {

enum EParameter { kAngle, kBlur, kColor, kDensity, kLength, kTransparency, kWidth };

constexpr SParameterRow kParameters[] = {
    parameter::Integer(kAngle, L"Angle", 0, 359, 100, 1458, 1459),
    parameter::Integer(kBlur, L"Blur", 0, 100, 40, 1460, 1461),
    parameter::Colour(kColor, L"Color", 0x555555, 1462, 1463),
    parameter::Integer(kDensity, L"Density", 1, 100, 15, 1464, 1465),
    parameter::Integer(kLength, L"Length", 1, 20, 14, 1466, 1467),
    parameter::Integer(kTransparency, L"Transparency", 0, 255, 0, 1468, 1469),
    parameter::Integer(kWidth, L"Width", 1, 40, 1, 1470, 1471),
};

constexpr SControlRow kControls[] = {
    control::Number(2105, kAngle, ETip::Range),
    control::Number(2100, kBlur, ETip::Range),
    control::Number(2101, kDensity, ETip::Range),
    control::Number(2102, kLength, ETip::Range),
    control::Number(2104, kTransparency, ETip::Range),
    control::Number(2103, kWidth, ETip::Range),
    control::Dial(2140, kAngle),
    control::Swatch(2120, kColor),
};

}  // namespace

const SDialogTable kDialog{.template_id = 1472, .controls = kControls, .exchanges_data = false};

const SCommandDescription kDescription{
    L"StrawWall",    MakeGuid("7F695CF8-3354-4713-9961-9E1BBEB604D7"),
    36021,           TextsFrom(1451),
    kind::kMaterial, kParameters};

CErrorAutoThrow CCmdStrawWall::Apply(const SRun& run, const CParameterReader& read) {
    const int density = DensityFor(run.context, run.source, read.Integer(kDensity, 15));
    if (density > 100) {
        return {TolmErrorCode::UnusableInput,
                "Density comes to " + std::to_string(density) +
                    " on an image so much wider than its canvas; it may be 1 to 100"};
    }
    return ApplyStrawWall(*run.status, run.source, run.destination, read.Integer(kBlur, 40),
                          read.Integer(kLength, 14), read.Integer(kWidth, 1), density,
                          read.Integer(kAngle, 100), read.Integer(kTransparency, 0),
                          read.Colour(kColor, 0x555555));
}

}  // namespace CmdStrawWall
