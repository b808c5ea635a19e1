// SPDX-License-Identifier: MIT
// The sum of val[k] x[indx[k]] over one row, in the orders that are part of the contract.
#pragma once

#include "spblas/csr.h"
#include "spblas/rule.h"

namespace ork::spblas {

// base 0: rows of 8 and more entries take them eight at a time into FourByTwo, and then the rest one by one. base 1:
// rows of 2 and more take them two at a time into TwoLanes, and then an odd one. Shorter rows: one by one from 0.
template <int base>
inline constexpr int block = base == 0 ? 8 : 2;

template <int base, class T, Fold fold = Fold::adjacent>
using Partial = std::conditional_t<base == 0, FourByTwo<T, fold>, TwoLanes<T>>;

// `far`: the row comes from memory, so what lies ahead is fetched.
template <int base, bool conjugate, bool far, Fold fold = Fold::adjacent, class Int, class T>
[[gnu::always_inline]] inline T row_dot(const T* val, const Int* indx, std::int64_t length, const T* x)
{
    constexpr int line = 64 / static_cast<int>(sizeof(T));
    T s{};
    std::int64_t k = 0;
    if (length >= block<base>) {
        Partial<base, T, fold> partial;
        if constexpr (base == 0 || far)
            for (; k + 8 <= length; k += 8) {
                if constexpr (far) {
                    for (int j = 0; j < 8; j += line) fetch(val + k + j);
                    fetch(indx + k);
                }
#pragma GCC unroll 4
                for (int j = 0; j < 8; j += block<base>)
                    partial.template add<conjugate>(val + k + j, x, indx + k + j, base);
            }
        if constexpr (base == 1)
            for (; k + 2 <= length; k += 2) partial.template add<conjugate>(val + k, x, indx + k, base);
        s = partial.sum();
    }
    for (; k < length; ++k) s = s + conjugate_if<conjugate>(val[k]) * x[std::int64_t{indx[k]} - base];
    return s;
}

// The same for a length known when compiling, less than 8.
template <int base, int length, class Int, class T>
[[gnu::always_inline]] inline T short_row_dot(const T* val, const Int* indx, const T* x)
{
    constexpr int paired = base == 0 ? 0 : length / 2 * 2;
    T s{};
    if constexpr (paired != 0) {
        TwoLanes<T> partial;
#pragma GCC unroll 4
        for (int k = 0; k < paired; k += 2) partial.template add<false>(val + k, x, indx + k, base);
        s = partial.sum();
    }
#pragma GCC unroll 8
    for (int k = paired; k < length; ++k) s = s + val[k] * x[std::int64_t{indx[k]} - base];
    return s;
}

} // namespace ork::spblas
