#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "app/desktop/CDraftLevel.h"
#include "app/desktop/CPyramid.h"
#include "app/desktop/IDesktop.h"
#include "hostlib/windowing/IToolkit.h"

// Computes previews on a thread of its own, one at a time and always the newest one asked for. A
// preview comes in two stages: a reduced picture, small enough to be there at once, then the exact
// result of the whole picture, the same call that the final run makes. A newer request stops the
// exact stage; the short reduced stage is finished, so that pictures keep coming while a control is
// dragged. All functions are for one thread, which is not the engine's.
class CPreviewEngine {
  public:
    struct SCounters {
        int requested = 0;
        int started = 0;        // requests whose work was begun
        int started_stale = 0;  // of these, ones that were not the newest any more
        int overtaken = 0;      // begun, then stopped by a newer one
        int reduced = 0;        // reduced pictures that were finished
        int finished = 0;       // exact results
    };
    struct SShown {
        std::shared_ptr<const CPyramid> picture;  // empty: none yet
        int request = 0;                          // which one it belongs to, counted from 1
        bool exact = false;
        std::string error;  // why this request has no picture
    };

    // `notify` is called on the engine's thread whenever there is something new to fetch; it
    // returns at once.
    explicit CPreviewEngine(std::function<void()> notify);
    // Stops what is running; the thread has ended when this returns.
    ~CPreviewEngine();
    CPreviewEngine(const CPreviewEngine&) = delete;
    CPreviewEngine& operator=(const CPreviewEngine&) = delete;

    // Replaces whatever was asked for before. Answers the request's number. A draft need not be
    // finer than `shown_level`, the level of the picture that is on the screen.
    int Request(SPreviewSnapshot snapshot, const SLayerMix& mix = {}, int shown_level = 0);
    // Gives up the request that is running or waiting; what is shown stays.
    void Cancel();
    // Whether a request is not finished yet.
    bool IsBusy() const;
    // How far the running stage is, 0 to 1.
    double Progress() const { return progress_; }

    std::shared_ptr<const CPyramid> Original() const;
    SShown Shown() const;
    SCounters Counters() const;

  private:
    using Clock = std::chrono::steady_clock;
    class CStage;
    struct SJob {
        SPreviewSnapshot snapshot;
        SLayerMix mix;
        int shown_level = 0;
        int request = 0;
    };

    void Run();
    std::optional<SJob> Next();
    void Perform(const SJob& job);
    void PrepareSource(const SPreviewSnapshot& snapshot);
    int CoarsestLevel() const;
    int ReducedLevel(const SJob& job);
    bool RunReduced(const SJob& job, int level);
    void RunExact(const SJob& job, bool yields);
    bool WaitForQuiet(const SJob& job);
    bool IsOvertaken(int request) const;
    void CountOvertaken(int request);
    bool IsGivenUp(int request) const;
    void Publish(SShown shown);

    const std::function<void()> notify_;
    std::atomic<int> newest_ = 0;     // the last request's number
    std::atomic<int> cancelled_ = 0;  // requests up to this one are given up
    std::atomic<bool> ending_ = false;
    std::atomic<double> progress_ = 0;

    mutable std::mutex mutex_;  // guards the next ones
    std::condition_variable wake_;
    std::optional<SJob> waiting_;
    bool working_ = false;
    std::shared_ptr<const CPyramid> original_, selection_;
    SShown shown_;
    SCounters counters_;

    std::optional<CDraftLevel> draft_;  // the thread's own
    std::thread thread_;                // last: it uses all of the above
};
