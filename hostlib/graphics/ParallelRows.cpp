#include "hostlib/graphics/ParallelRows.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>

#include "hostlib/system/AllCores.h"

namespace {

// Blocks that any number of threads take one after the other until none is left, one has thrown or
// the user cancels.
class CBlockQueue {
  public:
    CBlockQueue(int rows, int block, const IRowWorkers::Work& work)
        : rows_(rows), block_(block), count_((rows - 1) / block + 1), work_(work) {}

    int Count() const { return count_; }
    int Done() const { return done_; }
    bool Cancelled() const { return cancelled_; }

    // Works on blocks; before each asks `cancelled`, with the number of rows done so far. Each call
    // has a slot of its own.
    template <class Cancelled>
    void Drain(int slot, Cancelled&& cancelled) noexcept {
        while (!stop_) {
            if (cancelled(Done())) {
                cancelled_ = true;
                stop_ = true;
                return;
            }
            const int index = next_++;
            if (index >= count_) return;
            Run(index, slot);
        }
    }

    // After all threads have left Drain: throws what a block has thrown.
    void Rethrow() const {
        if (error_) std::rethrow_exception(error_);
    }

  private:
    void Run(int index, int slot) noexcept {
        const int first = index * block_;
        const int last = first + std::min(block_, rows_ - first);
        try {
            work_(first, last, slot);
            done_ += last - first;
        } catch (...) {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (!error_) error_ = std::current_exception();
            stop_ = true;
        }
    }

    const int rows_;
    const int block_;
    const int count_;
    const IRowWorkers::Work& work_;
    std::atomic<int> next_{0};
    std::atomic<int> done_{0};
    std::atomic<bool> stop_{false};
    std::atomic<bool> cancelled_{false};
    std::mutex mutex_;
    std::exception_ptr error_;
};

// The calling thread takes blocks like every other one and is never waited for, so the work gets
// done even when no worker is free.
void Drain(CBlockQueue& queue, CStatusControl* status) {
    OnAllCores(std::min(CoreCount(), queue.Count()), [&](int slot) {
        queue.Drain(
            slot, [&](int done) { return slot == 0 && status && status->SetProgress(done) != 0; });
    });
}

class CHostRowWorkers : public IRowWorkers {
  public:
    int Threads() const override { return CoreCount(); }
    void ForEachBlock(int rows, int block, const Work& work) override {
        if (rows < 1) return;
        CBlockQueue queue(rows, std::clamp(block, 1, rows), work);
        Drain(queue, nullptr);
        queue.Rethrow();
    }
};

}  // namespace

IRowWorkers& HostRowWorkers() {
    static CHostRowWorkers workers;
    return workers;
}

CErrorAutoThrow ForEachRowBlock(CStatusControl* status, int rows, int block,
                                const std::function<void(int first, int last)>& work) {
    if (rows < 1) return {};
    return CatchErrors([&]() -> CErrorAutoThrow {
        const auto slotless = [&](int first, int last, int /*slot*/) { work(first, last); };
        const IRowWorkers::Work block_work = slotless;
        CBlockQueue queue(rows, std::clamp(block, 1, rows), block_work);
        if (status) status->SetProgressRange(rows);
        Drain(queue, status);
        queue.Rethrow();
        const bool cancelled = queue.Cancelled() || (status && status->SetProgress(rows) != 0);
        return cancelled ? TolmErrorCode::Cancelled : TolmErrorCode::Success;
    });
}
