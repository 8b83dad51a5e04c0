#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/cli/CProgress.h"
#include "app/cli/Messages.h"
#include "app/imagefile/CImageFile.h"
#include "host/core/CDescriptor.h"

namespace CLI {
class App;
}

// Reading and writing pictures for the subcommands: the library's errors become CCliError and
// CInterrupted, its warnings go to stderr unless somebody else takes them.
using FWarn = std::function<void(const std::string&)>;

// What the user said about the input.
struct SInputOptions {
    std::string file;  // "-" is standard input
    bool lenient = false;
    std::uint64_t max_pixels = imagefile::kDefaultMaxPixels;
    int page = 0;  // from 1 on; 0 takes the only one
    bool convert = false;
    // Bytes of pixels kept in memory, others lie on the disk; 0: all, so that a picture that memory
    // cannot hold is refused.
    std::uint64_t max_memory = 0;
    // What a stream held, once it was read.
    mutable std::shared_ptr<const CDescriptor> gathered;
};

// What the user said about the coding of the output: --format, --quality, --subsampling and
// --compression.
void AddCodingOptions(CLI::App& command, imagefile::SWriteOptions& options);
// The rules for a file, or for standard output when it is "-".
imagefile::SOutputRules OutputRules(const std::string& file, bool overwrite,
                                    const std::string& input);

imagefile::SImageHeader ReadPictureHeader(const SInputOptions& options);
imagefile::SImageFile ReadPicture(const SInputOptions& options, IProgressSink& progress,
                                  const FWarn& warn = &messages::Warn);
// How a mask is read for a picture that is read with these options.
SInputOptions MaskInput(const std::string& file, const SInputOptions& options);
void CheckMaskSize(const std::string& file, CSize mask, CSize picture);
// Reads a selection mask for a picture of the given size: its brightness, white is full effect.
CRowIterator ReadMask(const std::string& file, CSize size, const SInputOptions& options,
                      IProgressSink& progress);
// Refuses an output that could not be written, before work is spent on it.
void CheckPictureOutput(const std::string& file, const imagefile::SOutputRules& rules, CSize size,
                        const imagefile::SWriteOptions& coding = {});
void WritePicture(const std::string& file, const CRowIteratorBands& pixels,
                  const imagefile::CMetadata& metadata, const imagefile::SOutputRules& rules,
                  IProgressSink& progress, const imagefile::SWriteOptions& coding = {},
                  const FWarn& warn = &messages::Warn);

// The memory that work on a picture takes at most, and what there is for all work at once.
std::uint64_t MemoryFor(const imagefile::SImageHeader& header);
std::uint64_t MemoryBudget(const SInputOptions& options);

// "grey", "grey-alpha", "colour" or "colour-alpha".
std::string LayoutName(CNPixelFormat format);
