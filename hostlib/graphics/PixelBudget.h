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
    // Memory of images that are gone serves the next ones, for those who make many of one size. It
    // is not given back to the system meanwhile.
    bool keeps_spare = false;
};

// Holds for images made from now on, in the whole process.
HOST_API void SetPixelBudget(const SPixelBudget& budget);
