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
// The document of a picture that was read; takes over its pixels.
TRef<CDocument> OpenDocument(const SDocumentOptions& options, imagefile::SImageFile& input,
                             CProgress& progress);
