#include "commands/CmdFineLeather/CmdFineLeather.h"

#include "engine/Materials.h"

namespace CmdFineLeather {
namespace {

enum EParameter { kAngle, kBlur, kColor, kFurrowCount, kFurrowLength, kTransparency };

constexpr SParameterRow kParameters[] = {
    parameter::Integer(kAngle, L"Angle", 0, 359, 30, 1708, 1709),
    parameter::Integer(kBlur, L"Blur", 0, 100, 40, 1710, 1711),
    parameter::Colour(kColor, L"Color", 0xDCDCDC, 1712, 1713),
    parameter::ScaledInteger(kFurrowCount, L"FurrowCount", 1, 1000, 40, 1714, 1715),
    parameter::ScaledInteger(kFurrowLength, L"FurrowLength", 1, 10, 4, 1716, 1717),
    parameter::Integer(kTransparency, L"Transparency", 0, 255, 250, 1718, 1719),
};

constexpr SControlRow kControls[] = {
    control::Number(1705, kAngle),        control::Number(1704, kBlur),
    control::Number(1702, kFurrowCount),  control::Number(1703, kFurrowLength),
    control::Number(1706, kTransparency), control::Dial(1707, kAngle),
    control::Swatch(1709, kColor),
};

}  // namespace

const SDialogTable kDialog{.template_id = 1720, .controls = kControls};

const SCommandDescription kDescription{
    L"FineLeather",  MakeGuid("952F8357-E81A-49DB-A2CD-867914F3A08C"),
    36003,           TextsFrom(1701),
    kind::kMaterial, kParameters};

CErrorAutoThrow CCmdFineLeather::Apply(const SRun& run, const CParameterReader& read) {
    return ApplyFineLeather(*run.status, run.source, run.destination, read.Integer(kAngle, 30),
                            read.Integer(kBlur, 40), read.Integer(kFurrowCount, 40),
                            read.Integer(kFurrowLength, 4), read.Integer(kTransparency, 250),
                            read.Colour(kColor, 0));
}

}  // namespace CmdFineLeather
