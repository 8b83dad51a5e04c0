#include "noise.h"

#include <array>
#include <cmath>
#include <complex>
#include <numbers>

namespace generator {
namespace {

constexpr double kTwoPi = 2 * std::numbers::pi;

std::uint32_t Scramble(std::uint32_t h) {
    h ^= h >> 16;
    h *= 0x7feb352dU;
    h ^= h >> 15;
    h *= 0x846ca68bU;
    return h ^ (h >> 16);
}

std::uint32_t Hash(int x, int y, std::uint32_t seed) {
    return Scramble(static_cast<std::uint32_t>(x) * 0x9e3779b1U ^
                    Scramble(static_cast<std::uint32_t>(y) * 0x85ebca77U ^ Scramble(seed)));
}

double ToUnit(std::uint32_t h) { return h * (1.0 / 4294967296.0); }

int Wrap(int i, int period) { return ((i % period) + period) % period; }

// The lattice square that holds a point, and the point's place within it.
struct Lattice {
    Lattice(Point p, Frequency f)
        : x(p.u * f.u), y(p.v * f.v), column(Floor(x)), row(Floor(y)), s(x - column), t(y - row) {}
    static int Floor(double a) { return static_cast<int>(std::floor(a)); }

    double x, y;
    int column, row;
    double s, t;
};

double Fade(double t) { return t * t * t * (t * (t * 6 - 15) + 10); }

// Blends a quantity of the four corners of the point's lattice square.
template <typename Corner>
double Interpolate(const Lattice& at, Corner corner) {
    const double s = Fade(at.s);
    return Mix(Mix(corner(0, 0), corner(1, 0), s), Mix(corner(0, 1), corner(1, 1), s), Fade(at.t));
}

// Sum over octaves, scaled so that the strengths add up to 1.
template <typename Noise>
double Octaves(Frequency f, int octaves, std::uint32_t seed, Noise noise) {
    double sum = 0;
    double strengths = 0;
    double strength = 1;
    for (int i = 0; i < octaves; ++i, strength /= 2, f = {f.u * 2, f.v * 2}) {
        sum += strength * noise(f, seed + static_cast<std::uint32_t>(i) * 7919U);
        strengths += strength;
    }
    return sum / strengths;
}

Point CellPoint(int x, int y, Frequency f, double jitter, std::uint32_t seed, double bond) {
    const int column = Wrap(x, f.u);
    const int row = Wrap(y, f.v);
    const double shift = row % 2 == 0 ? 0 : bond;
    return {x + shift + 0.5 + jitter * (Random(column, row, seed) - 0.5),
            y + 0.5 + jitter * (Random(column, row, seed + 1) - 0.5)};
}

}  // namespace

double Dome(double x) { return std::sqrt(std::max(0.0, 1 - x * x)); }

double Random(int x, int y, std::uint32_t seed) { return ToUnit(Hash(x, y, seed)); }
double Random(std::uint32_t id, std::uint32_t seed) {
    return ToUnit(Scramble(id + Scramble(seed)));
}

double ValueNoise(Point p, Frequency f, std::uint32_t seed) {
    const Lattice at(p, f);
    return Interpolate(at, [&](int dx, int dy) {
        return Random(Wrap(at.column + dx, f.u), Wrap(at.row + dy, f.v), seed);
    });
}

double GradientNoise(Point p, Frequency f, std::uint32_t seed) {
    static constexpr double kShort = 0.38268343236508977;
    static constexpr double kLong = 0.92387953251128674;
    static constexpr std::array<Point, 8> kGradients{{{kLong, kShort},
                                                      {kShort, kLong},
                                                      {-kShort, kLong},
                                                      {-kLong, kShort},
                                                      {-kLong, -kShort},
                                                      {-kShort, -kLong},
                                                      {kShort, -kLong},
                                                      {kLong, -kShort}}};
    const Lattice at(p, f);
    return 1.5 * Interpolate(at, [&](int dx, int dy) {
               const auto hash = Hash(Wrap(at.column + dx, f.u), Wrap(at.row + dy, f.v), seed);
               const Point& g = kGradients[hash >> 29];
               return g.u * (at.s - dx) + g.v * (at.t - dy);
           });
}

double Fbm(Point p, Frequency f, int octaves, std::uint32_t seed) {
    return Octaves(f, octaves, seed,
                   [p](Frequency at, std::uint32_t s) { return GradientNoise(p, at, s); });
}

double Ridges(Point p, Frequency f, int octaves, std::uint32_t seed) {
    return Octaves(f, octaves, seed, [p](Frequency at, std::uint32_t s) {
        return 1 - std::min(1.0, 1.6 * std::abs(GradientNoise(p, at, s)));
    });
}

Point Warp(Point p, Frequency f, double amount, std::uint32_t seed) {
    return {p.u + amount * Fbm(p, f, 3, seed), p.v + amount * Fbm(p, f, 3, seed + 31)};
}

Cell Cells(Point p, Frequency f, double jitter, std::uint32_t seed, double bond) {
    const Lattice at(p, f);
    Cell cell{9, 9, 9, 0, 0, 0};
    int nearest_x = 0;
    int nearest_y = 0;
    for (int y = at.row - 1; y <= at.row + 1; ++y) {
        for (int x = at.column - 2; x <= at.column + 1; ++x) {
            const Point q = CellPoint(x, y, f, jitter, seed, bond);
            const double distance =
                std::sqrt((at.x - q.u) * (at.x - q.u) + (at.y - q.v) * (at.y - q.v));
            if (distance < cell.first) {
                cell.second = cell.first;
                cell.first = distance;
                cell.du = at.x - q.u;
                cell.dv = at.y - q.v;
                nearest_x = x;
                nearest_y = y;
            } else {
                cell.second = std::min(cell.second, distance);
            }
        }
    }
    cell.id = Hash(Wrap(nearest_x, f.u), Wrap(nearest_y, f.v), seed + 2);

    // The border towards each neighbour is the bisector between the two points.
    const Point own{at.x - cell.du, at.y - cell.dv};
    for (int y = nearest_y - 2; y <= nearest_y + 2; ++y) {
        for (int x = nearest_x - 2; x <= nearest_x + 2; ++x) {
            if (x == nearest_x && y == nearest_y) continue;
            const Point q = CellPoint(x, y, f, jitter, seed, bond);
            const double nu = q.u - own.u;
            const double nv = q.v - own.v;
            const double length = std::sqrt(nu * nu + nv * nv);
            cell.edge = std::min(cell.edge, length / 2 - (cell.du * nu + cell.dv * nv) / length);
        }
    }
    return cell;
}

Strand Strands(Point p, Frequency f, double length, double angle, double spread,
               std::uint32_t seed) {
    const Lattice at(p, f);
    Strand nearest{9, 0, 0};
    for (int y = at.row - 1; y <= at.row + 1; ++y) {
        for (int x = at.column - 1; x <= at.column + 1; ++x) {
            const Point q = CellPoint(x, y, f, 1, seed, 0);
            const std::uint32_t id = Hash(Wrap(x, f.u), Wrap(y, f.v), seed + 2);
            const double turn = angle + spread * (2 * Random(id, 1) - 1);
            const double c = std::cos(turn);
            const double s = std::sin(turn);
            const double along = ((at.x - q.u) * c + (at.y - q.v) * s) / length;
            const double across = (at.y - q.v) * c - (at.x - q.u) * s;
            const double beyond = length * std::max(0.0, std::abs(along) - 1);
            const double distance = std::sqrt(across * across + beyond * beyond);
            if (distance < nearest.distance) nearest = {distance, std::clamp(along, -1.0, 1.0), id};
        }
    }
    return nearest;
}

Ripple Ripples(Point p, Frequency f, Frequency disorder, std::uint32_t seed) {
    // Many plane waves of nearly the same direction and length: where they agree they make
    // regular ripples, where they cancel out a ripple ends or forks.
    constexpr int kWaves = 24;
    constexpr double kOrder = 3.5;  // weight of the one wave that all others vary
    const auto vary = [seed](int wave, int range, int axis) {
        const double around = Random(wave, axis, seed) + Random(wave, axis + 2, seed) - 1;
        return static_cast<int>(std::lround(around * (range + 0.5)));
    };
    std::complex<double> sum = std::polar(kOrder, kTwoPi * (f.u * p.u + f.v * p.v));
    for (int i = 0; i < kWaves; ++i) {
        const double turns = (f.u + vary(i, disorder.u, 0)) * p.u +
                             (f.v + vary(i, disorder.v, 1)) * p.v + Random(i, 9, seed);
        sum += std::polar(1.0, kTwoPi * turns);
    }
    return {std::arg(sum) / std::numbers::pi, std::min(1.0, std::abs(sum) / std::sqrt(kWaves))};
}

}  // namespace generator
