#pragma once

#include <string>

#include "host/graphics/CRowIteratorBands.h"

namespace imagefile {

// A line of text as 8-bit grey coverage (white on black), in a sans-serif typeface about `height`
// pixels high; unattached when the machine has no typeface to draw it with.
CRowIteratorBands RenderText(const std::string& text, int height);

}  // namespace imagefile
