#pragma once

#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <string>
#include <vector>

#include "app/cli/batch/BatchPlan.h"
#include "app/cli/batch/CMemoryLedger.h"

class CBatchLog;
class CCliError;

// How far a batch is.
struct SBatchTotals {
    std::size_t pictures = 0, done = 0, skipped = 0, failed = 0, warnings = 0;
    double megapixels = 0;                         // of those done
    double seconds = 0;                            // since the start
    int status = 0;                                // the worst of the failures'
    std::vector<nlohmann::ordered_json> failures;  // their lines in the log

    std::size_t Left() const { return pictures - done - skipped - failed; }
};

// Of two exit statuses the worse: a fault of ours is the worst, then the larger number.
int WorseStatus(int a, int b);

// Does what a plan says: pictures are decoded, worked on and encoded by several threads, each with
// one of its own, as many at once as --jobs and --max-memory allow. What the log has as done, and
// is still there and whole, is skipped. After a wish to stop, or a failure with --stop-on-error,
// none is begun, and those in hand are finished.
class CBatchRun {
  public:
    CBatchRun(const SBatchPlan& plan, const SBatchOptions& options, CBatchLog& log);

    // Returns when all threads have ended; `show` is called a few times a second meanwhile. Throws
    // CCliError when the log cannot be written.
    SBatchTotals Run(const std::function<void(const SBatchTotals&)>& show);

  private:
    void Work() noexcept;
    void Process(const SBatchItem& item);
    bool IsDone(const SBatchItem& item) const;
    bool IsWanted(const SBatchItem& item) const;
    nlohmann::ordered_json Make(const SBatchItem& item);
    void LogFailure(const SBatchItem& item, const CCliError& error);
    void LogPlan();
    bool Stops() const;
    template <class Change>
    void Count(Change&& change) {
        const std::lock_guard lock(mutex_);
        change(totals_);
    }

    const SBatchPlan& plan_;
    const SBatchOptions& options_;
    CBatchLog& log_;
    CMemoryLedger memory_;
    int threads_;
    std::atomic<std::size_t> next_ = 0;
    std::atomic<bool> stops_ = false;
    std::mutex mutex_;  // of what follows
    SBatchTotals totals_;
    std::exception_ptr error_;
};
