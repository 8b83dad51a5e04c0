#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "host/graphics/CRowIteratorBands.h"

class QImage;
class QRect;

// A picture with its halvings, to be shown at any scale and to try effects on. Level k has half the
// sides of level k - 1, rounded up; each of its pixels is the mean of four, weighted by alpha. It
// never changes once it is made, so threads may share it.
class CPyramid {
  public:
    // `picture` is level `first` of a picture whose level 0 has the size `full`. Empty when `stop`
    // (may be empty; asked by several threads) answered true on the way, or without memory.
    static std::shared_ptr<const CPyramid> Make(const CRowIteratorBands& picture, int first,
                                                CSize full, const std::function<bool()>& stop = {});

    CSize FullSize() const { return full_; }
    int First() const { return first_; }
    int Last() const { return first_ + static_cast<int>(levels_.size()) - 1; }
    // A level from First() to Last(); the nearest one for others.
    int Nearest(int level) const;
    const CRowIteratorBands& Level(int level) const;
    // A part of a level at 8 bits, 16-bit samples by their high bytes; opaque pictures without
    // alpha. The part lies within the level.
    QImage Image(int level, const QRect& part) const;

  private:
    CSize full_;
    int first_ = 0;
    std::vector<CRowIteratorBands> levels_;
};
