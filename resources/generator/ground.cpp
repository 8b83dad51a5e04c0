// Earth, sand and skins, as textures.
#include "recipes.h"

namespace generator {

Real CrackedEarth(Point p) {
    const Point q = Warp(Warp(p, {16, 16}, 0.010, 231), {64, 64}, 0.003, 232);
    const Cell slab = Cells(q, {20, 20}, 0.9, 233);
    const Cell piece = Cells(Warp(p, {40, 40}, 0.007, 234), {52, 52}, 0.9, 235);
    const Real width = 0.07 + 0.05 * Fbm(p, {14, 14}, 3, 236);
    const Real wide = SmoothStep(0.2 * width, 1.5 * width, slab.edge);
    const Real narrow = SmoothStep(-0.04, 0.06, piece.edge + 0.12 * Fbm(p, {22, 22}, 2, 237));
    const Real curl = 0.30 * SmoothStep(0.42, 0.05, slab.edge) + 0.12 * Random(slab.id, 1);
    const Real lean =
        0.25 * (slab.du * (Random(slab.id, 2) - 0.5) + slab.dv * (Random(slab.id, 3) - 0.5));
    return wide * (0.6 + 0.22 * narrow + curl + lean) + 0.13 * Fbm(p, {64, 64}, 6, 238);
}

// Wind ripples: a long slope up to a sharp crest, a short one down; crests fork and end.
Real SandRipples(Point p) {
    const Point q = Warp(Warp(p, {5, 5}, 0.02, 271), {22, 22}, 0.0035, 272);
    const Ripple r = Ripples(q, {2, 40}, {6, 12}, 3.4, 273);
    const Real slope = 0.5 + 0.5 * r.cosine;
    const Real leaning = slope * slope * (1.0 - 0.28 * r.sine) + 0.22 * r.sine * (1 - slope);
    const Real small = Ripples(Warp(p, {9, 9}, 0.01, 274), {5, 150}, {26, 50}, 3.5, 275).cosine;
    return leaning * SmoothStep(0.0, 0.55, r.strength) + 0.05 * small * (1 - slope) +
           0.14 * Fbm(p, {9, 9}, 3, 276) + 0.07 * Fbm(p, {220, 220}, 3, 277) + 0.03 * Grain(p, 278);
}

Real Leather(Point p) {
    const Point q = Warp(Warp(p, {14, 14}, 0.010, 251), {90, 90}, 0.0018, 252);
    const Cell pebble = Cells(q, {96, 96}, 0.85, 253);
    const Cell fine = Cells(q, {190, 190}, 0.9, 257);
    const Real creases = SmoothStep(0, 0.14, Cells(q, {24, 30}, 0.9, 254).edge);
    const Real mixed = Mix(Dome(1 - Min(1, pebble.edge / 0.28)), Dome(1 - Min(1, fine.edge / 0.3)),
                           SmoothStep(0.0, 0.35, Fbm(p, {12, 12}, 3, 258)));
    return mixed * (0.8 + 0.2 * Random(pebble.id, 1)) + 0.30 * creases +
           0.20 * Fbm(p, {20, 20}, 3, 255) + 0.10 * Fbm(p, {220, 220}, 2, 256);
}

// Rows of pointed scales, each with a keel, that lie over the next row like shingles.
Real Snake(Point p) {
    const Point q = Warp(p, {10, 10}, 0.010, 301);
    const Cell scale = Cells(q, {46, 64}, 0.16, 302, 0.5);
    const Real border = SmoothStep(0.015, 0.13, scale.edge);
    const Real dome = Dome(1 - Min(1, scale.edge / 0.5));
    const Real keel = Peak(scale.du, 0.05) * SmoothStep(0.45, 0.1, Abs(scale.dv));
    const Real grooves = 0.05 * GradientNoise(p, {500, 120}, 303);
    return border * (0.42 + 0.45 * dome + 0.55 * scale.dv + 0.16 * keel +
                     0.10 * (Random(scale.id, 1) - 0.5)) +
           grooves * border + 0.04 * Fbm(p, {160, 160}, 3, 304);
}

// Plates of different sizes between deep, wrinkled furrows.
Real Crocodile(Point p) {
    const Point q = Warp(Warp(p, {9, 9}, 0.016, 311), {60, 60}, 0.0022, 312);
    const Cell plate = Cells(q, {24, 30}, 0.38, 313, 0.5);
    const Cell crease = Cells(q, {80, 104}, 0.9, 314);
    const Real furrow = SmoothStep(0.015, 0.10, plate.edge);
    const Real pillow = Dome(1 - Min(1, plate.edge / 0.34));
    const Real wrinkles = SmoothStep(0.0, 0.16, crease.edge);
    return furrow * (0.40 + 0.60 * pillow + 0.10 * (Random(plate.id, 1) - 0.5)) +
           0.12 * wrinkles * (1.3 - pillow) + 0.07 * Fbm(p, {60, 60}, 5, 315) -
           0.10 * SmoothStep(0.1, 0.0, crease.first) * pillow;
}

}  // namespace generator
