#include "hostlib/graphics/BlurRows.h"

#include <algorithm>
#include <cstddef>

#include "host/core/Multiversion.h"

namespace blur {
namespace {

// Samples summed at a time: their sums stay in the first-level cache.
constexpr int kTile = 1024;

// The high half of a product: the sum of a pair, or one row's value, times its weight.
CMDTEXTURE_INLINE std::uint16_t HighProduct(std::uint16_t value, std::uint16_t weight) {
    return static_cast<std::uint16_t>(std::uint32_t{value} * weight >> 16);
}

// One term of a sum: a pair of rows, or a row, times its weight.
template <class Sum, class In>
struct SPairTerm {
    const In* a;
    const In* b;
    Sum weight;

    CMDTEXTURE_INLINE Sum At(int i) const {
        if constexpr (sizeof(Sum) == 4) {
            return static_cast<Sum>(a[i] + b[i]) * weight;
        } else {
            const int spare_bits = sizeof(In) == 1 ? 7 : 0;
            return HighProduct(static_cast<std::uint16_t>((a[i] + b[i]) << spare_bits), weight);
        }
    }
};
template <class Sum>
struct SRowTerm {
    const Sum* row;
    Sum weight;

    CMDTEXTURE_INLINE Sum At(int i) const {
        if constexpr (sizeof(Sum) == 4) {
            return row[i] * weight;
        } else {
            return HighProduct(row[i], weight);
        }
    }
};

// Where a sum of `count` terms starts.
template <class Sum>
CMDTEXTURE_INLINE Sum StartOf(int count) {
    if constexpr (sizeof(Sum) == 2) return static_cast<Sum>(count / 2);
    return Sum{0};
}

// A finished sum as it is stored.
template <class In, class Out>
CMDTEXTURE_INLINE Out Finish(std::uint16_t sum) {
    if constexpr (sizeof(Out) == 1) return static_cast<Out>((sum + 128) >> 8);
    if constexpr (sizeof(In) == 1) return static_cast<Out>((sum + 1) >> 1);
    return static_cast<Out>(sum);
}
template <class In, class Out>
CMDTEXTURE_INLINE Out Finish(float sum) {
    if constexpr (sizeof(Out) == 4) return sum;
    return static_cast<Out>(static_cast<int>(sum + 0.5F));
}

// out[i] = store(sums[i] + the terms) for one tile.
template <class Sum, class Out, class Store, class... Terms>
CMDTEXTURE_INLINE void AddTerms(const Sum* sums, Out* out, int length, Store store,
                                Terms... terms) {
    for (int i = 0; i < length; ++i) {
        out[i] = store(static_cast<Sum>(sums[i] + static_cast<Sum>((terms.At(i) + ...))));
    }
    // Keeps gcc 12 from interleaving this loop with the next group's, which it cannot vectorise.
    asm volatile("" : : "r"(out) : "memory");
}

// Sums up `count` terms, term(k, at) being the k-th one from sample `at` on. Up to four are added
// in one go, so that loading and storing the sums costs little; the last ones go into the result.
template <class Sum, class In, class Out, class Term>
CMDTEXTURE_INLINE void Weigh(int count, Out* out, std::ptrdiff_t length, Term term) {
    alignas(64) Sum sums[kTile];
    const auto keep = [](Sum sum) __attribute__((always_inline)) { return sum; };
    const auto finish = [](Sum sum) __attribute__((always_inline)) { return Finish<In, Out>(sum); };
    for (std::ptrdiff_t at = 0; at < length; at += kTile) {
        const int tile = static_cast<int>(std::min<std::ptrdiff_t>(kTile, length - at));
        std::fill_n(sums, tile, StartOf<Sum>(count));
        int k = 0;
        for (; k + 4 < count; k += 4) {
            AddTerms(sums, sums, tile, keep, term(k, at), term(k + 1, at), term(k + 2, at),
                     term(k + 3, at));
        }
        Out* end = out + at;
        switch (count - k) {
            case 4:
                AddTerms(sums, end, tile, finish, term(k, at), term(k + 1, at), term(k + 2, at),
                         term(k + 3, at));
                break;
            case 3:
                AddTerms(sums, end, tile, finish, term(k, at), term(k + 1, at), term(k + 2, at));
                break;
            case 2:
                AddTerms(sums, end, tile, finish, term(k, at), term(k + 1, at));
                break;
            default:
                AddTerms(sums, end, tile, finish, term(k, at));
        }
    }
}

}  // namespace

template <class Sum, class In, class Out>
CMDTEXTURE_MULTIVERSION void WeighPairs(const In* const* first, const In* const* second,
                                        const Sum* weights, int count, Out* out,
                                        std::ptrdiff_t length) {
    Weigh<Sum, In>(
        count, out, length, [=](int k, std::ptrdiff_t at) __attribute__((always_inline)) {
            return SPairTerm<Sum, In>{first[k] + at, second[k] + at, weights[k]};
        });
}

template <class Sum, class Out>
CMDTEXTURE_MULTIVERSION void WeighRows(const Sum* const* rows, const Sum* weights, int count,
                                       Out* out, std::ptrdiff_t length) {
    Weigh<Sum, Sum>(
        count, out, length, [=](int k, std::ptrdiff_t at) __attribute__((always_inline)) {
            return SRowTerm<Sum>{rows[k] + at, weights[k]};
        });
}

using Byte = std::uint8_t;
using Word = std::uint16_t;

template void WeighPairs(const Byte* const*, const Byte* const*, const Word*, int, Word*,
                         std::ptrdiff_t);
template void WeighPairs(const Word* const*, const Word* const*, const Word*, int, Word*,
                         std::ptrdiff_t);
template void WeighPairs(const Word* const*, const Word* const*, const Word*, int, Byte*,
                         std::ptrdiff_t);
template void WeighRows(const Word* const*, const Word*, int, Byte*, std::ptrdiff_t);

template void WeighPairs(const Byte* const*, const Byte* const*, const float*, int, float*,
                         std::ptrdiff_t);
template void WeighPairs(const Word* const*, const Word* const*, const float*, int, float*,
                         std::ptrdiff_t);
template void WeighPairs(const float* const*, const float* const*, const float*, int, float*,
                         std::ptrdiff_t);
template void WeighPairs(const float* const*, const float* const*, const float*, int, Byte*,
                         std::ptrdiff_t);
template void WeighPairs(const float* const*, const float* const*, const float*, int, Word*,
                         std::ptrdiff_t);
template void WeighRows(const float* const*, const float*, int, Byte*, std::ptrdiff_t);
template void WeighRows(const float* const*, const float*, int, Word*, std::ptrdiff_t);

}  // namespace blur
