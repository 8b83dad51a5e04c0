#include <atomic>
#include <cmath>
#include <thread>

#include "Files.h"

namespace {

using files::Folder;
using imagefile::ReadImage;
using imagefile::WriteImage;
using pictures::Difference;
using pictures::kAllFormats;
using pictures::Noise;
using testing::HasSubstr;

// Noise has alpha 0 here and there, under which the colour is kept too.
TEST(RoundTrip, LosslessKindsKeepEverySample) {
    for (const char* extension : {".png", ".tif", ".TIFF"}) {
        for (const ENPixelFormat format : kAllFormats) {
            for (const CSize size : {CSize{1, 1}, CSize{7, 1}, CSize{1, 33}, CSize{65, 71}}) {
                const Folder folder;
                const auto file = folder / (std::string("x") + extension);
                const CRowIteratorBands before = Noise(format, size.cx, size.cy, 5);
                EXPECT_TRUE(WriteImage(file, pictures::Tight(before), nullptr, {}).empty());
                const imagefile::SImageFile after = ReadImage(file);
                EXPECT_EQ(Difference(before, after.pixels), "")
                    << extension << " " << size.cx << " x " << size.cy;
                EXPECT_TRUE(after.warnings.empty());
                EXPECT_EQ(folder.Names().size(), 1U);
            }
        }
    }
}

// What JPEG and WebP make of each format, sample by sample: 16 bits become 8 by rounding, alpha
// goes by laying over white, grey becomes colour.
TEST(RoundTrip, LossyKindsSayWhatTheyDo) {
    for (const ENPixelFormat code : kAllFormats) {
        const CNPixelFormat format = code;
        const CRowIteratorBands before = pictures::Make(code, 48, 40, [&](int x, int y, int c) {
            const int value = x + 2 * y + 20 * c;
            return format.Is16bit() ? value * 257 + (37 * x + 11 * y) % 257 : value;
        });
        for (const bool is_jpeg : {true, false}) {
            const bool keeps_alpha = format.IsAlphaChannelPresent() && !is_jpeg;
            const int colours = is_jpeg ? format.ColourChannels() : 3;
            const Folder folder;
            const auto file = folder / (is_jpeg ? "x.jpeg" : "x.webp");
            const auto warnings = WriteImage(file, before, nullptr, {});
            const CRowIteratorBands expected = pictures::Make(
                CNPixelFormat::Of(colours + (keeps_alpha ? 1 : 0), false), 48, 40,
                [&](int x, int y, int c) {
                    const double full = format.Is16bit() ? 65535 : 255;
                    const int alpha_at = format.Channels() - 1;
                    const int at = keeps_alpha && c == colours    ? alpha_at
                                   : format.ColourChannels() == 1 ? 0
                                                                  : c;
                    double value = pictures::Sample(before, x, y, at) / full;
                    if (is_jpeg && format.IsAlphaChannelPresent()) {
                        const double a = pictures::Sample(before, x, y, alpha_at) / full;
                        value = value * a + 1 - a;
                    }
                    return static_cast<int>(std::lround(value * 255));
                });
            EXPECT_EQ(Difference(expected, ReadImage(file).pixels, is_jpeg ? 5 : 0), "")
                << pictures::Name(code) << " " << file;
            const auto warned = [&](const char* of) {
                return std::any_of(warnings.begin(), warnings.end(), [&](const std::string& w) {
                    return w.find(of) != std::string::npos;
                });
            };
            EXPECT_EQ(warned("16 bits"), format.Is16bit());
            EXPECT_EQ(warned("transparency"), is_jpeg && format.IsAlphaChannelPresent());
            EXPECT_EQ(warned("grey"), !is_jpeg && format.ColourChannels() == 1);
        }
    }
}

TEST(RoundTrip, WebpKeepsTheColourOfTransparentPixels) {
    const Folder folder;
    const CRowIteratorBands before = Noise(ENPixelFormat::ColourAlpha8, 50, 40, 3);
    EXPECT_TRUE(WriteImage(folder / "x.webp", before, nullptr, {}).empty());
    EXPECT_EQ(Difference(before, ReadImage(folder / "x.webp").pixels), "");
}

// Every orientation is undone on reading, and what is written is upright.
TEST(RoundTrip, OrientationIsApplied) {
    const CRowIteratorBands picture = Noise(ENPixelFormat::ColourAlpha16, 70, 41, 8);
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const Folder folder;
        files::Write(folder / "stored.tif", picture);
        VipsImage* stored = vips_image_new_from_file((folder / "stored.tif").c_str(), nullptr);
        const imagefile::TVips<VipsImage> owner(stored);
        vips_image_set_int(stored, VIPS_META_ORIENTATION, orientation);
        ASSERT_EQ(vips_tiffsave(stored, (folder / "turned.tif").c_str(), nullptr), 0);
        VipsImage* upright = nullptr;
        ASSERT_EQ(vips_autorot(stored, &upright, nullptr), 0);
        const imagefile::TVips<VipsImage> upright_owner(upright);
        ASSERT_EQ(vips_tiffsave(upright, (folder / "upright.tif").c_str(), nullptr), 0);

        const imagefile::SImageFile turned = ReadImage(folder / "turned.tif");
        EXPECT_EQ(Difference(turned.pixels, ReadImage(folder / "upright.tif").pixels), "")
            << orientation;
        for (const char* name : {"a.tif", "a.png", "a.webp", "a.jpg"}) {
            WriteImage(folder / name, turned.pixels, turned.metadata, {});
            EXPECT_EQ(ReadImage(folder / name).pixels.GetWidth(), turned.pixels.GetWidth())
                << name << " " << orientation;
        }
    }
}

// What one thread meets never shows in another's result.
TEST(RoundTrip, ThreadsWorkSideBySide) {
    const Folder folder;
    files::Write(folder / "cut.png", Noise(ENPixelFormat::Colour8, 90, 80, 1));
    files::SetContent(folder / "cut.png", files::Content(folder / "cut.png").substr(0, 9000));
    std::atomic<int> good = 0, refused = 0;
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 6; ++t) {
        threads.emplace_back([&, t] {
            const CRowIteratorBands picture = Noise(kAllFormats[t], 90, 80, t);
            for (int i = 0; i < 10; ++i) {
                if (t % 2 == 0) {
                    refused += files::ReadFault(folder / "cut.png").starts_with("unreadable: ");
                    continue;
                }
                const auto file = folder / (std::to_string(t) + (i % 2 ? ".png" : ".tif"));
                files::Write(file, picture, {true, {}});
                good += Difference(picture, ReadImage(file).pixels).empty();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(good, 30);
    EXPECT_EQ(refused, 30);
}

// Asks to stop as soon as the work has come so far.
class StoppingSink : public IProgressSink {
  public:
    explicit StoppingSink(double at) : at_(at) {}
    bool OnProgress(double fraction) override { return fraction >= at_; }

  private:
    double at_;
};

// The last call tells that all is done; a stop leaves no file, even one at the very end.
TEST(RoundTrip, ReportsProgressAndStops) {
    for (const char* name : {"x.png", "x.jpg", "x.tif", "x.webp"}) {
        const Folder folder;
        const CRowIteratorBands picture = Noise(ENPixelFormat::Colour8, 300, 400, 1);
        pictures::CountingSink writing, reading;
        CStatusControl writing_status(&writing), reading_status(&reading);
        WriteImage(folder / name, picture, nullptr, {}, &writing_status);
        ReadImage(folder / name, {}, &reading_status);
        for (const pictures::CountingSink* sink : {&writing, &reading}) {
            EXPECT_EQ(sink->Last(), 1.0) << name;
            EXPECT_FALSE(sink->EverFell()) << name;
        }
        EXPECT_GE(reading.Calls(), 2) << name << "; how often an encoder tells is its own affair";
        for (const double at : {0.0, 0.01, 1.0}) {
            const Folder empty;
            StoppingSink sink(at);
            CStatusControl status(&sink), again(&sink);
            EXPECT_THAT(
                files::FaultOf([&] { WriteImage(empty / name, picture, nullptr, {}, &status); }),
                HasSubstr("cancelled"));
            EXPECT_TRUE(empty.Names().empty()) << name << " stopped at " << at;
            EXPECT_THAT(files::FaultOf([&] { ReadImage(folder / name, {}, &again); }),
                        HasSubstr("cancelled"));
        }
    }
}

}  // namespace
