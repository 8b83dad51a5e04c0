#include "app/cli/batch/Digest.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>
#include <xxhash.h>

#include <cerrno>
#include <memory>
#include <vector>

#include "host/core/CDescriptor.h"
#include "hostlib/language/Texts.h"
#include "hostlib/system/CFileError.h"

namespace digest {
namespace {

constexpr std::size_t kBuffer = std::size_t{1} << 18;

struct SFree {
    void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
};

std::string Hex(std::uint64_t value) { return fmt::format("{:016x}", value); }

}  // namespace

std::uint64_t Of(std::string_view bytes) { return XXH3_64bits(bytes.data(), bytes.size()); }
std::string Text(std::string_view bytes) { return Hex(Of(bytes)); }

std::string OfDescriptor(int descriptor, const std::filesystem::path& name) {
    const std::unique_ptr<XXH3_state_t, SFree> state(XXH3_createState());
    XXH3_64bits_reset(state.get());
    std::vector<char> buffer(kBuffer);
    for (off_t at = 0;;) {
        const ssize_t got = pread(descriptor, buffer.data(), buffer.size(), at);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw CFileError(name, Tr("cannot be read: {}", SystemText(errno)));
        if (got == 0) return Hex(XXH3_64bits_digest(state.get()));
        XXH3_64bits_update(state.get(), buffer.data(), static_cast<std::size_t>(got));
        at += got;
    }
}

std::string OfFile(const std::filesystem::path& file) {
    const CDescriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!opened) throw CFileError(file, Tr("cannot be read: {}", SystemText(errno)));
    return OfDescriptor(opened.Get(), file);
}

}  // namespace digest
