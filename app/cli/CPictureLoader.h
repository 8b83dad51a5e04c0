#pragma once

#include <atomic>
#include <future>

#include "app/cli/Document.h"

// Reads a document's picture and selection on a thread of its own, so that a window can be up
// before they are there.
class CPictureLoader {
  public:
    // Begins at once. The progress is reported on the loader's thread until it is done.
    CPictureLoader(const SDocumentOptions& options, IProgressSink& progress);
    // Stops what is not done; the thread has ended when this returns.
    ~CPictureLoader();
    CPictureLoader(const CPictureLoader&) = delete;
    CPictureLoader& operator=(const CPictureLoader&) = delete;

    // Whether Take would answer, or throw, at once.
    bool IsDone() const;
    // What was read, once; waits for it. Throws what the reading threw.
    SPictures Take() { return pictures_.get(); }

  private:
    std::atomic<bool> stops_ = false;
    std::future<SPictures> pictures_;
};
