#include "hostlib/graphics/CPixelStore.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/core/CErrorAutoThrow.h"
#include "hostlib/graphics/PixelBudget.h"
#include "hostlib/language/Texts.h"
#include "hostlib/system/CFileError.h"

namespace {

constexpr std::size_t kCacheLine = 64;
constexpr std::size_t kHugePage = std::size_t{2} << 20;

// Large images are laid on huge pages: touching a fresh image for the first time would otherwise
// cost more than filling it.
std::uint64_t Alignment(std::uint64_t bytes) {
    return bytes >= 2 * kHugePage ? kHugePage : kCacheLine;
}
void* AllocatePixels(std::uint64_t bytes) {
    const std::uint64_t alignment = Alignment(bytes);
    void* memory = std::aligned_alloc(alignment, bytes);
    if (memory && alignment == kHugePage) madvise(memory, bytes, MADV_HUGEPAGE);
    return memory;
}

struct SBlock {
    void* memory = nullptr;
    std::uint64_t bytes = 0;
};

// Hands out memory within the budget. What is given back may be kept for the next image, whose
// pages then need not be cleared by the system; together with what is in use that never takes more
// than was in use at once.
class CKeeper {
  public:
    void SetBudget(const SPixelBudget& budget) {
        const std::scoped_lock lock(mutex_);
        budget_ = budget;
        most_ = in_use_;
        while (spare_bytes_ > budget.spare) std::free(Remove(spare_.begin()).memory);
    }
    std::filesystem::path Scratch() {
        const std::scoped_lock lock(mutex_);
        return budget_.scratch;
    }

    // Nothing when the budget does not allow it; a block of null when the memory cannot be had.
    std::optional<SBlock> Take(std::uint64_t bytes) {
        const std::uint64_t alignment = Alignment(bytes);
        SBlock block = {nullptr, (bytes + alignment - 1) / alignment * alignment};
        std::vector<SBlock> dropped;
        {
            const std::scoped_lock lock(mutex_);
            if (bytes > kSmall && in_use_ + bytes > budget_.bytes) return std::nullopt;
            TakeSpare(block);
            in_use_ += block.bytes;
            most_ = std::max(most_, in_use_);
            while (in_use_ + spare_bytes_ > most_) dropped.push_back(Remove(spare_.begin()));
        }
        for (const SBlock& spare : dropped) std::free(spare.memory);
        if (!block.memory) block.memory = AllocatePixels(block.bytes);
        if (!block.memory) GiveBack(block);
        return block;
    }
    void GiveBack(const SBlock& block) {
        {
            const std::scoped_lock lock(mutex_);
            in_use_ -= block.bytes;
            if (block.memory && block.bytes > kSmall &&
                spare_bytes_ + block.bytes <= budget_.spare &&
                in_use_ + spare_bytes_ + block.bytes <= most_) {
                if (Alignment(block.bytes) == kHugePage) {
                    madvise(block.memory, block.bytes, MADV_FREE);
                }
                spare_.push_back(block);
                spare_bytes_ += block.bytes;
                return;
            }
        }
        std::free(block.memory);
    }

  private:
    // Small images are worth neither a file nor keeping.
    static constexpr std::uint64_t kSmall = 1 << 20;
    using CSpare = std::vector<SBlock>;

    SBlock Remove(CSpare::iterator at) {
        const SBlock block = *at;
        spare_.erase(at);
        spare_bytes_ -= block.bytes;
        return block;
    }
    // The block that was given back last, of those that are hardly larger than wanted.
    void TakeSpare(SBlock& wanted) {
        const auto fit = std::find_if(spare_.rbegin(), spare_.rend(), [&](const SBlock& spare) {
            return spare.bytes >= wanted.bytes && spare.bytes - wanted.bytes <= wanted.bytes / 8;
        });
        if (fit != spare_.rend()) wanted = Remove(std::prev(fit.base()));
    }

    std::mutex mutex_;  // of what follows
    SPixelBudget budget_;
    std::uint64_t in_use_ = 0, spare_bytes_ = 0;
    std::uint64_t most_ = 0;  // in use at once
    CSpare spare_;            // the oldest first
};

// Never destroyed: an image may outlive all that is.
CKeeper& Keeper() {
    static auto* keeper = new CKeeper;
    return *keeper;
}

std::filesystem::path ScratchFolder() {
    std::filesystem::path folder = Keeper().Scratch();
    if (!folder.empty()) return folder;
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

void SetPixelBudget(const SPixelBudget& budget) { Keeper().SetBudget(budget); }

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
    const std::optional<SBlock> block = Keeper().Take(bytes);
    if (!block) {
        void* const pixels = MapScratch(bytes);
        return store(pixels, [=] { munmap(pixels, bytes); });
    }
    if (!block->memory) return nullptr;
    return store(block->memory, [block = *block] { Keeper().GiveBack(block); });
}

std::shared_ptr<CPixelStore> CPixelStore::Borrow(void* pixels, std::ptrdiff_t stride,
                                                 std::function<void()> release) {
    return std::shared_ptr<CPixelStore>(new CPixelStore(pixels, stride, std::move(release)));
}

CPixelStore::~CPixelStore() {
    if (release_) release_();
}
