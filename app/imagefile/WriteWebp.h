#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace imagefile {

// What a WebP file carries besides the picture; empty parts are left out.
struct SWebpExtras {
    std::span<const std::uint8_t> profile, exif, xmp;
};

// Encodes a picture without loss, the colour of transparent pixels included. `fill_row` writes
// row y as 0xAARRGGBB; `stops` is told per cent and answers whether to stop. Empty on failure, with
// the reason in `error`, or when stopped.
std::vector<std::uint8_t> EncodeWebp(int width, int height, const SWebpExtras& extras,
                                     const std::function<void(int y, std::uint32_t* row)>& fill_row,
                                     const std::function<bool(int percent)>& stops,
                                     std::string& error);

// The smallest WebP file that carries these EXIF data; empty on failure.
std::vector<std::uint8_t> OnePixelWebp(std::span<const std::uint8_t> exif);

}  // namespace imagefile
