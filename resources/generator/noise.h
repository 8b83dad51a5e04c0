// Noises that repeat over the unit square, and the small curves that shape them.
//
// Every frequency is a whole number of periods across the square, so that whatever is computed
// from these functions tiles without a seam. A point may be moved by any periodic offset, and its
// coordinates may be mixed by a matrix of whole numbers, without losing that.
#pragma once

#include <algorithm>
#include <cstdint>

namespace generator {

struct Point {
    double u, v;
};

// Periods across and down the square.
struct Frequency {
    int u, v;
};

inline double Mix(double a, double b, double t) { return a + (b - a) * t; }
inline double Clamp01(double x) { return std::clamp(x, 0.0, 1.0); }

// 0 up to `low`, 1 from `high` on, smooth between; falls instead of rising when high < low.
inline double SmoothStep(double low, double high, double x) {
    const double t = Clamp01((x - low) / (high - low));
    return t * t * (3 - 2 * t);
}

// A soft peak of height 1 at x = 0 that has fallen to a half at |x| = width.
inline double Peak(double x, double width) { return 1 / (1 + x * x / (width * width)); }

// Half a circle over -1..1: the cross-section of a thread or a pebble.
double Dome(double x);

// Evenly spread in [0, 1); one value per lattice point (or id) and seed.
double Random(int x, int y, std::uint32_t seed);
double Random(std::uint32_t id, std::uint32_t seed);

// Interpolated random values, 0..1.
double ValueNoise(Point p, Frequency f, std::uint32_t seed);

// Interpolated random gradients, about -1..1 and 0 at the lattice points.
double GradientNoise(Point p, Frequency f, std::uint32_t seed);

// Sum of gradient noises, each of twice the frequency and half the strength; about -1..1.
double Fbm(Point p, Frequency f, int octaves, std::uint32_t seed);

// Like Fbm, of folded noises: sharp crests at 1, broad valleys near 0.
double Ridges(Point p, Frequency f, int octaves, std::uint32_t seed);

// The point moved by up to about `amount` of the square, by two independent Fbm of three octaves.
Point Warp(Point p, Frequency f, double amount, std::uint32_t seed);

// The irregular cell around one random point per lattice square. Lengths are in lattice squares.
struct Cell {
    double first, second;  // distance to the nearest and the second nearest point
    double edge;           // distance to the cell's border
    double du, dv;         // offset from the cell's own point
    std::uint32_t id;
};

// Jitter 0 puts the points in the middle of their squares, 1 anywhere in them. Odd rows are
// moved sideways by `bond` squares, like the courses of a wall (needs an even f.v).
Cell Cells(Point p, Frequency f, double jitter, std::uint32_t seed, double bond = 0);

// The nearest of the straight strands laid one per lattice square.
struct Strand {
    double distance;  // to the strand, in lattice squares; large when there is none near
    double along;     // -1..1 from end to end
    std::uint32_t id;
};

// `length` is half a strand's length in lattice squares, up to 1; `angle` its mean direction in
// radians from the right and `spread` how far to either side the directions go.
Strand Strands(Point p, Frequency f, double length, double angle, double spread,
               std::uint32_t seed);

// A field of parallel ripples with the forks and ends that ripples have in nature.
struct Ripple {
    double phase;     // -1..1, from trough to trough
    double strength;  // 0 at a fork or an end, about 1 elsewhere
};

// About `f` ripples; `disorder` is how far single waves may differ from that.
Ripple Ripples(Point p, Frequency f, Frequency disorder, std::uint32_t seed);

}  // namespace generator
