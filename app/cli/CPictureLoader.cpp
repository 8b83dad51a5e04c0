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

CPictureLoader::CPictureLoader(const SDocumentOptions& options, CEffectJob& job,
                               IProgressSink& progress)
    : job_(job), pictures_(std::async(std::launch::async, [this, options, &progress] {
          CStoppableProgress stoppable(progress, stops_);
          return ReadPictures(options, stoppable);
      })) {}

CPictureLoader::~CPictureLoader() {
    stops_ = true;
    if (pictures_.valid()) pictures_.wait();
}

bool CPictureLoader::Look() {
    const bool ready = pictures_.valid() &&
                       pictures_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    if (ready) Take();
    return !pictures_.valid();
}

imagefile::CMetadata CPictureLoader::Wait() {
    if (pictures_.valid()) Take();
    if (error_) std::rethrow_exception(error_);
    return metadata_;
}

void CPictureLoader::Take() {
    try {
        SPictures pictures = pictures_.get();
        metadata_ = pictures.input.metadata;
        GivePictures(job_, pictures);
    } catch (...) {
        error_ = std::current_exception();
    }
}
