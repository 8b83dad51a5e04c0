// Woods, cork and paper, as patterns; bark and papers, as textures.
#include "recipes.h"

namespace generator {
namespace {

constexpr double kUpright = 0.25;

// A board of wood whose grain runs upright: year rings, cut lengthwise, that are pale in spring and
// dark in autumn; fibres; pores; and, where it was cut through the rays, their bright flecks.
struct Board {
    std::initializer_list<unsigned> colours;  // from spring to autumn wood
    int rings;                                // across the picture
    double flow;                              // how far the rings wander, in rings
    double contrast;                          // of spring and autumn
    double pores;
    double rays;
    double figure;  // broad changes of tone
    std::uint32_t seed;
};

Rgb Wood(Point p, const Board& b) {
    const Real sway = Fbm(p, {7, 3}, 3, b.seed) + 0.10 * Fbm(p, {24, 5}, 4, b.seed + 1) +
                      0.02 * Fbm(p, {160, 24}, 3, b.seed + 2);
    const Real ring = b.rings * p.u + b.flow * sway;
    const Real year = Fraction(ring);
    const Real number = Wrap(Floor(ring), b.rings);
    const Real width = 0.35 + 0.5 * Random(number, 0, b.seed + 3);
    const Real late = SmoothStep(1 - width, 0.92, year) * SmoothStep(1.0, 0.95, year) *
                      (0.55 + 0.45 * Random(number, 1, b.seed + 4));
    const Real fibres = 0.5 * GradientNoise(p, {220, 7}, b.seed + 5) +
                        0.5 * GradientNoise(p, {480, 16}, b.seed + 6) +
                        0.45 * GradientNoise(p, {900, 50}, b.seed + 7);
    const Real tone =
        b.figure * Fbm(Warp(p, {5, 3}, 0.03, b.seed + 8), {9, 3}, 4, b.seed + 9) + 0.24 * fibres;
    const Strand pore =
        Strands({p.u + 0.004 * b.flow * sway, p.v}, {300, 38}, 0.6, kUpright, 0.001, b.seed + 10);
    const Real dash = SmoothStep(0.30, 0.10, pore.distance) *
                      SmoothStep(0.35, 0.85, Random(pore.id, 2)) * SmoothStep(0.75, 0.15, year);
    const Point slow = Warp(p, {12, 8}, 0.006, b.seed + 11);
    const Strand ray = Strands(slow, {26, 36}, 0.75, 0.02, 0.03, b.seed + 12);
    const Real fleck =
        SmoothStep(0.17, 0.05, ray.distance + 0.12 * Fbm(p, {120, 160}, 3, b.seed + 13)) *
        SmoothStep(0.30, 0.75, Random(ray.id, 3));
    return Ramp(b.colours, 0.30 + b.contrast * (late - 0.15) + tone - b.rays * fleck) *
           (1 - b.pores * dash + 0.02 * Grain(p, b.seed + 14));
}

}  // namespace

Rgb Oak(Point p) {
    return Wood(p, {{0xcfa878, 0xbd905d, 0xa5794a, 0x885c36}, 38, 2.6, 0.42, 0.20, 0.0, 0.22, 131});
}
Rgb QuarteredOak(Point p) {
    return Wood(p,
                {{0xdcbd90, 0xc29a68, 0xa98153, 0x8f6740}, 58, 1.6, 0.24, 0.20, 0.24, 0.18, 151});
}
Rgb Walnut(Point p) {
    return Wood(p, {{0x9a7252, 0x7c573c, 0x60402b, 0x422a1d}, 34, 4.2, 0.52, 0.30, 0.0, 0.42, 171});
}
Rgb Pine(Point p) {
    return Wood(p, {{0xe6c793, 0xdcb277, 0xc48d52, 0xa4693a}, 30, 2.0, 0.62, 0.04, 0.0, 0.18, 191});
}

Rgb Cork(Point p) {
    const Point q = Warp(Warp(p, {50, 50}, 0.006, 31), {190, 190}, 0.0025, 32);
    const Cell coarse = Cells(q, {72, 72}, 0.9, 33);
    const Cell fine = Cells(q, {140, 140}, 0.9, 34);
    const Real tone =
        0.55 * Random(coarse.id, 1) + 0.35 * Random(fine.id, 2) + 0.45 * Fbm(p, {160, 160}, 4, 35);
    const Rgb granule = Ramp({0x85603c, 0xa88056, 0xbb9468, 0xcdac82}, tone);
    const Real gap = Random(coarse.id, 3) * SmoothStep(0.12, 0.0, coarse.edge);
    const Real bark = SmoothStep(0.90, 0.94, Random(fine.id, 4) + 0.1 * Fbm(p, {16, 16}, 2, 36)) *
                      SmoothStep(0, 0.12, fine.edge);
    return Mix(granule, Hex(0x4e3522), Max(0.5 * gap, 0.65 * bark)) * (1 + 0.06 * Grain(p, 37));
}

Rgb Paper(Point p) {
    const Real clouds = 0.5 * Fbm(p, {12, 12}, 6, 71) + 0.25 * Fbm(p, {200, 200}, 3, 72);
    Rgb sheet = Ramp({0xb0a187, 0xbeb097, 0xcabda6}, 0.5 + clouds);
    for (std::uint32_t layer = 0; layer < 4; ++layer) {
        const Strand fibre =
            Strands(Warp(p, {28, 28}, 0.006, 73 + layer), {38, 38}, 0.8, 0, 0.5, 80 + 10 * layer);
        const Real body =
            SmoothStep(0.045, 0.01, fibre.distance) * SmoothStep(1, 0.7, Abs(fibre.along));
        const Mask pale = Random(fibre.id, 13) < 0.6;
        const Rgb light = Hex(0xdacfba);
        const Rgb dark = Hex(0x8f7d62);
        const Rgb tone{Select(pale, light.r, dark.r), Select(pale, light.g, dark.g),
                       Select(pale, light.b, dark.b)};
        sheet = Mix(sheet, tone, body * (0.15 + 0.35 * Random(fibre.id, 14)));
    }
    return sheet * (1 + 0.02 * Grain(p, 79));
}

Real Bark(Point p) {
    const Point q = Warp(Warp(p, {12, 6}, 0.014, 201), {40, 22}, 0.004, 205);
    const Ripple ridge = Ripples(q, {22, 0}, {12, 5}, 4.5, 202);
    const Real plate = Cells(Warp(p, {30, 24}, 0.009, 203), {24, 20}, 0.9, 204).edge;
    const Real body = SmoothStep(-0.85, 0.7, ridge.cosine) * SmoothStep(0, 0.5, ridge.strength);
    const Real flakes = Ridges(Warp(p, {34, 16}, 0.008, 206), {64, 18}, 5, 208);
    return body * (0.6 + 0.4 * SmoothStep(0, 0.14, plate)) + 0.75 * flakes * (0.3 + body) +
           0.32 * Fbm(p, {80, 50}, 5, 207);
}

Real LaidPaper(Point p) {
    const Point q = Warp(p, {30, 30}, 0.0008, 881);
    const Real wires = CosTurns(256 * q.v + 0.12 * Fbm(p, {40, 40}, 2, 882));
    const Real chain = Fraction(16 * q.u) - 0.5;
    const Real chains = Peak(chain, 0.022);
    return 0.30 * wires + 0.24 * chains + 0.55 * Fbm(p, {90, 90}, 5, 883) +
           0.25 * Fbm(p, {14, 14}, 4, 884) + 0.10 * Grain(p, 885);
}

Real WatercolourPaper(Point p) {
    const Point q = Warp(p, {70, 70}, 0.004, 891);
    const Real hills = Fbm(q, {105, 105}, 3, 892);
    const Real felt = Ridges(Warp(p, {90, 90}, 0.003, 893), {130, 130}, 3, 894);
    return SmoothStep(-0.55, 0.5, hills) + 0.35 * felt + 0.22 * Fbm(p, {300, 300}, 3, 895) +
           0.10 * Fbm(p, {10, 10}, 3, 896);
}

}  // namespace generator
