#include <tbb/global_control.h>

#include <stdexcept>
#include <string>

#include "app/imagefile/CPictureFiles.h"
#include "hostlib/graphics/PixelBudget.h"
#include "job/CJobLibrary.h"
#include "support/Bench.h"

// Every effect at its defaults, as a job on a picture in memory, in 8-bit colour:
//   bench-jobs --benchmark_filter='Sandstone/megapixels:24/threads:2'
// bench/tables.sh makes tables of all.
namespace {

struct SSize {
    int megapixels, width, height, iterations;
};
constexpr SSize kSizes[] = {
    {1, 1200, 833, 15}, {6, 3000, 2000, 9}, {24, 6000, 4000, 5}, {96, 12000, 8000, 3}};

// One picture at a time: the largest takes longer to make than to work on.
const CRowIteratorBands& Photo(const SSize& size) {
    static CRowIteratorBands photo;
    if (photo.GetWidth() != size.width) {
        photo.Destroy();
        photo = bench::Photo(ENPixelFormat::Colour8, size.width, size.height);
    }
    return photo;
}

void Register(CJobLibrary& library, const std::string& name, const SSize& size, int threads) {
    const auto run = [&library, name, size, threads](benchmark::State& state) {
        const CRowIteratorBands& photo = Photo(size);
        CEffectJob job = library.MakeJob(name);
        job.SetPicture(photo);
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism,
                                        static_cast<std::size_t>(threads));
        bench::AgainstCopy(state, photo, [&] {
            if (job.Run().error) throw std::runtime_error("the job failed");
        });
    };
    const std::string title = name + "/megapixels:" + std::to_string(size.megapixels) +
                              "/threads:" + std::to_string(threads);
    benchmark::RegisterBenchmark(title.c_str(), run)
        ->UseManualTime()
        ->Iterations(size.iterations)
        ->Unit(benchmark::kMillisecond);
}

const bool registered = [] {
    // As in a batch: else the system's clearing of fresh memory is what most effects wait for.
    SetPixelBudget({.spare = std::uint64_t{1} << 30});
    static CJobLibrary library({.pictures = imagefile::MakePictureFiles()});
    for (const SSize& size : kSizes) {
        for (const std::string& name : library.Names()) {
            for (const int threads : {1, 2}) Register(library, name, size, threads);
        }
    }
    return true;
}();

}  // namespace
