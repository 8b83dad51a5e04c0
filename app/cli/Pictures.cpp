#include "app/cli/Pictures.h"

#include <unistd.h>

#include <CLI/CLI.hpp>

#include "app/cli/AvailableMemory.h"
#include "app/cli/CliError.h"
#include "app/cli/Interruption.h"
#include "app/cli/Messages.h"
#include "app/cli/Options.h"
#include "app/cli/Report.h"
#include "app/imagefile/InputStream.h"
#include "host/graphics/CStatusControl.h"
#include "hostlib/language/Texts.h"
#include "job/Selection.h"

namespace {

EExit ExitOf(imagefile::ENFault fault) {
    switch (fault) {
        case imagefile::ENFault::Usage:
            return EExit::Usage;
        case imagefile::ENFault::Unreadable:
            return EExit::Unreadable;
        case imagefile::ENFault::Unsupported:
            return EExit::Unsupported;
        case imagefile::ENFault::Output:
            return EExit::Output;
        case imagefile::ENFault::Limit:
            return EExit::Limit;
        case imagefile::ENFault::Cancelled:
            break;
    }
    return EExit::Fault;
}

template <class Operation>
auto WithCliErrors(Operation&& operation) {
    try {
        return operation();
    } catch (const imagefile::CImageFileError& error) {
        if (error.Fault() == imagefile::ENFault::Cancelled) throw CInterrupted();
        throw CCliError(ExitOf(error.Fault()), error.what(), error.Hint());
    }
}

// What lies in memory at once for a picture at most, of any effect: source, result, undo and what
// is between.
constexpr std::uint64_t kPicturesAtOnce = 4;

// The bytes that the pixels of one picture may take, so that work on it stays within the memory.
std::uint64_t MaxBytes(const SInputOptions& options) {
    constexpr std::uint64_t kLeast = 1 << 20;
    if (options.max_memory > 0) return UINT64_MAX;
    return std::max(MemoryBudget(options) / kPicturesAtOnce, kLeast);
}

imagefile::SReadOptions ReadOptions(const SInputOptions& options) {
    if (imagefile::IsStream(options.file) && !options.gathered) {
        constexpr std::uint64_t kMostOfAPixel = 8, kBesidesPixels = 256 << 20;
        options.gathered = std::make_shared<const CDescriptor>(imagefile::GatherStream(
            options.file, options.max_pixels * kMostOfAPixel + kBesidesPixels,
            &interruption::Requested));
    }
    return {.lenient = options.lenient,
            .max_pixels = options.max_pixels,
            .page = options.page,
            .convert = options.convert,
            .max_bytes = MaxBytes(options),
            .descriptor = options.gathered ? options.gathered->Get() : -1};
}

}  // namespace

void AddCodingOptions(CLI::App& command, imagefile::SWriteOptions& options) {
    command
        .add_option("--format", options.format,
                    "Kind of the output: png, jpeg, tiff or webp; default: by its extension")
        ->type_name("KIND");
    command
        .add_option("--quality", options.quality,
                    "Quality of JPEG and lossy WebP, 1 to 100; default: the input's own, or 95")
        ->type_name("Q")
        ->check(WholeNumbers(1, 100));
    command
        .add_option("--subsampling", options.subsampling,
                    "Colour of JPEG: 444 (full), 440, 422, 420 or 411; default: the input's own, "
                    "or 444")
        ->type_name("S");
    command
        .add_option("--compression", options.compression,
                    "PNG: 0 to 9; TIFF: none, lzw, deflate or zstd; WebP: lossy or lossless; "
                    "default: TIFF and WebP follow the input")
        ->type_name("C");
}

imagefile::SOutputRules OutputRules(const std::string& file, bool overwrite,
                                    const std::string& input) {
    const bool is_stream = file == imagefile::kStandardStream;
    if (is_stream) report::LeaveOutput();
    if (is_stream && isatty(STDOUT_FILENO)) {
        throw CCliError(EExit::Usage, Tr("standard output is a terminal"),
                        Tr("lead it into a file or a pipe, or name a file after -o"));
    }
    return {overwrite, input, is_stream ? STDOUT_FILENO : -1};
}

imagefile::SImageHeader ReadPictureHeader(const SInputOptions& options) {
    return WithCliErrors([&] { return imagefile::ReadHeader(options.file, ReadOptions(options)); });
}

imagefile::SImageFile ReadPicture(const SInputOptions& options, IProgressSink& progress,
                                  const FWarn& warn) {
    return WithCliErrors([&] {
        CStatusControl status(&progress);
        auto picture = imagefile::ReadImage(options.file, ReadOptions(options), &status);
        for (const std::string& warning : picture.warnings) warn(warning);
        return picture;
    });
}

SInputOptions MaskInput(const std::string& file, const SInputOptions& options) {
    SInputOptions mask = options;
    mask.file = file;
    mask.page = 0;  // it is the picture's
    mask.gathered.reset();
    return mask;
}

void CheckMaskSize(const std::string& file, CSize mask, CSize picture) {
    if (mask == picture) return;
    throw CCliError(EExit::Usage,
                    Tr("{}: the mask is {} x {}, the image {} x {}", file, mask.cx, mask.cy,
                       picture.cx, picture.cy),
                    Tr("a mask has the size of the image"));
}

CRowIterator ReadMask(const std::string& file, CSize size, const SInputOptions& options,
                      IProgressSink& progress) {
    const CRowIteratorBands read = ReadPicture(MaskInput(file, options), progress).pixels;
    CheckMaskSize(file, {read.GetWidth(), read.GetHeight()}, size);
    return ToSelection(read);
}

void CheckPictureOutput(const std::string& file, const imagefile::SOutputRules& rules, CSize size,
                        const imagefile::SWriteOptions& coding) {
    WithCliErrors([&] { imagefile::CheckOutput(file, rules, size, coding); });
}

void WritePicture(const std::string& file, const CRowIteratorBands& pixels,
                  const imagefile::CMetadata& metadata, const imagefile::SOutputRules& rules,
                  IProgressSink& progress, const imagefile::SWriteOptions& coding,
                  const FWarn& warn) {
    WithCliErrors([&] {
        CStatusControl status(&progress);
        for (const std::string& warning :
             imagefile::WriteImage(file, pixels, metadata, rules, &status, coding)) {
            warn(warning);
        }
    });
}

std::uint64_t MemoryFor(const imagefile::SImageHeader& header) {
    return static_cast<std::uint64_t>(header.size.cx) * static_cast<std::uint64_t>(header.size.cy) *
           static_cast<std::uint64_t>(header.format.PixelBytes()) * kPicturesAtOnce;
}

std::uint64_t MemoryBudget(const SInputOptions& options) {
    constexpr std::uint64_t kProgram = 48 << 20;
    if (options.max_memory > 0) return options.max_memory;
    const std::uint64_t limit = AvailableMemory() / 4 * 3;
    return limit > kProgram ? limit - kProgram : 0;
}

std::string LayoutName(CNPixelFormat format) {
    constexpr const char* kNames[] = {"unknown", "grey", "grey-alpha", "colour", "colour-alpha"};
    return kNames[format.Channels()];
}
