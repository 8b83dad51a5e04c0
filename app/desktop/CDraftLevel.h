#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>

// How far drafts are reduced, chosen by what the last ones took: a level is left for the next
// smaller one when drafts are late, and comes back only when four times their time would be early,
// since it has four times the pixels. In between it stays, so that drafts do not change sharpness
// under a drag. The median of a few counts: the processor may be taken away now and then.
class CDraftLevel {
  public:
    using Duration = std::chrono::duration<double>;

    explicit CDraftLevel(int level) : level_(level) {}

    int Level() const { return level_; }

    // Drafts of Level() take `time`, which is the whole of what the user waits for. `finest` and
    // `coarsest` are the levels that are of use.
    void Took(Duration time, int finest, int coarsest) {
        times_[count_ % times_.size()] = time;
        ++count_;
        if (count_ < times_.size()) return;
        auto sorted = times_;
        std::nth_element(sorted.begin(), sorted.begin() + kLast / 2, sorted.end());
        const Duration median = sorted[kLast / 2];
        if (median > kLate) MoveTo(std::min(level_ + 1, std::max(coarsest, level_)));
        if (median * 4 < kEarly) MoveTo(std::max(level_ - 1, std::min(finest, level_)));
    }
    void MoveTo(int level) {
        if (level != level_) count_ = 0;
        level_ = level;
    }

  private:
    static constexpr Duration kLate{0.018}, kEarly{0.012};
    static constexpr std::size_t kLast = 5;

    int level_;
    std::size_t count_ = 0;  // measured at this level
    std::array<Duration, kLast> times_{};
};
