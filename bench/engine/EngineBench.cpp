// Every transform, and every material at its default parameters, against copying the image.
//   bench-engine --benchmark_filter=CPeriodic3/colour-8
#include <memory>
#include <string>

#include "engine/CContour1.h"
#include "engine/CCotangentLines.h"
#include "engine/CGaps.h"
#include "engine/CGlass.h"
#include "engine/CLuminance.h"
#include "engine/CPeriodic.h"
#include "engine/CTangentPipes.h"
#include "engine/CTerrasseRelief.h"
#include "support/Bench.h"

namespace {

std::string Name(CNPixelFormat format) {
    const char* layouts[] = {"", "grey", "grey-alpha", "colour", "colour-alpha"};
    return std::string(layouts[format.Channels()]) + (format.Is16bit() ? "-16" : "-8");
}

constexpr ENPixelFormat kFormats[] = {ENPixelFormat::Colour8,      ENPixelFormat::Colour16,
                                      ENPixelFormat::Grey8,        ENPixelFormat::GreyAlpha8,
                                      ENPixelFormat::ColourAlpha8, ENPixelFormat::ColourAlpha16};

// The transform over the whole image at its default parameters, into a destination that is ready.
template <class Transform>
void RunTransform(benchmark::State& state, CNPixelFormat format) {
    const CRowIteratorBands source = bench::Photo(format);
    CRowIteratorBands destination;
    destination.Copy(source, 0).ThrowIfFailed();
    bench::AgainstCopy(state, source, [&] {
        CStatusControl status;
        Transform transform;
        for (int i = 0; i < transform.params.Count(); ++i) {
            transform.params[i].value = transform.params[i].defaultValue;
        }
        transform.SetStatus(&status);
        transform.SetImages(&source, &destination);
        transform.Run().ThrowIfFailed();
    });
}

template <class Transform>
void RegisterTransform(const char* name) {
    for (const CNPixelFormat format : kFormats) {
        benchmark::RegisterBenchmark(
            (std::string(name) + "/" + Name(format)).c_str(),
            [format](benchmark::State& state) { RunTransform<Transform>(state, format); })
            ->UseManualTime()
            ->Iterations(7)
            ->Unit(benchmark::kMillisecond);
    }
}

const bool kRegistered = [] {
    RegisterTransform<CLuminance>("CLuminance");
    RegisterTransform<CPeriodic3>("CPeriodic3");
    RegisterTransform<CPeriodic5>("CPeriodic5");
    RegisterTransform<CPeriodic6>("CPeriodic6");
    RegisterTransform<CContour1>("CContour1");
    RegisterTransform<CTerrasseRelief>("CTerrasseRelief");
    RegisterTransform<CGlass>("CGlass");
    RegisterTransform<CCotangentLines>("CCotangentLines");
    RegisterTransform<CTangentPipes>("CTangentPipes");
    RegisterTransform<CGaps>("CGaps");
    return true;
}();

}  // namespace
