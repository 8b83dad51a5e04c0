#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>

#include "host/core/CErrorAutoThrow.h"
#include "host/core/Geometry.h"
#include "host/core/HostApi.h"
#include "host/graphics/CNPixelFormat.h"
#include "host/graphics/ColorRef.h"

// Which samples of a pixel an iterator's rows show.
enum class ENChannel : int {
    Colour = -3,  // blue, green, red of a colour image; grey of a grey one
    All = -2,
    Alpha = 3,
    Grey = 4,
};

class CPixelStore;

// An image accessed a row at a time: a counted handle on a pixel store, a place on the canvas, and
// a channel access. Copies of the handle share the pixels. With all channels selected a row is a
// plain pointer into the store; with a selection, GetRow gathers the selected samples and
// ReleaseRow writes them back. Threads may use different rows of one store through handles of their
// own; a handle itself belongs to one thread.
class HOST_API CRowIteratorBands {
  public:
    CRowIteratorBands();
    ~CRowIteratorBands();
    CRowIteratorBands(const CRowIteratorBands& other);
    CRowIteratorBands(CRowIteratorBands&& other) noexcept;
    CRowIteratorBands& operator=(const CRowIteratorBands& other);
    CRowIteratorBands& operator=(CRowIteratorBands&& other) noexcept;

    // A new image, pixels undefined, its top left corner at `origin` on the canvas. Error 101 when
    // a side is below 1 or the format unknown, 102 when the memory cannot be had.
    CErrorAutoThrow Create(int width, int height, CNPixelFormat format, CPoint origin = {});
    // An image over pixels that somebody else owns; `release` (may be empty) is called when the
    // last handle is gone. `stride` is the distance of rows in bytes.
    CErrorAutoThrow Attach(void* pixels, std::ptrdiff_t stride, int width, int height,
                           CNPixelFormat format, std::function<void()> release = {});
    // Becomes an image of the source's size, place and format, all channels accessible and pixels
    // undefined, unless the two share their pixels. Memory is reused when nobody else holds it and
    // size and format are equal.
    CErrorAutoThrow Match(const CRowIteratorBands& source);
    // Becomes the same, holding the source's pixels (all channels). `mode` is 0.
    CErrorAutoThrow Copy(const CRowIteratorBands& source, int mode);
    // A new image, zeroed, of the source's format, place and size (or the size given). `mode` is 2.
    CErrorAutoThrow CreateCompatible(const CRowIteratorBands& source, int mode);
    CErrorAutoThrow CreateCompatible(int width, int height, const CRowIteratorBands& model,
                                     int mode);
    // A new 16-bit grey image filled with the brightness of `colour`.
    CErrorAutoThrow CreateGreyscale(int width, int height, CColorRef colour);
    // Lets go of the pixels: Destroy because they are no longer wanted, Detach because somebody
    // else holds them. Either way the handle is unattached afterwards.
    void Destroy();
    void Detach() { Destroy(); }
    // Takes over the other's pixels, which is left unattached.
    void Consume(CRowIteratorBands& other);

    bool IsAttached() const { return store_ != nullptr; }
    int GetWidth() const { return width_; }
    int GetHeight() const { return height_; }
    int GetBPP() const { return format_.BitsPerPixel(); }
    CNPixelFormat GetPixelFormat() const { return format_; }
    // Where the image lies on the canvas.
    CRect GetRect() const {
        return {origin_.x, origin_.y, origin_.x + width_, origin_.y + height_};
    }
    void SetOrigin(CPoint origin) { origin_ = origin; }

    // Restricts the rows to some channels. Error 101 when the image has no such channel.
    CErrorAutoThrow SetChannelAccess(ENChannel channel, int modify_mode);
    ENChannel GetChannelAccess() const { return channel_; }
    int GetImageModifyMode() const { return modify_mode_; }
    // The format that the rows show under the channel access: colour without alpha for Colour,
    // grey for Grey and Alpha.
    CNPixelFormat GetAccessFormat() const;

    // The samples of row `y`, left to right; error 101 outside the image. Every row taken is given
    // back with ReleaseRow of the same constness.
    CErrorAutoThrow GetRow(std::uint8_t*& row, int y);
    CErrorAutoThrow GetRow(const std::uint8_t*& row, int y) const;
    void ReleaseRow(int y);
    void ReleaseRow(int y) const;

    // All samples of row `y` (0 to height - 1) whatever the channel access: for loops that work on
    // many rows, or threads, at once. Needs no release.
    template <class Sample>
    Sample* Row(int y) {
        return reinterpret_cast<Sample*>(pixels_ + stride_ * y);
    }
    template <class Sample>
    const Sample* Row(int y) const {
        return reinterpret_cast<const Sample*>(pixels_ + stride_ * y);
    }
    std::ptrdiff_t Stride() const { return stride_; }
    // Takes over all samples of row `y` from an image of the same size and format.
    void CopyRow(const CRowIteratorBands& source, int y) {
        if (SharesPixelsWith(source)) return;
        std::memcpy(
            Row<std::uint8_t>(y), source.Row<std::uint8_t>(y),
            static_cast<std::size_t>(width_) * static_cast<std::size_t>(format_.PixelBytes()));
    }
    bool SharesPixelsWith(const CRowIteratorBands& other) const {
        return store_ && store_ == other.store_;
    }

  private:
    struct SGatheredRows;
    bool HasRow(int y) const { return store_ && y >= 0 && y < height_; }
    std::uint8_t* Gather(int y) const;
    void Adopt(std::shared_ptr<CPixelStore> store, int width, int height, CNPixelFormat format,
               CPoint origin);

    std::shared_ptr<CPixelStore> store_;
    std::uint8_t* pixels_ = nullptr;  // of row 0, inside the store
    std::ptrdiff_t stride_ = 0;
    int width_ = 0;
    int height_ = 0;
    CPoint origin_;
    CNPixelFormat format_;
    ENChannel channel_ = ENChannel::All;
    int modify_mode_ = 0;
    mutable std::unique_ptr<SGatheredRows> gathered_;
};

// The mask image of an effect call: 8-bit grey, white where the effect shows in full.
using CRowIterator = CRowIteratorBands;
