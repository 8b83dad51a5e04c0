#pragma once

#include "host/graphics/CIoSculptureEffect.h"

// Carves the image into the pattern (unattached: a plain material), where the mask (may be null)
// is white. Errors are those of the sculpture operation.
CErrorAutoThrow ApplySculpture(CStatusControl* status, const CRowIteratorBands& source,
                               CRowIteratorBands& destination, const CRowIterator* mask,
                               const CRowIteratorBands& pattern, const CSculptureSettings& settings,
                               const SColorSpecRGB& color_spec);
