#pragma once

#include "engine/CStrokeTransform.h"

// Draws straight hairs across the contours of the image, each along the gradient at a random point
// and in the colour of that point. Alpha is left alone.
// "Number of lines" 1 to 100, each 320 hairs; "Length of lines" 1 to 100, half a hair in pixels;
// "Transparency" 0 to 255.
class CCotangentLines : public CStrokeTransform {
  public:
    CCotangentLines();
    void ReadParameters() override;

  protected:
    SField Field() const override { return {lineCount, 1, 3 * (2 * lineLength + 1)}; }
    std::unique_ptr<IStrokeParts> MakeParts() const override;

  private:
    std::int32_t lineCount = 0;
    std::int32_t lineLength = 0;
    std::int32_t transparency = 0;
};
