#include "commands/CmdTexture/CmdTexture.h"

#include "commands/ResourceImages.h"
#include "effects/Texture.h"

namespace CmdTexture {
namespace {

enum EParameter {
    kAmbience,
    kAngle,
    kColor,
    kDepth,
    kElevation,
    kIntensity,
    kShininess,
    kSize,
    kSmoothness,
    kTextureName,
    kCategory,
    kTextureView
};

constexpr SParameterRow kParameters[] = {
    parameter::Integer(kAmbience, L"Ambience", -100, 100, 0, 3208, 3209),
    parameter::Integer(kAngle, L"Angle", 0, 359, 315, 3210, 3211),
    parameter::Colour(kColor, L"Color", 0xFFFFFF, 3212, 3213),
    parameter::Integer(kDepth, L"Depth", 1, 100, 1, 3214, 3215),
    parameter::Integer(kElevation, L"Elevation", 1, 90, 30, 3216, 3217),
    parameter::Integer(kIntensity, L"Intensity", 1, 100, 50, 3218, 3219),
    parameter::Integer(kShininess, L"Shininess", 0, 100, 0, 3220, 3221),
    parameter::ScaledInteger(kSize, L"Size", 25, 400, 100, 3222, 3223),
    parameter::Integer(kSmoothness, L"Smoothness", 0, 100, 0, 3224, 3225),
    parameter::LibraryName(kTextureName, L"TextureName", 3226, 3227),
    parameter::LibraryName(kCategory, L"Category", 3207, 3227),
    parameter::LibraryView(kTextureView, L"TextureView", 1, 3228, 3229),
};

constexpr SControlRow kControls[] = {
    control::Number(3205, kAmbience),      control::Number(3207, kAngle),
    control::Number(3204, kDepth),         control::Number(3209, kElevation),
    control::Number(3208, kIntensity),     control::Number(3206, kShininess),
    control::Number(3202, kSize),          control::Number(3203, kSmoothness),
    control::Dial(3210, kAngle),           control::Swatch(3211, kColor),
    control::Resource(3212, kTextureName),
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
    {.template_id = 3228, .controls = kControls, .framework_messages = {WM_ERASEBKGND}},
    {.kind = L"Texture", .name = kTextureName, .category = kCategory, .view = kTextureView}};

const SCommandDescription kDescription{
    L"Texture",     MakeGuid("ECA5A6D7-A415-458C-8AC6-FC852C29E6DA"),
    36023,          TextsFrom(3201),
    kind::kTexture, kParameters};

CErrorAutoThrow CCmdTexture::Apply(const SRun& run, const CParameterReader& read) {
    context_ = run.context;
    CBumpMapEffectSettings settings;
    ReadRelief(read, kRelief, settings);
    const CRowIteratorBands texture =
        LoadTextureImage(context_.Get(), read.Text(kTextureName), ColorSpec(run.context));
    return ApplyTexture(run.status, run.source, run.destination, texture, settings,
                        read.Integer(kSize, 100));
}

}  // namespace CmdTexture
