#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace imagefile {

// EXIF data: what a camera or program noted about a picture, in directories laid out as in a TIFF
// file. Layout after TIFF 6.0 and Exif 2.32. Thumbnails are left out. Values that lie outside the
// data, and those larger than 1 MB, are dropped.
class CExif {
  public:
    // Of EXIF data as JPEG, PNG and WebP carry it (with or without "Exif\0\0" ahead); nothing
    // when it is not that.
    static std::optional<CExif> FromBytes(std::span<const std::uint8_t> bytes);
    // Of a TIFF file: its own descriptive values and its EXIF and GPS directories; nothing when
    // there is none of it.
    static std::optional<CExif> FromTiffFile(int descriptor);

    // The picture that these data belong to: upright, of this size in pixels and resolution in
    // pixels per millimetre.
    void Describe(int width, int height, double x_resolution, double y_resolution);

    struct SResolution {
        double x, y;  // pixels per millimetre
    };
    std::optional<SResolution> Resolution() const;

    // As a TIFF structure, without "Exif\0\0".
    std::vector<std::uint8_t> Bytes() const;
    // Adds the data to a TIFF file that has none, open for reading and writing; values that the
    // file has already are left alone. A file that is not of the classic little-endian sort is
    // not changed. Answers an `errno` value, 0 when all went well.
    int AddToTiffFile(int descriptor) const;

  private:
    // One value of a directory: `data` holds `count` items of the TIFF type, little-endian.
    struct SValue {
        std::uint16_t tag = 0;
        std::uint16_t type = 0;
        std::uint32_t count = 0;
        std::vector<std::uint8_t> data;
    };
    using CDirectory = std::vector<SValue>;
    // Fills all of `to` from the given offset, or answers false.
    using CReader = std::function<bool(std::uint64_t offset, std::span<std::uint8_t> to)>;
    struct SSubdirectories;
    class CParser;

    static std::optional<CExif> Parse(const CReader& source, bool descriptive_only);
    static const SValue* Find(const CDirectory& directory, std::uint16_t tag);
    static void Set(CDirectory& directory, SValue value);
    static std::vector<std::uint8_t> Encode(const CDirectory& directory, std::uint32_t base,
                                            std::vector<std::uint8_t> entry_bytes = {});
    SSubdirectories EncodeSubdirectories(std::uint32_t base) const;

    CDirectory main_;
    CDirectory exif_;
    CDirectory gps_;
    CDirectory interoperability_;
};

}  // namespace imagefile
