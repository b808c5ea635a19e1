// SPDX-License-Identifier: MIT
// Straight-line real transforms: a complex kernel of half the length, and the steps of half_length.h with constants of
// the program.
#pragma once

#include "dft/lengths/kernel.h"
#include "dft/real/small.h"
#include "dft/real/small_coprime.h"
#include "dft/real/small_odd.h"

namespace ork::dft {

template <class R, int m, Direction direction>
[[gnu::always_inline]] inline void half_transform(const R* in, R* out)
{
    if constexpr (sizeof(R) == 8)
        one_a_register<m, direction>(in, out);
    else if constexpr (m % 2 == 0)
        two_a_register<m, direction>(in, out);
    else
        length_kernel<R, m, direction>(in, out, nullptr, nullptr);
}

// conj(q) + d and conj(p - d), d = g[k] (p - conj(q)), of one number each; of float also k + 1 in the upper half.
template <class R, int n, int k>
[[gnu::always_inline]] inline half_length::Pairs<R> mixed(Vec<R> p, Vec<R> q)
{
    struct G {
        R re, im;
    };
    constexpr auto g = [](Root<long double> w) -> G {
        return {static_cast<R>((1 - w.sin) / 2), static_cast<R>(w.cos / -2)};
    };
    constexpr G first = g(root<long double, n, k>), second = g(root<long double, n, k + 1>);
    if constexpr (sizeof(R) == 8)
        return {p, q, broadcast(first.re), broadcast(first.im)};
    else
        return {p,
                q,
                {_mm_setr_ps(first.re, first.re, second.re, second.re)},
                {_mm_setr_ps(first.im, first.im, second.im, second.im)}};
}

// Two float numbers, by halves where the transform of length m has stored them so: a whole register would have to wait
// until both stores are in the cache.
template <int m>
inline Vec<float> load_two(const float* p)
{
    if constexpr (m % 4 == 0) return load_aligned(p);
    const __m128 low = load_low(p).v;
    return {_mm_loadh_pi(low, reinterpret_cast<const __m64*>(p + 2))};
}

// The lower half of one register and the upper one of another.
inline Vec<float> halves(Vec<float> low, Vec<float> high) { return {_mm_shuffle_ps(low.v, high.v, 0xe4)}; }

// Float numbers come two a register when m is even. Then k = 2i and 2i + 1 go with m - 2i and m - 2i - 1, where Z[m] is
// Z[0]; the pair 0 gives X[0] and X[m] with imaginary parts of zero.
template <class R, int n>
inline constexpr bool by_twos = sizeof(R) == 4 && n % 4 == 0;

template <int n>
[[gnu::always_inline]] inline void small_pairs_forward(const float* z, const Spectrum<float>& x)
{
    constexpr int m = n / 2;
    float* const body = x.re;
    unrolled<(m + 2) / 4>([&](auto i) ORK_INLINE_LAMBDA {
        const Vec<float> high =
            halves(load_two<m>(z + (i == 0 ? 0 : 2 * m - 4 * i)), load_two<m>(z + 2 * m - 4 * i - 4));
        const auto pair = mixed<float, n, 2 * i>(load_two<m>(z + 4 * i), high);
        const Vec<float> up = pair.p, down = half_length::mirrored(pair.q); // down: m - 2i - 1, m - 2i
        if constexpr (i == 0) {
            *x.first = lane(up, 0), *x.last = lane(pair.q, 0);
            if constexpr (m > 2) store<2>(body + 2, Vec<float>{_mm_movehl_ps(up.v, up.v)});
            store<2>(body + 2 * m - 2, down);
        } else {
            store(body + 4 * i, up);
            store(body + 2 * m - 4 * i - 2, down);
        }
    });
}

template <class R, int n>
[[gnu::always_inline]] inline void small_singles_forward(const R* z, const Spectrum<R>& x)
{
    constexpr int m = n / 2;
    R *const body = x.re, first = z[0] + z[1], last = z[0] - z[1];
    unrolled<(m - 1) / 2>([&](auto i) ORK_INLINE_LAMBDA {
        constexpr int k = i + 1;
        const auto pair = mixed<R, n, k>(load_number(z + 2 * k), load_number(z + 2 * (m - k)));
        store<2>(body + 2 * k, pair.p);
        store<2>(body + 2 * (m - k), pair.q);
    });
    if constexpr (m % 2 == 0) store<2>(body + m, conj(Vec<Complex<R>>{load_number(z + m)}).v);
    *x.first = first, *x.last = last;
}

// Kernels begin with a line of the instruction cache: 48 bytes behind one, that of 64 numbers took 1.4 times as long
// between the loops of a caller.
template <class R, int n>
[[gnu::aligned(64)]] void even_kernel_forward(R scale, const R* in, const Spectrum<R>& x)
{
    if constexpr (goes_without_twiddles(n)) return coprime_forward<R, n>(scale, in, x);
    constexpr int m = n / 2;
    alignas(16) R z[2 * m];
    half_transform<R, m, Direction::forward>(in, z);
    if constexpr (by_twos<R, n>) {
        small_pairs_forward<n>(z, x);
        if constexpr (m % 4 == 0) store<2>(x.re + m, conj(Vec<Complex<R>>{load_low(z + m)}).v);
    } else {
        small_singles_forward<R, n>(z, x);
    }
    if (x.zero_first != nullptr) *x.zero_first = *x.zero_last = 0;
    if (scale != R(1)) {
        *x.first *= scale, *x.last *= scale;
        R* const body = x.re;
        for (int i = 2; i < 2 * m; i += 2) store<2>(body + i, load_number(body + i) * broadcast(scale));
    }
}

template <class R, int n>
[[gnu::aligned(64)]] void even_kernel_backward(R scale, const Spectrum<R>& x, R* out)
{
    if constexpr (goes_without_twiddles(n)) return coprime_backward<R, n>(scale, x, out);
    constexpr int m = n / 2;
    alignas(16) R z[2 * m];
    const R *const body = x.re, first = *x.first, last = *x.last;
    const Vec<R> twice = broadcast(2 * scale);
    [[maybe_unused]] const auto middle = [=]() ORK_INLINE_LAMBDA {
        return conj(Vec<Complex<R>>{load_number(body + m)}).v * twice;
    };
    if constexpr (by_twos<R, n>) {
        constexpr int count = (m + 2) / 4;
        Vec<R> above = {}; // m - 2i + 2 below, m - 2i + 1 above: of the pairs before
        unrolled<count>([&](auto i) ORK_INLINE_LAMBDA {
            Vec<R> low, high;
            if constexpr (i == 0) {
                low = load<2>(body + 2), high = load<2>(body + 2 * m - 2);
            } else {
                low = load(body + 4 * i), high = half_length::mirrored(load(body + 2 * m - 4 * i - 2));
            }
            const auto pair = mixed<R, n, 2 * i>(high, low);
            const Vec<R> up = pair.q * twice, down = pair.p * twice;
            if constexpr (i == 0) {
                const Vec<R> zero = together(scale * (first + last), scale * (first - last));
                store_aligned(z, halves(zero, up));
            } else {
                store_aligned(z + 4 * i, up);
                store_aligned(z + 2 * m - 4 * i, halves(down, above));
            }
            above = down;
        });
        if constexpr (m % 4 == 0) store_aligned(z + m, halves(middle(), above));
    } else {
        unrolled<(m - 1) / 2>([&](auto i) ORK_INLINE_LAMBDA {
            constexpr int k = i + 1;
            const auto pair = mixed<R, n, k>(load_number(body + 2 * (m - k)), load_number(body + 2 * k));
            store<2>(z + 2 * (m - k), pair.p * twice);
            store<2>(z + 2 * k, pair.q * twice);
        });
        if constexpr (m % 2 == 0) store<2>(z + m, middle());
        store<2>(z, together(scale * (first + last), scale * (first - last)));
    }
    half_transform<R, m, Direction::backward>(z, out);
}

template <class R, int n>
[[gnu::aligned(64)]] void odd_kernel_forward(R scale, const R* in, const Spectrum<R>& x)
{
    R *const body = x.re, *const first = x.first;
    odd_real_dft<n>(in, [=](int k, Vec<R> value) ORK_INLINE_LAMBDA {
        if (k == 0)
            *first = lane(value, 0);
        else
            store<2>(body + 2 * k, value);
    });
    if (x.zero_first != nullptr) *x.zero_first = 0;
    if (scale != R(1)) {
        *x.first *= scale;
        for (int i = 2; i < n; i += 2) store<2>(x.re + i, load_number(x.re + i) * broadcast(scale));
    }
}

template <class R, int n>
[[gnu::aligned(64)]] void odd_kernel_backward(R scale, const Spectrum<R>& x, R* out)
{
    const R *const body = x.re, *const first = x.first;
    odd_real_inverse<n>(
        [=](int k) ORK_INLINE_LAMBDA { return k == 0 ? together(*first, R(0)) : load_number(body + 2 * k); }, out);
    if (scale != R(1))
        for (int i = 0; i < n; ++i) out[i] *= scale;
}

// Lengths 2 i and 2 i + 1 of one precision; the first pair is not used.
template <class R, class = std::make_integer_sequence<int, longest_small_real / 2>>
struct SmallTable;
template <class R, int... i>
struct SmallTable<R, std::integer_sequence<int, i...>> {
    static constexpr SmallForward<R> even_forward[] = {nullptr, even_kernel_forward<R, 2 * i + 2>...};
    static constexpr SmallBackward<R> even_backward[] = {nullptr, even_kernel_backward<R, 2 * i + 2>...};
    static constexpr SmallForward<R> odd_forward[] = {odd_kernel_forward<R, 2 * i + 1>...};
    static constexpr SmallBackward<R> odd_backward[] = {odd_kernel_backward<R, 2 * i + 1>...};
};

} // namespace ork::dft
