#pragma once

#include <cstddef>
#include <cstdint>

// Weighted sums of rows: the arithmetic of the Gaussian blur, on plain contiguous samples. Each
// output sample is one sum in a fixed order, so the results are the same on every processor.
//
// Sums are kept in one of two ways. float: weights as they are. std::uint16_t (for 8-bit samples):
// fixed point with 8 fraction bits, of which a row of 8-bit samples summed keeps 7, so that two of
// its sums can be added; weights have 17 fraction bits in WeighPairs and 16 in WeighRows. A product
// is cut, not rounded, to 8 fraction bits; the sum starts at half a last place for each product, so
// it is off by at most that much.
namespace blur {

// out[i] = the sum over k of weights[k] * (first[k][i] + second[k][i]) for i from 0 to length - 1.
// The weights sum to one half; when Out is the type of the image's samples, the sum is rounded.
template <class Sum, class In, class Out>
void WeighPairs(const In* const* first, const In* const* second, const Sum* weights, int count,
                Out* out, std::ptrdiff_t length);

// out[i] = the sum over k of weights[k] * rows[k][i], rounded. The weights sum to one.
template <class Sum, class Out>
void WeighRows(const Sum* const* rows, const Sum* weights, int count, Out* out,
               std::ptrdiff_t length);

}  // namespace blur
