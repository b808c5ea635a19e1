// SPDX-License-Identifier: MIT
// Types 0 and 1 of short lines, as many side by side as a register has lanes: no number changes its lane, and all steps
// of a line are straight code or short loops in the first cache. Against one line after the other a cube of 31 unknowns
// a side is solved in 0.41 of the time, 127 x 127 unknowns in 0.61. A single line would leave lanes empty: of 64
// numbers it takes 1.2 times as long as by rows.
//
// With n = 2m, inputs i = 2j come from the same transform of length m, E, and those at i = 2j+1 from cosines at half
// steps, C[k] = 2 times the sum over j < m of x[j] cos((2j+1) pi k / 2m):
//
//     cosine  x[j] = f[2j+1]:          at k = E[k] + C[k],    at n-k = E[k] - C[k],    at m E[m]
//     sine    x[j] = (-1)^j f[2j+1]:   at k = E[k] + C[m-k],  at n-k = C[m-k] - E[k],  at m C[0]
//
// and so on down to a length of 1. C is one real Fourier transform of m numbers (half_sample.cpp).
#pragma once

#include "pde/trig/kernel.h"
#include "pde/trig/lines.h"

namespace ork::pde {

// Powers of two from 8 to 128.
bool goes_side_by_side(Int type, Int n);

// Twice the sums times `factor` of all lines, as transform() has them.
template <class R>
void transform_side_by_side(Int type, Int n, R factor, R* f, const Lines& lines);

} // namespace ork::pde
