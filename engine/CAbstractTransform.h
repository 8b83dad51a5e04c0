#pragma once

#include <algorithm>
#include <cstdint>

#include "engine/CTransformParamList.h"
#include "engine/LineRasteriser.h"
#include "host/core/Geometry.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#include "host/graphics/IRowWorkers.h"
#include "host/graphics/PixelMath.h"

// A transform of the texture engine: named integer parameters, a source that is read, a
// destination that is written over a work rectangle, one progress step a row or stroke.
//
// Use: construct, fill `params`, SetStatus, SetImages, Run. Source and destination do not share
// their pixels. What a run does not write keeps what the destination held: the source's pixels
// when the run had to make the destination.
//
// Rows that do not depend on each other are worked on by the threads that the status control lends;
// without any, or on the plain path, one after the other.
//
// Every constructor reseeds the calling thread's generator, so that a picture's strokes are the
// same on every run.
class CAbstractTransform {
  public:
    virtual ~CAbstractTransform() = default;
    CAbstractTransform(const CAbstractTransform&) = delete;
    CAbstractTransform& operator=(const CAbstractTransform&) = delete;

    // Process the whole work rectangle of an image of that layout; error 100 when cancelled.
    virtual CErrorAutoThrow ProcessGrey() = 0;
    virtual CErrorAutoThrow ProcessGreyAlpha() = 0;
    virtual CErrorAutoThrow ProcessRGB() = 0;
    virtual CErrorAutoThrow ProcessRGBA() = 0;
    // Called by Run between the work rectangle and ReadParameters.
    virtual void PrepareRun() {}
    // Clamps every entry of `params` and takes over the transform's own values.
    virtual void ReadParameters() = 0;
    // Takes the source's geometry. A destination that is unattached or of another format becomes
    // a copy of the source; any other keeps its pixels.
    virtual CErrorAutoThrow PrepareImages();

    void SetImages(const CRowIteratorBands* image_source, CRowIteratorBands* image_destination) {
        source = image_source;
        destination = image_destination;
    }
    void SetStatus(CStatusControl* control) { status = control; }
    // Prepares and processes. Error 101 without a source, destination or status control; a layout
    // that the engine does not know is left alone and succeeds.
    CErrorAutoThrow Run();
    // The part of Run that comes before the processing: images, work rectangle, parameters.
    CErrorAutoThrow Prepare();
    // Turns the border parameters, in thousandths of the image's sides, into the work rectangle.
    void ComputeBorders();
    static constexpr int Clamp(int value, int low, int high) {
        return pixel::Clamp(value, low, high);
    }

    // Draw a soft line about three pixels wide into the destination (LineRasteriser.h). Points are
    // clamped into the image; colours are sample values of the image's depth; a transparency of 0
    // paints the core opaquely, 255 hardly at all. Alpha is left alone.
    void DrawAALineGrey(int x0, int y0, int x1, int y1, int value, int transparency) {
        DrawAALine<1>({x0, y0}, {x1, y1}, {value}, transparency);
    }
    void DrawAALineGreyAlpha(int x0, int y0, int x1, int y1, int value, int transparency) {
        DrawAALine<2>({x0, y0}, {x1, y1}, {value}, transparency);
    }
    void DrawAALineRGB(int x0, int y0, int x1, int y1, int r, int g, int b, int transparency) {
        DrawAALine<3>({x0, y0}, {x1, y1}, {b, g, r}, transparency);
    }
    void DrawAALineRGBA(int x0, int y0, int x1, int y1, int r, int g, int b, int transparency) {
        DrawAALine<4>({x0, y0}, {x1, y1}, {b, g, r}, transparency);
    }

    CTransformParamList params;
    // Runs the readable per-pixel operations only, not the row kernels that must equal them.
    bool use_plain_path = false;

  protected:
    CAbstractTransform();

    int ValueOf(const wchar_t* parameter) const { return params.Find(parameter).value; }
    CRect WorkRectangle() const { return {left, top, right, bottom}; }
    IRowWorkers* Workers() const { return use_plain_path ? nullptr : status->Workers(); }
    // Rows `top` to `end` - 1, one step of progress each: `rows(first, last)` on blocks of them.
    template <class Rows>
    CErrorAutoThrow ForRows(int end, Rows&& rows) {
        return ForEachRow(
            Workers(), end - top, kBlockRows, [this](int) { return status->IncrementProgress(1); },
            [&](int first, int last, int /*slot*/) { rows(top + first, top + last); });
    }
    // Rows that a thread takes on at a time.
    static constexpr int kBlockRows = 16;
    // A destination that came with a format of the source's may be smaller than it.
    bool DestinationHasRow(int row) const { return row < destination->GetHeight(); }
    int ColumnsInDestination(int end) const {
        return end < destination->GetWidth() ? end : destination->GetWidth();
    }
    // The destination's rows end before this one, in the source's rectangle.
    int DestinationEnd() const { return std::min(height, destination->GetHeight()); }
    SCanvas DestinationRows(int first, int last) const {
        return {destination->Row<std::uint8_t>(first), destination->Stride(),
                ColumnsInDestination(width), first, last};
    }
    // Calls `visitor` with the TPixelTraits of the image's format.
    template <class Visitor>
    auto AtLayout(Visitor&& visitor) const {
        using Result = decltype(visitor(TPixelTraits<std::uint8_t, 1>{}));
        return VisitPixelFormat<Result>(pixelFormat, Result{}, visitor);
    }
    // Calls `visitor` with the TPixelTraits of this many channels at the image's depth.
    template <int kChannels, class Visitor>
    auto AtDepth(Visitor&& visitor) const {
        return pixelFormat.Is16bit() ? visitor(TPixelTraits<std::uint16_t, kChannels>{})
                                     : visitor(TPixelTraits<std::uint8_t, kChannels>{});
    }

    template <int kChannels>
    void DrawAALine(CPoint from, CPoint to, const TColour<kChannels>& colour, int transparency) {
        AtDepth<kChannels>([&](auto traits) {
            CSoftLine({width, height}, from, to)
                .Draw<decltype(traits)>(DestinationRows(0, DestinationEnd()), colour, transparency);
        });
    }

    CStatusControl* status = nullptr;                      // not owned
    const CRowIteratorBands* source = nullptr;             // not owned
    CRowIteratorBands* destination = nullptr;              // not owned
    std::int32_t width = 0, height = 0, bitsPerPixel = 0;  // of the source
    std::int32_t x = 0, y = 0;                             // the pixel being processed
    std::int32_t sampleX = 0, sampleY = 0;                 // where the glass looks, 1/256 pixel
    // Samples around the pixel, at index 3 * dx + dy: 0 itself, 1 below it, 3 to its right.
    std::int32_t grey[9] = {}, red[9] = {}, green[9] = {}, blue[9] = {}, alpha[9] = {};
    std::int32_t outGrey = 0, outRed = 0, outGreen = 0, outBlue = 0, outAlpha = 0;
    std::int32_t left = 0, right = 0, top = 0, bottom = 0;  // the work rectangle, ends excluded
    CNPixelFormat pixelFormat = ENPixelFormat::ColourAlpha8;
};
