#include <tbb/global_control.h>

#include "BlurCases.h"
#include "host/graphics/CIoGaussianBlur.h"

namespace {

const bool registered = [] {
    bench::RegisterBlurs("blur", [](benchmark::State& state, const CRowIteratorBands& source,
                                    CRowIteratorBands& destination, double sigma, int threads) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism,
                                        static_cast<std::size_t>(threads));
        bench::AgainstCopy(state, source, [&] {
            CIoGaussianBlur blur(sigma, 3);
            blur(destination, source).ThrowIfFailed();
        });
    });
    return true;
}();

}  // namespace
