#pragma once

#include <cstdint>

#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/SColorSpecRGB.h"

// Rows of samples moved between pictures: the loops under the image helpers and effects. They go
// round GetRow, whose gathered rows belong to one thread, and so may run on many rows at once.

// Which samples of a pixel an image shows under its channel access.
struct SShownSamples {
    int first = 0;  // channel that the shown ones begin with
    int count = 0;
    int step = 0;  // samples a pixel in memory
};
SShownSamples ShownBy(const CRowIteratorBands& image);

// Copies `count` samples of `bytes` bytes at each pixel between rows with `from_step` and `to_step`
// samples a pixel. The rows are the same or do not overlap.
void CopySampleRow(const void* from, int from_step, void* to, int to_step, int count, int bytes,
                   int pixels);

// Writes what `source` shows in its row into what `destination` shows in its own. Both show the
// same format.
void CopyShownRow(const CRowIteratorBands& source, int source_y, CRowIteratorBands& destination,
                  int destination_y);

// Converts pixels between any two of the eight formats: grey becomes colour of equal channels,
// colour becomes its brightness, depth is rescaled with rounding, alpha is kept, made opaque or
// dropped as the target needs.
void ConvertRow(const void* from, CNPixelFormat from_format, void* to, CNPixelFormat to_format,
                int pixels, const SColorSpecRGB& color_spec);

// The remainder of a division, from 0 to by - 1 for negative numbers too: where in its period an
// endless pattern stands.
inline int FloorMod(long value, int by) {
    const long rest = value % by;
    return static_cast<int>(rest < 0 ? rest + by : rest);
}

// Fills `width` pixels of a row, from column `left`, with repeats of `tile`, one of whose repeats
// has its place on the canvas. Samples are converted to the output's format.
void TileRow(const CRowIteratorBands& tile, CRowIteratorBands& output, int y, int left, int width);

// Makes `destination` an image of the source's size and place in the format that the source shows;
// its memory is kept when it fits and is not the source's. Error 101 for an unattached source.
CErrorAutoThrow PrepareDestination(CRowIteratorBands& destination, const CRowIteratorBands& source);

// Calls visitor(Sample{}) with the sample type of a format.
template <class Visitor>
auto VisitDepth(bool is16bit, Visitor&& visitor) {
    return is16bit ? visitor(std::uint16_t{}) : visitor(std::uint8_t{});
}
