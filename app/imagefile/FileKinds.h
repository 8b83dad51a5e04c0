#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace imagefile {

// The kinds of file that are read and written.
enum class ENKind { Png, Jpeg, Tiff, Webp };

// What a kind can hold.
struct SKind {
    ENKind kind;
    const char* name;
    int max_side;  // pixels
    bool holds_16bit;
    bool holds_alpha;
    bool holds_grey;
};
const SKind& KindOf(ENKind kind);

// Every name of every kind, for a message.
extern const char* const kKnownKinds;
extern const char* const kKnownExtensions;

// The kind that a file name's extension tells, whatever its letter case; null for any other.
const SKind* KindByExtension(const std::filesystem::path& file);

// What the first bytes of a file tell: `name` is null when they tell nothing known, `kind` when
// the format is known by name only.
struct SContent {
    const char* name = nullptr;
    const SKind* kind = nullptr;
};
inline constexpr int kContentBytes = 16;
SContent KindByContent(std::span<const std::uint8_t> first_bytes);

}  // namespace imagefile
