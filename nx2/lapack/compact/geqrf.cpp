// SPDX-License-Identifier: MIT
// A = Q R by LAPACK's reflectors. Lanes have different columns, so every choice is a mask: in the lanes of a register
// whose sum of squares may have overflowed or lost digits, the column is scaled by a power of two, which changes no
// other bits.
#include "lapack/compact/tile.h"

namespace ork::lapack {
namespace {

inline Vec<double> power_of_two(int exponent, double)
{
    return {_mm_castsi128_pd(_mm_set1_epi64x(Int(exponent + 1023) << 52))};
}
inline Vec<float> power_of_two(int exponent, float)
{
    return {_mm_castsi128_ps(_mm_set1_epi32((exponent + 127) << 23))};
}
// 2^-e for x = 1.f 2^e, and 2^e; x is a normal number well below the largest.
inline void scale_for(Vec<double> x, Vec<double>& down, Vec<double>& up)
{
    const __m128i e = _mm_and_si128(_mm_castpd_si128(x.v), _mm_set1_epi64x(Int(2047) << 52));
    up = {_mm_castsi128_pd(e)};
    down = {_mm_castsi128_pd(_mm_sub_epi64(_mm_set1_epi64x(Int(2046) << 52), e))};
}
inline void scale_for(Vec<float> x, Vec<float>& down, Vec<float>& up)
{
    const __m128i e = _mm_and_si128(_mm_castps_si128(x.v), _mm_set1_epi32(255 << 23));
    up = {_mm_castsi128_ps(e)};
    down = {_mm_castsi128_ps(_mm_sub_epi32(_mm_set1_epi32(254 << 23), e))};
}

inline Vec<double> with_sign(Vec<double> magnitude, Vec<double> of)
{
    return {_mm_or_pd(magnitude.v, _mm_and_pd(of.v, _mm_set1_pd(-0.0)))};
}
inline Vec<float> with_sign(Vec<float> magnitude, Vec<float> of)
{
    return {_mm_or_ps(magnitude.v, _mm_and_ps(of.v, _mm_set1_ps(-0.0f)))};
}
inline Vec<double> larger(Vec<double> a, Vec<double> b) { return select(above(a, b), a, b); }
inline Vec<float> larger(Vec<float> a, Vec<float> b) { return select(above(a, b), a, b); }

template <class R>
inline void add_square(Vec<R>& sum, Lanes<R> a)
{
    sum = sum + a.x * a.x;
}
template <class R>
inline void add_square(Vec<R>& sum, Lanes<Complex<R>> a)
{
    sum = sum + a.re * a.re;
    sum = sum + a.im * a.im;
}
template <class R>
inline Vec<R> largest_part(Lanes<R> a)
{
    return abs(a.x);
}
template <class R>
inline Vec<R> largest_part(Lanes<Complex<R>> a)
{
    return larger(abs(a.re), abs(a.im));
}
template <class R>
inline Vec<R>& real_part(Lanes<R>& a)
{
    return a.x;
}
template <class R>
inline Vec<R>& real_part(Lanes<Complex<R>>& a)
{
    return a.re;
}

// The reflector of column `a` of `length` elements: v below the first place, beta in it; tau.
template <class T>
Lanes<T> reflector(const Matrix<Real<T>>& a, Int length)
{
    using R = Real<T>;
    using V = Vec<R>;
    // Squares below the least normal number then lie 2^-36 (2^-62) and more below the sum.
    constexpr int low = sizeof(R) == 4 ? -90 : -960, high = sizeof(R) == 4 ? 124 : 1020;
    Lanes<T> alpha = Lanes<T>::at(a, 0, 0);
    V rest{};
    if constexpr (is_complex<T>) rest = alpha.im * alpha.im;
    for (Int i = 1; i < length; ++i) add_square(rest, Lanes<T>::at(a, i, 0));
    V total = rest + real_part(alpha) * real_part(alpha);

    const V one = broadcast(R(1));
    V down = one, up = one, zero{};
    const V small = above(power_of_two(low, R()), rest), large = above(total, power_of_two(high, R()));
    const V wanted = either(small, large);
    const bool scaled = signs(wanted) != 0;
    if (scaled) {
        V most{};
        if constexpr (is_complex<T>) most = abs(alpha.im);
        for (Int i = 1; i < length; ++i) most = larger(largest_part(Lanes<T>::at(a, i, 0)), most);
        zero = is_zero(most);
        most = larger(most, abs(real_part(alpha)));
        // From the least normal number to a quarter of the largest: powers of both signs exist.
        const V least = power_of_two(sizeof(R) == 4 ? -126 : -1022, R());
        const V top = power_of_two(sizeof(R) == 4 ? 126 : 1022, R());
        most = larger(most, least);
        most = select(above(most, top), top, most);
        V wanted_down, wanted_up;
        scale_for(most, wanted_down, wanted_up);
        down = select(wanted, wanted_down, one);
        up = select(wanted, wanted_up, one);
        alpha = alpha * down;
        V again{};
        if constexpr (is_complex<T>) again = alpha.im * alpha.im;
        for (Int i = 1; i < length; ++i) add_square(again, Lanes<T>::at(a, i, 0) * down);
        total = again + real_part(alpha) * real_part(alpha);
    }
    const V x = real_part(alpha);
    const V beta = negated(with_sign(root(total), x));
    Lanes<T> tau, factor, gap = alpha;
    real_part(gap) = select(zero, one, x - beta);
    const V divisor = select(zero, one, beta);
    real_part(tau) = select(zero, V{}, (beta - x) / divisor);
    if constexpr (is_complex<T>) tau.im = select(zero, V{}, negated(alpha.im / divisor));
    factor = reciprocal(gap);
    for (Int i = 1; i < length; ++i) {
        Lanes<T> element = Lanes<T>::at(a, i, 0);
        if (scaled) element = element * down;
        (element * factor).put(a.at(i, 0), a.imaginary);
    }
    Lanes<T> corner;
    real_part(corner) = select(zero, x, beta) * up;
    corner.put(a.data, a.imaginary);
    return tau;
}

// H^H a for `columns` columns: w = a(0) + v^H a(1 ...), a -= (1, v) conj(tau) w.
template <int columns, class T>
void reflect(const Matrix<Real<T>>& v, const Matrix<Real<T>>& a, Int length, Lanes<T> tau)
{
    using R = Real<T>;
    Lanes<T> w[columns];
#pragma GCC unroll 8
    for (int c = 0; c < columns; ++c) w[c] = Lanes<T>::at(a, 0, c);
    const R *at_v = v.data, *at_a = a.data;
    for (Int i = 1; i < length; ++i) {
        at_v += v.row_stride, at_a += a.row_stride;
        const Lanes<T> x = Lanes<T>::get(at_v, v.imaginary);
#pragma GCC unroll 8
        for (int c = 0; c < columns; ++c)
            w[c].template add_product<true, false>(x, Lanes<T>::get(at_a + c * a.column_stride, a.imaginary));
    }
    if constexpr (is_complex<T>) tau.im = negated(tau.im);
#pragma GCC unroll 8
    for (int c = 0; c < columns; ++c) {
        w[c] = tau * w[c];
        (Lanes<T>::at(a, 0, c) - w[c]).put(a.at(0, c), a.imaginary);
    }
    at_v = v.data;
    R* to = a.data;
    for (Int i = 1; i < length; ++i) {
        at_v += v.row_stride, to += a.row_stride;
        const Lanes<T> x = Lanes<T>::get(at_v, v.imaginary);
#pragma GCC unroll 8
        for (int c = 0; c < columns; ++c) {
            R* p = to + c * a.column_stride;
            Lanes<T> element = Lanes<T>::get(p, a.imaginary);
            element.template subtract_product<false>(x, w[c]);
            element.put(p, a.imaginary);
        }
    }
}

template <class T>
void factor(const Shape& shape, Int m, Int n, Real<T>* data, Int lda, Real<T>* data_tau)
{
    using R = Real<T>;
    constexpr int side = is_complex<T> ? 2 : 4; // columns that a reflector meets at a time
    if (m <= 0 || n <= 0) return;
    const Int least = m < n ? m : n;
    const auto array = shape.array<T>(data, lda, m, n);
    const compact::Packs<T, R> taus{data_tau, least, 1, shape.width};
    in_groups<T>(shape, m * n, [&](const Group& group) {
        Matrix<R> a[slices_together], tau[slices_together];
        for (int g = 0; g < group.count; ++g) {
            const auto [pack, lane] = group.slices[g];
            a[g] = array.matrix(pack, lane, shape.rows()), tau[g] = taus.matrix(pack, lane, false);
        }
        for (Int j = 0; j < least; ++j) {
            Lanes<T> t[slices_together];
            for (int g = 0; g < group.count; ++g) {
                t[g] = reflector<T>(a[g].from(j, j), m - j);
                t[g].put(tau[g].at(j, 0), tau[g].imaginary);
            }
            in_tiles<side>(j + 1, n, [&]<int columns>(Int k) {
                for (int g = 0; g < group.count; ++g)
                    reflect<columns, T>(a[g].from(j, j), a[g].from(j, k), m - j, t[g]);
            });
        }
    });
}

} // namespace

ORK_LAPACK_EXPORT(geqrf_compact_ps)
(const Int* layout, const Int* m, const Int* n, R* a, const Int* lda, R* tau, R* work, const Int* lwork, Int* info,
 const Int* format, const Int* nmat)
{
    *info = 0;
    if (*lwork == -1)
        work[0] = R(1);
    else
        factor<T>(Shape::of<R>(*layout, *format, *nmat), *m, *n, a, *lda, tau);
}

} // namespace ork::lapack
