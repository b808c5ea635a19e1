// SPDX-License-Identifier: MIT
// Types 0 and 1: sin(pi k i / n), cos(pi k i / n).
//
// The sums are the imaginary (real) parts of a Fourier transform of the odd (even) extension x of f, which has 2n
// numbers. A step of radix r, decimating in time, makes rows of it: x[r j + q], q = 0 .. r-1, of length l = 2n/r. Row
// r-q is row q read backward with the sign of the extension, so only rows 0 .. r/2 are transformed: (1 + 2/r) times a
// real transform of n numbers, without the sums or divisions by small sines that a single one of n numbers needs.
//
// With m = r/2, Y[q] the spectrum of row q and Z[q] = exp(-2 pi i q k / 2n) Y[q][k] = a[q] + i b[q], 0 <= k <= l/2,
//
//     E[p] = sum over q = 0 .. m   of c[q] cos(pi p q / m)      0 <= p <= m
//     O[p] = sum over q = 1 .. m-1 of s[q] sin(pi p q / m)      0 < p < m,   E, O with c[q] doubled for 0 < q < m
//
//     cosine  c = a, s = b:   twice the sum at p l + k = E[p] + O[p],   at p l - k = E[p] - O[p]
//     sine    c = b, s = a:   twice the sum at p l + k = O[p] - E[p],   at p l - k = O[p] + E[p]
#pragma once

#include "pde/trig/kernel.h"

namespace ork::pde {

// Of the step; 1: none, the whole extension is transformed. 16 was measured to beat 8 from 512 on where rows are even.
template <class R>
inline Int grid_radix(Int n)
{
    if (n % 16 == 0 && n >= 512) return 16;
    if (n % 4 == 0 && n >= 64) return 8;
    return n % 2 == 0 && n >= 32 ? 4 : 1;
}
inline Int grid_row(Int n, Int radix) { return 2 * n / radix; }
// Numbers from row to row in work memory: one at least is beside a row, and rows don't compete for lines of a cache.
template <class R>
inline Int grid_distance(Int row)
{
    constexpr Int line = 64 / sizeof(R);
    return (row / line + (row % 32 == 0 ? 1 : 2)) * line;
}

template <class R>
void make_grid_table(Int n, R* table);
template <class R>
Int grid_transform(const TrigPlan<R>& plan, R factor, R* f, R* work);

} // namespace ork::pde
