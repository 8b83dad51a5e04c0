#pragma once

#include <array>
#include <vector>

#include "app/imagefile/encode/EncoderOutput.h"
#include "app/imagefile/encode/RowSource.h"
#include "app/imagefile/metadata/Metadata.h"

namespace imagefile {

// How a JPEG file is coded. Quantisation tables of a file's own, if there are any, come before the
// quality, and serve luminance and chrominance in their order.
struct SJpegCoding {
    int quality = 95;                                      // 1 to 100, on the library's scale
    std::vector<std::vector<std::uint16_t>> quantisation;  // 64 values each, in zigzag order
    int horizontal = 1, vertical = 1;  // luminance samples for each of chrominance, 1, 2 or 4
};

// The quality on the library's scale that makes the nearest luminance table.
int QualityOf(const std::vector<std::vector<std::uint16_t>>& quantisation);

// Writes a JPEG file of 8-bit rows without alpha, with these segments after its first marker, in
// stripes that all cores encode, with restart markers between them. The bytes are the same for any
// number of threads.
void EncodeJpeg(const CRowSource& rows, const std::vector<SSegment>& segments,
                const SJpegCoding& coding, const SEncoderOutput& output);

}  // namespace imagefile
