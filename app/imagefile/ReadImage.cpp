#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "app/imagefile/CFileDescriptor.h"
#include "app/imagefile/CImageFile.h"
#include "app/imagefile/FileKinds.h"
#include "app/imagefile/PixelRows.h"
#include "app/imagefile/VipsSession.h"
#include "app/imagefile/metadata/Metadata.h"

namespace imagefile {

namespace {

// Rows that are decoded at a time.
constexpr int kStripRows = 32;

// How the library's own note begins about an error that it also returns.
constexpr std::string_view kTileNote = "error in tile";

std::string SizeText(std::uint64_t width, std::uint64_t height) {
    return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

// One file on its way in.
class CImageReader {
  public:
    CImageReader(const std::filesystem::path& file, const SReadOptions& options,
                 CStatusControl* status)
        : file_(file), options_(options), progress_(status) {}

    SImageHeader ReadHeader() {
        Open();
        return header_;
    }
    SImageFile Read() {
        Open();
        Decode();
        return std::move(result_);
    }

  private:
    [[noreturn]] void Fail(ENFault fault, const std::string& what, std::string hint = {}) const {
        throw CImageFileError(fault, file_, what, std::move(hint));
    }
    [[noreturn]] void FailUnsupported(const std::string& what, std::string hint) const {
        Fail(ENFault::Unsupported, what, std::move(hint));
    }
    // Damage ends the reading, unless the caller takes what is there.
    void Damaged(const std::string& what) {
        if (!options_.lenient) Fail(ENFault::Unreadable, what, "--lenient takes what is there");
        Warn(what);
    }
    void Warn(const std::string& what) {
        result_.warnings.push_back(DisplayName(file_) + ": " + what);
    }

    void Open();
    void OpenFile();
    void FindKind();
    void ReadStructure();
    void CheckSize(std::uint64_t width, std::uint64_t height) const;
    CNPixelFormat CheckLayout(VipsImage* opened) const;
    void JudgeWarnings(bool decoding);
    void OpenPicture();
    void Decode();
    void DecodeRows(VipsImage* opened);
    std::string RowTrouble();

    const std::filesystem::path& file_;
    const SReadOptions& options_;
    CStatusControl progress_;
    CFileDescriptor descriptor_;
    const SKind* kind_ = nullptr;
    CVipsWarnings logged_;
    SContents contents_;
    TVips<VipsImage> opened_;
    SImageHeader header_;
    SImageFile result_;
};

// Up to the pixels.
void CImageReader::Open() {
    StartVips();
    OpenFile();
    FindKind();
    ReadStructure();
    OpenPicture();
}

void CImageReader::OpenFile() {
    // A pipe without a writer would keep an opening without O_NONBLOCK waiting for ever.
    descriptor_ = CFileDescriptor(open(file_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (!descriptor_.IsOpen() || fstat(descriptor_.Get(), &status) != 0) {
        Fail(ENFault::Unreadable, "cannot be read: " + SystemText(errno));
    }
    if (S_ISDIR(status.st_mode)) Fail(ENFault::Unreadable, "is a folder");
    if (!S_ISREG(status.st_mode)) Fail(ENFault::Unreadable, "is not a regular file");
    if (status.st_size == 0) Fail(ENFault::Unreadable, "is empty");
}

void CImageReader::FindKind() {
    std::array<std::uint8_t, kContentBytes> bytes = {};
    const ssize_t got = pread(descriptor_.Get(), bytes.data(), bytes.size(), 0);
    if (got < 0) Fail(ENFault::Unreadable, "cannot be read: " + SystemText(errno));
    const SContent content = KindByContent(std::span(bytes).first(static_cast<std::size_t>(got)));
    kind_ = content.kind;
    if (kind_) {
        result_.kind = kind_->name;
        return;
    }
    const std::string hint = std::string("what can be read is ") + kKnownKinds;
    if (content.name) FailUnsupported(std::string(content.name) + " is not supported", hint);
    if (const SKind* claimed = KindByExtension(file_)) {
        Fail(ENFault::Unreadable,
             std::string("is not the ") + claimed->name + " file that its name tells");
    }
    FailUnsupported("is not an image of a known kind", hint);
}

// What the decoders overlook or do not tell.
void CImageReader::ReadStructure() {
    contents_ = ReadContents(kind_->kind, descriptor_.Get());
    if (contents_.is_too_large) {
        Fail(ENFault::Limit, "has more than " + std::to_string(kMaxMetadataBytes >> 20) +
                                 " MB of data besides its pixels");
    }
    if (contents_.size.cx > 0) {
        CheckSize(static_cast<std::uint64_t>(contents_.size.cx),
                  static_cast<std::uint64_t>(contents_.size.cy));
    }
    if (contents_.is_animated && kind_->kind == ENKind::Png) {
        FailUnsupported("is an animated PNG", "save one frame as a PNG first");
    }
    for (const std::string& what : contents_.damage) Damaged(what);
    for (const std::string& what : contents_.warnings) Warn(what);
}

void CImageReader::CheckSize(std::uint64_t width, std::uint64_t height) const {
    if (width > kMaxSide || height > kMaxSide) {
        Fail(ENFault::Limit, "has " + SizeText(width, height) + "; a side may have " +
                                 std::to_string(kMaxSide) + " at most");
    }
    if (width * height > options_.max_pixels) {
        Fail(ENFault::Limit,
             "has " + SizeText(width, height) + ", more than the limit of " +
                 std::to_string(options_.max_pixels),
             "--max-pixels " + std::to_string(width * height) + " lets it in");
    }
}

// The layout of an opened image. Bands alone do not tell it: CMYK has four.
CNPixelFormat CImageReader::CheckLayout(VipsImage* opened) const {
    if (const int pages = vips_image_get_n_pages(opened); pages > 1) {
        const bool is_tiff = kind_->kind == ENKind::Tiff;
        FailUnsupported((is_tiff ? "has " : "is an animation of ") + std::to_string(pages) +
                            (is_tiff ? " pages" : " frames"),
                        is_tiff ? "save one page as a file first" : "save one frame first");
    }
    const std::string to_rgb = "convert it to grey or RGB first";
    const VipsInterpretation colours = opened->Type;
    if (opened->Coding != VIPS_CODING_NONE || colours == VIPS_INTERPRETATION_LAB ||
        colours == VIPS_INTERPRETATION_LABS || colours == VIPS_INTERPRETATION_LABQ) {
        FailUnsupported("Lab colour is not supported", to_rgb);
    }
    if (colours == VIPS_INTERPRETATION_CMYK)
        FailUnsupported("CMYK colour is not supported", to_rgb);
    if (opened->BandFmt != VIPS_FORMAT_UCHAR && opened->BandFmt != VIPS_FORMAT_USHORT) {
        FailUnsupported(std::string("samples of type ") +
                            vips_enum_nick(VIPS_TYPE_BAND_FORMAT, opened->BandFmt) +
                            " are not supported",
                        "convert it to 8 or 16 bits first");
    }
    const bool is_grey =
        colours == VIPS_INTERPRETATION_B_W || colours == VIPS_INTERPRETATION_GREY16;
    const bool is_colour = colours == VIPS_INTERPRETATION_sRGB ||
                           colours == VIPS_INTERPRETATION_RGB ||
                           colours == VIPS_INTERPRETATION_RGB16;
    if (!is_grey && !is_colour) {
        FailUnsupported(std::string(vips_enum_nick(VIPS_TYPE_INTERPRETATION, colours)) +
                            " colour is not supported",
                        to_rgb);
    }
    const int colour_channels = is_grey ? 1 : 3;
    if (opened->Bands != colour_channels && opened->Bands != colour_channels + 1) {
        FailUnsupported(std::to_string(opened->Bands) + " channels are not supported",
                        "leave the colours and at most one alpha channel");
    }
    return CNPixelFormat::Of(opened->Bands, opened->BandFmt == VIPS_FORMAT_USHORT);
}

// Most warnings mean that pixels or metadata are not what was once written.
void CImageReader::JudgeWarnings(bool decoding) {
    for (const std::string& text : logged_.TakeNew()) {
        // Cameras and editors write many values that the TIFF library has no name for.
        if (Contains(text, "Unknown field with tag") || text.starts_with(kTileNote)) continue;
        if (!decoding && text.starts_with("iCCP")) {
            Warn("the colour profile is not valid and is left out (" + text + ")");
        } else {
            Damaged("is damaged (" + text + ")");
        }
    }
}

void CImageReader::OpenPicture() {
    opened_ = OpenDecoder(kind_->kind, descriptor_.Get(), !options_.lenient);
    if (!opened_) {
        const std::vector<std::string> warnings = logged_.TakeNew();
        std::string text = TakeVipsError();
        if (text.empty() && !warnings.empty()) text = warnings.front();
        const bool is_unsupported = Contains(text, "unsupported") ||
                                    Contains(text, "not supported") ||
                                    Contains(text, "not configured");
        Fail(is_unsupported ? ENFault::Unsupported : ENFault::Unreadable,
             (is_unsupported ? "is of a sort that cannot be read (" : "is damaged or cut off (") +
                 text + ")");
    }
    CheckSize(static_cast<std::uint64_t>(opened_->Xsize),
              static_cast<std::uint64_t>(opened_->Ysize));
    header_ = {{opened_->Xsize, opened_->Ysize}, CheckLayout(opened_.get())};
    if (contents_.metadata.orientation >= 5) {
        std::swap(header_.size.cx, header_.size.cy);
    }
    JudgeWarnings(false);
}

void CImageReader::Decode() {
    const auto [width, height] = header_.size;
    if (result_.pixels.Create(width, height, header_.format).Failed()) {
        Fail(ENFault::Limit,
             "has " +
                 SizeText(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height)) +
                 ", for which the memory cannot be had");
    }
    contents_.metadata.picture.format = header_.format;
    MakeUpright(contents_.metadata, {opened_->Xsize, opened_->Ysize});
    DecodeRows(opened_.get());
    result_.metadata = std::make_shared<const SMetadata>(std::move(contents_.metadata));
    opened_.reset();  // a decoder may still complain when it is closed
    JudgeWarnings(true);
}

// Where the rows of a stored picture go in the upright one: `at` is the place of its first pixel,
// the steps lead to the next pixel of a row and to the next row.
struct SPlacement {
    std::uint8_t* at;
    std::ptrdiff_t pixel_step, row_step;
};

SPlacement Place(CRowIteratorBands& upright, int orientation) {
    const std::ptrdiff_t pixel = upright.GetPixelFormat().PixelBytes();
    const std::ptrdiff_t row = upright.Stride();
    const bool swaps_sides = orientation >= 5;
    const int width = swaps_sides ? upright.GetHeight() : upright.GetWidth();
    const int height = swaps_sides ? upright.GetWidth() : upright.GetHeight();
    SPlacement place = {upright.Row<std::uint8_t>(0), swaps_sides ? row : pixel,
                        swaps_sides ? pixel : row};
    if (orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8) {
        place.at += (width - 1) * place.pixel_step;
        place.pixel_step = -place.pixel_step;
    }
    if (orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7) {
        place.at += (height - 1) * place.row_step;
        place.row_step = -place.row_step;
    }
    return place;
}

// Why a strip could not be had: the warning before the error tells more than the error itself.
std::string CImageReader::RowTrouble() {
    std::string error = TakeVipsError();
    for (const std::string& text : logged_.TakeNew()) {
        if (!text.starts_with(kTileNote)) return text;
    }
    return error;
}

// One thread asks for strip after strip: when the library reads a whole image with threads of its
// own, an error that one of them meets can be lost.
void CImageReader::DecodeRows(VipsImage* opened) {
    const TVips<VipsRegion> region(vips_region_new(opened));
    const SPlacement place = Place(result_.pixels, contents_.metadata.orientation);
    const int height = opened->Ysize;
    const auto store = [&](const void* row, int y) {
        VisitPixelFormat(result_.pixels.GetPixelFormat(), 0, [&](auto traits) {
            SwapRow(traits, row, place.at + y * place.row_step, opened->Xsize, place.pixel_step);
            return 0;
        });
    };
    progress_.SetProgressRange(height);
    for (int top = 0; top < height; top += kStripRows) {
        if (progress_.SetProgress(top)) Fail(ENFault::Cancelled, "cancelled");
        const VipsRect strip = {0, top, opened->Xsize, std::min(kStripRows, height - top)};
        if (vips_region_prepare(region.get(), &strip) != 0) {
            const std::string rows =
                std::to_string(top) + " of " + std::to_string(height) + " rows";
            if (top == 0) Fail(ENFault::Unreadable, "is damaged or cut off (" + RowTrouble() + ")");
            Damaged("is damaged or cut off after " + rows + " (" + RowTrouble() + ")");
            const std::vector<std::uint8_t> black(VIPS_IMAGE_SIZEOF_LINE(opened));
            for (int y = top; y < height; ++y) store(black.data(), y);
            return;
        }
        JudgeWarnings(true);
        for (int y = top; y < top + strip.height; ++y) {
            store(VIPS_REGION_ADDR(region.get(), 0, y), y);
        }
    }
    if (progress_.SetProgress(height)) Fail(ENFault::Cancelled, "cancelled");
}

}  // namespace

SImageHeader ReadHeader(const std::filesystem::path& file, const SReadOptions& options) {
    return CImageReader(file, options, nullptr).ReadHeader();
}

SImageFile ReadImage(const std::filesystem::path& file, const SReadOptions& options,
                     CStatusControl* status) {
    return CImageReader(file, options, status).Read();
}

}  // namespace imagefile
