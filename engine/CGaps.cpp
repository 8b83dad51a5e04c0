#include "engine/CGaps.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "host/core/RuntimeRandom.h"

namespace {

constexpr int kStrokes = 1000;
constexpr int kClearMargin = 3;  // of grey images

}  // namespace

CGaps::CGaps() {
    params.Add(L"Number of lines", 1, 1000, 50, 0);
    params.Add(L"Length of lines", 1, 100, 10, 0);
    params.Add(L"Transparency", 0, 255, 127, 0);
}

void CGaps::ReadParameters() {
    params.ClampValues();
    lineCount = ValueOf(L"Number of lines");
    lineLength = ValueOf(L"Length of lines");
    transparency = ValueOf(L"Transparency");
}

// A segment between two points of the image.
template <class Traits>
struct CGaps::TSegment {
    CPoint from, to;
    TColour<Traits::kChannels> colour;
    int transparency;

    CStrokeBands::SRows Rows() const { return {std::min(from.y, to.y), std::max(from.y, to.y)}; }

    void Draw(const SCanvas& canvas) const {
        const auto plot = [&](CPoint at) {
            if (!canvas.Holds(at.x, at.y)) return;
            auto* samples = canvas.At<Traits>(at.x, at.y);
            for (std::size_t c = 0; c < colour.size(); ++c) {
                samples[c] = static_cast<typename Traits::Sample>(
                    pixel::BlendToward(samples[c], colour[c], transparency));
            }
        };
        const int adx = std::abs(to.x - from.x);
        const int ady = std::abs(to.y - from.y);
        const int sx = to.x < from.x ? -1 : 1;
        const int sy = to.y < from.y ? -1 : 1;
        const bool steep = adx < ady;
        const int along = steep ? ady : adx;
        const int across = steep ? adx : ady;
        int error = 2 * across - along;
        CPoint at = from;
        plot(at);
        for (int step = 0; step < along; ++step) {
            const bool aside = error > 0;
            error += aside ? 2 * (across - along) : 2 * across;
            if (steep || aside) at.y += sy;
            if (!steep || aside) at.x += sx;
            plot(at);
        }
    }
};

CStrokeTransform::SField CGaps::Field() const {
    return {kStrokes, lineCount, lineCount * (lineLength + 1)};
}

template <class Traits>
void CGaps::ColourAt(CPoint from, int* colour) const {
    std::fill_n(colour, Traits::kColourChannels, 0);
    const bool on_edge = from.x == 0 || from.x == width - 1 || from.y == 0 || from.y == height - 1;
    if (Traits::kColourChannels != 3 || !on_edge) return;
    const auto* samples =
        source->Row<typename Traits::Sample>(from.y) + std::ptrdiff_t{from.x} * Traits::kChannels;
    for (int c = 0; c < 3; ++c) colour[c] = samples[c];
}

template <class Traits>
CGaps::TSegment<Traits> CGaps::SegmentBetween(CPoint from, CPoint to, const int* colour,
                                              int line_transparency) const {
    TSegment<Traits> segment{{Clamp(from.x, left, right - 1), Clamp(from.y, top, bottom - 1)},
                             {Clamp(to.x, left, right - 1), Clamp(to.y, top, bottom - 1)},
                             {},
                             line_transparency};
    std::copy_n(colour, segment.colour.size(), segment.colour.begin());
    return segment;
}

std::unique_ptr<IStrokeParts> CGaps::MakeParts() const {
    // Each stroke draws as many numbers as every other: they are drawn first, in their order.
    const int draws = 3 + lineCount;
    std::vector<int> numbers(static_cast<std::size_t>(kStrokes) * static_cast<std::size_t>(draws));
    CRuntimeRandom& random = CRuntimeRandom::OfThisThread();
    for (int& number : numbers) number = random.Next();

    return AtLayout([&](auto traits) -> std::unique_ptr<IStrokeParts> {
        using Traits = decltype(traits);
        const int margin = Traits::kColourChannels == 3 ? 0 : kClearMargin;
        const int most = Traits::kColourChannels == 3 ? 1 : kClearMargin;
        const auto clamp_x = [&](int value) { return Clamp(value, margin, width - most); };
        const auto clamp_y = [&](int value) { return Clamp(value, margin, height - most); };
        auto segments = std::make_unique<TStrokeParts<TSegment<Traits>>>(
            static_cast<std::size_t>(kStrokes) * static_cast<std::size_t>(lineCount));
        const auto walk = [&](int stroke) {
            const int* number = numbers.data() + std::ptrdiff_t{stroke} * draws;
            auto part = static_cast<std::size_t>(stroke) * static_cast<std::size_t>(lineCount);
            CPoint from;
            from.x = clamp_x(left + *number++ % (right - left));
            from.y = clamp_y(top + *number++ % (bottom - top));
            int direction = *number++ % 6000;  // 6000 make a full turn
            for (int segment = 0; segment < lineCount; ++segment) {
                const double radians = static_cast<double>(direction) * 3.1415926 / 3000.0;
                const CPoint to{clamp_x(static_cast<int>(std::cos(radians) * lineLength) + from.x),
                                clamp_y(static_cast<int>(std::sin(radians) * lineLength) + from.y)};
                int colour[3];
                ColourAt<Traits>(from, colour);
                (*segments)[part++] = SegmentBetween<Traits>(from, to, colour, transparency);
                from = to;
                direction += *number++ % 2000 - 1000;
            }
        };
        ForEachBlock(Workers(), kStrokes, 16, [&](int first, int last) {
            for (int stroke = first; stroke < last; ++stroke) walk(stroke);
        });
        return segments;
    });
}

void CGaps::DrawLineGrey(int x0, int y0, int x1, int y1, int value, int line_transparency) {
    DrawLineColor(x0, y0, x1, y1, 0, 0, value, line_transparency);
}

// Of a grey image's pixels the first of the colours is the grey.
void CGaps::DrawLineColor(int x0, int y0, int x1, int y1, int r, int g, int b,
                          int line_transparency) {
    if (WorkRectangle().IsRectEmpty()) return;
    const int colour[] = {b, g, r};
    VisitPixelFormat(pixelFormat, false, [&](auto traits) {
        SegmentBetween<decltype(traits)>({x0, y0}, {x1, y1}, colour, line_transparency)
            .Draw(DestinationRows(0, DestinationEnd()));
        return true;
    });
}
