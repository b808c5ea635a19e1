// SPDX-License-Identifier: MIT
// C = op(A)^-1 C for a triangular or diagonal skyline matrix. Where profiles give sums, the unknowns beside a profile
// are known but its own, first row to last; where they give multiples, its unknown is taken out of the rows beside it,
// last to first.
#pragma once

#include "spblas/sky.h"

namespace ork::spblas {

template <class Group, class T>
[[gnu::noinline]] void sky_solve_row(bool sums, Conjugation<T> conjugated, const Profile<T>& p, Index i,
                                     const Operands<T>& o)
{
    T* own = o.c + i * o.c_row;
    Group x = Group::load(own, o.c_side);
    const auto divide = [&] {
        if (p.diagonal != nullptr) x.divide(conjugated(*p.diagonal));
    };
    if (!sums) divide();
    for (Index k = p.first; k < p.last; ++k) {
        const T value = conjugated(p.val[k - p.first]);
        T* c = o.c + k * o.c_row;
        Group other = Group::load(c, o.c_side);
        if (sums) {
            x.subtract(value, other);
        } else {
            other.subtract(value, x);
            other.store(c, o.c_side);
        }
    }
    if (sums) divide();
    x.store(own, o.c_side);
}

template <class T>
inline void sky_solve_columns(bool sums, Conjugation<T> conjugated, Ahead ahead, const Profile<T>& p, Index i,
                              const Operands<T>& o)
{
    const Index length = p.length();
    for (Index j = 0; j < o.sides; ++j) {
        T *c = o.c + j * o.c_side, x = c[i];
        if (sums && length > 0) {
            // The last unknown is just being stored, and apart it need not wait for the memory.
            x = x - dot(p.val, c + p.first, length - 1, conjugated, ahead);
            x = x - conjugated(p.val[length - 1]) * c[i - 1];
        }
        if (p.diagonal != nullptr) x = quotient(x, conjugated(*p.diagonal));
        if (!sums) axpy(T{} - x, p.val, c + p.first, length, conjugated, ahead);
        c[i] = x;
    }
}

template <class Int, class T>
[[gnu::noinline]] void sky_solve(Terms terms, Index m, const Sky<Int, T>& a, const Operands<T>& o)
{
    const bool diagonal_only = !terms.direct() && !terms.mirrored(), sums = terms.lower() == terms.direct();
    const Conjugation<T> conjugated(terms.conjugate());
    const Ahead ahead(sums, m > 0 ? a.bytes(0, m) : 0);
    for (Index done = 0; done < m; ++done) {
        const Index i = sums ? done : m - 1 - done;
        Profile<T> p = a.profile(i);
        if (!terms.diagonal()) p.diagonal = nullptr;
        if (diagonal_only) p.first = p.last;
        if (!terms.row_major())
            sky_solve_columns(sums, conjugated, ahead, p, i, o);
        else
            for_lanes(o, [&]<class Group>(Group, const Operands<T>& part) {
                sky_solve_row<Group>(sums, conjugated, p, i, part);
            });
    }
}

} // namespace ork::spblas
