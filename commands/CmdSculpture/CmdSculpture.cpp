#include "commands/CmdSculpture/CmdSculpture.h"

#include "commands/ResourceImages.h"
#include "effects/Sculpture.h"

namespace CmdSculpture {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"Ambience", EParameterKind::Integer, -100, 100, 0, 3458, 3459},
    {1, L"Angle", EParameterKind::Integer, 0, 360, 315, 3460, 3461},
    {2, L"Color", EParameterKind::Colour, 0, 0, 0xFFFFFF, 3462, 3463},
    {3, L"Depth", EParameterKind::Integer, 1, 100, 20, 3464, 3465},
    {4, L"Elevation", EParameterKind::Integer, 1, 90, 30, 3466, 3467},
    {5, L"Intensity", EParameterKind::Integer, 1, 100, 50, 3468, 3469},
    {7, L"Shininess", EParameterKind::Integer, 0, 100, 0, 3472, 3473},
    {8, L"Size", EParameterKind::Integer, 25, 400, 100, 3474, 3475},
    {9, L"Smoothness", EParameterKind::Integer, 0, 100, 0, 3476, 3477},
    {6, L"PatternName", EParameterKind::String, 0, 0, 0, 3470, 3471, EMaximumRule::Fixed, false,
     0x8FE},
    {10, L"Category", EParameterKind::String, 0, 0, 0, 3457, 3478, EMaximumRule::Fixed, false,
     0x8FE},
    {11, L"PatternView", EParameterKind::ResourceListView, 0, 0, 1, 3479, 3480, EMaximumRule::Fixed,
     false, 0x8C0},
};

constexpr SReliefIndices kRelief{.ambience = 0,
                                 .angle = 1,
                                 .color = 2,
                                 .depth = 3,
                                 .elevation = 4,
                                 .intensity = 5,
                                 .shininess = 7,
                                 .smoothness = 9};

}  // namespace

const SCommandDescription kDescription{L"Sculpture",
                                       MakeGuid("EDFEA454-7270-430D-8A3D-E0369CC87A37"),
                                       36017,
                                       {.textA = 3451,
                                        .textId = 3452,
                                        .name = 3453,
                                        .threePart = 3455,
                                        .textC = 3454,
                                        .textB = 3456,
                                        .imageId = 3457},
                                       {10, 12},
                                       {{1, 1}, {15, 1}, {2, 1}, {3, 0}, {9, 0}, {14, 1}},
                                       kParameters};

CErrorAutoThrow CCmdSculpture::Setup(ICommandExecutionContext* context) {
    context_ = context;
    return CCmdEffect::Setup(context);
}

CErrorAutoThrow CCmdSculpture::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                           CRowIteratorBands& destination, const CRowIterator* mask,
                                           const SHostArguments& /*arguments*/,
                                           ICommandExecutionContext* context) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        CSculptureSettings settings;
        ReadRelief(parameters, kRelief, settings);
        settings.size = parameters.Integer(8, 100);
        ICommandExecutionContext* held = context_ ? context_.Get() : context;
        const CRowIteratorBands pattern = LoadPatternImage(held, parameters.Text(6));
        return ApplySculpture(status, source, destination, mask, pattern, settings,
                              ColorSpec(context));
    });
}

// The effect reaches over the whole image: no part of it can be asked about alone.
CErrorAutoThrow CCmdSculpture::ModifyRect(CRect& rect) {
    rect.SetRectEmpty();
    return {};
}

}  // namespace CmdSculpture
