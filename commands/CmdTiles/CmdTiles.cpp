#include "commands/CmdTiles/CmdTiles.h"

#include "effects/Tiles.h"

namespace CmdTiles {
namespace {

constexpr SParameterRow kParameters[] = {
    {0, L"Ambience", EParameterKind::Integer, -100, 100, 0, 2958, 2959},
    {1, L"Angle", EParameterKind::Integer, 0, 359, 315, 2960, 2961},
    {2, L"BorderSize", EParameterKind::Integer, 1, 10, 1, 2962, 2963, EMaximumRule::Scaled},
    {3, L"Color", EParameterKind::Colour, 0, 0, 0xFFFFFF, 2964, 2965},
    {4, L"Depth", EParameterKind::Integer, 1, 100, 1, 2966, 2967},
    {5, L"Elevation", EParameterKind::Integer, 1, 90, 30, 2968, 2969},
    {6, L"Intensity", EParameterKind::Integer, 1, 100, 50, 2970, 2971},
    {7, L"Shininess", EParameterKind::Integer, 0, 100, 50, 2972, 2973},
    {8, L"Smoothness", EParameterKind::Integer, 0, 100, 25, 2974, 2975},
    {9, L"TileAngularity", EParameterKind::Integer, 0, 100, 75, 2976, 2977},
    {10, L"TileShape", EParameterKind::TileShape, 0, 0, 2, 2978, 2979},
    {11, L"TileSize", EParameterKind::Integer, 8, 32, 15, 2980, 2981, EMaximumRule::Scaled},
};

constexpr SReliefIndices kRelief{.ambience = 0,
                                 .angle = 1,
                                 .color = 3,
                                 .depth = 4,
                                 .elevation = 5,
                                 .intensity = 6,
                                 .shininess = 7,
                                 .smoothness = 8};

}  // namespace

const SCommandDescription kDescription{L"Tiles",
                                       MakeGuid("73CE50B7-5663-4E3F-8FC0-F9D168447C5B"),
                                       36025,
                                       {.textA = 2951,
                                        .textId = 2952,
                                        .name = 2953,
                                        .threePart = 2955,
                                        .textC = 2954,
                                        .textB = 2956,
                                        .imageId = 2957},
                                       {8, 10, 12},
                                       {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}},
                                       kParameters};

CErrorAutoThrow CCmdTiles::ApplyEffect(CStatusControl* status, CRowIteratorBands& source,
                                       CRowIteratorBands& destination, const CRowIterator* /*mask*/,
                                       const SHostArguments& /*arguments*/,
                                       ICommandExecutionContext* /*context*/) {
    return CatchErrors([&] {
        const CParameterReader parameters(BoundRepository());
        CTilesSettings settings;
        ReadRelief(parameters, kRelief, settings);
        settings.tileShape = parameters.Member(10, 2);
        settings.tileAngularity = parameters.Integer(9, 31);
        settings.tileSize = parameters.Integer(11, 7);
        settings.borderSize = parameters.Integer(2, 13);
        return ApplyTiles(status, source, destination, settings);
    });
}

// A tile's bevel and grout reach beyond the area that is asked about.
CErrorAutoThrow CCmdTiles::ModifyRect(CRect& rect) {
    constexpr int kMargin = 10;
    if (!rect.IsRectEmpty()) rect.InflateRect(kMargin, kMargin);
    return {};
}

}  // namespace CmdTiles
