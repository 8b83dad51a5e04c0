#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "hostlib/commands/CDocument.h"
#include "job/CEffectModule.h"
#include "job/Installation.h"

// What the fuzzers share: the input as a file, as numbers, and the module that lies beside them.
namespace fuzz {

// A file in memory that holds the input, and its name.
inline std::string FileOf(const std::uint8_t* data, std::size_t size) {
    static const int file = memfd_create("input", MFD_CLOEXEC);
    if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) < 0) std::abort();
    return "/proc/self/fd/" + std::to_string(file);
}

// A folder of this process's own that vanishes with the memory.
inline std::filesystem::path Folder() {
    static const std::filesystem::path folder = "/dev/shm/fuzz-" + std::to_string(getpid());
    std::filesystem::create_directories(folder);
    return folder;
}

inline const CEffectModule& Module() {
    static const CEffectModule module(FindInstallation(), "EN");
    return module;
}

// Takes the input apart, from its beginning; zeros follow its end.
class CNumbers {
  public:
    CNumbers(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

    std::uint8_t Byte() { return at_ < end_ ? *at_++ : 0; }
    // From `least` to `most`, all about equally often.
    std::int64_t Between(std::int64_t least, std::int64_t most) {
        std::uint64_t number = 0;
        for (int i = 0; i < 4; ++i) number = number << 8 | Byte();
        const auto count = static_cast<std::uint64_t>(most) - static_cast<std::uint64_t>(least) + 1;
        return count == 0 ? least : least + static_cast<std::int64_t>(number % count);
    }
    std::string_view Rest() const {
        return {reinterpret_cast<const char*>(at_), static_cast<std::size_t>(end_ - at_)};
    }

  private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

// A command of the module, with its parameters at their defaults.
inline TRef<CCmdEffect> Command(CNumbers& numbers, ICommandExecutionContext* context) {
    const auto& names = Module().Names();
    TRef<CCmdEffect> command = Module().CreateCommand(names[numbers.Byte() % names.size()]);
    PrepareCommand(*command, context);
    return command;
}

}  // namespace fuzz
