#include "engine/CTerrasseRelief.h"

#include <cmath>

#include "engine/Planes.h"
#include "host/core/Multiversion.h"

namespace {

// The light of a run.
struct SLight {
    double cos_angle, sin_angle;
    int colour[3];  // in memory order; grey layouts use the first
};

// How far a slope is lit, from the rise of its brightness (sum of three channels) to the right and
// downwards: the shade of a full light, -4327 to 4327. Double precision and truncation as they
// stand here make the last bit of the picture.
CMDTEXTURE_INLINE int Shade(int rise_right, int rise_below, double cos_angle, double sin_angle) {
    const double slope =
        static_cast<double>(rise_right) * cos_angle + static_cast<double>(rise_below) * sin_angle;
    return static_cast<int>(slope * 4.0);
}

// A sample in 8-bit terms, shaded by one component of the light. The shift rounds down: the shade
// times the component, divided by 256, as the upper half of a product of 16-bit numbers.
CMDTEXTURE_INLINE int Lit(int value, int shade, int light) {
    const auto shade4 = static_cast<std::int16_t>(shade * 4);
    const auto light64 = static_cast<std::int16_t>(light * 64);
    const auto lift = static_cast<std::int16_t>((shade4 * light64) >> 16);
    return pixel::Clamp(static_cast<std::int16_t>(value + lift), 0, 255);
}

// Lights a block: shades from the brightness sums, then every colour channel in place.
template <class Traits>
CMDTEXTURE_INLINE void LightBlock(TPlanes<Traits::kChannels>& here,
                                  const TPlanes<Traits::kChannels>& under, int count,
                                  const SLight& light) {
    using Sample = typename Traits::Sample;
    alignas(64) std::int16_t sum[TPlanes<1>::kLength], rise_right[kBlockPixels],
        rise_below[kBlockPixels], shade[kBlockPixels];
    const auto brightness = [](const TPlanes<Traits::kChannels>& p, int x) {
        if constexpr (Traits::kColourChannels == 1) {
            return static_cast<std::int16_t>(3 * pixel::ToByte<Sample>(p.channel[0][x]));
        } else {
            return static_cast<std::int16_t>(pixel::ToByte<Sample>(p.channel[0][x]) +
                                             pixel::ToByte<Sample>(p.channel[1][x]) +
                                             pixel::ToByte<Sample>(p.channel[2][x]));
        }
    };
    for (int x = 0; x <= count; ++x) sum[x] = brightness(here, x);
    for (int x = 0; x < count; ++x) {
        rise_right[x] = static_cast<std::int16_t>(sum[x + 1] - sum[x]);
        rise_below[x] = static_cast<std::int16_t>(brightness(under, x) - sum[x]);
    }
    for (int x = 0; x < count; ++x) {
        shade[x] = static_cast<std::int16_t>(
            Shade(rise_right[x], rise_below[x], light.cos_angle, light.sin_angle));
    }
    for (int c = 0; c < Traits::kColourChannels; ++c) {
        Lane* plane = here.channel[c];
        for (int x = 0; x < count; ++x) {
            const int value = pixel::ToByte<Sample>(plane[x]);
            plane[x] = ToLane(pixel::FromByte<Sample>(Lit(value, shade[x], light.colour[c])));
        }
    }
}

template <class Traits>
CMDTEXTURE_MULTIVERSION void LightRow(const typename Traits::Sample* row,
                                      const typename Traits::Sample* below,
                                      typename Traits::Sample* to, int pixels, bool ends,
                                      SLight light) {
    constexpr int n = Traits::kChannels;
    TPlanes<n> here, under;
    for (int done = 0; done < pixels; done += kBlockPixels) {
        const int count = std::min(kBlockPixels, pixels - done);
        SplitWithNeighbour<Traits>(row + done * n, count, ends && done + count == pixels, here);
        Split<Traits>(below + done * n, count, under);
        LightBlock<Traits>(here, under, count, light);
        if constexpr (n == 4) std::copy_n(under.channel[3], count, here.channel[3]);
        if constexpr (n == 2) {  // the destination keeps its alpha
            for (int x = 0; x < count; ++x) here.channel[1][x] = to[2 * (done + x) + 1];
        }
        Merge<Traits>(here, count, to + done * n);
    }
}

}  // namespace

CTerrasseRelief::CTerrasseRelief() {
    params.Add(L"Angle", 0, 360, 45, 0);
    params.Add(L"Red Light", 0, 255, 255, 0);
    params.Add(L"Green Light", 0, 255, 255, 0);
    params.Add(L"Blue Light", 0, 255, 255, 0);
}

void CTerrasseRelief::ReadParameters() {
    params.ClampValues();
    lightAngle = ValueOf(L"Angle") + 90;
    lightRed = ValueOf(L"Red Light");
    lightGreen = ValueOf(L"Green Light");
    lightBlue = ValueOf(L"Blue Light");
    // Pi to eight digits, the product first: the pictures depend on it.
    const double radians = static_cast<double>(2 * lightAngle) * 3.1415926 / 360.0;
    cosAngle = std::cos(radians);
    sinAngle = std::sin(radians);
}

void CTerrasseRelief::ComputeGrey() {
    outGrey = AtDepth<1>([this](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const int c = pixel::ToByte<Sample>(grey[0]);
        const int below = pixel::ToByte<Sample>(grey[1]);
        const int beside = pixel::ToByte<Sample>(grey[3]);
        const int shade = Shade(3 * (beside - c), 3 * (below - c), cosAngle, sinAngle);
        return pixel::FromByte<Sample>(Lit(c, shade, lightGreen));
    });
}

void CTerrasseRelief::ComputeRGB() {
    AtDepth<3>([this](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const auto sum = [this](int entry) {
            return pixel::ToByte<Sample>(red[entry]) + pixel::ToByte<Sample>(green[entry]) +
                   pixel::ToByte<Sample>(blue[entry]);
        };
        const int shade = Shade(sum(3) - sum(0), sum(1) - sum(0), cosAngle, sinAngle);
        const auto lit = [&](int sample, int light) {
            return pixel::FromByte<Sample>(Lit(pixel::ToByte<Sample>(sample), shade, light));
        };
        outRed = lit(red[0], lightRed);
        outGreen = lit(green[0], lightGreen);
        outBlue = lit(blue[0], lightBlue);
    });
}

CErrorAutoThrow CTerrasseRelief::ProcessGreyAlpha() {
    return ProcessRows<2>([this]<class Sample>(const Sample* pixel, const Sample* below,
                                               const Sample* right_pixel, Sample* to) {
        LoadGrey(pixel, below, right_pixel);
        ComputeGrey();
        to[0] = static_cast<Sample>(outGrey);
    });
}

void CTerrasseRelief::ComputeRow(const std::uint8_t* row, const std::uint8_t* below,
                                 std::uint8_t* to, int pixels, bool ends) const {
    VisitPixelFormat(pixelFormat, false, [&](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const bool colour = traits.kColourChannels == 3;
        const SLight light{
            cosAngle, sinAngle, {colour ? lightBlue : lightGreen, lightGreen, lightRed}};
        LightRow<decltype(traits)>(reinterpret_cast<const Sample*>(row),
                                   reinterpret_cast<const Sample*>(below),
                                   reinterpret_cast<Sample*>(to), pixels, ends, light);
        return true;
    });
}
