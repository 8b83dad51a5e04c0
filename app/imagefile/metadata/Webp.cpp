#include <algorithm>
#include <array>
#include <string_view>

#include "app/imagefile/metadata/Containers.h"
#include "app/imagefile/metadata/ExifBlock.h"
#include "app/imagefile/metadata/TiffTree.h"
#include "hostlib/language/Texts.h"

namespace imagefile {

namespace {

constexpr std::size_t kRiffHead = 12, kChunkHead = 8;
constexpr std::string_view kExifMark("Exif\0\0", 6);

bool IsCoding(std::string_view type) {
    constexpr std::string_view kTypes[] = {"VP8X", "VP8 ", "VP8L", "ALPH", "ANIM", "ANMF"};
    return std::find(std::begin(kTypes), std::end(kTypes), type) != std::end(kTypes);
}

// A block for a file that has no other place for its resolution.
CBytes ResolutionBlock(const SResolution& resolution) {
    const auto rational = [](double number) {
        CBytes data(8);
        tiff::PutNumber(&data[0], static_cast<std::uint64_t>(number * 1000 + 0.5), 4, false);
        tiff::PutNumber(&data[4], 1000, 4, false);
        return data;
    };
    const auto unit = static_cast<std::uint8_t>(static_cast<int>(resolution.unit) + 1);
    bool moved = false;
    return exif::Build({{tiff::kXResolution, tiff::kRational, 1, rational(resolution.x)},
                        {tiff::kYResolution, tiff::kRational, 1, rational(resolution.y)},
                        {tiff::kResolutionUnit, tiff::kShort, 1, {unit, 0}}},
                       false, moved);
}

}  // namespace

SContents ReadWebpContents(int descriptor) {
    const tiff::CReadAt read = tiff::FromFile(descriptor);
    SContents contents;
    SMetadata& metadata = contents.metadata;
    std::array<std::uint8_t, kRiffHead> head = {};
    std::uint64_t at = kRiffHead, taken = 0;
    const std::uint64_t end = read(0, head) ? 8 + tiff::GetNumber(&head[4], 4, false) : 0;
    std::array<std::uint8_t, 1> last = {};
    if (end <= kRiffHead || !read(end - 1, last)) {
        contents.damage.push_back(Tr("is cut off"));
        return contents;
    }
    while (at + kChunkHead <= end) {
        std::array<std::uint8_t, kChunkHead> frame = {};
        if (!read(at, frame)) break;
        SChunk chunk{std::string(frame.begin(), frame.begin() + 4), {}};
        const std::uint64_t length = tiff::GetNumber(&frame[4], 4, false);
        if (length > end - at - kChunkHead) {
            contents.damage.push_back(Tr("the chunk {} reaches beyond the end", chunk.type));
            return contents;
        }
        if (chunk.type == "VP8 ") metadata.coding.is_lossy_webp = true;
        if (chunk.type == "ANMF") {
            contents.pages = contents.is_animated ? contents.pages + 1 : 1;
            contents.is_animated = true;
        }
        if (!IsCoding(chunk.type)) {
            taken += length;
            contents.is_too_large = taken > kMaxMetadataBytes;
            if (contents.is_too_large) return contents;
            chunk.data.resize(length);
            if (!read(at + kChunkHead, chunk.data)) break;
            if (chunk.type == "ICCP") metadata.profile = chunk.data;
            if (chunk.type == "XMP ") metadata.xmp = chunk.data;
            if (chunk.type == "EXIF") {
                metadata.exif =
                    After(chunk.data, BeginsWith(chunk.data, kExifMark) ? kExifMark.size() : 0);
            }
            metadata.riff_chunks.push_back(std::move(chunk));
        }
        at += kChunkHead + length + length % 2;
    }
    if (read(end + end % 2, last)) {
        contents.warnings.push_back(Tr("what follows the end of the picture is left out"));
    }
    return contents;
}

void ReplaceWebpBlocks(SMetadata& metadata) {
    for (SChunk& chunk : metadata.riff_chunks) {
        if (chunk.type == "XMP ") chunk.data = metadata.xmp;
        if (chunk.type == "EXIF") {
            chunk.data.resize(BeginsWith(chunk.data, kExifMark) ? kExifMark.size() : 0);
            Append(chunk.data, metadata.exif);
        }
    }
}

std::vector<SChunk> WebpChunks(const SMetadata& metadata, const SImageHeader& written,
                               CLosses& losses) {
    std::vector<SChunk> chunks;
    // WebP has no grey: such a profile would not fit.
    const CNPixelFormat colour =
        CNPixelFormat::Of(written.format.IsAlphaChannelPresent() ? 4 : 3, written.format.Is16bit());
    if (metadata.kind == ENKind::Webp) {
        for (const SChunk& chunk : metadata.riff_chunks) {
            if (chunk.type == "ICCP" && ProfileFor(metadata, colour, losses).empty()) continue;
            chunks.push_back(chunk);
        }
        return chunks;
    }
    TellForeign(metadata, losses);
    const auto add = [&](const char* type, CBytes data) {
        if (!data.empty()) chunks.push_back({type, std::move(data)});
    };
    add("ICCP", ProfileFor(metadata, colour, losses));
    if (metadata.exif.empty() && metadata.resolution) {
        add("EXIF", ResolutionBlock(*metadata.resolution));
    } else {
        add("EXIF", metadata.exif);
    }
    add("XMP ", metadata.xmp);
    if (!metadata.photoshop.empty()) losses.push_back(Tr("the Photoshop data"));
    return chunks;
}

}  // namespace imagefile
