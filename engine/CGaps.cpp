#include "engine/CGaps.h"

#include <cmath>
#include <cstdlib>

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

template <class Draw>
CErrorAutoThrow CGaps::WalkStrokes(const CRect& limits, Draw&& draw) {
    if (WorkRectangle().IsRectEmpty()) return {};
    CRuntimeRandom& random = CRuntimeRandom::OfThisThread();
    const auto clamp_x = [&](int value) { return Clamp(value, limits.left, limits.right); };
    const auto clamp_y = [&](int value) { return Clamp(value, limits.top, limits.bottom); };
    status->SetProgressRange(kStrokes);
    for (int stroke = 0; stroke < kStrokes; ++stroke) {
        if (StepCancelled()) return TolmErrorCode::Cancelled;
        CPoint from;
        from.x = clamp_x(left + random.Next() % (right - left));
        from.y = clamp_y(top + random.Next() % (bottom - top));
        int direction = random.Next() % 6000;  // 6000 make a full turn
        for (int segment = 0; segment < lineCount; ++segment) {
            const double radians = static_cast<double>(direction) * 3.1415926 / 3000.0;
            const CPoint to{clamp_x(static_cast<int>(std::cos(radians) * lineLength) + from.x),
                            clamp_y(static_cast<int>(std::sin(radians) * lineLength) + from.y)};
            draw(from, to);
            from = to;
            direction += random.Next() % 2000 - 1000;
        }
    }
    return {};
}

CErrorAutoThrow CGaps::DrawGreyStrokes() {
    const CRect limits{kClearMargin, kClearMargin, width - kClearMargin, height - kClearMargin};
    return WalkStrokes(limits, [this](CPoint from, CPoint to) {
        DrawLineGrey(from.x, from.y, to.x, to.y, 0, transparency);
    });
}

CErrorAutoThrow CGaps::DrawColourStrokes() {
    return WalkStrokes({0, 0, width - 1, height - 1}, [this](CPoint from, CPoint to) {
        int colour[3] = {0, 0, 0};
        if (from.x == 0 || from.x == width - 1 || from.y == 0 || from.y == height - 1) {
            const std::ptrdiff_t at = std::ptrdiff_t{from.x} * pixelFormat.Channels();
            AtDepth<3>([&](auto traits) {
                const auto* samples = source->Row<typename decltype(traits)::Sample>(from.y) + at;
                for (int c = 0; c < 3; ++c) colour[c] = samples[c];
            });
        }
        DrawLineColor(from.x, from.y, to.x, to.y, colour[2], colour[1], colour[0], transparency);
    });
}

void CGaps::DrawLineGrey(int x0, int y0, int x1, int y1, int value, int line_transparency) {
    AtDepth<1>([&](auto traits) {
        DrawSegment<typename decltype(traits)::Sample, 1>({x0, y0}, {x1, y1}, {value},
                                                          line_transparency);
    });
}

void CGaps::DrawLineColor(int x0, int y0, int x1, int y1, int r, int g, int b,
                          int line_transparency) {
    AtDepth<3>([&](auto traits) {
        DrawSegment<typename decltype(traits)::Sample, 3>({x0, y0}, {x1, y1}, {b, g, r},
                                                          line_transparency);
    });
}

template <class Sample, int kColourChannels>
void CGaps::DrawSegment(CPoint from, CPoint to, const int (&colour)[kColourChannels],
                        int line_transparency) {
    if (WorkRectangle().IsRectEmpty()) return;
    const int channels = pixelFormat.Channels();
    const int columns = ColumnsInDestination(right);
    const auto plot = [&](int column, int row) {
        if (column >= columns || !DestinationHasRow(row)) return;
        Sample* samples = destination->Row<Sample>(row) + std::ptrdiff_t{column} * channels;
        for (int c = 0; c < kColourChannels; ++c) {
            samples[c] =
                static_cast<Sample>(pixel::BlendToward(samples[c], colour[c], line_transparency));
        }
    };
    CPoint at{Clamp(from.x, left, right - 1), Clamp(from.y, top, bottom - 1)};
    const CPoint end{Clamp(to.x, left, right - 1), Clamp(to.y, top, bottom - 1)};
    const int adx = std::abs(end.x - at.x);
    const int ady = std::abs(end.y - at.y);
    const int sx = end.x < at.x ? -1 : 1;
    const int sy = end.y < at.y ? -1 : 1;
    const bool steep = adx < ady;
    const int along = steep ? ady : adx;
    const int across = steep ? adx : ady;
    int error = 2 * across - along;
    plot(at.x, at.y);
    for (int step = 0; step < along; ++step) {
        const bool aside = error > 0;
        error += aside ? 2 * (across - along) : 2 * across;
        if (steep || aside) at.y += sy;
        if (!steep || aside) at.x += sx;
        plot(at.x, at.y);
    }
}
