#pragma once

#include "host/core/HostApi.h"
#include "host/graphics/CRowIteratorBands.h"

// For effects that work at 8 bits only: the high bytes of a 16-bit image as an 8-bit one of the
// same layout, and the way back. Both fail with error 102 when memory cannot be had.
HOST_API CErrorAutoThrow ToEightBits(const CRowIteratorBands& source, CRowIteratorBands& narrow);
// `wide` becomes a 16-bit image with the colours of the 8-bit `result` (times 257) and the alpha of
// the 16-bit `source`. A sample that the effect left as it was keeps its 16 bits.
HOST_API CErrorAutoThrow WidenOver(const CRowIteratorBands& source, const CRowIteratorBands& result,
                                   CRowIteratorBands& wide);
