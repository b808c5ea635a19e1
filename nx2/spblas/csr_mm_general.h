// SPDX-License-Identifier: MIT
// C = alpha A B + beta C for a general compressed-row matrix A, or its conjugate.
//
// The sum over a row takes two entries at a time into one accumulator of two lanes per right-hand side, the even ones
// into lane 0 and the odd ones into lane 1; the lanes are added at the end and then an odd last entry. This order binds
// in every precision and both layouts; as lanes of the registers here are right-hand sides or rows, the two lanes are
// registers of their own.
#pragma once

#include "spblas/csr_fetch.h"
#include "spblas/panel.h"

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
    bool far;      // A comes from memory
    bool unit;     // a diagonal of ones is added
    bool diagonal; // symmetric and Hermitian: the stored one counts
};

// How many right-hand sides of column-major operands go together.
template <class T>
inline constexpr int column_group = widest<T> < 8 ? widest<T> : 8;

// c = alpha s + beta c.
template <bool row_major, class G, class T>
inline void put(Panel<row_major, T> c, std::int64_t i, const Factor<T>& alpha, const G& s, bool clear,
                const Factor<T>& beta)
{
    auto result = G::each([&](int r) { return alpha * s.v[r]; });
    if (!clear) {
        const G old = G::load(c, i);
        result = G::each([&](int r) { return beta * old.v[r]; }) + result;
    }
    result.store(c, i);
}

// Whether rows i .. i + lanes are equally long, lie equally far apart, and each has the columns of the one before it
// moved by one, as the rows of a band or a grid have.
template <int lanes, class Int, class T>
[[gnu::always_inline]] inline bool are_shifted(const Csr<Int, T>& a, std::int64_t i)
{
    const std::int64_t begin = a.first(i), length = a.last(i) - begin, pitch = a.first(i + 1) - begin;
    for (int r = 1; r < lanes; ++r) {
        const std::int64_t k = begin + r * pitch;
        if (a.first(i + r) != k || a.last(i + r) - k != length) return false;
        const Int *row = a.indx + begin, *shifted = a.indx + k;
        for (std::int64_t e = 0; e < length; ++e)
            if (shifted[e] - row[e] != r) return false;
    }
    return true;
}

// Such rows from row i on, of column-major B and C, with rows in the lanes: one load brings what as many rows ask of a
// column. All even entries come before the odd ones because both sums together would not fit the registers. Returns the
// row that it stops at. Of 8 columns, 27 entries a row run a quarter faster than one row at a time, 7 entries a tenth.
template <int count, class Int, class T>
[[gnu::noinline]] std::int64_t shifted_rows(const CsrProduct<Int, T>& p, std::int64_t i, std::int64_t last,
                                            std::int64_t j)
{
    constexpr int lanes = Vec<T>::lanes;
    const Panel<false, const T> b(p.b, p.ldb, j, p.base);
    const Panel<false, T> c(p.c, p.ldc, j);
    const Csr<Int, T> a = p.a;
    const Signs<T> signs(p.conjugate);
    do {
        const std::int64_t begin = a.first(i), length = a.last(i) - begin, pitch = a.first(i + 1) - begin;
        const T* val = a.val + begin;
        const Int* indx = a.indx + begin;
        if (p.far) fetch_row(a, begin, begin + lanes * length);
        const auto add = [&](PanelRows<count, T>& sum, std::int64_t k) {
            add_product(sum, Spread<T>(load_apart<lanes>(val + k, pitch), signs), b, indx[k]);
        };
        PanelRows<count, T> even{}, odd{};
        for (std::int64_t k = 0; k < length - 1; k += 2) add(even, k);
        for (std::int64_t k = 1; k < length; k += 2) add(odd, k);
        even = even + odd;
        if (length % 2 != 0) add(even, length - 1);
        if (p.far && i % line<T> < lanes && length > 0)
#pragma GCC unroll 8
            for (int q = 0; q < count; ++q) fetch_at(b.row(indx[length - 1]) + q * b.ld, 256);
        put(c, i, Factor<T>(p.alpha), even, p.beta == T{}, Factor<T>(p.beta));
        i += lanes;
    } while (i + lanes <= last && are_shifted<lanes>(a, i));
    return i;
}

// General, not transposed: rows first .. last (exclusive), right-hand sides j .. j + count.
template <bool row_major, int count, class Int, class T>
[[gnu::noinline]] void paired_rows(const CsrProduct<Int, T>& p, std::int64_t first, std::int64_t last, std::int64_t j)
{
    using G = PanelRow<count, T>;
    constexpr int lanes = Vec<T>::lanes;
    const Panel<row_major, const T> b(p.b, p.ldb, j, p.base);
    const Panel<row_major, T> c(p.c, p.ldc, j);
    const Csr<Int, T> a = p.a;
    const Signs<T> signs(p.conjugate);
    const Factor<T> alpha(p.alpha), beta(p.beta);
    const bool clear = p.beta == T{}, far = p.far;
    const auto add = [&](G& sum, std::int64_t k) { add_product(sum, Spread<T>(a.val + k, signs), b, a.indx[k]); };
    for (std::int64_t i = first; i < last; ++i) {
        if constexpr (!row_major && lanes > 1 && count >= 4) {
            if (i + lanes <= last && are_shifted<lanes>(a, i)) i = shifted_rows<count>(p, i, last, j);
            if (i == last) break;
        }
        std::int64_t k = a.first(i);
        const std::int64_t end = a.last(i);
        if (far) {
            fetch_row(a, k, end);
            if constexpr (row_major) // of sorted rows of a grid, the row of B that no row has asked for yet
                if (k < end) fetch_at(b.row(a.indx[end - 1]), 2048);
        }
        G even{}, odd{};
        for (; k + 1 < end; k += 2) {
            add(even, k);
            add(odd, k + 1);
        }
        even = even + odd;
        if (k < end) add(even, k);
        put(c, i, alpha, even, clear, beta);
    }
}

} // namespace ork::spblas
