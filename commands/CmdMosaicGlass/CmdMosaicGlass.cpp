#include "commands/CmdMosaicGlass/CmdMosaicGlass.h"

#include "effects/Mosaic.h"

namespace CmdMosaicGlass {
namespace {

enum EParameter {
    kNumRows,
    kNumColumns,
    kGroutWidth,
    kSymmetric,
    kGroutDiffusion,
    kGlassCurvature,
    kEdgeCurvature,
    kFillColor
};

constexpr SParameterRow kParameters[] = {
    parameter::Integer(kNumRows, L"NumRows", 25, 100, 50, 957, 958),
    parameter::Integer(kNumColumns, L"NumColumns", 25, 100, 50, 959, 960),
    parameter::Integer(kGroutWidth, L"GroutWidth", 0, 10, 2, 961, 962),
    parameter::Boolean(kSymmetric, L"Symmetric", true, 963, 964),
    parameter::Integer(kGroutDiffusion, L"GroutDiffusion", 0, 100, 50, 965, 966),
    parameter::Integer(kGlassCurvature, L"GlassCurvature", 0, 100, 50, 967, 968),
    parameter::Integer(kEdgeCurvature, L"EdgeCurvature", 0, 100, 0, 969, 970),
    parameter::Colour(kFillColor, L"FillColor", 0x000000, 973, 974),
};

constexpr SControlRow kControls[] = {
    control::Number(952, kEdgeCurvature, ETip::Real),
    control::Number(953, kGlassCurvature, ETip::Real),
    control::Number(954, kGroutDiffusion, ETip::Real),
    control::Number(955, kGroutWidth),
    control::Number(956, kNumColumns),
    control::Number(957, kNumRows),
    control::Check(958, kSymmetric, ETip::Boolean).With(EExchange::Check),
    control::Swatch(960, kFillColor, ETip::Colour),
};

}  // namespace

const SMosaicTable kDialog{
    {.template_id = 971, .controls = kControls, .framework_messages = {WM_HSCROLL}},
    {.symmetric = kSymmetric, .rows = kNumRows, .columns = kNumColumns}};

const SCommandDescription kDescription{L"MosaicGlass",
                                       MakeGuid("E9EABC26-8FCF-4DD2-A784-00EB10F08B41"),
                                       36009,
                                       {.text_a = 951,
                                        .text_id = 952,
                                        .name = 953,
                                        .three_part = 954,
                                        .text_c = 972,
                                        .text_b = 955,
                                        .image_id = 956},
                                       kind::kMosaic,
                                       kParameters};

CErrorAutoThrow CCmdMosaicGlass::Apply(const SRun& run, const CParameterReader& read) {
    const auto glasses = [&](CIoDeformation& deformation) {
        deformation.Glasses(read.Integer(kNumColumns, 50), read.Integer(kNumRows, 50),
                            read.Integer(kGroutWidth, 2), read.Integer(kGroutDiffusion, 50),
                            read.Integer(kEdgeCurvature, 0), read.Integer(kGlassCurvature, 0));
    };
    return ApplyMosaic(run.status, glasses, run.source, run.destination, SourceIsTransparent(),
                       {read.Colour(kFillColor, 0)});
}

}  // namespace CmdMosaicGlass
