#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <unordered_set>

#include "app/imagefile/metadata/ColourProfile.h"
#include "app/imagefile/metadata/Containers.h"
#include "app/imagefile/metadata/ExifBlock.h"
#include "app/imagefile/metadata/PngText.h"
#include "app/imagefile/metadata/TiffTree.h"
#include "hostlib/language/Texts.h"

namespace imagefile {

namespace {

using namespace tiff;

constexpr int kMaxPages = 1 << 20;

// Blocks that other kinds of file keep outside their EXIF data.
bool IsBlock(std::uint16_t tag) {
    return tag == kXmp || tag == kIptc || tag == kPhotoshop || tag == kProfile;
}

bool IsDirectory(std::uint16_t tag) { return tag == kExifDirectory || tag == kGpsDirectory; }

// MakerNotes whose offsets count from their own beginning.
bool IsSelfContained(CBytesView note) {
    constexpr std::string_view kMarks[] = {{"Nikon\0\2", 7}, "OLYMPUS", "OM SYSTEM",   "FUJIFILM",
                                           "Apple iOS",      "PENTAX ", {"LEICA\0", 6}};
    return note.size() <= 4 ||
           std::any_of(std::begin(kMarks), std::end(kMarks),
                       [note](std::string_view mark) { return BeginsWith(note, mark); });
}

bool HasMovableNote(const std::vector<STiffValue>& values) {
    const STiffValue* exif = Find(values, kExifDirectory);
    const STiffValue* note = exif ? Find(exif->below, kMakerNote) : nullptr;
    return !note || IsSelfContained(note->data);
}

CBytes Take(const std::vector<STiffValue>& values, ENTag tag) {
    const STiffValue* found = Find(values, tag);
    return found ? found->data : CBytes();
}

// How many directories follow each other, and where the wanted one lies.
struct SChain {
    int pages = 0;
    bool is_broken = false;
    SDirectory wanted;
};
SChain Walk(const CReader& reader, int page) {
    SChain chain;
    std::unordered_set<std::uint64_t> seen;
    for (std::uint64_t at = reader.First(); at != 0;) {
        const bool is_new = seen.insert(at).second;
        SDirectory directory = is_new ? reader.Directory(at) : SDirectory();
        if (!directory.is_whole || directory.entries.empty() || chain.pages == kMaxPages) {
            chain.is_broken = true;
            return chain;
        }
        at = directory.next;
        if (++chain.pages == page) chain.wanted = std::move(directory);
    }
    return chain;
}

void TakeIptc(const STiffValue* value, SMetadata& metadata) {
    if (!value) return;
    metadata.iptc = value->data;
    constexpr std::uint8_t kRecordMark = 0x1c;
    const bool is_swapped = value->type == kLong && metadata.iptc.size() >= 4 &&
                            metadata.iptc[0] != kRecordMark && metadata.iptc[3] == kRecordMark;
    for (std::size_t at = 0; is_swapped && at + 4 <= metadata.iptc.size(); at += 4) {
        std::reverse(&metadata.iptc[at], &metadata.iptc[at] + 4);
    }
}

// What the decoder would take for damage.
std::string UnsupportedSamples(const CReader& reader, const SDirectory& directory) {
    constexpr std::uint16_t kBits = 258, kPlanar = 284, kTileWidth = 322, kSampleFormat = 339;
    const auto number = [&](std::uint16_t tag, std::uint64_t otherwise) {
        const SEntry* entry = directory.Find(tag);
        return entry ? reader.Number(*entry) : otherwise;
    };
    constexpr std::uint64_t kKnown[] = {1, 2, 4, 8, 16, 32};
    constexpr std::uint64_t kFraction = 3;
    const std::uint64_t bits = number(kBits, 1);
    if (std::find(std::begin(kKnown), std::end(kKnown), bits) == std::end(kKnown)) {
        return Tr("samples of {} bits are not supported", bits);
    }
    if (number(kSampleFormat, 1) == kFraction && bits < 32) {
        return Tr("fractions of {} bits are not supported", bits);
    }
    const bool is_planar_tiled = number(kPlanar, 1) == 2 && directory.Find(kTileWidth);
    return is_planar_tiled ? Tr("tiles of one channel each are not supported") : "";
}

void WarnOfLeftOut(const std::vector<std::uint16_t>& left_out, SContents& contents) {
    for (const std::uint16_t tag : left_out) {
        contents.warnings.push_back(tag == kPhotoshopLayers
                                        ? Tr("its layers are left out (TIFF tag 37724)")
                                        : Tr("the TIFF tag {} is too large and is left out", tag));
    }
}

void AppendValue(std::vector<STiffValue>& values, ENTag tag, ENType type, const CBytes& data) {
    if (!data.empty()) Set(values, {tag, type, data.size() / ItemBytes(type), data});
}

void AppendRational(std::vector<STiffValue>& values, ENTag tag, double number, bool big_endian) {
    const bool is_whole = number == static_cast<double>(static_cast<std::uint32_t>(number));
    const std::uint32_t denominator = is_whole ? 1 : 10000;
    CBytes data(8);
    PutNumber(&data[0], static_cast<std::uint64_t>(number * denominator + 0.5), 4, big_endian);
    PutNumber(&data[4], denominator, 4, big_endian);
    AppendValue(values, tag, kRational, data);
}

CBytes Short(std::uint64_t number, bool big_endian) {
    CBytes data(2);
    PutNumber(data.data(), number, 2, big_endian);
    return data;
}

// The values of the first directory of EXIF data, and those below it.
std::vector<STiffValue> ExifValues(const CBytes& block) {
    const CReader reader(FromBytes(block));
    std::uint64_t budget = kMaxMetadataBytes;
    std::vector<std::uint16_t> left_out;
    return reader.Values(reader.Directory(reader.First()), budget, left_out);
}

// PNG texts and bare comments have these places in a TIFF file, when nothing else is there.
void AddTexts(const SMetadata& metadata, std::vector<STiffValue>& tags, CLosses& losses) {
    const struct {
        std::string_view keyword;
        ENTag tag;
    } kPlaces[] = {{"", kImageDescription},      {pngtext::kCommentKeyword, kImageDescription},
                   {"Title", kImageDescription}, {"Description", kImageDescription},
                   {"Author", kArtist},          {"Copyright", kCopyright},
                   {"Software", kSoftware}};
    for (const SText& text : metadata.texts) {
        const auto place = std::find_if(std::begin(kPlaces), std::end(kPlaces),
                                        [&](const auto& p) { return p.keyword == text.keyword; });
        if (place == std::end(kPlaces) || Find(tags, place->tag)) {
            losses.push_back(text.keyword.empty() ? Tr("the comment")
                                                  : Tr("the text \"{}\"", text.keyword));
            continue;
        }
        CBytes data = AsBytes(text.text);
        data.push_back(0);
        AppendValue(tags, place->tag, kAscii, data);
    }
}

// The block that begins a TIFF file, and where its directories lie in it.
void SetFront(const SMetadata& metadata, STiffPlan& plan) {
    plan.front = metadata.exif;
    if (metadata.kind == ENKind::Tiff) {
        std::vector<STiffValue> pointers = ExifValues(metadata.exif);
        std::erase_if(pointers, [](const STiffValue& value) { return !IsDirectory(value.tag); });
        bool moved = false;
        plan.front = exif::Build(pointers, plan.is_big_endian, moved);
    }
    const CReader reader(FromBytes(plan.front));
    const SDirectory main = reader.Directory(reader.First());
    const auto place = [&](ENTag tag) {
        const SEntry* entry = main.Find(tag);
        return static_cast<std::uint32_t>(entry ? reader.Number(*entry) : 0);
    };
    plan.exif_at = place(kExifDirectory);
    plan.gps_at = place(kGpsDirectory);
    if (plan.exif_at == 0 && plan.gps_at == 0) plan.front.clear();
}

bool WriteAll(int descriptor, std::uint64_t at, CBytesView bytes) {
    while (!bytes.empty()) {
        const ssize_t written =
            pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(at));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        at += static_cast<std::uint64_t>(written);
    }
    return true;
}

// Whether the file begins with the plan's front, but for the header.
bool HasFront(const STiffPlan& plan, const CReader& reader, const CReadAt& read) {
    constexpr std::size_t kHeader = 8;
    CBytes bytes(plan.front.size() > kHeader ? plan.front.size() - kHeader : 0);
    return !bytes.empty() && !reader.IsWide() && reader.IsBigEndian() == plan.is_big_endian &&
           read(kHeader, bytes) &&
           std::equal(bytes.begin(), bytes.end(), plan.front.begin() + kHeader);
}

}  // namespace

SContents ReadTiffContents(int descriptor, int page) {
    SContents contents;
    SMetadata& metadata = contents.metadata;
    const CReader reader(FromFile(descriptor));
    const SChain chain = Walk(reader, page);
    contents.pages = chain.pages;
    if (chain.is_broken) contents.damage.push_back(Tr("the chain of its pages is broken"));
    const SDirectory& directory = chain.wanted;
    contents.unsupported = UnsupportedSamples(reader, directory);
    std::uint64_t budget = kMaxMetadataBytes;
    std::vector<std::uint16_t> left_out;
    SDirectory carried = directory;
    std::erase_if(carried.entries, [&](const SEntry& entry) {
        const bool is_layers = entry.tag == kPhotoshopLayers;
        if (is_layers) left_out.push_back(entry.tag);
        return is_layers || IsPixelCoding(entry.tag) || entry.tag == kSubIfds;
    });
    metadata.tags = reader.Values(carried, budget, left_out);
    WarnOfLeftOut(left_out, contents);
    if (directory.Find(kSubIfds)) {
        contents.warnings.push_back(Tr("the smaller or further pictures below it are left out"));
    }
    metadata.is_big_endian = reader.IsBigEndian();
    metadata.profile = Take(metadata.tags, kProfile);
    metadata.xmp = Take(metadata.tags, kXmp);
    metadata.photoshop = Take(metadata.tags, kPhotoshop);
    TakeIptc(Find(metadata.tags, kIptc), metadata);
    if (const SEntry* compression = directory.Find(259)) {
        metadata.coding.compression = static_cast<std::uint16_t>(reader.Number(*compression));
    }
    std::vector<STiffValue> block = metadata.tags;
    std::erase_if(block, [](const STiffValue& value) { return IsBlock(value.tag); });
    bool moved = false;
    metadata.exif = exif::Build(block, metadata.is_big_endian, moved);
    if (moved && !HasMovableNote(block)) {
        contents.warnings.push_back(
            Tr("the MakerNotes cannot stay at their place; what they point at may be lost"));
    }
    return contents;
}

STiffPlan PlanTiff(const SMetadata& metadata, const SImageHeader& written, CLosses& losses) {
    STiffPlan plan;
    plan.is_big_endian =
        metadata.kind == ENKind::Tiff ? metadata.is_big_endian : exif::IsBigEndian(metadata.exif);
    if (metadata.kind != ENKind::Tiff || !metadata.exif.empty()) SetFront(metadata, plan);
    const bool is_tiff = metadata.kind == ENKind::Tiff;
    plan.tags = is_tiff ? metadata.tags : ExifValues(metadata.exif);
    std::erase_if(plan.tags, [&](const STiffValue& value) {
        // In EXIF data too, the byte offset of a thumbnail would mislead.
        return IsPixelCoding(value.tag) || value.tag == kProfile;
    });
    if (is_tiff) {
        // The corrected directories are those of the block.
        for (const STiffValue& value : ExifValues(metadata.exif)) {
            if (IsDirectory(value.tag)) Set(plan.tags, value);
        }
    }
    AppendValue(plan.tags, kProfile, kUndefined, ProfileFor(metadata, written.format, losses));
    if (is_tiff) return plan;
    TellForeign(metadata, losses);
    AppendValue(plan.tags, kXmp, kByte, metadata.xmp);
    AppendValue(plan.tags, kIptc, kUndefined, metadata.iptc);
    AppendValue(plan.tags, kPhotoshop, kByte, metadata.photoshop);
    if (metadata.resolution) {
        const SResolution& told = *metadata.resolution;
        AppendRational(plan.tags, kXResolution, told.x, plan.is_big_endian);
        AppendRational(plan.tags, kYResolution, told.y, plan.is_big_endian);
        AppendValue(plan.tags, kResolutionUnit, kShort,
                    Short(static_cast<std::uint64_t>(told.unit) + 1, plan.is_big_endian));
    }
    AddTexts(metadata, plan.tags, losses);
    return plan;
}

int FinishTiff(const STiffPlan& plan, int descriptor, CLosses& losses) {
    const CReadAt read = FromFile(descriptor);
    const CReader reader(read);
    std::uint64_t budget = ~std::uint64_t{0};
    std::vector<std::uint16_t> left_out;
    std::vector<STiffValue> values =
        reader.Values(reader.Directory(reader.First()), budget, left_out);
    const off_t end = lseek(descriptor, 0, SEEK_END);
    if (!reader.IsTiff() || end < 0) return EIO;
    const bool has_front = HasFront(plan, reader, read);
    std::vector<STiffValue> wanted = plan.tags;
    for (STiffValue& value : wanted) {
        const std::uint32_t at = value.tag == kExifDirectory  ? plan.exif_at
                                 : value.tag == kGpsDirectory ? plan.gps_at
                                                              : 0;
        if (!has_front || at == 0) continue;
        value.below.clear();
        value.data.resize(4);
        PutNumber(value.data.data(), at, 4, plan.is_big_endian);
    }
    if (reader.IsBigEndian() != plan.is_big_endian) SwapBytes(wanted);
    const std::uint64_t base = (static_cast<std::uint64_t>(end) + 15) / 16 * 16;
    std::erase_if(values, [](const STiffValue& value) { return !IsPixelCoding(value.tag); });
    std::move(wanted.begin(), wanted.end(), std::back_inserter(values));
    CLayout layout(base, reader.IsBigEndian(), reader.IsWide());
    const std::uint64_t main = layout.Add(values);
    if (layout.MovedMakerNote() && !HasMovableNote(values)) {
        losses.push_back(Tr("the MakerNotes at their place"));
    }
    CBytes pointer(reader.IsWide() ? 8 : 4);
    PutNumber(pointer.data(), main, pointer.size(), reader.IsBigEndian());
    if (!WriteAll(descriptor, base, layout.Bytes()) ||
        !WriteAll(descriptor, pointer.size(), pointer)) {
        return errno == 0 ? EIO : errno;
    }
    return 0;
}

}  // namespace imagefile
