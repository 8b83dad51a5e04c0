#pragma once

#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#include "host/graphics/ColorRef.h"

// Lays a plain weave over the image: threads `weaveWidth` pixels wide, `gapWidth` pixels apart,
// each shaded like a tube where it lies on top. The image shows unchanged in the middle of such a
// stretch and turns to `weaveColor`, by `opacity` per cent (0 to 100; values beyond count as the
// nearest), towards its ends. Gaps take `gapColor` if `fillGaps`, else they show the image. The
// pattern begins at canvas column 0 and at the bottom row of a canvas `canvasHeight` pixels high
// and goes on beyond the canvas without a seam, so every part of a canvas gets its part of it.
//
// `destination` becomes a copy of `source` with its colour or grey samples changed; alpha stays.
// Made for 8-bit images: of any format other than grey with alpha, colour, and colour with alpha,
// the first bytes of each row, as many as the image is wide, are woven as grey samples.
//
// Reports progress to `status` (may be null) once a row, from the last row to the first. Both
// images end with all channels accessible. Errors: 100 when cancelled (`destination` is destroyed),
// 101 without a source, for a negative width, or when both widths are 0, or what copying the source
// reports.
CErrorAutoThrow ApplyWeave(CStatusControl* status, CRowIteratorBands& source,
                           CRowIteratorBands& destination, int weaveWidth, int gapWidth,
                           int opacity, COLORREF weaveColor, COLORREF gapColor, bool fillGaps,
                           int canvasHeight);
