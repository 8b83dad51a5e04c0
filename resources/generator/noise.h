// Noises that repeat over the unit square, for eight points at once.
//
// Every frequency is a whole number of periods across the square, so that whatever is computed
// from these functions tiles without a seam. A point may be moved by any periodic offset, and its
// coordinates may be mixed by a matrix of whole numbers, without losing that.
#pragma once

#include "lanes.h"

namespace generator {

struct Point {
    Real u, v;
};

// Periods across and down the square.
struct Frequency {
    int u, v;
};

// Evenly spread in [0, 1); one value per lattice point (wrapped already) or id, and seed.
Real Random(Real x, Real y, std::uint32_t seed);
Real Random(Bits id, std::uint32_t seed);

// `whole` modulo `period`; both whole numbers.
Real Wrap(Real whole, int period);

// Interpolated random values, 0..1.
Real ValueNoise(Point p, Frequency f, std::uint32_t seed);

// Interpolated random gradients, about -1..1 and 0 at the lattice points.
Real GradientNoise(Point p, Frequency f, std::uint32_t seed);

// Sum of gradient noises, each of twice the frequency and half the strength; about -1..1.
Real Fbm(Point p, Frequency f, int octaves, std::uint32_t seed);

// Like Fbm, of folded noises: sharp crests at 1, broad valleys near 0.
Real Ridges(Point p, Frequency f, int octaves, std::uint32_t seed);

// The point moved by up to about `amount` of the square, by two independent Fbm of three octaves.
Point Warp(Point p, Frequency f, double amount, std::uint32_t seed);

// The irregular cell around one random point per lattice square. Lengths are in lattice squares.
struct Cell {
    Real first, second;  // distance to the nearest and the second nearest point
    Real edge;           // distance to the cell's border
    Real du, dv;         // offset from the cell's own point
    Bits id;
};

// Jitter 0 puts the points in the middle of their squares, 1 anywhere in them. Odd rows are
// moved sideways by `bond` squares, like the courses of a wall (needs an even f.v).
Cell Cells(Point p, Frequency f, double jitter, std::uint32_t seed, double bond = 0);

// The nearest of the straight strands laid one per lattice square.
struct Strand {
    Real distance;  // to the strand, in lattice squares; large when there is none near
    Real along;     // -1..1 from end to end
    Bits id;
};

// `length` is half a strand's length in lattice squares, up to 1; `angle` its mean direction in
// turns from the right and `spread` how far to either side the directions go.
Strand Strands(Point p, Frequency f, double length, double angle, double spread,
               std::uint32_t seed);

// A field of parallel waves with the forks and ends that ripples have in nature.
struct Ripple {
    Real cosine, sine;  // of the phase: 1, 0 on a crest, 0, 1 a quarter of a wave further
    Real strength;      // 0 at a fork or an end, about 1 elsewhere
};

// `f` waves, bent and forked by noise of frequency `disorder` as strong as `wildness`.
Ripple Ripples(Point p, Frequency f, Frequency disorder, double wildness, std::uint32_t seed);

}  // namespace generator
