#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "app/imagefile/CImageFileError.h"
#include "app/imagefile/COutputFile.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"

// Pictures in PNG, JPEG, TIFF and WebP files. Every failure is thrown as a CImageFileError. File
// names are names: no byte in them has a meaning of its own.
namespace imagefile {

// What travels with a picture besides its pixels (metadata/Metadata.h). Opaque and never changed;
// null is none.
struct SMetadata;
using CMetadata = std::shared_ptr<const SMetadata>;

inline constexpr int kMaxSide = 65535;
inline constexpr std::uint64_t kDefaultMaxPixels = 268402689;

struct SReadOptions {
    // Takes what can be had of a damaged file, with warnings; what is missing is zero.
    bool lenient = false;
    // Larger pictures are refused before they are decoded.
    std::uint64_t max_pixels = kDefaultMaxPixels;
    // Which page of a TIFF file, or which frame of an animation, from 1 on; 0 takes the only one.
    int page = 0;
    // Makes 8- or 16-bit grey or RGB of what is neither (CMYK, Lab, fractions), with a warning.
    bool convert = false;
};

struct SImageFile {
    CRowIteratorBands pixels;  // upright, at (0, 0)
    CMetadata metadata;
    std::string kind;                   // "PNG", "JPEG", "TIFF" or "WebP"
    std::vector<std::string> warnings;  // "FILE: what happened", one line each
};

// What a file's first bytes tell: enough to prepare for a picture that takes long to decode.
struct SImageHeader {
    CSize size;  // of the upright picture
    CNPixelFormat format;
};
SImageHeader ReadHeader(const std::filesystem::path& file, const SReadOptions& options = {});

// Reads a file, told by its content and not by its name. Grey and colour of 8 and 16 bits keep
// every sample, with and without alpha, which is straight; palettes and fewer bits become 8-bit
// grey or colour. Reports a row at a time to `status`, which may be null.
SImageFile ReadImage(const std::filesystem::path& file, const SReadOptions& options = {},
                     CStatusControl* status = nullptr);

// Refuses what WriteImage would refuse before it begins to encode: to be asked before an effect
// spends its time. Without a size, sides are not judged.
void CheckOutput(const std::filesystem::path& file, const SOutputRules& rules, CSize size = {});

// Writes the picture in the kind that the file name's extension tells, in full or not at all, and
// answers warnings about what that kind could not keep. PNG, TIFF and WebP are lossless; JPEG is
// written at quality 95 without colour subsampling, and has what is transparent laid over white.
std::vector<std::string> WriteImage(const std::filesystem::path& file,
                                    const CRowIteratorBands& pixels, const CMetadata& metadata,
                                    const SOutputRules& rules, CStatusControl* status = nullptr);

// Removes what unfinished WriteImage calls of this process have written. For a signal handler
// that is about to end the process: async-signal-safe.
inline void RemovePendingOutput() noexcept { COutputFile::RemoveAllPending(); }

}  // namespace imagefile
