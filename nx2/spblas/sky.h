// SPDX-License-Identifier: MIT
// Products with a skyline matrix. Profile i is the contiguous part of row i (lower) or column i (upper) that ends with
// the diagonal: it is multiplied with the elements of B beside it into row i of C, or with row i of B into the elements
// of C beside it, or both.
#pragma once

#include <algorithm>

#include "spblas/streams.h"
#include "spblas/terms.h"

namespace ork::spblas {

template <class T>
struct Profile {
    const T* val; // rows or columns first .. last of A, without the diagonal
    Index first, last;
    const T* diagonal; // null where the profile is empty

    Index length() const { return last - first; }
};

template <class Int, class T>
struct Sky {
    const T* val;
    const Int* pntr; // positions count from pntr[0]

    Profile<T> profile(Index i) const
    {
        const Index begin = Index{pntr[i]} - pntr[0], length = Index{pntr[i + 1]} - pntr[i];
        if (length <= 0) return {val, i, i, nullptr};
        return {val + begin, i + 1 - length, i, val + begin + length - 1};
    }
    Index bytes(Index first, Index last) const
    {
        return (Index{pntr[last]} - pntr[first]) * static_cast<Index>(sizeof(T));
    }
};

// How a profile takes part: its sum goes to row i, its multiples go beside, with these values.
template <class T>
struct ProfileUse {
    bool sums, multiples, diagonal;
    Conjugation<T> in_sum, in_multiple, in_diagonal;
    T sum_factor, multiple_factor; // the first the diagonal's too: a skew matrix, where they differ, has none
    Ahead ahead;

    ProfileUse(Terms terms, T alpha, Ahead ahead)
        : sums(terms.lower() ? terms.direct() : terms.mirrored()),
          multiples(terms.lower() ? terms.mirrored() : terms.direct()), diagonal(terms.diagonal()),
          in_sum(terms.lower() ? terms.conjugate() : terms.mirrored_conjugate()),
          in_multiple(terms.lower() ? terms.mirrored_conjugate() : terms.conjugate()), in_diagonal(terms.conjugate()),
          sum_factor(alpha), multiple_factor(alpha), ahead(ahead)
    {
        if (terms.mirrored_minus()) (terms.lower() ? multiple_factor : sum_factor) = T{} - alpha;
    }

    Profile<T> part(Profile<T> p) const
    {
        if (!diagonal) p.diagonal = nullptr;
        if (!sums && !multiples) p.first = p.last;
        return p;
    }
};

// Profiles first .. last (exclusive), right-hand side by right-hand side along each,
template <bool sums, bool multiples, class Int, class T>
[[gnu::noinline]] void sky_add_columns(const ProfileUse<T>& shared, const Sky<Int, T>& a, Index first, Index last,
                                       const Operands<T>& o)
{
    const ProfileUse<T> use = shared; // what is stored to C cannot be part of a copy
    for (Index i = first; i < last; ++i) {
        const Profile<T> p = use.part(a.profile(i));
        const Index with_diagonal = p.diagonal != nullptr;
        for (Index j = 0; j < o.sides; ++j) {
            const T *b = o.b + j * o.b_side, *x = b + p.first;
            T *c = o.c + j * o.c_side, *y = c + p.first;
            if (sums && !multiples) {
                c[i] = c[i] + use.sum_factor * dot(p.val, x, p.length() + with_diagonal, use.in_sum, use.ahead);
                continue;
            }
            T sum{};
            if (sums)
                sum = dot_axpy(use.multiple_factor * b[i], p.val, x, y, p.length(), use.in_sum, use.in_multiple,
                               use.ahead);
            else if (multiples)
                axpy(use.multiple_factor * b[i], p.val, y, p.length(), use.in_multiple, use.ahead);
            if (with_diagonal) sum = sum + use.in_diagonal(*p.diagonal) * b[i];
            if (sums || with_diagonal) c[i] = c[i] + use.sum_factor * sum;
        }
    }
}

// or entry by entry across right-hand sides.
template <class Group, class T>
[[gnu::noinline]] void sky_add(const ProfileUse<T>& use, const Profile<T>& p, Index i, const Operands<T>& o)
{
    Group sum{}, x{}, own = Group::load(o.b + i * o.b_row, o.b_side);
    x.add(use.multiple_factor, own);
    for (Index k = p.first; k < p.last; ++k) {
        const T value = p.val[k - p.first];
        if (use.sums) sum.add(use.in_sum(value), Group::load(o.b + k * o.b_row, o.b_side));
        if (use.multiples) {
            T* c = o.c + k * o.c_row;
            Group total = Group::load(c, o.c_side);
            total.add(use.in_multiple(value), x);
            total.store(c, o.c_side);
        }
    }
    if (p.diagonal != nullptr) sum.add(use.in_diagonal(*p.diagonal), own);
    if (!use.sums && p.diagonal == nullptr) return;
    T* c = o.c + i * o.c_row;
    Group total = Group::load(c, o.c_side);
    total.add(use.sum_factor, sum);
    total.store(c, o.c_side);
}

// C = alpha op(A) B + beta C from profiles `first` to `last` (exclusive). Writes the rows of these numbers alone where
// profiles only give sums, and all `size` rows of C otherwise.
template <class Int, class T>
[[gnu::noinline]] void sky_product(Terms terms, Index first, Index last, Index size, T alpha, const Sky<Int, T>& a,
                                   const Operands<T>& o, T beta)
{
    constexpr Index block_rows = 512; // of C, scaled while they are near
    alpha = terms.signed_alpha(alpha);
    const ProfileUse<T> use(terms, alpha, Ahead(true, last > first ? a.bytes(first, last) : 0));
    const bool row_major = terms.row_major(), everywhere = terms.mirrored() || use.multiples;
    const auto add_columns =
        use.sums        ? use.multiples ? sky_add_columns<true, true, Int, T> : sky_add_columns<true, false, Int, T>
               : use.multiples ? sky_add_columns<false, true, Int, T>
                        : sky_add_columns<false, false, Int, T>;
    if (everywhere) scale_rows(row_major, 0, size, beta, o);
    for (Index i = first; i < last; i += block_rows) {
        const Index end = std::min(i + block_rows, last);
        if (!everywhere) scale_rows(row_major, i, end, beta, o);
        if (terms.unit()) add_identity(row_major, i, end, alpha, o);
        if (row_major)
            for (Index row = i; row < end; ++row)
                for_lanes(o, [&]<class Group>(Group, const Operands<T>& part) {
                    sky_add<Group>(use, use.part(a.profile(row)), row, part);
                });
        else
            add_columns(use, a, i, end, o);
    }
}

} // namespace ork::spblas
