#include <zlib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "app/imagefile/metadata/ColourProfile.h"
#include "app/imagefile/metadata/Containers.h"
#include "app/imagefile/metadata/ExifBlock.h"
#include "app/imagefile/metadata/Photoshop.h"
#include "app/imagefile/metadata/PngText.h"
#include "app/imagefile/metadata/TiffTree.h"
#include "hostlib/language/Texts.h"

namespace imagefile {

namespace {

using tiff::GetNumber;
using tiff::PutNumber;

constexpr std::size_t kSignatureBytes = 8, kFrameBytes = 12;  // length, name and checksum
constexpr double kMetresInInch = 0.0254, kCentimetresInMetre = 100;

template <std::size_t N>
bool IsOneOf(const std::string_view (&names)[N], std::string_view name) {
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

bool IsExifText(std::string_view keyword) {
    constexpr std::string_view kNames[] = {"Raw profile type exif", "Raw profile type APP1"};
    return IsOneOf(kNames, keyword);
}

// Reads one text, and the block that it may be.
void TakeText(const SChunk& chunk, SContents& contents) {
    SMetadata& metadata = contents.metadata;
    const std::optional<SText> text = pngtext::Parse(chunk);
    if (!text) {
        contents.damage.push_back(Tr("a text chunk ({}) cannot be read", chunk.type));
        return;
    }
    const CBytes block =
        text->keyword.starts_with("Raw profile type ") ? pngtext::ProfileOf(text->text) : CBytes();
    if (text->keyword == pngtext::kXmpKeyword) {
        metadata.xmp = AsBytes(text->text);
    } else if (IsExifText(text->keyword) && BeginsWith(block, {"Exif\0\0", 6})) {
        if (metadata.exif.empty()) metadata.exif = After(block, 6);
    } else if (text->keyword == pngtext::kIptcKeyword || text->keyword == "Raw profile type 8bim") {
        (BeginsWith(block, "8BIM") ? metadata.photoshop : metadata.iptc) = block;
    } else if (text->keyword == "Raw profile type xmp" && metadata.xmp.empty()) {
        metadata.xmp = block;
    } else if (block.empty()) {
        metadata.texts.push_back(*text);
    }
}

// "name\0", a compression method, a zlib stream.
void TakeProfile(const SChunk& chunk, SContents& contents) {
    const auto end = std::find(chunk.data.begin(), chunk.data.end(), 0);
    std::optional<CBytes> profile;
    if (chunk.data.end() - end > 2) {
        profile = pngtext::Inflate(
            After(chunk.data, static_cast<std::size_t>(end + 2 - chunk.data.begin())),
            kMaxMetadataBytes);
    }
    if (!profile) {
        contents.damage.push_back(Tr("the colour profile (iCCP) cannot be read"));
    } else {
        contents.metadata.profile = std::move(*profile);
    }
}

void TakeResolution(const SChunk& chunk, SMetadata& metadata) {
    if (chunk.data.size() != 9) return;
    const auto x = static_cast<double>(GetNumber(&chunk.data[0], 4, true));
    const auto y = static_cast<double>(GetNumber(&chunk.data[4], 4, true));
    const bool is_metre = chunk.data[8] == 1;
    const double scale = is_metre ? 1 / kCentimetresInMetre : 1;
    if (x <= 0 || y <= 0) return;
    metadata.resolution = {x * scale, y * scale,
                           is_metre ? ENResolutionUnit::Centimetre : ENResolutionUnit::None};
}

void TakeChunk(const SChunk& chunk, SContents& contents) {
    SMetadata& metadata = contents.metadata;
    if (chunk.type == "eXIf") {
        const bool is_marked = BeginsWith(chunk.data, {"Exif\0\0", 6});
        metadata.exif = After(chunk.data, is_marked ? 6 : 0);
    }
    if (chunk.type == "iCCP") TakeProfile(chunk, contents);
    if (chunk.type == "pHYs") TakeResolution(chunk, metadata);
    if (chunk.type == "acTL") contents.is_animated = true;
    if (pngtext::IsText(chunk)) TakeText(chunk, contents);
    if (chunk.type == "IHDR" && chunk.data.size() == 13) {
        const auto side = [&](std::size_t at) {
            return static_cast<int>(
                std::min<std::uint64_t>(GetNumber(&chunk.data[at], 4, true), 0x7fffffff));
        };
        contents.size = {side(0), side(4)};
        metadata.coding.is_progressive = chunk.data[12] != 0;
    }
}

const SChunk* Find(const std::vector<SChunk>& chunks, std::string_view type) {
    const auto found = std::find_if(chunks.begin(), chunks.end(),
                                    [type](const SChunk& chunk) { return chunk.type == type; });
    return found == chunks.end() ? nullptr : &*found;
}

struct SPngCoding {
    int depth = 8, colour_type = 2;
};
SPngCoding CodingOf(const SMetadata& metadata) {
    const SChunk* header = Find(metadata.png_chunks, "IHDR");
    if (!header || header->data.size() != 13) return {};
    return {header->data[8], header->data[9]};
}

// A background colour is told in the terms of the pixels' coding.
bool CorrectBackground(SChunk& chunk, const SMetadata& metadata) {
    const SPngCoding coding = CodingOf(metadata);
    if (coding.colour_type == 3) {
        const SChunk* palette = Find(metadata.png_chunks, "PLTE");
        const std::size_t at = chunk.data.empty() ? 0 : std::size_t{3} * chunk.data[0];
        if (!palette || palette->data.size() < at + 3) return false;
        const auto* c = &palette->data[at];
        chunk.data = {0, c[0], 0, c[1], 0, c[2]};
    } else if (coding.depth < 8 && chunk.data.size() == 2) {
        const int full = (1 << coding.depth) - 1;
        chunk.data[1] = static_cast<std::uint8_t>(chunk.data[1] * 255 / full);
    }
    return true;
}

// What of a PNG file's chunk goes into another; false when it has no place there.
bool CarryChunk(SChunk& chunk, const SMetadata& metadata, CNPixelFormat written) {
    if (chunk.type == "bKGD") return CorrectBackground(chunk, metadata);
    if (chunk.type == "iCCP")
        return colour::IsProfileFor(metadata.profile, written.ColourChannels() == 1);
    if (chunk.type == "sBIT") {
        const auto channels = static_cast<std::size_t>(written.Channels());
        const bool gains_alpha = written.IsAlphaChannelPresent();
        if (chunk.data.size() + (gains_alpha ? 1 : 0) == channels) {
            chunk.data.push_back(written.Is16bit() ? 16 : 8);
        }
        return chunk.data.size() == channels;
    }
    return true;
}

std::vector<SChunk> CarriedChunks(const SMetadata& metadata, CNPixelFormat written,
                                  CLosses& losses) {
    constexpr std::string_view kCoding[] = {"IHDR", "tRNS", "IDAT", "IEND", "iDOT"};
    constexpr std::string_view kUnsafe[] = {"cHRM", "gAMA", "iCCP", "sBIT", "sRGB", "bKGD",
                                            "PLTE", "cICP", "mDCV", "cLLI", "mDCv", "cLLi",
                                            "oFFs", "pCAL", "sCAL", "sTER", "hIST"};
    constexpr std::string_view kMany[] = {"tEXt", "zTXt", "iTXt", "sPLT"};
    const bool has_palette = CodingOf(metadata).colour_type == 3;
    std::vector<SChunk> carried;
    for (SChunk chunk : metadata.png_chunks) {
        if (IsOneOf(kCoding, chunk.type) || (chunk.type == "PLTE" && has_palette)) continue;
        const bool is_unsafe = (chunk.type[3] & 0x20) == 0 && !IsOneOf(kUnsafe, chunk.type);
        const bool goes_with_palette = chunk.type == "hIST" && has_palette;
        if (is_unsafe || goes_with_palette || !CarryChunk(chunk, metadata, written)) {
            losses.push_back(Tr("the chunk {}, which holds for the stored pixels", chunk.type));
            continue;
        }
        if (!IsOneOf(kMany, chunk.type) && (chunk.type[1] & 0x20) == 0 &&
            Find(carried, chunk.type)) {
            continue;
        }
        carried.push_back(std::move(chunk));
    }
    return carried;
}

SChunk ResolutionChunk(const SResolution& resolution) {
    const bool is_aspect = resolution.unit == ENResolutionUnit::None;
    const bool is_whole =
        resolution.x == std::floor(resolution.x) && resolution.y == std::floor(resolution.y);
    const double scale = is_aspect                                   ? (is_whole ? 1 : 1000)
                         : resolution.unit == ENResolutionUnit::Inch ? 1 / kMetresInInch
                                                                     : kCentimetresInMetre;
    SChunk chunk{"pHYs", CBytes(9)};
    const auto put = [&](std::size_t at, double number) {
        constexpr double kMax = 2147483647;
        PutNumber(&chunk.data[at],
                  static_cast<std::uint64_t>(std::clamp(std::round(number * scale), 1.0, kMax)), 4,
                  true);
    };
    put(0, resolution.x);
    put(4, resolution.y);
    chunk.data[8] = is_aspect ? 0 : 1;
    return chunk;
}

SChunk XmpChunk(CBytesView packet) {
    SChunk chunk{"iTXt", AsBytes(pngtext::kXmpKeyword)};
    chunk.data.resize(chunk.data.size() + 5);  // not compressed, no language, no other keyword
    Append(chunk.data, packet);
    return chunk;
}

SChunk ProfileChunk(CBytesView profile) {
    SChunk chunk{"iCCP", AsBytes("ICC profile")};
    chunk.data.resize(chunk.data.size() + 2);
    Append(chunk.data, pngtext::Deflate(profile));
    return chunk;
}

}  // namespace

SContents ReadPngContents(int descriptor) {
    const tiff::CReadAt read = tiff::FromFile(descriptor);
    SContents contents;
    std::uint64_t at = kSignatureBytes, taken = 0;
    bool has_pixels = false;
    for (;;) {
        std::array<std::uint8_t, kFrameBytes> frame = {};
        if (!read(at, frame)) break;
        const std::uint64_t length = GetNumber(frame.data(), 4, true);
        SChunk chunk{std::string(frame.begin() + 4, frame.begin() + 8), {}, has_pixels};
        if (chunk.type == "IEND") {
            std::array<std::uint8_t, 1> beyond = {};
            if (read(at + kFrameBytes, beyond)) {
                contents.warnings.push_back(Tr("what follows the end of the picture is left out"));
            }
            return contents;
        }
        if (chunk.type == "IDAT") {
            has_pixels = true;
        } else {
            std::array<std::uint8_t, 4> checksum = {};
            if (!read(at + 8 + length, checksum)) break;
            taken += length;
            contents.is_too_large = taken > kMaxMetadataBytes;
            if (contents.is_too_large) return contents;
            chunk.data.resize(length);
            if (!read(at + 8, chunk.data)) break;
            uLong sum = crc32(0, &frame[4], 4);
            if (length > 0) sum = crc32(sum, chunk.data.data(), static_cast<uInt>(length));
            if (sum != GetNumber(checksum.data(), 4, true)) {
                contents.damage.push_back(Tr("the checksum of {} is wrong", chunk.type));
            }
            TakeChunk(chunk, contents);
            contents.metadata.png_chunks.push_back(std::move(chunk));
        }
        at += kFrameBytes + length;
    }
    contents.damage.push_back(Tr("is cut off"));
    return contents;
}

void ReplacePngBlocks(SMetadata& metadata) {
    for (SChunk& chunk : metadata.png_chunks) {
        if (chunk.type == "eXIf") {
            const bool is_marked = BeginsWith(chunk.data, {"Exif\0\0", 6});
            chunk.data.resize(is_marked ? 6 : 0);
            Append(chunk.data, metadata.exif);
        }
        if (chunk.type == "pHYs" && chunk.data.size() == 9 && metadata.orientation >= 5) {
            std::swap_ranges(&chunk.data[0], &chunk.data[4], &chunk.data[4]);
        }
        const auto text = pngtext::IsText(chunk) ? pngtext::Parse(chunk) : std::nullopt;
        if (!text) continue;
        if (text->keyword == pngtext::kXmpKeyword && AsBytes(text->text) != metadata.xmp) {
            chunk = {"iTXt", XmpChunk(metadata.xmp).data, chunk.follows_pixels};
        } else if (IsExifText(text->keyword) && !metadata.exif.empty()) {
            CBytes block = AsBytes({"Exif\0\0", 6});
            Append(block, metadata.exif);
            if (pngtext::ProfileOf(text->text) == block) continue;
            chunk = {"zTXt", pngtext::MakeProfile(text->keyword, block).data, chunk.follows_pixels};
        }
    }
}

std::vector<SChunk> PngChunks(const SMetadata& metadata, const SImageHeader& written,
                              CLosses& losses) {
    if (metadata.kind == ENKind::Png) return CarriedChunks(metadata, written.format, losses);
    TellForeign(metadata, losses);
    std::vector<SChunk> chunks;
    const CBytes profile = ProfileFor(metadata, written.format, losses);
    if (!profile.empty()) chunks.push_back(ProfileChunk(profile));
    if (metadata.resolution) chunks.push_back(ResolutionChunk(*metadata.resolution));
    if (!metadata.exif.empty()) chunks.push_back({"eXIf", metadata.exif});
    if (!metadata.xmp.empty()) chunks.push_back(XmpChunk(metadata.xmp));
    if (const CBytes resources = PhotoshopOf(metadata); !resources.empty()) {
        chunks.push_back(pngtext::MakeProfile(pngtext::kIptcKeyword, resources));
    }
    for (const SText& text : metadata.texts) chunks.push_back(pngtext::Make(text));
    return chunks;
}

}  // namespace imagefile
