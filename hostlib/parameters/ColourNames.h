#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/core/HostApi.h"

// Colours as people write them, as 0xRRGGBB: "#RRGGBB" and "#RGB", with the sign or without it, and
// the 148 names of CSS Color Module Level 4, section 6.1, in any letter case. Nothing for any other
// text.
HOST_API std::optional<std::uint32_t> ColourFromText(const std::string& text);
// The names, in order.
HOST_API std::vector<std::string> ColourNames();
