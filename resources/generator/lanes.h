// Eight values computed at once, written like one.
//
// Only operations whose result IEEE 754 prescribes are used (no library functions but the root, no
// contraction), so that every processor gives the same bytes, however wide its registers are.
#pragma once

#include <cmath>
#include <cstdint>

namespace generator {

constexpr int kLanes = 8;

struct Mask {
    using Vector = std::int32_t __attribute__((vector_size(4 * kLanes)));
    Vector v;
};
inline Mask operator&(Mask a, Mask b) { return {a.v & b.v}; }
inline Mask operator|(Mask a, Mask b) { return {a.v | b.v}; }

struct Bits {
    using Vector = std::uint32_t __attribute__((vector_size(4 * kLanes)));
    Vector v;
    Bits() = default;
    Bits(Vector values) : v(values) {}
    Bits(std::uint32_t value) : v(Vector{} + value) {}
};
inline Bits operator+(Bits a, Bits b) { return a.v + b.v; }
inline Bits operator*(Bits a, Bits b) { return a.v * b.v; }
inline Bits operator^(Bits a, Bits b) { return a.v ^ b.v; }
inline Bits operator>>(Bits a, int n) { return a.v >> n; }

struct Real {
    using Vector = float __attribute__((vector_size(4 * kLanes)));
    Vector v;
    Real() = default;
    Real(Vector values) : v(values) {}
    Real(double value) : v(Vector{} + static_cast<float>(value)) {}
};
inline Real operator+(Real a, Real b) { return a.v + b.v; }
inline Real operator-(Real a, Real b) { return a.v - b.v; }
inline Real operator*(Real a, Real b) { return a.v * b.v; }
inline Real operator/(Real a, Real b) { return a.v / b.v; }
inline Real operator-(Real a) { return -a.v; }
inline Mask operator<(Real a, Real b) { return {a.v < b.v}; }
inline Mask operator>(Real a, Real b) { return {a.v > b.v}; }

inline Real Select(Mask m, Real a, Real b) { return m.v ? a.v : b.v; }
inline Bits Select(Mask m, Bits a, Bits b) { return m.v ? a.v : b.v; }
inline Real Min(Real a, Real b) { return Select(a < b, a, b); }
inline Real Max(Real a, Real b) { return Select(a > b, a, b); }
inline Real Abs(Real a) { return Max(a, -a); }
inline Real Clamp(Real a, Real low, Real high) { return Min(Max(a, low), high); }
inline Real Clamp01(Real a) { return Clamp(a, 0, 1); }
inline Real Mix(Real a, Real b, Real t) { return a + (b - a) * t; }
inline Real Square(Real a) { return a * a; }

// For values below 2^31 in size.
inline Real Floor(Real a) {
    const Real whole(
        __builtin_convertvector(__builtin_convertvector(a.v, Mask::Vector), Real::Vector));
    return Select(whole > a, whole - 1, whole);
}
inline Real Fraction(Real a) { return a - Floor(a); }
inline Bits ToBits(Real whole) {
    const auto signed_whole = __builtin_convertvector(whole.v, Mask::Vector);
    return Bits::Vector(signed_whole);
}
inline Real ToReal(Bits bits) { return __builtin_convertvector(bits.v, Real::Vector); }

inline Real Sqrt(Real a) {
    Real root;
    for (int i = 0; i < kLanes; ++i) root.v[i] = std::sqrt(a.v[i]);
    return root;
}

// The sine and cosine of a number of turns, to within a thousandth.
inline Real SinTurns(Real turns) {
    const Real x = turns - Floor(turns + 0.5);      // -1/2..1/2
    const Real y = x * (8 - 16 * Abs(x));           // a parabola through the zeros
    const Real z = y * (0.7733 + 0.2267 * Abs(y));  // bent towards the sine, within 0.001
    return z;
}
inline Real CosTurns(Real turns) { return SinTurns(turns + 0.25); }

// 0 up to `low`, 1 from `high` on, smooth between; falls instead of rising when high < low.
inline Real SmoothStep(Real low, Real high, Real x) {
    const Real t = Clamp01((x - low) / (high - low));
    return t * t * (3 - 2 * t);
}
// A soft peak of height 1 at x = 0 that has fallen to a half at |x| = width.
inline Real Peak(Real x, Real width) { return 1 / (1 + Square(x / width)); }
// Half a circle over -1..1: the cross-section of a thread or a pebble.
inline Real Dome(Real x) { return Sqrt(Max(0, 1 - x * x)); }
// The greater of two heights, joined by a fillet of about `width`.
inline Real SoftMax(Real a, Real b, Real width) {
    const Real t = Clamp01(0.5 + 0.5 * (a - b) / width);
    return Mix(b, a, t) + width * t * (1 - t);
}

}  // namespace generator
