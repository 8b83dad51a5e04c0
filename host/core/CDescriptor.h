#pragma once

#include <unistd.h>

#include <utility>

// Owns a file descriptor of the operating system; negative is none.
class CDescriptor {
  public:
    explicit CDescriptor(int descriptor = -1) noexcept : descriptor_(descriptor) {}
    CDescriptor(CDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    CDescriptor& operator=(CDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~CDescriptor() {
        if (descriptor_ >= 0) close(descriptor_);
    }

    explicit operator bool() const noexcept { return descriptor_ >= 0; }
    int Get() const noexcept { return descriptor_; }

  private:
    int descriptor_;
};
