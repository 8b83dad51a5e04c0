#pragma once

#include <unistd.h>

#include <utility>

namespace imagefile {

// A file descriptor that is closed with its owner; -1 is none.
class CFileDescriptor {
  public:
    explicit CFileDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
    CFileDescriptor(CFileDescriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) {}
    CFileDescriptor& operator=(CFileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~CFileDescriptor() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    int Get() const { return descriptor_; }
    bool IsOpen() const { return descriptor_ >= 0; }

  private:
    int descriptor_;
};

}  // namespace imagefile
