#include "resources/synthesis/Photo.h"

#include <algorithm>
#include <cmath>

#include "host/core/CErrorAutoThrow.h"
#include "host/graphics/ImageHelpers.h"
#include "resources/synthesis/Raster.h"

namespace synthesis {
namespace {

// Light changes over more than this share of a photograph's shorter side.
constexpr int kLightShare = 8;

// The photograph without alpha, not larger than the largest resource.
CRowIteratorBands Prepared(const CRowIteratorBands& photo) {
    const int shorter = std::min(photo.GetWidth(), photo.GetHeight());
    if (shorter < kSmallestPhoto) {
        throw CNException(TolmErrorCode::UnusableInput,
                          "the photograph is smaller than 64 x 64 pixels");
    }
    CRowIteratorBands flat;
    FlattenIteratorWithColor(photo, flat, GetMask64KLUT(), CColorRef::FromRgb(255, 255, 255))
        .ThrowIfFailed();
    const double scale = std::min(
        1.0, static_cast<double>(kLargestResource) / std::max(flat.GetWidth(), flat.GetHeight()));
    if (scale == 1) return flat;
    const auto scaled = [&](int side) {
        return std::max(kSmallestPhoto, static_cast<int>(std::lround(side * scale)));
    };
    CRowIteratorBands small;
    Resample(nullptr, flat, small, scaled(flat.GetWidth()), scaled(flat.GetHeight()), false, false)
        .ThrowIfFailed();
    return small;
}

// Samples of 0 to 65535, in the order of the picture's channels.
template <class Sample>
Raster ToRaster(const CRowIteratorBands& picture) {
    const int channels = picture.GetBPP() / static_cast<int>(8 * sizeof(Sample));
    Raster raster(picture.GetWidth(), picture.GetHeight(), channels);
    constexpr float kUnit = sizeof(Sample) == 1 ? 257 : 1;
    for (int y = 0; y < raster.height; ++y) {
        const Sample* row = picture.Row<Sample>(y);
        std::transform(row, row + std::ptrdiff_t{raster.width} * channels, raster.At(0, y),
                       [](Sample value) { return kUnit * static_cast<float>(value); });
    }
    return raster;
}

Raster ToRaster(const CRowIteratorBands& picture) {
    return picture.GetPixelFormat().Is16bit() ? ToRaster<std::uint16_t>(picture)
                                              : ToRaster<std::uint8_t>(picture);
}

// Blue, green and red weighted as they make a colour bright.
Raster Brightness(const Raster& picture) {
    if (picture.channels == 1) return picture;
    constexpr float kBlue = 0.0722F;
    constexpr float kGreen = 0.7152F;
    constexpr float kRed = 0.2126F;
    Raster grey(picture.width, picture.height, 1);
    for (std::size_t i = 0; i < grey.values.size(); ++i) {
        const float* pixel = picture.values.data() + 3 * i;
        grey.values[i] = kBlue * pixel[0] + kGreen * pixel[1] + kRed * pixel[2];
    }
    return grey;
}

Raster EvenlyLit(const Raster& picture) {
    return EvenOut(picture, std::max(4, std::min(picture.width, picture.height) / kLightShare));
}

CRowIteratorBands NewPicture(const Raster& raster, ENPixelFormat format) {
    CRowIteratorBands picture;
    picture.Create(raster.width, raster.height, format).ThrowIfFailed();
    return picture;
}

}  // namespace

CRowIteratorBands PatternOf(const CRowIteratorBands& photo, bool seamless) {
    Raster raster = ToRaster(Prepared(photo));
    if (seamless) raster = Seamless(EvenlyLit(raster));
    CRowIteratorBands pattern = NewPicture(raster, ENPixelFormat::Colour8);
    for (int y = 0; y < raster.height; ++y) {
        std::uint8_t* row = pattern.Row<std::uint8_t>(y);
        for (int x = 0; x < raster.width; ++x) {
            for (int c = 0; c < 3; ++c) {
                const float value = raster.At(x, y)[raster.channels == 1 ? 0 : c] / 257;
                *row++ = static_cast<std::uint8_t>(std::clamp(value + 0.5F, 0.0F, 255.0F));
            }
        }
    }
    return pattern;
}

CRowIteratorBands TextureOf(const CRowIteratorBands& photo, bool seamless) {
    Raster raster = EvenlyLit(Brightness(ToRaster(Prepared(photo))));
    if (seamless) raster = Seamless(raster);
    const std::vector<std::uint16_t> heights = ToHeights(raster.values);
    CRowIteratorBands texture = NewPicture(raster, ENPixelFormat::Grey16);
    for (int y = 0; y < raster.height; ++y) {
        std::copy_n(heights.begin() + std::ptrdiff_t{y} * raster.width, raster.width,
                    texture.Row<std::uint16_t>(y));
    }
    return texture;
}

}  // namespace synthesis
