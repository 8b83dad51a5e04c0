#pragma once

#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#include "host/graphics/ColorRef.h"

// Lays slats over the image, each fading from the source at its lit edge to `color` at the other.
//
// `width`: pixels from one slat to the next; below 2 counts as 2. `opacity`: per cent. `horizontal`
// slats are stacked up from the bottom of a canvas `canvasHeight` pixels high, vertical ones begin
// at canvas column 0, so every part of a canvas gets its part of the same pattern.
// `lightFromLeftTop`: the left or top edge of a slat is the lit one; grey images with horizontal
// slats have it the other way round.
//
// `destination` becomes a copy of `source` with its colour or grey samples shaded; alpha stays.
// Reports progress to `status` (may be null) once a row. Errors: 100 when cancelled (`destination`
// is destroyed), 101 without a source or for an unknown format, or what copying the source reports.
CErrorAutoThrow ApplyBlinds(CStatusControl* status, const CRowIteratorBands& source,
                            CRowIteratorBands& destination, int width, int opacity, bool horizontal,
                            bool lightFromLeftTop, COLORREF color, int canvasHeight);
