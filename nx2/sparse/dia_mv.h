// SPDX-License-Identifier: MIT
// Products of a matrix in diagonals: contiguous values against contiguous elements of x, no column numbers at all.
#pragma once

#include <algorithm>

#include "sparse/csr_mv.h"

namespace ork::sparse {

// Diagonals in chunks of `height` rows, of which each has its part of every diagonal in turn: one stream of memory
// where whole diagonals would be one each, which runs at half the rate with seven of them.
template <class Int, class T>
struct Diagonals {
    const T* vals; // of row 0
    const Int* distance;
    Index count, height, cols;

    const T* row(Index i) const { return vals + i / height * (height * count) + i % height; }
};

// Rows whose diagonals all lie within the matrix, `registers` registers of them, of one chunk. A row's sum takes the
// diagonals in turn.
template <int registers, bool far, class Int, class T>
[[gnu::always_inline]] inline void inner_rows(const Diagonals<Int, T>& a, const Factor<T>& alpha, const Factor<T>& beta,
                                              bool clear, const T* x, Index row, T* y)
{
    constexpr int lanes = Vec<T>::lanes;
    Vec<T> sums[registers]{};
    const T* vals = a.row(row);
    for (Index d = 0; d < a.count; ++d, vals += a.height) {
        const T* const from = x + row + a.distance[d];
#pragma GCC unroll 8
        for (int j = 0; j < registers; ++j) {
            if constexpr (far)
                if (j * lanes % line<T> == 0) fetch(vals + j * lanes);
            sums[j] = sums[j] + times(load<lanes>(vals + j * lanes), load<lanes>(from + j * lanes));
        }
    }
#pragma GCC unroll 8
    for (int j = 0; j < registers; ++j) {
        Vec<T> result = alpha * sums[j];
        if (!clear) result = {sum(result, beta * load<lanes>(y + j * lanes))};
        store<lanes>(y + j * lanes, result);
    }
}

// y = alpha A x + beta y for rows first .. last, y at the first of them.
template <bool far, class Int, class T>
[[gnu::noinline]] void diagonal_products(Diagonals<Int, T> a, Index first, Index last, Scaling<T> scaling, const T* x,
                                         T* y)
{
    constexpr int registers = 8, together = registers * Vec<T>::lanes;
    Index low = 0, high = 0; // the reach of the diagonals
    for (Index d = 0; d < a.count; ++d) {
        low = std::min<Index>(low, a.distance[d]);
        high = std::max<Index>(high, a.distance[d]);
    }
    const Factor<T> alpha(scaling.alpha), beta(scaling.beta);
    for (Index i = first; i < last;) {
        if (i + low >= 0 && i + together + high <= a.cols && i + together <= last &&
            i % a.height + together <= a.height) {
            inner_rows<registers, far>(a, alpha, beta, scaling.clear, x, i, y);
            i += together, y += together;
            continue;
        }
        const T* const vals = a.row(i);
        T s{};
        for (Index d = 0; d < a.count; ++d)
            if (const Index j = i + a.distance[d]; j >= 0 && j < a.cols) s = s + vals[d * a.height] * x[j];
        *y = scaling.apply(s, *y);
        ++i, ++y;
    }
}

} // namespace ork::sparse
