#pragma once

#include <atomic>
#include <exception>
#include <future>

#include "app/cli/Document.h"

// Reads a document's picture and selection on a thread of its own, so that a window can be up
// before they are there. The document gets them on the thread that asks.
class CPictureLoader {
  public:
    // Begins at once. The progress is reported on the loader's thread until it is done.
    CPictureLoader(const SDocumentOptions& options, CDocument& document, IProgressSink& progress);
    // Stops what is not done; the thread has ended when this returns.
    ~CPictureLoader();
    CPictureLoader(const CPictureLoader&) = delete;
    CPictureLoader& operator=(const CPictureLoader&) = delete;

    // Whether the document has the picture now, or will get none.
    bool Look();
    // Waits for the picture and answers its metadata; throws what the reading threw.
    imagefile::CMetadata Wait();

  private:
    void Take();

    CDocument& document_;
    std::atomic<bool> stops_ = false;
    std::future<SPictures> pictures_;  // until they are taken
    imagefile::CMetadata metadata_;
    std::exception_ptr error_;
};
