#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "app/imagefile/metadata/Metadata.h"

// The directories of TIFF files and of EXIF data, which are laid out alike. Layout after TIFF 6.0,
// Exif 2.32 and the BigTIFF design. Everything here is bounded: a directory that is wrong costs its
// own values, never more.
namespace imagefile::tiff {

enum ENTag : std::uint16_t {
    kImageWidth = 0x0100,
    kImageLength = 0x0101,
    kImageDescription = 0x010e,
    kOrientation = 0x0112,
    kXResolution = 0x011a,
    kYResolution = 0x011b,
    kResolutionUnit = 0x0128,
    kSoftware = 0x0131,
    kArtist = 0x013b,
    kSubIfds = 0x014a,
    kThumbnail = 0x0201,
    kThumbnailLength = 0x0202,
    kXmp = 0x02bc,
    kCopyright = 0x8298,
    kIptc = 0x83bb,
    kPhotoshop = 0x8649,
    kExifDirectory = 0x8769,
    kProfile = 0x8773,
    kGpsDirectory = 0x8825,
    kPhotoshopLayers = 0x935c,
    kMakerNote = 0x927c,
    kPixelXDimension = 0xa002,
    kPixelYDimension = 0xa003,
    kInteroperability = 0xa005,
};
enum ENType : std::uint16_t { kByte = 1, kAscii, kShort, kLong, kRational, kUndefined = 7 };

// Whether a tag tells how the pixels are coded, or holds for that coding alone.
bool IsPixelCoding(std::uint16_t tag);
// The bytes of one item of a type; 0 for an unknown one.
std::size_t ItemBytes(std::uint16_t type);

// Fills all of `to` from an offset, or answers false.
using CReadAt = std::function<bool(std::uint64_t offset, std::span<std::uint8_t> to)>;
CReadAt FromBytes(CBytesView bytes);
CReadAt FromFile(int descriptor);

void PutNumber(std::uint8_t* to, std::uint64_t number, std::size_t bytes, bool is_big_endian);
std::uint64_t GetNumber(const std::uint8_t* from, std::size_t bytes, bool is_big_endian);

// An entry of a directory where it lies.
struct SEntry {
    std::uint16_t tag = 0, type = 0;
    std::uint64_t count = 0, value_at = 0, bytes = 0;
};
struct SDirectory {
    std::vector<SEntry> entries;
    std::uint64_t next = 0;     // the following directory; 0 is none
    std::uint64_t next_at = 0;  // where that number lies
    bool is_whole = false;

    const SEntry* Find(std::uint16_t tag) const;
};

class CReader {
  public:
    explicit CReader(CReadAt read);

    bool IsTiff() const { return first_ != 0; }
    bool IsBigEndian() const { return is_big_endian_; }
    bool IsWide() const { return is_wide_; }
    std::uint64_t First() const { return first_; }

    SDirectory Directory(std::uint64_t at) const;
    // The first item of an integer entry; 0 when it cannot be had.
    std::uint64_t Number(const SEntry& entry) const;
    double Fraction(const SEntry& entry) const;
    // A directory's values, and those below its EXIF, GPS and interoperability pointers; those that
    // cannot be read are left out. Values beyond `budget` bytes in all are named in `left_out`.
    std::vector<STiffValue> Values(const SDirectory& directory, std::uint64_t& budget,
                                   std::vector<std::uint16_t>& left_out, int depth = 0) const;

  private:
    CReadAt read_;
    std::uint64_t first_ = 0;
    bool is_big_endian_ = false;
    bool is_wide_ = false;
};

const STiffValue* Find(const std::vector<STiffValue>& values, std::uint16_t tag);
// Puts a value in place of that of the same tag, if any.
void Set(std::vector<STiffValue>& values, STiffValue value);

// Puts the data of values, and of those below them, into the other byte order.
void SwapBytes(std::vector<STiffValue>& values);

// Lays directories out anew, from an offset on. A MakerNote goes where it was when that place is
// free, since many hold offsets that count from the beginning of all.
class CLayout {
  public:
    CLayout(std::uint64_t base, bool is_big_endian, bool is_wide);

    // Keeps the place of the values' MakerNote free for it when it lies before `end`.
    void ReserveMakerNote(const std::vector<STiffValue>& values, std::uint64_t end);
    // Answers where the directory lies.
    std::uint64_t Add(const std::vector<STiffValue>& values);
    bool MovedMakerNote() const { return moved_maker_note_; }
    // The bytes from the base on.
    const CBytes& Bytes() const { return bytes_; }

  private:
    std::uint64_t Place(std::size_t bytes);
    void Put(std::uint64_t at, CBytesView bytes);

    std::uint64_t base_, cursor_;
    std::uint64_t reserved_ = 0, reserved_end_ = 0;
    bool is_big_endian_, is_wide_;
    bool moved_maker_note_ = false;
    CBytes bytes_;
};

}  // namespace imagefile::tiff
