#pragma once

#include "host/core/HostApi.h"

struct IRowWorkers;

// Receives the progress of a whole job. `fraction` runs from 0 to 1 and never falls; answering
// true asks the job to stop. Called on the thread that works.
struct IProgressSink {
    virtual bool OnProgress(double fraction) = 0;

  protected:
    ~IProgressSink() = default;
};

// Progress and cancellation of one operation. A routine sets a range, then reports once a row or
// stroke; a nonzero answer means that the user cancelled. An operation made of steps says how many;
// each child constructed on a control, and each range set on the control itself, is its next step.
// It also carries the threads that the host lends to the operation. Not for use by several threads
// at once.
class HOST_API CStatusControl {
  public:
    // A root: reports to `sink`, which outlives it; null reports to nobody and is never cancelled.
    explicit CStatusControl(IProgressSink* sink = nullptr) : sink_(sink) {}
    // A child, which is the next step of `parent` (null makes a root that reports to nobody).
    explicit CStatusControl(CStatusControl* parent);
    CStatusControl(const CStatusControl&) = delete;
    CStatusControl& operator=(const CStatusControl&) = delete;

    // The operation has `steps` (at least 1) parts of equal weight.
    void SetNumberOfSteps(int steps);
    // A run of `range` steps of progress begins. A range below 1 counts as 1.
    void SetProgressRange(int range);
    // The run stands at `position` (or `by` further); nonzero when the user cancelled.
    int SetProgress(int position);
    int IncrementProgress(int by);

    // The host's threads for the operation, which outlive it; null, as at the start, lends none.
    // Children have their parent's.
    void LendWorkers(IRowWorkers* workers) { workers_ = workers; }
    IRowWorkers* Workers() const { return workers_; }

  private:
    struct SShare {  // of the whole job: where it begins and ends
        double start = 0.0;
        double end = 1.0;
    };
    bool Report();
    SShare BeginStep();
    double StepStart(int step) const;

    IProgressSink* sink_ = nullptr;
    IRowWorkers* workers_ = nullptr;
    SShare share_;
    int steps_ = 1;
    int begun_ = 0;
    SShare run_;
    int range_ = 1;
    int position_ = 0;
    bool in_run_ = false;
};
