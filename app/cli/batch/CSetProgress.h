#pragma once

#include <string>

#include "app/cli/CProgress.h"
#include "app/cli/batch/CBatchRun.h"

// Shows on stderr how far a batch is: on a terminal one line that redraws itself; asked for without
// one, a line every tenth of the way.
class CSetProgress {
  public:
    explicit CSetProgress(CProgress::EStyle style) : style_(style) {}
    ~CSetProgress();
    CSetProgress(const CSetProgress&) = delete;
    CSetProgress& operator=(const CSetProgress&) = delete;

    void Show(const SBatchTotals& totals);

  private:
    CProgress::EStyle style_;
    std::size_t last_tenth_ = 0;
    bool is_drawn_ = false;
};

// "198 done, 2 failed, 0 skipped", with what is left, if anything is.
std::string Counts(const SBatchTotals& totals);
// "12.3 pictures/s, 24.6 megapixels/s".
std::string Rates(const SBatchTotals& totals);
