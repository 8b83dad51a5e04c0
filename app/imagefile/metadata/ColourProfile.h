#pragma once

#include <optional>

#include "app/imagefile/metadata/Metadata.h"

// What the colours of a picture mean, for files that tell it by ICC profiles alone.
namespace imagefile::colour {

// Whether these bytes are an ICC profile for grey pictures, or for those in red, green and blue.
bool IsProfileFor(CBytesView profile, bool is_grey);
// The profile of what the chunks gAMA, cHRM, sRGB and cICP of a PNG file say; empty when they say
// nothing, or nothing that a profile can hold.
CBytes FromPngChunks(const std::vector<SChunk>& chunks, bool is_grey);

}  // namespace imagefile::colour
