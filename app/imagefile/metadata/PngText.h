#pragma once

#include <optional>

#include "app/imagefile/metadata/Metadata.h"

// The texts of PNG files, and the blocks that programs keep in texts.
namespace imagefile::pngtext {

inline constexpr const char* kXmpKeyword = "XML:com.adobe.xmp";
inline constexpr const char* kIptcKeyword = "Raw profile type iptc";
inline constexpr const char* kCommentKeyword = "Comment";

bool IsText(const SChunk& chunk);
// What a tEXt, zTXt or iTXt chunk says, in UTF-8; nothing when it is not laid out as one.
std::optional<SText> Parse(const SChunk& chunk);
// As tEXt when Latin-1 holds it all and no language is told, else as iTXt.
SChunk Make(const SText& text);

// The bytes that a "Raw profile type" text holds in hexadecimal digits; empty when it does not.
CBytes ProfileOf(const std::string& text);
SChunk MakeProfile(const std::string& keyword, CBytesView bytes);

// Bytes of a zlib stream, at most `limit` of them; nothing when it is damaged or longer.
std::optional<CBytes> Inflate(CBytesView bytes, std::size_t limit);
CBytes Deflate(CBytesView bytes);

}  // namespace imagefile::pngtext
