#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "host/core/CDescriptor.h"

namespace imagefile {

// Standard input, where a file name is asked for.
inline constexpr const char* kStandardStream = "-";

// Whether the name stands for something that can be read once only, from beginning to end: standard
// input, or a pipe.
bool IsStream(const std::filesystem::path& file);

// All that a stream holds, in a nameless file, since pictures are read back and forth. Of what is
// no picture of a known kind, or has more than `largest` bytes, no more is read than shows it.
// `stops` is asked ten times a second while nothing comes. Failures are thrown as CImageFileError.
CDescriptor GatherStream(const std::filesystem::path& file, std::uint64_t largest,
                         const std::function<bool()>& stops);

}  // namespace imagefile
