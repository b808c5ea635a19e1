// SPDX-License-Identifier: MIT
// C = op(A)^-1 C for a triangular or diagonal compressed-row matrix A, in place.
//
// The diagonal of a lower triangle is the entry of a row at which a walk from its begin meets the first column that is
// not left of the row's own; of an upper one, the entry at which a walk from its end meets the first that is not right
// of it. It is not looked at whether that entry is the diagonal, or there at all.
#pragma once

#include "blas/divide.h"
#include "spblas/csr_fetch.h"
#include "spblas/form.h"
#include "spblas/panel.h"

namespace ork::spblas {

// x / d for every right-hand side of a row, by Smith's method for complex d: see blas/divide.h.
template <class T>
class Divisor {
public:
    explicit Divisor(T d) : d_(broadcast(d)) {}
    Vec<T> under(Vec<T> x) const { return x / d_; }

private:
    Vec<T> d_;
};
template <class R>
class Divisor<Complex<R>> {
public:
    explicit Divisor(Complex<R> d)
    {
        const auto magnitude = [](R x) { return x < 0 ? -x : x; };
        const bool wide = magnitude(d.re) >= magnitude(d.im);
        const R r = wide ? d.im / d.re : d.re / d.im;
        straight_ = broadcast(wide ? R(1) : r);
        exchanged_ = Factor<Complex<R>>({0, wide ? -r : R(-1)}).im;
        size_ = broadcast(wide ? d.re + d.im * r : d.im + d.re * r);
    }
    Vec<Complex<R>> under(Vec<Complex<R>> x) const { return {(x.v * straight_ + exchanged(x.v) * exchanged_) / size_}; }

private:
    Vec<R> straight_, exchanged_, size_;
};

template <class Int, class T>
struct CsrSolve {
    Csr<Int, T> a;
    T* c;
    std::int64_t ldc;
    std::int64_t m;
    Form form;
    bool far; // A comes from memory

    // Positions of a row in the order of the walk.
    struct Walk {
        std::int64_t k, end, step;
    };
    Walk walk(std::int64_t i) const
    {
        if (form.lower) return {a.first(i), a.last(i), 1};
        return {a.last(i) - 1, a.first(i) - 1, -1};
    }
    // The row that is solved t-th.
    bool ascends() const { return form.lower != form.transpose; }
    std::int64_t row(std::int64_t t) const { return ascends() ? t : m - 1 - t; }
    // Ahead in that order: of the entries of row i, and of row r of the panel.
    template <bool row_major>
    [[gnu::always_inline]] void fetch(std::int64_t i, Panel<row_major, T> panel, std::int64_t r) const
    {
        if (!far) return;
        fetch_row(a, a.first(i), a.last(i), ascends() ? far_ahead : -far_ahead);
        if constexpr (row_major) fetch_at(panel.row(r), ascends() ? 2048 : -2048);
    }
    // Turns "right of" into "left of".
    std::int64_t mirror() const { return form.lower ? 0 : -1; }
    T diagonal(std::int64_t k) const
    {
        if constexpr (is_complex<T>)
            return form.conjugate ? conj(a.val[k]) : a.val[k];
        else
            return a.val[k];
    }
};

template <int count, class T>
inline PanelRow<count, T> divided(const PanelRow<count, T>& x, T d)
{
    const Divisor<T> divisor(d);
    return PanelRow<count, T>::each([&](int r) { return divisor.under(x.v[r]); });
}

// Rows first .. last (exclusive) in the order in which they are solved: c_i = (c_i - sum of a_ij c_j) / a_ii.
template <bool row_major, int count, class Int, class T>
[[gnu::noinline]] void solve_rows(const CsrSolve<Int, T>& s, std::int64_t first, std::int64_t last, std::int64_t j)
{
    using G = PanelRow<count, T>;
    const Panel<row_major, T> c(s.c, s.ldc, j);
    const Signs<T> signs(s.form.conjugate);
    const std::int64_t mirror = s.mirror();
    const int base = s.form.base;
    for (std::int64_t t = first; t < last; ++t) {
        const std::int64_t i = s.row(t);
        auto [k, end, step] = s.walk(i);
        s.fetch(i, c, i);
        G sum{};
        for (; k != end; k += step) {
            const std::int64_t column = std::int64_t{s.a.indx[k]} - base;
            if (!((column ^ mirror) < (i ^ mirror))) break;
            sum = sum + Spread<T>(s.a.val + k, signs) * G::load(c, column);
        }
        G x = G::load(c, i) - sum;
        if (!s.form.unit) x = divided(x, s.diagonal(k));
        x.store(c, i);
    }
}

// The transposed of a triangle, or a diagonal: c_i = c_i / a_ii, c_j = c_j - a_ij c_i.
template <bool row_major, int count, class Int, class T>
[[gnu::noinline]] void solve_columns(const CsrSolve<Int, T>& s, std::int64_t first, std::int64_t last, std::int64_t j)
{
    using G = PanelRow<count, T>;
    const Panel<row_major, T> c(s.c, s.ldc, j);
    const Signs<T> signs(s.form.conjugate);
    const std::int64_t mirror = s.mirror();
    const int base = s.form.base;
    for (std::int64_t t = first; t < last; ++t) {
        const std::int64_t i = s.row(t);
        const auto [begin, end, step] = s.walk(i);
        const auto column = [&](std::int64_t k) { return std::int64_t{s.a.indx[k]} - base; };
        std::int64_t k = begin;
        s.fetch(i, c, begin != end ? column(begin) : i);
        if (s.form.type == 'd') {
            while (k != end && column(k) != i) k += step;
            if (k != end) divided(G::load(c, i), s.diagonal(k)).store(c, i);
            continue;
        }
        while (k != end && (column(k) ^ mirror) < (i ^ mirror)) k += step;
        G x = G::load(c, i);
        if (!s.form.unit) {
            x = divided(x, s.diagonal(k));
            x.store(c, i);
        }
        for (std::int64_t l = begin; l != k; l += step)
            (G::load(c, column(l)) - Spread<T>(s.a.val + l, signs) * x).store(c, column(l));
    }
}

template <bool row_major, class Int, class T>
[[gnu::noinline]] void solve(const CsrSolve<Int, T>& s, std::int64_t first, std::int64_t last)
{
    for_groups<widest<T>>(first, last, [&]<int count>(std::int64_t j) {
        if (s.form.transpose || s.form.type == 'd')
            solve_columns<row_major, count>(s, 0, s.m, j);
        else
            solve_rows<row_major, count>(s, 0, s.m, j);
    });
}

template <class Int, class T>
[[gnu::noipa]] void csr_smout_par(const Int* first, const Int* last, const Int* m, Form form, const T* val,
                                  const Int* indx, const Int* pntrb, const Int* pntre, T* c, const Int* ldc)
{
    if (*m <= 0) return;
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const CsrSolve<Int, T> s{a, c, *ldc, *m, form, is_far(a, {0, *m})};
    if (form.row_major)
        solve<true>(s, std::int64_t{*first} - 1, *last);
    else
        solve<false>(s, std::int64_t{*first} - 1, *last);
}

} // namespace ork::spblas
