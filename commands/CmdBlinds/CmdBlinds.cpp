#include "commands/CmdBlinds/CmdBlinds.h"

#include "effects/Blinds.h"

namespace CmdBlinds {
namespace {

enum EParameter { kWidth, kOpacity, kHorizontal, kLightFromLeftTop, kColor };

constexpr SParameterRow kParameters[] = {
    parameter::CanvasInteger(kWidth, L"Width", 2, 20, 205, 210),
    parameter::Integer(kOpacity, L"Opacity", 1, 100, 100, 206, 211),
    parameter::Boolean(kHorizontal, L"Horizontal", true, 207, 212),
    parameter::Boolean(kLightFromLeftTop, L"LightFromLeftTop", true, 208, 213),
    parameter::Colour(kColor, L"Color", 0x000000, 209, 214),
};

constexpr SControlRow kControls[] = {
    control::CanvasNumber(1011, kWidth),
    control::Number(1094, kOpacity).With(EExchange::Text),
    control::Check(1213, kLightFromLeftTop).With(EExchange::Control),
    control::Check(1212, kHorizontal).With(EExchange::Control),
    control::Swatch(1571, kColor),
};

}  // namespace

const SDialogTable kDialog{.template_id = 207,
                           .controls = kControls,
                           .numbers = {.first = 100, .second = 3, .third = 500}};

const SCommandDescription kDescription{L"Blinds",
                                       MakeGuid("4AEE87D5-19F6-4815-AA5E-F23631522E33"),
                                       36001,
                                       {.text_a = 201,
                                        .text_id = 216,
                                        .name = 202,
                                        .three_part = 203,
                                        .text_c = 215,
                                        .text_b = 204,
                                        .image_id = 205},
                                       kind::kBlinds,
                                       kParameters};

CErrorAutoThrow CCmdBlinds::Apply(const SRun& run, const CParameterReader& read) {
    return ApplyBlinds(run.status, run.source, run.destination, read.Integer(kWidth, 0),
                       read.Integer(kOpacity, 0), read.Boolean(kHorizontal, false),
                       read.Boolean(kLightFromLeftTop, false), read.Colour(kColor, 0),
                       CanvasHeight(run.context, run.source));
}

}  // namespace CmdBlinds
