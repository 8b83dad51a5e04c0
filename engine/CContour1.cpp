#include "engine/CContour1.h"

#include <type_traits>

#include "engine/Planes.h"
#include "host/core/Multiversion.h"
#include "host/graphics/PixelMath.h"

namespace {

// Holds a sample times 255: lanes as narrow as the depth allows.
template <class Sample>
using TProduct = std::conditional_t<sizeof(Sample) == 1, std::uint16_t, std::uint32_t>;

// The difference of two samples, by signed numbers that hold it at either depth.
template <class Sample>
CMDTEXTURE_INLINE TProduct<Sample> Distance(Lane a, Lane b) {
    using Signed = std::make_signed_t<TProduct<Sample>>;
    const auto difference = static_cast<Signed>(a - b);
    return static_cast<TProduct<Sample>>(difference < 0 ? -difference : difference);
}

// The weight of the contour, 0 to 255, of a sample between its neighbours.
template <class Sample>
CMDTEXTURE_INLINE Lane ContourWeight(Lane sample, Lane below, Lane right, Lane intensity) {
    using Product = TProduct<Sample>;
    const auto difference =
        static_cast<Product>(Distance<Sample>(sample, right) + Distance<Sample>(sample, below));
    const auto edge = static_cast<Product>(difference * intensity);
    constexpr Product most = sizeof(Sample) == 2 ? 65535 : 255;
    const Product clamped = edge < most ? edge : most;
    return static_cast<Lane>(sizeof(Sample) == 2 ? clamped >> 8 : clamped);
}

template <class Sample>
CMDTEXTURE_INLINE Lane BlendColour(Lane sample, Lane contour, Lane weight) {
    using Product = TProduct<Sample>;
    const auto kept = static_cast<Product>(Product{ToLane(255 - weight)} * sample);
    const auto taken = static_cast<Product>(Product{weight} * contour);
    return static_cast<Lane>(static_cast<Product>(taken + kept) >> 8);
}

// A grey sample takes the mean of the contour's channels, whose sum is given.
template <class Sample>
CMDTEXTURE_INLINE Lane BlendGrey(Lane sample, int contour_sum, Lane weight) {
    return ToLane((contour_sum * weight / 3 + (255 - weight) * sample) >> 8);
}

// `contour`: the contour's samples in memory order, or for grey layouts the sum of them.
template <class Traits>
CMDTEXTURE_MULTIVERSION void ContourRow(const typename Traits::Sample* row,
                                        const typename Traits::Sample* below,
                                        typename Traits::Sample* to, int pixels, bool ends,
                                        int intensity, const int* contour) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    TPlanes<n> here, under;
    alignas(64) Lane weight[kBlockPixels];
    for (int done = 0; done < pixels; done += kBlockPixels) {
        const int count = std::min(kBlockPixels, pixels - done);
        SplitWithNeighbour<Traits>(row + done * n, count, ends && done + count == pixels, here);
        Split<Traits>(below + done * n, count, under);
        for (int c = 0; c < Traits::kColourChannels; ++c) {
            const Lane* sample = here.channel[c];
            Lane* out = under.channel[c];
            for (int x = 0; x < count; ++x) {
                weight[x] =
                    ContourWeight<Sample>(sample[x], out[x], sample[x + 1], ToLane(intensity));
            }
            for (int x = 0; x < count; ++x) {
                if constexpr (Traits::kColourChannels == 3) {
                    out[x] = BlendColour<Sample>(sample[x], ToLane(contour[c]), weight[x]);
                } else {
                    out[x] = BlendGrey<Sample>(sample[x], contour[c], weight[x]);
                }
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
    const int unit = pixelFormat.Is16bit() ? pixel::Times257(1) : 1;
    intensity = ValueOf(L"Intensity");
    contourRed = ValueOf(L"Red") * unit;
    contourGreen = ValueOf(L"Green") * unit;
    contourBlue = ValueOf(L"Blue") * unit;
}

void CContour1::ComputeGrey() {
    outGrey = AtDepth<1>([this](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const Lane weight = ContourWeight<Sample>(ToLane(grey[0]), ToLane(grey[1]), ToLane(grey[3]),
                                                  ToLane(intensity));
        return BlendGrey<Sample>(ToLane(grey[0]), contourRed + contourGreen + contourBlue, weight);
    });
}

void CContour1::ComputeRGB() {
    AtDepth<3>([this](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const auto blend = [this](const std::int32_t* k, int contour) {
            const Lane weight =
                ContourWeight<Sample>(ToLane(k[0]), ToLane(k[1]), ToLane(k[3]), ToLane(intensity));
            return BlendColour<Sample>(ToLane(k[0]), ToLane(contour), weight);
        };
        outRed = blend(red, contourRed);
        outGreen = blend(green, contourGreen);
        outBlue = blend(blue, contourBlue);
    });
}

void CContour1::ComputeRow(const std::uint8_t* row, const std::uint8_t* below, std::uint8_t* to,
                           int pixels, bool ends) const {
    VisitPixelFormat(pixelFormat, false, [&](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        const int colour[] = {contourBlue, contourGreen, contourRed};
        const int sum[] = {contourRed + contourGreen + contourBlue};
        ContourRow<decltype(traits)>(reinterpret_cast<const Sample*>(row),
                                     reinterpret_cast<const Sample*>(below),
                                     reinterpret_cast<Sample*>(to), pixels, ends, intensity,
                                     traits.kColourChannels == 3 ? colour : sum);
        return true;
    });
}
