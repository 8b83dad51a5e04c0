#include "app/cli/Document.h"

#include <CLI/CLI.hpp>

#include "app/cli/CSession.h"
#include "app/cli/Library.h"

void AddDocumentOptions(CLI::App& command, SDocumentOptions& options) {
    command.add_option("IN", options.input.file, "Image to read: PNG, JPEG, TIFF or WebP")
        ->required();
    command
        .add_option("--mask", options.mask,
                    "Limit the effect to a selection: an image of the same size, white is full "
                    "effect")
        ->type_name("FILE");
    command.add_option("--canvas", options.canvas, "Size of the document; default: the image's")
        ->type_name("WxH");
    command.add_option("--at", options.at, "Place of the image on the document; default: 0,0")
        ->type_name("X,Y");
    command.add_flag("--lenient", options.input.lenient, "Take what can be had of a damaged input");
    command
        .add_option("--max-pixels", options.input.max_pixels,
                    "Refuse larger inputs before decoding them")
        ->capture_default_str();
    AddLibraryOption(command, options.resources);
}

void CheckDocumentOptions(const SDocumentOptions& options) {
    if (!options.canvas.empty()) ParseSize(options.canvas, "--canvas");
    if (!options.at.empty()) ParsePlace(options.at, "--at");
}

TRef<CDocument> OpenDocument(const SDocumentOptions& options, imagefile::SImageFile& input,
                             CProgress& progress) {
    const CSize size{input.pixels.GetWidth(), input.pixels.GetHeight()};
    const TRef<CDocument> document(
        new CDocument(options.canvas.empty() ? size : ParseSize(options.canvas, "--canvas")));
    if (!options.mask.empty()) {
        document->SetSelection(ReadMask(options.mask, size, options.input, progress));
    }
    if (!options.at.empty()) input.pixels.SetOrigin(ParsePlace(options.at, "--at"));
    document->SetActiveImage(input.pixels);
    input.pixels.Destroy();
    return document;
}
