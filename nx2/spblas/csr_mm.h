// SPDX-License-Identifier: MIT
// C = alpha op(A) B + beta C for a compressed-row matrix A.
//
// General, not transposed: the sum over a row takes two entries at a time into one accumulator of two lanes per
// right-hand side, the even ones into lane 0 and the odd ones into lane 1; the lanes are added at the end and then an
// odd last entry. This order binds in every precision and both layouts; as lanes of the registers here are right-hand
// sides, the two are registers of their own.
//
// The others take entries one by one. Those that add into rows of C other than their own scale C first.
#pragma once

#include "spblas/csr.h"
#include "spblas/csr_mm_blocks.h"
#include "spblas/form.h"
#include "spblas/panel.h"
#include "spblas/scale.h"

namespace ork::spblas {

// Entries that count: low <= column - row <= low + span, modulo the range of std::uint64_t.
struct Band {
    std::uint64_t low, span;
    bool holds(std::int64_t offset) const { return static_cast<std::uint64_t>(offset) - low <= span; }
};
constexpr Band everything{0, UINT64_MAX}, nothing{std::uint64_t{1} << 63, 0}, the_diagonal{0, 0};
constexpr Band triangle(bool lower, bool strict)
{
    constexpr std::uint64_t half = std::uint64_t{1} << 63;
    return lower ? Band{half, half - strict} : Band{strict, half - 1 - strict};
}

template <class Int, class T>
struct CsrProduct {
    Csr<Int, T> a;
    const T* b;
    std::int64_t ldb;
    T* c;
    std::int64_t ldc;
    T alpha, beta, mirrored_alpha;
    int base;
    bool conjugate, mirrored_conjugate;
    Band band;
    bool unit;     // a diagonal of ones is added
    bool diagonal; // symmetric and Hermitian: the stored one counts
};

// c = alpha s + beta c.
template <bool row_major, int count, class T>
inline void put(Panel<row_major, T> c, std::int64_t i, const Factor<T>& alpha, const PanelRow<count, T>& s, bool clear,
                const Factor<T>& beta)
{
    using G = PanelRow<count, T>;
    auto result = G::each([&](int r) { return alpha * s.v[r]; });
    if (!clear) {
        const G old = G::load(c, i);
        result = G::each([&](int r) { return beta * old.v[r]; }) + result;
    }
    result.store(c, i);
}

// General, not transposed: rows first .. last (exclusive), right-hand sides j .. j + count.
template <bool row_major, int count, class Int, class T>
[[gnu::noinline]] void paired_rows(const CsrProduct<Int, T>& p, std::int64_t first, std::int64_t last, std::int64_t j)
{
    using G = PanelRow<count, T>;
    const Panel<row_major, const T> b(p.b, p.ldb, j, p.base);
    const Panel<row_major, T> c(p.c, p.ldc, j);
    const Csr<Int, T> a = p.a;
    const Signs<T> signs(p.conjugate);
    const Factor<T> alpha(p.alpha), beta(p.beta);
    const bool clear = p.beta == T{};
    const auto term = [&](std::int64_t k) { return Spread<T>(a.val + k, signs) * G::load(b, a.indx[k]); };
    for (std::int64_t i = first; i < last; ++i) {
        std::int64_t k = a.first(i);
        const std::int64_t end = a.last(i);
        G even{}, odd{};
        for (; k + 1 < end; k += 2) {
            even = even + term(k);
            odd = odd + term(k + 1);
        }
        even = even + odd;
        if (k < end) even = even + term(k);
        put(c, i, alpha, even, clear, beta);
    }
}

// The others. `gathers`: entries of the band multiply rows of B into row i of C. `scatters`: they multiply row i of B
// into rows of C, which has been scaled. Both: the stored triangle and its mirror image.
template <bool gathers, bool scatters, bool row_major, int count, class Int, class T>
[[gnu::noinline]] void rows_in_band(const CsrProduct<Int, T>& p, std::int64_t first, std::int64_t last, std::int64_t j)
{
    using G = PanelRow<count, T>;
    const Panel<row_major, const T> b(p.b, p.ldb, j);
    const Panel<row_major, T> c(p.c, p.ldc, j);
    const Csr<Int, T> a = p.a;
    const Band band = p.band;
    const int base = p.base;
    const bool unit = p.unit, diagonal = p.diagonal, clear = p.beta == T{};
    const Signs<T> signs(p.conjugate), mirrored_signs(p.mirrored_conjugate);
    const Factor<T> alpha(p.alpha), beta(p.beta), mirrored_alpha(p.mirrored_alpha);
    for (std::int64_t i = first; i < last; ++i) {
        G sum{}, own{};
        if (unit && gathers) sum = G::load(b, i);
        if constexpr (scatters) {
            own = G::load(b, i);
            own = G::each([&](int r) { return mirrored_alpha * own.v[r]; });
        }
        const std::int64_t end = a.last(i);
        for (std::int64_t k = a.first(i); k < end; ++k) {
            const std::int64_t column = std::int64_t{a.indx[k]} - base;
            if (band.holds(column - i)) {
                if constexpr (gathers) sum = sum + Spread<T>(a.val + k, signs) * G::load(b, column);
                if constexpr (scatters)
                    (G::load(c, column) + Spread<T>(a.val + k, mirrored_signs) * own).store(c, column);
            } else if (gathers && scatters && column == i && diagonal) {
                sum = sum + Spread<T>(a.val + k, signs) * G::load(b, i);
            }
        }
        if constexpr (gathers && scatters)
            (G::load(c, i) + G::each([&](int r) { return alpha * sum.v[r]; })).store(c, i);
        else if constexpr (gathers)
            put(c, i, alpha, sum, clear, beta);
        else if (unit)
            (G::load(c, i) + own).store(c, i);
    }
}

// Right-hand sides first .. last (exclusive) of C, which has so many rows.
template <bool row_major, class T>
inline void scale_panel(std::int64_t rows, std::int64_t first, std::int64_t last, T beta, T* c, std::int64_t ldc)
{
    const std::int64_t length = row_major ? last - first : rows, lines = row_major ? rows : last - first;
    T* p = c + (row_major ? first : first * ldc);
    for (std::int64_t i = 0; i < lines; ++i) scale(length, beta, p + i * ldc);
}

// f(first, last, ...) over blocks of rows, and in a block over the right-hand sides.
template <bool row_major, class T, class F>
inline void for_blocks(std::int64_t m, RowBlocks blocks, std::int64_t j, std::int64_t end, F&& f)
{
    for (std::int64_t s = 0; s < blocks.count; ++s) {
        const std::int64_t first = s * blocks.size, last = s + 1 == blocks.count ? m : first + blocks.size;
        for_groups<widest<T>>(j, end, [&]<int count>(std::int64_t j) { f.template operator()<count>(first, last, j); });
    }
}

// A row of B or C of one group after the other while the entries of A are in the nearest cache.
constexpr RowBlocks short_blocks(std::int64_t m)
{
    constexpr std::int64_t rows = 16;
    return {rows, m < rows ? 1 : m / rows};
}

template <bool row_major, class Int, class T>
[[gnu::noinline]] void multiply(const CsrProduct<Int, T>& p, Form form, std::int64_t first, std::int64_t last,
                                std::int64_t m, std::int64_t n)
{
    if (first >= last) return;
    const bool scatters_only = form.transpose, both = form.type == 's' || form.type == 'h' || form.type == 'a';
    if (scatters_only || both) scale_panel<row_major>(form.transpose ? n : m, first, last, p.beta, p.c, p.ldc);
    if (m <= 0) return;

    const bool one_group = last - first <= widest<T> && ((last - first) & (last - first - 1)) == 0;
    if (form.type == 'g' && !form.transpose) {
        RowBlocks blocks{m, 1};
        if (!one_group) blocks = row_major ? short_blocks(m) : row_blocks(m, n, p.a.last(m - 1), last - first);
        return for_blocks<row_major, T>(m, blocks, first, last, [&]<int count>(auto begin, auto end, auto j) {
            paired_rows<row_major, count>(p, begin, end, j);
        });
    }
    const RowBlocks blocks = one_group || !row_major ? RowBlocks{m, 1} : short_blocks(m);
    for_blocks<row_major, T>(m, blocks, first, last, [&]<int count>(auto begin, auto end, auto j) {
        if (both)
            rows_in_band<true, true, row_major, count>(p, begin, end, j);
        else if (scatters_only)
            rows_in_band<false, true, row_major, count>(p, begin, end, j);
        else
            rows_in_band<true, false, row_major, count>(p, begin, end, j);
    });
}

template <class Int, class T>
[[gnu::noipa]] void csr_mmout_par(const Int* first, const Int* last, const Int* m, const Int* n, Form form,
                                  const T* alpha, const T* val, const Int* indx, const Int* pntrb, const Int* pntre,
                                  const T* b, const Int* ldb, T* c, const Int* ldc, const T* beta)
{
    CsrProduct<Int, T> p{{val, indx, pntrb, pntre}, b, *ldb, c, *ldc, *alpha, *beta, {}, form.base, {}, {}, {}, {}, {}};
    if (form.negate) p.alpha = T{} - p.alpha;
    p.mirrored_alpha = form.type == 'a' ? T{} - p.alpha : p.alpha;
    p.conjugate = form.conjugate;
    p.mirrored_conjugate = form.conjugate != (form.type == 'h');
    p.unit = form.unit && form.type != 'g';
    switch (form.type) {
    case 'g':
        p.band = everything;
        break;
    case 't':
        p.band = triangle(form.lower, form.unit);
        break;
    case 'd':
        p.band = form.unit ? nothing : the_diagonal;
        break;
    default:
        p.band = triangle(form.lower, true);
        p.diagonal = form.type != 'a' && !form.unit;
    }
    if (form.row_major)
        multiply<true>(p, form, *first - 1, *last, *m, *n);
    else
        multiply<false>(p, form, *first - 1, *last, *m, *n);
}

template <class Int, class T>
[[gnu::noipa]] void csr_mmout_seq(const Int* m, const Int* nrhs, Form form, const T* alpha, const T* val,
                                  const Int* indx, const Int* pntrb, const Int* pntre, const T* b, const Int* ldb, T* c,
                                  const Int* ldc, const T* beta)
{
    const Int one = 1;
    csr_mmout_par(&one, nrhs, m, m, form, alpha, val, indx, pntrb, pntre, b, ldb, c, ldc, beta);
}

} // namespace ork::spblas
