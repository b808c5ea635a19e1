// SPDX-License-Identifier: MIT
// Walking a share of compressed rows.
#pragma once

#include <type_traits>

#include "spblas/row_dot.h"

namespace ork::sparse {

using Index = std::int64_t; // positions and counts, whatever integer the arrays hold

// Rows of a share, which begin at the first value and column; only differences of the pointers count.
template <class Int, class T>
struct Share {
    using Pointer = std::make_unsigned_t<Int>;
    const T* vals;
    const Int* cols;
    const Pointer* rows_ptr;
    Index rows;

    Index length(Index row) const { return static_cast<Int>(rows_ptr[row + 1] - rows_ptr[row]); }
    Index entries() const { return static_cast<Index>(Pointer(rows_ptr[rows] - rows_ptr[0])); }
    bool far() const { return entries() * Index(sizeof(T) + sizeof(Int)) > far_bytes; }
};

// Rows of `length` entries from row i and entry k on, as long as they come: most rows of grids and meshes are as long
// as the one before, and without a loop over their entries most mispredicted branches go.
template <int length, bool far, class Int, class T, class Put>
[[gnu::always_inline]] inline void equal_rows(const Share<Int, T>& a, Index& i, Index& k, const T* x, Put put)
{
    do {
        if constexpr (far) fetch(a.vals + k), fetch(a.cols + k), fetch(a.rows_ptr + i);
        put(i, spblas::short_row_dot<0, length>(a.vals + k, a.cols + k, x));
        ++i;
        k += length;
    } while (i < a.rows && a.length(i) == length);
}

// The same for rows of any length but those that equal_rows() serves.
template <bool far, class Int, class T, class Put>
[[gnu::always_inline]] inline void other_rows(const Share<Int, T>& a, Index& i, Index& k, Index length, const T* x,
                                              Put put)
{
    do {
        put(i, spblas::row_dot<0, false, far, Fold::crossed>(a.vals + k, a.cols + k, length, x));
        k += length > 0 ? length : 0;
        if (++i == a.rows) break;
        length = a.length(i);
    } while (is_complex<T> || length < 4 || length > 7);
}

// put(i, sum) for the rows in turn, sum in the order of Fold::crossed.
template <bool far, class Int, class T, class Put>
[[gnu::always_inline]] inline void row_sums(Share<Int, T> a, const T* x, Put put)
{
    for (Index i = 0, k = 0; i < a.rows;) {
        const Index length = a.length(i);
        if (is_complex<T> || length < 4 || length > 7)
            other_rows<far>(a, i, k, length, x, put);
        else if (length == 5)
            equal_rows<5, far>(a, i, k, x, put);
        else if (length == 7)
            equal_rows<7, far>(a, i, k, x, put);
        else if (length == 4)
            equal_rows<4, far>(a, i, k, x, put);
        else
            equal_rows<6, far>(a, i, k, x, put);
    }
}

// out[col - base] += val t for the entries of one row, in their order: equal columns must see each other.
template <class Int, class T>
[[gnu::always_inline]] inline void scatter_row(const T* vals, const Int* cols, Index length, T t, T* out, Index base)
{
    T* const from = spblas::counted_from(base, out);
    const auto add = [&](Index k) { from[cols[k]] = from[cols[k]] + vals[k] * t; };
    Index k = 0;
    for (; k + 4 <= length; k += 4)
#pragma GCC unroll 4
        for (int j = 0; j < 4; ++j) add(k + j);
    for (; k < length; ++k) add(k);
}

} // namespace ork::sparse
