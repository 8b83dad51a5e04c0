#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace imagefile {

// A strip in the LZW coding of TIFF 6.0, section 13: codes of 9 to 12 bits, the high bit first. May
// be used by several threads at once. `out` is written anew.
void LzwEncode(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& out);

}  // namespace imagefile
