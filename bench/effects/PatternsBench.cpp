#include "effects/Blinds.h"
#include "effects/Weave.h"
#include "hostlib/graphics/ParallelRows.h"
#include "support/Bench.h"

namespace {

// A picture of 24 megapixels, kept for the benchmarks that follow with the same format.
const CRowIteratorBands& Source(std::int64_t format_code) {
    static CRowIteratorBands photo;
    const auto format = static_cast<ENPixelFormat>(format_code);
    if (!photo.IsAttached() || photo.GetPixelFormat() != format) photo = bench::Photo(format);
    return photo;
}

// Arguments: format code, slat width, horizontal, light from left or top.
void Blinds(benchmark::State& state) {
    const CRowIteratorBands& source = Source(state.range(0));
    CRowIteratorBands destination;
    bench::AgainstCopy(state, source, [&] {
        CStatusControl status;
        status.LendWorkers(&HostRowWorkers());
        ApplyBlinds(&status, source, destination, static_cast<int>(state.range(1)), 100,
                    state.range(2) != 0, state.range(3) != 0, 0x4080C0, source.GetHeight())
            .ThrowIfFailed();
    });
}
BENCHMARK(Blinds)
    ->ArgNames({"format", "width", "horizontal", "light"})
    ->ArgsProduct({{5, 6, 7, 8, 10, 11, 12, 13}, {20}, {0, 1}, {0, 1}})
    ->ArgsProduct({{7, 12}, {2, 60, 61, 1000, 6000}, {0, 1}, {1}})
    ->UseManualTime()
    ->Iterations(9)
    ->Unit(benchmark::kMillisecond);

// Arguments: format code, thread width, gap width, fill gaps.
void Weave(benchmark::State& state) {
    CRowIteratorBands source = Source(state.range(0));
    CRowIteratorBands destination;
    bench::AgainstCopy(state, source, [&] {
        CStatusControl status;
        status.LendWorkers(&HostRowWorkers());
        ApplyWeave(&status, source, destination, static_cast<int>(state.range(1)),
                   static_cast<int>(state.range(2)), 100, 0x4080C0, 0, state.range(3) != 0,
                   source.GetHeight())
            .ThrowIfFailed();
    });
}
BENCHMARK(Weave)
    ->ArgNames({"format", "weave", "gap", "fill"})
    ->ArgsProduct({{5, 6, 7, 8}, {75}, {25}, {0, 1}})
    ->ArgsProduct({{7}, {1}, {1}, {1}})
    ->ArgsProduct({{7}, {6000}, {6000}, {1}})
    ->UseManualTime()
    ->Iterations(9)
    ->Unit(benchmark::kMillisecond);

}  // namespace
