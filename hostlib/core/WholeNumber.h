#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "host/core/HostApi.h"

// The number that the whole of a text is, written in digits after an optional sign; nothing for any
// other text. One that does not fit becomes the end of the range that it lies beyond.
HOST_API std::optional<std::int64_t> WholeNumber(std::string_view text);

// Two such numbers with a separator between them, both of which fit an int.
HOST_API std::optional<std::pair<int, int>> NumberPair(std::string_view text, char separator);
