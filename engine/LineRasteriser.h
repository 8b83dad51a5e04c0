#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "host/core/Geometry.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/PixelMath.h"

// The soft line of the stroke transforms: a walk along the longer axis that plots, at each step,
// the pixel nearest to the line and its two neighbours across the line. Each is blended toward the
// colour with a weight that grows with its distance from the ideal line, 256 standing for about 1.5
// pixels, so that the core takes the colour and the flanks fade out.

// The colour samples of a pixel in memory order: grey, or blue, green, red.
template <int kChannels>
using TColour = std::array<int, (kChannels >= 3 ? 3 : 1)>;

template <class Traits>
class TSoftPen {
  public:
    TSoftPen(CRowIteratorBands& image, CSize bounds, const TColour<Traits::kChannels>& colour,
             int transparency)
        : image_(image),
          columns_(std::min(bounds.cx, image.GetWidth())),
          rows_(std::min(bounds.cy, image.GetHeight())),
          colour_(colour),
          transparency_(transparency) {}

    // Blends the pixel, when it lies inside the image, at a distance from the line.
    void Plot(int x, int y, int distance) {
        if (x < 0 || x >= columns_ || y < 0 || y >= rows_) return;
        const int weight = pixel::Clamp(std::min(std::abs(distance), 256) + transparency_, 0, 255);
        auto* samples = image_.Row<typename Traits::Sample>(y) +
                        static_cast<std::ptrdiff_t>(x) * Traits::kChannels;
        for (std::size_t c = 0; c < colour_.size(); ++c) {
            samples[c] = static_cast<typename Traits::Sample>(
                pixel::BlendToward(samples[c], colour_[c], weight));
        }
    }

  private:
    CRowIteratorBands& image_;
    int columns_;
    int rows_;
    TColour<Traits::kChannels> colour_;
    int transparency_;
};

// Draws from one point to another, both clamped into `bounds` first. Steep lines walk rows and
// have neighbours left and right, others walk columns and have them above and below.
template <class Traits>
void DrawSoftLine(CRowIteratorBands& image, CSize bounds, CPoint from, CPoint to,
                  const TColour<Traits::kChannels>& colour, int transparency) {
    TSoftPen<Traits> pen(image, bounds, colour, transparency);
    int x = pixel::Clamp(from.x, 0, bounds.cx - 1);
    int y = pixel::Clamp(from.y, 0, bounds.cy - 1);
    const int x1 = pixel::Clamp(to.x, 0, bounds.cx - 1);
    const int y1 = pixel::Clamp(to.y, 0, bounds.cy - 1);
    const int adx = std::abs(x1 - x);
    const int ady = std::abs(y1 - y);
    const int sx = x1 < x ? -1 : 1;
    const int sy = y1 < y ? -1 : 1;
    const std::int64_t squared = std::int64_t{ady} * ady + std::int64_t{adx} * adx;
    const int length3 = static_cast<int>(std::sqrt(static_cast<double>(squared)) * 3.0);

    const bool steep = adx < ady;
    const int along = steep ? ady : adx;
    const int across = steep ? adx : ady;
    // The distance of a pixel one step across from the line; a single point has length 0.
    const int side = along * 512 / (steep ? length3 : length3 + 1);

    int distance = 0;
    int error = 2 * across - along;
    for (int step = 0;; ++step) {
        pen.Plot(steep ? x - sx : x, steep ? y : y - sy, distance + side);
        pen.Plot(x, y, distance);
        pen.Plot(steep ? x + sx : x, steep ? y : y + sy, side - distance);
        if (step == along) return;
        const bool aside = error >= 0;
        const int offset = aside ? error - along : error + along;
        error += aside ? 2 * (across - along) : 2 * across;
        if (steep || aside) y += sy;
        if (!steep || aside) x += sx;
        distance = offset * 256 / length3;
    }
}
