#include "hostlib/system/AllCores.h"

#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <atomic>

namespace {

using Work = std::function<void(int)>;

// TBB is built without the thread sanitizer, which therefore does not see how it hands over a task
// and waits for it. This tells it: what was ready when the tasks were made is ready in each, and
// what they have done is done after the last.
class CHandOver {
  public:
    void Give() { ++sign_; }
    void Take() const { sign_.load(); }

  private:
    std::atomic<int> sign_{0};
};

struct CGiveAtEnd {
    CHandOver& hand_over;
    ~CGiveAtEnd() { hand_over.Give(); }
};

void Help(const Work& work, CHandOver& hand_over, int slot) {
    hand_over.Take();
    const CGiveAtEnd end{hand_over};
    work(slot);
}

// What TBB holds of a helper: not watched, as it was handed over out of sight.
struct CTask {
    const Work& work;
    CHandOver& hand_over;
    int slot;
    __attribute__((no_sanitize("thread"))) void operator()() const { Help(work, hand_over, slot); }
};

}  // namespace

int CoreCount() { return tbb::this_task_arena::max_concurrency(); }

void OnAllCores(int threads, const Work& work) {
    CHandOver hand_over;
    hand_over.Give();
    // Isolation keeps the calling thread from picking up foreign tasks while it waits.
    tbb::this_task_arena::isolate([&] {
        tbb::task_group helpers;
        for (int slot = 1; slot < threads; ++slot) helpers.run(CTask{work, hand_over, slot});
        try {
            work(0);
        } catch (...) {
            helpers.cancel();
            helpers.wait();
            throw;
        }
        helpers.wait();
    });
    hand_over.Take();
}
