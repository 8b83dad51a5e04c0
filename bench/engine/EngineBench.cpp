// Every transform, and every material at its default parameters, against copying the image.
//   bench-engine --benchmark_filter=CPeriodic3/colour-8
#include <functional>
#include <string>
#include <vector>

#include "engine/CContour1.h"
#include "engine/CCotangentLines.h"
#include "engine/CGaps.h"
#include "engine/CGlass.h"
#include "engine/CLuminance.h"
#include "engine/CPeriodic.h"
#include "engine/CTangentPipes.h"
#include "engine/CTerrasseRelief.h"
#include "engine/Materials.h"
#include "hostlib/graphics/ParallelRows.h"
#include "support/Bench.h"

namespace {

std::string Name(CNPixelFormat format) {
    const char* layouts[] = {"", "grey", "grey-alpha", "colour", "colour-alpha"};
    return std::string(layouts[format.Channels()]) + (format.Is16bit() ? "-16" : "-8");
}

constexpr ENPixelFormat kFormats[] = {ENPixelFormat::Colour8,      ENPixelFormat::Colour16,
                                      ENPixelFormat::Grey8,        ENPixelFormat::GreyAlpha8,
                                      ENPixelFormat::ColourAlpha8, ENPixelFormat::ColourAlpha16};

void Register(const std::string& name, CNPixelFormat format,
              const std::function<void(benchmark::State&)>& run) {
    benchmark::RegisterBenchmark((name + "/" + Name(format)).c_str(), run)
        ->UseManualTime()
        ->Iterations(7)
        ->Unit(benchmark::kMillisecond);
}

// The transform over the whole image into a destination that is ready, its own parameters as given
// or at their defaults.
template <class Transform>
void RegisterTransform(const char* name, const std::vector<int>& values = {}) {
    for (const CNPixelFormat format : kFormats) {
        Register(name, format, [=](benchmark::State& state) {
            const CRowIteratorBands source = bench::Photo(format);
            CRowIteratorBands destination;
            destination.Copy(source, 0).ThrowIfFailed();
            bench::AgainstCopy(state, source, [&] {
                CStatusControl status;
                status.LendWorkers(&HostRowWorkers());
                Transform transform;
                for (int i = 0; i < transform.params.Count(); ++i) {
                    transform.params[i].value = transform.params[i].defaultValue;
                }
                for (std::size_t i = 0; i < values.size(); ++i) {
                    transform.params[4 + static_cast<int>(i)].value = values[i];
                }
                transform.SetStatus(&status);
                transform.SetImages(&source, &destination);
                transform.Run().ThrowIfFailed();
            });
        });
    }
}

using Material = CErrorAutoThrow(CStatusControl&, CRowIteratorBands&, CRowIteratorBands&);

// The material at the defaults of its command, at 1 to 96 megapixels for the first format.
void RegisterMaterial(const char* name, Material* apply) {
    const auto run = [=](CNPixelFormat format, int width, int height) {
        return [=](benchmark::State& state) {
            CRowIteratorBands source = bench::Photo(format, width, height);
            CRowIteratorBands destination;
            bench::AgainstCopy(state, source, [&] {
                CStatusControl status;
                status.LendWorkers(&HostRowWorkers());
                apply(status, source, destination).ThrowIfFailed();
            });
        };
    };
    for (const CNPixelFormat format : kFormats) Register(name, format, run(format, 6000, 4000));
    Register(std::string(name) + "-1MP", kFormats[0], run(kFormats[0], 1200, 833));
    Register(std::string(name) + "-6MP", kFormats[0], run(kFormats[0], 3000, 2000));
    Register(std::string(name) + "-96MP", kFormats[0], run(kFormats[0], 12000, 8000));
}

const bool kRegistered = [] {
    RegisterTransform<CLuminance>("CLuminance");
    RegisterTransform<CPeriodic3>("CPeriodic3");
    RegisterTransform<CPeriodic5>("CPeriodic5");
    RegisterTransform<CPeriodic6>("CPeriodic6");
    RegisterTransform<CContour1>("CContour1");
    RegisterTransform<CTerrasseRelief>("CTerrasseRelief");
    RegisterTransform<CGlass>("CGlass", {14});
    RegisterTransform<CCotangentLines>("CCotangentLines");
    RegisterTransform<CTangentPipes>("CTangentPipes");
    RegisterTransform<CGaps>("CGaps");
    RegisterMaterial("Sandstone", [](auto& status, auto& from, auto& to) {
        return ApplySandstone(status, from, to, 45, 20, 80, 13, 0xFFFFFF);
    });
    RegisterMaterial("PolishedStone", [](auto& status, auto& from, auto& to) {
        return ApplyPolishedStone(status, from, to, 20, 145, 15, 45, 0xFFFFFF);
    });
    RegisterMaterial("SoftPlastic", [](auto& status, auto& from, auto& to) {
        return ApplySoftPlastic(status, from, to, 20, 14, 32, 45, 0);
    });
    RegisterMaterial("RoughLeather", [](auto& status, auto& from, auto& to) {
        return ApplyRoughLeather(status, from, to, 45, 10, 14, 5, 135, 0xFFFFFF, 0);
    });
    RegisterMaterial("FineLeather", [](auto& status, auto& from, auto& to) {
        return ApplyFineLeather(status, from, to, 30, 40, 40, 4, 250, 0);
    });
    RegisterMaterial("Fur", [](auto& status, auto& from, auto& to) {
        return ApplyFur(status, from, to, 40, 40, 4, 250);
    });
    RegisterMaterial("StrawWall", [](auto& status, auto& from, auto& to) -> CErrorAutoThrow {
        return ApplyStrawWall(status, from, to, 40, 14, 1, 15, 100, 0, 0x555555);
    });
    return true;
}();

}  // namespace
