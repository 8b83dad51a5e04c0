#include "engine/CLuminance.h"

#include <cstdlib>

#include "engine/Planes.h"
#include "host/core/Multiversion.h"

namespace {

// What one luminance does to samples of one depth: ((255 - |luminance|) * s >> 8) + lift. The
// result stays within the sample's range.
template <class Sample>
struct TShift {
    explicit TShift(int luminance)
        : scale(ToLane((255 - std::abs(luminance)) << 8)),
          lift(luminance <= 0 ? Lane{0} : ToLane(pixel::FromByte<Sample>(luminance))) {}

    CMDTEXTURE_INLINE Lane Of(Lane sample) const {
        // scale holds 8 bits more, so that the product's upper half is the shifted product.
        return ToLane(static_cast<int>((std::uint32_t{sample} * scale) >> 16) + lift);
    }

    Lane scale, lift;
};

template <class Traits>
CMDTEXTURE_MULTIVERSION void ShiftRow(const typename Traits::Sample* from,
                                      typename Traits::Sample* to, int pixels, int luminance) {
    using Sample = typename Traits::Sample;
    constexpr int n = Traits::kChannels;
    const TShift<Sample> shift(luminance);
    if constexpr (n == 2) {
        for (int x = 0; x < pixels; ++x) {
            to[2 * x] = static_cast<Sample>(shift.Of(from[2 * x]));
            // Keeps the loop free of gaps, so that it vectorises.
            to[2 * x + 1] = to[2 * x + 1];  // NOLINT(misc-redundant-expression)
        }
    } else if constexpr (n == 4) {
        TPlanes<n> planes;
        for (int done = 0; done < pixels; done += kBlockPixels) {
            const int count = std::min(kBlockPixels, pixels - done);
            Split<Traits>(from + done * n, count, planes);
            for (int c = 0; c < 3; ++c) {
                for (int x = 0; x < count; ++x) {
                    planes.channel[c][x] = shift.Of(planes.channel[c][x]);
                }
            }
            Merge<Traits>(planes, count, to + done * n);
        }
    } else {
        for (int i = 0; i < pixels * n; ++i) to[i] = static_cast<Sample>(shift.Of(from[i]));
    }
}

}  // namespace

CLuminance::CLuminance() { params.Add(L"Luminance", -255, 255, 0, 0); }

void CLuminance::ReadParameters() {
    params.ClampValues();
    luminance = ValueOf(L"Luminance");
}

CErrorAutoThrow CLuminance::ProcessGreyAlpha() {
    return ProcessRows<2>([this](const auto* from, auto* to) {
        grey[0] = from[0];
        ComputeGrey();
        to[0] = static_cast<std::remove_reference_t<decltype(*to)>>(outGrey);
    });
}

void CLuminance::ComputeGrey() {
    outGrey = AtDepth<1>([this](auto traits) {
        return TShift<typename decltype(traits)::Sample>(luminance).Of(ToLane(grey[0]));
    });
}

void CLuminance::ComputeRGB() {
    AtDepth<3>([this](auto traits) {
        const TShift<typename decltype(traits)::Sample> shift(luminance);
        outBlue = shift.Of(ToLane(blue[0]));
        outGreen = shift.Of(ToLane(green[0]));
        outRed = shift.Of(ToLane(red[0]));
    });
}

void CLuminance::ComputeRGBA() {
    ComputeRGB();
    outAlpha = alpha[0];
}

void CLuminance::ComputeRow(const std::uint8_t* from, std::uint8_t* to, int pixels) const {
    VisitPixelFormat(pixelFormat, false, [&](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        ShiftRow<decltype(traits)>(reinterpret_cast<const Sample*>(from),
                                   reinterpret_cast<Sample*>(to), pixels, luminance);
        return true;
    });
}
