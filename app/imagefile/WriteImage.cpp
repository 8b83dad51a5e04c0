#include <algorithm>
#include <stdexcept>
#include <utility>

#include "app/imagefile/CImageFile.h"
#include "app/imagefile/FileKinds.h"
#include "app/imagefile/encode/Coding.h"
#include "app/imagefile/encode/EncodeJpeg.h"
#include "app/imagefile/encode/EncodePng.h"
#include "app/imagefile/encode/EncodeTiff.h"
#include "app/imagefile/encode/EncodeWebp.h"
#include "app/imagefile/metadata/Metadata.h"
#include "hostlib/language/Texts.h"

namespace imagefile {

namespace {

constexpr int kPercent = 100;

const SKind& KindToWrite(const std::filesystem::path& file, const SWriteOptions& options) {
    if (!options.format.empty()) {
        if (const SKind* kind = KindByExtension("x." + options.format)) return *kind;
        throw CImageFileError(ENFault::Usage, options.format, Tr("is no kind of image to write"),
                              Tr("one of png, jpeg, tiff and webp"));
    }
    if (const SKind* kind = KindByExtension(file)) return *kind;
    throw CImageFileError(ENFault::Usage, file, Tr("the extension tells no kind of image to write"),
                          Tr("one of {}, or a format of its own", kKnownExtensions));
}

void CheckSides(const std::filesystem::path& file, const SKind& kind, CSize size) {
    if (size.cx <= kind.max_side && size.cy <= kind.max_side) return;
    throw CImageFileError(ENFault::Limit, file,
                          Tr("{} cannot hold {} x {} pixels; a side may have {} at most", kind.name,
                             size.cx, size.cy, kind.max_side),
                          kind.max_side < kMaxSide ? Tr("PNG and TIFF hold larger images") : "");
}

// One picture on its way into an output file.
class CImageWriter {
  public:
    CImageWriter(const std::filesystem::path& file, const SKind& kind,
                 const CRowIteratorBands& pixels, const SMetadata* metadata, COutputFile& output,
                 CStatusControl* status)
        : file_(file),
          kind_(kind),
          pixels_(pixels),
          metadata_(metadata),
          rows_(pixels, kind),
          progress_(status),
          output_{output, [this](int done, int of) { Advance(done, of); }} {}

    std::vector<std::string> Write(const SChosenCoding& coding) {
        progress_.SetProgressRange(kPercent);
        Advance(0, 1);
        WarnOfPixels();
        CLosses losses;
        try {
            Encode(coding, losses);
        } catch (const std::runtime_error& error) {
            throw CImageFileError(ENFault::Output, file_,
                                  Tr("cannot be encoded: {}", error.what()));
        }
        if (metadata_) CompareMetadata(losses);
        for (const std::string& loss : losses) Warn(loss);
        return std::move(warnings_);
    }

  private:
    void Warn(const std::string& what) {
        warnings_.push_back(Tr("{}: not kept in {}: {}", DisplayName(file_), kind_.name, what));
    }
    void Advance(int done, int of) {
        const auto percent = std::int64_t{done} * kPercent / of;
        if (progress_.SetProgress(static_cast<int>(percent))) {
            throw CImageFileError(ENFault::Cancelled, file_, Tr("cancelled"));
        }
    }

    void WarnOfPixels() {
        const CNPixelFormat from = pixels_.GetPixelFormat();
        const CNPixelFormat to = rows_.Format();
        if (from.Is16bit() && !to.Is16bit()) Warn(Tr("16 bits; written as 8"));
        if (from.IsAlphaChannelPresent() && !to.IsAlphaChannelPresent()) {
            Warn(Tr("transparency; laid over white"));
        }
        if (from.ColourChannels() != to.ColourChannels()) Warn(Tr("grey; written as colour"));
    }

    // What arrived is looked up in the file itself.
    void CompareMetadata(CLosses& losses) const {
        SContents arrived = ReadContents(kind_.kind, output_.file.Descriptor());
        MakeUpright(arrived.metadata, {rows_.Width(), rows_.Height()});
        for (std::string& lost : LostMetadata(*metadata_, arrived.metadata)) {
            const bool is_known = std::find(losses.begin(), losses.end(), lost) != losses.end();
            if (!is_known) losses.push_back(std::move(lost));
        }
    }

    void Encode(const SChosenCoding& coding, CLosses& losses) {
        static const SMetadata kNone;
        const SMetadata& metadata = metadata_ ? *metadata_ : kNone;
        const SImageHeader written = {{rows_.Width(), rows_.Height()}, rows_.Format()};
        switch (kind_.kind) {
            case ENKind::Png:
                return EncodePng(rows_, PngChunks(metadata, written, losses), coding.png_level,
                                 output_);
            case ENKind::Jpeg:
                return EncodeJpeg(rows_, JpegSegments(metadata, written, losses), coding.jpeg,
                                  output_);
            case ENKind::Tiff:
                return EncodeTiff(rows_, metadata, coding.tiff, output_, losses);
            case ENKind::Webp:
                return EncodeWebp(rows_, WebpChunks(metadata, written, losses), coding.webp_quality,
                                  output_);
        }
    }

    const std::filesystem::path& file_;
    const SKind& kind_;
    const CRowIteratorBands& pixels_;
    const SMetadata* metadata_;
    CRowSource rows_;
    CStatusControl progress_;
    SEncoderOutput output_;
    std::vector<std::string> warnings_;
};

// What the output file reports, as this library reports it.
template <class Operation>
auto WithOutputErrors(Operation&& operation) {
    try {
        return operation();
    } catch (const CImageFileError&) {
        throw;
    } catch (const CFileError& error) {
        throw CImageFileError(ENFault::Output, error);
    }
}

}  // namespace

void CheckOutput(const std::filesystem::path& file, const SOutputRules& rules, CSize size,
                 const SWriteOptions& options) {
    const SKind& kind = KindToWrite(file, options);
    CheckSides(file, kind, size);
    ChooseCoding(file, kind, options, nullptr);
    WithOutputErrors([&] { COutputFile::Check(file, rules); });
}

std::vector<std::string> WriteImage(const std::filesystem::path& file,
                                    const CRowIteratorBands& pixels, const CMetadata& metadata,
                                    const SOutputRules& rules, CStatusControl* status,
                                    const SWriteOptions& options) {
    const SKind& kind = KindToWrite(file, options);
    CheckSides(file, kind, {pixels.GetWidth(), pixels.GetHeight()});
    const SChosenCoding coding = ChooseCoding(file, kind, options, metadata.get());
    return WithOutputErrors([&] {
        COutputFile output(file, rules);
        std::vector<std::string> warnings =
            CImageWriter(file, kind, pixels, metadata.get(), output, status).Write(coding);
        output.Publish([&] { return CStatusControl(status).SetProgress(0) != 0; });
        return warnings;
    });
}

}  // namespace imagefile
