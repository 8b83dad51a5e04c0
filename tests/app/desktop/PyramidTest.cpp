#include <QImage>
#include <QRect>
#include <atomic>

#include "app/desktop/CPyramid.h"
#include "support/Pictures.h"

namespace {

// The mean of the up to four pixels below one of the next level, weighted by alpha.
int PlainMean(const CRowIteratorBands& from, int x, int y, int channel) {
    const CNPixelFormat format = from.GetPixelFormat();
    const int alpha = format.IsAlphaChannelPresent() ? format.ColourChannels() : -1;
    double sum = 0, weights = 0, plain = 0;
    for (const int at_y : {2 * y, std::min(2 * y + 1, from.GetHeight() - 1)}) {
        for (const int at_x : {2 * x, std::min(2 * x + 1, from.GetWidth() - 1)}) {
            const int sample = pictures::Sample(from, at_x, at_y, channel);
            const bool weighted = alpha >= 0 && channel != alpha;
            const double weight = weighted ? pictures::Sample(from, at_x, at_y, alpha) : 1;
            sum += weight * sample;
            weights += weight;
            plain += sample;
        }
    }
    return static_cast<int>(weights > 0 ? sum / weights + 0.5 : plain / 4 + 0.5);
}

TEST(Pyramid, LevelsAreMeansOfFourInEveryFormat) {
    for (const ENPixelFormat format : pictures::kAllFormats) {
        const int top = CNPixelFormat(format).Is16bit() ? 65536 : 256;
        const auto picture = pictures::Make(format, 131, 77, [&](int x, int y, int c) {
            const bool hole = c == CNPixelFormat(format).ColourChannels() && x % 8 < 4 && y % 8 < 4;
            return hole ? 0 : (x * 7919 + y * 104729 + c * 31) % top;
        });
        const auto made = CPyramid::Make(picture, 0, {131, 77});
        ASSERT_TRUE(made);
        EXPECT_EQ(made->Last(), 2);
        for (int level = 1; level <= made->Last(); ++level) {
            const CRowIteratorBands& to = made->Level(level);
            ASSERT_EQ(to.GetWidth(), (made->Level(level - 1).GetWidth() + 1) / 2);
            for (int y = 0; y < to.GetHeight(); ++y) {
                for (int x = 0; x < to.GetWidth(); ++x) {
                    for (int c = 0; c < CNPixelFormat(format).Channels(); ++c) {
                        ASSERT_EQ(pictures::Sample(to, x, y, c),
                                  PlainMean(made->Level(level - 1), x, y, c))
                            << pictures::Name(format) << " level " << level << " at " << x << ","
                            << y << " channel " << c;
                    }
                }
            }
        }
    }
}

TEST(Pyramid, ShowsHighBytesInTheRightOrder) {
    const auto picture =
        pictures::Make(ENPixelFormat::ColourAlpha16, 3, 2,
                       [](int x, int y, int c) { return (10 * x + y + 60 * c + 1) * 256 + 255; });
    const QImage shown = CPyramid::Make(picture, 0, {3, 2})->Image(0, QRect(1, 1, 2, 1));
    EXPECT_EQ(shown.pixel(1, 0), qRgba(22 + 120, 22 + 60, 22, 22 + 180));
}

TEST(Pyramid, StopsHalfWay) {
    const auto picture =
        pictures::Make(ENPixelFormat::Grey8, 400, 400, [](int, int, int) { return 1; });
    std::atomic<int> asked = 0;
    EXPECT_FALSE(CPyramid::Make(picture, 0, {400, 400}, [&] { return ++asked == 3; }));
}

}  // namespace
