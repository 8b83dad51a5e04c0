#include "app/cli/CPictureLoader.h"

#include <chrono>

namespace {

class CStoppableProgress final : public IProgressSink {
  public:
    CStoppableProgress(IProgressSink& progress, const std::atomic<bool>& stops)
        : progress_(progress), stops_(stops) {}
    bool OnProgress(double fraction) override { return progress_.OnProgress(fraction) || stops_; }

  private:
    IProgressSink& progress_;
    const std::atomic<bool>& stops_;
};

}  // namespace

CPictureLoader::CPictureLoader(const SDocumentOptions& options, IProgressSink& progress)
    : reading_(std::async(std::launch::async, [this, options, &progress] {
          CStoppableProgress stoppable(progress, stops_);
          LimitMemory(options);
          return ReadPictures(options, stoppable);
      })) {}

CPictureLoader::~CPictureLoader() {
    stops_ = true;
    if (reading_.valid()) reading_.wait();
}

bool CPictureLoader::Look() {
    const bool ready =
        reading_.valid() && reading_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    if (ready) Take();
    return !reading_.valid();
}

const SPictures& CPictureLoader::Wait() {
    if (reading_.valid()) Take();
    if (error_) std::rethrow_exception(error_);
    return pictures_;
}

void CPictureLoader::Take() {
    try {
        pictures_ = reading_.get();
    } catch (...) {
        error_ = std::current_exception();
    }
}
