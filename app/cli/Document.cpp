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

TRef<CDocument> MakeDocument(const SDocumentOptions& options, CSize size) {
    return TRef<CDocument>(
        new CDocument(options.canvas.empty() ? size : ParseSize(options.canvas, "--canvas")));
}

SPictures ReadPictures(const SDocumentOptions& options, IProgressSink& progress) {
    SPictures pictures;
    pictures.input = ReadPicture(options.input, progress);
    CRowIteratorBands& pixels = pictures.input.pixels;
    if (!options.mask.empty()) {
        pictures.selection = ReadMask(options.mask, {pixels.GetWidth(), pixels.GetHeight()},
                                      options.input, progress);
    }
    if (!options.at.empty()) pixels.SetOrigin(ParsePlace(options.at, "--at"));
    return pictures;
}

void FillDocument(CDocument& document, SPictures& pictures) {
    document.SetSelection(pictures.selection);
    document.SetActiveImage(pictures.input.pixels);
    pictures.input.pixels.Destroy();
}
