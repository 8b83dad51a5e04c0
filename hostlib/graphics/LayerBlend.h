#pragma once

#include "host/core/HostApi.h"
#include "host/graphics/CRowIteratorBands.h"

// How the colours of a layer mix with those below it.
enum class ENBlendMode { Normal, Multiply, Screen, Overlay, SoftLight, Luminosity };

// How the effect's result is laid over the picture.
struct SLayerMix {
    int opacity = 100;  // per cent
    ENBlendMode blend = ENBlendMode::Normal;
    bool IsPlain() const { return opacity == 100 && blend == ENBlendMode::Normal; }
    bool operator==(const SLayerMix&) const = default;
};

// Lays what an effect made of a picture, `layer`, over the picture, `base`, of the same size and
// format; the result is in `layer`. Where the base is opaque its colours Cb and the layer's Cs mix
// to B(Cb, Cs) of the mode, where it is transparent the layer keeps its own: Cs' = (1 - ab) Cs +
// ab B(Cb, Cs), ab being the base's alpha. `opacity`, 0 to 1, then fades from the base to that:
// the result's alpha is (1 - opacity) ab + opacity as, and its colour the mean of Cb and Cs'
// weighted by the two terms. Alpha is straight; samples are fractions of the largest one, computed
// in double precision and rounded to nearest once, halves up, so that every depth follows one
// formula and every processor gives the same bytes. Opacity 1 in mode Normal leaves the layer as it
// is.
//
// B is that of "Compositing and Blending Level 1" of the W3C, sections 10.1 and 10.2; the fade is
// the dissolve of T. Porter and T. Duff, "Compositing Digital Images" (1984). Grey is its own
// luminosity. Error 101 when sizes or formats differ.
HOST_API CErrorAutoThrow BlendLayer(const CRowIteratorBands& base, ENBlendMode mode, double opacity,
                                    CRowIteratorBands& layer);
