#include "app/cli/Document.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <limits>

#include "app/cli/CliError.h"
#include "app/cli/Options.h"
#include "hostlib/core/WholeNumber.h"
#include "hostlib/graphics/PixelBudget.h"
#include "hostlib/language/Texts.h"

void AddReadingOptions(CLI::App& command, SReadingOptions& options) {
    command.add_flag("--lenient", options.input.lenient, "Take what can be had of a damaged input");
    command.add_flag("--convert", options.input.convert,
                     "Make 8- or 16-bit grey or RGB of CMYK, Lab, 32-bit or floating-point input");
    command
        .add_option("--max-pixels", options.input.max_pixels,
                    "Refuse larger inputs before decoding them")
        ->type_name("N")
        ->check(WholeNumbers(1, INT64_MAX))
        ->capture_default_str();
    command
        .add_option("--max-memory", options.input.max_memory,
                    "Keep at most so many bytes of pixels in memory (1G, 512M), others on the "
                    "disk; without it, inputs that memory cannot hold are refused")
        ->transform(Bytes())
        ->type_name("SIZE");
    command
        .add_option("--scratch", options.scratch,
                    "Folder for pixels that --max-memory keeps out of memory; default: TMPDIR, "
                    "or else /var/tmp")
        ->type_name("DIR");
    AddLibraryOption(command, options.resources);
}

void CheckReadingOptions(const SReadingOptions& options) {
    if (!options.scratch.empty() && !std::filesystem::is_directory(options.scratch)) {
        throw CCliError(EExit::Usage, Tr("--scratch {}: no such folder", options.scratch));
    }
}

void AddPlaceOptions(CLI::App& command, SDocumentOptions& options) {
    command
        .add_option("--mask", options.mask,
                    "Limit the effect to a selection: an image of the same size, white is full "
                    "effect")
        ->type_name("FILE");
    command.add_option("--canvas", options.canvas, "Size of the document; default: the image's")
        ->type_name("WxH");
    command.add_option("--at", options.at, "Place of the image on the document; default: 0,0")
        ->type_name("X,Y");
}

void AddDocumentOptions(CLI::App& command, SDocumentOptions& options) {
    command
        .add_option("IN", options.input.file,
                    "Image to read: PNG, JPEG, TIFF or WebP; - is standard input")
        ->required();
    AddPlaceOptions(command, options);
    command
        .add_option("--page", options.input.page,
                    "Take this page of a TIFF or frame of an animated WebP, from 1 on")
        ->type_name("N")
        ->check(WholeNumbers(1, 1 << 20));
    AddReadingOptions(command, options);
}

void CheckDocumentOptions(const SDocumentOptions& options) {
    if (!options.canvas.empty()) ParseSize(options.canvas, "--canvas");
    if (!options.at.empty()) ParsePlace(options.at, "--at");
    CheckReadingOptions(options);
}

CSize CanvasOf(const SDocumentOptions& options, CSize picture) {
    return options.canvas.empty() ? picture : ParseSize(options.canvas, "--canvas");
}

void CheckMask(const SDocumentOptions& options, CSize picture) {
    CheckMaskSize(options.mask, ReadPictureHeader(MaskInput(options.mask, options.input)).size,
                  picture);
}

void LimitMemory(const SReadingOptions& options, bool keeps_spare) {
    SPixelBudget budget{.scratch = options.scratch};
    if (keeps_spare) budget.spare = std::numeric_limits<std::uint64_t>::max();
    if (options.input.max_memory > 0) budget.bytes = options.input.max_memory;
    SetPixelBudget(budget);
}

SPictures ReadPictures(const SDocumentOptions& options, IProgressSink& progress,
                       const FWarn& warn) {
    SPictures pictures;
    pictures.input = ReadPicture(options.input, progress, warn);
    CRowIteratorBands& pixels = pictures.input.pixels;
    if (!options.mask.empty()) {
        pictures.selection = ReadMask(options.mask, {pixels.GetWidth(), pixels.GetHeight()},
                                      options.input, progress);
    }
    if (!options.at.empty()) pixels.SetOrigin(ParsePlace(options.at, "--at"));
    return pictures;
}

void GivePictures(CEffectJob& job, SPictures& pictures) {
    job.SetPicture(pictures.input.pixels, pictures.selection);
    pictures.input.pixels.Destroy();
}

CSize ParseSize(const std::string& text, const std::string& option) {
    const auto numbers = NumberPair(text, 'x');
    const CSize size = numbers ? CSize{numbers->first, numbers->second} : CSize{};
    constexpr int kLargest = 65535;
    if (size.cx < 1 || size.cy < 1 || size.cx > kLargest || size.cy > kLargest) {
        throw CCliError(EExit::Usage, Tr("{} {}: not a size", option, text),
                        Tr("a size is written WxH, each from 1 to 65535: 1920x1080"));
    }
    return size;
}

CPoint ParsePlace(const std::string& text, const std::string& option) {
    const auto numbers = NumberPair(text, ',');
    constexpr int kFarthest = 1000000;
    const auto near = [](int distance) { return -kFarthest <= distance && distance <= kFarthest; };
    if (!numbers || !near(numbers->first) || !near(numbers->second)) {
        throw CCliError(EExit::Usage, Tr("{} {}: not a place", option, text),
                        Tr("a place is written X,Y in pixels from the canvas's top left: 100,50"));
    }
    return {numbers->first, numbers->second};
}
