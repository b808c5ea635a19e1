// SPDX-License-Identifier: MIT
// Tridiagonal LU without interchanges from both ends, which meet in the middle: two chains of divisions side by side.
#include "blas/divide.h"
#include "lapack/members.h"

namespace ork::lapack {
namespace {

// The row of the first pivot of zero, or 0.
Int factor(Int n, T* dl, T* d, const T* du)
{
    Int top = 0, bottom = n - 1;
    const auto invert_pivot = [&](Int i) __attribute__((always_inline))
    {
        if (d[i] == T{}) return false;
        d[i] = divided(T{1}, d[i]);
        return true;
    };
    const auto eliminate = [&](Int l, Int from, Int to) __attribute__((always_inline))
    {
        dl[l] = dl[l] * d[from];
        d[to] = d[to] - dl[l] * du[l];
    };
#pragma GCC unroll 2
    for (; bottom - top >= 2; ++top, --bottom) {
        if (!invert_pivot(top)) return top + 1;
        eliminate(top, top, top + 1);
        if (!invert_pivot(bottom)) return bottom + 1;
        eliminate(bottom - 1, bottom, bottom - 1);
    }
    if (bottom > top) { // two rows are left
        if (!invert_pivot(top)) return top + 1;
        eliminate(top, top, bottom);
    }
    if (bottom >= 0 && !invert_pivot(bottom)) return bottom + 1;
    return 0;
}

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

ORK_LAPACK_EXPORT(dttrfb)(const Int* n, T* dl, T* d, const T* du, Int* info)
{
    *info = *n > 0 ? factor(*n, dl, d, du) : 0;
}
