#pragma once

#include "engine/CAbstractTransform.h"

// The template of transforms that take each pixel from somewhere else in the source: the per-pixel
// operations turn the neighbourhood arrays into sampleX and sampleY.
class CTemplateE : public CAbstractTransform {
  public:
    virtual void ComputeGrey() = 0;
    virtual void ComputeGreyAlpha() = 0;
    virtual void ComputeRGB() = 0;
    virtual void ComputeRGBA() = 0;
};
