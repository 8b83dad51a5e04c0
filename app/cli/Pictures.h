#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "app/cli/CProgress.h"
#include "app/imagefile/CImageFile.h"

// Reading and writing pictures for the subcommands: the library's errors become CCliError and
// CInterrupted, its warnings go to stderr.

// What the user said about the input.
struct SInputOptions {
    std::string file;
    bool lenient = false;
    std::uint64_t max_pixels = imagefile::kDefaultMaxPixels;
    int page = 0;  // from 1 on; 0 takes the only one
    bool convert = false;
};

imagefile::SImageHeader ReadPictureHeader(const SInputOptions& options);
imagefile::SImageFile ReadPicture(const SInputOptions& options, IProgressSink& progress);
// Reads a selection mask for a picture of the given size: its brightness, white is full effect.
CRowIterator ReadMask(const std::string& file, CSize size, const SInputOptions& options,
                      IProgressSink& progress);
// Refuses an output that could not be written, before work is spent on it.
void CheckPictureOutput(const std::string& file, const imagefile::SOutputRules& rules, CSize size);
void WritePicture(const std::string& file, const CRowIteratorBands& pixels,
                  const imagefile::CMetadata& metadata, const imagefile::SOutputRules& rules,
                  CProgress& progress);

// "grey", "grey-alpha", "colour" or "colour-alpha".
std::string LayoutName(CNPixelFormat format);
