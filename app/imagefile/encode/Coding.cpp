#include "app/imagefile/encode/Coding.h"

#include <algorithm>
#include <string_view>

#include "app/imagefile/encode/Deflate.h"
#include "hostlib/language/Texts.h"

namespace imagefile {

namespace {

// The quality where no file tells another: artefacts of JPEG coding are then hard to see.
constexpr int kJpegQuality = 95;
constexpr int kWebpQuality = 90;
// Effects add detail: what was coded worse than this still gets it.
constexpr int kLeastWebpQuality = 75;

struct STiffName {
    std::string_view name;
    ENTiffCompression compression;
};
constexpr STiffName kTiffNames[] = {{"none", ENTiffCompression::None},
                                    {"lzw", ENTiffCompression::Lzw},
                                    {"deflate", ENTiffCompression::Deflate},
                                    {"zstd", ENTiffCompression::Zstd}};

constexpr std::string_view kWebpNames[] = {"lossy", "lossless"};

struct SSubsampling {
    std::string_view name;
    int horizontal, vertical;
};
constexpr SSubsampling kSubsamplings[] = {
    {"444", 1, 1}, {"440", 1, 2}, {"422", 2, 1}, {"420", 2, 2}, {"411", 4, 1}};

constexpr int kMostPngLevel = 9;

bool HasQuality(ENKind kind) { return kind == ENKind::Jpeg || kind == ENKind::Webp; }

class CChooser {
  public:
    CChooser(const std::filesystem::path& file, const SKind& kind, const SWriteOptions& options,
             const SMetadata* metadata)
        : file_(file), kind_(kind), options_(options), metadata_(metadata) {}

    SChosenCoding Choose() const {
        SChosenCoding chosen;
        if (options_.quality && !HasQuality(kind_.kind))
            Refuse(Tr("{} takes no quality", kind_.name), Tr("JPEG and WebP do"));
        if (!options_.subsampling.empty() && kind_.kind != ENKind::Jpeg) {
            Refuse(Tr("{} takes no subsampling", kind_.name), Tr("JPEG does"));
        }
        switch (kind_.kind) {
            case ENKind::Png:
                chosen.png_level = PngLevel();
                break;
            case ENKind::Jpeg:
                if (!options_.compression.empty())
                    RefuseCompression(Tr("its quality is set instead"));
                chosen.jpeg = Jpeg();
                break;
            case ENKind::Tiff:
                chosen.tiff = Tiff();
                break;
            case ENKind::Webp:
                chosen.webp_quality = WebpQuality();
                break;
        }
        return chosen;
    }

  private:
    [[noreturn]] void Refuse(const std::string& what, const std::string& hint) const {
        throw CImageFileError(ENFault::Usage, file_, what, hint);
    }
    [[noreturn]] void RefuseCompression(const std::string& hint) const {
        Refuse(Tr("{} has no compression \"{}\"", kind_.name, DisplayText(options_.compression)),
               hint);
    }
    const SCoding* CodingOf(ENKind kind) const {
        return metadata_ && metadata_->kind == kind ? &metadata_->coding : nullptr;
    }

    int PngLevel() const {
        const std::string& wanted = options_.compression;
        if (wanted.empty()) return kFastDeflate;
        if (wanted.size() != 1 || wanted[0] < '0' || wanted[0] > '0' + kMostPngLevel) {
            RefuseCompression(Tr("one of 0 (none) to 9 (smallest, slowest)"));
        }
        return wanted[0] - '0';
    }

    SJpegCoding Jpeg() const {
        SJpegCoding jpeg;
        jpeg.quality = options_.quality.value_or(kJpegQuality);
        if (const SCoding* own = CodingOf(ENKind::Jpeg)) {
            if (!options_.quality) jpeg.quantisation = Quantisation(*own);
            TakeSampling(*own, jpeg);
        }
        // Such a picture has no finer colour.
        const SCoding* webp = CodingOf(ENKind::Webp);
        if (webp && webp->is_lossy_webp) jpeg.horizontal = jpeg.vertical = 2;
        if (options_.subsampling.empty()) return jpeg;
        const auto* found =
            std::find_if(std::begin(kSubsamplings), std::end(kSubsamplings),
                         [&](const auto& each) { return each.name == options_.subsampling; });
        if (found == std::end(kSubsamplings)) {
            Refuse(
                Tr("{} has no subsampling \"{}\"", kind_.name, DisplayText(options_.subsampling)),
                Tr("one of 444 (full colour), 440, 422, 420 and 411"));
        }
        jpeg.horizontal = found->horizontal;
        jpeg.vertical = found->vertical;
        return jpeg;
    }

    // One table for luminance and one for chrominance, the finer where there are two of those.
    static std::vector<std::vector<std::uint16_t>> Quantisation(const SCoding& own) {
        std::vector<std::vector<std::uint16_t>> tables;
        for (const auto& table : own.quantisation) {
            const bool is_usable =
                table.size() == 64 && *std::min_element(table.begin(), table.end()) > 0;
            if (!is_usable) continue;
            if (tables.size() < 2) {
                tables.push_back(table);
                continue;
            }
            std::transform(table.begin(), table.end(), tables[1].begin(), tables[1].begin(),
                           [](auto a, auto b) { return std::min(a, b); });
        }
        return tables;
    }

    static void TakeSampling(const SCoding& own, SJpegCoding& jpeg) {
        if (own.sampling.size() < 3) return;
        const auto ratio = [&](int shift) {
            const auto factor = [&](std::size_t i) { return own.sampling[i] >> shift & 15; };
            const int chrominance = std::max({factor(1), factor(2), 1});
            return factor(0) / chrominance;
        };
        const int horizontal = ratio(4), vertical = ratio(0);
        for (const SSubsampling& known : kSubsamplings) {
            if (known.horizontal != horizontal || known.vertical != vertical) continue;
            jpeg.horizontal = horizontal;
            jpeg.vertical = vertical;
        }
    }

    // LZW where the file has one that is not written.
    ENTiffCompression Tiff() const {
        const SCoding* own = CodingOf(ENKind::Tiff);
        constexpr std::uint16_t kOldDeflate = 32946;
        for (const STiffName& known : kTiffNames) {
            if (!options_.compression.empty() && known.name == options_.compression) {
                return known.compression;
            }
            if (!options_.compression.empty() || !own) continue;
            if (own->compression == static_cast<std::uint16_t>(known.compression)) {
                return known.compression;
            }
        }
        if (!options_.compression.empty())
            RefuseCompression(Tr("one of none, lzw, deflate and zstd"));
        const bool is_old_deflate = own && own->compression == kOldDeflate;
        return is_old_deflate ? ENTiffCompression::Deflate : ENTiffCompression::Lzw;
    }

    // What has lost already is not made many times larger.
    std::optional<int> WebpQuality() const {
        const std::string& wanted = options_.compression;
        const bool known =
            std::find(std::begin(kWebpNames), std::end(kWebpNames), wanted) != std::end(kWebpNames);
        if (!wanted.empty() && !known) {
            RefuseCompression(Tr("one of lossy and lossless"));
        }
        if (wanted == "lossless") {
            if (options_.quality)
                Refuse(Tr("{} takes no quality when it is lossless", kind_.name),
                       Tr("leave one out"));
            return std::nullopt;
        }
        if (options_.quality) return options_.quality;
        if (const SCoding* jpeg = CodingOf(ENKind::Jpeg)) {
            return std::max(QualityOf(jpeg->quantisation), kLeastWebpQuality);
        }
        const SCoding* webp = CodingOf(ENKind::Webp);
        if (wanted == "lossy" || (webp && webp->is_lossy_webp)) return kWebpQuality;
        return std::nullopt;
    }

    const std::filesystem::path& file_;
    const SKind& kind_;
    const SWriteOptions& options_;
    const SMetadata* metadata_;
};

std::vector<std::string> Compressions(ENKind kind) {
    std::vector<std::string> names;
    if (kind == ENKind::Webp) names.assign(std::begin(kWebpNames), std::end(kWebpNames));
    for (const STiffName& each : kTiffNames) {
        if (kind == ENKind::Tiff) names.emplace_back(each.name);
    }
    for (int level = 0; kind == ENKind::Png && level <= kMostPngLevel; ++level) {
        names.push_back(std::to_string(level));
    }
    return names;
}

}  // namespace

SWriteChoices ChoicesFor(const std::filesystem::path& file) {
    const SKind* kind = KindByExtension(file);
    if (!kind) return {};
    SWriteChoices choices{HasQuality(kind->kind), {}, Compressions(kind->kind)};
    for (const SSubsampling& each : kSubsamplings) {
        if (kind->kind == ENKind::Jpeg) choices.subsampling.emplace_back(each.name);
    }
    return choices;
}

SChosenCoding ChooseCoding(const std::filesystem::path& file, const SKind& kind,
                           const SWriteOptions& options, const SMetadata* metadata) {
    return CChooser(file, kind, options, metadata).Choose();
}

}  // namespace imagefile
