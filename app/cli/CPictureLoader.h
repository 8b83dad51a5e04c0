#pragma once

#include <atomic>
#include <exception>
#include <future>

#include "app/cli/Document.h"

// Reads a job's picture and selection on a thread of its own, so that a window can be up before
// they are there. The job gets them on the thread that asks.
class CPictureLoader {
  public:
    // Begins at once. The progress is reported on the loader's thread until it is done.
    CPictureLoader(const SDocumentOptions& options, CEffectJob& job, IProgressSink& progress);
    // Stops what is not done; the thread has ended when this returns.
    ~CPictureLoader();
    CPictureLoader(const CPictureLoader&) = delete;
    CPictureLoader& operator=(const CPictureLoader&) = delete;

    // Whether the job has the picture now, or will get none.
    bool Look();
    // Waits for the picture and answers its metadata; throws what the reading threw.
    imagefile::CMetadata Wait();

  private:
    void Take();

    CEffectJob& job_;
    std::atomic<bool> stops_ = false;
    std::future<SPictures> pictures_;  // until they are taken
    imagefile::CMetadata metadata_;
    std::exception_ptr error_;
};
