#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "app/imagefile/metadata/Metadata.h"

namespace imagefile {

// Encodes a picture without loss, with these chunks besides it, the colour of transparent pixels
// included. `fill_row` writes row y as 0xAARRGGBB; `stops` is told per cent and answers whether to
// stop. Empty on failure, with the reason in `error`, or when stopped.
std::vector<std::uint8_t> EncodeWebp(int width, int height, const std::vector<SChunk>& chunks,
                                     const std::function<void(int y, std::uint32_t* row)>& fill_row,
                                     const std::function<bool(int percent)>& stops,
                                     std::string& error);

}  // namespace imagefile
