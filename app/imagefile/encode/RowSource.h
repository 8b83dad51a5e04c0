#pragma once

#include "app/imagefile/FileKinds.h"
#include "host/graphics/CRowIteratorBands.h"

namespace imagefile {

// A picture's rows as a kind of file holds them: red first, without the alpha channel, the grey or
// the second byte that the kind does not know. May be used by several threads at once.
class CRowSource {
  public:
    CRowSource(const CRowIteratorBands& pixels, const SKind& kind);

    CNPixelFormat Format() const { return to_; }
    int Width() const { return pixels_.GetWidth(); }
    int Height() const { return pixels_.GetHeight(); }
    std::size_t RowBytes() const {
        return static_cast<std::size_t>(Width()) * static_cast<std::size_t>(to_.PixelBytes());
    }
    // Row y; `row` has room for it, aligned for its samples.
    void Get(int y, void* row) const;

  private:
    const CRowIteratorBands& pixels_;
    CNPixelFormat from_;
    CNPixelFormat to_;
};

}  // namespace imagefile
