#include "app/imagefile/metadata/Metadata.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string_view>
#include <utility>

#include "app/imagefile/metadata/ColourProfile.h"
#include "app/imagefile/metadata/Containers.h"
#include "app/imagefile/metadata/ExifBlock.h"
#include "app/imagefile/metadata/Photoshop.h"
#include "app/imagefile/metadata/PngText.h"
#include "app/imagefile/metadata/TiffTree.h"
#include "app/imagefile/metadata/Xmp.h"
#include "hostlib/language/Texts.h"

namespace imagefile {

namespace {

constexpr std::string_view kColourChunks[] = {"gAMA", "cHRM", "sRGB", "cICP"};

bool IsColourChunk(const SChunk& chunk) {
    return std::find(std::begin(kColourChunks), std::end(kColourChunks), chunk.type) !=
           std::end(kColourChunks);
}

int StoredOrientation(const SMetadata& metadata) {
    if (metadata.kind != ENKind::Tiff) return exif::Orientation(metadata.exif);
    const STiffValue* value = tiff::Find(metadata.tags, tiff::kOrientation);
    if (!value || value->data.empty()) return 1;
    const std::uint64_t told = tiff::GetNumber(
        value->data.data(), std::min<std::size_t>(value->data.size(), tiff::ItemBytes(value->type)),
        metadata.is_big_endian);
    return told >= 1 && told <= 8 ? static_cast<int>(told) : 1;
}

// The values outside the EXIF block of a TIFF file.
void ReplaceTiffValues(SMetadata& metadata) {
    for (STiffValue& value : metadata.tags) {
        if (value.tag == tiff::kOrientation && !value.data.empty()) {
            tiff::PutNumber(value.data.data(), 1, tiff::ItemBytes(value.type),
                            metadata.is_big_endian);
        }
        const CBytes* block = value.tag == tiff::kXmp         ? &metadata.xmp
                              : value.tag == tiff::kPhotoshop ? &metadata.photoshop
                                                              : nullptr;
        if (!block) continue;
        value.data = *block;
        if (value.type != tiff::kUndefined) value.type = tiff::kByte;
        value.count = block->size();
    }
    if (metadata.orientation < 5) return;
    const auto x = std::find_if(metadata.tags.begin(), metadata.tags.end(),
                                [](const auto& v) { return v.tag == tiff::kXResolution; });
    const auto y = std::find_if(metadata.tags.begin(), metadata.tags.end(),
                                [](const auto& v) { return v.tag == tiff::kYResolution; });
    if (x != metadata.tags.end() && y != metadata.tags.end()) std::swap(x->tag, y->tag);
}

std::string SegmentName(const SSegment& segment) {
    std::string name = Tr("the segment APP{}", segment.marker - 0xe0);
    constexpr std::size_t kLongest = 32;
    const auto start = std::span(segment.data).first(std::min(segment.data.size(), kLongest));
    const auto end = std::find_if(start.begin(), start.end(),
                                  [](std::uint8_t c) { return c < 0x21 || c > 0x7e; });
    const std::string mark(start.begin(), end);
    if (mark.size() > 2) name += " (" + mark + ")";
    return name;
}

// What other kinds of file have a place for.
bool IsNeutral(const SChunk& chunk) {
    constexpr std::string_view kTypes[] = {"IHDR", "PLTE", "tRNS", "hIST", "iDOT", "iCCP",
                                           "eXIf", "pHYs", "ICCP", "EXIF", "XMP "};
    return pngtext::IsText(chunk) || IsColourChunk(chunk) ||
           std::find(std::begin(kTypes), std::end(kTypes), chunk.type) != std::end(kTypes);
}

bool IsNeutral(const SSegment& segment) {
    const auto is = [&](int app, std::string_view mark) {
        return segment.marker == 0xe0 + app && BeginsWith(segment.data, mark);
    };
    return segment.marker == 0xfe || is(0, "JFIF") || is(0, "JFXX") || is(1, {"Exif\0\0", 6}) ||
           is(1, {"http://ns.adobe.com/xap/1.0/\0", 29}) || is(2, "ICC_PROFILE") || is(2, "MPF") ||
           is(13, "Photoshop 3.0") || is(14, "Adobe");
}

bool IsFar(double a, double b) { return std::abs(a - b) > 0.001 * std::max(a, b); }

bool IsSame(const SResolution& a, const SResolution& b) {
    const auto per_inch = [](const SResolution& r) {
        return r.unit == ENResolutionUnit::Centimetre ? 2.54 : 1.0;
    };
    const bool a_is_aspect = a.unit == ENResolutionUnit::None;
    if (a_is_aspect != (b.unit == ENResolutionUnit::None)) return false;
    if (a_is_aspect) return !IsFar(a.x / a.y, b.x / b.y);
    // JPEG files have whole numbers only.
    const auto differs = [](double p, double q) { return IsFar(p, q) && std::abs(p - q) > 2; };
    return !differs(a.x * per_inch(a), b.x * per_inch(b)) &&
           !differs(a.y * per_inch(a), b.y * per_inch(b));
}

void AddOnce(CLosses& losses, std::string loss) {
    if (std::find(losses.begin(), losses.end(), loss) == losses.end()) {
        losses.push_back(std::move(loss));
    }
}

}  // namespace

SContents ReadContents(ENKind kind, int descriptor, int page) {
    SContents contents;
    switch (kind) {
        case ENKind::Png:
            contents = ReadPngContents(descriptor);
            break;
        case ENKind::Jpeg:
            contents = ReadJpegContents(descriptor);
            break;
        case ENKind::Tiff:
            contents = ReadTiffContents(descriptor, page);
            break;
        case ENKind::Webp:
            contents = ReadWebpContents(descriptor);
            break;
    }
    SMetadata& metadata = contents.metadata;
    metadata.kind = kind;
    if (metadata.iptc.empty()) metadata.iptc = photoshop::Iptc(metadata.photoshop);
    if (kind != ENKind::Tiff) metadata.is_big_endian = exif::IsBigEndian(metadata.exif);
    metadata.orientation = StoredOrientation(metadata);
    return contents;
}

void MakeUpright(SMetadata& metadata, CSize stored) {
    const bool swaps = metadata.orientation >= 5;
    const CSize size = swaps ? CSize{stored.cy, stored.cx} : stored;
    metadata.picture.size = size;
    exif::MakeUpright(metadata.exif, metadata.orientation, size);
    if (metadata.resolution && swaps) std::swap(metadata.resolution->x, metadata.resolution->y);
    if (!metadata.resolution) metadata.resolution = exif::Resolution(metadata.exif);
    if (metadata.orientation != 1 && !metadata.xmp.empty()) xmp::MakeUpright(metadata.xmp, size);
    metadata.photoshop = photoshop::WithoutThumbnails(metadata.photoshop);
    ReplacePngBlocks(metadata);
    ReplaceJpegBlocks(metadata);
    ReplaceWebpBlocks(metadata);
    ReplaceTiffValues(metadata);
}

void ReplaceProfile(SMetadata& metadata, CBytes profile) {
    metadata.profile = std::move(profile);
    std::erase_if(metadata.png_chunks,
                  [](const SChunk& chunk) { return IsColourChunk(chunk) || chunk.type == "iCCP"; });
    std::erase_if(metadata.segments, [](const SSegment& segment) {
        return segment.marker == 0xe2 && BeginsWith(segment.data, "ICC_PROFILE");
    });
    std::erase_if(metadata.tags, [](const STiffValue& value) {
        constexpr std::uint16_t kColourTags[] = {301, 318, 319, tiff::kProfile};
        return std::find(std::begin(kColourTags), std::end(kColourTags), value.tag) !=
               std::end(kColourTags);
    });
}

CBytes PhotoshopOf(const SMetadata& metadata) {
    if (metadata.iptc.empty() || !photoshop::Iptc(metadata.photoshop).empty()) {
        return metadata.photoshop;
    }
    return photoshop::WithIptc(metadata.photoshop, metadata.iptc);
}

CBytes ProfileFor(const SMetadata& metadata, CNPixelFormat written, CLosses& losses) {
    const bool is_grey = written.ColourChannels() == 1;
    if (!metadata.profile.empty()) {
        if (colour::IsProfileFor(metadata.profile, is_grey)) return metadata.profile;
        AddOnce(losses, Tr("the colour profile"));
        return {};
    }
    const bool tells =
        std::any_of(metadata.png_chunks.begin(), metadata.png_chunks.end(), &IsColourChunk);
    CBytes profile = colour::FromPngChunks(metadata.png_chunks, is_grey);
    if (tells && profile.empty()) AddOnce(losses, Tr("what its chunks tell of the colours"));
    return profile;
}

void TellForeign(const SMetadata& metadata, CLosses& losses) {
    for (const SChunk& chunk : metadata.png_chunks) {
        if (!IsNeutral(chunk)) AddOnce(losses, Tr("the chunk {}", chunk.type));
    }
    for (const SChunk& chunk : metadata.riff_chunks) {
        if (!IsNeutral(chunk)) AddOnce(losses, Tr("the chunk {}", chunk.type));
    }
    for (const SSegment& segment : metadata.segments) {
        if (!IsNeutral(segment)) AddOnce(losses, SegmentName(segment));
    }
}

CLosses LostMetadata(const SMetadata& wanted, const SMetadata& written) {
    CLosses lost;
    const bool has_profile = !wanted.profile.empty() && wanted.profile != written.profile;
    if (has_profile) lost.push_back(Tr("the colour profile"));
    if (!wanted.exif.empty() && !exif::HoldsAll(wanted.exif, written.exif)) {
        lost.push_back(Tr("the EXIF data"));
    }
    if (!wanted.xmp.empty() && !xmp::IsSame(wanted.xmp, written.xmp))
        lost.push_back(Tr("the XMP data"));
    if (!wanted.iptc.empty() && wanted.iptc != written.iptc) lost.push_back(Tr("the IPTC data"));
    if (wanted.resolution &&
        !(written.resolution && IsSame(*wanted.resolution, *written.resolution))) {
        lost.push_back(Tr("the resolution"));
    }
    // In TIFF files they become values of their own.
    for (const SText& text : wanted.texts) {
        const bool is_there =
            written.kind == ENKind::Tiff ||
            std::any_of(written.texts.begin(), written.texts.end(), [&](const SText& arrived) {
                return arrived.text.find(text.text) != std::string::npos;
            });
        if (!is_there)
            AddOnce(lost,
                    text.keyword.empty() ? Tr("the comment") : Tr("the text \"{}\"", text.keyword));
    }
    return lost;
}

}  // namespace imagefile
