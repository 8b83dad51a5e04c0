#pragma once

#include "host/graphics/CImageOp.h"
#include "host/graphics/SColorSpecRGB.h"
#include "host/graphics/SReliefSettings.h"

// A picture carved into a material.
struct CSculptureSettings : SReliefSettings {
    CSculptureSettings() {
        depth = 20;
        shininess = 0;
        smoothness = 0;
    }
    int offsetX = 0;  // moves the material over the canvas, in pixels
    int offsetY = 0;
    int invert = 0;                  // nonzero: dark is high
    COLORREF plainColor = 0x969696;  // the material where no pattern is set
    int size = 100;                  // of the pattern, in per cent; 1 to 1000

    friend bool operator==(const CSculptureSettings&, const CSculptureSettings&) = default;
};

// Lights a picture as the relief of a material. The settings' depth is the height of white above
// black; their smoothness rounds the relief.
class HOST_API CIoSculptureEffect {
  public:
    // The material, repeated over the canvas from its origin; the picture whose brightness is the
    // relief; and where the effect shows (8-bit grey of the relief's size; elsewhere the relief
    // picture stays). Each may be unattached. With `copy` the operation keeps pixels of its own,
    // otherwise it shares them.
    void SetSourceDib(const CRowIteratorBands& pattern, bool copy);
    void SetBumpDib(const CRowIteratorBands& bump, bool copy);
    void SetMaskDib(const CRowIteratorBands& mask, bool copy);
    // True when the settings differ from those before.
    bool UpdateSettings(const CSculptureSettings& settings);

    // Makes `destination`: the size, place, format and alpha of the relief picture. Error 100 when
    // cancelled, 101 without a relief picture or with a mask of another size or format.
    CErrorAutoThrow ApplyEffect(CStatusControl* status, CRowIteratorBands& destination,
                                const SColorSpecRGB& color_spec);

  private:
    CRowIteratorBands pattern_;
    CRowIteratorBands bump_;
    CRowIteratorBands mask_;
    CSculptureSettings settings_;
};
