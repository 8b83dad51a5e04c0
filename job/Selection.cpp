#include "job/Selection.h"

#include "host/graphics/ColorRef.h"
#include "host/graphics/PixelMath.h"

namespace {

// The brightness of a pixel's colour channels, 0 to 255.
template <class Sample>
int Brightness(const Sample* pixel, int colour_channels) {
    const auto byte = [&](int c) { return pixel::ToByte<Sample>(pixel[c]); };
    return colour_channels == 1 ? byte(0) : CColorRef::FromRgb(byte(2), byte(1), byte(0)).Grey();
}

}  // namespace

CRowIterator ToSelection(const CRowIteratorBands& picture) {
    if (picture.GetPixelFormat() == ENPixelFormat::Grey8) return picture;
    CRowIterator mask;
    mask.Create(picture.GetWidth(), picture.GetHeight(), ENPixelFormat::Grey8).ThrowIfFailed();
    VisitPixelFormat(picture.GetPixelFormat(), 0, [&](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        for (int y = 0; y < picture.GetHeight(); ++y) {
            for (int x = 0; x < picture.GetWidth(); ++x) {
                mask.Row<std::uint8_t>(y)[x] = static_cast<std::uint8_t>(Brightness(
                    picture.Row<Sample>(y) + x * traits.kChannels, traits.kColourChannels));
            }
        }
        return 0;
    });
    return mask;
}
