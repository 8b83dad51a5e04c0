// The autocorrelation of a picture that tiles, by way of its power spectrum.
#include <cmath>
#include <complex>
#include <numbers>

#include "resources/synthesis/Raster.h"

namespace synthesis {
namespace {

using Complex = std::complex<double>;

// Fourier transform of `count` values, a power of two, that lie `stride` apart.
void Transform(Complex* values, std::size_t count, std::size_t stride) {
    for (std::size_t i = 1, j = 0; i < count; ++i) {
        std::size_t bit = count >> 1;
        for (; j & bit; bit >>= 1) j ^= bit;
        j ^= bit;
        if (i < j) std::swap(values[i * stride], values[j * stride]);
    }
    for (std::size_t length = 2; length <= count; length *= 2) {
        const Complex step = std::polar(1.0, -2 * std::numbers::pi / static_cast<double>(length));
        for (std::size_t start = 0; start < count; start += length) {
            Complex turn = 1;
            for (std::size_t k = 0; k < length / 2; ++k, turn *= step) {
                Complex& low = values[(start + k) * stride];
                Complex& high = values[(start + k + length / 2) * stride];
                const Complex odd = turn * high;
                high = low - odd;
                low += odd;
            }
        }
    }
}

void Transform(std::vector<Complex>& values, std::size_t width, std::size_t height) {
    for (std::size_t y = 0; y < height; ++y) Transform(values.data() + y * width, width, 1);
    for (std::size_t x = 0; x < width; ++x) Transform(values.data() + x, height, width);
}

}  // namespace

Repeat StrongestRepeat(const Raster& picture, int nearest) {
    const auto width = static_cast<std::size_t>(picture.width);
    const auto height = static_cast<std::size_t>(picture.height);
    std::vector<Complex> values(picture.values.begin(), picture.values.end());
    Transform(values, width, height);
    for (Complex& value : values) value = std::norm(value);
    values[0] = 0;  // the mean is no likeness
    Transform(values, width, height);
    Repeat strongest{0, 0, -1};
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const double dx = std::min(x, picture.width - x);
            const double dy = std::min(y, picture.height - y);
            if (dx * dx + dy * dy < static_cast<double>(nearest) * nearest) continue;
            const double strength = values[picture.Index(x, y)].real() / values[0].real();
            if (strength > strongest.strength) strongest = {x, y, strength};
        }
    }
    return strongest;
}

}  // namespace synthesis
