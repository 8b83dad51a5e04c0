#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "host/graphics/CNPixelFormat.h"

// The memory of one image: its own, rows aligned to cache lines, in memory or beyond the budget
// (PixelBudget.h) in a file; or somebody else's.
class CPixelStore {
  public:
    // Null when the size is not positive, does not fit, or the memory cannot be had. Throws error
    // 106 when the file's space cannot be had.
    static std::shared_ptr<CPixelStore> Allocate(int width, int height, CNPixelFormat format);
    static std::shared_ptr<CPixelStore> Borrow(void* pixels, std::ptrdiff_t stride,
                                               std::function<void()> release);
    ~CPixelStore();
    CPixelStore(const CPixelStore&) = delete;
    CPixelStore& operator=(const CPixelStore&) = delete;

    std::uint8_t* Pixels() const { return pixels_; }
    std::ptrdiff_t Stride() const { return stride_; }

  private:
    CPixelStore(void* pixels, std::ptrdiff_t stride, std::function<void()> release)
        : pixels_(static_cast<std::uint8_t*>(pixels)),
          stride_(stride),
          release_(std::move(release)) {}

    std::uint8_t* pixels_;
    std::ptrdiff_t stride_;
    std::function<void()> release_;
};
