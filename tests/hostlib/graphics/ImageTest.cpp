#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "hostlib/graphics/PixelBudget.h"
#include "hostlib/graphics/SelectionBlend.h"
#include "hostlib/graphics/SwapColours.h"
#include "support/Pictures.h"

namespace {

using pictures::Difference;
using pictures::kAllFormats;
using pictures::Noise;
using pictures::Sample;
using pictures::SetSample;

TEST(Image, ColoursAreSwappedInEveryRow) {
    for (const ENPixelFormat code : kAllFormats) {
        const CNPixelFormat format = code;
        const bool is_colour = format.Channels() >= 3;
        for (int width = 1; width < 70; ++width) {
            const CRowIteratorBands row = Noise(format, width, 1, 3);
            CRowIteratorBands beside = Noise(format, width, 1, 4),
                              same = Noise(format, width, 1, 3);
            SwapColours(row.Row<std::uint8_t>(0), beside.Row<std::uint8_t>(0), width, format);
            SwapColours(same.Row<std::uint8_t>(0), same.Row<std::uint8_t>(0), width, format);
            ASSERT_EQ(Difference(beside, same), "") << pictures::Name(format) << " of " << width;
            const auto bytes = static_cast<std::size_t>(width * format.PixelBytes());
            const auto shift = static_cast<std::size_t>(width % 5 * format.SampleBytes());
            std::vector<std::uint8_t> streamed(bytes + 16, 0xA5);
            SwapColours(row.Row<std::uint8_t>(0), streamed.data() + shift, width, format, true);
            ASSERT_EQ(std::memcmp(streamed.data() + shift, same.Row<std::uint8_t>(0), bytes), 0)
                << pictures::Name(format) << " of " << width;
            ASSERT_EQ(streamed[shift + bytes], 0xA5) << "what lies behind";
            for (int i = 0; i < width * format.Channels(); ++i) {
                const int x = i / format.Channels(), c = i % format.Channels();
                ASSERT_EQ(Sample(same, x, 0, c), Sample(row, x, 0, is_colour && c < 3 ? 2 - c : c))
                    << pictures::Name(format) << " of " << width << " at " << x;
            }
        }
    }
}

TEST(Image, SizesThatCannotBeHadAreErrors) {
    CRowIteratorBands image;
    EXPECT_EQ(image.Create(0, 5, ENPixelFormat::Grey8).Code(), TolmErrorCode::UnusableInput);
    EXPECT_EQ(image.Create(5, 5, ENPixelFormat::None).Code(), TolmErrorCode::UnusableInput);
    EXPECT_EQ(image.Create(2147483647, 2147483647, ENPixelFormat::ColourAlpha16).Code(),
              TolmErrorCode::NotCreated);
    EXPECT_FALSE(image.IsAttached());
}

// source + (effect - source) * weight / 255 to the nearest, worked out by hand.
TEST(Image, ASelectionMixesToTheNearest) {
    const struct {
        int source, effect, weight, mixed;
        ENPixelFormat format;
    } kCases[] = {
        {10, 20, 128, 15, ENPixelFormat::Grey8},            // 15.0196
        {10, 20, 140, 15, ENPixelFormat::Grey8},            // 15.4902
        {10, 20, 141, 16, ENPixelFormat::Grey8},            // 15.5294
        {200, 0, 1, 199, ENPixelFormat::Colour8},           // 199.216
        {0, 255, 77, 77, ENPixelFormat::ColourAlpha8},      // 77
        {77, 200, 0, 77, ENPixelFormat::GreyAlpha8},        // the source
        {77, 200, 255, 200, ENPixelFormat::GreyAlpha8},     // the effect
        {65535, 0, 128, 32639, ENPixelFormat::Colour16},    // 32639
        {1, 65535, 254, 65278, ENPixelFormat::Grey16},      // 65278.004
        {40000, 40001, 127, 40000, ENPixelFormat::Grey16},  // 40000.498
        {40000, 40001, 128, 40001, ENPixelFormat::Grey16},  // 40000.502
    };
    for (const auto& c : kCases) {
        const CNPixelFormat format = c.format;
        CRowIteratorBands source, effect;
        CRowIterator mask;
        ASSERT_FALSE(source.Create(1, 1, format).Failed());
        ASSERT_FALSE(effect.Create(1, 1, format).Failed());
        ASSERT_FALSE(mask.Create(1, 1, ENPixelFormat::Grey8).Failed());
        *mask.Row<std::uint8_t>(0) = static_cast<std::uint8_t>(c.weight);
        for (int channel = 0; channel < format.Channels(); ++channel) {
            SetSample(source, 0, 0, channel, c.source);
            SetSample(effect, 0, 0, channel, c.effect);
        }
        ASSERT_FALSE(BlendBySelection(source, mask, effect).Failed());
        for (int channel = 0; channel < format.Channels(); ++channel) {
            EXPECT_EQ(Sample(effect, 0, 0, channel), c.mixed) << c.source << ' ' << c.weight;
        }
    }
}

TEST(Image, CopyReusesOnlyMemoryThatNobodyElseHolds) {
    const CRowIteratorBands source = Noise(ENPixelFormat::Colour8, 9, 5, 1);
    CRowIteratorBands destination = Noise(ENPixelFormat::Colour8, 9, 5, 2);
    const std::uint8_t* memory = destination.Row<std::uint8_t>(0);
    ASSERT_FALSE(destination.Copy(source, 0).Failed());
    EXPECT_EQ(destination.Row<std::uint8_t>(0), memory);

    CRowIteratorBands held = destination;
    const CRowIteratorBands other = Noise(ENPixelFormat::Colour8, 9, 5, 3);
    ASSERT_FALSE(destination.Copy(other, 0).Failed());
    EXPECT_EQ(Difference(held, source), "") << "the other handle keeps its pixels";
    EXPECT_EQ(Difference(destination, other), "");
    EXPECT_EQ(destination.Copy(CRowIteratorBands(), 0).Code(), TolmErrorCode::UnusableInput);
}

// Every access of every format shows exactly the samples it names, and writes nothing else.
TEST(Image, ChannelAccessGathersAndScatters) {
    struct {
        ENChannel channel;
        bool colour, alpha;
    } const accesses[] = {{ENChannel::All, true, true},
                          {ENChannel::Colour, true, false},
                          {ENChannel::Grey, true, false},
                          {ENChannel::Alpha, false, true}};
    for (const ENPixelFormat code : kAllFormats) {
        for (const auto& access : accesses) {
            const CRowIteratorBands before = Noise(code, 7, 4, 5);
            CRowIteratorBands image;
            image.Copy(before, 0).ThrowIfFailed();
            const CNPixelFormat format = code;
            const CErrorAutoThrow set = image.SetChannelAccess(access.channel, 0);
            if (access.channel == ENChannel::Alpha && !format.IsAlphaChannelPresent()) {
                EXPECT_TRUE(set.Failed());
                continue;
            }
            ASSERT_FALSE(set.Failed());
            for (int y = 0; y < 4; ++y) {
                std::uint8_t* row = nullptr;
                image.GetRow(row, y).ThrowIfFailed();
                for (int i = 0; i < 7 * image.GetAccessFormat().PixelBytes(); ++i) {
                    row[i] = static_cast<std::uint8_t>(~row[i]);
                }
                image.ReleaseRow(y);
            }
            for (int c = 0; c < format.Channels(); ++c) {
                const bool is_alpha = format.IsAlphaChannelPresent() && c == format.Channels() - 1;
                const bool written = is_alpha ? access.alpha : access.colour;
                const int all = format.Is16bit() ? 65535 : 255;
                EXPECT_EQ(Sample(image, 3, 2, c),
                          written ? all - Sample(before, 3, 2, c) : Sample(before, 3, 2, c))
                    << pictures::Name(format) << " channel " << c;
            }
        }
    }
}

TEST(Image, RowsOutsideAreErrors) {
    const CRowIteratorBands image = Noise(ENPixelFormat::Grey8, 3, 2, 1);
    const std::uint8_t* row = nullptr;
    EXPECT_EQ(image.GetRow(row, -1).Code(), TolmErrorCode::UnusableInput);
    EXPECT_EQ(image.GetRow(row, 2).Code(), TolmErrorCode::UnusableInput);
    EXPECT_EQ(row, nullptr);
}

TEST(Image, ConsumeMovesThePixels) {
    CRowIteratorBands source = Noise(ENPixelFormat::Grey16, 3, 2, 1);
    source.SetOrigin({4, -2});
    CRowIteratorBands taken;
    taken.Consume(source);
    EXPECT_FALSE(source.IsAttached());
    EXPECT_EQ(taken.GetRect(), (CRect{4, -2, 7, 0}));
}

// Whether the row lies in memory of a file that was made in the folder and has no name any more.
bool LiesInScratch(const CRowIteratorBands& image, const std::filesystem::path& folder) {
    const auto at = reinterpret_cast<std::uintptr_t>(image.Row<std::uint8_t>(0));
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t first = 0, last = 0;
        if (std::sscanf(line.c_str(), "%lx-%lx", &first, &last) != 2) continue;
        if (at < first || at >= last) continue;
        return line.find(folder.string() + "/") != std::string::npos && line.ends_with("(deleted)");
    }
    return false;
}

TEST(PixelBudget, WhatMemoryMayNotHoldLiesInFilesWithoutNames) {
    const std::filesystem::path folder =
        std::filesystem::path(::testing::TempDir()) / ("scratch-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    constexpr int kSide = 1024;  // of 3 MB, of which the budget holds one
    SetPixelBudget({4 << 20, folder});
    CRowIteratorBands kept = Noise(ENPixelFormat::Colour8, kSide, kSide, 1);
    const CRowIteratorBands moved = Noise(ENPixelFormat::Colour8, kSide, kSide, 1);
    EXPECT_FALSE(LiesInScratch(kept, folder));
    EXPECT_TRUE(LiesInScratch(moved, folder));
    EXPECT_TRUE(std::filesystem::is_empty(folder));
    EXPECT_EQ(Difference(kept, moved), "");
    CRowIteratorBands small = Noise(ENPixelFormat::Grey8, 9, 9, 1);
    EXPECT_FALSE(LiesInScratch(small, folder)) << "a small image is not worth a file";
    kept.Destroy();
    EXPECT_FALSE(LiesInScratch(Noise(ENPixelFormat::Colour8, kSide, kSide, 1), folder))
        << "what is gone makes room";

    // A disk that is full is met when the image is made.
    rlimit unlimited{};
    getrlimit(RLIMIT_FSIZE, &unlimited);
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{1 << 20, unlimited.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    SetPixelBudget({0, folder});
    CRowIteratorBands none;
    const CErrorAutoThrow full = none.Create(kSide, kSide, ENPixelFormat::Colour8);
    setrlimit(RLIMIT_FSIZE, &unlimited);
    signal(SIGXFSZ, handler);
    EXPECT_EQ(full.Code(), TolmErrorCode::ScratchFailed) << full.Text();
    EXPECT_FALSE(none.IsAttached());
    SetPixelBudget({0, folder / "absent"});
    EXPECT_EQ(none.Create(kSide, kSide, ENPixelFormat::Colour8).Code(),
              TolmErrorCode::ScratchFailed);
    SetPixelBudget({});
    std::filesystem::remove(folder);
}

TEST(PixelBudget, MemoryThatIsKeptForTheNextImageIsNobodyElses) {
    SetPixelBudget({.spare = std::uint64_t{1} << 30});
    std::vector<CRowIteratorBands> images;
    for (int i = 0; i < 16; ++i) {
        // 1.4 to 2.8 MB, some of them within an eighth of another; the fourth last goes.
        images.push_back(Noise(ENPixelFormat::Colour8, 1200, 400 + i * 37 % 400, i));
        if (images.size() > 3) images.erase(images.begin());
        for (std::size_t k = 0; k < images.size(); ++k) {
            const int seed = i + 1 - static_cast<int>(images.size() - k);
            const int height = 400 + seed * 37 % 400;
            ASSERT_EQ(Difference(images[k], Noise(ENPixelFormat::Colour8, 1200, height, seed)), "");
        }
    }
    const auto of_twenty_megabytes = [] {
        return Noise(ENPixelFormat::ColourAlpha16, 1250, 2000, 1);
    };
    const auto at = of_twenty_megabytes().Row<std::uint8_t>(0);
    EXPECT_EQ(of_twenty_megabytes().Row<std::uint8_t>(0), at) << "large memory is kept, too";
    SetPixelBudget({});
}

TEST(Random, FollowsTheKnownSequence) {
    CRuntimeRandom random(0);
    const int first[] = {38, 7719, 21238, 2437, 8855, 11797, 8365, 32285};
    for (const int expected : first) EXPECT_EQ(random.Next(), expected);
    random.Seed(1);
    EXPECT_EQ(random.Next(), 41);
}

}  // namespace
