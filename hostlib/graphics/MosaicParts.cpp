#include "hostlib/graphics/MosaicParts.h"

#include <cmath>

CWanderField::CWanderField(CRuntimeRandom& random, double spacing, int width) : spacing_(spacing) {
    lattice_.resize(std::size_t{kLattice} * kLattice);
    for (float& value : lattice_) value = static_cast<float>(random.Next()) / 16383.5F - 1.0F;
    for (int x = 0; x < width; ++x) {
        const double at = x / spacing;
        const double t = at - std::floor(at);
        point_.push_back(static_cast<int>(std::fmod(std::floor(at), kLattice)));
        across_.push_back(static_cast<float>(t * t * (3 - 2 * t)));
    }
}

void CWanderField::Row(int x, int y, float* values, int pixels) const {
    const double at = y / spacing_;
    const double t = at - std::floor(at);
    const auto down = static_cast<float>(t * t * (3 - 2 * t));
    const auto above = static_cast<std::size_t>(std::fmod(std::floor(at), kLattice));
    const float* from = lattice_.data() + above * kLattice;
    const float* to = lattice_.data() + (above + 1) % kLattice * kLattice;
    float line[kLattice + 1];
    for (int i = 0; i < kLattice; ++i) line[i] = from[i] + down * (to[i] - from[i]);
    line[kLattice] = line[0];
    const int* point = point_.data() + x;
    const float* across = across_.data() + x;
    for (int i = 0; i < pixels; ++i) {
        const float left = line[point[i]];
        values[i] = left + across[i] * (line[point[i] + 1] - left);
    }
}
