// What is woven, knitted and plaited, from the way its threads lie.
#include "recipes.h"

namespace generator {
namespace {

// A cloth of `warp` threads across and `weft` threads down. Every thread is a round yarn that rises
// over the threads it crosses and dives under them; in `repeat` crossings it is up for `up` of
// them. A plain weave is 2 and 1; a twill of 4 and 3 shows mostly its warp, in a slanting rib.
struct Cloth {
    int warp, weft;
    double slack;         // how much the threads' thickness and place vary
    double slubs;         // thick places along a thread
    double twist;         // depth of the yarn's spun fibres
    double width = 0.94;  // of a thread, in shares of its place; above 1 there are no holes
    double uneven = 0;    // how much the crossings of a thread differ in height
    double dive = 0.9;    // how soon a thread dives: 1 all the way between two crossings
    int repeat = 2;
    int up = 1;
    std::uint32_t seed = 0;
};

// The height of one set of threads. `across` counts threads, `along` counts crossings.
Real Threads(Point p, Real across, Real along, const Cloth& c, bool warp) {
    const int threads = warp ? c.warp : c.weft;
    const int crossings = warp ? c.weft : c.warp;
    const std::uint32_t seed = c.seed + (warp ? 0 : 40);
    const Frequency lengthwise =
        warp ? Frequency{threads, crossings / 6} : Frequency{crossings / 6, threads};
    const Real wander = across + c.slack * 0.5 * Fbm(p, lengthwise, 2, seed);
    const Real index = Floor(wander);
    const Real number = Wrap(index, threads);
    const Real place = wander - index - 0.5;
    const Real slub = SmoothStep(0.1, 0.6, GradientNoise(p, lengthwise, seed + 5));
    const Real thickness =
        0.5 * c.width * (1 + c.slack * (Random(number, 0, seed + 6) - 0.6) + c.slubs * slub);
    const double share = static_cast<double>(warp ? c.up : c.repeat - c.up) / c.repeat;
    const Real phase =
        (along - 0.5 + (warp ? number : -number) + (warp ? 0 : 0.5 * c.repeat)) * (1.0 / c.repeat);
    const Real lift = CosTurns(phase) + 2 * (share - 0.5);
    const Real spun = SinTurns(1.1 * place + 0.9 * along + Random(number, 1, seed + 7));
    const Real crossing = Wrap(Floor(along), crossings);
    const Real tension = c.uneven * (Random(number + 577 * crossing, 3, seed + 9) - 0.5);
    return tension + 0.62 * Dome(place / thickness) + 0.46 * SmoothStep(-c.dive, c.dive, lift) +
           c.twist * spun + 0.10 * (Random(number, 2, seed + 8) - 0.5);
}

Real Woven(Point p, const Cloth& c) {
    return Max(Threads(p, p.u * c.warp, p.v * c.weft, c, true),
               Threads(p, p.v * c.weft, p.u * c.warp, c, false));
}

}  // namespace

Real Canvas(Point p) {
    const Point q = Warp(p, {26, 26}, 0.0008, 211);
    return Woven(q, {.warp = 410,
                     .weft = 400,
                     .slack = 0.3,
                     .slubs = 0.3,
                     .twist = 0.02,
                     .width = 1.25,
                     .uneven = 0.3,
                     .seed = 212}) +
           0.05 * Fbm(p, {300, 300}, 2, 213) + 0.05 * Fbm(p, {24, 24}, 3, 214);
}

Real CoarseCanvas(Point p) {
    const Point q = Warp(p, {20, 20}, 0.0014, 215);
    return Woven(q, {.warp = 150,
                     .weft = 146,
                     .slack = 0.18,
                     .slubs = 0.16,
                     .twist = 0.09,
                     .width = 1.02,
                     .uneven = 0.1,
                     .dive = 0.4,
                     .seed = 216}) +
           0.10 * Fbm(p, {420, 420}, 2, 217);
}

Real Linen(Point p) {
    const Point q = Warp(p, {30, 30}, 0.0010, 261);
    return Woven(q, {.warp = 300,
                     .weft = 270,
                     .slack = 0.42,
                     .slubs = 0.55,
                     .twist = 0.05,
                     .width = 1.05,
                     .uneven = 0.2,
                     .dive = 0.5,
                     .seed = 262}) +
           0.12 * GradientNoise(p, {300, 9}, 263) + 0.16 * GradientNoise(p, {9, 270}, 264) +
           0.05 * Fbm(p, {400, 400}, 2, 265);
}

Real Denim(Point p) {
    const Point q = Warp(p, {24, 24}, 0.0008, 271);
    return Woven(q, {.warp = 256,
                     .weft = 256,
                     .slack = 0.22,
                     .slubs = 0.14,
                     .twist = 0.05,
                     .repeat = 4,
                     .up = 3,
                     .seed = 272}) +
           0.10 * GradientNoise(p, {256, 12}, 273) + 0.06 * Fbm(p, {400, 400}, 2, 274);
}

// Stockinette: every stitch is a V of two legs that come out of the stitch below.
Real Knit(Point p) {
    constexpr int kColumns = 64;
    constexpr int kRows = 84;
    const Point q = Warp(p, {22, 22}, 0.0016, 291);
    const Real across = q.u * kColumns;
    const Real column = Wrap(Floor(across), kColumns);
    const Real x = Fraction(across) - 0.5;
    const Real side = Select(x < 0, Real(-1), 1);
    const Real leg = Abs(x) - 0.25;  // across the leg's half of the stitch
    const Real down = q.v * kRows - 0.5 * Random(column, 3, 292) * 0.2;
    Real height = -0.5;
    for (int k = -1; k <= 1; ++k) {
        const Real row = Floor(down) + k;
        const Real y = down - row - 0.5;
        // The leg leans outward going up, and its upper end lies behind the next stitch.
        const Real lean = leg + 0.17 * y;
        const Real length = y * (1 / 0.95);
        const Real yarn =
            lean * (1 / (0.23 + 0.03 * (Random(column, Wrap(row, kRows), 293) - 0.5)));
        const Real body = Dome(yarn) * 0.75;
        const Real rise = 0.42 * y;
        const Real fibres =
            0.07 * SinTurns(2.2 * lean * side * 2 + 2.6 * y) + 0.05 * Fbm(p, {260, 340}, 2, 294);
        const Real here = Select((Abs(yarn) < 1) & (Abs(length) < 1),
                                 (body + fibres) * Dome(length) + rise, -0.5);
        height = Max(height, here);
    }
    return height + 0.06 * Fbm(p, {500, 500}, 2, 295);
}

// Pairs of willow rods woven before and behind upright stakes.
Real Wicker(Point p) {
    constexpr int kStakes = 26;
    constexpr int kRows = 52;
    const Point q = Warp(p, {18, 26}, 0.0014, 281);
    const Real down = q.v * kRows;
    const Real row = Wrap(Floor(down), kRows);
    const Real parity = row - 2 * Floor(row * 0.5);
    const Real turn = 0.5 * (q.u * kStakes + parity);
    const Real bend = CosTurns(turn);
    const Real band = Fraction(down) - 0.5;
    const Real rod = Select(band < 0, Real(0), 1);
    const Real seat = Abs(band) - 0.25 + 0.03 * (Random(row, rod, 282) - 0.5);
    const Real thick = 0.25 * (1.0 + 0.18 * (Random(row, rod, 283) - 0.5) +
                               0.10 * GradientNoise(p, {14, 104}, 284));
    const Real round = Dome(seat / thick);
    const Real bark = 0.05 * GradientNoise(p, {26, 1100}, 285) +
                      0.06 * GradientNoise(p, {60, 500}, 286) + 0.04 * Fbm(p, {60, 60}, 4, 287);
    const Real weaver = 0.42 * round + 0.46 * bend + bark + 0.05 * (Random(row, rod, 288) - 0.5);
    const Real across = q.u * kStakes;
    const Real number = Wrap(Floor(across + 0.5), kStakes);
    const Real x = across - Floor(across + 0.5) + 0.03 * Fbm(p, {26, 8}, 2, 289);
    const Real stake = 0.46 * Dome(x / (0.24 + 0.04 * Random(number, 0, 290))) - 0.02 +
                       0.05 * GradientNoise(p, {1100, 26}, 291);
    return Max(Max(weaver, stake), -0.25);
}

}  // namespace generator
