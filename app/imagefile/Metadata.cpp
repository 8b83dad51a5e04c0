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
    constexpr std::string_view kThumbnail = "exif-ifd1-";
    return std::find(kNames.begin(), kNames.end(), name) != kNames.end() ||
           name.starts_with(kThumbnail);
}

struct SCopy {
    VipsImage* to;
    const char* only;  // names that begin so
};

void* CopyField(VipsImage* /*from*/, const char* name, GValue* value, void* data) {
    const auto* copy = static_cast<const SCopy*>(data);
    if (!DescribesPixels(name) && std::string_view(name).starts_with(copy->only)) {
        vips_image_set(copy->to, name, value);
    }
    return nullptr;
}

void CopyFields(VipsImage* from, VipsImage* to, const char* only = "") {
    SCopy copy = {to, only};
    vips_image_map(from, &CopyField, &copy);
}

void* FindText(VipsImage* /*image*/, const char* name, GValue* /*value*/, void* /*data*/) {
    const std::string_view text(name);
    const bool is_text = text.starts_with("png-comment-") || text == VIPS_META_IMAGEDESCRIPTION;
    return is_text ? const_cast<char*>(name) : nullptr;
}

bool IsFar(double a, double b) { return std::abs(a - b) > 0.01 * std::max(a, b); }

}  // namespace

CMetadata TakeMetadata(VipsImage* opened, bool swaps_sides) {
    TVips<VipsImage> header(vips_image_new());
    CopyFields(opened, header.get());
    vips_autorot_remove_angle(header.get());
    header->Xres = swaps_sides ? opened->Yres : opened->Xres;
    header->Yres = swaps_sides ? opened->Xres : opened->Yres;
    return std::make_shared<const SMetadata>(SMetadata{std::move(header)});
}

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
    CopyFields(opened, header, "exif-");
}

void GiveMetadata(const SMetadata& metadata, VipsImage* image) {
    CopyFields(metadata.header.get(), image);
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

std::vector<std::string> LostMetadata(const SMetadata& wanted, VipsImage* written,
                                      bool has_tiff_exif) {
    VipsImage* header = wanted.header.get();
    std::vector<std::string> lost;
    // The same bytes arrive, but for EXIF, which is told anew where the picture has changed.
    const struct {
        const char* field;
        const char* text;
        bool same_bytes;
    } kBlobs[] = {{VIPS_META_ICC_NAME, "the colour profile", true},
                  {VIPS_META_EXIF_NAME, "the EXIF data", false},
                  {VIPS_META_XMP_NAME, "the XMP data", true},
                  {VIPS_META_IPTC_NAME, "the IPTC data", false}};
    for (const auto& blob : kBlobs) {
        const auto before = Blob(header, blob.field);
        const auto after = Blob(written, blob.field);
        const bool is_kept =
            blob.same_bytes ? std::equal(before.begin(), before.end(), after.begin(), after.end())
                            : !after.empty();
        const bool is_in_tiff = has_tiff_exif && blob.field == std::string_view("exif-data");
        if (!before.empty() && !is_kept && !is_in_tiff) lost.push_back(blob.text);
    }
    if (vips_image_map(header, &FindText, nullptr) &&
        !vips_image_map(written, &FindText, nullptr)) {
        lost.push_back("the text comments");
    }
    if (IsFar(header->Xres, written->Xres) || IsFar(header->Yres, written->Yres)) {
        lost.push_back("the resolution");
    }
    return lost;
}

}  // namespace imagefile
