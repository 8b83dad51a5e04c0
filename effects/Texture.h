#pragma once

#include "host/graphics/BumpMap2.h"

// Embosses the image with the texture, which is grey and has no alpha, scaled to `size` per cent
// and tiled over it; alpha stays as it is. Errors: 101 without a source or a texture, 100 when
// cancelled, 102 without memory; the destination is then undefined.
CErrorAutoThrow ApplyTexture(CStatusControl* status, CRowIteratorBands& source,
                             CRowIteratorBands& destination, const CRowIteratorBands& texture,
                             const CBumpMapEffectSettings& settings, int size);
