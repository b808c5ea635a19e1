// SPDX-License-Identifier: MIT
// C = alpha op(A) B + beta C for a compressed-row matrix A: all but the general product, which csr_mm_general.h does,
// and the way through rows and right-hand sides for both.
#pragma once

#include <bit>

#include "simd/scale.h"
#include "spblas/csr_mm_blocks.h"
#include "spblas/csr_mm_general.h"
#include "spblas/form.h"

namespace ork::spblas {

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
        const std::int64_t begin = a.first(i), end = a.last(i);
        if (p.far) fetch_row(a, begin, end);
        if (p.far && row_major) { // as far as sorted rows of a grid reach, by their diagonal and by their last entry
            fetch_at(c.row(i), 2048);
            if (scatters) fetch_at(b.row(i), 2048);
            if (begin < end) {
                const std::int64_t distant = std::int64_t{a.indx[end - 1]} - base;
                if (gathers) fetch_at(b.row(distant), 2048);
                if (scatters) fetch_at(c.row(distant), 2048);
            }
        }
        for (std::int64_t k = begin; k < end; ++k) {
            const std::int64_t column = std::int64_t{a.indx[k]} - base;
            if (band.holds(column - i)) {
                if constexpr (gathers) add_product(sum, Spread<T>(a.val + k, signs), b, column);
                if constexpr (scatters)
                    (G::load(c, column) + Spread<T>(a.val + k, mirrored_signs) * own).store(c, column);
            } else if (gathers && scatters && column == i && diagonal) {
                add_product(sum, Spread<T>(a.val + k, signs), b, i);
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
    std::int64_t length = row_major ? last - first : rows, lines = row_major ? rows : last - first;
    T* p = c + (row_major ? first : first * ldc);
    if (row_major && ldc == length) length *= lines, lines = 1;
    for (std::int64_t i = 0; i < lines; ++i) scale(length, beta, p + i * ldc);
}

template <bool row_major, class T>
inline constexpr int group = row_major ? widest<T> : column_group<T>;

// f(begin, end, j) over blocks of rows, and in a block over the right-hand sides.
template <bool row_major, class T, class F>
inline void for_blocks(std::int64_t m, RowBlocks blocks, std::int64_t first, std::int64_t last, F&& f)
{
    for (std::int64_t s = 0; s < blocks.count; ++s) {
        const std::int64_t begin = s * blocks.size, end = s + 1 == blocks.count ? m : begin + blocks.size;
        for_groups<group<row_major, T>>(
            first, last, [&]<int count>(std::int64_t j) { f.template operator()<count>(begin, end, j); });
    }
}

// Blocks of so many rows and more.
constexpr RowBlocks joined(RowBlocks blocks, std::int64_t rows)
{
    const std::int64_t together = blocks.size > 0 && blocks.size < rows ? rows / blocks.size : 1;
    return {blocks.size * together, blocks.count < together ? 1 : blocks.count / together};
}

// In which blocks right-hand sides are done. Row-major, the groups of a row of B and C are neighbours and take turns
// every few rows. Column-major, blocks shorter than 1024 rows are joined: with 64 the streams of 16 columns were cut so
// short that 7 entries a row ran at three quarters of the rate.
template <bool row_major, class Int, class T>
inline RowBlocks blocks_of(const CsrProduct<Int, T>& p, bool general, std::int64_t m, std::int64_t n,
                           std::int64_t right_hand_sides)
{
    if (right_hand_sides <= group<row_major, T> && std::has_single_bit(static_cast<std::uint64_t>(right_hand_sides)))
        return {m, 1};
    if (row_major) return joined({1, m}, 16);
    return general ? joined(row_blocks(m, n, p.a.last(m - 1), right_hand_sides), 1024) : RowBlocks{m, 1};
}

template <bool row_major, class Int, class T>
[[gnu::noinline]] void multiply(const CsrProduct<Int, T>& p, Form form, std::int64_t first, std::int64_t last,
                                std::int64_t m, std::int64_t n)
{
    if (first >= last) return;
    const bool both = form.type == 's' || form.type == 'h' || form.type == 'a';
    if (form.transpose || both) scale_panel<row_major>(form.transpose ? n : m, first, last, p.beta, p.c, p.ldc);
    if (m <= 0) return;

    const bool general = form.type == 'g' && !form.transpose;
    const RowBlocks blocks = blocks_of<row_major>(p, general, m, n, last - first);
    for_blocks<row_major, T>(m, blocks, first, last, [&]<int count>(auto begin, auto end, auto j) {
        if (general)
            paired_rows<row_major, count>(p, begin, end, j);
        else if (both)
            rows_in_band<true, true, row_major, count>(p, begin, end, j);
        else if (form.transpose)
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
    CsrProduct<Int, T> p{
        {val, indx, pntrb, pntre}, b, *ldb, c, *ldc, *alpha, *beta, {}, form.base, {}, {}, {}, {}, {}, {}};
    p.far = *m > 0 && is_far(p.a, {0, *m});
    if (form.negate) p.alpha = Real<T>(-1) * p.alpha;
    p.mirrored_alpha = form.type == 'a' ? Real<T>(-1) * p.alpha : p.alpha;
    p.conjugate = form.conjugate;
    p.mirrored_conjugate = form.conjugate != (form.type == 'h');
    p.unit = form.unit;
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
