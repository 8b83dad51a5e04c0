#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "app/imagefile/CImageFile.h"

// Reads any bytes as an image file, strictly and leniently, and writes what came of it as TIFF, so
// that its metadata are gone through as well. Every failure has to be a CImageFileError.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int input = memfd_create("input", MFD_CLOEXEC);
    static const std::string output =
        "/dev/shm/fuzz-imagefile-" + std::to_string(getpid()) + ".tif";
    if (ftruncate(input, 0) != 0 || pwrite(input, data, size, 0) < 0) std::abort();
    const std::string name = "/proc/self/fd/" + std::to_string(input);
    for (const bool lenient : {false, true}) {
        try {
            const imagefile::SImageFile read = imagefile::ReadImage(
                name, {.lenient = lenient, .max_pixels = std::uint64_t{1} << 20});
            imagefile::WriteImage(output, read.pixels, read.metadata,
                                  {.overwrite = true, .input = {}});
        } catch (const imagefile::CImageFileError&) {
        }
    }
    unlink(output.c_str());
    return 0;
}
