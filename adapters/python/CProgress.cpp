#include "adapters/python/CProgress.h"

namespace py = pybind11;

namespace {

constexpr int kSteps = 200;  // of progress that a caller is told of
constexpr std::chrono::milliseconds kBetweenLooks{20};

bool IsMainThread() {
    const py::module_ threading = py::module_::import("threading");
    return threading.attr("current_thread")().is(threading.attr("main_thread")());
}

}  // namespace

CProgress::CProgress(py::object callback)
    : callback_(std::move(callback)), looks_for_signals_(IsMainThread()) {}

int CProgress::Told(double fraction, void* progress) {
    return static_cast<CProgress*>(progress)->Tell(fraction) ? 1 : 0;
}

bool CProgress::Tell(double fraction) {
    const int step = static_cast<int>(fraction * kSteps);
    const bool is_news = step != step_ && !callback_.is_none();
    const Clock::time_point now = Clock::now();
    const bool looks = looks_for_signals_ && now - looked_ >= kBetweenLooks;
    if (!is_news && !looks) return false;
    const py::gil_scoped_acquire lock;
    try {
        if (looks) {
            looked_ = now;
            if (PyErr_CheckSignals() != 0) throw py::error_already_set();
        }
        if (!is_news) return false;
        step_ = step;
        return py::bool_(callback_(fraction));
    } catch (const py::error_already_set& error) {
        error_ = error;
        return true;
    }
}

void CProgress::Rethrow() const {
    if (error_) throw py::error_already_set(*error_);
}
