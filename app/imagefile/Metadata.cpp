#include "app/imagefile/Metadata.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "app/imagefile/WriteWebp.h"

namespace imagefile {

namespace {

// Fields that tell how the pixels lay in the file they came from, or that hold only for it.
bool DescribesPixels(std::string_view name) {
    constexpr std::array<std::string_view, 27> kNames = {"width",
                                                         "height",
                                                         "bands",
                                                         "format",
                                                         "coding",
                                                         "interpretation",
                                                         "xoffset",
                                                         "yoffset",
                                                         "xres",
                                                         "yres",
                                                         "filename",
                                                         VIPS_META_LOADER,
                                                         VIPS_META_SEQUENTIAL,
                                                         VIPS_META_ORIENTATION,
                                                         VIPS_META_PAGE_HEIGHT,
                                                         VIPS_META_N_PAGES,
                                                         VIPS_META_N_SUBIFDS,
                                                         VIPS_META_CONCURRENCY,
                                                         "jpeg-thumbnail-data",
                                                         "jpeg-multiscan",
                                                         "jpeg-chroma-subsample",
                                                         "interlaced",
                                                         "palette-bit-depth",
                                                         "bits-per-sample",
                                                         "background",
                                                         "loop",
                                                         "delay"};
    return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

bool IsExif(std::string_view name) { return name.starts_with("exif-"); }

void CopyFields(VipsImage* from, VipsImage* to, bool (*takes)(std::string_view name)) {
    struct SCopy {
        VipsImage* to;
        bool (*takes)(std::string_view name);
    } copy = {to, takes};
    const auto copy_field = [](VipsImage*, const char* name, GValue* value, void* data) -> void* {
        const auto* wanted = static_cast<const SCopy*>(data);
        if (wanted->takes(name)) vips_image_set(wanted->to, name, value);
        return nullptr;
    };
    vips_image_map(from, copy_field, &copy);
}

void* FindText(VipsImage* /*image*/, const char* name, GValue* /*value*/, void* /*data*/) {
    const std::string_view text(name);
    const bool is_text = text.starts_with("png-comment-") || text == VIPS_META_IMAGEDESCRIPTION;
    return is_text ? const_cast<char*>(name) : nullptr;
}

bool IsFar(double a, double b) { return std::abs(a - b) > 0.01 * std::max(a, b); }

}  // namespace

// The library knows EXIF data by one field for every value, and makes those while it opens a file.
void AddExif(VipsImage* header, const CExif& exif) {
    const std::vector<std::uint8_t> carrier = OnePixelWebp(exif.Bytes());
    VipsImage* opened = nullptr;
    if (vips_webpload_buffer(const_cast<std::uint8_t*>(carrier.data()), carrier.size(), &opened,
                             nullptr) != 0) {
        vips_error_clear();
        return;
    }
    const TVips<VipsImage> owner(opened);
    CopyFields(opened, header, &IsExif);
}

// EXIF data are made anew, upright and without a thumbnail: the library would write those of the
// turned picture again. It leaves out the EXIF data of TIFF files, and the resolution that WebP
// files have in their EXIF data alone.
CMetadata TakeMetadata(VipsImage* opened, ENKind kind, int descriptor) {
    TVips<VipsImage> header(vips_image_new());
    CopyFields(opened, header.get(),
               [](std::string_view name) { return !DescribesPixels(name) && !IsExif(name); });
    header->Xres = opened->Xres;
    header->Yres = opened->Yres;
    auto exif = kind == ENKind::Tiff ? CExif::FromTiffFile(descriptor)
                                     : CExif::FromBytes(Blob(opened, VIPS_META_EXIF_NAME));
    if (const auto resolution = exif ? exif->Resolution() : std::nullopt;
        resolution && kind == ENKind::Webp) {
        header->Xres = resolution->x;
        header->Yres = resolution->y;
    }
    int width = opened->Xsize, height = opened->Ysize;
    if (vips_image_get_orientation_swap(opened)) {
        std::swap(header->Xres, header->Yres);
        std::swap(width, height);
    }
    if (exif) {
        exif->Describe(width, height, header->Xres, header->Yres);
        AddExif(header.get(), *exif);
    }
    return std::make_shared<const SMetadata>(SMetadata{std::move(header)});
}

void GiveMetadata(const SMetadata& metadata, VipsImage* image) {
    CopyFields(metadata.header.get(), image,
               [](std::string_view name) { return !DescribesPixels(name); });
    vips_image_set_int(image, VIPS_META_ORIENTATION, 1);
    image->Xres = metadata.header->Xres;
    image->Yres = metadata.header->Yres;
}

std::span<const std::uint8_t> Blob(VipsImage* image, const char* name) {
    const void* data = nullptr;
    std::size_t length = 0;
    if (vips_image_get_typeof(image, name) != VIPS_TYPE_BLOB ||
        vips_image_get_blob(image, name, &data, &length) != 0) {
        return {};
    }
    return {static_cast<const std::uint8_t*>(data), length};
}

std::vector<std::string> LostMetadata(const SMetadata& wanted, const SMetadata& written) {
    VipsImage* before = wanted.header.get();
    VipsImage* after = written.header.get();
    std::vector<std::string> lost;
    // The same bytes arrive, but for EXIF and IPTC, which are wrapped anew.
    const struct {
        const char* field;
        const char* text;
        bool same_bytes;
    } kBlobs[] = {{VIPS_META_ICC_NAME, "the colour profile", true},
                  {VIPS_META_EXIF_NAME, "the EXIF data", false},
                  {VIPS_META_XMP_NAME, "the XMP data", true},
                  {VIPS_META_IPTC_NAME, "the IPTC data", false}};
    for (const auto& blob : kBlobs) {
        const auto wanted_bytes = Blob(before, blob.field);
        const auto bytes = Blob(after, blob.field);
        const bool is_kept = blob.same_bytes ? std::equal(wanted_bytes.begin(), wanted_bytes.end(),
                                                          bytes.begin(), bytes.end())
                                             : !bytes.empty();
        if (!wanted_bytes.empty() && !is_kept) lost.push_back(blob.text);
    }
    if (vips_image_map(before, &FindText, nullptr) && !vips_image_map(after, &FindText, nullptr)) {
        lost.push_back("the text comments");
    }
    if (IsFar(before->Xres, after->Xres) || IsFar(before->Yres, after->Yres)) {
        lost.push_back("the resolution");
    }
    return lost;
}

}  // namespace imagefile
