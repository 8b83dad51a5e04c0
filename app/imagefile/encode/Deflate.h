#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace imagefile {

// Compression in the deflate format (RFC 1951), and what surrounds it. Levels are 0 (stored) to 9.
// The same bytes always give the same stream. May be used by several threads at once.

inline constexpr int kFastDeflate = 1;

// A piece of a stream that others may be joined to: it ends at a byte, refers to nothing before it,
// and is the stream's end if it `is_last`. Appended to `out`.
void AppendDeflated(std::span<const std::uint8_t> bytes, int level, bool is_last,
                    std::vector<std::uint8_t>& out);
// A whole stream in the zlib format (RFC 1950), appended to `out`.
void AppendZlibStream(std::span<const std::uint8_t> bytes, int level,
                      std::vector<std::uint8_t>& out);

// The checksum of zlib streams; that of a whole from those of its parts, the second of which has
// `length` bytes.
std::uint32_t Adler32(std::span<const std::uint8_t> bytes);
std::uint32_t JoinAdler32(std::uint32_t first, std::uint32_t second, std::size_t length);
// The checksum of PNG chunks.
std::uint32_t Crc32(std::span<const std::uint8_t> bytes);

}  // namespace imagefile
