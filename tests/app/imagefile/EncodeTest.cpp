#include <tbb/global_control.h>
#include <vips/vips.h>

#include "Files.h"
#include "app/imagefile/VipsSession.h"
#include "app/imagefile/metadata/Metadata.h"

namespace {

using files::FaultOf;
using files::Folder;
using imagefile::SWriteOptions;
using pictures::Noise;
using testing::HasSubstr;
using testing::StartsWith;

SWriteOptions Compression(const char* name) {
    SWriteOptions options;
    options.compression = name;
    return options;
}
SWriteOptions Quality(int quality, const char* subsampling = "") {
    SWriteOptions options;
    options.quality = quality;
    options.subsampling = subsampling;
    return options;
}
SWriteOptions Subsampling(const char* name) {
    SWriteOptions options;
    options.subsampling = name;
    return options;
}
SWriteOptions LosslessOfQuality() {
    SWriteOptions options = Quality(80);
    options.compression = "lossless";
    return options;
}
SWriteOptions Format(const char* name) {
    SWriteOptions options;
    options.format = name;
    return options;
}

void Write(const files::fs::path& file, const CRowIteratorBands& picture,
           const SWriteOptions& options, const imagefile::CMetadata& metadata = nullptr) {
    imagefile::WriteImage(file, picture, metadata, {.overwrite = true, .input = {}}, nullptr,
                          options);
}

// Noise with even places and steps in it, so that no coding sees one sort of rows only.
CRowIteratorBands Mixed(ENPixelFormat format, int width, int height) {
    CRowIteratorBands picture = Noise(format, width, height, 7);
    for (int y = 0; y < height; ++y) {
        auto* row = picture.Row<std::uint8_t>(y);
        const int bytes = width * picture.GetPixelFormat().PixelBytes();
        if (y / 40 % 3 == 1) std::fill_n(row, bytes, static_cast<std::uint8_t>(y));
        if (y / 40 % 3 == 2) {
            for (int x = 0; x < bytes; ++x) row[x] = static_cast<std::uint8_t>(x / 8 + y);
        }
    }
    return picture;
}

struct SCase {
    const char* name;
    const char* compression;
};
constexpr SCase kLossless[] = {
    {"x.png", ""},     {"x.png", "0"},       {"x.png", "2"},
    {"x.png", "9"},    {"x.tif", "none"},    {"x.tif", "lzw"},
    {"x.tif", "zstd"}, {"x.tif", "deflate"}, {"x.webp", "lossless"},
};

// Every coding of every layout, in sizes about those of stripes and strips, as others decode it.
TEST(Encode, LosslessCodingsKeepEverySample) {
    const Folder folder;
    for (const SCase& each : kLossless) {
        for (const ENPixelFormat format : pictures::kAllFormats) {
            const bool is_webp = std::string(each.name) == "x.webp";
            if (is_webp && format != ENPixelFormat::Colour8 &&
                format != ENPixelFormat::ColourAlpha8) {
                continue;
            }
            for (const CSize size : {CSize{1, 1}, {3, 64}, {5, 129}, {257, 65}, {1400, 300}}) {
                SCOPED_TRACE(std::string(each.name) + " " + each.compression + " " +
                             std::to_string(size.cx));
                const CRowIteratorBands picture = Mixed(format, size.cx, size.cy);
                Write(folder / each.name, picture, Compression(each.compression));
                EXPECT_EQ(
                    pictures::Difference(imagefile::ReadImage(folder / each.name).pixels, picture),
                    "");
            }
        }
    }
}

TEST(Encode, AnyNumberOfThreadsWritesTheSameBytes) {
    const Folder folder;
    const CRowIteratorBands picture = Mixed(ENPixelFormat::Colour8, 1500, 900);
    for (const SCase& each : {SCase{"x.jpg", ""},
                              {"x.png", ""},
                              {"x.png", "3"},
                              {"x.tif", "lzw"},
                              {"x.tif", "deflate"},
                              {"x.webp", "lossy"}}) {
        std::string first;
        for (const std::size_t threads : {1U, 2U, 5U}) {
            const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
            Write(folder / each.name, picture, Compression(each.compression));
            const std::string bytes = files::Content(folder / each.name);
            if (first.empty()) first = bytes;
            EXPECT_EQ(bytes == first, true) << each.name << threads;
        }
    }
}

// Stripes that are joined decode to what the library makes of the picture in one go.
TEST(Encode, JpegStripesAreOnePicture) {
    imagefile::StartVips();
    const Folder folder;
    for (const ENPixelFormat format : {ENPixelFormat::Colour8, ENPixelFormat::Grey8}) {
        for (const char* subsampling : {"444", "420"}) {
            for (const CSize size : {CSize{1, 1}, {70, 64}, {333, 129}, {64, 700}}) {
                const CRowIteratorBands picture = Mixed(format, size.cx, size.cy);
                Write(folder / "x.jpg", picture, Quality(80, subsampling));
                Write(folder / "x.png", picture, {});
                VipsImage* source = nullptr;
                ASSERT_EQ(vips_pngload((folder / "x.png").c_str(), &source, nullptr), 0);
                ASSERT_EQ(
                    vips_jpegsave(source, (folder / "whole.jpg").c_str(), "Q", 80, "subsample_mode",
                                  *subsampling == '4' && subsampling[2] == '0'
                                      ? VIPS_FOREIGN_SUBSAMPLE_ON
                                      : VIPS_FOREIGN_SUBSAMPLE_OFF,
                                  nullptr),
                    0);
                g_object_unref(source);
                EXPECT_EQ(pictures::Difference(imagefile::ReadImage(folder / "x.jpg").pixels,
                                               imagefile::ReadImage(folder / "whole.jpg").pixels),
                          "")
                    << subsampling << size.cx;
            }
        }
    }
}

// What is not said follows the input; what is said counts.
TEST(Encode, CodingFollowsTheInput) {
    const Folder folder;
    const CRowIteratorBands picture = Mixed(ENPixelFormat::Colour8, 200, 120);
    const auto coding = [&](const char* name) {
        return imagefile::ReadImage(folder / name).metadata->coding;
    };
    const auto again = [&](const char* name, const SWriteOptions& options = {}) {
        const imagefile::SImageFile read = imagefile::ReadImage(folder / name);
        Write(folder / name, read.pixels, options, read.metadata);
        return coding(name);
    };
    for (const char* subsampling : {"444", "440", "422", "420", "411"}) {
        for (const int quality : {30, 75, 100}) {
            Write(folder / "x.jpg", picture, Quality(quality, subsampling));
            const auto before = coding("x.jpg");
            const auto after = again("x.jpg");
            EXPECT_EQ(after.quantisation, before.quantisation) << quality;
            EXPECT_EQ(after.sampling, before.sampling) << subsampling;
            const auto asked = again("x.jpg", Quality(60));
            EXPECT_NE(asked.quantisation, before.quantisation) << quality;
            EXPECT_EQ(asked.sampling, before.sampling) << subsampling;
        }
    }
    for (const char* compression : {"none", "lzw", "deflate", "zstd"}) {
        Write(folder / "x.tif", picture, Compression(compression));
        const auto before = coding("x.tif");
        EXPECT_EQ(again("x.tif").compression, before.compression) << compression;
    }
    for (const char* compression : {"lossy", "lossless"}) {
        Write(folder / "x.webp", picture, Compression(compression));
        EXPECT_EQ(again("x.webp").is_lossy_webp, std::string(compression) == "lossy");
    }
}

TEST(Encode, OptionsThatAKindDoesNotKnowAreRefused) {
    const Folder folder;
    const struct {
        const char* name;
        SWriteOptions options;
        const char* says;
    } cases[] = {
        {"x.png", Quality(80), "takes no quality"},
        {"x.tif", Subsampling("420"), "takes no subsampling"},
        {"x.jpg", Subsampling("421"), "no subsampling \"421\""},
        {"x.jpg", Compression("lzw"), "no compression"},
        {"x.png", Compression("10"), "no compression \"10\""},
        {"x.tif", Compression("jpeg"), "no compression"},
        {"x.webp", Compression("5"), "no compression"},
        {"x.webp", LosslessOfQuality(), "takes no quality"},
        {"x.png", Format("bmp"), "no kind of image"},
        {"x", {}, "no kind of image"},
    };
    for (const auto& each : cases) {
        EXPECT_THAT(
            FaultOf([&] { imagefile::CheckOutput(folder / each.name, {}, {}, each.options); }),
            testing::AllOf(StartsWith("usage: "), HasSubstr(each.says)));
    }
    EXPECT_EQ(FaultOf([&] { imagefile::CheckOutput(folder / "x", {}, {}, Format("JPG")); }), "");
}

}  // namespace
