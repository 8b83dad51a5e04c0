#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string_view>

#include "app/imagefile/VipsSession.h"
#include "app/imagefile/decode/Decoders.h"
#include "hostlib/language/Texts.h"

namespace imagefile {

namespace {

// Rows that are decoded at a time.
constexpr int kStripRows = 32;

// How the library's own note begins about an error that it also returns.
constexpr std::string_view kTileNote = "error in tile";

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

// Cameras and editors write many values that the TIFF library has no name for, or would write
// otherwise. What it says of values that place or shape the pixels is not among these texts.
bool IsAboutValue(std::string_view text) {
    constexpr std::string_view kTexts[] = {"Unknown field with tag",
                                           "does not end in null byte",
                                           "tags are not sorted",
                                           "null byte in value",
                                           "ASCII value for",
                                           "Incompatible type for",
                                           "incorrect count for field",
                                           "Bad value",
                                           "Invalid data type for tag",
                                           "Incorrect value for",
                                           "contains null byte",
                                           "is too short",
                                           "Ignoring ReferenceBlackWhite",
                                           "Sanity check on size of",
                                           "Incorrect count for"};
    constexpr std::string_view kShapes[] = {"Strip", "Tile",   "ImageWidth",   "ImageLength",
                                            "Bits",  "Sample", "Compression",  "Photometric",
                                            "Rows",  "Planar", "ExtraSamples", "ColorMap"};
    const auto has = [text](std::string_view part) { return Contains(text, part); };
    return std::any_of(std::begin(kTexts), std::end(kTexts), has) &&
           std::none_of(std::begin(kShapes), std::end(kShapes), has);
}

bool IsLab(const VipsImage* image) {
    return image->Coding != VIPS_CODING_NONE || image->Type == VIPS_INTERPRETATION_LAB ||
           image->Type == VIPS_INTERPRETATION_LABS || image->Type == VIPS_INTERPRETATION_LABQ;
}

bool HasKnownSamples(const VipsImage* image) {
    return image->BandFmt == VIPS_FORMAT_UCHAR || image->BandFmt == VIPS_FORMAT_USHORT;
}

// What is not among the eight formats; empty when all is. Bands alone do not tell: CMYK has four.
std::string StrangenessOf(const VipsImage* image) {
    const VipsInterpretation colours = image->Type;
    if (IsLab(image)) return Tr("Lab colour");
    if (colours == VIPS_INTERPRETATION_CMYK) return Tr("CMYK colour");
    if (!HasKnownSamples(image)) {
        return Tr("the sample type {}", vips_enum_nick(VIPS_TYPE_BAND_FORMAT, image->BandFmt));
    }
    const bool is_grey =
        colours == VIPS_INTERPRETATION_B_W || colours == VIPS_INTERPRETATION_GREY16;
    const bool is_colour = colours == VIPS_INTERPRETATION_sRGB ||
                           colours == VIPS_INTERPRETATION_RGB ||
                           colours == VIPS_INTERPRETATION_RGB16;
    if (!is_grey && !is_colour) {
        return Tr("{} colour", vips_enum_nick(VIPS_TYPE_INTERPRETATION, colours));
    }
    const int colour_channels = is_grey ? 1 : 3;
    if (image->Bands != colour_channels && image->Bands != colour_channels + 1) {
        return Tr("a picture of {} channels", image->Bands);
    }
    return {};
}

class CVipsDecoder final : public IDecoder {
  public:
    CVipsDecoder(ENKind kind, int descriptor, const SVipsOptions& options)
        : kind_(kind), descriptor_(descriptor), options_(options) {
        {
            const CVipsUse use;
            opened_ = Open();
        }
        Note();
        if (opened_) return;
        const std::string text = ErrorBefore(0);
        Fail(text.empty() ? last_note_ : text);
    }

    bool IsOpen() const { return opened_ != nullptr; }
    bool Convert(SConversion& conversion);

    CSize Size() const override { return {opened_->Xsize, opened_->Ysize}; }
    CNPixelFormat Format() const override {
        if (!StrangenessOf(opened_.get()).empty()) return {};
        return CNPixelFormat::Of(opened_->Bands, opened_->BandFmt == VIPS_FORMAT_USHORT);
    }
    std::string Strangeness() const override { return StrangenessOf(opened_.get()); }

    // One thread asks for strip after strip: when the library reads a whole image with threads of
    // its own, an error that one of them meets can be lost.
    bool NextRow(void* row) override {
        if (!region_) region_.reset(vips_region_new(opened_.get()));
        if (next_ % kStripRows == 0) {
            const VipsRect strip = {0, next_, opened_->Xsize,
                                    std::min(kStripRows, opened_->Ysize - next_)};
            const bool failed = Prepare(region_.get(), strip);
            last_note_.clear();
            Note();
            if (failed) {
                // The warning before the error tells more than the error itself.
                Fail(last_note_.empty() ? ErrorBefore(next_ + 1) : last_note_);
                return false;
            }
        }
        std::memcpy(row, VIPS_REGION_ADDR(region_.get(), 0, next_++),
                    VIPS_IMAGE_SIZEOF_LINE(opened_.get()));
        return true;
    }
    // A decoder may still complain when it is closed.
    bool Finish() override {
        region_.reset();
        Note();
        return true;
    }

  private:
    TVips<VipsImage> Open() const {
        return OpenVips(kind_, descriptor_, options_.page, !options_.is_lenient);
    }
    static bool Prepare(VipsRegion* region, const VipsRect& strip) {
        const CVipsUse use;
        return vips_region_prepare(region, &strip) != 0;
    }
    // What is wrong with the file, or with its rows before this one.
    std::string ErrorBefore(int row) const {
        const CVipsAlone alone;
        const TVips<VipsImage> opened = Open();
        const TVips<VipsRegion> region(opened ? vips_region_new(opened.get()) : nullptr);
        bool failed = !region;
        for (int y = 0; !failed && y < row; y += kStripRows) {
            const VipsRect strip = {0, y, opened->Xsize, std::min(kStripRows, opened->Ysize - y)};
            failed = vips_region_prepare(region.get(), &strip) != 0;
        }
        return TakeVipsError();
    }
    void Note() {
        for (std::string& text : logged_.TakeNew()) {
            if (text.starts_with(kTileNote)) continue;
            last_note_ = text;
            const bool is_value = IsAboutValue(text);
            // Values of tags nobody knows are carried like all others.
            if (!Contains(text, "Unknown field with tag")) {
                Complain({std::move(text), !is_value});
            }
        }
    }
    bool ConvertInks(SConversion& conversion);
    bool ConvertColours(SConversion& conversion);
    bool ConvertSamples(SConversion& conversion);
    bool Take(int failed, VipsImage* next) {
        if (failed != 0) {
            Fail(TakeVipsError());
            return false;
        }
        opened_.reset(next);
        return true;
    }

    ENKind kind_;
    int descriptor_;
    SVipsOptions options_;
    CVipsWarnings logged_;
    std::string last_note_;
    TVips<VipsImage> opened_;
    TVips<VipsRegion> region_;
    int next_ = 0;
};

CBytes BlobOf(VipsImage* image, const char* name) {
    const void* data = nullptr;
    std::size_t length = 0;
    if (vips_image_get_typeof(image, name) == 0 ||
        vips_image_get_blob(image, name, &data, &length) != 0) {
        return {};
    }
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + length};
}

CBytes StandardProfile() {
    VipsBlob* profile = nullptr;
    if (vips_profile_load("srgb", &profile, nullptr) != 0) return {};
    std::size_t length = 0;
    const auto* bytes = static_cast<const std::uint8_t*>(vips_blob_get(profile, &length));
    CBytes copy(bytes, bytes + length);
    vips_area_unref(VIPS_AREA(profile));
    return copy;
}

bool CVipsDecoder::ConvertInks(SConversion& conversion) {
    const bool has_profile = !BlobOf(opened_.get(), VIPS_META_ICC_NAME).empty();
    VipsImage* next = nullptr;
    const int failed = vips_icc_transform(
        opened_.get(), &next, "srgb", "embedded", TRUE, "input_profile", "cmyk", "intent",
        VIPS_INTENT_RELATIVE, "depth", opened_->BandFmt == VIPS_FORMAT_UCHAR ? 8 : 16, nullptr);
    if (!Take(failed, next)) return false;
    conversion.profile = StandardProfile();
    conversion.notes.push_back(
        has_profile ? Tr("CMYK colour is converted to RGB by its own profile")
                    : Tr("CMYK colour is converted to RGB by a general CMYK profile"));
    return true;
}

bool CVipsDecoder::ConvertColours(SConversion& conversion) {
    VipsImage* next = nullptr;
    const bool is_byte = opened_->BandFmt == VIPS_FORMAT_UCHAR;
    const std::string name = StrangenessOf(opened_.get());
    const int failed =
        vips_colourspace(opened_.get(), &next,
                         is_byte ? VIPS_INTERPRETATION_sRGB : VIPS_INTERPRETATION_RGB16, nullptr);
    if (!Take(failed, next)) return false;
    conversion.profile = StandardProfile();
    conversion.notes.push_back(Tr("{} is converted to RGB", name));
    return true;
}

// Fractions are taken for 0 to 1. Where there are larger samples, the range is the first of 0 to
// 255, 0 to 65535 and that of the type which holds them all.
bool CVipsDecoder::ConvertSamples(SConversion& conversion) {
    VipsImage* next = nullptr;
    const std::string name = vips_enum_nick(VIPS_TYPE_BAND_FORMAT, opened_->BandFmt);
    const bool is_fraction = vips_band_format_isfloat(opened_->BandFmt) != FALSE;
    const bool is_whole = vips_band_format_isint(opened_->BandFmt) != FALSE;
    if (!is_fraction && !is_whole) {
        Fail(Tr("samples of type {} cannot be converted", name));
        return false;
    }
    next = vips_image_copy_memory(opened_.get());
    if (!Take(next ? 0 : -1, next)) return false;
    double highest = 0, lowest = 0;
    if (vips_max(opened_.get(), &highest, nullptr) != 0 ||
        vips_min(opened_.get(), &lowest, nullptr) != 0) {
        Fail(TakeVipsError());
        return false;
    }
    constexpr double kByte = 255, kFull = 65535;
    const double range = std::exp2(8.0 * static_cast<double>(vips_format_sizeof(opened_->BandFmt)));
    const bool is_negative = is_whole && lowest < 0;
    const double from = is_negative ? -range / 2 : 0;
    const double to = is_negative                                 ? range / 2 - 1
                      : is_fraction && highest <= 1               ? 1
                      : highest <= kByte                          ? kByte
                      : highest <= kFull || is_fraction           ? kFull
                      : vips_band_format_isuint(opened_->BandFmt) ? range - 1
                                                                  : range / 2 - 1;
    VipsImage* scaled = nullptr;
    if (vips_linear1(opened_.get(), &scaled, kFull / (to - from), -from * kFull / (to - from),
                     nullptr) != 0) {
        Fail(TakeVipsError());
        return false;
    }
    const TVips<VipsImage> owner(scaled);
    VipsImage* rounded = nullptr;
    if (vips_rint(scaled, &rounded, nullptr) != 0) return Take(-1, nullptr);
    const TVips<VipsImage> rounded_owner(rounded);
    VipsImage* cast = nullptr;
    if (vips_cast_ushort(rounded, &cast, nullptr) != 0) return Take(-1, nullptr);
    const TVips<VipsImage> cast_owner(cast);
    const VipsInterpretation colours =
        cast->Bands < 3 ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_RGB16;
    const int failed = vips_copy(cast, &next, "interpretation", colours, nullptr);
    if (!Take(failed, next)) return false;
    const auto text = [](double value) { return std::to_string(static_cast<long long>(value)); };
    conversion.notes.push_back(
        Tr("samples of type {} are converted to 16 bits, {} to {} becoming 0 to 65535", name,
           text(from), text(to)));
    if (highest > to || lowest < from) {
        conversion.notes.push_back(Tr("samples beyond that range are cut off at its ends"));
    }
    return true;
}

bool CVipsDecoder::Convert(SConversion& conversion) {
    const CVipsAlone alone;
    if (opened_->Type == VIPS_INTERPRETATION_CMYK) {
        if (!HasKnownSamples(opened_.get()) && !ConvertSamples(conversion)) return false;
        return ConvertInks(conversion);
    }
    if (IsLab(opened_.get())) return ConvertColours(conversion);
    if (!HasKnownSamples(opened_.get())) return ConvertSamples(conversion);
    return vips_colourspace_issupported(opened_.get()) && ConvertColours(conversion);
}

}  // namespace

CDecoder OpenVipsDecoder(ENKind kind, int descriptor, const SVipsOptions& options,
                         std::string& trouble) {
    auto decoder = std::make_unique<CVipsDecoder>(kind, descriptor, options);
    const bool is_open = decoder->IsOpen();
    return Opened(std::move(decoder), is_open, trouble);
}

CDecoder OpenConverted(ENKind kind, int descriptor, const SVipsOptions& options,
                       SConversion& conversion, std::string& trouble) {
    auto decoder = std::make_unique<CVipsDecoder>(kind, descriptor, options);
    const bool is_converted =
        decoder->IsOpen() && decoder->Convert(conversion) && decoder->Strangeness().empty();
    return Opened(std::move(decoder), is_converted, trouble);
}

}  // namespace imagefile
