// SPDX-License-Identifier: MIT
// LU of a few adjacent columns: each pass over the rows below a pivot makes multipliers, updates the columns to the
// right and finds the next pivot.
#pragma once

#include <array>
#include <utility>

#include "blas/divide.h"
#include "lapack/small/operand.h"
#include "lapack/small/pivot.h"

namespace ork::lapack {

// Whether the elements below a pivot are still to be multiplied by its reciprocal.
enum class Multipliers { multiply, ready };

template <class T>
struct Panel {
    Int rows;
    T* a;
    Int lda;

    static constexpr int lanes = Vec<T>::lanes;

    // The first row from which registers are filled without the rows before `row` being among theirs.
    static constexpr Int block(Int row) { return row / lanes * lanes; }

    // The largest element of a column from `row` on; adjacent registers in two searches would gain nothing, the passes
    // below hide this one.
    Int largest(Int row, Int column) const
    {
        const T* x = a + column * lda;
        PivotSearch<T> search(row);
        Int i = row;
        Places<T> places = Places<T>::from(row);
        for (; i + lanes <= rows; i += lanes, places = places + Places<T>::all(lanes))
            search.look(load<lanes>(x + i), places);
        for (; i < rows; ++i) search.look(load<1>(x + i), Places<T>::all(i));
        return search.place();
    }

    // Exchanges two rows of a number of columns. Whole registers are written, those that later passes will read: a
    // register read behind the write of one of its lanes would wait until that has left the store queue.
    template <int columns>
    void exchange(Int row, Int other) const
    {
        const Int block_row = block(row), block_other = block(other);
        const Vec<Real<T>> at_row = Places<T>::from(block_row) == Places<T>::all(row);
        const Vec<Real<T>> at_other = Places<T>::from(block_other) == Places<T>::all(other);
        const bool whole = block_row + lanes <= rows && block_other + lanes <= rows;
#pragma GCC unroll 4
        for (int q = 0; q < columns; ++q) {
            T* x = a + q * lda;
            const Vec<T> from_row = load<1>(x + row), from_other = load<1>(x + other);
            if (lanes > 1 && whole) {
                store<lanes>(x + block_other, select(at_other, from_row, load<lanes>(x + block_other)));
                store<lanes>(x + block_row, select(at_row, from_other, load<lanes>(x + block_row)));
            } else {
                store<1>(x + other, from_row);
                store<1>(x + row, from_other);
            }
        }
    }

    // The rows below pivot c; returns the place of the next one.
    template <int c, int columns, bool pivoting, Multipliers how>
    Int pass(const Number<T>& multiplier) const
    {
        T* l = a + c * lda;
        constexpr int right = columns - c - 1;
        const auto u = [&]<int... q>(std::integer_sequence<int, q...>)
        {
            return std::array<Number<T>, right>{Number<T>(a + c + (c + 1 + q) * lda)...};
        }
        (std::make_integer_sequence<int, right>());
        PivotSearch<T> search(c + 1);
        const auto step = [&]<int width>(Int i, auto&& put, auto&& look) {
            Vec<T> x = load<width>(l + i);
            if constexpr (how == Multipliers::multiply) {
                x = product<false>(Rows<T>(x), multiplier);
                put(l + i, x);
            }
            const Rows<T> left(x);
#pragma GCC unroll 4
            for (int q = 0; q < right; ++q) {
                T* y = l + (q + 1) * lda + i;
                const Vec<T> z = load<width>(y) - product<false>(left, u[q]);
                put(y, z);
                if (pivoting && q == 0) look(z);
            }
        };
        Int i = c + 1;
        if constexpr ((c + 1) % lanes != 0) {
            constexpr Int from = (c + 1) / lanes * lanes;
            if (from + lanes <= rows) {
                const Places<T> places = Places<T>::from(from);
                const Vec<Real<T>> below = places > Places<T>::all(c);
                step.template operator()<lanes>(
                    from, [&](T* p, Vec<T> x) { store<lanes>(p, select(below, x, load<lanes>(p))); },
                    [&](Vec<T> x) { search.look(x, places, below); });
                i = from + lanes;
            }
        }
        Places<T> places = Places<T>::from(i);
        for (; i + lanes <= rows; i += lanes, places = places + Places<T>::all(lanes))
            step.template operator()<lanes>(
                i, [](T* p, Vec<T> x) { store<lanes>(p, x); }, [&](Vec<T> x) { search.look(x, places); });
        for (; i < rows; ++i)
            step.template operator()<1>(
                i, [](T* p, Vec<T> x) { store<1>(p, x); }, [&](Vec<T> x) { search.look(x, Places<T>::all(i)); });
        return pivoting ? search.place() : c + 1;
    }

    // Pivot c, which stands on the diagonal.
    template <int c, int columns, bool pivoting>
    Int eliminate(Real<T> safe, Int first, Int& info) const
    {
        const T pivot = a[c + c * lda];
        if (magnitude(pivot) > safe) [[likely]]
            return pass<c, columns, pivoting, Multipliers::multiply>(Divisor<T>(pivot).reciprocal());
        if (pivot == T{}) {
            if (info == 0) info = first + c + 1;
        } else {
            for (Int i = c + 1; i < rows; ++i) a[i + c * lda] = divided(a[i + c * lda], pivot);
        }
        return pass<c, columns, pivoting, Multipliers::ready>(Number<T>(T(1)));
    }

    // `first` is the number of pivots before this panel; those of the panel go to ipiv, counted from 1 in the whole
    // matrix.
    template <int columns, bool pivoting>
    [[gnu::noinline]] void factor(Real<T> safe, Int first, Int* ipiv, Int& info) const
    {
        Int place = pivoting ? largest(0, 0) : 0;
        const auto column = [&]<int c>() {
            if (c >= columns || c >= rows) return;
            if constexpr (c < columns) {
                if constexpr (pivoting) {
                    ipiv[c] = first + place + 1;
                    exchange<columns>(c, place);
                }
                place = eliminate<c, columns, pivoting>(safe, first, info);
            }
        };
        column.template operator()<0>();
        column.template operator()<1>();
        column.template operator()<2>();
        column.template operator()<3>();
    }
};

} // namespace ork::lapack
