#pragma once

#include <cstdint>

namespace imagefile {

// What the chunks of a PNG file tell without decoding: the PNG library neither notices a file that
// ends before its end chunk nor tells of an animation. Sides are 0 when there is no header.
struct SPngStructure {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool is_animated = false;
    bool is_complete = false;
};

SPngStructure ReadPngStructure(int descriptor);

}  // namespace imagefile
