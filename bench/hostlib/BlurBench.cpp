#include <tbb/global_control.h>

#include <chrono>

#include "BlurCases.h"
#include "host/graphics/CIoGaussianBlur.h"

namespace {

// The longest time without a question whether the user cancelled.
class SilenceSink : public IProgressSink {
  public:
    void Start() { last_ = Clock::now(); }
    bool OnProgress(double) override {
        const Clock::time_point now = Clock::now();
        longest_ = std::max(longest_, now - last_);
        last_ = now;
        return false;
    }
    double LongestMs() const { return std::chrono::duration<double, std::milli>(longest_).count(); }

  private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point last_;
    Clock::duration longest_{};
};

const bool registered = [] {
    bench::RegisterBlurs("blur", [](benchmark::State& state, const CRowIteratorBands& source,
                                    CRowIteratorBands& destination, double sigma, int threads) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism,
                                        static_cast<std::size_t>(threads));
        SilenceSink sink;
        bench::AgainstCopy(state, source, [&] {
            sink.Start();
            CStatusControl status(&sink);
            CIoGaussianBlur blur(sigma, 3);
            blur.SetStatusControl(&status);
            blur(destination, source).ThrowIfFailed();
        });
        state.counters["silence_ms"] = sink.LongestMs();
    });
    return true;
}();

}  // namespace
