#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "hostlib/system/COutputFile.h"

namespace imagefile {

// Where an encoder puts a file, and whom it tells how far it is. `advance` is told the parts done,
// of how many, on the thread that called the encoder; it throws to stop.
struct SEncoderOutput {
    COutputFile& file;
    std::function<void(int done, int of)> advance;
};

// Makes the pieces 0 to count - 1 of a file on all cores, several ahead, and hands each to `take`
// on the calling thread, in their order. `make` gets an empty buffer. What either throws ends it.
void MakeInOrder(int count,
                 const std::function<void(int piece, std::vector<std::uint8_t>& bytes)>& make,
                 const std::function<void(int piece, std::span<const std::uint8_t> bytes)>& take);

}  // namespace imagefile
