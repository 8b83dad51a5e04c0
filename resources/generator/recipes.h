// The pictures of the resource library, one function each.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "noise.h"

namespace generator {

constexpr int kSize = 512;  // pixels across and down every picture

// A colour, 0..255 a component.
struct Rgb {
    double r, g, b;
};

inline Rgb operator*(Rgb c, double k) { return {c.r * k, c.g * k, c.b * k}; }
inline Rgb Mix(Rgb a, Rgb b, double t) {
    return {Mix(a.r, b.r, t), Mix(a.g, b.g, t), Mix(a.b, b.b, t)};
}

// The colour 0xRRGGBB.
constexpr Rgb Hex(unsigned code) {
    return {static_cast<double>(code >> 16), static_cast<double>(code >> 8 & 255),
            static_cast<double>(code & 255)};
}

// The colour at t (0..1, clamped) on a road through evenly spaced colours 0xRRGGBB.
Rgb Ramp(std::initializer_list<unsigned> codes, double t);

// What a material looks like at a point of the unit square.
using Pattern = Rgb (*)(Point);
Rgb BrushedMetal(Point p);
Rgb Concrete(Point p);
Rgb Copper(Point p);
Rgb Cork(Point p);
Rgb Granite(Point p);
Rgb Malachite(Point p);
Rgb Marble(Point p);
Rgb Paper(Point p);
Rgb Plaster(Point p);
Rgb Sand(Point p);
Rgb Slate(Point p);
Rgb Wood(Point p);

// How high a surface is at a point of the unit square, in any unit.
using Texture = double (*)(Point);
double Bark(Point p);
double Canvas(Point p);
double Cobblestone(Point p);
double CrackedEarth(Point p);
double HammeredMetal(Point p);
double Leather(Point p);
double Linen(Point p);
double RippledSand(Point p);
double Wicker(Point p);

// kSize x kSize heights, row by row; x and y wrap around.
struct HeightMap {
    double& At(int x, int y) { return values[Index(x, y)]; }
    double At(int x, int y) const { return values[Index(x, y)]; }
    static std::size_t Index(int x, int y) {
        constexpr int kMask = kSize - 1;
        return static_cast<std::size_t>((y & kMask) * kSize + (x & kMask));
    }
    std::vector<double> values = std::vector<double>(kSize * kSize);
};

// A height map from a grey photograph of kSize x kSize taken from straight above: its uneven
// light is evened out, and what crosses its borders is joined along the lines that show least.
HeightMap SeamlessPhoto(const HeightMap& photo);

// The same for the photograph of a wall that was taken at a slant, with bright joints running up.
HeightMap BrickWall(const HeightMap& photo);

}  // namespace generator
