#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/cli/Pictures.h"
#include "job/CEffectJob.h"

namespace CLI {
class App;
}

// What the user said about how pictures are read and kept.
struct SReadingOptions {
    SInputOptions input;
    std::vector<std::string> resources;
    std::string scratch;  // the folder for pixels beyond input.max_memory
};

// The same, and where the picture to work on lies, and what is selected.
struct SDocumentOptions : SReadingOptions {
    std::string mask, canvas, at;
};

// --lenient, --convert, --max-pixels, --max-memory, --scratch and --resources.
void AddReadingOptions(CLI::App& command, SReadingOptions& options);
void CheckReadingOptions(const SReadingOptions& options);

// --mask, --canvas and --at.
void AddPlaceOptions(CLI::App& command, SDocumentOptions& options);
// The same, IN, --page, and what AddReadingOptions adds.
void AddDocumentOptions(CLI::App& command, SDocumentOptions& options);
// Refuses a canvas or place that cannot be meant, before anything is read.
void CheckDocumentOptions(const SDocumentOptions& options);
// The size of the document for a picture of a size.
CSize CanvasOf(const SDocumentOptions& options, CSize picture);
// Refuses a --mask that does not have the picture's size, as far as its header tells.
void CheckMask(const SDocumentOptions& options, CSize picture);
// A picture and the selection for it, read; the picture lies where it was told to.
struct SPictures {
    imagefile::SImageFile input;
    CRowIterator selection;
};
SPictures ReadPictures(const SDocumentOptions& options, IProgressSink& progress,
                       const FWarn& warn = &messages::Warn);
// Keeps pixels beyond --max-memory on the disk; with `keeps_spare` for many pictures.
void LimitMemory(const SReadingOptions& options, bool keeps_spare = false);
// Gives them to the job, which takes over the picture's pixels.
void GivePictures(CEffectJob& job, SPictures& pictures);

// "300x200" as a size of 1 to 65535 a side; "X,Y" as a place within a million pixels of the origin.
CSize ParseSize(const std::string& text, const std::string& option);
CPoint ParsePlace(const std::string& text, const std::string& option);
