#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <vector>

#include "host/core/RuntimeRandom.h"
#include "host/graphics/CRowIteratorBands.h"

// What the benchmarks share: a large picture with soft shapes, edges and noise, and the time that
// copying it takes in the same process, against which every result is given as a ratio.
namespace bench {

inline CRowIteratorBands Photo(CNPixelFormat format, int width = 6000, int height = 4000) {
    CRowIteratorBands image;
    image.Create(width, height, format).ThrowIfFailed();
    CRuntimeRandom random(7);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < format.Channels(); ++c) {
                const int soft = (x * (c + 2) / 37 + y * (4 - c) / 29) % 256;
                const int edge = ((x / 97 + y / 131) % 2) * 40;
                const int value = std::clamp(soft + edge - 20 + random.Next() % 9, 0, 255);
                const int at = x * format.Channels() + c;
                if (format.Is16bit()) {
                    image.Row<std::uint16_t>(y)[at] = static_cast<std::uint16_t>(value * 257);
                } else {
                    image.Row<std::uint8_t>(y)[at] = static_cast<std::uint8_t>(value);
                }
            }
        }
    }
    return image;
}

inline double SecondsOf(const auto& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Runs `work`, which makes `destination` from `source`, and reports megapixels a second and
// "copies": the median over the iterations of its time divided by that of copying the source, both
// taken side by side so that a change of the machine's speed hits both.
template <class Work>
void AgainstCopy(benchmark::State& state, const CRowIteratorBands& source, Work&& work) {
    CRowIteratorBands copy;
    copy.Copy(source, 0).ThrowIfFailed();
    work();
    std::vector<double> ratios;
    double seconds = 0;
    for (auto _ : state) {
        const double copying = std::min(SecondsOf([&] { copy.Copy(source, 0).ThrowIfFailed(); }),
                                        SecondsOf([&] { copy.Copy(source, 0).ThrowIfFailed(); }));
        const double working = SecondsOf(work);
        state.SetIterationTime(working);
        seconds += working;
        ratios.push_back(working / copying);
    }
    std::nth_element(ratios.begin(), ratios.begin() + static_cast<long>(ratios.size() / 2),
                     ratios.end());
    const double pixels = static_cast<double>(source.GetWidth()) * source.GetHeight();
    state.counters["copies"] = ratios[ratios.size() / 2];
    state.counters["MP/s"] =
        pixels * 1e-6 * static_cast<double>(ratios.size()) / std::max(seconds, 1e-9);
}

}  // namespace bench
