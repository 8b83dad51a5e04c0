#pragma once

#include <cstdint>
#include <filesystem>
#include <limits>

#include "host/core/HostApi.h"

// How much memory images may take. What does not fit lies in files without names in a folder, whose
// space is reserved before it is used; error 106 when it cannot be had.
struct SPixelBudget {
    std::uint64_t bytes = std::numeric_limits<std::uint64_t>::max();
    std::filesystem::path scratch = {};  // empty: TMPDIR, or else /var/tmp
    // How much memory of images that are gone is kept to serve the next ones, for those who make
    // many of one size. The system may take it when it needs it for others.
    std::uint64_t spare = 0;
};

// Holds for images made from now on, in the whole process.
HOST_API void SetPixelBudget(const SPixelBudget& budget);
