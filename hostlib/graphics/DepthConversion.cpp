#include "hostlib/graphics/DepthConversion.h"

#include "host/graphics/PixelMath.h"

CErrorAutoThrow ToEightBits(const CRowIteratorBands& source, CRowIteratorBands& narrow) {
    const CRect place = source.GetRect();
    // Held, since `narrow` may be the source.
    const CRowIteratorBands wide = source;  // NOLINT(performance-unnecessary-copy-initialization)
    const int channels = wide.GetPixelFormat().Channels();
    CErrorAutoThrow created =
        narrow.Create(wide.GetWidth(), wide.GetHeight(), CNPixelFormat::Of(channels, false),
                      {place.left, place.top});
    if (created.Failed()) return created;
    for (int y = 0; y < wide.GetHeight(); ++y) {
        const auto* from = wide.Row<std::uint16_t>(y);
        auto* to = narrow.Row<std::uint8_t>(y);
        for (int i = 0; i < wide.GetWidth() * channels; ++i) {
            to[i] = static_cast<std::uint8_t>(pixel::HighByte(from[i]));
        }
    }
    return {};
}

CErrorAutoThrow WidenOver(const CRowIteratorBands& source, const CRowIteratorBands& result,
                          CRowIteratorBands& wide) {
    CErrorAutoThrow copied = wide.Copy(source, 0);
    if (copied.Failed()) return copied;
    const CNPixelFormat format = wide.GetPixelFormat();
    for (int y = 0; y < wide.GetHeight(); ++y) {
        const auto* from = result.Row<std::uint8_t>(y);
        auto* to = wide.Row<std::uint16_t>(y);
        for (int x = 0; x < wide.GetWidth(); ++x) {
            for (int c = 0; c < format.ColourChannels(); ++c) {
                const int i = x * format.Channels() + c;
                if (from[i] != pixel::HighByte(to[i])) {
                    to[i] = static_cast<std::uint16_t>(pixel::Times257(from[i]));
                }
            }
        }
    }
    return {};
}
