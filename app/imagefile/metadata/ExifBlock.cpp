#include "app/imagefile/metadata/ExifBlock.h"

#include <algorithm>
#include <array>
#include <utility>

#include "app/imagefile/metadata/TiffTree.h"

namespace imagefile::exif {

namespace {

using namespace imagefile::tiff;

constexpr std::size_t kHeaderBytes = 8;
// MakerNotes beyond this would have blocks of JPEG files grow past what a segment holds.
constexpr std::uint64_t kMakerNoteEnd = 60000;

class CPatch {
  public:
    explicit CPatch(CBytes& block) : block_(block), reader_(FromBytes(block)) {}

    const CReader& Reader() const { return reader_; }

    void SetNumber(const SDirectory& directory, ENTag tag, std::uint64_t number) {
        const SEntry* entry = directory.Find(tag);
        if (!entry || entry->count != 1 || (entry->type != kShort && entry->type != kLong)) return;
        if (reader_.Number(*entry) == number) return;
        PutNumber(&block_[entry->value_at], number, entry->bytes, reader_.IsBigEndian());
    }

    void Swap(const SDirectory& directory, ENTag a_tag, ENTag b_tag) {
        const SEntry* a = directory.Find(a_tag);
        const SEntry* b = directory.Find(b_tag);
        if (!a || !b || a->type != b->type || a->bytes != b->bytes) return;
        if (!IsInside(*a) || !IsInside(*b)) return;
        std::swap_ranges(&block_[a->value_at], &block_[a->value_at] + a->bytes,
                         &block_[b->value_at]);
    }

    // The second directory is the thumbnail's.
    void RemoveThumbnail(const SDirectory& main) {
        if (!main.is_whole || main.next == 0) return;
        const SDirectory small = reader_.Directory(main.next);
        const SEntry* at = small.Find(kThumbnail);
        const SEntry* length = small.Find(kThumbnailLength);
        const std::uint64_t from = at ? reader_.Number(*at) : 0;
        const std::uint64_t bytes = length ? reader_.Number(*length) : 0;
        PutNumber(&block_[main.next_at], 0, reader_.IsWide() ? 8 : 4, reader_.IsBigEndian());
        if (bytes == 0 || from < kHeaderBytes || from > block_.size() ||
            bytes > block_.size() - from) {
            return;
        }
        const auto begin = block_.begin() + static_cast<std::ptrdiff_t>(from);
        const auto end = begin + static_cast<std::ptrdiff_t>(bytes);
        const bool is_picture = block_[from] == 0xff && bytes > 1 && block_[from + 1] == 0xd8;
        if (!is_picture) return;
        std::fill(begin, end, std::uint8_t{0});
        // All that may follow are the bytes that round a length up.
        if (block_.end() - end <= 3) block_.erase(begin, block_.end());
    }

  private:
    bool IsInside(const SEntry& entry) const {
        return entry.value_at <= block_.size() && entry.bytes <= block_.size() - entry.value_at;
    }

    CBytes& block_;
    CReader reader_;
};

std::vector<STiffValue> Values(CBytesView block) {
    const CReader reader(FromBytes(block));
    std::uint64_t budget = ~std::uint64_t{0};
    std::vector<std::uint16_t> left_out;
    return reader.Values(reader.Directory(reader.First()), budget, left_out);
}

bool HoldsAll(const std::vector<STiffValue>& wanted, const std::vector<STiffValue>& written) {
    return std::all_of(wanted.begin(), wanted.end(), [&](const STiffValue& value) {
        const STiffValue* found = Find(written, value.tag);
        if (IsPixelCoding(value.tag)) return true;
        return found && found->data == value.data && HoldsAll(value.below, found->below);
    });
}

SDirectory Main(const CReader& reader) { return reader.Directory(reader.First()); }

}  // namespace

bool IsValid(CBytesView block) {
    const CReader reader(FromBytes(block));
    return reader.IsTiff() && !Main(reader).entries.empty();
}

bool IsBigEndian(CBytesView block) { return !block.empty() && block[0] == 'M'; }

int Orientation(CBytesView block) {
    const CReader reader(FromBytes(block));
    const SDirectory main = Main(reader);
    const SEntry* entry = main.Find(kOrientation);
    const std::uint64_t told = entry ? reader.Number(*entry) : 1;
    return told >= 1 && told <= 8 ? static_cast<int>(told) : 1;
}

std::optional<SResolution> Resolution(CBytesView block) {
    const CReader reader(FromBytes(block));
    const SDirectory main = Main(reader);
    const SEntry* x = main.Find(kXResolution);
    const SEntry* y = main.Find(kYResolution);
    const SEntry* unit = main.Find(kResolutionUnit);
    if (!x || !y || reader.Fraction(*x) <= 0 || reader.Fraction(*y) <= 0) return std::nullopt;
    constexpr ENResolutionUnit kUnits[] = {ENResolutionUnit::None, ENResolutionUnit::Inch,
                                           ENResolutionUnit::Centimetre};
    // An inch is what the standard has readers take when none is told.
    const std::uint64_t told = unit ? reader.Number(*unit) : 2;
    return SResolution{reader.Fraction(*x), reader.Fraction(*y),
                       told >= 1 && told <= 3 ? kUnits[told - 1] : ENResolutionUnit::None};
}

void MakeUpright(CBytes& block, int orientation, CSize size) {
    CPatch patch(block);
    const SDirectory main = Main(patch.Reader());
    if (main.entries.empty()) return;
    patch.SetNumber(main, kOrientation, 1);
    patch.RemoveThumbnail(main);
    if (orientation < 5) return;
    patch.SetNumber(main, kImageWidth, static_cast<std::uint64_t>(size.cx));
    patch.SetNumber(main, kImageLength, static_cast<std::uint64_t>(size.cy));
    patch.Swap(main, kXResolution, kYResolution);
    if (const SEntry* pointer = main.Find(kExifDirectory)) {
        const SDirectory exif = patch.Reader().Directory(patch.Reader().Number(*pointer));
        patch.SetNumber(exif, kPixelXDimension, static_cast<std::uint64_t>(size.cx));
        patch.SetNumber(exif, kPixelYDimension, static_cast<std::uint64_t>(size.cy));
    }
}

CBytes Build(const std::vector<STiffValue>& values, bool is_big_endian, bool& moved_maker_note) {
    moved_maker_note = false;
    if (values.empty()) return {};
    CLayout layout(kHeaderBytes, is_big_endian, false);
    layout.ReserveMakerNote(values, kMakerNoteEnd);
    const std::uint64_t first = layout.Add(values);
    moved_maker_note = layout.MovedMakerNote();
    CBytes block(kHeaderBytes);
    block[0] = block[1] = is_big_endian ? 'M' : 'I';
    PutNumber(&block[2], 42, 2, is_big_endian);
    PutNumber(&block[4], first, 4, is_big_endian);
    block.insert(block.end(), layout.Bytes().begin(), layout.Bytes().end());
    return block;
}

bool HoldsAll(CBytesView wanted, CBytesView written) {
    std::vector<STiffValue> values = Values(wanted);
    if (IsBigEndian(wanted) != IsBigEndian(written)) SwapBytes(values);
    return HoldsAll(values, Values(written));
}

}  // namespace imagefile::exif
