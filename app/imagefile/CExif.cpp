#include "app/imagefile/CExif.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <string_view>
#include <utility>

namespace imagefile {

namespace {

using CBytes = std::vector<std::uint8_t>;

constexpr std::uint16_t kOrientation = 0x0112;
constexpr std::uint16_t kXResolution = 0x011a;
constexpr std::uint16_t kYResolution = 0x011b;
constexpr std::uint16_t kResolutionUnit = 0x0128;
constexpr std::uint16_t kExifPointer = 0x8769;
constexpr std::uint16_t kGpsPointer = 0x8825;
constexpr std::uint16_t kExifVersion = 0x9000;
constexpr std::uint16_t kPixelXDimension = 0xa002;
constexpr std::uint16_t kPixelYDimension = 0xa003;
constexpr std::uint16_t kInteroperabilityPointer = 0xa005;

constexpr std::uint16_t kShort = 3, kLong = 4, kRational = 5, kUndefined = 7, kLastClassic = 13;

// Values of the main directory that tell about the picture and not how its pixels are stored.
constexpr std::uint16_t kDescriptive[] = {
    0x010e, 0x010f, 0x0110, 0x0131, 0x0132, 0x013b, 0x013c,          // description to computer
    0x4746, 0x4749, 0x8298, 0x9c9b, 0x9c9c, 0x9c9d, 0x9c9e, 0x9c9f,  // rating, copyright, XP texts
};
// Those that point at pixels: of another picture once the data have moved.
constexpr std::uint16_t kPlaces[] = {0x0111, 0x0117, 0x0144, 0x0145, 0x014a, 0x0201, 0x0202};

constexpr std::size_t kEntryBytes = 12;
constexpr std::uint64_t kMaxEntries = 1000;
constexpr std::uint64_t kMaxValueBytes = 1 << 20;
constexpr std::uint64_t kMaxBytes = 4 << 20;

// The bytes of one item of a TIFF type, and of the unit in which its byte order counts.
struct STypeSize {
    std::uint8_t item, unit;
};
constexpr STypeSize kTypeSizes[] = {{0, 0}, {1, 1}, {1, 1}, {2, 2}, {4, 4}, {8, 4}, {1, 1},
                                    {1, 1}, {2, 2}, {4, 4}, {8, 4}, {4, 4}, {8, 8}, {4, 4},
                                    {0, 0}, {0, 0}, {8, 8}, {8, 8}, {8, 8}};

template <std::size_t N>
bool IsOneOf(const std::uint16_t (&tags)[N], std::uint16_t tag) {
    return std::find(std::begin(tags), std::end(tags), tag) != std::end(tags);
}

std::uint64_t LittleEndian(const std::uint8_t* bytes, std::size_t count) {
    std::uint64_t number = 0;
    for (std::size_t i = count; i-- > 0;) number = number << 8 | bytes[i];
    return number;
}

void Append(CBytes& to, std::uint64_t number, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        to.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
    }
}

CBytes Numbers(std::initializer_list<std::uint64_t> numbers, std::size_t bytes_each) {
    CBytes bytes;
    for (const std::uint64_t number : numbers) Append(bytes, number, bytes_each);
    return bytes;
}

bool ReadFile(int descriptor, std::uint64_t offset, std::span<std::uint8_t> to) {
    return pread(descriptor, to.data(), to.size(), static_cast<off_t>(offset)) ==
           static_cast<ssize_t>(to.size());
}

bool WriteFile(int descriptor, std::uint64_t offset, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written =
            pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
    return true;
}

}  // namespace

// Reads directories of either byte order, with the offsets of classic or of big TIFF.
class CExif::CParser {
  public:
    explicit CParser(const CReader& source) : source_(source) {}

    // Where the first directory lies; 0 when this is no TIFF structure.
    std::uint64_t Begin() {
        std::array<std::uint8_t, 16> header = {};
        if (!source_(0, std::span(header).first(8))) return 0;
        big_endian_ = header[0] == 'M';
        if (header[0] != header[1] || (header[0] != 'I' && header[0] != 'M')) return 0;
        const std::uint64_t version = Number(&header[2], 2);
        is_wide_ = version == 43;
        if (!is_wide_) return version == 42 ? Number(&header[4], 4) : 0;
        return source_(0, header) ? Number(&header[8], 8) : 0;
    }

    CDirectory Directory(std::uint64_t offset) {
        std::array<std::uint8_t, 8> head = {};
        const std::size_t head_bytes = is_wide_ ? 8 : 2;
        const std::size_t entry_bytes = is_wide_ ? 20 : kEntryBytes;
        if (offset == 0 || !source_(offset, std::span(head).first(head_bytes))) return {};
        const std::uint64_t count = Number(head.data(), head_bytes);
        CDirectory directory;
        CBytes entry(entry_bytes);
        for (std::uint64_t i = 0; i < std::min(count, kMaxEntries); ++i) {
            if (!source_(offset + head_bytes + i * entry_bytes, entry)) break;
            AddValue(directory, entry.data());
        }
        return directory;
    }

    // The directory that a value of `directory` points at; the pointer is taken out.
    CDirectory Follow(CDirectory& directory, std::uint16_t pointer) {
        const SValue* found = Find(directory, pointer);
        if (!found) return {};
        const std::uint64_t offset = LittleEndian(found->data.data(), found->data.size());
        const bool is_offset = found->count == 1 && found->data.size() >= 4;
        std::erase_if(directory, [&](const SValue& value) { return value.tag == pointer; });
        return is_offset ? Directory(offset) : CDirectory();
    }

  private:
    std::uint64_t Number(const std::uint8_t* bytes, std::size_t count) const {
        if (!big_endian_) return LittleEndian(bytes, count);
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < count; ++i) number = number << 8 | bytes[i];
        return number;
    }

    void AddValue(CDirectory& directory, const std::uint8_t* entry) {
        const std::size_t word = is_wide_ ? 8 : 4;
        const std::uint64_t type = Number(entry + 2, 2);
        const std::uint64_t count = Number(entry + 4, word);
        if (type >= std::size(kTypeSizes) || kTypeSizes[type].item == 0) return;
        if (count == 0 || count > kMaxValueBytes) return;
        const std::uint64_t bytes = count * kTypeSizes[type].item;
        if (bytes > kMaxValueBytes || taken_ + bytes > kMaxBytes) return;
        SValue value = {static_cast<std::uint16_t>(Number(entry, 2)),
                        static_cast<std::uint16_t>(type), static_cast<std::uint32_t>(count),
                        CBytes(bytes)};
        if (bytes <= word) {
            std::memcpy(value.data.data(), entry + 4 + word, bytes);
        } else if (!source_(Number(entry + 4 + word, word), value.data)) {
            return;
        }
        if (big_endian_) {
            const std::size_t unit = kTypeSizes[type].unit;
            for (std::size_t at = 0; at < bytes; at += unit) {
                std::reverse(&value.data[at], &value.data[at] + unit);
            }
        }
        taken_ += bytes;
        Set(directory, std::move(value));
    }

    const CReader& source_;
    bool big_endian_ = false;
    bool is_wide_ = false;
    std::uint64_t taken_ = 0;
};

const CExif::SValue* CExif::Find(const CDirectory& directory, std::uint16_t tag) {
    const auto found = std::find_if(directory.begin(), directory.end(),
                                    [tag](const SValue& value) { return value.tag == tag; });
    return found == directory.end() ? nullptr : &*found;
}

void CExif::Set(CDirectory& directory, SValue value) {
    std::erase_if(directory, [&](const SValue& old) { return old.tag == value.tag; });
    directory.push_back(std::move(value));
}

std::optional<CExif> CExif::Parse(const CReader& source, bool descriptive_only) {
    CParser parser(source);
    CExif parsed;
    parsed.main_ = parser.Directory(parser.Begin());
    parsed.exif_ = parser.Follow(parsed.main_, kExifPointer);
    parsed.gps_ = parser.Follow(parsed.main_, kGpsPointer);
    parsed.interoperability_ = parser.Follow(parsed.exif_, kInteroperabilityPointer);
    std::erase_if(parsed.main_, [&](const SValue& value) {
        return descriptive_only ? !IsOneOf(kDescriptive, value.tag) : IsOneOf(kPlaces, value.tag);
    });
    bool is_empty = true;
    for (CDirectory* part :
         {&parsed.main_, &parsed.exif_, &parsed.gps_, &parsed.interoperability_}) {
        std::erase_if(*part, [](const SValue& value) { return value.type > kLastClassic; });
        is_empty = is_empty && part->empty();
    }
    if (is_empty) return std::nullopt;
    return parsed;
}

std::optional<CExif> CExif::FromBytes(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view kMark("Exif\0\0", 6);
    if (bytes.size() >= kMark.size() && std::equal(kMark.begin(), kMark.end(), bytes.begin())) {
        bytes = bytes.subspan(kMark.size());
    }
    const CReader reader = [bytes](std::uint64_t offset, std::span<std::uint8_t> to) {
        if (offset > bytes.size() || bytes.size() - offset < to.size()) return false;
        std::copy_n(bytes.data() + offset, to.size(), to.data());
        return true;
    };
    return Parse(reader, false);
}

std::optional<CExif> CExif::FromTiffFile(int descriptor) {
    const CReader reader = [descriptor](std::uint64_t offset, std::span<std::uint8_t> to) {
        return offset < std::uint64_t{1} << 62 && ReadFile(descriptor, offset, to);
    };
    return Parse(reader, true);
}

void CExif::Describe(int width, int height, double x_resolution, double y_resolution) {
    const auto per_inch = [](double per_mm) {
        constexpr double kMax = 4294967295.0;
        return static_cast<std::uint64_t>(std::clamp(std::round(per_mm * 25400.0), 1.0, kMax));
    };
    Set(main_, {kOrientation, kShort, 1, Numbers({1}, 2)});
    Set(main_, {kXResolution, kRational, 1, Numbers({per_inch(x_resolution), 1000}, 4)});
    Set(main_, {kYResolution, kRational, 1, Numbers({per_inch(y_resolution), 1000}, 4)});
    Set(main_, {kResolutionUnit, kShort, 1, Numbers({2}, 2)});  // an inch
    const auto side = [](int pixels) { return Numbers({static_cast<std::uint64_t>(pixels)}, 4); };
    Set(exif_, {kPixelXDimension, kLong, 1, side(width)});
    Set(exif_, {kPixelYDimension, kLong, 1, side(height)});
    if (!Find(exif_, kExifVersion)) {
        Set(exif_, {kExifVersion, kUndefined, 4, {'0', '2', '3', '2'}});
    }
}

std::optional<CExif::SResolution> CExif::Resolution() const {
    const auto value = [this](std::uint16_t tag) {
        const SValue* found = Find(main_, tag);
        if (!found || found->type != kRational || found->count != 1) return 0.0;
        const auto denominator = static_cast<double>(LittleEndian(&found->data[4], 4));
        return denominator > 0 ? static_cast<double>(LittleEndian(&found->data[0], 4)) / denominator
                               : 0.0;
    };
    const SValue* unit = Find(main_, kResolutionUnit);
    const bool is_cm = unit && unit->type == kShort && unit->data[0] == 3;
    const double per_unit = is_cm ? 10.0 : 25.4;
    const SResolution resolution = {value(kXResolution) / per_unit, value(kYResolution) / per_unit};
    if (resolution.x <= 0 || resolution.y <= 0) return std::nullopt;
    return resolution;
}

// The directory as it lies at `base`, followed by the values that do not fit their entries. Its
// entries are those given, as bytes, and one for every value that is not among them.
CBytes CExif::Encode(const CDirectory& directory, std::uint32_t base, CBytes entry_bytes) {
    std::vector<std::pair<std::uint16_t, CBytes>> entries;
    for (std::size_t at = 0; at < entry_bytes.size(); at += kEntryBytes) {
        const auto* entry = &entry_bytes[at];
        entries.emplace_back(static_cast<std::uint16_t>(LittleEndian(entry, 2)),
                             CBytes(entry, entry + kEntryBytes));
    }
    const std::size_t present = entries.size();
    std::vector<const SValue*> added;
    for (const SValue& value : directory) {
        const bool is_present =
            std::any_of(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(present),
                        [&](const auto& entry) { return entry.first == value.tag; });
        if (!is_present) added.push_back(&value);
    }
    CBytes values;
    const std::size_t values_at = base + 2 + (present + added.size()) * kEntryBytes + 4;
    for (const SValue* value : added) {
        CBytes entry;
        Append(entry, value->tag, 2);
        Append(entry, value->type, 2);
        Append(entry, value->count, 4);
        if (value->data.size() <= 4) {
            entry.insert(entry.end(), value->data.begin(), value->data.end());
            entry.resize(kEntryBytes);
        } else {
            Append(entry, values_at + values.size(), 4);
            values.insert(values.end(), value->data.begin(), value->data.end());
            values.resize((values.size() + 1) / 2 * 2);  // values begin at even places
        }
        entries.emplace_back(value->tag, std::move(entry));
    }
    std::sort(entries.begin(), entries.end());
    CBytes bytes;
    Append(bytes, entries.size(), 2);
    for (const auto& [tag, entry] : entries) bytes.insert(bytes.end(), entry.begin(), entry.end());
    Append(bytes, 0, 4);  // no further directory
    bytes.insert(bytes.end(), values.begin(), values.end());
    return bytes;
}

// The subordinate directories as they lie from `base` on, and what points at them.
struct CExif::SSubdirectories {
    CBytes bytes;
    CDirectory pointers;

    std::uint32_t Add(const CDirectory& directory, std::uint32_t base) {
        const auto at = base + static_cast<std::uint32_t>(bytes.size());
        const CBytes encoded = Encode(directory, at);
        bytes.insert(bytes.end(), encoded.begin(), encoded.end());
        return at;
    }
};

CExif::SSubdirectories CExif::EncodeSubdirectories(std::uint32_t base) const {
    SSubdirectories parts;
    const auto pointer = [](std::uint16_t tag, std::uint32_t at) {
        return SValue{tag, kLong, 1, Numbers({at}, 4)};
    };
    CDirectory exif = exif_;
    if (!interoperability_.empty()) {
        exif.push_back(pointer(kInteroperabilityPointer, parts.Add(interoperability_, base)));
    }
    if (!exif.empty()) parts.pointers.push_back(pointer(kExifPointer, parts.Add(exif, base)));
    if (!gps_.empty()) parts.pointers.push_back(pointer(kGpsPointer, parts.Add(gps_, base)));
    return parts;
}

CBytes CExif::Bytes() const {
    constexpr std::uint32_t kMainAt = 8;
    // What the pointers hold does not change how long the main directory is.
    const auto with = [this](const SSubdirectories& parts) {
        CDirectory main = main_;
        main.insert(main.end(), parts.pointers.begin(), parts.pointers.end());
        return Encode(main, kMainAt);
    };
    const auto main_bytes = static_cast<std::uint32_t>(with(EncodeSubdirectories(0)).size());
    const SSubdirectories parts = EncodeSubdirectories(kMainAt + main_bytes);
    CBytes bytes = {'I', 'I', 42, 0, kMainAt, 0, 0, 0};
    const CBytes main = with(parts);
    bytes.insert(bytes.end(), main.begin(), main.end());
    bytes.insert(bytes.end(), parts.bytes.begin(), parts.bytes.end());
    return bytes;
}

int CExif::AddToTiffFile(int descriptor) const {
    std::array<std::uint8_t, 8> header = {};
    std::array<std::uint8_t, 2> count = {};
    struct stat file = {};
    if (fstat(descriptor, &file) != 0) return errno;
    if (!ReadFile(descriptor, 0, header)) return EIO;
    if (std::memcmp(header.data(), "II*\0", 4) != 0) return 0;
    const std::uint64_t main_at = LittleEndian(&header[4], 4);
    if (!ReadFile(descriptor, main_at, count)) return EIO;
    CBytes entries(LittleEndian(count.data(), 2) * kEntryBytes);
    if (!ReadFile(descriptor, main_at + 2, entries)) return EIO;

    const std::uint64_t end = (static_cast<std::uint64_t>(file.st_size) + 1) / 2 * 2;
    if (end + 2 * kMaxBytes > 0xffffffffU) return 0;
    const SSubdirectories parts = EncodeSubdirectories(static_cast<std::uint32_t>(end));
    CDirectory main;
    std::copy_if(main_.begin(), main_.end(), std::back_inserter(main),
                 [](const SValue& value) { return IsOneOf(kDescriptive, value.tag); });
    main.insert(main.end(), parts.pointers.begin(), parts.pointers.end());
    const std::uint64_t new_main_at = end + parts.bytes.size();
    const CBytes main_bytes =
        Encode(main, static_cast<std::uint32_t>(new_main_at), std::move(entries));
    const bool is_written = WriteFile(descriptor, end, parts.bytes) &&
                            WriteFile(descriptor, new_main_at, main_bytes) &&
                            WriteFile(descriptor, 4, Numbers({new_main_at}, 4));
    return is_written ? 0 : errno;
}

}  // namespace imagefile
