#pragma once

#include <functional>

#include "host/graphics/CIoDeformation.h"
#include "host/graphics/ColorRef.h"

// Runs the mosaic that `choose` configures. A transparent source is flattened onto the fill colour
// first and gets its alpha back afterwards. The deformation draws its random numbers from seed 1 in
// every run. Errors are those of the flattening, the deformation and the copies; a copy that fails
// leaves the destination destroyed.
CErrorAutoThrow ApplyMosaic(CStatusControl* status,
                            const std::function<void(CIoDeformation&)>& choose,
                            const CRowIteratorBands& source, CRowIteratorBands& destination,
                            bool transparent, CColorRef fill_colour);
