#include "hostlib/graphics/SelectionBlend.h"

namespace {

template <class Sample>
void BlendRow(const Sample* source, const std::uint8_t* mask, Sample* effect, int width,
              int channels) {
    for (int x = 0; x < width; ++x) {
        const int weight = mask[x];
        for (int c = 0; c < channels; ++c) {
            const int i = x * channels + c;
            effect[i] =
                static_cast<Sample>((source[i] * (255 - weight) + effect[i] * weight + 127) / 255);
        }
    }
}

}  // namespace

CErrorAutoThrow BlendBySelection(const CRowIteratorBands& source, const CRowIterator& mask,
                                 CRowIteratorBands& effect) {
    const auto fits = [&](const CRowIteratorBands& image) {
        return image.GetWidth() == source.GetWidth() && image.GetHeight() == source.GetHeight();
    };
    if (!fits(mask) || !fits(effect) || mask.GetPixelFormat() != ENPixelFormat::Grey8 ||
        effect.GetPixelFormat() != source.GetPixelFormat()) {
        return {TolmErrorCode::UnusableInput, "the selection does not fit the image"};
    }
    const CNPixelFormat format = source.GetPixelFormat();
    for (int y = 0; y < source.GetHeight(); ++y) {
        const auto* weights = mask.Row<std::uint8_t>(y);
        if (format.Is16bit()) {
            BlendRow(source.Row<std::uint16_t>(y), weights, effect.Row<std::uint16_t>(y),
                     source.GetWidth(), format.Channels());
        } else {
            BlendRow(source.Row<std::uint8_t>(y), weights, effect.Row<std::uint8_t>(y),
                     source.GetWidth(), format.Channels());
        }
    }
    return {};
}
