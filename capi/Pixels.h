#pragma once

#include "capi/cmdtexture.h"
#include "host/graphics/CRowIteratorBands.h"

// The caller's pictures and the host's: colour samples lie as blue, green, red in the latter.

// What is wrong with a picture that a caller gave, thrown as CJobError, Refused; `role` names it.
void CheckImage(const cmdtexture_image* image, const char* role);
// Refuses a destination that cannot take what becomes of the source.
void CheckPair(const cmdtexture_image& source, const cmdtexture_image& destination);

// The picture as the host reads it: the caller's own memory where it lies as the host's does, else
// a copy. Throws std::bad_alloc.
CRowIteratorBands ToHost(const cmdtexture_image& image);
// Copies a host's picture of the same size and channels into the caller's memory.
void FromHost(const CRowIteratorBands& picture, const cmdtexture_image& image);
