#pragma once

#include "host/graphics/CIoDeformation.h"
#include "host/graphics/ColorRef.h"

// Runs a configured mosaic. A transparent source is flattened onto the fill colour first and gets
// its alpha back afterwards. The deformation draws its random numbers from seed 1 in every run.
// Errors are those of the flattening, the deformation and the copies; a copy that fails leaves the
// destination destroyed.
CErrorAutoThrow ApplyMosaic(CStatusControl* status, CIoDeformation& deformation,
                            const CRowIteratorBands& source, CRowIteratorBands& destination,
                            bool transparent, CColorRef fill_colour);
