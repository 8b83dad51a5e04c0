#pragma once

#include <cstdint>

// The arithmetic that the effects share on single samples: its one home. All of it is 32-bit
// signed integer arithmetic; right shifts of negative numbers round down.
namespace pixel {

// `high` when value >= high, else `low` when value < low, else value. When low > high the test
// against high wins.
constexpr int Clamp(int value, int low, int high) {
    return value >= high ? high : value < low ? low : value;
}

// The high byte of a 16-bit sample: its value in 8-bit terms.
constexpr int HighByte(int sample) { return (sample >> 8) & 255; }

// An 8-bit result (0 to 255) as a 16-bit sample; 255 becomes 65535.
constexpr int Times257(int value) { return value * 257; }

// A 16-bit sample (0 to 65535) as the nearest 8-bit one.
constexpr int NearestByte(int sample) { return (sample + 128) / 257; }

// A sample in 8-bit terms, and an 8-bit result as a sample, whatever the depth.
template <class Sample>
constexpr int ToByte(int sample) {
    return sizeof(Sample) == 2 ? HighByte(sample) : sample;
}
template <class Sample>
constexpr int FromByte(int value) {
    return sizeof(Sample) == 2 ? Times257(value) : value;
}

// value / 255 rounded down, in 16 bits throughout so that rows of it fill whole vectors. Right for
// every value from 0 to 255 * 255.
constexpr std::uint16_t DivideBy255(std::uint16_t value) {
    return static_cast<std::uint16_t>((value + 1 + (value >> 8)) >> 8);
}

// Sample s moved toward colour value c: weight 0 gives c, weight 255 leaves s almost unchanged.
constexpr int BlendToward(int s, int c, int weight) { return (((s - c) * weight) >> 8) + c; }

}  // namespace pixel
