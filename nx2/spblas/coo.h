// SPDX-License-Identifier: MIT
// Products with a matrix of single entries, in any order. Entries of one row that follow each other keep their sum in
// registers, which makes a matrix sorted by rows as fast as compressed rows.
#pragma once

#include "spblas/streams.h"
#include "spblas/terms.h"

namespace ork::spblas {

template <class Int, class T>
struct Coo {
    const T* val;
    const Int *row, *column; // numbers count from the base
    Index nnz;

    Index bytes(Index first, Index last) const
    {
        return (last - first) * static_cast<Index>(sizeof(T) + 2 * sizeof(Int));
    }
};

template <class Int, class T>
[[gnu::always_inline]] inline void fetch(Ahead ahead, const Coo<Int, T>& a, Index k)
{
    ahead.fetch(a.val + k);
    ahead.fetch(a.row + k);
    ahead.fetch(a.column + k);
}

// C += alpha op(A) B over entries first .. last (exclusive): direct, C(row) += alpha a B(column); mirrored, the other
// way round. `terms` is constant where this is inlined with constants. The operands are shifted by the base.
template <class Group, class Int, class T>
[[gnu::always_inline]] inline void coo_add(Terms terms, bool direct, bool mirrored, bool filtered, Index first,
                                           Index last, T alpha, const Coo<Int, T>& a, const Operands<T>& o)
{
    const Conjugation<T> conjugated(terms.conjugate()), mirrored_conjugated(terms.mirrored_conjugate());
    const T mirrored_alpha = terms.mirrored_minus() ? T{} - alpha : alpha;
    const bool lower = terms.lower(), diagonal = terms.diagonal();
    const Ahead ahead(true, a.bytes(first, last));
    const auto b = [&](Index i) { return Group::load(o.b + Group::at(i, o.b_row), o.b_side); };
    const auto add_to_row = [&](Index i, T factor, const Group& x) {
        T* c = o.c + Group::at(i, o.c_row);
        Group sum = Group::load(c, o.c_side);
        sum.add(factor, x);
        sum.store(c, o.c_side);
    };

    for (Index k = first; k < last;) {
        const Int row = a.row[k];
        Group sum{}, x{}; // of this run: entries times B; alpha times B
        if (mirrored) x.add(mirrored_alpha, b(row));
        const Index begin = k;
        do {
            const Int column = a.column[k];
            const T value = a.val[k];
            if (filtered) {
                if (column == row) {
                    if (diagonal) sum.add(conjugated(value), b(column));
                    continue;
                }
                if ((column < row) != lower) continue;
            }
            if (direct) sum.add(conjugated(value), b(column));
            if (mirrored) add_to_row(column, mirrored_conjugated(value), x);
        } while (++k < last && a.row[k] == row);
        if (direct || filtered) add_to_row(row, alpha, sum);
        if (ahead.bytes != 0)
            for (Index fetched = begin; fetched < k; fetched += 8) fetch(ahead, a, fetched);
    }
}

template <bool direct, bool mirrored, bool filtered, class Int, class T>
[[gnu::noinline]] void coo_add_vector(Terms terms, Index first, Index last, T alpha, const Coo<Int, T>& a,
                                      const Operands<T>& o)
{
    coo_add<ColumnGroup<T, 1>>(terms, direct, mirrored, filtered, first, last, alpha, a, o);
}

template <class Group, class Int, class T>
[[gnu::noinline]] void coo_add_group(Terms terms, T alpha, const Coo<Int, T>& a, const Operands<T>& o)
{
    coo_add<Group>(terms, terms.direct(), terms.mirrored(), terms.filtered(), 0, a.nnz, alpha, a, o);
}

// y = alpha op(A) x + beta y over a slice of the entries; y has `size` elements. The ones of a unit diagonal belong to
// the slice that holds the first entry, and to every slice of a matrix without entries.
template <class Int, class T>
[[gnu::noinline]] void coo_product(Terms terms, Index first, Index last, Index size, T alpha, const Coo<Int, T>& a,
                                   const T* x, T* y, T beta)
{
    scale(size, beta, y);
    alpha = terms.signed_alpha(alpha);
    if (terms.unit() && (a.nnz <= 0 || (first == 0 && last > 0)))
        add_identity(false, 0, size, alpha, Operands<T>(x, y));
    const Operands<T> o(moved(x, -terms.base()), moved(y, -terms.base()));
    const auto add = [&](auto kernel) { kernel(terms, first, last, alpha, a, o); };
    if (!terms.filtered())
        add(terms.direct() ? coo_add_vector<true, false, false, Int, T> : coo_add_vector<false, true, false, Int, T>);
    else if (terms.direct())
        add(terms.mirrored() ? coo_add_vector<true, true, true, Int, T> : coo_add_vector<true, false, true, Int, T>);
    else
        add(terms.mirrored() ? coo_add_vector<false, true, true, Int, T> : coo_add_vector<false, false, true, Int, T>);
}

// C = alpha op(A) B + beta C; C has `size` rows.
template <class Int, class T>
[[gnu::noinline]] void coo_product(Terms terms, Index size, T alpha, const Coo<Int, T>& a, Operands<T> o, T beta)
{
    scale_rows(terms.row_major(), 0, size, beta, o);
    alpha = terms.signed_alpha(alpha);
    if (terms.unit()) add_identity(terms.row_major(), 0, size, alpha, o);
    o.b = moved(o.b, -terms.base() * o.b_row), o.c = moved(o.c, -terms.base() * o.c_row);
    for_groups(terms.row_major(), o,
               [&]<class Group>(Group, const Operands<T>& part) { coo_add_group<Group>(terms, alpha, a, part); });
}

} // namespace ork::spblas
