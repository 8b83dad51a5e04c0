#include "commands/CmdWeave/CmdWeave.h"

#include "effects/Weave.h"

namespace CmdWeave {
namespace {

enum EParameter { kFillGaps, kGapColor, kWeaveColor, kWeaveWidth, kGapWidth, kOpacity };

constexpr SParameterRow kParameters[] = {
    parameter::Boolean(kFillGaps, L"FillGaps", true, 557, 564),
    parameter::Colour(kGapColor, L"GapColor", 0x000000, 559, 565),
    parameter::Colour(kWeaveColor, L"WeaveColor", 0x000000, 560, 566),
    parameter::CanvasInteger(kWeaveWidth, L"WeaveWidth", 1, 75, 562, 567).FittingTheCanvas(),
    parameter::CanvasInteger(kGapWidth, L"GapWidth", 1, 25, 570, 568).FittingTheCanvas(),
    parameter::Integer(kOpacity, L"Opacity", 1, 100, 100, 563, 569),
};

constexpr int kGapColourSwatch = 1571;

constexpr SControlRow kControls[] = {
    control::CanvasNumber(1011, kWeaveWidth),
    control::CanvasNumber(1568, kGapWidth),
    control::Number(1094, kOpacity),
    control::Check(1569, kFillGaps).With(EExchange::Control),
    control::Swatch(1570, kWeaveColor),
    control::Swatch(kGapColourSwatch, kGapColor),
};

}  // namespace

const SGapColourTable kDialog{
    {.template_id = 561, .controls = kControls},
    {.fill_gaps = kFillGaps, .gap_color = kGapColor, .swatch = kGapColourSwatch, .label = 1598}};

const SCommandDescription kDescription{L"Weave",
                                       MakeGuid("F2EB6F66-1BFD-4368-BA17-A757345A12F6"),
                                       36027,
                                       {.text_a = 551,
                                        .text_id = 572,
                                        .name = 553,
                                        .three_part = 554,
                                        .text_c = 571,
                                        .text_b = 555,
                                        .image_id = 556},
                                       kind::kWeave,
                                       kParameters};

CErrorAutoThrow CCmdWeave::Apply(const SRun& run, const CParameterReader& read) {
    return ApplyWeave(run.status, run.source, run.destination, read.Integer(kWeaveWidth, 0),
                      read.Integer(kGapWidth, 0), read.Integer(kOpacity, 0),
                      read.Colour(kWeaveColor, 0), read.Colour(kGapColor, 0),
                      read.Boolean(kFillGaps, false), CanvasHeight(run.context, run.source));
}

}  // namespace CmdWeave
