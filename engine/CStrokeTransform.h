#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "engine/CAbstractTransform.h"
#include "engine/IBandStage.h"
#include "engine/LineRasteriser.h"
#include "engine/StrokeBands.h"

// What a run of strokes draws: the parts of its strokes, in their order.
class IStrokeParts {
  public:
    virtual ~IStrokeParts() = default;
    virtual std::size_t Count() const = 0;
    virtual CStrokeBands::SRows RowsOf(std::size_t part) const = 0;
    // Draws what lies on the canvas; on any thread.
    virtual void Draw(std::size_t part, const SCanvas& canvas) const = 0;
};

// Parts of one type, which has Rows() and Draw(canvas).
template <class Part>
class TStrokeParts : public IStrokeParts {
  public:
    explicit TStrokeParts(std::size_t count) : parts_(count) {}
    Part& operator[](std::size_t part) { return parts_[part]; }
    std::size_t Count() const override { return parts_.size(); }
    CStrokeBands::SRows RowsOf(std::size_t part) const override { return parts_[part].Rows(); }
    void Draw(std::size_t part, const SCanvas& canvas) const override { parts_[part].Draw(canvas); }

  private:
    std::vector<Part> parts_;
};

// The template of transforms that draw strokes over the destination, one progress step each. All
// strokes are made first, from the source alone; they are then drawn in their order, or band by
// band, each band's in that order, which gives the same pixels.
class CStrokeTransform : public CAbstractTransform, public IBandStage {
  public:
    CErrorAutoThrow ProcessGrey() override { return DrawStrokes(); }
    CErrorAutoThrow ProcessGreyAlpha() override { return DrawStrokes(); }
    CErrorAutoThrow ProcessRGB() override { return DrawStrokes(); }
    CErrorAutoThrow ProcessRGBA() override { return DrawStrokes(); }

    CErrorAutoThrow Announce() override;
    void MakeBand(const SBand& band) const override;

  protected:
    struct SField {
        int strokes;  // each a step of progress
        int parts_a_stroke;
        int pixels_a_stroke;  // about
    };
    virtual SField Field() const = 0;
    // The strokes of the work rectangle, which is not empty, for an image of the format's layout.
    virtual std::unique_ptr<IStrokeParts> MakeParts() const = 0;

  private:
    CErrorAutoThrow DrawStrokes();

    std::unique_ptr<IStrokeParts> parts_;  // of a stage that is announced
    CStrokeBands bands_;
};
