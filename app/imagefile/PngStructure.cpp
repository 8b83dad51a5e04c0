#include "app/imagefile/PngStructure.h"

#include <unistd.h>

#include <array>
#include <string_view>

namespace imagefile {

namespace {

std::uint32_t BigEndian(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | bytes[3];
}

}  // namespace

SPngStructure ReadPngStructure(int descriptor) {
    constexpr off_t kSignatureBytes = 8, kFrameBytes = 12;  // length, name and checksum
    SPngStructure png;
    // Length and name of a chunk, and the sides if it is the header.
    std::array<std::uint8_t, 16> chunk = {};
    off_t at = kSignatureBytes;
    for (;;) {
        const ssize_t got = pread(descriptor, chunk.data(), chunk.size(), at);
        if (got < kFrameBytes) return png;
        const std::string_view name(reinterpret_cast<const char*>(&chunk[4]), 4);
        if (name == "IHDR" && got == static_cast<ssize_t>(chunk.size())) {
            png.width = BigEndian(&chunk[8]);
            png.height = BigEndian(&chunk[12]);
        }
        png.is_animated = png.is_animated || name == "acTL";
        if (name == "IEND") {
            png.is_complete = true;
            return png;
        }
        at += kFrameBytes + static_cast<off_t>(BigEndian(chunk.data()));
    }
}

}  // namespace imagefile
