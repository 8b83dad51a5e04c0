#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "app/imagefile/CImageFile.h"
#include "app/imagefile/FileKinds.h"

struct tiff;

// Everything that a file holds besides the coding of its pixels, and what of it a written file
// shall hold. Within a kind of file it is carried byte for byte, and only what the picture's change
// makes wrong is corrected (orientation, sizes, thumbnails). Between kinds the neutral blocks
// travel; what has no place in the other kind is named in a warning.
namespace imagefile {

using CBytes = std::vector<std::uint8_t>;
using CBytesView = std::span<const std::uint8_t>;

// A chunk of a PNG or WebP file: four letters and its content, without length and checksum.
struct SChunk {
    std::string type;
    CBytes data;
    bool follows_pixels = false;
};

// A segment of a JPEG file: the second byte of its marker, and its content without the length.
struct SSegment {
    std::uint8_t marker = 0;
    CBytes data;
};

// A value of a TIFF directory: `count` items of the TIFF type, in this machine's byte order.
struct STiffValue {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    CBytes data;
};

// Unit of a resolution; None tells an aspect ratio only.
enum class ENResolutionUnit { None, Inch, Centimetre };
struct SResolution {
    double x = 0, y = 0;  // pixels per unit, of the upright picture
    ENResolutionUnit unit = ENResolutionUnit::None;
};

struct SText {
    std::string keyword;   // as PNG files have it; empty for a bare comment
    std::string language;  // RFC 3066; empty when not told
    std::string text;      // UTF-8
};

// How the pixels were coded, so that a file of the same kind can be coded no worse.
struct SCoding {
    std::vector<std::vector<std::uint16_t>> quantisation;  // JPEG: its tables, in zigzag order
    std::vector<std::uint8_t> sampling;  // JPEG: horizontal << 4 | vertical factor a component
    bool is_progressive = false;         // JPEG; PNG: interlaced
    std::uint16_t compression = 0;       // TIFF: tag 259
    bool is_lossy_webp = false;
};

struct SMetadata {
    ENKind kind = ENKind::Png;
    SImageHeader picture;  // upright, as it was read
    int orientation = 1;   // as the file told it, 1 to 8; all the rest here is corrected to 1
    SCoding coding;

    // What the file held, in its order; those of the other kinds are empty.
    std::vector<SChunk> png_chunks;
    std::vector<SSegment> segments;
    std::vector<SChunk> riff_chunks;
    std::vector<STiffValue> tags;
    bool is_big_endian = false;  // the file (TIFF) or the EXIF block

    // Neutral blocks, empty where the file has none.
    CBytes profile;    // ICC
    CBytes exif;       // a TIFF structure, without "Exif\0\0" ahead
    CBytes xmp;        // a packet in UTF-8
    CBytes iptc;       // IIM records, without any wrapper
    CBytes photoshop;  // image resources ("8BIM"), IPTC among them
    std::optional<SResolution> resolution;
    std::vector<SText> texts;
};

// What the functions below add to: one text for each thing that cannot be kept, such as "the text
// \"Title\"".
using CLosses = std::vector<std::string>;

// Chunks for a PNG file of this picture: all between IHDR and IDAT (PLTE excepted), and those that
// follow the pixels.
std::vector<SChunk> PngChunks(const SMetadata& metadata, const SImageHeader& written,
                              CLosses& losses);

// Segments for a JPEG file, to follow its SOI marker at once, JFIF among them: the encoder writes
// neither JFIF nor Adobe segments of its own.
std::vector<SSegment> JpegSegments(const SMetadata& metadata, const SImageHeader& written,
                                   CLosses& losses);

// ICCP, EXIF, "XMP " and further chunks for a WebP file.
std::vector<SChunk> WebpChunks(const SMetadata& metadata, const SImageHeader& written,
                               CLosses& losses);

// A TIFF file for EXIF data, whose offsets count from the beginning of the file and must stay:
// it has the byte order told, and `front` are its first bytes, before any pixel. The encoder opens
// the file with "wb" or "wl", appends what of `front` lies beyond the 8 bytes of the header, and
// after setting the tags of the pixels calls SetTiffTags.
struct STiffPlan {
    bool is_big_endian = false;
    CBytes front;                           // empty or longer than the header
    std::uint32_t exif_at = 0, gps_at = 0;  // directories in `front`; 0 is none
    std::vector<STiffValue> tags;           // of the main directory
};
STiffPlan PlanTiff(const SMetadata& metadata, const SImageHeader& written, bool is_big_tiff,
                   CLosses& losses);
// Answers false when the library refuses a tag, whose loss is told.
bool SetTiffTags(const STiffPlan& plan, tiff* file, CLosses& losses);

// Whether these bytes are an ICC profile that the picture's colours can have.
bool IsProfileFor(CBytesView profile, CNPixelFormat format);

}  // namespace imagefile
