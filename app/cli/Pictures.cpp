#include "app/cli/Pictures.h"

#include <fmt/format.h>

#include "app/cli/CliError.h"
#include "host/graphics/CStatusControl.h"
#include "host/graphics/PixelMath.h"

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

void Warn(const std::vector<std::string>& warnings) {
    for (const std::string& warning : warnings) {
        fmt::print(stderr, "cmdtexture: warning: {}\n", warning);
    }
}

// The brightness of a pixel's colour channels, 0 to 255.
template <class Sample>
int Brightness(const Sample* pixel, int colour_channels) {
    const auto byte = [&](int c) { return pixel::ToByte<Sample>(pixel[c]); };
    return colour_channels == 1 ? byte(0) : CColorRef::FromRgb(byte(2), byte(1), byte(0)).Grey();
}

}  // namespace

static imagefile::SReadOptions ReadOptions(const SInputOptions& options) {
    return {options.lenient, options.max_pixels, options.page, options.convert};
}

imagefile::SImageHeader ReadPictureHeader(const SInputOptions& options) {
    return WithCliErrors([&] { return imagefile::ReadHeader(options.file, ReadOptions(options)); });
}

imagefile::SImageFile ReadPicture(const SInputOptions& options, IProgressSink& progress) {
    return WithCliErrors([&] {
        CStatusControl status(&progress);
        auto picture = imagefile::ReadImage(options.file, ReadOptions(options), &status);
        Warn(picture.warnings);
        return picture;
    });
}

CRowIterator ReadMask(const std::string& file, CSize size, const SInputOptions& options,
                      IProgressSink& progress) {
    SInputOptions mask_options = options;
    mask_options.file = file;
    mask_options.page = 0;  // it is the picture's
    CRowIteratorBands read = ReadPicture(mask_options, progress).pixels;
    if (read.GetWidth() != size.cx || read.GetHeight() != size.cy) {
        throw CCliError(EExit::Usage,
                        fmt::format("{}: the mask is {} x {}, the image {} x {}", file,
                                    read.GetWidth(), read.GetHeight(), size.cx, size.cy),
                        "a mask has the size of the image");
    }
    if (read.GetPixelFormat() == ENPixelFormat::Grey8) return read;
    CRowIterator mask;
    mask.Create(size.cx, size.cy, ENPixelFormat::Grey8).ThrowIfFailed();
    VisitPixelFormat(read.GetPixelFormat(), 0, [&](auto traits) {
        using Sample = typename decltype(traits)::Sample;
        for (int y = 0; y < size.cy; ++y) {
            for (int x = 0; x < size.cx; ++x) {
                mask.Row<std::uint8_t>(y)[x] = static_cast<std::uint8_t>(
                    Brightness(read.Row<Sample>(y) + x * traits.kChannels, traits.kColourChannels));
            }
        }
        return 0;
    });
    return mask;
}

void CheckPictureOutput(const std::string& file, const imagefile::SOutputRules& rules, CSize size) {
    WithCliErrors([&] { imagefile::CheckOutput(file, rules, size); });
}

void WritePicture(const std::string& file, const CRowIteratorBands& pixels,
                  const imagefile::CMetadata& metadata, const imagefile::SOutputRules& rules,
                  CProgress& progress) {
    WithCliErrors([&] {
        CStatusControl status(&progress);
        Warn(imagefile::WriteImage(file, pixels, metadata, rules, &status));
    });
}

std::string LayoutName(CNPixelFormat format) {
    constexpr const char* kNames[] = {"unknown", "grey", "grey-alpha", "colour", "colour-alpha"};
    return kNames[format.Channels()];
}
