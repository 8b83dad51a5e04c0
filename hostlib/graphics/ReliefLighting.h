#pragma once

#include <functional>
#include <initializer_list>

#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#include "host/graphics/SReliefSettings.h"

// The lighting of all relief effects. A point's light follows from its slopes: by how much the
// relief rises to the right and downwards, per pixel. It is two numbers: the shade, by which the
// colour is multiplied, and the gloss, how much (0 to 1) of a highlight lies over it. Both are
// relative to the flat plane's and the same for all channels, so that the picture keeps its
// brightness and its hues: a flat relief without ambience gives shade 1 and gloss 0 exactly. What
// would shine brighter than white turns toward the light's colour instead of changing hue.
class CReliefLighting {
  public:
    explicit CReliefLighting(const SReliefSettings& settings);

    // How high the settings' depth raises a relief, 1 for depth 1. It grows with the root of depth,
    // so that the whole range of depth is of use.
    float HeightScale() const { return height_scale_; }

    void LightRow(const float* slope_x, const float* slope_y, float* shade, float* gloss,
                  int pixels) const;
    // Lights the colour of a row of pixels in place; alpha is left alone.
    void ApplyRow(CNPixelFormat format, void* row, const float* shade, const float* gloss,
                  int pixels) const;

    // What the row kernels need to know.
    struct SCoefficients {
        float toward_x, toward_y;      // the light's direction in the plane, by how low it stands
        float half_x, half_y, half_z;  // halfway between the light and the viewer above
        float gloss_scale, gloss, tightness;
        float flat, contrast;  // shade of the flat plane; strength of the slopes' part
        float colour[3];       // blue, green and red of the light, 0 to 1
        float grey;            // its brightness
    };

  private:
    SCoefficients by_;
    float height_scale_;
};

// A height image: grey, 8 or 16 bits, white high. `rise` is the height of white over black in
// pixels at depth 1.
struct SHeights {
    const CRowIteratorBands& image;
    float rise;
};

// Lights `destination` by the sum of height images of one depth, each one pixel larger than it on
// every side. For every row y, paint(y), called on any thread, first puts the unlit pixels into the
// destination.
CErrorAutoThrow LightByHeights(CStatusControl* status, const CReliefLighting& lighting,
                               std::initializer_list<SHeights> heights,
                               CRowIteratorBands& destination,
                               const std::function<void(int y)>& paint);
