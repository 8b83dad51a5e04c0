#pragma once

#include "engine/CStrokeTransform.h"

// Draws pipes along the contours of the image, each across the gradient at a random point and in
// the colour of that point: bundles of parallel strands whose shade rises and falls across the
// bundle, so that a pipe looks round. Alpha is left alone.
// "Number of pipes" 1 to 100, each 320 pipes; "Length factor" 1 to 20, half a pipe in pixels;
// "Width factor" 0 to 40, the strands on either side of the axis; "Transparency" 0 to 255.
class CTangentPipes : public CStrokeTransform {
  public:
    CTangentPipes();
    void ReadParameters() override;

    // Draw one pipe around an axis. Colours are sample values of the image's depth.
    void DrawPipeGrey(int x0, int y0, int x1, int y1, int pipe_width, int value,
                      int pipe_transparency) {
        DrawPipe<1>({x0, y0}, {x1, y1}, pipe_width, {value}, pipe_transparency);
    }
    void DrawPipeGreyAlpha(int x0, int y0, int x1, int y1, int pipe_width, int value,
                           int pipe_transparency) {
        DrawPipe<2>({x0, y0}, {x1, y1}, pipe_width, {value}, pipe_transparency);
    }
    void DrawPipeRGB(int x0, int y0, int x1, int y1, int pipe_width, int r, int g, int b,
                     int pipe_transparency) {
        DrawPipe<3>({x0, y0}, {x1, y1}, pipe_width, {b, g, r}, pipe_transparency);
    }
    void DrawPipeRGBA(int x0, int y0, int x1, int y1, int pipe_width, int r, int g, int b,
                      int pipe_transparency) {
        DrawPipe<4>({x0, y0}, {x1, y1}, pipe_width, {b, g, r}, pipe_transparency);
    }

  protected:
    SField Field() const override {
        return {pipeCount, 1, 3 * (2 * lengthFactor + 1) * (2 * widthFactor + 1)};
    }
    std::unique_ptr<IStrokeParts> MakeParts() const override;

  private:
    template <int kChannels>
    void DrawPipe(CPoint from, CPoint to, int pipe_width, const TColour<kChannels>& colour,
                  int pipe_transparency);

    std::int32_t pipeCount = 0;
    std::int32_t lengthFactor = 0;
    std::int32_t widthFactor = 0;
    std::int32_t transparency = 0;
};
