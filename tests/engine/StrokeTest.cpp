#include <gtest/gtest.h>

#include <cmath>

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

// What the rules of the strokes come to, worked out in closed form on plain numbers: the answer
// that the transforms' pictures must equal.
struct SDrawing {
    explicit SDrawing(const CRowIteratorBands& picture)
        : format(picture.GetPixelFormat()),
          width(picture.GetWidth()),
          height(picture.GetHeight()),
          samples(transforms::Samples(picture)) {}
    CRowIteratorBands Picture() const { return transforms::Picture(format, width, samples); }
    int& At(CPoint p, int c) {
        return samples[static_cast<std::size_t>((p.y * width + p.x) * format.Channels() + c)];
    }
    Values ColourOf(CPoint p) {
        Values colour;
        for (int c = 0; c < format.ColourChannels(); ++c) colour.push_back(At(p, c));
        return colour;
    }
    void Blend(CPoint p, const Values& colour, int weight) {
        if (p.x < 0 || p.x >= width || p.y < 0 || p.y >= height) return;
        for (int c = 0; c < format.ColourChannels(); ++c) {
            const int towards = colour[static_cast<std::size_t>(c)];
            At(p, c) = (((At(p, c) - towards) * weight) >> 8) + towards;
        }
    }
    // Every pixel on the way from a to b: its place, the direction across, and how far the way is
    // off it, in 1/(2 * longer side). On ties the way goes aside at once, or not yet.
    template <class Visit>
    static void Walk(CPoint a, CPoint b, bool aside_on_ties, Visit&& visit) {
        const int adx = std::abs(b.x - a.x), ady = std::abs(b.y - a.y);
        const int sx = b.x < a.x ? -1 : 1, sy = b.y < a.y ? -1 : 1;
        const int longer = std::max(adx, ady), shorter = std::min(adx, ady);
        for (int i = 0; i <= longer; ++i) {
            const int tie = aside_on_ties ? 0 : 1;
            const int aside = longer ? (2 * shorter * i + longer - tie) / (2 * longer) : 0;
            const int off = 2 * (shorter * i - longer * aside);
            if (adx < ady) visit(CPoint{a.x + sx * aside, a.y + sy * i}, CPoint{sx, 0}, off);
            if (adx >= ady) visit(CPoint{a.x + sx * i, a.y + sy * aside}, CPoint{0, sy}, off);
        }
    }
    static CPoint Within(CPoint p, const CRect& r) {
        return {std::min(std::max(p.x, r.left), r.right), std::min(std::max(p.y, r.top), r.bottom)};
    }
    void SoftLine(CPoint from, CPoint to, const Values& colour, int transparency) {
        const CPoint a = Within(from, {0, 0, width - 1, height - 1});
        const CPoint b = Within(to, {0, 0, width - 1, height - 1});
        const int dx = std::abs(b.x - a.x), dy = std::abs(b.y - a.y);
        const int length3 = static_cast<int>(std::sqrt(dx * dx + dy * dy) * 3);
        const int side = dx < dy ? dy * 512 / length3 : dx * 512 / (length3 + 1);
        const auto weight = [&](int distance) {
            return std::clamp(std::min(std::abs(distance), 256) + transparency, 0, 255);
        };
        Walk(a, b, true, [&](CPoint p, CPoint across, int off) {
            const int d = off * 256 / std::max(length3, 1);
            Blend({p.x - across.x, p.y - across.y}, colour, weight(d + side));
            Blend(p, colour, weight(d));
            Blend({p.x + across.x, p.y + across.y}, colour, weight(side - d));
        });
    }
    void Pipe(CPoint a, CPoint b, int strands, Values shade, int transparency) {
        const double ax = b.x - a.x, ay = b.y - a.y;
        const double length = ax == 0 && ay == 0 ? 1 : std::sqrt(ay * ay + ax * ax);
        const int white = format.Is16bit() ? 65535 : 255;
        for (int i = -strands; i <= strands; ++i) {
            for (int& s : shade) {
                s = std::clamp(3 * (strands * s) / 2 / (std::abs(i) + strands), 0, white);
            }
            const auto aside = [&](CPoint p) {
                return CPoint{static_cast<int>(p.x - i * (ay / length)),
                              static_cast<int>(p.y + i * (ax / length))};
            };
            SoftLine(aside(a), aside(b), shade, transparency);
        }
    }
    // The strokes of a field: hairs of half a length, or pipes with strands on either side. They
    // keep off the last column and row.
    void Field(int count, int half, int strands, int transparency) {
        SDrawing source = *this;
        CRuntimeRandom random(0);
        const auto brightness = [&](CPoint p) {
            int sum = 0;
            for (const int s : source.ColourOf(p)) sum += format.ColourChannels() == 1 ? 3 * s : s;
            return format.Is16bit() ? sum >> 8 : sum;
        };
        for (int stroke = 0; stroke < count; ++stroke) {
            const int x = random.Next() % (width - 1), y = random.Next() % (height - 1);
            const int gx = brightness({x + 1, y}) - brightness({x, y});
            const int gy = brightness({x, y + 1}) - brightness({x, y});
            const double steepness = gx || gy ? std::sqrt(gx * gx + gy * gy) : 1;
            const Values colour = source.ColourOf({x, y});
            const int along = static_cast<int>(half * gx / steepness);
            const int down = static_cast<int>(half * gy / steepness);
            if (strands == 0) {
                SoftLine({x + along, y + down}, {x - along, y - down}, colour, transparency);
            } else {
                Pipe({x - down, y + along}, {x + down, y - along}, strands, colour, transparency);
            }
        }
    }
    // A thousand walks in black; in colour they may reach the edge, whose colour they leave it in.
    void Furrows(int segments, int length, int transparency) {
        SDrawing source = *this;
        CRuntimeRandom random(0);
        const bool grey = format.ColourChannels() == 1;
        const CRect edge{0, 0, width - 1, height - 1};
        const CRect limits = grey ? CRect{3, 3, width - 3, height - 3} : edge;
        for (int stroke = 0; stroke < 1000; ++stroke) {
            const int x = random.Next() % width, y = random.Next() % height;
            CPoint from = Within({x, y}, limits);
            int turned = random.Next() % 6000;
            for (int segment = 0; segment < segments; ++segment) {
                const double angle = turned * 3.1415926 / 3000;
                const CPoint to = Within({static_cast<int>(std::cos(angle) * length) + from.x,
                                          static_cast<int>(std::sin(angle) * length) + from.y},
                                         limits);
                const bool at_edge =
                    from.x == 0 || from.x == width - 1 || from.y == 0 || from.y == height - 1;
                const Values colour = at_edge && !grey ? source.ColourOf(from) : Values(3, 0);
                Walk(Within(from, edge), Within(to, edge), false,
                     [&](CPoint p, CPoint, int) { Blend(p, colour, transparency); });
                from = to;
                turned += random.Next() % 2000 - 1000;
            }
        }
    }

    CNPixelFormat format;
    int width, height;
    Values samples;
};

CRowIteratorBands Small(CNPixelFormat format) {
    return pictures::Tight(pictures::Noise(format, 16, 12, 7));
}

// Lines of every slope and direction between points inside and outside, which are clamped into the
// image; flanks outside are left out, and so is alpha.
TEST(SoftLine, OfEverySlope) {
    const CPoint points[] = {{-3, 5}, {0, 0},  {15, 11}, {7, 5}, {8, 7}, {2, 11},
                             {12, 1}, {40, 6}, {7, -9},  {3, 4}, {14, 9}};
    for (const ENPixelFormat format : pictures::kAllFormats) {
        for (const int transparency : {0, 90, 255, 300, -7}) {
            TCanvas<CTangentPipes> canvas(Small(format));
            CTangentPipes& pen = canvas.pen;
            SDrawing expected(Small(format));
            for (const CPoint& a : points) {
                for (const CPoint& b : points) {
                    const int n = CNPixelFormat(format).Channels(), t = transparency;
                    if (n == 1) pen.DrawAALineGrey(a.x, a.y, b.x, b.y, 200, t);
                    if (n == 2) pen.DrawAALineGreyAlpha(a.x, a.y, b.x, b.y, 200, t);
                    if (n == 3) pen.DrawAALineRGB(a.x, a.y, b.x, b.y, 30, 90, 200, t);
                    if (n == 4) pen.DrawAALineRGBA(a.x, a.y, b.x, b.y, 30, 90, 200, t);
                    expected.SoftLine(a, b, {200, 90, 30}, t);
                    ASSERT_EQ(Difference(canvas.image, expected.Picture()), "")
                        << a.x << ", " << a.y << " to " << b.x << ", " << b.y << " " << t;
                }
            }
        }
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

// The whole field on a small picture: places, directions, colours and the order of strokes.
TEST(Strokes, LieAlongAndAcrossTheGradient) {
    const int inside[] = {1, 999, 1, 999};
    for (const ENPixelFormat format : pictures::kAllFormats) {
        SDrawing hairs(Small(format)), pipes(Small(format));
        hairs.Field(640, 7, 0, 40);
        pipes.Field(320, 4, 2, 40);
        EXPECT_EQ(Difference(transforms::Apply<CCotangentLines>(Small(format), {2, 7, 40}, inside),
                             hairs.Picture()),
                  "");
        EXPECT_EQ(Difference(transforms::Apply<CTangentPipes>(Small(format), {1, 4, 2, 40}, inside),
                             pipes.Picture()),
                  "");
    }
}

TEST(Gaps, WalkFromTurnToTurn) {
    for (const ENPixelFormat format : pictures::kAllFormats) {
        for (const int segments : {1, 2, 5}) {
            SDrawing expected(Small(format));
            expected.Furrows(segments, 4, 250);
            EXPECT_EQ(Difference(transforms::Apply<CGaps>(Small(format), {segments, 4, 250}),
                                 expected.Picture()),
                      "")
                << segments << " segments";
        }
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
