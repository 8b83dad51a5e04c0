#include "hostlib/graphics/LayerBlend.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "hostlib/graphics/ParallelRows.h"

namespace {

constexpr int kBlockRows = 16;
// Halves go up, also when the nearest fraction lies a hair below.
constexpr double kHalf = 0.5 + 1e-9;

// Colours as fractions: blue, green, red, or grey.
template <std::size_t kColours>
using TColour = std::array<double, kColours>;

double Multiply(double b, double s) { return b * s; }
double Screen(double b, double s) { return b + s - b * s; }
double Overlay(double b, double s) { return b <= 0.5 ? Multiply(s, 2 * b) : Screen(s, 2 * b - 1); }
double SoftLight(double b, double s) {
    if (s <= 0.5) return b - (1 - 2 * s) * b * (1 - b);
    const double d = b <= 0.25 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
    return b + (2 * s - 1) * (d - b);
}

double Luminosity(const TColour<3>& bgr) { return 0.3 * bgr[2] + 0.59 * bgr[1] + 0.11 * bgr[0]; }

// The base's hue and saturation with the layer's luminosity, drawn to grey as far as it takes to
// lie between black and white.
TColour<3> WithLuminosity(const TColour<3>& base, const TColour<3>& layer) {
    const double wanted = Luminosity(layer);
    const double shift = wanted - Luminosity(base);
    TColour<3> colour = base;
    for (double& c : colour) c += shift;
    const auto [least, most] = std::minmax_element(colour.begin(), colour.end());
    const double low = *least, high = *most;
    for (double& c : colour) {
        if (low < 0) c = wanted + (c - wanted) * wanted / (wanted - low);
        if (high > 1) c = wanted + (c - wanted) * (1 - wanted) / (high - wanted);
    }
    return colour;
}
TColour<1> WithLuminosity(const TColour<1>& /*base*/, const TColour<1>& layer) { return layer; }

template <double (*kMix)(double, double)>
struct TSeparable {
    template <std::size_t kColours>
    static TColour<kColours> Mix(const TColour<kColours>& base, const TColour<kColours>& layer) {
        TColour<kColours> mixed;
        for (std::size_t c = 0; c < kColours; ++c) mixed[c] = kMix(base[c], layer[c]);
        return mixed;
    }
};
struct SNormal {
    template <std::size_t kColours>
    static TColour<kColours> Mix(const TColour<kColours>& /*base*/,
                                 const TColour<kColours>& layer) {
        return layer;
    }
};
struct SLuminosity {
    template <std::size_t kColours>
    static TColour<kColours> Mix(const TColour<kColours>& base, const TColour<kColours>& layer) {
        return WithLuminosity(base, layer);
    }
};

template <class Visitor>
void VisitMode(ENBlendMode mode, Visitor&& visitor) {
    switch (mode) {
        case ENBlendMode::Normal:
            return visitor(SNormal{});
        case ENBlendMode::Multiply:
            return visitor(TSeparable<Multiply>{});
        case ENBlendMode::Screen:
            return visitor(TSeparable<Screen>{});
        case ENBlendMode::Overlay:
            return visitor(TSeparable<Overlay>{});
        case ENBlendMode::SoftLight:
            return visitor(TSeparable<SoftLight>{});
        case ENBlendMode::Luminosity:
            return visitor(SLuminosity{});
    }
}

template <class Traits, class Mode>
void BlendRow(const typename Traits::Sample* base, typename Traits::Sample* layer, int width,
              double opacity) {
    using Sample = typename Traits::Sample;
    constexpr std::size_t kColours = Traits::kColourChannels;
    constexpr bool kAlpha = Traits::kChannels > kColours;
    constexpr double kLargest = sizeof(Sample) == 2 ? 65535 : 255;
    const auto to_sample = [](double fraction) {
        return static_cast<Sample>(std::clamp(fraction, 0.0, 1.0) * kLargest + kHalf);
    };
    for (int x = 0; x < width; ++x, base += Traits::kChannels, layer += Traits::kChannels) {
        TColour<kColours> below, above;
        for (std::size_t c = 0; c < kColours; ++c) {
            below[c] = base[c] / kLargest;
            above[c] = layer[c] / kLargest;
        }
        const double base_alpha = kAlpha ? base[kColours] / kLargest : 1;
        const double layer_alpha = kAlpha ? layer[kColours] / kLargest : 1;
        const TColour<kColours> mixed = Mode::Mix(below, above);
        double base_weight = (1 - opacity) * base_alpha;
        double layer_weight = opacity * layer_alpha;
        if constexpr (kAlpha) layer[kColours] = to_sample(base_weight + layer_weight);
        if (base_weight + layer_weight == 0) {  // colour under alpha 0 fades, too
            base_weight = 1 - opacity;
            layer_weight = opacity;
        }
        for (std::size_t c = 0; c < kColours; ++c) {
            const double colour = above[c] + base_alpha * (mixed[c] - above[c]);
            layer[c] = to_sample((base_weight * below[c] + layer_weight * colour) /
                                 (base_weight + layer_weight));
        }
    }
}

}  // namespace

CErrorAutoThrow BlendLayer(const CRowIteratorBands& base, ENBlendMode mode, double opacity,
                           CRowIteratorBands& layer) {
    const CNPixelFormat format = base.GetPixelFormat();
    if (layer.GetWidth() != base.GetWidth() || layer.GetHeight() != base.GetHeight() ||
        layer.GetPixelFormat() != format) {
        return {TolmErrorCode::UnusableInput, "the layer does not fit the image"};
    }
    if (mode == ENBlendMode::Normal && opacity >= 1) return {};
    return VisitPixelFormat(format, CErrorAutoThrow(), [&](auto traits) {
        using Traits = decltype(traits);
        using Sample = typename Traits::Sample;
        CErrorAutoThrow error;
        VisitMode(mode, [&](auto mixer) {
            error =
                ForEachRowBlock(nullptr, base.GetHeight(), kBlockRows, [&](int first, int last) {
                    for (int y = first; y < last; ++y) {
                        BlendRow<Traits, decltype(mixer)>(base.Row<Sample>(y), layer.Row<Sample>(y),
                                                          base.GetWidth(), opacity);
                    }
                });
        });
        return error;
    });
}
