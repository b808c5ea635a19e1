// SPDX-License-Identifier: MIT
// n = 2m real numbers by a complex transform of half the length: Z is the transform of z[j] = x[2j] + i x[2j+1].
//
// With b = Z[k] - conj(Z[m-k]) and g[k] = (1 - i exp(-2 pi i k / n))/2
//     X[k] = conj(Z[m-k]) + g[k] b,   X[m-k] = conj(Z[k] - g[k] b)        0 < k < m/2
//     X[0] = Re Z[0] + Im Z[0],   X[m] = Re Z[0] - Im Z[0],   X[m/2] = conj(Z[m/2]).
// That is the textbook's (Z[k] + conj(Z[m-k]))/2 - i exp(...)/2 b with the first term taken as conj(Z[m-k]) + b/2: nine
// operations on registers for two numbers instead of eleven, and as |g|^2 = (1 - sin(2 pi k / n))/2 is at most a half,
// smaller rounding errors. Taken as Z[k] - b/2 it would be seven, but |g|^2 = (1 + sin)/2 costs a tenth of the
// accuracy. As g[m-k] = conj(g[k]), the way back is the same with k and m-k exchanged, times 2.
#pragma once

#include "dft/plan.h"
#include "simd/complex.h"

namespace ork::dft {

// Where the half spectra of several transforms lie, in any layout.
template <class R>
struct Spectrum {
    R *re, *im; // X[k] of transform t for 0 < k < n/2 (odd n: <= n/2) at [t * distance + k * stride]
    std::int64_t stride, distance;
    R *first, *last;           // X[0] and, for even n, X[n/2] at [t * distance]
    R *zero_first, *zero_last; // their imaginary parts, or null where the layout has none

    Place<R> place() const { return {re, im, stride, distance}; }
};

namespace half_length {

template <class R>
[[gnu::always_inline]] inline Vec<R> conjugate(Vec<R> a)
{
    return conj(Vec<Complex<R>>{a}).v;
}

template <class R>
struct Pairs { // conj(q) + d and conj(p - d), d = g (p - conj(q))
    Vec<R> p, q;

    [[gnu::always_inline]] Pairs(Vec<R> a, Vec<R> b, Vec<R> g_re, Vec<R> g_im)
    {
        const Vec<R> mirror = conjugate(b), difference = a - mirror;
        const Vec<R> d = alternating_sum(difference * g_re, exchanged(difference) * g_im);
        p = mirror + d;
        q = conjugate(a - d);
    }
};

inline Vec<double> repeated_re(const Complex<double>* g) { return {_mm_loaddup_pd(&g->re)}; }
inline Vec<double> repeated_im(const Complex<double>* g) { return {_mm_loaddup_pd(&g->im)}; }
// Of two numbers at an address of the table that is a multiple of 16.
inline Vec<float> repeated_re(const Complex<float>* g) { return {_mm_moveldup_ps(_mm_load_ps(&g->re))}; }
inline Vec<float> repeated_im(const Complex<float>* g) { return {_mm_movehdup_ps(_mm_load_ps(&g->re))}; }

inline Vec<double> mirrored(Vec<double> a) { return a; }
inline Vec<float> mirrored(Vec<float> a)
{
    Vec<float> result;
    asm("pshufd $0x4e, %1, %0" : "=x"(result.v) : "x"(a.v));
    return result;
}

// `pairs` of numbers: one goes up from `up`, the other down from `down`, g up. In place when the destinations are equal
// to the sources.
template <Direction direction, bool scaled, class R>
void mix_line(std::int64_t pairs, const Complex<R>* g, R scale, const R* up, const R* down, R* up_out, R* down_out)
{
    constexpr int width = Vec<R>::lanes / 2;
    const Vec<R> factor = broadcast(scale);
    const auto mix = [&](Vec<R> low, Vec<R> high, Vec<R> g_re, Vec<R> g_im) {
        constexpr bool forward = direction == Direction::forward;
        Pairs<R> x(forward ? low : high, forward ? high : low, g_re, g_im);
        if (!forward) {
            const Vec<R> swap = x.p;
            x.p = x.q, x.q = swap;
        }
        if (scaled) x.p = x.p * factor, x.q = x.q * factor;
        return x;
    };
    std::int64_t i = 0;
#pragma GCC unroll 2
    for (; i + width <= pairs; i += width) {
        const R *u = up + 2 * i, *d = down - 2 * (i + width - 1);
        const Pairs<R> x = mix(load(u), mirrored(load(d)), repeated_re(g + i), repeated_im(g + i));
        store(up_out + 2 * i, x.p);
        store(down_out - 2 * (i + width - 1), mirrored(x.q));
    }
    if (i < pairs) { // one pair of float numbers
        const Pairs<R> x = mix(load<2>(up + 2 * i), load<2>(down - 2 * i), broadcast(g[i].re), broadcast(g[i].im));
        store<2>(up_out + 2 * i, x.p);
        store<2>(down_out - 2 * i, x.q);
    }
}

// The same pair of `count` transforms whose numbers stand side by side.
template <Direction direction, bool scaled, class R>
void mix_row(std::int64_t count, Complex<R> g, R scale, const R* up, const R* down, R* up_out, R* down_out)
{
    constexpr int width = Vec<R>::lanes / 2;
    const Vec<R> factor = broadcast(scale), g_re = broadcast(g.re), g_im = broadcast(g.im);
    if (direction == Direction::backward) {
        const R *swap = up, *const swap_out = up_out;
        up = down, down = swap;
        up_out = down_out, down_out = const_cast<R*>(swap_out);
    }
    const auto mix = [&](Vec<R> low, Vec<R> high) {
        Pairs<R> x(low, high, g_re, g_im);
        if (scaled) x.p = x.p * factor, x.q = x.q * factor;
        return x;
    };
    std::int64_t t = 0;
    for (; t + width <= count; t += width) {
        const Pairs<R> x = mix(load(up + 2 * t), load(down + 2 * t));
        store(up_out + 2 * t, x.p);
        store(down_out + 2 * t, x.q);
    }
    if (t < count) {
        const Pairs<R> x = mix(load<2>(up + 2 * t), load<2>(down + 2 * t));
        store<2>(up_out + 2 * t, x.p);
        store<2>(down_out + 2 * t, x.q);
    }
}

template <Direction direction, class R>
inline void mix_numbers(Complex<R> g, R scale, Complex<R>& low, Complex<R>& high)
{
    constexpr bool forward = direction == Direction::forward;
    Complex<R>&p = forward ? low : high, &q = forward ? high : low;
    const Complex<R> mirror = conj(q), d = g * (p - mirror);
    q = conj(p - d), p = mirror + d;
    if (scale != R(1)) p = scale * p, q = scale * q;
}

template <class R>
bool interleaved(const Place<R>& a)
{
    return a.im == a.re + 1;
}

// Pairs k, m - k for from <= k < to, 0 < k < m/2; `scale` has the backward direction's 2 in it.
template <Direction direction, bool scaled, class R>
void mix(std::int64_t m, const Complex<R>* g, R scale, const Place<R>& in, const Place<R>& out, std::int64_t count,
         std::int64_t from, std::int64_t to)
{
    if (interleaved(in) && interleaved(out)) {
        if (in.stride == 2 && out.stride == 2) {
            for (std::int64_t t = 0; t < count; ++t) {
                const R* x = in.re + t * in.distance;
                R* y = out.re + t * out.distance;
                mix_line<direction, scaled>(to - from, g + from - 1, scale, x + 2 * from, x + 2 * (m - from),
                                            y + 2 * from, y + 2 * (m - from));
            }
            return;
        }
        if (in.distance == 2 && out.distance == 2) {
            for (std::int64_t k = from; k < to; ++k)
                mix_row<direction, scaled>(count, g[k - 1], scale, in.re + k * in.stride, in.re + (m - k) * in.stride,
                                           out.re + k * out.stride, out.re + (m - k) * out.stride);
            return;
        }
    }
    for (std::int64_t t = 0; t < count; ++t)
        for (std::int64_t k = from; k < to; ++k) {
            const std::int64_t low = t * in.distance + k * in.stride, high = t * in.distance + (m - k) * in.stride;
            Complex<R> a(in.re[low], in.im[low]), b(in.re[high], in.im[high]);
            mix_numbers<direction>(g[k - 1], scaled ? scale : R(1), a, b);
            const std::int64_t low_out = t * out.distance + k * out.stride;
            const std::int64_t high_out = t * out.distance + (m - k) * out.stride;
            out.re[low_out] = a.re, out.im[low_out] = a.im;
            out.re[high_out] = b.re, out.im[high_out] = b.im;
        }
}

// X[0], X[m] and X[m/2] from Z, in place too.
template <class R>
void ends_forward(std::int64_t m, R scale, const Place<R>& z, const Spectrum<R>& x, std::int64_t count)
{
    for (std::int64_t t = 0; t < count; ++t) {
        const std::int64_t from = t * z.distance, to = t * x.distance;
        R sum = z.re[from] + z.im[from], difference = z.re[from] - z.im[from];
        if (scale != R(1)) sum = scale * sum, difference = scale * difference;
        if (m % 2 == 0) {
            const std::int64_t k = from + m / 2 * z.stride, k_out = to + m / 2 * x.stride;
            Complex<R> middle = conj(Complex<R>(z.re[k], z.im[k]));
            if (scale != R(1)) middle = scale * middle;
            x.re[k_out] = middle.re, x.im[k_out] = middle.im;
        }
        x.first[to] = sum;
        x.last[to] = difference;
        if (x.zero_first != nullptr) x.zero_first[to] = x.zero_last[to] = 0;
    }
}

// Z[0] and Z[m/2] from X, in place too; `scale` has no 2 in it.
template <class R>
void ends_backward(std::int64_t m, R scale, const Spectrum<R>& x, const Place<R>& z, std::int64_t count)
{
    for (std::int64_t t = 0; t < count; ++t) {
        const std::int64_t from = t * x.distance, to = t * z.distance;
        const R first = x.first[from], last = x.last[from];
        Complex<R> zero(first + last, first - last);
        if (scale != R(1)) zero = scale * zero;
        if (m % 2 == 0) {
            const std::int64_t k = from + m / 2 * x.stride, k_out = to + m / 2 * z.stride;
            const Complex<R> middle = (2 * scale) * conj(Complex<R>(x.re[k], x.im[k]));
            z.re[k_out] = middle.re, z.im[k_out] = middle.im;
        }
        z.re[to] = zero.re, z.im[to] = zero.im;
    }
}

} // namespace half_length

// Pairs from <= k < to of X from Z; sources and destinations are the same places or apart.
template <class R>
void postprocess(std::int64_t m, const Complex<R>* g, R scale, const Place<R>& z, const Spectrum<R>& x,
                 std::int64_t count, std::int64_t from, std::int64_t to)
{
    if (scale == R(1))
        half_length::mix<Direction::forward, false>(m, g, scale, z, x.place(), count, from, to);
    else
        half_length::mix<Direction::forward, true>(m, g, scale, z, x.place(), count, from, to);
}
// The whole of it.
template <class R>
void postprocess(std::int64_t m, const Complex<R>* g, R scale, const Place<R>& z, const Spectrum<R>& x,
                 std::int64_t count)
{
    postprocess(m, g, scale, z, x, count, 1, (m - 1) / 2 + 1);
    half_length::ends_forward(m, scale, z, x, count);
}

// Z from X.
template <class R>
void preprocess(std::int64_t m, const Complex<R>* g, R scale, const Spectrum<R>& x, const Place<R>& z,
                std::int64_t count, std::int64_t from, std::int64_t to)
{
    half_length::mix<Direction::backward, true>(m, g, 2 * scale, x.place(), z, count, from, to);
}
template <class R>
void preprocess(std::int64_t m, const Complex<R>* g, R scale, const Spectrum<R>& x, const Place<R>& z,
                std::int64_t count)
{
    half_length::ends_backward(m, scale, x, z, count);
    preprocess(m, g, scale, x, z, count, 1, (m - 1) / 2 + 1);
}

} // namespace ork::dft
