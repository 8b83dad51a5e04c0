#pragma once

#include <benchmark/benchmark.h>
#include <time.h>

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

// The time that all threads of the process have worked: on a machine that is busy with other
// things, what the work costs shows there, not on the clock.
inline double ProcessorSecondsOf(const auto& work) {
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    };
    const double start = now();
    work();
    return now() - start;
}

inline double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<long>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Runs `work`, which makes `destination` from `source`, and reports megapixels a second and
// "copies": the median over the iterations of its time divided by that of copying the source, both
// taken side by side so that a change of the machine's speed hits both. "work" is the same of the
// time of all processors together.
template <class Work>
void AgainstCopy(benchmark::State& state, const CRowIteratorBands& source, Work&& work) {
    CRowIteratorBands copy;
    copy.Copy(source, 0).ThrowIfFailed();
    work();
    std::vector<double> ratios, work_ratios;
    double seconds = 0;
    for (auto _ : state) {
        const auto make_copy = [&] { copy.Copy(source, 0).ThrowIfFailed(); };
        double copying = 1e9, copying_cost = 1e9, working = 0;
        for (int i = 0; i < 3; ++i) {
            copying_cost = std::min(copying_cost, ProcessorSecondsOf([&] {
                                        copying = std::min(copying, SecondsOf(make_copy));
                                    }));
        }
        const double cost = ProcessorSecondsOf([&] { working = SecondsOf(work); });
        state.SetIterationTime(working);
        seconds += working;
        ratios.push_back(working / copying);
        work_ratios.push_back(cost / copying_cost);
    }
    const double pixels = static_cast<double>(source.GetWidth()) * source.GetHeight();
    state.counters["copies"] = Median(ratios);
    state.counters["work"] = Median(work_ratios);
    state.counters["MP/s"] =
        pixels * 1e-6 * static_cast<double>(ratios.size()) / std::max(seconds, 1e-9);
}

}  // namespace bench
