#pragma once

#include <string>
#include <vector>

#include "app/cli/Pictures.h"
#include "hostlib/commands/CDocument.h"

namespace CLI {
class App;
}

// What the user said about the picture to work on, where it lies, and what is selected.
struct SDocumentOptions {
    SInputOptions input;
    std::string mask, canvas, at;
    std::vector<std::string> resources;
};

// IN, --mask, --canvas, --at, --lenient, --max-pixels and --resources.
void AddDocumentOptions(CLI::App& command, SDocumentOptions& options);
// Refuses a canvas or place that cannot be meant, before anything is read.
void CheckDocumentOptions(const SDocumentOptions& options);
// The document for a picture of a size, still without it.
TRef<CDocument> MakeDocument(const SDocumentOptions& options, CSize size);
// A picture and the selection for it, read; the picture lies where it was told to.
struct SPictures {
    imagefile::SImageFile input;
    CRowIterator selection;
};
SPictures ReadPictures(const SDocumentOptions& options, IProgressSink& progress);
// Gives them to the document, which takes over the picture's pixels.
void FillDocument(CDocument& document, SPictures& pictures);
