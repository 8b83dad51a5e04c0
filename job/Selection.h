#pragma once

#include "host/graphics/CRowIteratorBands.h"

// A picture as a selection: its brightness in 8-bit grey, white is full effect. A picture that is
// that already is shared. Throws CNException when there is no memory.
CRowIterator ToSelection(const CRowIteratorBands& picture);
