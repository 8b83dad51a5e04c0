#pragma once

// A number kept between Minimum and Maximum: what lies outside becomes the nearer end.
template <class Number, Number Minimum, Number Maximum, Number Default>
class TRange {
  public:
    constexpr TRange() = default;
    constexpr TRange(Number value)  // NOLINT: numbers become ranges where they are passed
        : value_(value < Minimum   ? Minimum
                 : value > Maximum ? Maximum
                                   : value) {}
    constexpr operator Number() const { return value_; }  // NOLINT: and numbers again

  private:
    Number value_ = Default;
};
