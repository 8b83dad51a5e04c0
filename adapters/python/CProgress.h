#pragma once

#include <pybind11/pybind11.h>

#include <chrono>
#include <optional>

// What a run tells and asks meanwhile, on the thread that called and without the interpreter's
// lock: the caller's function, and on the main thread whether Ctrl-C was pressed. The lock is taken
// for what there is to say only, as other threads keep it for milliseconds.
class CProgress {
  public:
    // `callback` may be None; a true answer of it stops the run, as an exception does.
    explicit CProgress(pybind11::object callback);

    // The progress function of the C interface; `progress` is a CProgress.
    static int Told(double fraction, void* progress);
    // Throws the exception that stopped the run, if one did.
    void Rethrow() const;

  private:
    using Clock = std::chrono::steady_clock;
    bool Tell(double fraction);

    pybind11::object callback_;
    bool looks_for_signals_;
    Clock::time_point looked_ = Clock::now();
    int step_ = 0;
    std::optional<pybind11::error_already_set> error_;
};
