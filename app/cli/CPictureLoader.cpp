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
    : pictures_(std::async(std::launch::async, [this, options, &progress] {
          CStoppableProgress stoppable(progress, stops_);
          return ReadPictures(options, stoppable);
      })) {}

CPictureLoader::~CPictureLoader() {
    stops_ = true;
    if (pictures_.valid()) pictures_.wait();
}

bool CPictureLoader::IsDone() const {
    return pictures_.valid() &&
           pictures_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}
