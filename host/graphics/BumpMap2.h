#pragma once

#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#include "host/graphics/SReliefSettings.h"

// Settings of a relief that is given as a picture. Smoothness is the caller's business.
struct CBumpMapEffectSettings : SReliefSettings {
    CBumpMapEffectSettings() {
        shininess = 0;
        smoothness = 0;
    }
};

// Lights `source` by the relief `bump`: grey, 8 or 16 bits, one pixel larger than the source on
// every side, white high. Writes what the source shows under its channel access into what the
// destination shows under its own; both have the same size and show the same format, and may be the
// same picture. Error 100 when cancelled, 101 when the pictures do not fit; `third` is an
// unattached image, `mode` is 1 and `area` null: nothing else is offered (101, 103).
HOST_API CErrorAutoThrow BumpMap2(CStatusControl* status, const CBumpMapEffectSettings& settings,
                                  const CRowIteratorBands& source, const CRowIteratorBands& bump,
                                  const CRowIteratorBands& third, CRowIteratorBands& destination,
                                  int mode, const CRect* area);
