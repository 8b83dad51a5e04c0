#pragma once

#include <optional>
#include <vector>

#include "app/imagefile/encode/EncoderOutput.h"
#include "app/imagefile/encode/RowSource.h"
#include "app/imagefile/metadata/Metadata.h"

namespace imagefile {

// Writes a WebP file of 8-bit colour rows, with these chunks. Without a quality (0 to 100) it is
// lossless, and keeps the colour of transparent pixels, too.
void EncodeWebp(const CRowSource& rows, const std::vector<SChunk>& chunks,
                std::optional<int> quality, const SEncoderOutput& output);

}  // namespace imagefile
