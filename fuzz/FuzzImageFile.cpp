#include <array>

#include "FuzzInput.h"
#include "app/imagefile/CImageFile.h"

// Reads any bytes as an image file, strictly and leniently, and writes what came of it in every
// kind and coding, so that its metadata are gone through as well. Every failure has to be a
// CImageFileError.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    struct SOutput {
        const char* name;
        const char* compression;
    };
    static constexpr std::array kOutputs = {SOutput{"x.png", ""},     SOutput{"x.jpg", ""},
                                            SOutput{"x.tif", ""},     SOutput{"x.webp", ""},
                                            SOutput{"x.png", "3"},    SOutput{"x.tif", "lzw"},
                                            SOutput{"x.tif", "zstd"}, SOutput{"x.webp", "lossy"}};
    const std::string name = fuzz::FileOf(data, size);
    for (const bool lenient : {false, true}) {
        try {
            const imagefile::SImageFile read = imagefile::ReadImage(
                name, {.lenient = lenient, .max_pixels = std::uint64_t{1} << 20});
            for (const SOutput& output : kOutputs) {
                try {
                    imagefile::SWriteOptions coding;
                    coding.compression = output.compression;
                    imagefile::WriteImage(fuzz::Folder() / output.name, read.pixels, read.metadata,
                                          {.overwrite = true, .input = {}}, nullptr, coding);
                } catch (const imagefile::CImageFileError&) {
                    continue;  // a side too long for the kind, say
                }
            }
        } catch (const imagefile::CImageFileError&) {
        }
    }
    return 0;
}
