#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "host/core/CErrorAutoThrow.h"
#include "host/graphics/CNPixelFormat.h"
#include "host/graphics/CStatusControl.h"

// Some rows of an image, in memory of their own.
struct SBand {
    std::uint8_t* pixels;  // of row `first`
    std::ptrdiff_t stride;
    int first, last;  // the rows, `last` excluded

    std::uint8_t* Row(int y) const { return pixels + stride * (y - first); }
};

// Rows of a band of an image: few enough that they stay in the second-level cache. Bands follow
// each other from the work rectangle's top on; each is made with the row below it.
inline int BandRows(int width, CNPixelFormat format) {
    constexpr std::int64_t kCacheBytes = 512 << 10;
    const std::int64_t row = std::max<std::int64_t>(std::int64_t{width} * format.PixelBytes(), 1);
    return static_cast<int>(std::clamp<std::int64_t>(kCacheBytes / row, 4, 32));
}

// A stage of a pipeline whose result can be made a band at a time for the stage that follows, so
// that no image lies between the two. The stage is prepared first; its source is not written before
// the following stage has begun.
class IBandStage {
  public:
    // Goes through the stage's own progress, and gets ready to make bands; error 100 when the user
    // cancelled. Nothing has been written then, nor would anybody see what the stage has written.
    virtual CErrorAutoThrow Announce() = 0;
    // Turns a copy of rows of the stage's source into the same rows of its result. On any thread.
    virtual void MakeBand(const SBand& band) const = 0;

  protected:
    ~IBandStage() = default;

    static CErrorAutoThrow AnnounceSteps(CStatusControl& status, int count) {
        for (int i = 0; i < count; ++i) {
            if (status.IncrementProgress(1) != 0) return TolmErrorCode::Cancelled;
        }
        return {};
    }
};
