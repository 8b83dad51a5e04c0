#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "engine/StrokeBands.h"
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

// The part of an image that strokes are drawn on: some of its rows, each from column 0 on.
struct SCanvas {
    std::uint8_t* pixels;  // of row `first`
    std::ptrdiff_t stride;
    int columns;
    int first, last;  // the rows, `last` excluded

    // The samples of a pixel on the canvas.
    template <class Traits>
    typename Traits::Sample* At(int x, int y) const {
        return reinterpret_cast<typename Traits::Sample*>(pixels + stride * (y - first)) +
               static_cast<std::ptrdiff_t>(x) * Traits::kChannels;
    }
    bool Holds(int x, int y) const { return x >= 0 && x < columns && y >= first && y < last; }
};

// A line between two points of an image, ready to be drawn.
class CSoftLine {
  public:
    CSoftLine() = default;
    // The ends are clamped into an image of size `bounds`.
    CSoftLine(CSize bounds, CPoint from, CPoint to)
        : x0_(pixel::Clamp(from.x, 0, bounds.cx - 1)),
          y0_(pixel::Clamp(from.y, 0, bounds.cy - 1)),
          x1_(pixel::Clamp(to.x, 0, bounds.cx - 1)),
          y1_(pixel::Clamp(to.y, 0, bounds.cy - 1)) {}

    // The rows that it touches, its flanks included; some may lie outside the image.
    CStrokeBands::SRows Rows() const { return {std::min(y0_, y1_) - 1, std::max(y0_, y1_) + 1}; }
    // Draws what lies on the canvas.
    template <class Traits>
    void Draw(const SCanvas& canvas, const TColour<Traits::kChannels>& colour,
              int transparency) const {
        const auto [left, right] = std::minmax(x0_, x1_);
        const auto [top, bottom] = std::minmax(y0_, y1_);
        if (bottom + 1 < canvas.first || top - 1 >= canvas.last) return;
        const bool inside = canvas.Holds(left - 1, top - 1) && canvas.Holds(right + 1, bottom + 1);
        const auto plot = [&](int x, int y, int distance) {
            const int weight =
                pixel::Clamp(std::min(std::abs(distance), 256) + transparency, 0, 255);
            auto* samples = canvas.At<Traits>(x, y);
            for (std::size_t c = 0; c < colour.size(); ++c) {
                samples[c] = static_cast<typename Traits::Sample>(
                    pixel::BlendToward(samples[c], colour[c], weight));
            }
        };
        if (inside) return Walk(plot);
        Walk([&](int x, int y, int distance) {
            if (canvas.Holds(x, y)) plot(x, y, distance);
        });
    }

  private:
    // Calls plot(x, y, distance from the line) for every pixel of the line, in order. Steep lines
    // walk rows and have neighbours left and right, others walk columns and have them above and
    // below.
    template <class Plot>
    void Walk(Plot&& plot) const {
        int x = x0_, y = y0_;
        const int adx = std::abs(x1_ - x);
        const int ady = std::abs(y1_ - y);
        const int sx = x1_ < x ? -1 : 1;
        const int sy = y1_ < y ? -1 : 1;
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
            plot(steep ? x - sx : x, steep ? y : y - sy, distance + side);
            plot(x, y, distance);
            plot(steep ? x + sx : x, steep ? y : y + sy, side - distance);
            if (step == along) return;
            const bool aside = error >= 0;
            const int offset = aside ? error - along : error + along;
            error += aside ? 2 * (across - along) : 2 * across;
            if (steep || aside) y += sy;
            if (!steep || aside) x += sx;
            distance = offset * 256 / length3;
        }
    }

    int x0_ = 0, y0_ = 0, x1_ = 0, y1_ = 0;
};
