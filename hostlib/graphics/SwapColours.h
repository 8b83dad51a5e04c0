#pragma once

#include "host/core/HostApi.h"
#include "host/graphics/CNPixelFormat.h"

// Copies a row of pixels with the first and third colour sample exchanged: from blue first, as
// pictures lie in memory here, to red first, as most others have them, or back. Grey stays as it
// is. The rows are the same or do not overlap; those of 16 bits lie at even addresses. With
// `streams` the copy is written past the caches, and what it overwrites is not read, which serves
// pictures that caches do not hold.
HOST_API void SwapColours(const void* from, void* to, int pixels, CNPixelFormat format,
                          bool streams = false);
