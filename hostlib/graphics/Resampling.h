#pragma once

#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"

// As Resample, but makes only `part` of the picture scaled to `scaled`: for patterns that are
// larger than the picture they fill. The scaled picture repeats endlessly; a part may lie across
// its edge.
CErrorAutoThrow ResamplePart(CStatusControl* status, const CRowIteratorBands& source,
                             CRowIteratorBands& output, CSize scaled, const CRect& part,
                             bool seamless, bool nearest);
