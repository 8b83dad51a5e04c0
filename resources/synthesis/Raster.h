#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// Pictures as they are worked on: samples of any unit, row by row, the channels of a pixel side by
// side. Coordinates wrap around, so that a seamless picture has no borders.
namespace synthesis {

struct Raster {
    Raster() = default;
    Raster(int columns, int rows, int samples)
        : width(columns),
          height(rows),
          channels(samples),
          values(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows) *
                 static_cast<std::size_t>(samples)) {}

    float* At(int x, int y) { return values.data() + Index(x, y); }
    const float* At(int x, int y) const { return values.data() + Index(x, y); }
    std::size_t Index(int x, int y) const {
        const auto wrap = [](int i, int n) { return static_cast<std::size_t>((i % n + n) % n); };
        return (wrap(y, height) * static_cast<std::size_t>(width) + wrap(x, width)) *
               static_cast<std::size_t>(channels);
    }

    int width = 0, height = 0, channels = 0;
    std::vector<float> values;
};

Raster Transpose(const Raster& picture);

// Takes away differences of brightness wider than about twice the radius in pixels: they are light,
// not material. The mean stays.
Raster EvenOut(const Raster& picture, int radius);

// The picture made to tile: cut where its end is most like its beginning, in both directions, and
// joined there along the line that shows least. It loses up to two fifths of either side, and needs
// at least 16 pixels a side.
Raster Seamless(const Raster& picture);

// A seamless square of `side` pixels, laid of blocks of the picture, turned and mirrored, that fit
// what lies beside them and are joined along the lines that show least (image quilting; Efros and
// Freeman, 2001). Needs a picture larger than a block: side / `blocks` * 1.3 pixels.
Raster Quilt(const Raster& picture, int side, int blocks, std::uint32_t seed);

// The heights of a surface from the brightness of its photograph, as 16-bit samples: all but the
// most extreme are stretched over the full range and bent so that their mean is mid-grey.
std::vector<std::uint16_t> ToHeights(const std::vector<float>& values);

// The place, other than itself, where a seamless picture of one channel is most like itself.
struct Repeat {
    int x, y;         // pixels right and down of a point
    double strength;  // the autocorrelation there: 1 is an exact copy
};
// Searched among the shifts by at least `nearest` pixels; width and height are powers of two.
Repeat StrongestRepeat(const Raster& picture, int nearest);

}  // namespace synthesis
