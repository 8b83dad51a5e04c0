#include "hostlib/graphics/CPixelStore.h"

#include <sys/mman.h>

#include <cstdlib>
#include <limits>

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

}  // namespace

std::shared_ptr<CPixelStore> CPixelStore::Allocate(int width, int height, CNPixelFormat format) {
    if (width < 1 || height < 1 || !format.IsKnown()) return nullptr;
    // At most 2^31 pixels of 8 bytes in a row and 2^31 rows: 64 bits hold every product but the
    // last, which is checked.
    const std::uint64_t row =
        static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(format.PixelBytes());
    const std::uint64_t stride = (row + kCacheLine - 1) / kCacheLine * kCacheLine;
    const auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max() / 2);
    if (stride > limit / static_cast<std::uint64_t>(height)) return nullptr;
    void* pixels = AllocatePixels(stride * static_cast<std::uint64_t>(height));
    if (!pixels) return nullptr;
    return std::shared_ptr<CPixelStore>(new CPixelStore(pixels, static_cast<std::ptrdiff_t>(stride),
                                                        [pixels] { std::free(pixels); }));
}

std::shared_ptr<CPixelStore> CPixelStore::Borrow(void* pixels, std::ptrdiff_t stride,
                                                 std::function<void()> release) {
    return std::shared_ptr<CPixelStore>(new CPixelStore(pixels, stride, std::move(release)));
}

CPixelStore::~CPixelStore() {
    if (release_) release_();
}
