#pragma once

#include "host/core/CErrorAutoThrow.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#include "host/graphics/ColorRef.h"

// The seven materials: each makes `destination` from `source`, in the source's layout and depth,
// with the pipeline of its name. Values outside a parameter's range are pulled into it, except
// where error 101 is named. Error 100 when cancelled: the destination is then as the stages so far
// left it. What the numbers do is said at the transforms.

CErrorAutoThrow ApplySandstone(CStatusControl& status, CRowIteratorBands& source,
                               CRowIteratorBands& destination, int angle, int blur, int detail,
                               int luminance, COLORREF color);

CErrorAutoThrow ApplyPolishedStone(CStatusControl& status, CRowIteratorBands& source,
                                   CRowIteratorBands& destination, int blur, int detail,
                                   int polishing, int angle, COLORREF color);

// Error 101, the destination untouched, without a source or for blur outside 0 to 100, detail
// outside 1 to 100, density outside 1 to 128, angle outside 0 to 359.
CErrorAutoThrow ApplySoftPlastic(CStatusControl& status, CRowIteratorBands& source,
                                 CRowIteratorBands& destination, int blur, int detail, int density,
                                 int angle, COLORREF color);

// The destination of a run that failed is destroyed.
CErrorAutoThrow ApplyRoughLeather(CStatusControl& status, CRowIteratorBands& source,
                                  CRowIteratorBands& destination, int angle, int blur,
                                  int sharpness, int contrast, int luminance, COLORREF lightColor,
                                  COLORREF leatherColor);

CErrorAutoThrow ApplyFineLeather(CStatusControl& status, CRowIteratorBands& source,
                                 CRowIteratorBands& destination, int angle, int blur,
                                 int furrowCount, int furrowLength, int transparency,
                                 COLORREF color);

// A destination that comes with the source's format is drawn over; any other starts as the
// blurred source.
CErrorAutoThrow ApplyFur(CStatusControl& status, CRowIteratorBands& source,
                         CRowIteratorBands& destination, int blur, int density, int length,
                         int transparency);

// Error 101, the destination untouched, without a source or for blur outside 0 to 100, length
// outside 1 to 20, width outside 1 to 40, density outside 1 to 100, angle outside 0 to 359,
// transparency outside 0 to 255.
[[nodiscard]] TolmErrorCode ApplyStrawWall(CStatusControl& status, CRowIteratorBands& source,
                                           CRowIteratorBands& destination, int blur, int length,
                                           int width, int density, int angle, int transparency,
                                           COLORREF color);
