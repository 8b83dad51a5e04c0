#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "host/core/HostApi.h"

// JSON that comes from outside: at most 32 levels deep, no name twice in an object, nothing after
// the value. Everything is thrown as std::runtime_error, whose text says what is wrong.
HOST_API nlohmann::ordered_json ParseStrictJson(std::string_view text);
// The same of a regular file of at most `largest` bytes, or of a pipe that the program was started
// with (/dev/stdin, /dev/fd/N).
HOST_API nlohmann::ordered_json ReadStrictJson(const std::filesystem::path& file,
                                               std::uintmax_t largest);
