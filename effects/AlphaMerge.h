#pragma once

#include "host/graphics/CRowIteratorBands.h"

// For operations of the graphics library that are to see the colour of an 8-bit image without its
// alpha: the alpha is hidden while they run and put back afterwards.

// Whether the image is of a kind whose alpha is hidden: 8-bit grey or colour with alpha.
bool HasHideableAlpha(CNPixelFormat format);
// Restricts the rows of an image of such a kind to its colour, or grey, channels.
void HideAlpha(CRowIteratorBands& image, CNPixelFormat format, int modify_mode);
// The destination, which holds colour only, becomes an image of `format` with the alpha of the
// source; both show all channels again, in the given modify mode. When the merge fails the
// destination is destroyed.
CErrorAutoThrow MergeAlpha(CRowIteratorBands& source, CRowIteratorBands& destination,
                           CNPixelFormat format, int modify_mode);
