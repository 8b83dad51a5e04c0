#pragma once

#include <benchmark/benchmark.h>

#include <string>

#include "support/Bench.h"

namespace bench {

// Registers `blur(state, source, destination, sigma, threads)` as "<name>/<format>/sigma:<sigma>/
// threads:<threads>" for the formats, strengths and threads at which blurs are compared.
template <class Blur>
void RegisterBlurs(const std::string& name, Blur blur) {
    const struct {
        const char* name;
        ENPixelFormat format;
    } formats[] = {{"colour-8", ENPixelFormat::Colour8},
                   {"colour-16", ENPixelFormat::Colour16},
                   {"grey-8", ENPixelFormat::Grey8}};
    for (const auto& format : formats) {
        for (const double sigma : {0.8, 2.0, 4.0, 20.0}) {
            for (const int threads : {1, 2}) {
                const std::string title = name + "/" + format.name + "/sigma:" +
                                          std::to_string(sigma).substr(0, sigma < 10 ? 3 : 2) +
                                          "/threads:" + std::to_string(threads);
                const auto run = [=, code = format.format](benchmark::State& state) {
                    const CRowIteratorBands source = Photo(code);
                    CRowIteratorBands destination;
                    destination.Copy(source, 0).ThrowIfFailed();
                    blur(state, source, destination, sigma, threads);
                };
                benchmark::RegisterBenchmark(title.c_str(), run)
                    ->UseManualTime()
                    ->Iterations(7)
                    ->Unit(benchmark::kMillisecond);
            }
        }
    }
}

}  // namespace bench
