#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "app/imagefile/CImageFile.h"
#include "app/imagefile/FileKinds.h"
#include "app/imagefile/VipsSession.h"
#include "app/imagefile/decode/Decoders.h"
#include "app/imagefile/metadata/Metadata.h"
#include "host/core/CDescriptor.h"
#include "hostlib/graphics/SwapColours.h"
#include "hostlib/language/Texts.h"

namespace imagefile {

namespace {

// Progress is told as often.
constexpr int kStripRows = 32;

std::string SizeText(std::uint64_t width, std::uint64_t height) {
    return Tr("{} x {} pixels", width, height);
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
        is_header_only_ = true;
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
        if (!options_.lenient) Fail(ENFault::Unreadable, what, Tr("--lenient takes what is there"));
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
    void CheckBytes() const;
    void CheckPages() const;
    CDecoder OpenDecoder(std::string& trouble);
    void OpenPicture();
    void Convert();
    void JudgeComplaints();
    void Drain();
    void Decode();
    void DecodeRows();
    SVipsOptions VipsOptions() const { return {std::max(options_.page, 1), options_.lenient}; }

    const std::filesystem::path& file_;
    const SReadOptions& options_;
    CStatusControl progress_;
    CDescriptor descriptor_;
    const SKind* kind_ = nullptr;
    SContents contents_;
    CDecoder decoder_;
    bool is_header_only_ = false;
    bool is_whole_ = false;  // the decoder gave every row
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
    const std::filesystem::path name =
        options_.descriptor < 0
            ? file_
            : std::filesystem::path("/proc/self/fd/" + std::to_string(options_.descriptor));
    descriptor_ = CDescriptor(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (!descriptor_ || fstat(descriptor_.Get(), &status) != 0) {
        Fail(ENFault::Unreadable, Tr("cannot be read: {}", SystemText(errno)));
    }
    if (S_ISDIR(status.st_mode)) Fail(ENFault::Unreadable, Tr("is a folder"));
    if (!S_ISREG(status.st_mode)) Fail(ENFault::Unreadable, Tr("is not a regular file"));
    if (status.st_size == 0) Fail(ENFault::Unreadable, Tr("is empty"));
}

void CImageReader::FindKind() {
    std::array<std::uint8_t, kContentBytes> bytes = {};
    const ssize_t got = pread(descriptor_.Get(), bytes.data(), bytes.size(), 0);
    if (got < 0) Fail(ENFault::Unreadable, Tr("cannot be read: {}", SystemText(errno)));
    const SContent content = KindByContent(std::span(bytes).first(static_cast<std::size_t>(got)));
    kind_ = content.kind;
    if (kind_) {
        result_.kind = kind_->name;
        return;
    }
    const std::string hint = Tr("PNG, JPEG, TIFF and WebP can be read");
    if (content.name) FailUnsupported(Tr("{} is not supported", content.name), hint);
    if (const SKind* claimed = KindByExtension(file_)) {
        Fail(ENFault::Unreadable, Tr("is not the {} file that its name tells", claimed->name));
    }
    FailUnsupported(Tr("is not an image of a known kind"), hint);
}

// What the decoders overlook or do not tell.
void CImageReader::ReadStructure() {
    contents_ = ReadContents(kind_->kind, descriptor_.Get(), std::max(options_.page, 1));
    if (contents_.is_too_large) {
        Fail(ENFault::Limit,
             Tr("has more than {} MB of data besides its pixels", kMaxMetadataBytes >> 20));
    }
    if (contents_.size.cx > 0) {
        CheckSize(static_cast<std::uint64_t>(contents_.size.cx),
                  static_cast<std::uint64_t>(contents_.size.cy));
    }
    CheckPages();
    if (!contents_.unsupported.empty()) {
        FailUnsupported(contents_.unsupported, Tr("save it in strips of 8 or 16 bits a sample"));
    }
    for (const std::string& what : contents_.damage) Damaged(what);
    for (const std::string& what : contents_.warnings) Warn(what);
}

void CImageReader::CheckSize(std::uint64_t width, std::uint64_t height) const {
    if (width > kMaxSide || height > kMaxSide) {
        Fail(ENFault::Limit,
             Tr("has {}; a side may have {} at most", SizeText(width, height), kMaxSide));
    }
    if (width * height > options_.max_pixels) {
        Fail(ENFault::Limit,
             Tr("has {}, more than the limit of {}", SizeText(width, height), options_.max_pixels),
             Tr("--max-pixels {} lets it in", width * height));
    }
}

void CImageReader::CheckBytes() const {
    const auto [width, height] = header_.size;
    const std::uint64_t bytes = static_cast<std::uint64_t>(width) *
                                static_cast<std::uint64_t>(height) *
                                static_cast<std::uint64_t>(header_.format.PixelBytes());
    if (bytes <= options_.max_bytes) return;
    Fail(ENFault::Limit,
         Tr("has {}, which take {} MiB; there is memory for {}",
            SizeText(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height)),
            bytes >> 20, options_.max_bytes >> 20),
         Tr("--max-memory keeps pixels on the disk"));
}

void CImageReader::CheckPages() const {
    if (contents_.is_animated && kind_->kind == ENKind::Png) {
        FailUnsupported(Tr("is an animated PNG"), Tr("save one frame as a PNG first"));
    }
    const bool is_tiff = kind_->kind == ENKind::Tiff;
    if (options_.page > contents_.pages && contents_.damage.empty()) {
        Fail(ENFault::Usage,
             is_tiff ? Tr("has {} pages; there is no number {}", contents_.pages, options_.page)
                     : Tr("has {} frames; there is no number {}", contents_.pages, options_.page));
    }
    if (options_.page > 0 || contents_.pages < 2) return;
    FailUnsupported(
        is_tiff ? Tr("has {} pages", contents_.pages)
                : Tr("is an animation of {} frames", contents_.pages),
        is_tiff ? Tr("--page 1 takes the first page") : Tr("--page 1 takes the first frame"));
}

CDecoder CImageReader::OpenDecoder(std::string& trouble) {
    if (kind_->kind == ENKind::Png) return OpenPngDecoder(descriptor_.Get(), trouble);
    if (kind_->kind == ENKind::Jpeg) return OpenJpegDecoder(descriptor_.Get(), trouble);
    return OpenVipsDecoder(kind_->kind, descriptor_.Get(), VipsOptions(), trouble);
}

void CImageReader::OpenPicture() {
    std::string trouble;
    decoder_ = OpenDecoder(trouble);
    if (!decoder_) {
        const bool is_unsupported = Contains(trouble, "nsupported") ||
                                    Contains(trouble, "not supported") ||
                                    Contains(trouble, "not configured");
        Fail(is_unsupported ? ENFault::Unsupported : ENFault::Unreadable,
             is_unsupported ? Tr("is of a sort that cannot be read ({})", trouble)
                            : Tr("is damaged or cut off ({})", trouble));
    }
    header_.size = decoder_->Size();
    CheckSize(static_cast<std::uint64_t>(header_.size.cx),
              static_cast<std::uint64_t>(header_.size.cy));
    if (!decoder_->Format().IsKnown()) Convert();
    header_.format = decoder_->Format();
    if (contents_.metadata.orientation >= 5) std::swap(header_.size.cx, header_.size.cy);
    CheckBytes();
    JudgeComplaints();
}

void CImageReader::Convert() {
    const std::string what = decoder_->Strangeness();
    if (!options_.convert) {
        FailUnsupported(Tr("{} is not supported", what), Tr("--convert makes grey or RGB of it"));
    }
    // The library that converts does not go on to the end marker.
    if (kind_->kind == ENKind::Jpeg && !is_header_only_) Drain();
    SConversion conversion;
    std::string trouble;
    decoder_ = OpenConverted(kind_->kind, descriptor_.Get(), VipsOptions(), conversion, trouble);
    if (!decoder_) {
        FailUnsupported(Tr("{} cannot be converted ({})", what, trouble),
                        Tr("convert it to grey or RGB first"));
    }
    for (const std::string& note : conversion.notes) Warn(note);
    if (!conversion.profile.empty()) {
        ReplaceProfile(contents_.metadata, std::move(conversion.profile));
    }
}

void CImageReader::Drain() {
    std::vector<std::uint8_t> row(std::size_t{4} * static_cast<std::size_t>(header_.size.cx));
    bool is_whole = true;
    for (int y = 0; y < header_.size.cy && is_whole; ++y) is_whole = decoder_->NextRow(row.data());
    if (!is_whole || !decoder_->Finish()) Damaged(Tr("is damaged ({})", decoder_->Trouble()));
    JudgeComplaints();
}

void CImageReader::JudgeComplaints() {
    for (const SComplaint& complaint : decoder_->TakeComplaints()) {
        if (complaint.is_damage) {
            Damaged(Tr("is damaged ({})", complaint.text));
        } else {
            Warn(Tr("has a value that is not laid out as it should be ({})", complaint.text));
        }
    }
}

void CImageReader::Decode() {
    const auto [width, height] = header_.size;
    const CErrorAutoThrow created = result_.pixels.Create(width, height, header_.format);
    if (created.Code() == TolmErrorCode::ScratchFailed) {
        Fail(ENFault::Output, Tr("cannot be kept: {}", created.Text()));
    }
    if (created.Failed()) {
        Fail(ENFault::Limit,
             Tr("has {}, for which the memory cannot be had",
                SizeText(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height))));
    }
    contents_.metadata.picture.format = header_.format;
    MakeUpright(contents_.metadata, decoder_->Size());
    DecodeRows();
    if (is_whole_ && !decoder_->Finish()) Damaged(Tr("is damaged ({})", decoder_->Trouble()));
    JudgeComplaints();
    result_.metadata = std::make_shared<const SMetadata>(std::move(contents_.metadata));
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

// Writes pixels `step` bytes apart.
template <class Traits>
void Scatter(Traits, const std::uint8_t* row, std::uint8_t* to, int pixels, std::ptrdiff_t step) {
    constexpr std::size_t kBytes = Traits::kChannels * sizeof(typename Traits::Sample);
    for (int x = 0; x < pixels; ++x) std::memcpy(to + x * step, row + x * kBytes, kBytes);
}

void CImageReader::DecodeRows() {
    const SPlacement place = Place(result_.pixels, contents_.metadata.orientation);
    const auto [width, height] = decoder_->Size();
    const std::size_t bytes =
        static_cast<std::size_t>(width) * static_cast<std::size_t>(header_.format.PixelBytes());
    // Rows that stay rows are decoded where they belong.
    const bool is_row = place.pixel_step == header_.format.PixelBytes();
    std::vector<std::uint8_t> stored(is_row ? 0 : bytes);
    progress_.SetProgressRange(height);
    bool goes_on = true;
    for (int y = 0; y < height; ++y) {
        std::uint8_t* const at = place.at + y * place.row_step;
        std::uint8_t* const row = is_row ? at : stored.data();
        if (y % kStripRows == 0 && progress_.SetProgress(y))
            Fail(ENFault::Cancelled, Tr("cancelled"));
        if (goes_on && !decoder_->NextRow(row)) {
            const std::string reason = decoder_->Trouble();
            if (y == 0) Fail(ENFault::Unreadable, Tr("is damaged or cut off ({})", reason));
            Damaged(Tr("is damaged or cut off after {} of {} rows ({})", y, height, reason));
            goes_on = false;
        }
        if (!goes_on) std::fill_n(row, bytes, std::uint8_t{0});
        if (goes_on && y % kStripRows == 0) JudgeComplaints();
        SwapColours(row, row, width, header_.format);
        if (is_row) continue;
        VisitPixelFormat(header_.format, 0, [&](auto traits) {
            Scatter(traits, row, at, decoder_->Size().cx, place.pixel_step);
            return 0;
        });
    }
    is_whole_ = goes_on;
    if (progress_.SetProgress(height)) Fail(ENFault::Cancelled, Tr("cancelled"));
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
