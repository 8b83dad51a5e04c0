#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "engine/CStrokeTransform.h"
#include "host/core/RuntimeRandom.h"
#include "host/graphics/IRowWorkers.h"

// What the stroke transforms share: random points of the work rectangle, each with the gradient of
// the source's brightness there.

// A point to draw a stroke at.
template <int kChannels>
struct TStrokePoint {
    int x, y;
    int gradient_x,
        gradient_y;             // toward the pixel right and below, in 8-bit terms, channels summed
    double steepness;           // the gradient's length, 1 where it is flat
    TColour<kChannels> colour;  // of the pixel, samples as stored
};

// Brightness in 8-bit terms, the sum of three channels.
template <class Traits>
int StrokeBrightness(const typename Traits::Sample* pixel) {
    const int sum = Traits::kColourChannels == 3 ? pixel[0] + pixel[1] + pixel[2] : 3 * pixel[0];
    return Traits::kIs16bit ? sum >> 8 : sum;
}

// At the image's last column or row the pixel stands for the neighbour that does not exist.
template <class Traits>
TStrokePoint<Traits::kChannels> StrokePointAt(const CRowIteratorBands& source, int x, int y) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    const std::ptrdiff_t at = std::ptrdiff_t{x} * n;
    const Sample* here = source.Row<Sample>(y) + at;
    const Sample* beside = x + 1 < source.GetWidth() ? here + n : here;
    const Sample* below = y + 1 < source.GetHeight() ? source.Row<Sample>(y + 1) + at : here;
    const int brightness = StrokeBrightness<Traits>(here);

    TStrokePoint<n> point{};
    point.x = x;
    point.y = y;
    point.gradient_x = StrokeBrightness<Traits>(beside) - brightness;
    point.gradient_y = StrokeBrightness<Traits>(below) - brightness;
    const double length = std::sqrt(static_cast<double>(point.gradient_x * point.gradient_x +
                                                        point.gradient_y * point.gradient_y));
    point.steepness = length == 0.0 ? 1.0 : length;
    for (std::size_t c = 0; c < point.colour.size(); ++c) point.colour[c] = here[c];
    return point;
}

// Strokes at `count` random points of the area, which is not empty: each is what stroke_at(point)
// answers.
template <class Traits, class StrokeAt>
auto MakeStrokes(const CRowIteratorBands& source, const CRect& area, int count,
                 IRowWorkers* workers, StrokeAt&& stroke_at) {
    using Stroke = decltype(stroke_at(TStrokePoint<Traits::kChannels>{}));
    constexpr int kBlock = 256;
    CRuntimeRandom& random = CRuntimeRandom::OfThisThread();
    std::vector<CPoint> points(static_cast<std::size_t>(count));
    for (CPoint& point : points) {
        point.x = area.left + random.Next() % area.Width();
        point.y = area.top + random.Next() % area.Height();
    }
    auto strokes = std::make_unique<TStrokeParts<Stroke>>(points.size());
    ForEachBlock(workers, count, kBlock, [&](int first, int last) {
        for (auto i = static_cast<std::size_t>(first); i < static_cast<std::size_t>(last); ++i) {
            (*strokes)[i] = stroke_at(StrokePointAt<Traits>(source, points[i].x, points[i].y));
        }
    });
    return std::unique_ptr<IStrokeParts>(std::move(strokes));
}
