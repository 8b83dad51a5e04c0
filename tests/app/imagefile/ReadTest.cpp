#include <cmath>
#include <thread>

#include "Files.h"

namespace {

using files::Big;
using files::Content;
using files::Folder;
using files::Little;
using files::ReadFault;
using files::SetContent;
using imagefile::ReadImage;
using pictures::Noise;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

std::string PngChunk(const std::string& name, const std::string& data) {
    const std::string body = name + data;
    std::uint32_t crc = 0xffffffffU;
    for (const char c : body) {
        crc ^= static_cast<std::uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xedb88320U : 0);
    }
    return Big(data.size(), 4) + body + Big(~crc & 0xffffffffU, 4);
}
// A PNG file that is well made but for having no pixels.
std::string PngHeader(std::uint32_t width, std::uint32_t height, const std::string& more = {}) {
    return "\x89PNG\r\n\x1a\n" +
           PngChunk("IHDR", Big(width, 4) + Big(height, 4) + std::string("\x08\x02\0\0\0", 5)) +
           more + PngChunk("IDAT", "x") + PngChunk("IEND", "");
}

TEST(Read, TruncatedAndDamagedFilesAreRefused) {
    for (const char* name : {"x.png", "x.jpg", "x.tif", "x.webp"}) {
        const Folder folder;
        const auto file = folder / name;
        files::Write(file, Noise(ENPixelFormat::Colour8, 200, 150, 4));
        const std::string whole = Content(file);
        for (const double part : {0.001, 0.1, 0.5, 0.9, 0.999, 1.0}) {
            const auto length = static_cast<std::size_t>(part * static_cast<double>(whole.size()));
            SetContent(file, whole.substr(0, std::min(length, whole.size() - 1)));
            EXPECT_THAT(ReadFault(file), StartsWith("unreadable: ")) << name << " " << part;
        }
    }
}

// An error must not pass now and then because some thread was faster.
TEST(Read, WrongChecksumsAreFoundEveryTime) {
    const Folder folder;
    const auto file = folder / "x.png";
    files::Write(file, Noise(ENPixelFormat::Colour8, 200, 150, 4));
    std::string bytes = Content(file);
    bytes[bytes.size() / 2] ^= 1;
    SetContent(file, bytes);
    for (int i = 0; i < 50; ++i) {
        ASSERT_THAT(ReadFault(file), AllOf(StartsWith("unreadable: "), HasSubstr("x.png: ")));
    }
    SetContent(file, PngHeader(4, 4, "\0\0\0\3tEXta\0b----"));
    EXPECT_THAT(ReadFault(file), StartsWith("unreadable: "));
}

// Pictures that fail at once do not get each other's reasons.
TEST(Read, EveryFailureHasItsOwnReason) {
    const Folder folder;
    const auto unknown = folder / "unknown.tif", cut = folder / "cut.tif";
    std::string bytes = files::Tiff(4, 8, 1, 1, "abcd");
    SetContent(cut, bytes.substr(0, bytes.size() - 20));
    bytes.replace(bytes.find(Little(259, 2) + Little(3, 2)) + 8, 2, Little(34712, 2));
    SetContent(unknown, bytes);
    std::vector<std::thread> threads;
    for (const auto& file : {unknown, cut, unknown, cut}) {
        threads.emplace_back([&, file, alone = ReadFault(file)] {
            for (int i = 0; i < 100; ++i) EXPECT_EQ(ReadFault(file), alone);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

// What is there comes, what is missing is black, and a warning says so.
TEST(Read, LenientTakesWhatIsThere) {
    for (const char* name : {"x.png", "x.jpg"}) {
        const Folder folder;
        const auto file = folder / name;
        files::Write(file, Noise(ENPixelFormat::Colour8, 200, 150, 4));
        const CRowIteratorBands whole = ReadImage(file).pixels;
        SetContent(file, Content(file).substr(0, files::fs::file_size(file) / 2));
        const imagefile::SImageFile half = ReadImage(file, {.lenient = true});
        EXPECT_FALSE(half.warnings.empty());
        EXPECT_EQ(half.pixels.GetHeight(), 150);
        for (int x = 0; x < 200 * 3; ++x) {
            ASSERT_EQ(half.pixels.Row<std::uint8_t>(20)[x], whole.Row<std::uint8_t>(20)[x]);
        }
    }
}

TEST(Read, RefusesByName) {
    const Folder folder;
    const auto saved = [&](const char* name, int bands, VipsBandFormat format,
                           VipsInterpretation colours) {
        const auto picture = files::VipsPicture(16, 16, bands, format, colours);
        EXPECT_EQ(vips_image_write_to_file(picture.get(), (folder / name).c_str(), nullptr), 0);
    };
    saved("cmyk.jpg", 4, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_CMYK);
    saved("cmyk.tif", 4, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_CMYK);
    saved("lab.tif", 3, VIPS_FORMAT_FLOAT, VIPS_INTERPRETATION_LAB);
    saved("float.tif", 1, VIPS_FORMAT_FLOAT, VIPS_INTERPRETATION_B_W);
    saved("signed.tif", 1, VIPS_FORMAT_SHORT, VIPS_INTERPRETATION_B_W);
    saved("five.tif", 5, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB);
    const auto strip = files::VipsPicture(16, 48, 3, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB);
    vips_image_set_int(strip.get(), VIPS_META_PAGE_HEIGHT, 16);
    vips_tiffsave(strip.get(), (folder / "pages.tif").c_str(), nullptr);
    vips_webpsave(strip.get(), (folder / "frames.webp").c_str(), nullptr);
    SetContent(folder / "apng.png", PngHeader(4, 4, PngChunk("acTL", Big(2, 4) + Big(0, 4))));
    SetContent(folder / "gif.png", "GIF89a..............");
    SetContent(folder / "notes.txt", "dear diary");
    SetContent(folder / "text.png", "dear diary");
    SetContent(folder / "empty.png", "");
    files::fs::create_directory(folder / "folder.png");
    ASSERT_EQ(mkfifo((folder / "pipe.png").c_str(), 0600), 0);

    const struct {
        const char* name;
        const char* fault;
        const char* says;
    } kCases[] = {
        {"cmyk.jpg", "unsupported", "CMYK"},
        {"cmyk.tif", "unsupported", "CMYK"},
        {"lab.tif", "unsupported", "Lab"},
        {"float.tif", "unsupported", "float"},
        {"signed.tif", "unsupported", "short"},
        {"five.tif", "unsupported", "5 channels"},
        {"pages.tif", "unsupported", "has 3 pages"},
        {"frames.webp", "unsupported", "an animation of 3 frames"},
        {"apng.png", "unsupported", "animated PNG"},
        {"gif.png", "unsupported", "GIF is not supported"},
        {"notes.txt", "unsupported", "not an image of a known kind"},
        {"text.png", "unreadable", "is not the PNG file that its name tells"},
        {"empty.png", "unreadable", "is empty"},
        {"missing.png", "unreadable", "No such file or directory"},
        {"folder.png", "unreadable", "is a folder"},
        {"pipe.png", "unreadable", "is not a regular file"},
    };
    for (const auto& refused : kCases) {
        EXPECT_THAT(ReadFault(folder / refused.name),
                    AllOf(StartsWith(std::string(refused.fault) + ": "),
                          HasSubstr(std::string(refused.name) + ": "), HasSubstr(refused.says)));
    }
}

// Sizes are judged by the header, however little follows it.
TEST(Read, LimitsHoldBeforeAnythingIsDecoded) {
    const Folder folder;
    const auto file = folder / "x.png";
    const struct {
        std::uint32_t width, height;
        std::uint64_t limit;
        const char* fault;
    } kCases[] = {
        {60000, 60000, imagefile::kDefaultMaxPixels, "limit: "},
        {65536, 1, imagefile::kDefaultMaxPixels, "limit: "},
        {1, 65536, ~std::uint64_t{0}, "limit: "},
        {0x7fffffff, 0x7fffffff, ~std::uint64_t{0}, "limit: "},
        {40, 25, 999, "limit: "},
        {40, 25, 1000, "unreadable: "},  // accepted, then found to have no pixels
        {65535, 1, imagefile::kDefaultMaxPixels, "unreadable: "},
    };
    for (const auto& size : kCases) {
        SetContent(file, PngHeader(size.width, size.height));
        EXPECT_THAT(ReadFault(file, {.max_pixels = size.limit}), StartsWith(size.fault))
            << size.width << " x " << size.height;
    }
    SetContent(folder / "x.tif", files::Tiff(65536, 8, 1, 1, "x"));
    EXPECT_THAT(ReadFault(folder / "x.tif"), StartsWith("limit: "));
}

// Sorts of files that editors write and the rest of the program need not know.
TEST(Read, UnusualFilesBecomeOneOfTheEightFormats) {
    const Folder folder;
    const std::string half = {'\x10', '\x20', '\x40', '\x80'};
    const struct {
        std::string bytes;
        ENPixelFormat format;
        std::vector<int> samples;
    } kCases[] = {
        // One bit, and black as the larger value.
        {files::Tiff(2, 1, 1, 1, "\x40"), ENPixelFormat::Grey8, {0, 255}},
        {files::Tiff(2, 8, 1, 0, "\x01\xff"), ENPixelFormat::Grey8, {254, 0}},
        // Alpha that was multiplied in comes out of it again.
        {files::Tiff(1, 8, 4, 2, half, {{338, 3, 1}}),
         ENPixelFormat::ColourAlpha8,
         {127, 63, 31, 128}},
        {files::Tiff(1, 8, 4, 2, half, {{338, 3, 2}}),
         ENPixelFormat::ColourAlpha8,
         {64, 32, 16, 128}},
        // A tag that the library does not know is no damage.
        {files::Tiff(1, 8, 1, 1, "\x07", {{59932, 4, 7}}), ENPixelFormat::Grey8, {7}},
        // So is a pointer at EXIF data that are not there.
        {files::Tiff(1, 8, 1, 1, "\x07", {{34665, 4, 99999}}), ENPixelFormat::Grey8, {7}},
    };
    for (const auto& unusual : kCases) {
        SetContent(folder / "x.tif", unusual.bytes);
        const imagefile::SImageFile read = ReadImage(folder / "x.tif");
        ASSERT_EQ(read.pixels.GetPixelFormat(), CNPixelFormat(unusual.format));
        EXPECT_TRUE(read.warnings.empty());
        for (std::size_t i = 0; i < unusual.samples.size(); ++i) {
            EXPECT_EQ(read.pixels.Row<std::uint8_t>(0)[i], unusual.samples[i]) << i;
        }
    }
    for (const bool has_alpha : {false, true}) {
        const auto picture = files::VipsPicture(16, 16, has_alpha ? 4 : 3, VIPS_FORMAT_UCHAR,
                                                VIPS_INTERPRETATION_sRGB);
        vips_pngsave(picture.get(), (folder / "palette.png").c_str(), "palette", TRUE, nullptr);
        EXPECT_EQ(ReadImage(folder / "palette.png").pixels.GetPixelFormat().Channels(),
                  has_alpha ? 4 : 3);
    }
}

// A chain of one-pixel pages, each with its number as its sample.
std::string Pages(unsigned count) {
    constexpr unsigned kPage = 2 + 9 * 12 + 4 + 4;
    std::string file = std::string("II*\0", 4) + files::Little(8, 4);
    for (unsigned i = 0; i < count; ++i) {
        const unsigned at = 8 + i * kPage, pixel = at + kPage - 4;
        const unsigned tags[][3] = {{256, 4, 1}, {257, 4, 1}, {258, 3, 8},
                                    {259, 3, 1}, {262, 3, 1}, {273, 4, pixel},
                                    {277, 3, 1}, {278, 4, 1}, {279, 4, 1}};
        file += files::Little(std::size(tags), 2);
        for (const auto& [tag, type, value] : tags) {
            file += files::Little(tag, 2) + files::Little(type, 2) + files::Little(1, 4) +
                    files::Little(value, 4);
        }
        file += files::Little(i + 1 < count ? at + kPage : 0, 4) + files::Little(i % 251, 4);
    }
    return file;
}

TEST(Read, AnyPageCanBeTaken) {
    const Folder folder;
    const auto file = folder / "x.tif";
    SetContent(file, Pages(12000));
    EXPECT_THAT(ReadFault(file), HasSubstr("has 12000 pages"));
    for (const int page : {1, 2, 252, 12000}) {
        EXPECT_EQ(ReadImage(file, {.page = page}).pixels.Row<std::uint8_t>(0)[0], (page - 1) % 251);
    }
    EXPECT_THAT(ReadFault(file, {.page = 12001}), StartsWith("usage: "));
    SetContent(file, Pages(3).replace(8 + 2 + 9 * 12, 4, files::Little(8, 4)));
    EXPECT_THAT(ReadFault(file, {.page = 1}), HasSubstr("the chain of its pages is broken"));
}

// The judge of what is damaged and what is only odd.
TEST(Read, OddTagsAreToldAndOddPixelsAreRefused) {
    const Folder folder;
    std::string swapped = files::Tiff(1, 8, 1, 1, "\x07", {{305, 2, 0}, {315, 2, 0}});
    const std::size_t second = swapped.size() - 4 - 12;
    std::swap_ranges(&swapped[second - 12], &swapped[second], &swapped[second]);
    const std::string jpeg = [&] {
        files::Write(folder / "y.jpg", pictures::Noise(ENPixelFormat::Grey8, 40, 40, 1));
        return files::Content(folder / "y.jpg");
    }();
    const struct {
        std::string bytes;
        const char* fault;  // or the warning
        bool is_read;
    } kCases[] = {
        {swapped, "tags are not sorted", true},
        {files::Tiff(1, 8, 1, 1, "\x07", {{270, 2, 0x64636261}}), "", true},
        {files::Tiff(2, 12, 1, 1, "abc"), "unsupported: ", false},
        {files::Tiff(1, 64, 1, 1, "abcdefgh", {{339, 3, 3}}), "unsupported: ", false},
        {std::string(jpeg).insert(jpeg.size() - 2, 40, 'x'), "extraneous bytes", false},
        {jpeg.substr(0, jpeg.size() - 2), "is cut off", false},
    };
    for (const auto& odd : kCases) {
        SetContent(folder / "x", odd.bytes);
        const std::string fault = ReadFault(folder / "x");
        EXPECT_EQ(fault.empty(), odd.is_read) << fault;
        std::string told = fault;
        if (odd.is_read) {
            for (const std::string& warning : ReadImage(folder / "x").warnings) told += warning;
        }
        EXPECT_THAT(told, HasSubstr(odd.fault));
    }
}

TEST(Read, ConvertsWhatIsNeitherGreyNorRgb) {
    const Folder folder;
    const auto file = folder / "x.tif";
    const auto convert = [&](const std::string& bytes) {
        SetContent(file, bytes);
        EXPECT_THAT(ReadFault(file), StartsWith("unsupported: "));
        imagefile::SImageFile read = ReadImage(file, {.convert = true});
        EXPECT_EQ(read.warnings.size(), 1U);
        return read;
    };
    const float fractions[] = {0.0F, 0.25F, 0.5F, 1.0F};
    const std::string bytes(reinterpret_cast<const char*>(fractions), sizeof fractions);
    const auto grey = convert(files::Tiff(4, 32, 1, 1, bytes, {{339, 3, 3}}));
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(grey.pixels.Row<std::uint16_t>(0)[x], std::lround(fractions[x] * 65535.0F));
    }
    // No ink is white; much black ink is dark, and much cyan has little red.
    const auto inks =
        convert(files::Tiff(3, 8, 4, 5, std::string("\0\0\0\0\0\0\0\xff\xff\0\0\0", 12)));
    const auto* colours = inks.pixels.Row<std::uint8_t>(0);
    for (int c = 0; c < 3; ++c) {
        EXPECT_GE(colours[c], 253);
        EXPECT_LE(colours[3 + c], 60);
    }
    EXPECT_LT(colours[8], colours[7]);
}

// What memory cannot hold is refused by the header, before a row is decoded.
TEST(Read, PixelsBeyondMemoryAreRefused) {
    const files::Folder folder;
    files::Write(folder / "x.png", pictures::Noise(ENPixelFormat::Colour16, 50, 40, 1));
    const auto fault = [&](std::uint64_t max_bytes) {
        imagefile::SReadOptions options;
        options.max_bytes = max_bytes;
        return files::FaultOf([&] { imagefile::ReadHeader(folder / "x.png", options); });
    };
    EXPECT_EQ(fault(50 * 40 * 6), "");
    EXPECT_THAT(fault(50 * 40 * 6 - 1), testing::StartsWith("limit: "));
}

}  // namespace
