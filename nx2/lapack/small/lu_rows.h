// SPDX-License-Identifier: MIT
// LU of a square matrix of a known small order, unrolled. Rows stand one behind the other in scratch memory and change
// places by their addresses, so an interchange moves no element and nothing is decided by a branch.
#pragma once

#include <utility>

#include "lapack/small/pivot.h"

namespace ork::lapack {

// Lanes below k of the old, lane k of l, lanes above of the new.
template <int k>
inline Vec<double> merged(Vec<double> old, Vec<double> l, Vec<double> fresh)
{
    if constexpr (k == 0)
        return {_mm_blend_pd(fresh.v, l.v, 1)};
    else
        return {_mm_blend_pd(old.v, l.v, 2)};
}
template <int k>
inline Vec<float> merged(Vec<float> old, Vec<float> l, Vec<float> fresh)
{
    constexpr int below = (1 << k) - 1;
    return {_mm_blend_ps(_mm_blend_ps(fresh.v, old.v, below), l.v, 1 << k)};
}
template <int k>
inline Vec<Complex<double>> merged(Vec<Complex<double>>, Vec<Complex<double>> l, Vec<Complex<double>>)
{
    return l;
}
template <int k>
inline Vec<Complex<float>> merged(Vec<Complex<float>> old, Vec<Complex<float>> l, Vec<Complex<float>> fresh)
{
    return {{_mm_blend_ps(k == 0 ? fresh.v.v : old.v.v, l.v.v, k == 0 ? 3 : 12)}};
}

// Lane k in every lane.
template <int k>
inline Vec<double> repeated(Vec<double> a)
{
    return {k == 0 ? _mm_unpacklo_pd(a.v, a.v) : _mm_unpackhi_pd(a.v, a.v)};
}
template <int k>
inline Vec<float> repeated(Vec<float> a)
{
    return {_mm_shuffle_ps(a.v, a.v, k * 0x55)};
}
template <int k>
inline Vec<Complex<double>> repeated(Vec<Complex<double>> a)
{
    return a;
}
template <int k>
inline Vec<Complex<float>> repeated(Vec<Complex<float>> a)
{
    return {{_mm_shuffle_ps(a.v.v, a.v.v, k == 0 ? 0x44 : 0xee)}};
}

// Of a register that holds one element in every lane.
template <class T>
inline Number<T> in_all_lanes(Vec<T> l)
{
    Number<T> number(T{});
    if constexpr (!is_complex<T>)
        number.v = l;
    else if constexpr (sizeof(T) == 16)
        number.re.v = _mm_unpacklo_pd(l.v.v, l.v.v), number.im.v = _mm_unpackhi_pd(l.v.v, l.v.v);
    else
        number.re.v = _mm_moveldup_ps(l.v.v), number.im.v = _mm_movehdup_ps(l.v.v);
    return number;
}

// Elements at p, p + distance, ...; zeros where there are fewer than lanes. Composed in the register: stored one by one
// they could not be read as one before all had left the store queue.
inline Vec<double> gathered(const double* p, Int distance, int count)
{
    return {count > 1 ? _mm_loadh_pd(_mm_load_sd(p), p + distance) : _mm_load_sd(p)};
}
inline Vec<float> gathered(const float* p, Int distance, int count)
{
    const auto at = [&](int i) { return i < count ? p[i * distance] : 0; };
    return {_mm_setr_ps(at(0), at(1), at(2), at(3))};
}
inline Vec<Complex<double>> gathered(const Complex<double>* p, Int, int) { return load<1>(p); }
inline Vec<Complex<float>> gathered(const Complex<float>* p, Int distance, int count)
{
    const auto* first = reinterpret_cast<const double*>(p);
    return {{_mm_castpd_ps(gathered(first, distance, count).v)}};
}

// Order 2, the most frequent one of all.
template <class T>
inline Int factor_two(T* a, Int lda, Int* ipiv)
{
    T* b = a + lda;
    const Vec<T> a1 = load<1>(a), a2 = load<1>(a + 1), b1 = load<1>(b), b2 = load<1>(b + 1);
    const Vec<Real<T>> below = greater(magnitudes(a2), magnitudes(a1));
    const Vec<T> pivot = select(below, a2, a1), other = select(below, a1, a2), u = select(below, b2, b1);
    store<1>(a, pivot), store<1>(b, u);
    ipiv[0] = 1 - static_cast<std::int32_t>(_mm_cvtsi128_si32(bits(below))), ipiv[1] = 2;
    const bool zero = a[0] == T{};
    const Vec<T> l = Divisor<T>(zero ? T(1) : a[0]).divide(other);
    store<1>(a + 1, l);
    store<1>(b + 1, select(below, b1, b2) - product<false>(Rows<T>(u), in_all_lanes(l)));
    return zero ? 1 : b[1] == T{} ? 2 : 0;
}

template <class T, int n>
class RowLu {
    static constexpr int lanes = Vec<T>::lanes, registers = (n + lanes - 1) / lanes;

public:
    // Columns to rows; what fills a row's last register is zero.
    RowLu(const T* a, Int lda)
    {
#pragma GCC unroll 8
        for (int i = 0; i < n; ++i) row_[i] = rows_ + i * registers * lanes;
#pragma GCC unroll 8
        for (int v = 0; v < registers; ++v) {
#pragma GCC unroll 8
            for (int i = 0; i + lanes <= n; i += lanes) {
                Vec<T> x[lanes] = {};
#pragma GCC unroll 4
                for (int q = 0; q < lanes; ++q)
                    if (v * lanes + q < n) x[q] = load<lanes>(a + i + (v * lanes + q) * lda);
                transpose(x);
#pragma GCC unroll 4
                for (int q = 0; q < lanes; ++q) put(row_[i + q], v, x[q]);
            }
#pragma GCC unroll 4
            for (int i = n / lanes * lanes; i < n; ++i) {
                put(row_[i], v, gathered(a + i + v * lanes * lda, lda, n - v * lanes));
            }
        }
    }

    // With the quotients of the elements below a pivot and the pivot, or their products with its reciprocal; -1 where a
    // pivot is too small for that.
    template <bool divides>
    Int factor(Int* ipiv, Real<T> safe)
    {
        Int info = 0;
        [&]<int... j>(std::integer_sequence<int, j...>) { (eliminate<j, divides>(ipiv, safe, info), ...); }
        (std::make_integer_sequence<int, n>());
        return info;
    }

    void write(T* a, Int lda) const
    {
#pragma GCC unroll 8
        for (int v = 0; v < registers; ++v) {
#pragma GCC unroll 8
            for (int i = 0; i + lanes <= n; i += lanes) {
                Vec<T> x[lanes];
#pragma GCC unroll 4
                for (int q = 0; q < lanes; ++q) x[q] = get(row_[i + q], v);
                transpose(x);
#pragma GCC unroll 4
                for (int q = 0; q < lanes; ++q)
                    if (v * lanes + q < n) store<lanes>(a + i + (v * lanes + q) * lda, x[q]);
            }
            for (int i = n / lanes * lanes; i < n; ++i)
                for (int q = v * lanes; q < (v + 1) * lanes && q < n; ++q) a[i + q * lda] = row_[i][q];
        }
    }

private:
    static Vec<T> get(const T* row, int v) { return load<lanes>(row + v * lanes); }
    static void put(T* row, int v, Vec<T> x) { store<lanes>(row + v * lanes, x); }

    template <int j, bool divides>
    [[gnu::always_inline]] inline void eliminate(Int* ipiv, Real<T> safe, Int& info)
    {
        PivotSearch<T> search(j);
#pragma GCC unroll 8
        for (int i = j; i < n; ++i) search.look(load<1>(row_[i] + j), Places<T>::all(i));
        const Int place = search.place_of_lane();
        ipiv[j] = place + 1;
        // By conditional moves: addresses stored at a place just found would keep all later loads waiting.
        T *row = row_[j], *const before = row;
#pragma GCC unroll 8
        for (int i = j + 1; i < n; ++i) {
            const bool found = place == i;
            row = found ? row_[i] : row;
            row_[i] = found ? before : row_[i];
        }
        row_[j] = row;

        T pivot = row[j];
        const bool zero = pivot == T{};
        if (zero) [[unlikely]] {
            if (info == 0) info = j + 1;
            pivot = T(1);
        }
        if constexpr (j + 1 == n) return;
        if constexpr (divides) {
            const Divisor<T> divisor(pivot);
            below<j>(row, [&](Vec<T> x) { return divisor.divide(x); });
        } else {
            if (!(magnitude(pivot) > safe)) [[unlikely]]
                info = -1, pivot = T(1);
            const Number<T> reciprocal = Divisor<T>(pivot).reciprocal();
            below<j>(row, [&](Vec<T> x) { return product<false>(Rows<T>(x), reciprocal); });
        }
    }

    template <int j, class Quotient>
    [[gnu::always_inline]] void below(const T* row, Quotient&& quotient)
    {
        constexpr int at = j / lanes, first = (j + 1) / lanes; // the registers of column j and of the next one
        Vec<T> u[registers];
#pragma GCC unroll 8
        for (int v = first; v < registers; ++v) u[v] = get(row, v);
#pragma GCC unroll 8
        for (int i = j + 1; i < n; ++i) {
            T* x = row_[i];
            const Vec<T> l = quotient(load<1>(x + j));
            const Number<T> number = in_all_lanes(l);
            Vec<T> fresh[registers] = {};
#pragma GCC unroll 8
            for (int v = first; v < registers; ++v) fresh[v] = get(x, v) - product<false>(Rows<T>(u[v]), number);
            put(x, at, merged<j % lanes>(get(x, at), l, fresh[first == at ? at : registers - 1]));
#pragma GCC unroll 8
            for (int v = at + 1; v < registers; ++v) put(x, v, fresh[v]);
        }
    }

    alignas(16) T rows_[n * registers * lanes];
    T* row_[n];
};

// Returns false, and has not touched the matrix, where a pivot is so small that what is below it must be divided by it.
template <int n, bool divides, class T>
[[gnu::noinline]] bool factor_order(T* a, Int lda, Int* ipiv, Real<T> safe, Int& info)
{
    RowLu<T, n> lu(a, lda);
    info = lu.template factor<divides>(ipiv, safe);
    if (info < 0) return false;
    lu.write(a, lda);
    return true;
}

} // namespace ork::lapack
