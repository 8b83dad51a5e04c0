#include <cmath>
#include <numbers>

#include "recipes.h"

namespace generator {
namespace {

constexpr double kPi = std::numbers::pi;

// Plain weave of `threads` warp and as many weft threads: each rises over one crossing and dives
// under the next. `slack` is how much the threads' thickness varies along them.
double PlainWeave(Point p, int threads, double slack, std::uint32_t seed) {
    const auto thread = [=](double across, double along, double uneven, double fibre, int parity) {
        const double index = std::floor(across);
        const double place = across - index - 0.5;
        const int number = (static_cast<int>(index) + threads) % threads;
        const double own = 0.5 * slack * (Random(number, parity, seed) - 0.5);
        const double lift = std::cos(kPi * (along - 0.5 + index + parity));
        return 0.7 * Dome(place / (0.48 * (1 + slack * uneven + own))) +
               0.5 * SmoothStep(-0.8, 0.8, lift) + 0.10 * fibre;
    };
    const double warp =
        thread(p.u * threads, p.v * threads, GradientNoise(p, {threads, threads / 4}, seed + 1),
               GradientNoise(p, {6 * threads, threads}, seed + 2), 0);
    const double weft =
        thread(p.v * threads, p.u * threads, GradientNoise(p, {threads / 4, threads}, seed + 3),
               GradientNoise(p, {threads, 6 * threads}, seed + 4), 1);
    return std::max(warp, weft);
}

}  // namespace

double Bark(Point p) {
    const Point q = Warp(p, {8, 4}, 0.018, 201);
    const Ripple ridge = Ripples(q, {10, 0}, {3, 2}, 202);
    const double plate = Cells(Warp(p, {14, 14}, 0.02, 203), {10, 9}, 1, 204).edge;
    const double body = Dome(ridge.phase) * SmoothStep(0, 0.5, ridge.strength);
    const double flakes = Ridges(Warp(p, {16, 8}, 0.015, 205), {30, 8}, 4, 206);
    return body * (0.65 + 0.35 * SmoothStep(0, 0.16, plate)) + 0.45 * flakes * body +
           0.22 * Fbm(p, {32, 20}, 4, 207);
}

double Canvas(Point p) {
    return PlainWeave(Warp(p, {10, 10}, 0.003, 211), 28, 0.14, 212) +
           0.10 * Fbm(p, {90, 90}, 2, 213);
}

double Cobblestone(Point p) {
    const Point q = Warp(p, {12, 12}, 0.010, 221);
    const Cell stone = Cells(q, {8, 10}, 0.5, 222, 0.5);
    const double tilt =
        0.30 * (stone.du * (Random(stone.id, 1) - 0.5) + stone.dv * (Random(stone.id, 2) - 0.5));
    const double side = Dome(1 - std::min(1.0, stone.edge / 0.24));
    const double top = 0.5 * (1 - stone.first * stone.first) + tilt + 0.10 * Random(stone.id, 3);
    const double joint = 0.10 * Fbm(p, {60, 60}, 3, 224);
    return Mix(joint, side * (0.5 + top) + 0.10 * Fbm(p, {20, 20}, 5, 223),
               SmoothStep(0.03, 0.09, stone.edge));
}

double CrackedEarth(Point p) {
    const Cell slab = Cells(Warp(Warp(p, {8, 8}, 0.02, 231), {32, 32}, 0.006, 232), {9, 9}, 1, 233);
    const Cell piece = Cells(Warp(p, {20, 20}, 0.014, 234), {22, 22}, 1, 235);
    const double width = 0.07 + 0.06 * Fbm(p, {6, 6}, 3, 236);
    const double wide = SmoothStep(0.2 * width, 1.6 * width, slab.edge);
    const double narrow = SmoothStep(-0.04, 0.06, piece.edge + 0.12 * Fbm(p, {10, 10}, 2, 237));
    const double curl = 0.30 * SmoothStep(0.42, 0.05, slab.edge) + 0.10 * Random(slab.id, 1);
    return wide * (0.6 + 0.25 * narrow + curl) + 0.12 * Fbm(p, {28, 28}, 5, 238);
}

double HammeredMetal(Point p) {
    const Cell dent = Cells(Warp(p, {7, 7}, 0.012, 241), {14, 14}, 0.7, 242);
    return dent.first * dent.first + 0.12 * Fbm(p, {6, 6}, 2, 243) +
           0.012 * Fbm(p, {60, 60}, 2, 244);
}

double Leather(Point p) {
    const Point q = Warp(Warp(p, {7, 7}, 0.02, 251), {40, 40}, 0.004, 252);
    const Cell pebble = Cells(q, {30, 30}, 0.85, 253);
    const double creases = SmoothStep(0, 0.16, Cells(q, {8, 11}, 1, 254).edge);
    return Dome(1 - std::min(1.0, pebble.edge / 0.26)) * (0.8 + 0.2 * Random(pebble.id, 1)) +
           0.30 * creases + 0.20 * Fbm(p, {8, 8}, 3, 255) + 0.10 * Fbm(p, {70, 70}, 2, 256);
}

double Linen(Point p) {
    return PlainWeave(Warp(p, {20, 20}, 0.003, 261), 56, 0.45, 262) +
           0.15 * GradientNoise(p, {56, 3}, 263) + 0.15 * GradientNoise(p, {3, 56}, 264);
}

double RippledSand(Point p) {
    const Ripple ripple = Ripples(Warp(p, {5, 5}, 0.012, 271), {1, 14}, {2, 2}, 272);
    const double crest = SmoothStep(ripple.phase < 0.2 ? -1 : 1, 0.2, ripple.phase);
    return crest * SmoothStep(0, 0.6, ripple.strength) + 0.07 * Fbm(p, {32, 32}, 5, 273);
}

double Wicker(Point p) {
    constexpr int kStakes = 8;
    constexpr int kRows = 20;
    const Point q = Warp(p, {6, 10}, 0.003, 281);
    const double row = std::floor(q.v * kRows);
    const double place = q.v * kRows - row - 0.5;
    const double bend = std::cos(kPi * (q.u * kStakes + row));
    const double fibres = 0.10 * GradientNoise(p, {12, 160}, 282);
    const double weaver = 0.55 * Dome(place / 0.49) + 0.42 * bend + fibres;
    const double across = q.u * kStakes - std::floor(q.u * kStakes + 0.5);
    const double stake = 0.5 * Dome(across / 0.2) - 0.1 + 0.06 * GradientNoise(p, {160, 12}, 283);
    return std::max({weaver, stake, -0.1});
}

}  // namespace generator
