#include "commands/CmdMosaicAntique/CmdMosaicAntique.h"

#include "effects/Mosaic.h"

namespace CmdMosaicAntique {
namespace {

enum EParameter {
    kGroutWidth,
    kTileDiffusion,
    kSymmetric,
    kNumRows,
    kNumColumns,
    kGroutDiffusion,
    kFillColor
};

constexpr SParameterRow kParameters[] = {
    parameter::ScaledInteger(kGroutWidth, L"GroutWidth", 0, 10, 2, 707, 708),
    parameter::Integer(kTileDiffusion, L"TileDiffusion", 0, 100, 70, 709, 710),
    parameter::Boolean(kSymmetric, L"Symmetric", true, 711, 712),
    parameter::ScaledInteger(kNumRows, L"NumRows", 25, 100, 50, 713, 714),
    parameter::ScaledInteger(kNumColumns, L"NumColumns", 25, 100, 50, 715, 716),
    parameter::Integer(kGroutDiffusion, L"GroutDiffusion", 0, 100, 50, 717, 718),
    parameter::Colour(kFillColor, L"FillColor", 0x000000, 721, 722),
};

constexpr SControlRow kControls[] = {
    control::Number(702, kGroutDiffusion, ETip::Real),
    control::Number(703, kGroutWidth),
    control::Number(704, kNumColumns),
    control::Number(705, kNumRows),
    control::Number(707, kTileDiffusion, ETip::Real),
    control::Check(706, kSymmetric, ETip::Boolean).With(EExchange::Check),
    control::Swatch(708, kFillColor, ETip::Colour),
};

}  // namespace

const SMosaicTable kDialog{
    {.template_id = 719, .controls = kControls, .framework_messages = {WM_HSCROLL}},
    {.symmetric = kSymmetric, .rows = kNumRows, .columns = kNumColumns}};

const SCommandDescription kDescription{L"MosaicAntique",
                                       MakeGuid("C41015B1-3A32-4331-B25B-CAA8ACA427F6"),
                                       36007,
                                       {.text_a = 701,
                                        .text_id = 702,
                                        .name = 703,
                                        .three_part = 704,
                                        .text_c = 720,
                                        .text_b = 705,
                                        .image_id = 706},
                                       kind::kMosaic,
                                       kParameters};

CErrorAutoThrow CCmdMosaicAntique::Apply(const SRun& run, const CParameterReader& read) {
    const int grout_diffusion = read.Integer(kGroutDiffusion, 50);
    // Without diffusion there is no grout either.
    const int grout_width = grout_diffusion == 0 ? 0 : read.Integer(kGroutWidth, 2);
    const auto antique = [&](CIoDeformation& deformation) {
        deformation.MosaicAdvanced(read.Integer(kNumColumns, 50), read.Integer(kNumRows, 50),
                                   grout_width, grout_diffusion, read.Integer(kTileDiffusion, 70));
    };
    return ApplyMosaic(run.status, antique, run.source, run.destination, SourceIsTransparent(),
                       {read.Colour(kFillColor, 0)});
}

}  // namespace CmdMosaicAntique
