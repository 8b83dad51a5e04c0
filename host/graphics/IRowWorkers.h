#pragma once

#include <algorithm>
#include <functional>

#include "host/core/CErrorAutoThrow.h"

// The host's threads, lent for work whose parts do not depend on each other. A status control hands
// the service on (CStatusControl::Workers); without one the work is done plainly, row by row on the
// calling thread, which is the reference for what the threads must give.
struct IRowWorkers {
    // Works on rows `first` to `last` - 1. `slot`, from 0 to Threads() - 1, is worked on by one
    // thread at a time: it may have scratch of its own.
    using Work = std::function<void(int first, int last, int slot)>;

    // How many threads at most work at once.
    virtual int Threads() const = 0;
    // Calls `work` for blocks of `block` rows (the last one may be shorter) that cover the rows 0
    // to `rows` - 1, in any order, on the calling thread and others, and returns when all are done.
    // Throws what a block has thrown; some of the others have then not run.
    virtual void ForEachBlock(int rows, int block, const Work& work) = 0;

  protected:
    ~IRowWorkers() = default;
};

// How many blocks each thread is given between two looks at progress: few enough that cancelling is
// answered at once, enough that the threads seldom wait for each other.
inline constexpr int kBlocksBetweenSteps = 8;

// Goes through `count` steps in order, of which stretches are worked on at once. For each stretch
// asks `step(k)` for all of its steps, then calls `stretch(first, last)` for those allowed: a
// nonzero answer to step k ends the work with error 100 when exactly the steps before k are done,
// as if they had been done one by one. `length` is that of a stretch.
template <class Step, class Stretch>
CErrorAutoThrow ForEachStretch(int count, int length, Step&& step, Stretch&& stretch) {
    for (int first = 0; first < count; first += length) {
        const int last = first + std::min(length, count - first);
        int allowed = first;
        while (allowed < last && step(allowed) == 0) ++allowed;
        if (allowed > first) stretch(first, allowed);
        if (allowed < last) return TolmErrorCode::Cancelled;
    }
    return {};
}

// The same for `rows` rows that do not depend on each other: `work(first, last, slot)` runs on
// blocks of `block` rows on the threads of `workers` or, when that is null, on single rows between
// steps.
template <class Step, class Work>
CErrorAutoThrow ForEachRow(IRowWorkers* workers, int rows, int block, Step&& step, Work&& work) {
    if (!workers) {
        return ForEachStretch(rows, 1, step, [&](int first, int last) { work(first, last, 0); });
    }
    return ForEachStretch(
        rows, block * kBlocksBetweenSteps * workers->Threads(), step, [&](int start, int end) {
            workers->ForEachBlock(end - start, block, [&](int first, int last, int slot) {
                work(start + first, start + last, slot);
            });
        });
}

// `work(first, last)` on blocks of `block` of the numbers 0 to `count` - 1, on the threads of
// `workers`; on all of them at once when that is null.
template <class Work>
void ForEachBlock(IRowWorkers* workers, int count, int block, Work&& work) {
    if (!workers) return work(0, count);
    workers->ForEachBlock(count, block,
                          [&](int first, int last, int /*slot*/) { work(first, last); });
}
