#pragma once

#include "host/core/HostApi.h"
#include "host/graphics/CRowIteratorBands.h"

// Limits an effect to a selection: where the mask (8-bit grey, the image's size) is white the
// effect stays, where it is black the source comes back exactly, between them the two are mixed and
// rounded to nearest, alpha included. Error 101 when sizes or formats do not fit.
HOST_API CErrorAutoThrow BlendBySelection(const CRowIteratorBands& source, const CRowIterator& mask,
                                          CRowIteratorBands& effect);
