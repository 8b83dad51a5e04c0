// Metals, glass and ice, as patterns; worked metal and drops, as textures.
#include "recipes.h"

namespace generator {
namespace {

// The lines that a wire brush leaves: streaks of all lengths, and single scratches. About -1..1.
Real Brushing(Point p, std::uint32_t seed) {
    const Real streaks =
        0.40 * GradientNoise(p, {3, 900}, seed) + 0.34 * GradientNoise(p, {8, 560}, seed + 1) +
        0.30 * GradientNoise(p, {22, 1000}, seed + 2) + 0.22 * GradientNoise(p, {5, 250}, seed + 3);
    const Strand scratch = Strands(p, {14, 330}, 0.8, 0, 0.003, seed + 4);
    const Real cut = SmoothStep(0.16, 0.02, scratch.distance) * (1 - Square(scratch.along));
    return streaks + 0.4 * cut * (Random(scratch.id, 1) - 0.45);
}

// What a dull metal reflects: broad soft bands that lie across the brushing.
Real Reflections(Point p, std::uint32_t seed) {
    const Point q = Warp(p, {9, 7}, 0.01, seed);
    return Fbm(q, {22, 5}, 2, seed + 1) + 0.5 * Fbm(q, {41, 7}, 2, seed + 2);
}

}  // namespace

Rgb BrushedMetal(Point p) {
    const Real t = 0.55 + 0.42 * Brushing(p, 11) + 0.15 * Reflections(p, 17);
    return Ramp({0x6c7074, 0x94989b, 0xa9acae, 0xc8cacb}, t);
}

Rgb BrushedSteel(Point p) {
    const Real t = 0.45 + 0.34 * Brushing(p, 901) + 0.16 * Reflections(p, 907);
    return Ramp({0x424a52, 0x68727b, 0x87929b, 0xa9b4bd, 0xd2dae0}, t);
}

Rgb Gold(Point p) {
    const Point q = Warp(p, {40, 40}, 0.002, 911);
    const Real leaf = Fbm(q, {30, 30}, 5, 912);
    const Real t = 0.5 + 0.36 * Brushing(p, 915) + 0.15 * Reflections(p, 921) + 0.22 * leaf;
    return Ramp({0x6f4a12, 0xa0741f, 0xc69a35, 0xddb958, 0xf3dc95}, t);
}

Rgb Copper(Point p) {
    const Point q = Warp(p, {9, 9}, 0.03, 21);
    const Real tarnish = Fbm(q, {20, 20}, 6, 22);
    const Real t = 0.50 + 0.36 * tarnish + 0.26 * Brushing(p, 23) + 0.12 * Reflections(p, 29);
    return Ramp({0x5d3325, 0x8a523b, 0xb06d4d, 0xc88a68, 0xe4bc9f}, t) * (1 + 0.015 * Grain(p, 32));
}

Rgb Patina(Point p) {
    const Point q = Warp(Warp(p, {10, 10}, 0.03, 931), {40, 40}, 0.008, 932);
    const Real runs = Fbm({p.u + 0.01 * Fbm(p, {20, 6}, 3, 933), p.v}, {60, 5}, 4, 934);
    const Real age = Fbm(q, {11, 11}, 7, 935) + 0.30 * runs;
    const Real crust = Fbm(p, {90, 90}, 5, 936);
    const Rgb metal =
        Ramp({0x4c2d22, 0x76452f, 0x95603f, 0xb17e58}, 0.5 + 0.5 * crust + 0.15 * Brushing(p, 937));
    const Rgb dark = Mix(metal, Hex(0x3b3a31), 0.5 * SmoothStep(-0.35, 0.05, age));
    const Rgb green = Ramp({0x3f6f63, 0x5c8d7f, 0x7da999, 0xa2c3b4},
                           0.45 + 0.55 * crust + 0.4 * runs + 0.5 * age);
    return Mix(dark, green, SmoothStep(-0.45, 0.25, age + 0.30 * crust)) *
           (1 + 0.03 * Grain(p, 943));
}

Rgb Ice(Point p) {
    const Point q = Warp(Warp(p, {6, 6}, 0.03, 951), {26, 26}, 0.006, 952);
    const Real depth = Fbm(q, {7, 7}, 6, 953);
    const Cell plate = Cells(Warp(p, {12, 12}, 0.014, 954), {6, 6}, 0.9, 955);
    const Cell shard = Cells(Warp(p, {30, 30}, 0.006, 956), {17, 17}, 0.9, 957);
    const Real crack = Peak(plate.edge, 0.008) + 0.32 * Peak(shard.edge, 0.010) *
                                                     SmoothStep(-0.1, 0.3, Fbm(p, {8, 8}, 3, 958));
    const Real veil = SmoothStep(0.0, 0.5, Ridges(Slanted(q), {14, 9}, 5, 959) - 0.55);
    const Cell bubble = Cells(p, {150, 150}, 0.9, 960);
    const Real air =
        SmoothStep(0.16, 0.08, bubble.first) * SmoothStep(0.62, 0.9, Random(bubble.id, 1));
    const Rgb body = Ramp({0x4f83a3, 0x74a5c0, 0x9cc4d7, 0xc3deE8},
                          0.45 + 0.7 * depth + 0.1 * (Random(plate.id, 1) - 0.5));
    return Mix(body, Hex(0xeaf5f8), Clamp01(0.55 * crack + 0.45 * veil + 0.45 * air)) *
           (1 + 0.012 * Grain(p, 961));
}

Rgb FrostedGlass(Point p) {
    const Real mottle = Fbm(p, {260, 260}, 3, 971);
    const Real waves = Fbm(Warp(p, {10, 10}, 0.02, 972), {11, 11}, 4, 973);
    const Cell chip = Cells(Warp(p, {200, 200}, 0.001, 974), {230, 230}, 0.9, 975);
    const Real glint = (Random(chip.id, 1) - 0.5) + 1.2 * (chip.du * (Random(chip.id, 2) - 0.5) +
                                                           chip.dv * (Random(chip.id, 3) - 0.5));
    return Ramp({0x8fa9a8, 0xabc2c0, 0xbfd2cf, 0xdbe6e3},
                0.5 + 0.35 * mottle + 0.35 * waves + 0.30 * glint) *
           (1 + 0.015 * Grain(p, 976));
}

Real BrushMarks(Point p) { return Brushing({p.u, p.v + 0.0006 * Fbm(p, {6, 6}, 3, 841)}, 842); }

Real HammerMarks(Point p) {
    const Point q = Warp(p, {14, 14}, 0.006, 241);
    const Cell dent = Cells(q, {36, 36}, 0.85, 242);
    const Cell small = Cells(Warp(p, {20, 20}, 0.004, 245), {60, 60}, 0.9, 246);
    const Real blow =
        Square(dent.first) * (0.8 + 0.4 * Random(dent.id, 1)) + 0.12 * Random(dent.id, 2);
    return blow + 0.10 * Square(small.first) + 0.10 * Fbm(p, {12, 12}, 2, 243) +
           0.012 * Fbm(p, {150, 150}, 3, 244);
}

Real Rust(Point p) {
    const Point q = Warp(Warp(p, {30, 30}, 0.010, 851), {80, 80}, 0.003, 852);
    const Real age = Fbm(q, {34, 34}, 6, 853);
    const Real flake = Floor(5 * age + 0.6 * Fbm(p, {40, 40}, 4, 854)) * 0.2;
    const Real blister =
        SmoothStep(0.05, 0.5, Fbm(Warp(p, {60, 60}, 0.003, 855), {60, 60}, 3, 856));
    const Cell pit = Cells(q, {130, 130}, 0.9, 857);
    const Real holes =
        SmoothStep(0.30, 0.10, pit.first) * SmoothStep(0.55, 0.8, Random(pit.id, 1) + 0.5 * age);
    return 0.9 * flake + 0.4 * age + 0.35 * blister - 0.45 * holes +
           0.30 * Fbm(p, {170, 170}, 4, 858);
}

Real WaterDrops(Point p) {
    const auto drops = [&](Frequency f, double share, std::uint32_t seed) {
        const Point q = Warp(p, {2 * f.u, 2 * f.v}, 0.10 / f.u, seed);
        // Points that lie half a square apart at least: no drop is cut off by its neighbour.
        const Cell drop = Cells(q, f, 0.5, seed + 1);
        const Real radius = 0.25 * (0.4 + 0.6 * Random(drop.id, 1));
        const Real there = Select(Random(drop.id, 2) < share, Real(1), 0);
        return there * radius * Dome(Min(1, drop.first / radius)) * (1.0 / f.u);
    };
    const Real large = 44 * drops({20, 20}, 0.5, 861);
    const Real middle = 44 * drops({46, 46}, 0.6, 865);
    const Real small = 44 * drops({110, 110}, 0.6, 869);
    return Max(Max(large, middle), small) + 0.01 * Fbm(p, {40, 40}, 3, 873);
}

}  // namespace generator
