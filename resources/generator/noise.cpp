#include "noise.h"

namespace generator {
namespace {

Bits Scramble(Bits h) {
    h = (h ^ (h >> 16)) * 0x7feb352dU;
    h = (h ^ (h >> 15)) * 0x846ca68bU;
    return h ^ (h >> 16);
}

std::uint32_t Seed(std::uint32_t seed) { return (seed * 0x9e3779b1U) ^ (seed >> 3) ^ 0x5bd1e995U; }

Bits Hash(Bits x, Bits y, std::uint32_t seed) {
    return Scramble((x * 0x9e3779b1U) ^ (y * 0x85ebca77U + Bits(Seed(seed))));
}

// Of the upper 24 bits, which a float holds exactly.
Real ToUnit(Bits h) { return ToReal(h >> 8) * (1.0 / 16777216.0); }

// The lattice square that holds a point, and the point's place within it.
struct Lattice {
    Lattice(Point p, Frequency f)
        : x(p.u * f.u), y(p.v * f.v), column(Floor(x)), row(Floor(y)), s(x - column), t(y - row) {}
    Real x, y;
    Real column, row;
    Real s, t;
};

Real Fade(Real t) { return t * t * t * (t * (t * 6 - 15) + 10); }

// Blends a quantity of the four corners of the point's lattice square.
template <typename Corner>
Real Interpolate(const Lattice& at, Frequency f, Corner corner) {
    const Bits left = ToBits(Wrap(at.column, f.u));
    const Bits right = ToBits(Wrap(at.column + 1, f.u));
    const Bits top = ToBits(Wrap(at.row, f.v));
    const Bits bottom = ToBits(Wrap(at.row + 1, f.v));
    const Real s = Fade(at.s);
    return Mix(
        Mix(corner(left, top, at.s, at.t), corner(right, top, at.s - 1, at.t), s),
        Mix(corner(left, bottom, at.s, at.t - 1), corner(right, bottom, at.s - 1, at.t - 1), s),
        Fade(at.t));
}

// Sum over octaves, scaled so that the strengths add up to 1. Each octave is moved, or the lattice
// points of the first, where all would be 0, would show.
template <typename Noise>
Real Octaves(Point p, Frequency f, int octaves, std::uint32_t seed, Noise noise) {
    Real sum = 0;
    double strengths = 0;
    double strength = 1;
    for (int i = 0; i < octaves; ++i, strength /= 2, f = {f.u * 2, f.v * 2}) {
        const Point moved{p.u + 0.3819 * i, p.v + 0.2361 * i};
        sum = sum + strength * noise(moved, f, seed + static_cast<std::uint32_t>(i) * 7919U);
        strengths += strength;
    }
    return sum * (1 / strengths);
}

}  // namespace

Real Wrap(Real whole, int period) { return whole - period * Floor((whole + 0.5) * (1.0 / period)); }

Real Random(Real x, Real y, std::uint32_t seed) { return ToUnit(Hash(ToBits(x), ToBits(y), seed)); }
Real Random(Bits id, std::uint32_t seed) { return ToUnit(Scramble(id + Bits(Seed(seed)))); }

Real ValueNoise(Point p, Frequency f, std::uint32_t seed) {
    return Interpolate(Lattice(p, f), f,
                       [&](Bits x, Bits y, Real, Real) { return ToUnit(Hash(x, y, seed)); });
}

Real GradientNoise(Point p, Frequency f, std::uint32_t seed) {
    return 1.6 * Interpolate(Lattice(p, f), f, [&](Bits x, Bits y, Real s, Real t) {
               const Bits h = Hash(x, y, seed);
               const Real gu = ToReal(h >> 16) * (1.0 / 32768) - 1;
               const Real gv = ToReal((h * 65536U) >> 16) * (1.0 / 32768) - 1;
               return gu * s + gv * t;
           });
}

Real Fbm(Point p, Frequency f, int octaves, std::uint32_t seed) {
    return Octaves(p, f, octaves, seed, GradientNoise);
}

Real Ridges(Point p, Frequency f, int octaves, std::uint32_t seed) {
    return Octaves(p, f, octaves, seed, [](Point q, Frequency at, std::uint32_t s) {
        return 1 - Min(1, 1.6 * Abs(GradientNoise(q, at, s)));
    });
}

Point Warp(Point p, Frequency f, double amount, std::uint32_t seed) {
    return {p.u + amount * Fbm(p, f, 3, seed), p.v + amount * Fbm(p, f, 3, seed + 31)};
}

Cell Cells(Point p, Frequency f, double jitter, std::uint32_t seed, double bond) {
    constexpr int kReach = 4;  // points across and down that are looked at
    struct Site {
        Real du, dv;
    };
    Site sites[kReach * kReach];
    const Real x = p.u * f.u;
    const Real y = p.v * f.v;
    const Real top = Floor(y - 0.5) - 1;
    Cell cell{9, 9, 9, 0, 0, Bits(0U)};
    Site* site = sites;
    for (int j = 0; j < kReach; ++j) {
        const Real row = Wrap(top + j, f.v);
        const Real shift = bond * (row - 2 * Floor(row * 0.5));
        const Real left = Floor(x - shift - 0.5) - 1;
        const Bits row_bits = ToBits(row);
        for (int i = 0; i < kReach; ++i, ++site) {
            const Bits h = Hash(ToBits(Wrap(left + i, f.u)), row_bits, seed);
            const Real ju = ToReal(h >> 16) * (1.0 / 65536) - 0.5;
            const Real jv = ToReal((h * 65536U) >> 16) * (1.0 / 65536) - 0.5;
            site->du = x - (left + i + shift + 0.5 + jitter * ju);
            site->dv = y - (top + j + 0.5 + jitter * jv);
            const Real distance = Sqrt(Square(site->du) + Square(site->dv));
            const Mask nearer = distance < cell.first;
            cell.second = Select(nearer, cell.first, Min(cell.second, distance));
            cell.first = Select(nearer, distance, cell.first);
            cell.du = Select(nearer, site->du, cell.du);
            cell.dv = Select(nearer, site->dv, cell.dv);
            cell.id = Select(nearer, h, cell.id);
        }
    }
    // The border towards each neighbour is the bisector between the two points.
    for (const Site& other : sites) {
        const Real nu = cell.du - other.du;
        const Real nv = cell.dv - other.dv;
        const Real square = Square(nu) + Square(nv);
        const Real length = Sqrt(square);
        const Real edge = 0.5 * length - (cell.du * nu + cell.dv * nv) / Max(length, 1e-6);
        cell.edge = Select(square > 1e-9, Min(cell.edge, edge), cell.edge);
    }
    return cell;
}

Strand Strands(Point p, Frequency f, double length, double angle, double spread,
               std::uint32_t seed) {
    const Lattice at(p, f);
    Strand nearest{9, 0, Bits(0U)};
    for (int j = -1; j <= 1; ++j) {
        const Bits row = ToBits(Wrap(at.row + j, f.v));
        for (int i = -1; i <= 1; ++i) {
            const Bits id = Hash(ToBits(Wrap(at.column + i, f.u)), row, seed);
            const Real dx = at.s - i - Random(id, 1);
            const Real dy = at.t - j - Random(id, 2);
            const Real turn = angle + spread * (2 * Random(id, 3) - 1);
            const Real c = CosTurns(turn);
            const Real s = SinTurns(turn);
            const Real along = (dx * c + dy * s) * (1 / length);
            const Real across = dy * c - dx * s;
            const Real beyond = length * Max(0, Abs(along) - 1);
            const Real distance = Sqrt(Square(across) + Square(beyond));
            const Mask nearer = distance < nearest.distance;
            nearest.distance = Select(nearer, distance, nearest.distance);
            nearest.along = Select(nearer, Clamp(along, -1, 1), nearest.along);
            nearest.id = Select(nearer, id, nearest.id);
        }
    }
    return nearest;
}

Ripple Ripples(Point p, Frequency f, Frequency disorder, double wildness, std::uint32_t seed) {
    const Real turns = f.u * p.u + f.v * p.v;
    const Real real = 1 + wildness * Fbm(p, disorder, 2, seed);
    const Real imaginary = wildness * Fbm(p, disorder, 2, seed + 1);
    const Real size = Sqrt(Square(real) + Square(imaginary));
    const Real c = CosTurns(turns);
    const Real s = SinTurns(turns);
    const Real scale = 1 / Max(size, 1e-4);
    return {(c * real - s * imaginary) * scale, (s * real + c * imaginary) * scale, Min(1, size)};
}

}  // namespace generator
