#include "commands/CmdSculpture/CmdSculpture.h"

#include "commands/ResourceImages.h"
#include "effects/Sculpture.h"

namespace CmdSculpture {
namespace {

enum EParameter {
    kAmbience,
    kAngle,
    kColor,
    kDepth,
    kElevation,
    kIntensity,
    kPatternName,
    kShininess,
    kSize,
    kSmoothness,
    kCategory,
    kPatternView
};

constexpr SParameterRow kParameters[] = {
    parameter::Integer(kAmbience, L"Ambience", -100, 100, 0, 3458, 3459),
    parameter::Integer(kAngle, L"Angle", 0, 360, 315, 3460, 3461),
    parameter::Colour(kColor, L"Color", 0xFFFFFF, 3462, 3463),
    parameter::Integer(kDepth, L"Depth", 1, 100, 20, 3464, 3465),
    parameter::Integer(kElevation, L"Elevation", 1, 90, 30, 3466, 3467),
    parameter::Integer(kIntensity, L"Intensity", 1, 100, 50, 3468, 3469),
    parameter::Integer(kShininess, L"Shininess", 0, 100, 0, 3472, 3473),
    parameter::Integer(kSize, L"Size", 25, 400, 100, 3474, 3475),
    parameter::Integer(kSmoothness, L"Smoothness", 0, 100, 0, 3476, 3477),
    parameter::LibraryName(kPatternName, L"PatternName", 3470, 3471),
    parameter::LibraryName(kCategory, L"Category", 3457, 3478),
    parameter::LibraryView(kPatternView, L"PatternView", 1, 3479, 3480),
};

constexpr SControlRow kControls[] = {
    control::Number(3482, kAmbience),      control::Number(3484, kAngle),
    control::Number(3481, kDepth),         control::Number(3486, kElevation),
    control::Number(3485, kIntensity),     control::Number(3483, kShininess),
    control::Number(3479, kSize),          control::Number(3480, kSmoothness),
    control::Dial(3487, kAngle),           control::Swatch(3488, kColor),
    control::Resource(3489, kPatternName),
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

const SResourceTable kDialog{
    {.template_id = 3478, .controls = kControls, .framework_messages = {WM_ERASEBKGND}},
    {.kind = L"Pattern",
     .name = kPatternName,
     .category = kCategory,
     .view = kPatternView,
     .shown_name = 3490}};

const SCommandDescription kDescription{L"Sculpture",
                                       MakeGuid("EDFEA454-7270-430D-8A3D-E0369CC87A37"),
                                       36017,
                                       TextsFrom(3451),
                                       kind::kSculpture,
                                       kParameters};

CErrorAutoThrow CCmdSculpture::Setup(ICommandExecutionContext* context) {
    context_ = context;
    return CCmdEffect::Setup(context);
}

CErrorAutoThrow CCmdSculpture::Apply(const SRun& run, const CParameterReader& read) {
    CSculptureSettings settings;
    ReadRelief(read, kRelief, settings);
    settings.size = read.Integer(kSize, 100);
    ICommandExecutionContext* held = context_ ? context_.Get() : run.context;
    const CRowIteratorBands pattern = LoadPatternImage(held, read.Text(kPatternName));
    return ApplySculpture(run.status, run.source, run.destination, run.mask, pattern, settings,
                          ColorSpec(run.context));
}

}  // namespace CmdSculpture
