// SPDX-License-Identifier: MIT
// LU of a matrix that fits in scratch memory, where it stands by rows that change places by their addresses: an
// interchange moves no element. Blocks of columns, a few registers wide, get what the multipliers to their left do to
// them, then are factored row by row.
#pragma once

#include <utility>

#include "lapack/small/lu_rows.h"

namespace ork::lapack {

template <class T>
class ScratchLu {
    static constexpr int lanes = Vec<T>::lanes;
    static constexpr int group = 2;                                                             // rows a step
    static constexpr int most_registers = std::is_same_v<T, double> || sizeof(T) == 16 ? 4 : 2; // of a block

public:
    static constexpr Int scratch = 32768 / sizeof(T); // elements
    static constexpr Int most_rows = 64;

    static bool fits(Int m, Int n) { return m <= most_rows && (m + group) * (n + lanes - 1) <= scratch; }

    ScratchLu(Int m, Int n, const T* a, Int lda) : m_(m), n_(n), stride_((n + lanes - 1) / lanes * lanes)
    {
        for (Int i = 0; i < m + group; ++i) row_[i] = s_ + i * stride_;
        read(a, lda);
        for (Int k = m * stride_; k < (m + group) * stride_; k += lanes) store<lanes>(s_ + k, Vec<T>{});
    }

    template <bool pivoting>
    Int factor(Int* ipiv, Real<T> safe)
    {
        Int info = 0, j = 0;
        const auto block = [&]<int registers>() {
            update<registers>(j);
            factor_block<pivoting, registers>(j, ipiv, safe, info);
            j += registers * lanes;
        };
        while (n_ - j > (most_registers - 1) * lanes) block.template operator()<most_registers>();
        if constexpr (most_registers > 2) {
            if (n_ - j > 2 * lanes) return block.template operator()<3>(), info;
            if (n_ - j > lanes) return block.template operator()<2>(), info;
        }
        if (n_ > j) block.template operator()<1>();
        return info;
    }

    // Sizes in locals here and below: a register that is stored might be any of the members otherwise.
    void write(T* a, Int lda) const
    {
        const Int m = m_, n = n_;
        Int j = 0;
        for (; j + lanes <= n; j += lanes) write_columns<lanes>(m, j, a + j * lda, lda);
        if constexpr (lanes > 1)
            for (; j < n; ++j) write_columns<1>(m, j, a + j * lda, lda);
    }

private:
    T* row(Int i) { return row_[i]; }
    const T* row(Int i) const { return row_[i]; }

    template <int columns>
    [[gnu::always_inline]] inline void write_columns(Int m, Int j, T* a, Int lda) const
    {
        T* const* row = row_;
        Int i = 0;
        if constexpr (columns == lanes)
            for (; i + lanes <= m; i += lanes) {
                Vec<T> x[lanes];
#pragma GCC unroll 4
                for (int q = 0; q < lanes; ++q) x[q] = load<lanes>(row[i + q] + j);
                transpose(x);
#pragma GCC unroll 4
                for (int q = 0; q < lanes; ++q) store<lanes>(a + i + q * lda, x[q]);
            }
        for (; i < m; ++i)
#pragma GCC unroll 4
            for (int q = 0; q < columns; ++q) a[i + q * lda] = row[i][j + q];
    }

    // What fills a row's last register is zero.
    void read(const T* a, Int lda)
    {
        const Int m = m_, n = n_, stride = stride_;
        T* const s = s_;
        for (Int j = 0; j < n; j += lanes, a += lanes * lda) {
            const int columns = n - j < lanes ? static_cast<int>(n - j) : lanes;
            T* to = s + j;
            Int i = 0;
            if (columns == lanes)
                for (; i + lanes <= m; i += lanes) {
                    Vec<T> x[lanes];
#pragma GCC unroll 4
                    for (int q = 0; q < lanes; ++q) x[q] = load<lanes>(a + i + q * lda);
                    transpose(x);
#pragma GCC unroll 4
                    for (int q = 0; q < lanes; ++q, to += stride) store<lanes>(to, x[q]);
                }
            for (; i < m; ++i, to += stride) store<lanes>(to, gathered(a + i, lda, columns));
        }
    }

    // By a conditional move: which row it is can't be predicted.
    static T* exchanged_at(Int place, Int i, T* row, T* before)
    {
        asm("cmp %2, %3\n\tcmove %1, %0" : "+r"(row) : "r"(before), "r"(place), "r"(i) : "cc");
        return row;
    }

    // `count` rows from i on lose the products of their multipliers with the rows before `depth`, in registers of the
    // columns from j on.
    template <int registers, int count>
    [[gnu::always_inline]] inline void subtract(Int i, Int depth, Int j)
    {
        Vec<T> x[count][registers];
        T* at[count];
#pragma GCC unroll 2
        for (int r = 0; r < count; ++r) {
            at[r] = row(i + r);
#pragma GCC unroll 4
            for (int v = 0; v < registers; ++v) x[r][v] = load<lanes>(at[r] + j + v * lanes);
        }
        for (Int t = 0; t < depth; ++t) {
            const T* u = row(t) + j;
#pragma GCC unroll 4
            for (int v = 0; v < registers; ++v) {
                const Rows<T> right(load<lanes>(u + v * lanes));
#pragma GCC unroll 2
                for (int r = 0; r < count; ++r) x[r][v] = x[r][v] - product<false>(right, Number<T>(at[r] + t));
            }
        }
#pragma GCC unroll 2
        for (int r = 0; r < count; ++r)
#pragma GCC unroll 4
            for (int v = 0; v < registers; ++v) store<lanes>(at[r] + j + v * lanes, x[r][v]);
    }

    template <int registers>
    void update(Int j)
    {
        const Int above = j < m_ ? j : m_;
        Int i = 1;
        for (; i < above; ++i) subtract<registers, 1>(i, i, j);
        if (j == 0) return;
        i = above;
        if constexpr (!is_complex<T>)
            for (; i + 2 <= m_; i += 2) subtract<registers, 2>(i, j, j);
        for (; i < m_; ++i) subtract<registers, 1>(i, j, j);
    }

    template <bool pivoting, int registers>
    void factor_block(Int j, Int* ipiv, Real<T> safe, Int& info)
    {
        Int place = j;
        if constexpr (pivoting) {
            PivotSearch<T> search(j);
            for (Int i = j; i < m_; ++i) search.look(load<1>(row(i) + j), Places<T>::all(i));
            place = search.place_of_lane();
        }
        [&]<int... c>(std::integer_sequence<int, c...>)
        {
            ((j + c < m_ && j + c < n_ ? eliminate<c, pivoting, registers>(j, place, ipiv, safe, info) : void()), ...);
        }
        (std::make_integer_sequence<int, registers * lanes>());
    }

    // Column j + c with its pivot at `place`, which receives the next one's.
    template <int c, bool pivoting, int registers>
    [[gnu::always_inline]] inline void eliminate(Int first, Int& place, Int* ipiv, Real<T> safe, Int& info)
    {
        const Int j = first + c;
        T *const pivot_row = row(place), *const before = row(j);
        row_[j] = pivot_row;
        if constexpr (pivoting) ipiv[j] = place + 1;
        T pivot = pivot_row[j];
        const bool zero = pivot == T{};
        if (zero) [[unlikely]] {
            if (info == 0) info = j + 1;
            pivot = T(1);
        }
        const Divisor<T> divisor(pivot);
        if (!zero && !(magnitude(pivot) > safe)) [[unlikely]] {
            place = below<c, pivoting, registers>(first, place, pivot_row, before,
                                                  [&](Vec<T> x) { return divisor.divide(x); });
        } else {
            const Number<T> reciprocal = divisor.reciprocal();
            place = below<c, pivoting, registers>(first, place, pivot_row, before,
                                                  [&](Vec<T> x) { return product<false>(Rows<T>(x), reciprocal); });
        }
    }

    template <int c, bool pivoting, int registers, class Quotient>
    [[gnu::always_inline]] inline Int below(Int first, Int place, const T* pivot_row, T* before, Quotient&& quotient)
    {
        constexpr int at = c / lanes, next = (c + 1) / lanes; // the registers of this column and of the next one
        const Int j = first + c;
        const T* u = pivot_row + first;
        Vec<T> right[registers];
#pragma GCC unroll 4
        for (int v = next; v < registers; ++v) right[v] = load<lanes>(u + v * lanes);
        PivotSearch<T> search(j + 1);
        Places<T> places = Places<T>::all(j + 1);
        const Int m = m_;
        T** const rows = row_;
        for (Int i = j + 1; i < m; i += group) {
#pragma GCC unroll 4
            for (int r = 0; r < group; ++r, places = places + Places<T>::all(1)) {
                T* moved = rows[i + r];
                if constexpr (pivoting) rows[i + r] = moved = exchanged_at(place, i + r, moved, before);
                T* x = moved + first;
                const Vec<T> l = quotient(load<1>(x + c));
                const Number<T> number = in_all_lanes(l);
                Vec<T> fresh[registers] = {};
#pragma GCC unroll 4
                for (int v = next; v < registers; ++v)
                    fresh[v] = load<lanes>(x + v * lanes) - product<false>(Rows<T>(right[v]), number);
                store<lanes>(x + at * lanes,
                             merged<c % lanes>(load<lanes>(x + at * lanes), l, fresh[next == at ? at : registers - 1]));
#pragma GCC unroll 4
                for (int v = at + 1; v < registers; ++v) store<lanes>(x + v * lanes, fresh[v]);
                if constexpr (pivoting && next < registers) search.look(repeated<(c + 1) % lanes>(fresh[next]), places);
            }
        }
        return pivoting ? search.place_of_lane() : j + 1;
    }

    Int m_, n_, stride_;
    T* row_[most_rows + group];
    alignas(16) T s_[scratch];
};

} // namespace ork::lapack
