#include "engine/CContour1.h"

#include <cstdlib>

#include "engine/Planes.h"
#include "host/core/Multiversion.h"

namespace {

// The weight of the contour, 0 to 255, of a sample between its neighbours.
template <class Sample>
ENGINE_INLINE int ContourWeight(int sample, int below, int right, int intensity) {
    const int edge = (std::abs(sample - right) + std::abs(sample - below)) * intensity;
    return sizeof(Sample) == 2 ? pixel::Clamp(edge, 0, 65535) >> 8 : pixel::Clamp(edge, 0, 255);
}

ENGINE_INLINE int BlendColour(int sample, int contour, int weight) {
    return (weight * contour + (255 - weight) * sample) >> 8;
}

// A grey sample takes the mean of the contour's channels, whose sum is given.
ENGINE_INLINE int BlendGrey(int sample, int contour_sum, int weight) {
    return (contour_sum * weight / 3 + (255 - weight) * sample) >> 8;
}

// `contour`: the contour's samples in memory order, or for grey layouts the sum of them.
template <class Traits>
CMDTEXTURE_MULTIVERSION void ContourRow(const typename Traits::Sample* row,
                                        const typename Traits::Sample* below,
                                        typename Traits::Sample* to, int pixels, int intensity,
                                        const int* contour) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    TPlanes<n> here, under;
    for (int done = 0; done < pixels; done += kBlockPixels) {
        const int count = std::min(kBlockPixels, pixels - done);
        Split<Traits>(row + done * n, count + 1, here);
        Split<Traits>(below + done * n, count, under);
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            const Lane* sample = here.channel[c];
            Lane* out = under.channel[c];
            for (int x = 0; x < count; ++x) {
                const int weight =
                    ContourWeight<Sample>(sample[x], out[x], sample[x + 1], intensity);
                out[x] =
                    ToLane(Traits::kColourChannels == 3 ? BlendColour(sample[x], contour[c], weight)
                                                        : BlendGrey(sample[x], contour[c], weight));
            }
        }
        // Colour images take their alpha from the row below, where it already lies.
        if constexpr (n == 2) std::copy_n(here.channel[1], count, under.channel[1]);
        Merge<Traits>(under, count, to + done * n);
    }
}

}  // namespace

CContour1::CContour1() {
    params.Add(L"Intensity", 0, 100, 10, 0);
    params.Add(L"Red", 0, 255, 0, 0);
    params.Add(L"Green", 0, 255, 0, 0);
    params.Add(L"Blue", 0, 255, 0, 0);
}

void CContour1::ReadParameters() {
    params.ClampValues();
    const int unit = pixelFormat.Is16bit() ? 257 : 1;
    intensity = ValueOf(L"Intensity");
    contourRed = ValueOf(L"Red") * unit;
    contourGreen = ValueOf(L"Green") * unit;
    contourBlue = ValueOf(L"Blue") * unit;
}

void CContour1::ComputeGrey() {
    const int weight = AtDepth<1>([this](auto traits) {
        return ContourWeight<typename decltype(traits)::Sample>(grey[0], grey[1], grey[3],
                                                                intensity);
    });
    outGrey = BlendGrey(grey[0], contourRed + contourGreen + contourBlue, weight);
}

void CContour1::ComputeRGB() {
    const auto blend = [this](const std::int32_t* k, int contour) {
        return AtDepth<3>([&](auto traits) {
            using Sample = typename decltype(traits)::Sample;
            return BlendColour(k[0], contour, ContourWeight<Sample>(k[0], k[1], k[3], intensity));
        });
    };
    outRed = blend(red, contourRed);
    outGreen = blend(green, contourGreen);
    outBlue = blend(blue, contourBlue);
}

bool CContour1::ComputeRow(const std::uint8_t* row, const std::uint8_t* below, std::uint8_t* to,
                           int pixels) {
    return VisitPixelFormat(pixelFormat, false, [&](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const int colour[] = {contourBlue, contourGreen, contourRed};
        const int sum[] = {contourRed + contourGreen + contourBlue};
        ContourRow<decltype(traits)>(reinterpret_cast<const Sample*>(row),
                                     reinterpret_cast<const Sample*>(below),
                                     reinterpret_cast<Sample*>(to), pixels, intensity,
                                     traits.kColourChannels == 3 ? colour : sum);
        return true;
    });
}
