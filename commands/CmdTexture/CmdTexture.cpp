#include "commands/CmdTexture/CmdTexture.h"

#include "commands/ResourceImages.h"
#include "effects/Texture.h"

namespace CmdTexture {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"Ambience", EParameterKind::Integer, -100, 100, 0, 3208, 3209},
    {1, L"Angle", EParameterKind::Integer, 0, 359, 315, 3210, 3211},
    {2, L"Color", EParameterKind::Colour, 0, 0, 0xFFFFFF, 3212, 3213},
    {3, L"Depth", EParameterKind::Integer, 1, 100, 1, 3214, 3215},
    {4, L"Elevation", EParameterKind::Integer, 1, 90, 30, 3216, 3217},
    {5, L"Intensity", EParameterKind::Integer, 1, 100, 50, 3218, 3219},
    {6, L"Shininess", EParameterKind::Integer, 0, 100, 0, 3220, 3221},
    {7, L"Size", EParameterKind::Integer, 25, 400, 100, 3222, 3223, EMaximumRule::Scaled},
    {8, L"Smoothness", EParameterKind::Integer, 0, 100, 0, 3224, 3225},
    {9, L"TextureName", EParameterKind::String, 0, 0, 0, 3226, 3227, EMaximumRule::Fixed, false,
     0x8FE},
    {10, L"Category", EParameterKind::String, 0, 0, 0, 3207, 3227, EMaximumRule::Fixed, false,
     0x8FE},
    {11, L"TextureView", EParameterKind::ResourceListView, 0, 0, 1, 3228, 3229, EMaximumRule::Fixed,
     false, 0x8C0},
};

constexpr SReliefIndices kRelief{.ambience = 0,
                                 .angle = 1,
                                 .color = 2,
                                 .depth = 3,
                                 .elevation = 4,
                                 .intensity = 5,
                                 .shininess = 6,
                                 .smoothness = 8};

}  // namespace

const SCommandDescription kDescription{L"Texture",
                                       MakeGuid("ECA5A6D7-A415-458C-8AC6-FC852C29E6DA"),
                                       36023,
                                       {.textA = 3201,
                                        .textId = 3202,
                                        .name = 3203,
                                        .threePart = 3205,
                                        .textC = 3204,
                                        .textB = 3206,
                                        .imageId = 3207},
                                       {10, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}, {9, 0}},
                                       kParameters};

CErrorAutoThrow CCmdTexture::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                         CRowIteratorBands& destination,
                                         const CRowIterator* /*mask*/,
                                         const SHostArguments& /*arguments*/,
                                         ICommandExecutionContext* context) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        context_ = context;
        CBumpMapEffectSettings settings;
        ReadRelief(parameters, kRelief, settings);
        const CRowIteratorBands texture =
            LoadTextureImage(context_.Get(), parameters.Text(9), ColorSpec(context));
        return ApplyTexture(status, source, destination, texture, settings,
                            parameters.Integer(7, 100));
    });
}

// The effect reaches over the whole image: no part of it can be asked about alone.
CErrorAutoThrow CCmdTexture::ModifyRect(CRect& rect) {
    rect.SetRectEmpty();
    return {};
}

}  // namespace CmdTexture
