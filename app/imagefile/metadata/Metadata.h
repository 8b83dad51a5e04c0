#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "app/imagefile/CImageFile.h"
#include "app/imagefile/FileKinds.h"

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

// A value of a TIFF directory: `count` items of the TIFF type, in the file's byte order.
struct STiffValue {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    CBytes data = {};
    std::uint64_t at = 0;                // where the data lay in the file or EXIF block
    std::vector<STiffValue> below = {};  // the directory that this value points at, instead of data
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

    // What the file held, in its order; those of the other kinds are empty. PNG: all but the pixels
    // (IDAT). JPEG: APPn and COM. WebP: all but the pixels and VP8X. TIFF: all but the pixels'
    // coding.
    std::vector<SChunk> png_chunks;
    std::vector<SSegment> segments;
    std::vector<SChunk> riff_chunks;
    std::vector<STiffValue> tags;
    bool is_big_endian = false;  // the file (TIFF) or the EXIF block

    // Neutral blocks, empty where the file has none.
    CBytes profile;    // ICC
    CBytes exif;       // a TIFF structure, without "Exif\0\0" ahead
    CBytes xmp;        // a packet
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

// What a TIFF file shall hold besides its pixels. Many MakerNotes hold offsets that count from the
// beginning of the file: `front` keeps them where they were. The encoder opens the file in the byte
// order told ("wb" or "wl"), appends the bytes of `front` beyond the file header before any pixel,
// sets the tags of the pixels' coding alone, and when the library has closed the file calls
// FinishTiff. A file without `front` is as valid, and costs the MakerNote.
struct STiffPlan {
    bool is_big_endian = false;
    CBytes front;                           // empty, or longer than the 8 bytes of the header
    std::uint32_t exif_at = 0, gps_at = 0;  // directories in `front`; 0 is none
    std::vector<STiffValue> tags;           // of the main directory
};
STiffPlan PlanTiff(const SMetadata& metadata, const SImageHeader& written, CLosses& losses);
// Lays the main directory out anew behind all else of a TIFF file that is open for reading and
// writing: the entries that it has, and the plan's. Answers an `errno` value, 0 when all went well.
int FinishTiff(const STiffPlan& plan, int descriptor, CLosses& losses);

// More than this is never read of what is not pixels.
inline constexpr std::uint64_t kMaxMetadataBytes = 64 << 20;

// What a file holds, as it lies there.
struct SContents {
    SMetadata metadata;
    CSize size;     // of the picture as it is stored; empty where only the decoder tells it
    int pages = 1;  // TIFF; WebP: frames
    bool is_animated = false;
    std::string unsupported;            // TIFF: "samples of 12 bits are not supported"
    bool is_too_large = false;          // more metadata than is ever taken in
    std::vector<std::string> damage;    // of the file's structure
    std::vector<std::string> warnings;  // of what is carried to no kind of file
};
// The structure of a file of this kind. `page` counts from 1.
SContents ReadContents(ENKind kind, int descriptor, int page = 1);
// Corrects all that is wrong once the picture, which is stored with this size, is upright.
void MakeUpright(SMetadata& metadata, CSize stored);
// Gives the metadata another colour profile (which may be none), and takes out all else that tells
// what the colours meant.
void ReplaceProfile(SMetadata& metadata, CBytes profile);

// What of the metadata did not arrive in a file, by comparing contents: "the EXIF data" and so on.
CLosses LostMetadata(const SMetadata& wanted, const SMetadata& written);

}  // namespace imagefile
