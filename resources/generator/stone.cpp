// Marbles, granites and other stones, as patterns, and what is laid or spread of them, as textures.
#include "recipes.h"

namespace generator {
namespace {

// What tells one marble from another: the stone, the veins across it, and how much of them.
struct Marbling {
    std::initializer_list<unsigned> stone;
    unsigned vein, thread;
    double vein_strength, thread_strength;
    double vein_width;
    int scale;  // veins across the picture
    std::uint32_t seed;
};

// Turbulence moved by turbulence: the clouds stretch along the veins, and each vein is broad and
// pale in one place and a hard line in another.
Rgb Marble(Point p, const Marbling& m) {
    const int n = m.scale;
    const Point flow =
        Warp(Warp(p, {n, n}, 0.24 / n, m.seed), {4 * n, 4 * n}, 0.06 / n, m.seed + 1);
    const Point s = Slanted(flow);
    const Real clouds = Fbm(s, {n, n}, 6, m.seed + 2);
    const Real wisps =
        Fbm(Slanted(Warp(flow, {n, n}, 0.1 / n, m.seed + 3)), {3 * n, n}, 4, m.seed + 4);
    const Real fade = SmoothStep(-0.25, 0.45, Fbm(flow, {2 * n, 2 * n}, 4, m.seed + 5));
    const Real course = Fbm(s, {n, n - 1}, 5, m.seed + 6);
    const Real crossing = Fbm({flow.u - flow.v, 2 * flow.v - flow.u}, {n, n / 2}, 5, m.seed + 7);
    const Real vein = Peak(course, m.vein_width * (0.3 + 1.2 * fade)) * (0.25 + 0.75 * fade);
    const Real halo = Peak(course, 7 * m.vein_width) * fade;
    const Real thread = Peak(crossing, 0.3 * m.vein_width) * SmoothStep(0.7, 0.1, fade);
    const Rgb stone = Ramp(m.stone, 0.52 + 0.75 * clouds + 0.35 * wisps - 0.22 * halo);
    const Rgb veined = Mix(stone, Hex(m.vein), m.vein_strength * vein);
    return Mix(veined, Hex(m.thread), m.thread_strength * thread) *
           (1 + 0.02 * Grain(p, m.seed + 8));
}

// Crystals of three sizes that grew into each other.
struct Crystals {
    std::initializer_list<unsigned> ground, feldspar, mica;
    double feldspar_share, mica_share;
    std::uint32_t seed;
};

Rgb Granite(Point p, const Crystals& c) {
    const Point q = Warp(Warp(p, {60, 60}, 0.0035, c.seed), {240, 240}, 0.002, c.seed + 1);
    const Cell large = Cells(q, {62, 62}, 0.9, c.seed + 2);
    const Cell middle = Cells(q, {140, 140}, 0.9, c.seed + 3);
    const Cell small = Cells(q, {300, 300}, 0.9, c.seed + 4);
    const Real drift = 0.5 * Fbm(p, {6, 6}, 3, c.seed + 5);
    const Real cloud = Fbm(p, {120, 120}, 3, c.seed + 6);
    const Real facet =
        0.4 * (large.du * (Random(large.id, 5) - 0.5) + large.dv * (Random(large.id, 6) - 0.5));
    Rgb stone =
        Ramp(c.ground, 0.55 * Random(middle.id, 1) + 0.35 * Random(small.id, 1) + 0.3 * cloud);
    const Real feldspar = SmoothStep(1 - c.feldspar_share, 1.03 - c.feldspar_share,
                                     Random(large.id, 2) + 0.15 * drift) *
                          SmoothStep(0.0, 0.06, large.edge);
    stone =
        Mix(stone, Ramp(c.feldspar, Random(large.id, 3) + 0.4 * cloud + facet), 0.92 * feldspar);
    const Real mica =
        SmoothStep(1 - c.mica_share, 1.03 - c.mica_share, Random(middle.id, 4) + 0.25 * drift) *
        SmoothStep(0.0, 0.12, middle.edge);
    const Real speck =
        SmoothStep(0.94, 0.95, Random(small.id, 7)) * SmoothStep(0.0, 0.12, small.edge);
    stone =
        Mix(stone, Ramp(c.mica, Random(middle.id, 8) + 0.5 * cloud), 0.9 * Max(mica, 0.8 * speck));
    return stone * (1 + 0.03 * Grain(p, c.seed + 9));
}

// How much lighter (above 0) or darker a surface looks in soft light from the upper left.
Real Shade(Texture height, Point p) {
    constexpr double kStep = 0.5 / 1024;
    return height({p.u + kStep, p.v + kStep}) - height({p.u - kStep, p.v - kStep});
}

// A brick, slab or tile of a wall: the place within it, and the distance to its border, in pixels
// of a picture of 2,048. `columns` and `rows` fill the square; odd rows are moved by half a stone.
struct Block {
    Real x, y;  // -0.5..0.5 across and down the stone
    Real edge;  // pixels to the border, rounded at the corners
    Real column, row;
};
Block Wall(Point p, int columns, int rows, double corner) {
    const double width = 2048.0 / columns;
    const double height = 2048.0 / rows;
    Block block;
    const Real down = p.v * rows;
    block.row = Wrap(Floor(down), rows);
    const Real across = p.u * columns + 0.5 * (block.row - 2 * Floor(block.row * 0.5));
    block.column = Wrap(Floor(across), columns);
    block.x = Fraction(across) - 0.5;
    block.y = Fraction(down) - 0.5;
    const Real dx = corner - (0.5 - Abs(block.x)) * width;
    const Real dy = corner - (0.5 - Abs(block.y)) * height;
    block.edge = corner - Sqrt(Square(Max(0, dx)) + Square(Max(0, dy))) - Min(0, Max(dx, dy));
    return block;
}

}  // namespace

Real TrowelledPlaster(Point p) {
    const Point q = Warp(p, {9, 9}, 0.022, 91);
    const Real sweeps = Fbm(Slanted(q), {36, 24}, 5, 92);
    const Real coat = Fbm(Slanted(Warp(p, {18, 18}, 0.016, 93)), {24, 24}, 6, 94);
    return 0.7 * sweeps + 0.5 * SmoothStep(-0.04, 0.08, coat) + 0.2 * Fbm(p, {128, 128}, 4, 95);
}

Real CleftRock(Point p) {
    const Point q = Warp(p, {12, 12}, 0.016, 121);
    const Real h = 7 * Fbm(Slanted(q), {25, 34}, 6, 122);
    const Real layer = Floor(h);
    return 0.8 * (layer + SmoothStep(0.0, 0.3, h - layer)) + 0.8 * h +
           1.8 * Fbm(Slanted(p), {24, 60}, 6, 123);
}

Rgb WhiteMarble(Point p) {
    return Marble(
        p,
        {{0x83888d, 0xaaacad, 0xc0c0be, 0xcfccc7}, 0x565b63, 0x7c7b7a, 0.62, 0.45, 0.022, 6, 601});
}
Rgb BlackMarble(Point p) {
    return Marble(
        p,
        {{0x2d2e30, 0x3a3a3c, 0x4a4a4b, 0x5a5856}, 0xc9c5bd, 0xd8d2c6, 0.85, 0.75, 0.012, 6, 621});
}
Rgb GreenMarble(Point p) {
    return Marble(
        p,
        {{0x1f3a2e, 0x33584a, 0x4b7463, 0x7c9c8a}, 0xb9ccbb, 0x16281f, 0.62, 0.55, 0.018, 8, 641});
}
Rgb RoseMarble(Point p) {
    return Marble(
        p, {{0x8e5f55, 0xb08377, 0xc69d8f, 0xd8b8a8}, 0x6c3c36, 0xeadccf, 0.6, 0.6, 0.020, 7, 661});
}

Rgb PinkGranite(Point p) {
    return Granite(p, {{0x7b7470, 0x9a918c, 0xb0a7a0},
                       {0xa27767, 0xbd9080, 0xcfae9f},
                       {0x2c2a29, 0x57504b},
                       0.50,
                       0.17,
                       401});
}
Rgb GreyGranite(Point p) {
    return Granite(p, {{0x7d7f80, 0x9a9b9b, 0xb3b2b0},
                       {0xa4a4a2, 0xbdbbb7, 0xcbc9c4},
                       {0x2e2f31, 0x55565a},
                       0.34,
                       0.24,
                       421});
}
Rgb BlackGranite(Point p) {
    return Granite(p, {{0x27292b, 0x3a3c3f, 0x4e5052},
                       {0x3c4246, 0x5b646b, 0x7f8a92},
                       {0x121314, 0x252729},
                       0.16,
                       0.30,
                       441});
}

Rgb Travertine(Point p) {
    const Point q = {p.u + 0.02 * Fbm(p, {5, 5}, 3, 701), p.v + 0.012 * Fbm(p, {4, 8}, 4, 702)};
    const Real beds = Fbm(q, {2, 26}, 5, 703) + 0.5 * Fbm(q, {5, 110}, 3, 704);
    const Real cloud = Fbm(Warp(p, {12, 12}, 0.01, 705), {14, 22}, 5, 706);
    const Real open = Fbm(q, {46, 130}, 3, 707) + 0.5 * SmoothStep(0.05, 0.4, beds) - 0.12;
    const Real pit = SmoothStep(0.34, 0.44, open);
    const Real rim = SmoothStep(0.22, 0.36, open) - pit;
    const Rgb stone =
        Ramp({0x9c8260, 0xb79c78, 0xc9b292, 0xd8c7ab}, 0.5 + 0.75 * beds + 0.35 * cloud);
    return Mix(stone * (1 + 0.06 * rim), Hex(0x6e573d), 0.72 * pit) * (1 + 0.025 * Grain(p, 708));
}

Rgb Concrete(Point p) {
    const Real stains = 0.6 * Fbm(Warp(p, {9, 9}, 0.03, 16), {11, 11}, 7, 17);
    const Cell bubble = Cells(Warp(p, {80, 80}, 0.002, 18), {64, 64}, 0.9, 19);
    const Real size = 0.30 * (Random(bubble.id, 1) - 0.5);
    const Real pit = SmoothStep(size, size - 0.06, bubble.first);
    const Real lip = SmoothStep(size + 0.08, size, bubble.first) * SmoothStep(0, 0.05, size) - pit;
    const Cell sand = Cells(p, {420, 420}, 0.9, 20);
    const Real tone = stains + 0.26 * (Random(sand.id, 1) - 0.5);
    return Ramp({0x787671, 0x94928c, 0xa6a49d, 0xb8b6ae}, 0.5 + tone) *
           (1 - 0.40 * pit + 0.05 * Max(0, lip) + 0.035 * Grain(p, 22));
}

Rgb Malachite(Point p) {
    const Point q = Warp(Warp(p, {6, 6}, 0.03, 51), {24, 24}, 0.005, 55);
    const Cell eye = Cells(q, {6, 6}, 0.9, 52);
    const Real ring = 8 * eye.first + 2.2 * Fbm(q, {7, 7}, 4, 53) + 8 * Random(eye.id, 1);
    const Real fine = GradientNoise({ring * (1.0 / 9), 0.4}, {96, 1}, 54);
    const Real t = 0.45 + 0.3 * CosTurns(ring) + 0.35 * fine;
    const Real seam = SmoothStep(0.05, 0.0, eye.edge);
    return Ramp({0x12523f, 0x1f7a5a, 0x3c9c74, 0x7cc3a0}, t - 0.35 * seam) *
           (1 + 0.02 * Grain(p, 56));
}

Rgb Plaster(Point p) {
    return Ramp(
        {0x968e82, 0xb0a89b, 0xc1b9ac, 0xd3ccc0},
        0.5 + 0.26 * TrowelledPlaster(p) + 1.3 * Shade(TrowelledPlaster, p) + 0.05 * Grain(p, 98));
}

Rgb Sand(Point p) {
    const Point q = Warp(p, {320, 320}, 0.001, 101);
    const Cell grain = Cells(q, {520, 520}, 0.9, 102);
    const Cell coarse = Cells(q, {300, 300}, 0.9, 103);
    const Real drift = 0.30 * Fbm(p, {12, 12}, 6, 104);
    const Real tone = 0.6 * Random(grain.id, 1) + 0.4 * Random(coarse.id, 2);
    const Rgb sand = Ramp({0x94764f, 0xb4946a, 0xc4a67c, 0xd8c19b}, 0.05 + 0.85 * tone + drift);
    const Rgb speck = Ramp({0x5f4b38, 0x8d6a50, 0xe6d9c1}, 1.2 * Random(coarse.id, 3) - 0.1);
    return Mix(sand, speck, 0.65 * SmoothStep(0.93, 0.95, Random(coarse.id, 4))) *
           (1 - 0.15 * SmoothStep(0.1, 0, grain.edge));
}

Rgb Slate(Point p) {
    const Real mineral = Fbm(Warp(p, {12, 12}, 0.02, 124), {9, 9}, 7, 125);
    const Real rust = SmoothStep(0.22, 0.6, Fbm(Warp(p, {10, 10}, 0.03, 126), {13, 13}, 6, 127));
    const Rgb stone = Ramp({0x434950, 0x575e65, 0x6b727a, 0x868d93},
                           0.45 + 0.04 * CleftRock(p) + 0.5 * mineral + 0.35 * Shade(CleftRock, p));
    return Mix(stone, Hex(0x7a6a5a), 0.4 * rust) * (1 + 0.05 * Grain(p, 128));
}

Real BrickWall(Point p) {
    constexpr int kColumns = 12;
    constexpr int kRows = 36;
    const Point q = Warp(p, {40, 60}, 0.0011, 801);
    const Block brick = Wall(q, kColumns, kRows, 7);
    const Real own = Random(brick.column, brick.row, 802);
    const Real chips =
        4.5 * SmoothStep(0.10, 0.5, Fbm(p, {70, 90}, 4, 803)) + 1.6 * Fbm(p, {160, 160}, 3, 804);
    const Real body = SmoothStep(2.0, 6.0, brick.edge - chips - 1.5 * own);
    const Real tilt = 0.10 * (brick.x * (Random(brick.column, brick.row, 805) - 0.5) +
                              brick.y * (Random(brick.column, brick.row, 806) - 0.5));
    const Real face = 0.74 + 0.12 * own + tilt + 0.05 * Fbm(p, {90, 110}, 5, 807) -
                      0.14 * SmoothStep(0.30, 0.6, Fbm(p, {150, 200}, 3, 808));
    const Real mortar = 0.22 + 0.07 * Fbm(p, {150, 150}, 5, 809) + 0.05 * Fbm(p, {24, 24}, 3, 810);
    return Mix(mortar, face, body) + 0.02 * Grain(p, 811);
}

Real Cobblestones(Point p) {
    const Point q = Warp(p, {24, 24}, 0.005, 221);
    const Cell stone = Cells(q, {20, 26}, 0.5, 222, 0.5);
    const Real tilt =
        0.30 * (stone.du * (Random(stone.id, 1) - 0.5) + stone.dv * (Random(stone.id, 2) - 0.5));
    const Real side = Dome(1 - Min(1, stone.edge / 0.26));
    const Real top = 0.5 * (1 - Square(stone.first)) + tilt + 0.10 * Random(stone.id, 3);
    const Real joint = 0.12 * Fbm(p, {160, 160}, 4, 224);
    return Mix(joint, side * (0.5 + top) + 0.09 * Fbm(p, {50, 50}, 6, 223),
               SmoothStep(0.03, 0.09, stone.edge));
}

Real RoofTiles(Point p) {
    constexpr int kColumns = 16;
    constexpr int kRows = 22;
    // A tile's rounded end lies on the row below: the lower of two tiles is looked for from the
    // top.
    const Point q = Warp(p, {30, 30}, 0.0008, 821);
    const auto tile = [&](int above) {
        const Real down = q.v * kRows + above;
        const Real row = Wrap(Floor(down) - above, kRows);
        const Real across = q.u * kColumns + 0.5 * (row - 2 * Floor(row * 0.5));
        const Real column = Wrap(Floor(across), kColumns);
        const Real own = Random(column, row, 822);
        const Real x = Fraction(across) - 0.5;
        const Real y = Fraction(down) + above + 0.05 * (own - 0.5);
        const Real end = 1.36 - 1.0 * (0.5 - Sqrt(Max(0, 0.25 - x * x)));  // a round end
        const Real side = 0.5 - Abs(x);
        const Real inside = SmoothStep(0.0, 0.03, side) * SmoothStep(0.0, 0.03, end - y);
        const Real height = 0.30 + 0.42 * y + 0.10 * (own - 0.5) +
                            0.18 * x * (Random(column, row, 823) - 0.5) -
                            0.10 * SmoothStep(0.06, 0.0, Min(side, end - y));
        return Mix(-1, height, inside);
    };
    const Real rough = 0.035 * Fbm(p, {60, 60}, 6, 824) + 0.015 * Grain(p, 825);
    return Max(Max(tile(0), tile(1)), -0.1) + rough;
}

Real Stucco(Point p) {
    const Point q = Warp(p, {60, 60}, 0.004, 831);
    const Real splash = Fbm(q, {48, 48}, 5, 832);
    const Real second = Fbm(Warp(p, {90, 90}, 0.003, 833), {90, 90}, 4, 834);
    const Real flats = SmoothStep(-0.02, 0.16, splash) + 0.35 * SmoothStep(0.05, 0.22, second);
    return flats * (0.8 + 0.25 * Fbm(p, {30, 30}, 3, 835)) + 0.30 * splash +
           0.14 * Fbm(p, {220, 220}, 3, 836);
}

}  // namespace generator
