#include "hostlib/graphics/CPixelStore.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <string>

#include "host/core/CErrorAutoThrow.h"
#include "hostlib/graphics/PixelBudget.h"
#include "hostlib/language/Texts.h"
#include "hostlib/system/CFileError.h"

namespace {

constexpr std::size_t kCacheLine = 64;
constexpr std::size_t kHugePage = std::size_t{2} << 20;

// Large images are laid on huge pages: touching a fresh image for the first time would otherwise
// cost more than filling it.
void* AllocatePixels(std::size_t bytes) {
    const bool large = bytes >= 2 * kHugePage;
    const std::size_t alignment = large ? kHugePage : kCacheLine;
    void* memory = std::aligned_alloc(alignment, (bytes + alignment - 1) / alignment * alignment);
    if (memory && large) madvise(memory, bytes, MADV_HUGEPAGE);
    return memory;
}

// What is kept in memory, and where the rest goes.
struct SKeeper {
    std::mutex mutex;
    SPixelBudget budget;
    std::atomic<std::uint64_t> in_memory{0};
};
SKeeper& Keeper() {
    static SKeeper keeper;
    return keeper;
}

// Takes bytes out of the budget until it is given back; false when they do not fit.
bool Reserve(std::uint64_t bytes) {
    SKeeper& keeper = Keeper();
    const std::scoped_lock lock(keeper.mutex);
    // Small images are not worth a file.
    constexpr std::uint64_t kSmall = 1 << 20;
    if (bytes > kSmall && keeper.in_memory + bytes > keeper.budget.bytes) return false;
    keeper.in_memory += bytes;
    return true;
}
void GiveBack(std::uint64_t bytes) { Keeper().in_memory -= bytes; }

std::filesystem::path ScratchFolder() {
    SKeeper& keeper = Keeper();
    const std::scoped_lock lock(keeper.mutex);
    if (!keeper.budget.scratch.empty()) return keeper.budget.scratch;
    const char* temporary = std::getenv("TMPDIR");
    return temporary && *temporary ? temporary : "/var/tmp";
}

// A file without a name, which is gone with its last user.
int OpenScratch(const std::filesystem::path& folder) {
    const int file = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (file >= 0 || (errno != EOPNOTSUPP && errno != EISDIR)) return file;
    std::string name = (folder / ".cmdtexture-XXXXXX").string();
    const int named = mkostemp(name.data(), O_CLOEXEC);
    if (named >= 0) unlink(name.c_str());
    return named;
}

// Memory in a scratch file. Its space is reserved first: a disk that is full is found here, not
// when a page is written to it.
void* MapScratch(std::size_t bytes) {
    const std::filesystem::path folder = ScratchFolder();
    const auto fail = [&](int error) {
        throw CNException(TolmErrorCode::ScratchFailed,
                          Tr("{}: no room for {} MB of pixels: {}", folder.string(),
                             (bytes >> 20) + 1, SystemText(error)));
    };
    const int file = OpenScratch(folder);
    if (file < 0) fail(errno);
    const int full = posix_fallocate(file, 0, static_cast<off_t>(bytes));
    void* const memory =
        full ? MAP_FAILED : mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    const int error = full ? full : errno;
    close(file);
    if (memory == MAP_FAILED) fail(error);
    return memory;
}

}  // namespace

void SetPixelBudget(const SPixelBudget& budget) {
    SKeeper& keeper = Keeper();
    const std::scoped_lock lock(keeper.mutex);
    keeper.budget = budget;
}

std::shared_ptr<CPixelStore> CPixelStore::Allocate(int width, int height, CNPixelFormat format) {
    if (width < 1 || height < 1 || !format.IsKnown()) return nullptr;
    // At most 2^31 pixels of 8 bytes in a row and 2^31 rows: 64 bits hold every product but the
    // last, which is checked.
    const std::uint64_t row =
        static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(format.PixelBytes());
    const std::uint64_t stride = (row + kCacheLine - 1) / kCacheLine * kCacheLine;
    const auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max() / 2);
    if (stride > limit / static_cast<std::uint64_t>(height)) return nullptr;
    const std::uint64_t bytes = stride * static_cast<std::uint64_t>(height);
    const auto store = [&](void* pixels, std::function<void()> release) {
        return std::shared_ptr<CPixelStore>(
            new CPixelStore(pixels, static_cast<std::ptrdiff_t>(stride), std::move(release)));
    };
    if (!Reserve(bytes)) {
        void* const pixels = MapScratch(bytes);
        return store(pixels, [=] { munmap(pixels, bytes); });
    }
    void* const pixels = AllocatePixels(bytes);
    if (!pixels) {
        GiveBack(bytes);
        return nullptr;
    }
    return store(pixels, [=] {
        std::free(pixels);
        GiveBack(bytes);
    });
}

std::shared_ptr<CPixelStore> CPixelStore::Borrow(void* pixels, std::ptrdiff_t stride,
                                                 std::function<void()> release) {
    return std::shared_ptr<CPixelStore>(new CPixelStore(pixels, stride, std::move(release)));
}

CPixelStore::~CPixelStore() {
    if (release_) release_();
}
