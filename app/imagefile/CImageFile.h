#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/imagefile/CImageFileError.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#include "hostlib/system/COutputFile.h"

// Pictures in PNG, JPEG, TIFF and WebP files. Every failure is thrown as a CImageFileError. File
// names are names: no byte in them has a meaning of its own.
namespace imagefile {

using ::SOutputRules;

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
    // So are those whose pixels take more bytes.
    std::uint64_t max_bytes = UINT64_MAX;
    // An open file to read instead of the one of the name, which then stands in messages only;
    // negative is none.
    int descriptor = -1;
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

// How a picture is to be written. What is not said follows the file that it came from, if that was
// of the same kind: the tables and the subsampling of a JPEG, the compression of a TIFF, lossy or
// lossless WebP. Otherwise JPEG is written at quality 95 without subsampling, all else without
// loss, but for WebP of a picture from a JPEG.
struct SWriteOptions {
    std::string format;          // an extension without its dot; empty: the file name has one
    std::optional<int> quality;  // 1 to 100: JPEG, lossy WebP
    std::string subsampling;     // JPEG: 444, 440, 422, 420 or 411
    std::string
        compression;  // PNG: 0 to 9; TIFF: none, lzw, deflate or zstd; WebP: lossy, lossless
};

// Which of the options a kind of file takes, and the words for them: none of a kind that is not
// known. Only the extension of `file` counts.
struct SWriteChoices {
    bool quality = false;
    std::vector<std::string> subsampling, compression;
};
SWriteChoices ChoicesFor(const std::filesystem::path& file);

// Refuses what WriteImage would refuse before it begins to encode: to be asked before an effect
// spends its time. Without a size, sides are not judged.
void CheckOutput(const std::filesystem::path& file, const SOutputRules& rules, CSize size = {},
                 const SWriteOptions& options = {});

// Writes the picture in full or not at all, and answers warnings about what its kind of file could
// not keep; into JPEG, what is transparent is laid over white. All cores encode; the bytes are the
// same for any number of them.
std::vector<std::string> WriteImage(const std::filesystem::path& file,
                                    const CRowIteratorBands& pixels, const CMetadata& metadata,
                                    const SOutputRules& rules, CStatusControl* status = nullptr,
                                    const SWriteOptions& options = {});

// Removes what unfinished WriteImage calls of this process have written. For a signal handler
// that is about to end the process: async-signal-safe.
inline void RemovePendingOutput() noexcept { COutputFile::RemoveAllPending(); }

}  // namespace imagefile
