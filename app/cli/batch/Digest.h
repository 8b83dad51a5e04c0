#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

// Digests that tell contents apart; 64 bits of XXH3, not meant against forgery.
namespace digest {

std::uint64_t Of(std::string_view bytes);
// As 16 hexadecimal digits.
std::string Text(std::string_view bytes);
// Of all bytes of an open file, whose position stays, or of a file. Throw CFileError for `name`.
std::string OfDescriptor(int descriptor, const std::filesystem::path& name);
std::string OfFile(const std::filesystem::path& file);

}  // namespace digest
