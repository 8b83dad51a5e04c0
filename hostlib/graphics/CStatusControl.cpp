#include "host/graphics/CStatusControl.h"

#include <algorithm>

CStatusControl::CStatusControl(CStatusControl* parent) {
    if (!parent) return;
    sink_ = parent->sink_;
    start_ = parent->BeginStep();
    length_ = parent->length_ / parent->steps_;
    run_start_ = start_;
}

void CStatusControl::SetNumberOfSteps(int steps) {
    steps_ = std::max(steps, 1);
    begun_ = 0;
    in_run_ = false;
}

// Where the next step lies in the whole job. More steps than announced share the last one.
double CStatusControl::BeginStep() {
    const int step = std::min(begun_, steps_ - 1);
    ++begun_;
    in_run_ = false;
    return start_ + length_ * step / steps_;
}

void CStatusControl::SetProgressRange(int range) {
    run_start_ = BeginStep();
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
    return sink_->OnProgress(run_start_ + done * length_ / steps_);
}
