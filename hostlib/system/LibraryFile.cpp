#include "hostlib/system/LibraryFile.h"

#include <dlfcn.h>

namespace {
const char kInThisLibrary = 0;
}

std::filesystem::path LibraryFile() {
    Dl_info info{};
    if (dladdr(&kInThisLibrary, &info) == 0 || !info.dli_fname) return {};
    std::error_code unknown;
    return std::filesystem::canonical(info.dli_fname, unknown);
}
