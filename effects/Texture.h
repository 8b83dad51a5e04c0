#pragma once

#include "host/commands/ICommandExecutionContext.h"
#include "host/graphics/BumpMap2.h"
#include "host/graphics/SColorSpecRGB.h"

// The image of a texture of the context's library, grey and without alpha; unattached when it
// cannot be had.
CRowIteratorBands LoadTextureImage(ICommandExecutionContext* context, const CString& name,
                                   const SColorSpecRGB& color_spec);

// Embosses the image with the texture, scaled to `size` per cent and tiled over it; alpha stays as
// it is. Errors: 101 without a source or a texture, 100 when cancelled, 102 without memory; the
// destination is then undefined.
CErrorAutoThrow ApplyTexture(CStatusControl* status, CRowIteratorBands& source,
                             CRowIteratorBands& destination, const CRowIteratorBands& texture,
                             const CBumpMapEffectSettings& settings, int size);
