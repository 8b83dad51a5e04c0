#pragma once

#include <vector>

#include "app/imagefile/encode/EncoderOutput.h"
#include "app/imagefile/encode/RowSource.h"
#include "app/imagefile/metadata/Metadata.h"

namespace imagefile {

// Writes a PNG file of the rows, with these chunks around the pixels, in stripes that all cores
// compress; `level` is 0 to 9. The bytes are the same for any number of threads.
void EncodePng(const CRowSource& rows, const std::vector<SChunk>& chunks, int level,
               const SEncoderOutput& output);

}  // namespace imagefile
