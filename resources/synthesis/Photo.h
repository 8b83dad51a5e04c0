#pragma once

#include "host/graphics/CRowIteratorBands.h"

// A pattern or a texture from a photograph of a material.
namespace synthesis {

constexpr int kSmallestPhoto = 64;  // pixels a side
constexpr int kLargestResource = 4096;

// What the material looks like: 8-bit colour, transparent parts on white. A photograph with longer
// sides than kLargestResource is reduced. `seamless` evens out its light and makes it tile, for
// which it loses up to two fifths of either side. Throws CNException: 101 for a picture smaller
// than kSmallestPhoto, 102 without memory.
CRowIteratorBands PatternOf(const CRowIteratorBands& photo, bool seamless);
// How high it is: 16-bit grey over the full range, white being high. The light is evened out and
// brightness taken for height.
CRowIteratorBands TextureOf(const CRowIteratorBands& photo, bool seamless);

}  // namespace synthesis
