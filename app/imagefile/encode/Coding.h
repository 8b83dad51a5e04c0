#pragma once

#include <filesystem>
#include <optional>

#include "app/imagefile/CImageFile.h"
#include "app/imagefile/encode/EncodeJpeg.h"
#include "app/imagefile/encode/EncodeTiff.h"
#include "app/imagefile/metadata/Metadata.h"

namespace imagefile {

// How a file is coded: what the user asked for, else as the picture's own file was, else what was
// measured to serve best. Only the parts of the kind count.
struct SChosenCoding {
    int png_level = 0;  // 0 to 9
    SJpegCoding jpeg;
    ENTiffCompression tiff = ENTiffCompression::Lzw;
    std::optional<int> webp_quality;  // none is lossless
};

// `metadata` may be null. Options that the kind does not know are refused as usage.
SChosenCoding ChooseCoding(const std::filesystem::path& file, const SKind& kind,
                           const SWriteOptions& options, const SMetadata* metadata);

}  // namespace imagefile
