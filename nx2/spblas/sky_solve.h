// SPDX-License-Identifier: MIT
// C = op(A)^-1 C for a triangular or diagonal skyline matrix. Where profiles give sums, the unknowns beside a profile
// are known but its own, first row to last; where they give multiples, its unknown is taken out of the rows beside it,
// last to first.
#pragma once

#include "spblas/sky.h"

namespace ork::spblas {

template <class Group, class T>
[[gnu::noinline]] void sky_solve_row(const ProfileUse<T>& use, const Profile<T>& p, Index i, const Operands<T>& o)
{
    T* own = o.c + i * o.c_row;
    Group x = Group::load(own, o.c_side);
    const auto divide = [&] {
        if (p.diagonal != nullptr) x.divide(use.in_diagonal(*p.diagonal));
    };
    if (!use.sums) divide();
    for (Index k = p.first; k < p.last; ++k) {
        const T value = use.in_diagonal(p.val[k - p.first]);
        T* c = o.c + k * o.c_row;
        Group other = Group::load(c, o.c_side);
        if (use.sums) {
            x.subtract(value, other);
        } else {
            other.subtract(value, x);
            other.store(c, o.c_side);
        }
    }
    if (use.sums) divide();
    x.store(own, o.c_side);
}

template <bool sums, class Int, class T>
[[gnu::noinline]] void sky_solve_columns(const ProfileUse<T>& use, Index m, const Sky<Int, T>& a, const Operands<T>& o)
{
    const Conjugation<T> conjugated = use.in_diagonal;
    const Ahead ahead = use.ahead;
    for (Index done = 0; done < m; ++done) {
        const Index i = sums ? done : m - 1 - done;
        const Profile<T> p = use.part(a.profile(i));
        const Index length = p.length(), settled = length > 4 ? length - 4 : 0;
        for (Index j = 0; j < o.sides; ++j) {
            T *c = o.c + j * o.c_side, x = c[i];
            if (sums) {
                // The last unknowns are still being stored: one by one they come sooner than in a register that they
                // share.
                x = x - dot(p.val, c + p.first, settled, conjugated, ahead);
                for (Index k = settled; k < length; ++k) x = x - conjugated(p.val[k]) * c[p.first + k];
            }
            if (p.diagonal != nullptr) x = quotient(x, conjugated(*p.diagonal));
            if (!sums) axpy(T{} - x, p.val, c + p.first, length, conjugated, ahead);
            c[i] = x;
        }
    }
}

template <class Int, class T>
[[gnu::noinline]] void sky_solve(Terms terms, Index m, const Sky<Int, T>& a, const Operands<T>& o)
{
    const ProfileUse<T> use(terms, T{1}, Ahead(terms.forward(), m > 0 ? a.bytes(0, m) : 0));
    if (!terms.row_major())
        return (use.sums ? sky_solve_columns<true, Int, T> : sky_solve_columns<false, Int, T>)(use, m, a, o);
    for (Index done = 0; done < m; ++done) {
        const Index i = use.sums ? done : m - 1 - done;
        const Profile<T> p = use.part(a.profile(i));
        for_lanes(o, [&]<class Group>(Group, const Operands<T>& part) { sky_solve_row<Group>(use, p, i, part); });
    }
}

} // namespace ork::spblas
