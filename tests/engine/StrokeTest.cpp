#include <gtest/gtest.h>

#include "Transforms.h"

namespace {

using pictures::Difference;
using pictures::Sample;
using transforms::Fill;
using transforms::Values;

constexpr int kEmpty[] = {0, 0, 0, 0};

// A canvas that lines are drawn on: a transform that ran over an empty rectangle of it.
template <class Transform>
class TCanvas {
  public:
    explicit TCanvas(const CRowIteratorBands& picture, const int (&borders)[4] = kEmpty) {
        Fill(pen, {}, borders);
        pen.SetStatus(&status_);
        source_ = picture;
        image.Copy(picture, 0).ThrowIfFailed();
        pen.SetImages(&source_, &image);
        pen.Run().ThrowIfFailed();
    }
    Transform pen;
    CRowIteratorBands image;

  private:
    CStatusControl status_;
    CRowIteratorBands source_;
};

// On samples of 25600 a line of colour 0 leaves 100 times the weight.
CRowIteratorBands Even16(int width, int height) {
    return pictures::Make(ENPixelFormat::Grey16, width, height,
                          [](int, int, int) { return 25600; });
}

TEST(SoftLine, WeightsOfASteepLine) {
    // Length 3 * sqrt(10) is 9, side distance 1536 / 9 = 170; the line lies 56 beside its pixels
    // in the middle rows.
    const int none = 256;
    const int expected[6][5] = {{none, none, none, none, none}, {none, 170, 0, 170, none},
                                {none, 226, 56, 114, none},     {none, none, 114, 56, 226},
                                {none, none, 170, 0, 170},      {none, none, none, none, none}};
    TCanvas<CTangentPipes> canvas(Even16(5, 6));
    canvas.pen.DrawAALineGrey(2, 1, 3, 4, 0, 0);
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 5; ++x) {
            EXPECT_EQ(Sample(canvas.image, x, y, 0), 100 * expected[y][x]) << x << ", " << y;
        }
    }
}

TEST(SoftLine, WeightsOfFlatLinesAndPoints) {
    struct {
        int x0, x1, transparency;
        int core, side;                     // weights
    } const cases[] = {{1, 11, 0, 0, 165},  // 5120 / (30 + 1)
                       {11, 1, 0, 0, 165},  // either way round
                       {1, 11, 60, 60, 225},   {1, 11, 200, 200, 255},
                       {1, 11, 300, 255, 255}, {5, 5, 90, 90, 90},  // a point
                       {5, 5, -7, 0, 0}};
    for (const auto& c : cases) {
        TCanvas<CTangentPipes> canvas(Even16(13, 5));
        canvas.pen.DrawAALineGrey(c.x0, 2, c.x1, 2, 0, c.transparency);
        for (int x = 0; x < 13; ++x) {
            const bool on = x >= std::min(c.x0, c.x1) && x <= std::max(c.x0, c.x1);
            EXPECT_EQ(Sample(canvas.image, x, 2, 0), on ? 100 * c.core : 25600) << x;
            EXPECT_EQ(Sample(canvas.image, x, 1, 0), on ? 100 * c.side : 25600) << x;
            EXPECT_EQ(Sample(canvas.image, x, 3, 0), on ? 100 * c.side : 25600) << x;
            EXPECT_EQ(Sample(canvas.image, x, 4, 0), 25600) << x;
        }
    }
}

// Points outside are clamped into the image, which bends the line; flanks outside are left out; the
// four layouts draw the same line into their own samples.
TEST(SoftLine, LayoutsAgreeAndStayInside) {
    const int lines[][4] = {{-5, 3, 20, 3}, {0, 0, 0, 99}, {8, -4, 8, 99}, {-9, -9, -9, -9},
                            {0, 7, 7, 0},   {3, 1, 1, 6},  {8, 8, 0, 1},   {4, 8, 4, 8}};
    for (const bool deep : {false, true}) {
        CRowIteratorBands pictures_of[5];
        for (int n = 1; n <= 4; ++n) {
            TCanvas<CTangentPipes> canvas(pictures::Tight(pictures::Make(
                CNPixelFormat::Of(n, deep), 9, 9, [](int x, int y, int) { return 9 * x + y; })));
            CTangentPipes& pen = canvas.pen;
            for (const auto& [x0, y0, x1, y1] : lines) {
                if (n == 1) pen.DrawAALineGrey(x0, y0, x1, y1, 200, 30);
                if (n == 2) pen.DrawAALineGreyAlpha(x0, y0, x1, y1, 200, 30);
                if (n == 3) pen.DrawAALineRGB(x0, y0, x1, y1, 200, 201, 202, 30);
                if (n == 4) pen.DrawAALineRGBA(x0, y0, x1, y1, 200, 201, 202, 30);
            }
            pictures_of[n] = canvas.image;
        }
        for (int i = 0; i < 81; ++i) {
            const int x = i % 9, y = i / 9, grey = Sample(pictures_of[1], x, y, 0);
            EXPECT_EQ(Sample(pictures_of[2], x, y, 0), grey);
            EXPECT_EQ(Sample(pictures_of[2], x, y, 1), 9 * x + y) << "alpha";
            EXPECT_EQ(Sample(pictures_of[3], x, y, 2), grey) << "red";
            for (int c = 0; c < 3; ++c) {
                EXPECT_EQ(Sample(pictures_of[3], x, y, c), Sample(pictures_of[4], x, y, c));
            }
            EXPECT_EQ(Sample(pictures_of[4], x, y, 3), 9 * x + y) << "alpha";
        }
        EXPECT_NE(Sample(pictures_of[3], 4, 3, 0), Sample(pictures_of[3], 4, 3, 2));
    }
}

// Strand after strand paints its core and a flank of 165/256 over the one before.
TEST(Pipe, ShadesFollowFromStrandToStrand) {
    struct {
        int width, value;
        Values shades;
    } const cases[] = {{1, 100, {75, 112, 84}},
                       {5, 200, {150, 125, 117, 125, 156, 234, 255, 255, 239, 199, 149}},
                       {2, 1, {0, 0, 0, 0, 0}},
                       {0, 90, {90}}};
    for (const auto& c : cases) {
        const auto dark = [](int, int, int) { return 0; };
        TCanvas<CTangentPipes> canvas(pictures::Make(ENPixelFormat::Grey8, 13, 15, dark));
        canvas.pen.DrawPipeGrey(1, 7, 11, 7, c.width, c.value, 0);
        for (int i = -c.width; i <= c.width; ++i) {
            const int shade = c.shades[static_cast<std::size_t>(i + c.width)];
            const int next = i < c.width ? c.shades[static_cast<std::size_t>(i + c.width + 1)] : 0;
            EXPECT_EQ(Sample(canvas.image, 6, 7 + i, 0),
                      i < c.width ? pixel::BlendToward(shade, next, 165) : shade)
                << "width " << c.width << " strand " << i;
        }
    }
}

// On a ramp of columns every gradient points right with the same strength, except in the last
// column, where it is nothing: the strokes are known but for their places, which the generator
// gives.
TEST(Strokes, LieAlongAndAcrossTheGradient) {
    constexpr int kWidth = 40, kHeight = 30;
    for (const ENPixelFormat format : pictures::kAllFormats) {
        const bool deep = CNPixelFormat(format).Is16bit();
        const auto ramp = [&](int x, int, int) { return deep ? 512 * x + 77 : 2 * x; };
        const CRowIteratorBands source = pictures::Make(format, kWidth, kHeight, ramp);
        for (const bool pipes : {false, true}) {
            TCanvas<CTangentPipes> canvas(source);
            CRuntimeRandom random(0);
            const auto draw = [&](int x0, int y0, int x1, int y1, int value) {
                const int n = CNPixelFormat(format).Channels();
                CTangentPipes& pen = canvas.pen;
                if (n == 1 && pipes) pen.DrawPipeGrey(x0, y0, x1, y1, 2, value, 40);
                if (n == 2 && pipes) pen.DrawPipeGreyAlpha(x0, y0, x1, y1, 2, value, 40);
                if (n == 3 && pipes) pen.DrawPipeRGB(x0, y0, x1, y1, 2, value, value, value, 40);
                if (n == 4 && pipes) pen.DrawPipeRGBA(x0, y0, x1, y1, 2, value, value, value, 40);
                if (n == 1 && !pipes) pen.DrawAALineGrey(x0, y0, x1, y1, value, 40);
                if (n == 2 && !pipes) pen.DrawAALineGreyAlpha(x0, y0, x1, y1, value, 40);
                if (n == 3 && !pipes) pen.DrawAALineRGB(x0, y0, x1, y1, value, value, value, 40);
                if (n == 4 && !pipes) pen.DrawAALineRGBA(x0, y0, x1, y1, value, value, value, 40);
            };
            for (int i = 0; i < 640; ++i) {
                const int x = random.Next() % kWidth;
                const int y = random.Next() % kHeight;
                const int reach = x == kWidth - 1 ? 0 : 7;
                if (pipes) draw(x, y + reach, x, y - reach, ramp(x, 0, 0));
                if (!pipes) draw(x + reach, y, x - reach, y, ramp(x, 0, 0));
            }
            const CRowIteratorBands result =
                pipes ? transforms::Apply<CTangentPipes>(source, {2, 7, 2, 40})
                      : transforms::Apply<CCotangentLines>(source, {2, 7, 40});
            EXPECT_EQ(Difference(result, canvas.image), "") << (pipes ? "pipes" : "hairs");
        }
    }
}

// The first stroke alone: the generator's first numbers are 38, 7719 and 21238, so that it starts
// at (38, 19) and walks by cos and sin of 3238 / 3000 pi times 10.
TEST(Gaps, FirstSegmentOfTheFirstStroke) {
    const CPoint expected[] = {{38, 19}, {37, 19}, {36, 19}, {35, 18}, {34, 18},
                               {33, 18}, {32, 18}, {31, 17}, {30, 17}, {29, 17}};
    for (const ENPixelFormat format : pictures::kAllFormats) {
        const int white = CNPixelFormat(format).Is16bit() ? 65535 : 255;
        const auto even = [&](int, int, int) { return white; };
        CRowIteratorBands source = pictures::Make(format, 100, 100, even);
        CRowIteratorBands result;
        CGaps transform;
        Fill(transform, {1, 10, 127});
        pictures::CountingSink sink(2);
        CStatusControl status(&sink);
        transform.SetStatus(&status);
        transform.SetImages(&source, &result);
        EXPECT_EQ(transform.Run().Code(), TolmErrorCode::Cancelled);
        for (const CPoint& p : expected) {
            const int colour_channels = CNPixelFormat(format).ColourChannels();
            for (int c = 0; c < CNPixelFormat(format).Channels(); ++c) {
                const int drawn = (white * 127) >> 8;
                EXPECT_EQ(Sample(result, p.x, p.y, c), c < colour_channels ? drawn : white);
                pictures::SetSample(result, p.x, p.y, c, white);
            }
        }
        EXPECT_EQ(Difference(result, source), "") << "nothing else is drawn";
    }
}

TEST(Gaps, GreyImagesKeepTheirMargin) {
    const CRowIteratorBands source = pictures::Noise(ENPixelFormat::GreyAlpha8, 30, 20, 8);
    const CRowIteratorBands result = transforms::Apply<CGaps>(source, {40, 10, 0});
    int drawn = 0;
    for (int i = 0; i < 600; ++i) {
        const int x = i % 30, y = i / 30;
        const bool margin = x < 3 || x > 27 || y < 3 || y > 17;
        drawn += Sample(result, x, y, 0) == 0;
        EXPECT_TRUE(!margin || Sample(result, x, y, 0) == Sample(source, x, y, 0))
            << x << ", " << y;
        EXPECT_EQ(Sample(result, x, y, 1), Sample(source, x, y, 1)) << "alpha";
    }
    EXPECT_GT(drawn, 300);
}

TEST(Gaps, SegmentsLeaveTheEdgeInItsColour) {
    // One pixel wide, every point lies on the edge: segments take the colour of their start.
    const CRowIteratorBands source = pictures::Noise(ENPixelFormat::Colour8, 1, 9, 3);
    const CRowIteratorBands result = transforms::Apply<CGaps>(source, {3, 1, 0});
    for (int y = 0; y < 9; ++y) {
        bool found = false;
        for (int from = 0; from < 9; ++from) {
            bool equal = true;
            for (int c = 0; c < 3; ++c) {
                equal = equal && Sample(result, 0, y, c) == Sample(source, 0, from, c);
            }
            found = found || equal;
        }
        EXPECT_TRUE(found) << "row " << y << " has the colour of no source pixel";
    }
}

// Segments joint to joint, the shared pixel darkened twice; ends clamped into the rectangle.
TEST(Gaps, DrawsSegmentsOfBothSlopes) {
    const int whole[] = {0, 1000, 0, 1000};
    const auto even = [](int, int, int) { return 200; };
    TCanvas<CGaps> canvas(pictures::Make(ENPixelFormat::Grey8, 5, 6, even), whole);
    canvas.image = pictures::Make(ENPixelFormat::Grey8, 5, 6, even);
    canvas.pen.DrawLineGrey(1, 0, 2, 4, 0, 128);
    canvas.pen.DrawLineGrey(2, 4, 99, 99, 0, 128);
    canvas.pen.DrawLineGrey(0, 0, 0, 0, 100, 0);
    const Values expected = {100, 100, 200, 200, 200, 200, 100, 200, 200, 200,
                             200, 100, 200, 200, 200, 200, 200, 100, 200, 200,
                             200, 200, 50,  100, 200, 200, 200, 200, 200, 100};
    EXPECT_EQ(transforms::Samples(canvas.image), expected);
}

}  // namespace
