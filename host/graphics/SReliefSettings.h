#pragma once

#include "host/graphics/ColorRef.h"

// How a relief is lit: the fields that begin the settings of every relief effect. Values outside
// their range are taken as its nearer end.
struct SReliefSettings {
    int angle = 315;            // where the light comes from, degrees clockwise from the top
    int elevation = 30;         // of the light above the plane, 1 to 90 degrees
    COLORREF color = 0xFFFFFF;  // of the light: it tints what is lit more than the flat plane
    int intensity = 50;         // 1 to 100: how much slopes toward and away from the light differ
    int ambience = 0;           // -100 to 100: light from everywhere, added or taken away
    int depth = 1;              // 1 to 100: how high the relief is
    int shininess = 50;         // 0 to 100: strength and tightness of the highlights
    int smoothness = 25;        // 0 to 100: how soft the relief is

    friend bool operator==(const SReliefSettings&, const SReliefSettings&) = default;
};
