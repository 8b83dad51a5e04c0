#pragma once

#include "host/graphics/CIoTilesEffect.h"

// Turns the image into lit, raised tiles; alpha stays as it is. Errors are those of the tiles
// operation and of putting the alpha back.
CErrorAutoThrow ApplyTiles(CStatusControl* status, CRowIteratorBands& source,
                           CRowIteratorBands& destination, const CTilesSettings& settings);
