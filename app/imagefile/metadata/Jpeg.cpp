#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
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

enum ENMarker : std::uint8_t {
    kSof0 = 0xc0,
    kSof2 = 0xc2,
    kSof15 = 0xcf,
    kRestart0 = 0xd0,
    kRestart7 = 0xd7,
    kEnd = 0xd9,
    kTables = 0xdb,
    kApp0 = 0xe0,
    kApp15 = 0xef,
    kComment = 0xfe,
};

constexpr std::string_view kJfif("JFIF\0", 5), kJfxx("JFXX\0", 5), kExif("Exif\0\0", 6);
constexpr std::string_view kXmp("http://ns.adobe.com/xap/1.0/\0", 29);
constexpr std::string_view kIcc("ICC_PROFILE\0", 12), kMpf("MPF\0", 4), kAdobe("Adobe", 5);
constexpr std::size_t kIccHead =
    kIcc.size() + 2;  // the number of the piece, and how many there are
constexpr std::size_t kMaxSegment = 65533;
constexpr std::size_t kJfifBytes = 14;

bool Is(const SSegment& segment, int app, std::string_view mark) {
    return segment.marker == kApp0 + app && BeginsWith(segment.data, mark);
}

// The bytes of a file one after the other.
class CStream {
  public:
    explicit CStream(int descriptor) : descriptor_(descriptor) {}

    // The next byte, -1 at the end.
    int Next() {
        if (at_ == bytes_.size() && !Fill()) return -1;
        return bytes_[at_++];
    }
    bool Take(std::span<std::uint8_t> to) {
        for (std::uint8_t& byte : to) {
            const int next = Next();
            if (next < 0) return false;
            byte = static_cast<std::uint8_t>(next);
        }
        return true;
    }
    // Goes to behind the next 0xff; false at the end.
    bool SkipToMark() {
        for (;;) {
            if (at_ == bytes_.size() && !Fill()) return false;
            const void* found = std::memchr(&bytes_[at_], 0xff, bytes_.size() - at_);
            if (found) {
                at_ = static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) -
                                               bytes_.data()) +
                      1;
                return true;
            }
            at_ = bytes_.size();
        }
    }

  private:
    bool Fill() {
        constexpr std::size_t kBytes = 1 << 18;
        bytes_.resize(kBytes);
        const ssize_t got = pread(descriptor_, bytes_.data(), kBytes, static_cast<off_t>(next_));
        bytes_.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        next_ += bytes_.size();
        at_ = 0;
        return !bytes_.empty();
    }

    int descriptor_;
    CBytes bytes_;
    std::size_t at_ = 0;
    std::uint64_t next_ = 0;
};

// The next marker but those within a scan's data; -1 at the end of the file.
int NextMarker(CStream& stream) {
    while (stream.SkipToMark()) {
        int marker = stream.Next();
        while (marker == 0xff) marker = stream.Next();
        if (marker > 1 && (marker < kRestart0 || marker > kRestart7)) return marker;
    }
    return -1;
}

void TakeTables(CBytesView data, SCoding& coding) {
    constexpr std::size_t kItems = 64;
    while (!data.empty()) {
        const std::size_t item = data[0] >> 4 ? 2 : 1;
        if (data.size() < 1 + kItems * item) return;
        std::vector<std::uint16_t> table;
        for (std::size_t i = 0; i < kItems; ++i) {
            table.push_back(static_cast<std::uint16_t>(GetNumber(&data[1 + i * item], item, true)));
        }
        const std::size_t at = data[0] & 3;
        if (coding.quantisation.size() <= at) coding.quantisation.resize(at + 1);
        coding.quantisation[at] = std::move(table);
        data = data.subspan(1 + kItems * item);
    }
}

void TakeFrame(std::uint8_t marker, CBytesView data, SContents& contents) {
    if (data.size() < 6 || data.size() < 6 + std::size_t{3} * data[5]) return;
    contents.size = {static_cast<int>(GetNumber(&data[3], 2, true)),
                     static_cast<int>(GetNumber(&data[1], 2, true))};
    SCoding& coding = contents.metadata.coding;
    coding.is_progressive = marker == kSof2;
    coding.sampling.clear();
    for (std::size_t i = 0; i < data[5]; ++i) coding.sampling.push_back(data[7 + 3 * i]);
}

void TakeBlock(const SSegment& segment, SMetadata& metadata) {
    const CBytes& data = segment.data;
    if (Is(segment, 0, kJfif) && data.size() >= kJfifBytes) {
        constexpr ENResolutionUnit kUnits[] = {ENResolutionUnit::None, ENResolutionUnit::Inch,
                                               ENResolutionUnit::Centimetre};
        const auto x = static_cast<double>(GetNumber(&data[8], 2, true));
        const auto y = static_cast<double>(GetNumber(&data[10], 2, true));
        const ENResolutionUnit unit = kUnits[data[7] <= 2 ? data[7] : 0];
        const bool tells = unit != ENResolutionUnit::None || x != y;
        if (x > 0 && y > 0 && tells) metadata.resolution = {x, y, unit};
    } else if (Is(segment, 1, kExif) && metadata.exif.empty()) {
        metadata.exif = After(data, kExif.size());
    } else if (Is(segment, 1, kXmp) && metadata.xmp.empty()) {
        metadata.xmp = After(data, kXmp.size());
    } else if (Is(segment, 2, kIcc) && data.size() > kIccHead) {
        Append(metadata.profile, After(data, kIccHead));
    } else if (BeginsWith(data, {"Photoshop 3.0\0", 14}) && segment.marker == kApp0 + 13) {
        Append(metadata.photoshop, After(data, photoshop::kSegmentMark.size()));
    } else if (segment.marker == kComment) {
        std::string text(data.begin(), data.end());
        while (!text.empty() && text.back() == '\0') text.pop_back();
        metadata.texts.push_back({"", "", text});
    }
}

// Pieces of a profile may lie in any order.
void SortProfile(std::vector<SSegment>& segments) {
    const auto is_piece = [](const SSegment& s) { return Is(s, 2, kIcc) && s.data.size() > 13; };
    std::vector<SSegment> pieces;
    std::copy_if(segments.begin(), segments.end(), std::back_inserter(pieces), is_piece);
    std::stable_sort(pieces.begin(), pieces.end(), [](const SSegment& a, const SSegment& b) {
        return a.data[kIcc.size()] < b.data[kIcc.size()];
    });
    auto next = pieces.begin();
    for (SSegment& segment : segments) {
        if (is_piece(segment)) segment = std::move(*next++);
    }
}

void WarnOfTail(CStream& stream, SContents& contents) {
    const bool has_more =
        std::any_of(contents.metadata.segments.begin(), contents.metadata.segments.end(),
                    [](const SSegment& segment) { return Is(segment, 2, kMpf); });
    bool follows = false;
    for (int byte = 0, left = 1 << 20; byte >= 0 && left > 0 && !follows; --left) {
        byte = stream.Next();
        follows = byte > 0;
    }
    if (has_more) {
        contents.warnings.push_back(Tr("the further pictures of the file (MPF) are left out"));
    } else if (follows) {
        contents.warnings.push_back(Tr("what follows the end of the picture is left out"));
    }
}

// Segments of one content in pieces that each begin with `mark`.
void AddPieces(std::vector<SSegment>& segments, std::uint8_t marker, std::string_view mark,
               CBytesView content) {
    const std::size_t piece = kMaxSegment - mark.size();
    for (std::size_t at = 0; at < content.size(); at += piece) {
        SSegment segment{marker, AsBytes(mark)};
        Append(segment.data, content.subspan(at, std::min(piece, content.size() - at)));
        segments.push_back(std::move(segment));
    }
}

void AddProfile(std::vector<SSegment>& segments, CBytesView profile) {
    const std::size_t piece = kMaxSegment - kIccHead;
    const std::size_t count = (profile.size() + piece - 1) / piece;
    for (std::size_t i = 0; i < count; ++i) {
        SSegment segment{kApp0 + 2, AsBytes(kIcc)};
        segment.data.push_back(static_cast<std::uint8_t>(i + 1));
        segment.data.push_back(static_cast<std::uint8_t>(count));
        Append(segment.data,
               profile.subspan(i * piece, std::min(piece, profile.size() - i * piece)));
        segments.push_back(std::move(segment));
    }
}

SSegment JfifSegment(const std::optional<SResolution>& resolution) {
    SSegment segment{kApp0, AsBytes(kJfif)};
    segment.data.resize(kJfifBytes);
    segment.data[5] = segment.data[6] = 1;  // version 1.1
    const SResolution told = resolution.value_or(SResolution{1, 1, ENResolutionUnit::None});
    // Shares of an aspect ratio keep their proportion as whole numbers.
    const double largest = std::max(told.x, told.y);
    const bool is_whole = told.x == std::floor(told.x) && told.y == std::floor(told.y);
    const bool is_aspect = told.unit == ENResolutionUnit::None;
    const double scale = is_aspect && (!is_whole || largest > 65535) ? 10000 / largest : 1;
    const auto put = [&](std::size_t at, double number) {
        PutNumber(&segment.data[at],
                  static_cast<std::uint64_t>(std::clamp(std::round(number * scale), 1.0, 65535.0)),
                  2, true);
    };
    segment.data[7] = static_cast<std::uint8_t>(told.unit);
    put(8, told.x);
    put(10, told.y);
    return segment;
}

bool IsCoding(const SSegment& segment) {
    return Is(segment, 14, kAdobe) || Is(segment, 0, kJfxx) || Is(segment, 2, kMpf);
}

std::vector<SSegment> CarriedSegments(const SMetadata& metadata, CLosses& losses,
                                      CNPixelFormat written) {
    std::vector<SSegment> carried;
    const bool has_profile =
        !metadata.profile.empty() && !ProfileFor(metadata, written, losses).empty();
    for (const SSegment& segment : metadata.segments) {
        if (IsCoding(segment) || (Is(segment, 2, kIcc) && !has_profile)) continue;
        carried.push_back(segment);
        // A small picture in the JFIF segment shows what was before.
        if (Is(segment, 0, kJfif) && segment.data.size() > kJfifBytes) {
            carried.back().data.resize(kJfifBytes);
            carried.back().data[kJfifBytes - 1] = carried.back().data[kJfifBytes - 2] = 0;
        }
    }
    return carried;
}

}  // namespace

SContents ReadJpegContents(int descriptor) {
    CStream stream(descriptor);
    SContents contents;
    SMetadata& metadata = contents.metadata;
    std::uint64_t taken = 0;
    for (int marker = NextMarker(stream); marker >= 0; marker = NextMarker(stream)) {
        if (marker == 0xd8) continue;
        if (marker == kEnd) {
            SortProfile(metadata.segments);
            for (const SSegment& segment : metadata.segments) TakeBlock(segment, metadata);
            WarnOfTail(stream, contents);
            return contents;
        }
        std::array<std::uint8_t, 2> length = {};
        if (!stream.Take(length)) break;
        const std::uint64_t bytes = GetNumber(length.data(), 2, true);
        SSegment segment{static_cast<std::uint8_t>(marker), CBytes(bytes < 2 ? 0 : bytes - 2)};
        if (!stream.Take(segment.data)) break;
        taken += bytes;
        contents.is_too_large = taken > kMaxMetadataBytes;
        if (contents.is_too_large) return contents;
        if (marker == kTables) TakeTables(segment.data, metadata.coding);
        // The others among them are no frames.
        if (marker == kSof0 || (marker > kSof0 && marker <= kSof15 && marker % 4 != 0)) {
            TakeFrame(segment.marker, segment.data, contents);
        }
        if ((marker >= kApp0 && marker <= kApp15) || marker == kComment) {
            metadata.segments.push_back(std::move(segment));
        }
    }
    contents.damage.push_back(Tr("is cut off"));
    return contents;
}

void ReplaceJpegBlocks(SMetadata& metadata) {
    bool has_exif = false, has_xmp = false, has_resources = false;
    std::vector<SSegment> segments;
    for (SSegment& segment : metadata.segments) {
        if (Is(segment, 1, kExif) && !has_exif) {
            has_exif = true;
            segment.data.resize(kExif.size());
            Append(segment.data, metadata.exif);
        } else if (Is(segment, 1, kXmp) && !has_xmp) {
            has_xmp = true;
            segment.data.resize(kXmp.size());
            Append(segment.data, metadata.xmp);
        } else if (segment.marker == kApp0 + 13 &&
                   BeginsWith(segment.data, {"Photoshop 3.0\0", 14})) {
            if (!has_resources) {
                AddPieces(segments, segment.marker, {"Photoshop 3.0\0", 14}, metadata.photoshop);
            }
            has_resources = true;
            continue;
        } else if (Is(segment, 0, kJfif) && segment.data.size() >= kJfifBytes &&
                   metadata.orientation >= 5) {
            std::swap_ranges(&segment.data[8], &segment.data[10], &segment.data[10]);
        }
        segments.push_back(std::move(segment));
    }
    metadata.segments = std::move(segments);
}

std::vector<SSegment> JpegSegments(const SMetadata& metadata, const SImageHeader& written,
                                   CLosses& losses) {
    if (metadata.kind == ENKind::Jpeg) return CarriedSegments(metadata, losses, written.format);
    TellForeign(metadata, losses);
    std::vector<SSegment> segments = {JfifSegment(metadata.resolution)};
    const auto add_one = [&](std::uint8_t marker, std::string_view mark, const CBytes& content,
                             const char* name) {
        if (content.empty()) return;
        if (mark.size() + content.size() > kMaxSegment) {
            losses.push_back(name);
            return;
        }
        AddPieces(segments, marker, mark, content);
    };
    add_one(kApp0 + 1, kExif, metadata.exif, "the EXIF data");
    add_one(kApp0 + 1, kXmp, metadata.xmp, "the XMP data");
    AddProfile(segments, ProfileFor(metadata, written.format, losses));
    AddPieces(segments, kApp0 + 13, {"Photoshop 3.0\0", 14}, PhotoshopOf(metadata));
    for (const SText& text : metadata.texts) {
        const bool is_bare = text.keyword.empty() || text.keyword == pngtext::kCommentKeyword;
        const CBytes content = AsBytes(is_bare ? text.text : text.keyword + ": " + text.text);
        if (content.size() <= kMaxSegment) {
            segments.push_back({kComment, content});
        } else {
            losses.push_back(Tr("the text \"{}\"", text.keyword));
        }
    }
    return segments;
}

}  // namespace imagefile
