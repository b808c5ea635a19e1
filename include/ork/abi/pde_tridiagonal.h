/* SPDX-License-Identifier: MIT */
// Kernel of the tridiagonal systems of the Poisson solvers: ork_pdepl_<tag>_<p>_tridiagonal, p = s or d.
#ifndef ORK_ABI_PDE_TRIDIAGONAL_H
#define ORK_ABI_PDE_TRIDIAGONAL_H

#include "ork/abi/pde.h"

namespace ork::pde {

// Systems of one order side by side, each with a diagonal of its own:
//
//     d v(j) - v(j - 1) - v(j + 1) = g(j)        j = 0 .. order - 1,   d = table[k] + shift of system k
//
// ends is the pair's number: dd 0, dn 1, nd 2, nn 3, pp 6. A neighbour beyond a Dirichlet end is left out, the one at a
// Neumann end counts twice, pp is cyclic. g(j) of system k stands at g[k + j stride] and gives way to v(j). d >= 2 but
// for rounding, or small negative q: no rows are exchanged. work has tridiagonal_work(order) numbers. A system's bits
// don't depend on those beside it.
//
// constants, null elsewhere: system 0 is the constant mode between sides that hold nothing, nn or pp, and its d is
// 2 + *constants, of which the table keeps but what shows beside 2. When that is 0, g loses its mean and v has mean
// zero, by sums with half weights at Neumann ends.
template <class R>
using Tridiagonal = void(const Int* systems, const Int* order, const Int* ends, const R* constants, const R* table,
                         const R* shift, R* g, const Int* stride, R* work);

inline constexpr int tridiagonal_block = 256; // bytes of a row of g that are solved together
template <class R>
constexpr Int tridiagonal_work(Int order)
{
    return 3 * (order + 1) * tridiagonal_block / static_cast<Int>(sizeof(R));
}

} // namespace ork::pde

#endif
