#pragma once

#include <atomic>
#include <exception>
#include <future>

#include "app/cli/Document.h"

// Reads a picture and the selection for it on a thread of its own, so that a window can be up
// before they are there.
class CPictureLoader {
  public:
    // Begins at once. The progress is reported on the loader's thread until it is done.
    CPictureLoader(const SDocumentOptions& options, IProgressSink& progress);
    // Stops what is not done; the thread has ended when this returns.
    ~CPictureLoader();
    CPictureLoader(const CPictureLoader&) = delete;
    CPictureLoader& operator=(const CPictureLoader&) = delete;

    // Whether there is nothing more to wait for.
    bool Look();
    // Waits for the pictures; throws what the reading threw.
    const SPictures& Wait();

  private:
    void Take();

    std::atomic<bool> stops_ = false;
    std::future<SPictures> reading_;  // until it is over
    SPictures pictures_;
    std::exception_ptr error_;
};
