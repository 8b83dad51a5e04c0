#include "host/graphics/CStatusControl.h"

#include <algorithm>

CStatusControl::CStatusControl(CStatusControl* parent) {
    if (!parent) return;
    sink_ = parent->sink_;
    workers_ = parent->workers_;
    share_ = parent->BeginStep();
    run_.start = share_.start;
}

void CStatusControl::SetNumberOfSteps(int steps) {
    steps_ = std::max(steps, 1);
    begun_ = 0;
    in_run_ = false;
}

// Steps end exactly where the next ones begin, so that rounding never makes progress fall.
double CStatusControl::StepStart(int step) const {
    if (step >= steps_) return share_.end;
    return share_.start + (share_.end - share_.start) * step / steps_;
}

// The next step's share. More steps than announced share the last one.
CStatusControl::SShare CStatusControl::BeginStep() {
    const int step = std::min(begun_, steps_ - 1);
    ++begun_;
    in_run_ = false;
    return {StepStart(step), StepStart(step + 1)};
}

void CStatusControl::SetProgressRange(int range) {
    run_ = BeginStep();
    range_ = std::max(range, 1);
    position_ = 0;
    in_run_ = true;
}

int CStatusControl::SetProgress(int position) {
    position_ = position;
    return Report() ? 1 : 0;
}

int CStatusControl::IncrementProgress(int by) { return SetProgress(position_ + by); }

bool CStatusControl::Report() {
    if (!sink_) return false;
    const double done = in_run_ ? std::clamp(position_ / static_cast<double>(range_), 0.0, 1.0) : 0;
    return sink_->OnProgress(done < 1 ? run_.start + done * (run_.end - run_.start) : run_.end);
}
