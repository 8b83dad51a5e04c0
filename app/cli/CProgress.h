#pragma once

#include <chrono>
#include <string>

#include "host/graphics/CStatusControl.h"

// Shows how far the program is, on stderr, and passes the user's wish to stop to the job. On a
// terminal it is a bar that redraws itself; asked for without one, a line every tenth of the way.
class CProgress : public IProgressSink {
  public:
    enum class EStyle { None, Bar, Lines };
    // The style for the program's options.
    static EStyle StyleFor(bool quiet, bool asked_for);

    // `shared` hears of the whole's progress as well, and may stop it, too; null for none.
    explicit CProgress(EStyle style, IProgressSink* shared = nullptr)
        : style_(style), shared_(shared) {}
    ~CProgress();
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    // The next part of the work begins; it takes the whole from here to `until` (0 to 1).
    void BeginPart(const std::string& name, double until);
    bool OnProgress(double fraction) override;

  private:
    void Draw(double done);

    EStyle style_;
    IProgressSink* shared_;
    std::string part_;
    double from_ = 0;
    double until_ = 0;
    int last_step_ = -1;
    std::chrono::steady_clock::time_point last_drawn_{};
};
