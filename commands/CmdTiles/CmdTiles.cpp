#include "commands/CmdTiles/CmdTiles.h"

#include "effects/Tiles.h"

namespace CmdTiles {
namespace {

enum EParameter {
    kAmbience,
    kAngle,
    kBorderSize,
    kColor,
    kDepth,
    kElevation,
    kIntensity,
    kShininess,
    kSmoothness,
    kTileAngularity,
    kTileShape,
    kTileSize
};

// The texts of the shapes 0, 1 and 2.
constexpr int kShapeNames[] = {2982, 2983, 2984};

constexpr SParameterRow kParameters[] = {
    parameter::Integer(kAmbience, L"Ambience", -100, 100, 0, 2958, 2959),
    parameter::Integer(kAngle, L"Angle", 0, 359, 315, 2960, 2961),
    parameter::ScaledInteger(kBorderSize, L"BorderSize", 1, 10, 1, 2962, 2963),
    parameter::Colour(kColor, L"Color", 0xFFFFFF, 2964, 2965),
    parameter::Integer(kDepth, L"Depth", 1, 100, 1, 2966, 2967),
    parameter::Integer(kElevation, L"Elevation", 1, 90, 30, 2968, 2969),
    parameter::Integer(kIntensity, L"Intensity", 1, 100, 50, 2970, 2971),
    parameter::Integer(kShininess, L"Shininess", 0, 100, 50, 2972, 2973),
    parameter::Integer(kSmoothness, L"Smoothness", 0, 100, 25, 2974, 2975),
    parameter::Integer(kTileAngularity, L"TileAngularity", 0, 100, 75, 2976, 2977),
    parameter::Member(kTileShape, L"TileShape", L"TileShape", 2, 2978, 2979, kShapeNames),
    parameter::ScaledInteger(kTileSize, L"TileSize", 8, 32, 15, 2980, 2981),
};

constexpr SControlRow kControls[] = {
    control::Number(2957, kAmbience),
    control::Number(2961, kAngle),
    control::Number(2954, kBorderSize),
    control::Number(2956, kDepth),
    control::Number(2963, kElevation),
    control::Number(2962, kIntensity),
    control::Number(2958, kShininess),
    control::Number(2959, kSmoothness),
    control::Number(2953, kTileAngularity),
    control::Number(2955, kTileSize),
    control::Dial(2960, kAngle),
    control::Swatch(2964, kColor),
    control::List(2952, kTileShape).With(EExchange::Control),
};

constexpr SReliefIndices kRelief{.ambience = kAmbience,
                                 .angle = kAngle,
                                 .color = kColor,
                                 .depth = kDepth,
                                 .elevation = kElevation,
                                 .intensity = kIntensity,
                                 .shininess = kShininess,
                                 .smoothness = kSmoothness};

}  // namespace

const SMemberListTable kDialog{
    {.template_id = 2982, .controls = kControls, .dials_report_as_fields = true}, kShapeNames};

const SCommandDescription kDescription{
    L"Tiles",     MakeGuid("73CE50B7-5663-4E3F-8FC0-F9D168447C5B"),
    36025,        TextsFrom(2951),
    kind::kTiles, kParameters};

CErrorAutoThrow CCmdTiles::Apply(const SRun& run, const CParameterReader& read) {
    CTilesSettings settings;
    ReadRelief(read, kRelief, settings);
    settings.tileShape = read.Member(kTileShape, 2);
    settings.tileAngularity = read.Integer(kTileAngularity, 31);
    settings.tileSize = read.Integer(kTileSize, 7);
    settings.borderSize = read.Integer(kBorderSize, 13);
    return ApplyTiles(run.status, run.source, run.destination, settings);
}

// A tile's bevel and grout reach beyond the area that is asked about.
CErrorAutoThrow CCmdTiles::ModifyRect(CRect& rect) {
    constexpr int kMargin = 10;
    if (!rect.IsRectEmpty()) rect.InflateRect(kMargin, kMargin);
    return {};
}

bool CCmdTiles::SetValidateVector(CValidateVector& entries) {
    constexpr int kRequirement = 219;
    CCmdEffect::SetValidateVector(entries);
    PushValidateEnum(entries, kRequirement, false, false, false, false, 0);
    return true;
}

}  // namespace CmdTiles
