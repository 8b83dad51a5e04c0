#pragma once

#include "host/core/HostApi.h"

// The editor's range scale: how far the larger maxima of the effects are moved, in per cent (50
// makes them one and a half times as large). Without a call, the user's registry decides:
// key "Software\Quarn\Brushwerk\X15\Settings", values "RangeScalePercent" and "RangeScale" (0, 1).
// Per cents beyond -99 to 900 count as the nearest.
HOST_API void SetRangeScale(int percent, bool enabled);
struct SRangeScale {
    int percent = 0;
    bool enabled = false;
};
HOST_API SRangeScale GetRangeScale();
