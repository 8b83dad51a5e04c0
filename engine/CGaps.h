#pragma once

#include "engine/CStrokeTransform.h"

// Scratches the image with 1000 dark strokes, each a random walk of straight segments that turns by
// up to 60 degrees at every joint. Grey images keep a margin of 3 pixels clear; in colour images a
// segment that starts on the image's edge takes the colour of that pixel. Alpha is left alone.
// "Number of lines" 1 to 1000, the segments of a stroke; "Length of lines" 1 to 100, a segment in
// pixels; "Transparency" 0 (black) to 255.
class CGaps : public CStrokeTransform {
  public:
    CGaps();
    void ReadParameters() override;

    // Draw one segment, its ends clamped into the work rectangle, blended toward a colour.
    void DrawLineGrey(int x0, int y0, int x1, int y1, int value, int line_transparency);
    void DrawLineColor(int x0, int y0, int x1, int y1, int r, int g, int b, int line_transparency);

  protected:
    SField Field() const override;
    std::unique_ptr<IStrokeParts> MakeParts() const override;

  private:
    template <class Traits>
    struct TSegment;
    template <class Traits>
    TSegment<Traits> SegmentBetween(CPoint from, CPoint to, const int* colour,
                                    int line_transparency) const;
    // The colour of a segment that starts at a point: black, or on the edge of a colour image the
    // source's there.
    template <class Traits>
    void ColourAt(CPoint from, int* colour) const;

    std::int32_t lineCount = 0;
    std::int32_t lineLength = 0;
    std::int32_t transparency = 0;
};
