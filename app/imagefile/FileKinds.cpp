#include "app/imagefile/FileKinds.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace imagefile {

namespace {

using namespace std::string_view_literals;

constexpr SKind kKinds[] = {
    {ENKind::Png, "PNG", 65535, true, true, true},
    {ENKind::Jpeg, "JPEG", 65500, false, false, true},
    {ENKind::Tiff, "TIFF", 65535, true, true, true},
    {ENKind::Webp, "WebP", 16383, false, true, false},
};

struct SExtension {
    std::string_view text;
    ENKind kind;
};
constexpr SExtension kExtensions[] = {
    {".png", ENKind::Png},  {".jpg", ENKind::Jpeg},  {".jpeg", ENKind::Jpeg},
    {".tif", ENKind::Tiff}, {".tiff", ENKind::Tiff}, {".webp", ENKind::Webp},
};

// Bytes at the start of a file; '?' stands for any byte.
struct SSignature {
    std::string_view bytes;
    const char* name;
    int kind = -1;  // an index into kKinds
};
constexpr SSignature kSignatures[] = {
    {"\x89PNG\r\n\x1a\n"sv, "PNG", 0},
    {"\xff\xd8\xff"sv, "JPEG", 1},
    {"II*\0"sv, "TIFF", 2},
    {"MM\0*"sv, "TIFF", 2},
    {"II+\0"sv, "TIFF", 2},
    {"MM\0+"sv, "TIFF", 2},
    {"RIFF????WEBP"sv, "WebP", 3},
    {"GIF8"sv, "GIF"},
    {"BM????\0\0\0\0"sv, "BMP"},
    {"8BPS"sv, "Photoshop (PSD)"},
    {"%PDF"sv, "PDF"},
    {"????ftypavi"sv, "AVIF"},
    {"????ftyp"sv, "HEIF"},
    {"\0\0\0\x0cJXL "sv, "JPEG XL"},
    {"\xff\x0a"sv, "JPEG XL"},
    {"\0\0\0\x0cjP  "sv, "JPEG 2000"},
    {"\xff\x4f\xff\x51"sv, "JPEG 2000"},
    {"v/1\x01"sv, "OpenEXR"},
    {"#?RADIANCE"sv, "Radiance HDR"},
    {"SIMPLE  ="sv, "FITS"},
    {"gimp xcf"sv, "XCF"},
    {"<svg"sv, "SVG"},
};

bool Matches(const SSignature& signature, std::span<const std::uint8_t> bytes) {
    return bytes.size() >= signature.bytes.size() &&
           std::equal(signature.bytes.begin(), signature.bytes.end(), bytes.begin(),
                      [](char wanted, std::uint8_t byte) {
                          return wanted == '?' || static_cast<std::uint8_t>(wanted) == byte;
                      });
}

}  // namespace

const char* const kKnownKinds = "PNG, JPEG, TIFF and WebP";
const char* const kKnownExtensions = ".png, .jpg, .jpeg, .tif, .tiff, .webp";

const SKind& KindOf(ENKind kind) { return kKinds[static_cast<int>(kind)]; }

const SKind* KindByExtension(const std::filesystem::path& file) {
    std::string extension = file.extension().native();
    for (char& c : extension) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    for (const SExtension& known : kExtensions) {
        if (known.text == extension) return &KindOf(known.kind);
    }
    return nullptr;
}

SContent KindByContent(std::span<const std::uint8_t> first_bytes) {
    for (const SSignature& signature : kSignatures) {
        if (!Matches(signature, first_bytes)) continue;
        return {signature.name, signature.kind < 0 ? nullptr : &kKinds[signature.kind]};
    }
    return {};
}

}  // namespace imagefile
