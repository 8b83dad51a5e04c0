#include "resources/synthesis/Raster.h"

#include <algorithm>
#include <cmath>

namespace synthesis {
namespace {

// Mean over 2 * radius + 1 samples along each row; beyond the borders the row is mirrored.
Raster BlurAcross(const Raster& picture, int radius) {
    Raster blurred(picture.width, picture.height, picture.channels);
    const int period = 2 * picture.width;
    const auto mirrored = [&](int x) {
        const int wrapped = (x % period + period) % period;
        return wrapped < picture.width ? wrapped : period - 1 - wrapped;
    };
    for (int y = 0; y < picture.height; ++y) {
        for (int c = 0; c < picture.channels; ++c) {
            double sum = 0;
            for (int x = -radius; x < radius; ++x) sum += picture.At(mirrored(x), y)[c];
            for (int x = 0; x < picture.width; ++x) {
                sum += picture.At(mirrored(x + radius), y)[c];
                blurred.At(x, y)[c] = static_cast<float>(sum / (2 * radius + 1));
                sum -= picture.At(mirrored(x - radius), y)[c];
            }
        }
    }
    return blurred;
}

}  // namespace

Raster Transpose(const Raster& picture) {
    Raster turned(picture.height, picture.width, picture.channels);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            std::copy_n(picture.At(x, y), picture.channels, turned.At(y, x));
        }
    }
    return turned;
}

Raster EvenOut(const Raster& picture, int radius) {
    Raster light = picture;
    for (int pass = 0; pass < 4; ++pass) light = Transpose(BlurAcross(light, radius));
    const auto channels = static_cast<std::size_t>(picture.channels);
    std::vector<double> mean(channels);
    for (std::size_t i = 0; i < light.values.size(); ++i) mean[i % channels] += light.values[i];
    const double pixels = static_cast<double>(light.values.size()) / static_cast<double>(channels);
    Raster even = picture;
    for (std::size_t i = 0; i < even.values.size(); ++i) {
        even.values[i] += static_cast<float>(mean[i % channels] / pixels) - light.values[i];
    }
    return even;
}

std::vector<std::uint16_t> ToHeights(const std::vector<float>& values) {
    constexpr std::size_t kBins = 1 << 16;
    constexpr double kWhite = 65535;
    const auto [least, greatest] = std::minmax_element(values.begin(), values.end());
    const double start = *least;
    const double scale = (kBins - 1) / std::max(1e-12, static_cast<double>(*greatest) - start);
    const auto bin = [&](float h) { return static_cast<std::size_t>((h - start) * scale); };
    std::vector<std::size_t> counts(kBins);
    for (const float h : values) ++counts[bin(h)];

    const std::size_t cut = values.size() / 200;
    std::size_t low = 0;
    for (std::size_t seen = counts[0]; seen <= cut && low < kBins - 2;) seen += counts[++low];
    std::size_t high = kBins - 1;
    for (std::size_t seen = counts[high]; seen <= cut && high > low + 1;) seen += counts[--high];

    const auto level = [&](double b, double bias) {
        const double x =
            std::clamp((b - static_cast<double>(low)) / static_cast<double>(high - low), 0.0, 1.0);
        return x / ((1 / bias - 2) * (1 - x) + 1);
    };
    double bias = 0.5;
    double step = 0.1;  // a mean that is far off is kept off: few drops stay drops
    for (int i = 0; i < 12; ++i, step /= 2) {
        double sum = 0;
        for (std::size_t b = 0; b < kBins; ++b) {
            if (counts[b])
                sum += static_cast<double>(counts[b]) * level(static_cast<double>(b), bias);
        }
        bias += sum < 0.5 * static_cast<double>(values.size()) ? step : -step;
    }
    std::vector<std::uint16_t> heights(values.size());
    std::transform(values.begin(), values.end(), heights.begin(), [&](float h) {
        return static_cast<std::uint16_t>(kWhite * level((h - start) * scale, bias) + 0.5);
    });
    return heights;
}

}  // namespace synthesis
