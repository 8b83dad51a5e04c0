#include <stdexcept>

#include "capi/cmdtexture.h"
#include "job/CJobLibrary.h"
#include "support/Bench.h"

// What a call of the C interface costs beside the effect that it runs, on a picture in memory that
// is changed in place. "effect" is the job alone on the host's own picture, "call" the call, both
// in copies of the processors' time; "beyond" is the difference, which a caller pays for the
// interface. "clock" is that difference by the clock, of the shortest times, of which the call's is
// the time reported.
namespace {

struct SFree {
    void operator()(cmdtexture_library* library) const { cmdtexture_close(library); }
    void operator()(cmdtexture_effect* effect) const { cmdtexture_effect_free(effect); }
};

void Require(cmdtexture_status status) {
    if (status != CMDTEXTURE_OK) throw std::runtime_error("a call failed");
}

// Arguments: layout, depth, kilopixels.
void Call(benchmark::State& state, const char* name) {
    const auto layout = static_cast<cmdtexture_layout>(state.range(0));
    const int depth = static_cast<int>(state.range(1));
    const int height = state.range(2) >= 24000 ? 4000 : state.range(2) >= 2000 ? 1250 : 500;
    const int width = static_cast<int>(state.range(2) * 1000 / height);
    const int channels = layout <= CMDTEXTURE_RGBA ? layout : layout - 2;
    const CRowIteratorBands photo =
        bench::Photo(CNPixelFormat::Of(channels, depth == 16), width, height);

    const CJobLibrary jobs;
    CEffectJob job = jobs.MakeJob(name);
    job.SetPicture(photo);

    cmdtexture_library* opened = nullptr;
    Require(cmdtexture_open(nullptr, &opened, nullptr));
    const std::unique_ptr<cmdtexture_library, SFree> library(opened);
    cmdtexture_effect* made = nullptr;
    Require(cmdtexture_effect_new(opened, name, &made, nullptr));
    const std::unique_ptr<cmdtexture_effect, SFree> effect(made);
    CRowIteratorBands destination;
    destination.Copy(photo, 0).ThrowIfFailed();
    cmdtexture_image image{};
    image.size = sizeof image;
    image.pixels = destination.Row<std::uint8_t>(0);
    image.stride = destination.Stride();
    image.width = width;
    image.height = height;
    image.layout = layout;
    image.depth = depth;

    const auto run = [&] {
        if (job.Run().error) throw std::runtime_error("the job failed");
    };
    const auto call = [&] {
        Require(cmdtexture_effect_apply(effect.get(), &image, &image, nullptr, nullptr));
    };
    CRowIteratorBands copy;
    const auto make_copy = [&] { copy.Copy(photo, 0).ThrowIfFailed(); };
    run();
    call();
    make_copy();
    std::vector<double> effects, calls, beyond;
    double copy_time = 1e9, run_time = 1e9, call_time = 1e9;
    // Answers the processors' seconds; `least` is the shortest time by the clock so far.
    const auto measure = [](double& least, const auto& work) {
        double cost = 0;
        const double time = bench::SecondsOf([&] { cost = bench::ProcessorSecondsOf(work); });
        least = std::min(least, time);
        return cost;
    };
    while (state.KeepRunning()) {
        double copying = 1e9;
        for (int i = 0; i < 3; ++i) copying = std::min(copying, measure(copy_time, make_copy));
        effects.push_back(measure(run_time, run) / copying);
        calls.push_back(measure(call_time, call) / copying);
        beyond.push_back(calls.back() - effects.back());
        state.SetIterationTime(call_time);
    }
    state.counters["clock"] = (call_time - run_time) / copy_time;
    state.counters["effect"] = bench::Median(effects);
    state.counters["call"] = bench::Median(calls);
    state.counters["beyond"] = bench::Median(beyond);
}

void Cases(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"layout", "depth", "kilopixels"})
        ->ArgsProduct({{CMDTEXTURE_RGB, CMDTEXTURE_BGR}, {8}, {250, 2000, 24000}})
        ->ArgsProduct({{CMDTEXTURE_RGBA}, {16}, {24000}})
        ->UseManualTime()
        ->Iterations(15)
        ->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(Call, Sandstone, "Sandstone")->Apply(Cases);
BENCHMARK_CAPTURE(Call, Weave, "Weave")->Apply(Cases);

}  // namespace
