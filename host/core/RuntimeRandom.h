#pragma once

#include <cstdint>

#include "host/core/HostApi.h"

// The pseudo-random generator of the textures: state * 214013 + 2531011 modulo 2^32, of which 15
// bits are given out. Every thread has a state of its own, so pictures made at the same time on
// several threads do not disturb each other; the same seed gives the same numbers everywhere.
class CRuntimeRandom {
  public:
    explicit constexpr CRuntimeRandom(std::uint32_t seed = 1) : state_(seed) {}

    constexpr void Seed(std::uint32_t seed) { state_ = seed; }
    // The next number, 0 to 32767.
    constexpr int Next() {
        state_ = state_ * 214013U + 2531011U;
        return static_cast<int>((state_ >> 16) & 32767U);
    }

    // The calling thread's generator, shared by the module and the host.
    HOST_API static CRuntimeRandom& OfThisThread();

  private:
    std::uint32_t state_;
};
