// SPDX-License-Identifier: MIT
// One sweep of successive over-relaxation, in place; with omega = 1 of Gauss-Seidel.
#pragma once

#include "blas/divide.h"
#include "spblas/csr.h"

namespace ork::spblas {

// x_i = (1 - omega) x_i + omega (b_i - sum over j != i of a_ij x_j) / a_ii. Every row waits for the one before: it is
// multiplied by 1 / a_ii, which is ready by then, instead of being divided.
template <bool far, class Int, class T>
[[gnu::noinline]] void gauss_sweep(std::int64_t rows, bool backward, T omega, Csr<Int, T> a, int base, const T* b, T* x)
{
    const bool relaxed = !(omega == T(1));
    x = counted_from(base, x);
    for (std::int64_t s = 0; s < rows; ++s) {
        const std::int64_t i = backward ? rows - 1 - s : s, own = i + base;
        T sum = b[i], diagonal{};
        for (std::int64_t k = a.first(i), last = a.last(i); k < last; ++k) {
            if constexpr (far) fetch(a.val + k), fetch(a.indx + k);
            const T value = a.val[k];
            if (a.indx[k] == own)
                diagonal = diagonal + value;
            else
                sum = sum - value * x[a.indx[k]];
        }
        if (diagonal == T{}) continue;
        const T next = divided(T(1), diagonal) * sum;
        x[own] = relaxed ? x[own] + omega * (next - x[own]) : next;
    }
}

template <class Int, class T>
inline void gauss(std::int64_t rows, bool backward, T omega, Csr<Int, T> a, int base, const T* b, T* x)
{
    if (rows <= 0) return;
    // What lies ahead of a backward sweep is behind in memory; the hardware has to find that by itself.
    const bool far = !backward && is_far(a, {0, rows});
    (far ? gauss_sweep<true, Int, T> : gauss_sweep<false, Int, T>)(rows, backward, omega, a, base, b, x);
}

} // namespace ork::spblas
