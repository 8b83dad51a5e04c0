#include "app/imagefile/metadata/TiffTree.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

namespace imagefile::tiff {

namespace {

constexpr std::uint64_t kMaxEntries = 65536;
constexpr int kMaxDepth = 3;
constexpr std::uint8_t kItemBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};

bool IsPointer(std::uint16_t tag) {
    return tag == kExifDirectory || tag == kGpsDirectory || tag == kInteroperability;
}

}  // namespace

bool IsPixelCoding(std::uint16_t tag) {
    constexpr std::uint16_t kTags[] = {254, 255, 256, 257, 258, 259, 262, 263, 264, 265, 266, 273,
                                       277, 278, 279, 280, 281, 284, 288, 289, 290, 291, 292, 293,
                                       297, 317, 320, 321, 322, 323, 324, 325, 326, 327, 328, 332,
                                       333, 334, 336, 337, 338, 339, 340, 341, 342, 347, 512, 513,
                                       514, 515, 517, 518, 519, 520, 521, 529, 530, 531, 532, 559};
    return std::binary_search(std::begin(kTags), std::end(kTags), tag);
}

std::size_t ItemBytes(std::uint16_t type) {
    return type < std::size(kItemBytes) ? kItemBytes[type] : 0;
}

CReadAt FromBytes(CBytesView bytes) {
    return [bytes](std::uint64_t offset, std::span<std::uint8_t> to) {
        if (offset > bytes.size() || bytes.size() - offset < to.size()) return false;
        std::copy_n(bytes.data() + offset, to.size(), to.data());
        return true;
    };
}

CReadAt FromFile(int descriptor) {
    return [descriptor](std::uint64_t offset, std::span<std::uint8_t> to) {
        while (!to.empty()) {
            if (offset >= std::uint64_t{1} << 62) return false;
            const ssize_t got = pread(descriptor, to.data(), to.size(), static_cast<off_t>(offset));
            if (got <= 0) return false;
            to = to.subspan(static_cast<std::size_t>(got));
            offset += static_cast<std::uint64_t>(got);
        }
        return true;
    };
}

std::uint64_t GetNumber(const std::uint8_t* from, std::size_t bytes, bool is_big_endian) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
        number = number << 8 | from[is_big_endian ? i : bytes - 1 - i];
    }
    return number;
}

void PutNumber(std::uint8_t* to, std::uint64_t number, std::size_t bytes, bool is_big_endian) {
    for (std::size_t i = 0; i < bytes; ++i) {
        to[is_big_endian ? bytes - 1 - i : i] = static_cast<std::uint8_t>(number >> (8 * i));
    }
}

const SEntry* SDirectory::Find(std::uint16_t tag) const {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [tag](const SEntry& entry) { return entry.tag == tag; });
    return found == entries.end() ? nullptr : &*found;
}

CReader::CReader(CReadAt read) : read_(std::move(read)) {
    std::array<std::uint8_t, 16> header = {};
    if (!read_(0, std::span(header).first(8))) return;
    if (header[0] != header[1] || (header[0] != 'I' && header[0] != 'M')) return;
    is_big_endian_ = header[0] == 'M';
    const std::uint64_t version = GetNumber(&header[2], 2, is_big_endian_);
    is_wide_ = version == 43;
    if (version == 42) first_ = GetNumber(&header[4], 4, is_big_endian_);
    if (is_wide_ && read_(0, header)) first_ = GetNumber(&header[8], 8, is_big_endian_);
}

SDirectory CReader::Directory(std::uint64_t at) const {
    const std::size_t word = is_wide_ ? 8 : 4;
    const std::size_t head_bytes = is_wide_ ? 8 : 2, entry_bytes = 4 + 2 * word;
    SDirectory directory;
    std::array<std::uint8_t, 20> bytes = {};
    if (at == 0 || !read_(at, std::span(bytes).first(head_bytes))) return directory;
    const std::uint64_t count = GetNumber(bytes.data(), head_bytes, is_big_endian_);
    if (count > kMaxEntries) return directory;
    at += head_bytes;
    for (std::uint64_t i = 0; i < count; ++i, at += entry_bytes) {
        if (!read_(at, std::span(bytes).first(entry_bytes))) return directory;
        SEntry entry;
        entry.tag = static_cast<std::uint16_t>(GetNumber(&bytes[0], 2, is_big_endian_));
        entry.type = static_cast<std::uint16_t>(GetNumber(&bytes[2], 2, is_big_endian_));
        entry.count = GetNumber(&bytes[4], word, is_big_endian_);
        const std::size_t item = ItemBytes(entry.type);
        if (item == 0 || entry.count > std::uint64_t{1} << 40) continue;
        entry.bytes = entry.count * item;
        entry.value_at =
            entry.bytes <= word ? at + 4 + word : GetNumber(&bytes[4 + word], word, is_big_endian_);
        directory.entries.push_back(entry);
    }
    directory.next_at = at;
    directory.is_whole = read_(at, std::span(bytes).first(word));
    if (directory.is_whole) directory.next = GetNumber(bytes.data(), word, is_big_endian_);
    return directory;
}

std::uint64_t CReader::Number(const SEntry& entry) const {
    std::array<std::uint8_t, 8> bytes = {};
    const std::size_t item = ItemBytes(entry.type);
    if (entry.count == 0 || !read_(entry.value_at, std::span(bytes).first(item))) return 0;
    return GetNumber(bytes.data(), item, is_big_endian_);
}

double CReader::Fraction(const SEntry& entry) const {
    std::array<std::uint8_t, 8> bytes = {};
    if (entry.type != kRational || entry.count == 0 || !read_(entry.value_at, bytes)) return 0;
    const auto denominator = static_cast<double>(GetNumber(&bytes[4], 4, is_big_endian_));
    return denominator > 0
               ? static_cast<double>(GetNumber(bytes.data(), 4, is_big_endian_)) / denominator
               : 0;
}

std::vector<STiffValue> CReader::Values(const SDirectory& directory, std::uint64_t& budget,
                                        std::vector<std::uint16_t>& left_out, int depth) const {
    std::vector<STiffValue> values;
    for (const SEntry& entry : directory.entries) {
        STiffValue value = {entry.tag, entry.type, entry.count, {}, entry.value_at, {}};
        if (IsPointer(entry.tag)) {
            if (depth == kMaxDepth) continue;
            value.below = Values(Directory(Number(entry)), budget, left_out, depth + 1);
            if (value.below.empty()) continue;
            value.type = kLong;
            value.count = 1;
        } else if (entry.bytes > budget) {
            left_out.push_back(entry.tag);
            continue;
        } else {
            value.data.resize(entry.bytes);
            if (!read_(entry.value_at, value.data)) continue;
            budget -= entry.bytes;
        }
        values.push_back(std::move(value));
    }
    return values;
}

const STiffValue* Find(const std::vector<STiffValue>& values, std::uint16_t tag) {
    const auto found = std::find_if(values.begin(), values.end(),
                                    [tag](const STiffValue& value) { return value.tag == tag; });
    return found == values.end() ? nullptr : &*found;
}

void Set(std::vector<STiffValue>& values, STiffValue value) {
    std::erase_if(values, [&](const STiffValue& old) { return old.tag == value.tag; });
    values.push_back(std::move(value));
}

void SwapBytes(std::vector<STiffValue>& values) {
    for (STiffValue& value : values) {
        const bool is_pair = value.type == kRational || value.type == 10;
        const std::size_t unit = is_pair ? 4 : ItemBytes(value.type);
        for (std::size_t at = 0; unit > 1 && at + unit <= value.data.size(); at += unit) {
            std::reverse(&value.data[at], &value.data[at] + unit);
        }
        SwapBytes(value.below);
    }
}

CLayout::CLayout(std::uint64_t base, bool is_big_endian, bool is_wide)
    : base_(base), cursor_(base), is_big_endian_(is_big_endian), is_wide_(is_wide) {}

void CLayout::ReserveMakerNote(const std::vector<STiffValue>& values, std::uint64_t end) {
    const STiffValue* exif = Find(values, kExifDirectory);
    const STiffValue* note = exif ? Find(exif->below, kMakerNote) : nullptr;
    if (!note || note->at < base_ || note->at + note->data.size() > end) return;
    reserved_ = note->at;
    reserved_end_ = note->at + note->data.size();
}

// Everything begins at an even place.
std::uint64_t CLayout::Place(std::size_t bytes) {
    cursor_ += cursor_ % 2;
    if (cursor_ < reserved_end_ && cursor_ + bytes > reserved_) {
        cursor_ = reserved_end_ + reserved_end_ % 2;
    }
    return std::exchange(cursor_, cursor_ + bytes);
}

void CLayout::Put(std::uint64_t at, CBytesView bytes) {
    const std::size_t from = at - base_;
    if (bytes_.size() < from + bytes.size()) bytes_.resize(from + bytes.size());
    std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(from));
}

std::uint64_t CLayout::Add(const std::vector<STiffValue>& values) {
    std::vector<const STiffValue*> sorted;
    for (const STiffValue& value : values) sorted.push_back(&value);
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto* a, const auto* b) { return a->tag < b->tag; });
    const std::size_t word = is_wide_ ? 8 : 4, head = is_wide_ ? 8 : 2, entry = 4 + 2 * word;
    CBytes directory(head + sorted.size() * entry + word);
    const std::uint64_t place = Place(directory.size());
    PutNumber(directory.data(), sorted.size(), head, is_big_endian_);
    std::uint8_t* to = &directory[head];
    for (const STiffValue* value : sorted) {
        PutNumber(to, value->tag, 2, is_big_endian_);
        PutNumber(to + 2, value->type, 2, is_big_endian_);
        PutNumber(to + 4, value->count, word, is_big_endian_);
        std::uint8_t* inside = to + 4 + word;
        if (!value->below.empty()) {
            PutNumber(inside, Add(value->below), ItemBytes(value->type), is_big_endian_);
        } else if (value->data.size() <= word) {
            std::copy(value->data.begin(), value->data.end(), inside);
        } else {
            const bool is_note = value->tag == kMakerNote;
            const bool stays = is_note && value->at == reserved_ && reserved_ != 0;
            const std::uint64_t at = stays ? reserved_ : Place(value->data.size());
            moved_maker_note_ = moved_maker_note_ || (is_note && at != value->at);
            Put(at, value->data);
            PutNumber(inside, at, word, is_big_endian_);
        }
        to += entry;
    }
    Put(place, directory);
    return place;
}

}  // namespace imagefile::tiff
