#pragma once

#include "host/graphics/CRowIteratorBands.h"

// Places that are looked at together, few enough to stay in the nearest cache.
struct SPlaces {
    static constexpr int kMost = 256;
    float x[kMost], y[kMost];   // in pixels; the centre of the first one is 0
    float seen[3 * kMost + 3];  // the colours there, in the picture's samples

    // Of each place, the first pixel around it, the way from the second on, and whether all that
    // are read lie in the picture.
    int first_x[kMost], first_y[kMost], inside[kMost];
    float way_x[kMost], way_y[kMost];
};

// Reads a picture between its pixels.
class CPictureSampler {
  public:
    // `resample` is 0 for the nearest pixel, 1 for linear, 2 for cubic; `wrap` continues the
    // picture beyond its edge with the opposite side, otherwise with its outer samples.
    CPictureSampler(const CRowIteratorBands& picture, int resample, bool wrap)
        : picture_(picture), resample_(resample), wrap_(wrap) {}
    // Fills `seen` for the first `pixels` places with what the picture shows there, its colour
    // channels one after the other. Between samples, values may lie a little outside their range.
    void See(SPlaces& places, int pixels) const;

  private:
    const CRowIteratorBands& picture_;
    int resample_;
    bool wrap_;
};
