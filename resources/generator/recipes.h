// The pictures of the resource library, one function each.
#pragma once

#include <initializer_list>

#include "noise.h"

namespace generator {

// A colour, 0..255 a component.
struct Rgb {
    Real r, g, b;
};

inline Rgb operator*(Rgb c, Real k) { return {c.r * k, c.g * k, c.b * k}; }
inline Rgb Mix(Rgb a, Rgb b, Real t) {
    return {Mix(a.r, b.r, t), Mix(a.g, b.g, t), Mix(a.b, b.b, t)};
}

// The colour 0xRRGGBB.
inline Rgb Hex(unsigned code) {
    return {static_cast<double>(code >> 16), static_cast<double>(code >> 8 & 255),
            static_cast<double>(code & 255)};
}

// The colour at t (0..1, clamped) on a road through evenly spaced colours 0xRRGGBB.
inline Rgb Ramp(std::initializer_list<unsigned> codes, Real t) {
    const Real place = Clamp01(t) * static_cast<double>(codes.size() - 1);
    Rgb colour = Hex(*codes.begin());
    double start = 0;
    for (const unsigned* code = codes.begin() + 1; code != codes.end(); ++code, ++start) {
        colour = Mix(colour, Hex(*code), Clamp01(place - start));
    }
    return colour;
}

// The point on a sheared lattice: with more periods in u than in v, noise lies aslant in the
// picture. A matrix of determinant 1, or the picture would repeat within itself.
inline Point Slanted(Point p) { return {p.u + p.v, p.v}; }

// Grain of one to two pixels, -1..1.
inline Real Grain(Point p, std::uint32_t seed) {
    return ValueNoise(p, {1024, 1024}, seed) + ValueNoise(p, {1640, 1640}, seed + 1) - 1;
}

// Surfaces that are a height and a colour: split rock, and a coat of plaster drawn on in sweeps.
Real CleftRock(Point p);
Real TrowelledPlaster(Point p);

// What a material looks like at a point of the unit square.
using Pattern = Rgb (*)(Point);
Rgb BlackGranite(Point p);
Rgb BlackMarble(Point p);
Rgb BrushedMetal(Point p);
Rgb BrushedSteel(Point p);
Rgb Concrete(Point p);
Rgb Copper(Point p);
Rgb Cork(Point p);
Rgb FrostedGlass(Point p);
Rgb Gold(Point p);
Rgb GreenMarble(Point p);
Rgb GreyGranite(Point p);
Rgb Ice(Point p);
Rgb Malachite(Point p);
Rgb Oak(Point p);
Rgb Paper(Point p);
Rgb Patina(Point p);
Rgb Pine(Point p);
Rgb PinkGranite(Point p);
Rgb Plaster(Point p);
Rgb QuarteredOak(Point p);
Rgb RoseMarble(Point p);
Rgb Sand(Point p);
Rgb Slate(Point p);
Rgb Travertine(Point p);
Rgb Walnut(Point p);
Rgb WhiteMarble(Point p);

// How high a surface is at a point of the unit square, in any unit.
using Texture = Real (*)(Point);
Real Bark(Point p);
Real BrickWall(Point p);
Real BrushMarks(Point p);
Real Canvas(Point p);
Real CoarseCanvas(Point p);
Real Cobblestones(Point p);
Real CrackedEarth(Point p);
Real Crocodile(Point p);
Real Denim(Point p);
Real HammerMarks(Point p);
Real Knit(Point p);
Real LaidPaper(Point p);
Real Leather(Point p);
Real Linen(Point p);
Real RoofTiles(Point p);
Real Rust(Point p);
Real SandRipples(Point p);
Real Snake(Point p);
Real Stucco(Point p);
Real WatercolourPaper(Point p);
Real WaterDrops(Point p);
Real Wicker(Point p);

}  // namespace generator
