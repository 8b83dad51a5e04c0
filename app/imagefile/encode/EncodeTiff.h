#pragma once

#include "app/imagefile/encode/EncoderOutput.h"
#include "app/imagefile/encode/RowSource.h"
#include "app/imagefile/metadata/Metadata.h"

namespace imagefile {

// Ways to code the strips of a TIFF file, by the numbers of tag 259.
enum class ENTiffCompression : std::uint16_t { None = 1, Lzw = 5, Deflate = 8, Zstd = 50000 };

// Writes a TIFF file of the rows, with these metadata, in strips that all cores compress. The bytes
// are the same for any number of threads.
void EncodeTiff(const CRowSource& rows, const SMetadata& metadata, ENTiffCompression compression,
                const SEncoderOutput& output, CLosses& losses);

}  // namespace imagefile
