#pragma once

#include "module/CommandDescription.h"

// The flags and attributes that commands of one kind pass to the editor. What a number means to the
// editor is its own affair; here it counts which commands pass it. All set flag 12 and the
// attributes 1, 2, 3, 14 and 15; cutting into tiles adds flag 8; flag 9 or 10 tells two families
// apart; attribute 22 marks what is anchored to the canvas, 29 the materials, 9 what needs the
// resource library.
namespace kind {

inline constexpr int kDrawnFlags[] = {9, 12};
inline constexpr int kDrawnTilesFlags[] = {8, 9, 12};
inline constexpr int kLitFlags[] = {10, 12};
inline constexpr int kLitTilesFlags[] = {8, 10, 12};

using Attribute = std::pair<int, int>;  // number and value
inline constexpr Attribute kCanvasAttributes[] = {{1, 1},  {2, 1}, {15, 1},
                                                  {14, 1}, {3, 0}, {22, 1}};
inline constexpr Attribute kMaterialAttributes[] = {{1, 1},  {2, 1}, {15, 1},
                                                    {14, 1}, {3, 0}, {29, 0}};
inline constexpr Attribute kTilesAttributes[] = {{1, 1}, {2, 1}, {15, 1}, {14, 1}, {3, 0}};
inline constexpr Attribute kTextureAttributes[] = {{1, 1},  {2, 1}, {15, 1},
                                                   {14, 1}, {3, 0}, {9, 0}};
inline constexpr Attribute kSculptureAttributes[] = {{1, 1}, {15, 1}, {2, 1},
                                                     {3, 0}, {9, 0},  {14, 1}};

inline constexpr SCommandKind kBlinds{kDrawnFlags, kCanvasAttributes};
inline constexpr SCommandKind kMaterial{kDrawnFlags, kMaterialAttributes};
inline constexpr SCommandKind kMosaic{kDrawnTilesFlags, kTilesAttributes};
inline constexpr SCommandKind kSculpture{kLitFlags, kSculptureAttributes};
inline constexpr SCommandKind kTexture{kLitFlags, kTextureAttributes};
inline constexpr SCommandKind kTiles{kLitTilesFlags, kTilesAttributes};
inline constexpr SCommandKind kWeave{kLitFlags, kCanvasAttributes};

}  // namespace kind
