#pragma once

#include "engine/CAbstractTransform.h"

// Scratches the image with 1000 dark strokes, each a random walk of straight segments that turns by
// up to 60 degrees at every joint. Grey images keep a margin of 3 pixels clear; in colour images a
// segment that starts on the image's edge takes the colour of that pixel. Alpha is left alone.
// "Number of lines" 1 to 1000, the segments of a stroke; "Length of lines" 1 to 100, a segment in
// pixels; "Transparency" 0 (black) to 255.
class CGaps : public CAbstractTransform {
  public:
    CGaps();
    CErrorAutoThrow ProcessGrey() override { return DrawGreyStrokes(); }
    CErrorAutoThrow ProcessGreyAlpha() override { return DrawGreyStrokes(); }
    CErrorAutoThrow ProcessRGB() override { return DrawColourStrokes(); }
    CErrorAutoThrow ProcessRGBA() override { return DrawColourStrokes(); }
    void ReadParameters() override;

    // Draw one segment, its ends clamped into the work rectangle, blended toward a colour.
    void DrawLineGrey(int x0, int y0, int x1, int y1, int value, int line_transparency);
    void DrawLineColor(int x0, int y0, int x1, int y1, int r, int g, int b, int line_transparency);

  private:
    CErrorAutoThrow DrawGreyStrokes();
    CErrorAutoThrow DrawColourStrokes();
    // Walks every stroke, its points clamped into `limits` (right and bottom included), and calls
    // `draw` with the ends of each segment.
    template <class Draw>
    CErrorAutoThrow WalkStrokes(const CRect& limits, Draw&& draw);
    template <class Sample, int kColourChannels>
    void DrawSegment(CPoint from, CPoint to, const int (&colour)[kColourChannels],
                     int line_transparency);

    std::int32_t lineCount = 0;
    std::int32_t lineLength = 0;
    std::int32_t transparency = 0;
};
