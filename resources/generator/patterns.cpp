#include <cmath>
#include <numbers>

#include "recipes.h"

namespace generator {
namespace {

constexpr double kUpright = std::numbers::pi / 2;

// The point on a lattice turned by 45 degrees: what runs level in it runs aslant in the picture.
Point Slanted(Point p) { return {p.u + p.v, p.v - p.u}; }

// How much lighter (above 0) or darker a surface looks in soft light from the upper left.
double Shade(double (*height)(Point), Point p) {
    constexpr double kStep = 0.5 / kSize;
    return height({p.u + kStep, p.v + kStep}) - height({p.u - kStep, p.v - kStep});
}

// Grain of one to two pixels, -1..1.
double Grain(Point p, std::uint32_t seed) {
    return ValueNoise(p, {256, 256}, seed) + ValueNoise(p, {410, 410}, seed + 1) - 1;
}

// A coat of plaster drawn on in slanting sweeps, with a thin second coat in places.
double TrowelledHeight(Point p) {
    const Point q = Warp(p, {5, 5}, 0.04, 91);
    const double sweeps = Fbm(Slanted(q), {9, 3}, 5, 92);
    const double coat = Fbm(Slanted(Warp(p, {9, 9}, 0.03, 93)), {5, 3}, 5, 94);
    return 0.7 * sweeps + 0.5 * SmoothStep(-0.04, 0.10, coat) + 0.16 * Fbm(p, {64, 64}, 4, 95);
}

// Split rock: flat layers that end in ragged low steps.
double CleftHeight(Point p) {
    const Point q = Warp(p, {5, 5}, 0.04, 121);
    const double h = 4.5 * Fbm(Slanted(q), {2, 2}, 7, 122);
    const double layer = std::floor(h);
    return layer + SmoothStep(0.0, 0.35, h - layer) + 1.6 * Fbm(Slanted(p), {12, 20}, 5, 123);
}

}  // namespace

Rgb Ramp(std::initializer_list<unsigned> codes, double t) {
    const double place = Clamp01(t) * static_cast<double>(codes.size() - 1);
    const auto i = std::min(static_cast<std::size_t>(place), codes.size() - 2);
    const unsigned* code = codes.begin() + i;
    return Mix(Hex(code[0]), Hex(code[1]), place - static_cast<double>(i));
}

Rgb BrushedMetal(Point p) {
    const double streaks = 0.55 * GradientNoise(p, {2, 256}, 11) +
                           0.35 * GradientNoise(p, {5, 140}, 12) +
                           0.35 * GradientNoise(p, {12, 330}, 13);
    const double sheen = 0.5 * Fbm(p, {1, 12}, 3, 14);
    const Strand scratch = Strands(p, {6, 90}, 0.7, 0, 0.02, 15);
    const double cut = SmoothStep(0.10, 0, scratch.distance) * (1 - std::abs(scratch.along));
    const double t = 0.5 + 0.5 * streaks + 0.3 * sheen + 0.35 * cut * (Random(scratch.id, 1) - 0.4);
    return Ramp({0x6c7074, 0x94989b, 0xa9acae, 0xc8cacb}, t);
}

Rgb Concrete(Point p) {
    const double stains = 0.7 * Fbm(Warp(p, {5, 5}, 0.05, 16), {6, 6}, 7, 17);
    const Cell bubble = Cells(Warp(p, {40, 40}, 0.004, 18), {36, 36}, 1, 19);
    const double size = 0.34 * (Random(bubble.id, 1) - 0.45);
    const double pit = SmoothStep(size, size - 0.07, bubble.first);
    const Cell sand = Cells(p, {190, 190}, 1, 20);
    const double tone = stains + 0.30 * (Random(sand.id, 1) - 0.5);
    return Ramp({0x787671, 0x94928c, 0xa6a49d, 0xb8b6ae}, 0.5 + tone) *
           (1 - 0.40 * pit + 0.04 * Grain(p, 22));
}

Rgb Copper(Point p) {
    const Point q = Warp(p, {4, 4}, 0.06, 21);
    const double tarnish = Fbm(q, {5, 5}, 6, 22);
    const double brush = GradientNoise(p, {3, 300}, 23) + 0.6 * GradientNoise(p, {8, 170}, 24);
    const Rgb metal = Ramp({0x6f4130, 0x955a41, 0xb47253, 0xc68b6b, 0xdbac90},
                           0.50 + 0.60 * tarnish + 0.10 * brush);
    const double age = Fbm(q, {9, 9}, 6, 25) + 0.2 * Fbm(p, {48, 48}, 3, 26) - 0.3 * tarnish;
    const Rgb green = Ramp({0x4f7564, 0x6f9482, 0x8dae99}, 0.5 + Fbm(p, {24, 24}, 4, 27));
    return Mix(metal * (1 - 0.15 * SmoothStep(0.12, 0.32, age)), green,
               0.65 * SmoothStep(0.28, 0.52, age)) *
           (1 + 0.02 * Grain(p, 28));
}

Rgb Cork(Point p) {
    const Point q = Warp(Warp(p, {24, 24}, 0.012, 31), {90, 90}, 0.005, 32);
    const Cell coarse = Cells(q, {32, 32}, 1, 33);
    const Cell fine = Cells(q, {60, 60}, 1, 34);
    const double tone =
        0.55 * Random(coarse.id, 1) + 0.35 * Random(fine.id, 2) + 0.45 * Fbm(p, {70, 70}, 3, 35);
    const Rgb granule = Ramp({0x85603c, 0xa88056, 0xbb9468, 0xcdac82}, tone);
    const double gap = Random(coarse.id, 3) * SmoothStep(0.12, 0.0, coarse.edge);
    const double bark = SmoothStep(0.90, 0.94, Random(fine.id, 4) + 0.1 * Fbm(p, {8, 8}, 2, 36)) *
                        SmoothStep(0, 0.12, fine.edge);
    return Mix(granule, Hex(0x4e3522), std::max(0.5 * gap, 0.65 * bark)) *
           (1 + 0.06 * Grain(p, 37));
}

Rgb Granite(Point p) {
    const Point q = Warp(Warp(p, {24, 24}, 0.008, 41), {90, 90}, 0.005, 42);
    const Cell large = Cells(q, {28, 28}, 1, 43);
    const Cell small = Cells(q, {64, 64}, 1, 44);
    const double cloud = 0.5 * Fbm(p, {50, 50}, 4, 45);
    Rgb stone = Ramp({0x817c78, 0x9f9893, 0xb3aca6}, Random(small.id, 1) + 0.5 * cloud);
    const double feldspar =
        SmoothStep(0.50, 0.54, Random(large.id, 2)) * SmoothStep(0, 0.05, large.edge);
    stone = Mix(stone, Ramp({0xab8678, 0xc09d8f, 0xcfb5a8}, Random(large.id, 3) + cloud),
                0.9 * feldspar);
    const double mica = SmoothStep(0.79, 0.83, Random(small.id, 4) + 0.2 * Fbm(p, {10, 10}, 2, 46));
    stone = Mix(stone, Ramp({0x33312f, 0x5d5854}, Random(small.id, 5) + cloud), 0.85 * mica);
    return stone * (1 + 0.05 * Grain(p, 47));
}

Rgb Malachite(Point p) {
    const Point q = Warp(p, {3, 3}, 0.05, 51);
    const Cell eye = Cells(q, {3, 3}, 1, 52);
    const double ring = 7 * eye.first + 1.2 * Fbm(p, {4, 4}, 4, 53);
    const double fine = GradientNoise({ring / 9, 0}, {64, 1}, 54);
    const double t = 0.45 + 0.3 * std::cos(2 * std::numbers::pi * ring) + 0.35 * fine;
    return Ramp({0x12523f, 0x1f7a5a, 0x3c9c74, 0x7cc3a0}, t);
}

Rgb Marble(Point p) {
    const Point q = Warp(Warp(p, {3, 3}, 0.06, 61), {14, 14}, 0.008, 62);
    const Point s = Slanted(q);
    const double clouds = Fbm(s, {3, 2}, 7, 63);
    const double fade = SmoothStep(-0.3, 0.4, Fbm(q, {4, 4}, 4, 64));
    const double course = Fbm(s, {3, 1}, 6, 65);
    const double vein = Peak(course, 0.016) * fade;
    const double halo = Peak(course, 0.11) * fade;
    const double thread = Peak(Fbm(s, {7, 2}, 5, 66), 0.010) * (1 - fade);
    const Rgb stone =
        Ramp({0x8d9093, 0xacadad, 0xbfbebb, 0xccc8c1}, 0.58 + 0.7 * clouds - 0.35 * halo);
    const Rgb veined = Mix(stone, Hex(0x5f6267), 0.65 * vein);
    return Mix(veined, Hex(0x77736f), 0.40 * thread) * (1 + 0.02 * Grain(p, 67));
}

Rgb Paper(Point p) {
    const double clouds = 0.5 * Fbm(p, {6, 6}, 5, 71) + 0.25 * Fbm(p, {90, 90}, 3, 72);
    Rgb sheet = Ramp({0xb0a187, 0xbeb097, 0xcabda6}, 0.5 + clouds);
    for (std::uint32_t layer = 0; layer < 5; ++layer) {
        const Strand fibre =
            Strands(Warp(p, {14, 14}, 0.012, 73 + layer), {18, 18}, 0.8, 0, 3.2, 80 + 10 * layer);
        const double body =
            SmoothStep(0.045, 0.01, fibre.distance) * SmoothStep(1, 0.7, std::abs(fibre.along));
        sheet = Mix(sheet, Random(fibre.id, 3) < 0.6 ? Hex(0xdacfba) : Hex(0x8f7d62),
                    body * (0.15 + 0.35 * Random(fibre.id, 4)));
    }
    return sheet * (1 + 0.02 * Grain(p, 79));
}

Rgb Plaster(Point p) {
    return Ramp(
        {0x968e82, 0xb0a89b, 0xc1b9ac, 0xd3ccc0},
        0.5 + 0.30 * TrowelledHeight(p) + 1.3 * Shade(TrowelledHeight, p) + 0.05 * Grain(p, 98));
}

Rgb Sand(Point p) {
    const Point q = Warp(p, {150, 150}, 0.002, 101);
    const Cell grain = Cells(q, {200, 200}, 1, 102);
    const Cell coarse = Cells(q, {120, 120}, 1, 103);
    const double drift = 0.30 * Fbm(p, {7, 7}, 5, 104);
    const double tone = 0.6 * Random(grain.id, 1) + 0.4 * Random(coarse.id, 2);
    const Rgb sand = Ramp({0x94764f, 0xb4946a, 0xc4a67c, 0xd8c19b}, 0.05 + 0.85 * tone + drift);
    const Rgb speck = Ramp({0x5f4b38, 0x8d6a50, 0xe6d9c1}, 1.2 * Random(coarse.id, 3) - 0.1);
    return Mix(sand, speck, 0.65 * SmoothStep(0.93, 0.95, Random(coarse.id, 4))) *
           (1 - 0.15 * SmoothStep(0.1, 0, grain.edge));
}

Rgb Slate(Point p) {
    const double mineral = Fbm(Warp(p, {6, 6}, 0.04, 124), {5, 5}, 7, 125);
    const double rust = SmoothStep(0.25, 0.6, Fbm(Warp(p, {5, 5}, 0.05, 126), {6, 6}, 6, 127));
    const Rgb stone =
        Ramp({0x434950, 0x575e65, 0x6b727a, 0x868d93},
             0.45 + 0.05 * CleftHeight(p) + 0.5 * mineral + 0.45 * Shade(CleftHeight, p));
    return Mix(stone, Hex(0x7a6a5a), 0.45 * rust) * (1 + 0.05 * Grain(p, 128));
}

Rgb Wood(Point p) {
    constexpr int kRings = 18;
    const double bend = Fbm(p, {2, 1}, 2, 131) + 0.06 * Fbm(p, {20, 3}, 3, 132);
    const double ring = kRings * p.u + 3.4 * bend;
    const double year = ring - std::floor(ring);
    const int number = static_cast<int>(std::floor(ring) + kRings) % kRings;
    const double late = SmoothStep(0.35, 0.90, year) * SmoothStep(1.0, 0.94, year) *
                        (0.35 + 0.65 * Random(number, 0, 133));
    const double fibres = 0.6 * GradientNoise(p, {90, 3}, 134) +
                          0.6 * GradientNoise(p, {200, 7}, 135) +
                          0.5 * GradientNoise(p, {256, 24}, 136);
    const double tone = 0.30 * Fbm(p, {5, 1}, 3, 137) + 0.22 * fibres;
    const Strand pore = Strands(p, {100, 16}, 0.6, kUpright, 0.003, 138);
    const double dash =
        SmoothStep(0.24, 0.08, pore.distance) * SmoothStep(0.45, 0.9, Random(pore.id, 2));
    return Ramp({0xcaa171, 0xb98a57, 0xa27345, 0x875a34}, 0.30 + 0.42 * late + tone) *
           (1 - 0.22 * dash * (0.5 + 0.5 * late) + 0.02 * Grain(p, 139));
}

}  // namespace generator
