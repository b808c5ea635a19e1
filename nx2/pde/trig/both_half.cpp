// SPDX-License-Identifier: MIT
// Types 4 and 5.
//
// Even n, m = n/2: with t[j] = exp(-pi i (8j+1) / 8n) and U the complex transform of length m of
// u[j] = t[j] (x[2j] + i x[n-1-2j]), w = t[k] U[k] has the sum of cosines Re w at 2k and -Im w at n-1-2k. U is A + i B
// of real transforms A, B of real and imaginary parts of u, and conj(A) + i conj(B) at m-k.
//
// Odd n (Chan and Ho, Fast algorithms for computing the discrete cosine transform, 1992): the sum is that over all odd
// a of a period of 8n, x(a) = x(-a) = -x(4n-a), divided by 4; a = n^2 + 8j takes one of four that are equal, and with
// b = 2k+1 it is the real part of exp(-pi i n b / 4) G[b mod n], G the transform of x(n^2 + 8j): no factors but
// sqrt(1/2).
//
// Sines are cosines of the numbers in the other order, odd results negated.
#include "frame/core_imports.h"
#include "pde/trig/half_sample.h"
#include "pde/trig/lanes.h"
#include "pde/trig/roots.h"

namespace ork::pde {
namespace {

template <class R, bool sine>
class EvenBothHalf {
public:
    EvenBothHalf(const TrigPlan<R>& plan, R factor, R* f, R* work)
        : plan_(plan), f_(f), a_(work), b_(work + distance(plan.n / 2)), n_(plan.n), m_(plan.n / 2), cos_(plan.table),
          sin_(plan.table + m_), factor_(2 * factor)
    {
    }

    Int run()
    {
        in_lanes<R>(0, m_, [&](Int j, auto v) {
            using V = decltype(v);
            V even, odd, low, high;
            get_pairs(f_ + 2 * j, even, odd);
            get_pairs_down(f_ + n_ - 2 - 2 * j, low, high);
            const V re = sine ? high : even, im = sine ? even : high;
            const V c = get<V>(cos_ + j), s = get<V>(sin_ + j);
            put(a_ + j, re * c + im * s);
            put(b_ + j, im * c - re * s);
        });
        if (const Int status = ork_dft_dfticomputeforward(plan_.dft, a_)) return status;
        if (const Int status = ork_dft_dfticomputeforward(plan_.dft, b_)) return status;
        const Int shift = m_ % 2 == 0 ? 0 : 1;
        in_lanes<R>(1, (m_ - 1) / 2 + 1, [&](Int k, auto v) {
            using V = decltype(v);
            V a_re, a_im, b_re, b_im;
            get_pairs(a_ + 2 * k - shift, a_re, a_im);
            get_pairs(b_ + 2 * k - shift, b_re, b_im);
            const Turned<V> up(a_re - b_im, a_im + b_re, get<V>(cos_ + k), get<V>(sin_ + k), factor_);
            const Turned<V> down(a_re + b_im, b_re - a_im, get_down<V>(cos_ + m_ - k), get_down<V>(sin_ + m_ - k),
                                 factor_);
            put_pairs(f_ + 2 * k - 1, down.odd, up.even);
            put_pairs_down(f_ + n_ - 1 - 2 * k, up.odd, down.even);
        });
        single(0, a_[0], b_[0]);
        if (m_ % 2 == 0) single(m_ / 2, a_[1], b_[1]);
        return 0;
    }

    static Int distance(Int m)
    {
        constexpr Int line = 64 / sizeof(R);
        return (m / line + 2) * line;
    }

private:
    template <class V>
    struct Turned { // results 2k and n-1-2k
        V even, odd;
        [[gnu::always_inline]] Turned(V re, V im, V c, V s, R factor)
            : even((re * c + im * s) * all<V>(factor)), odd((re * s - im * c) * all<V>(factor))
        {
            if (sine) odd = negated(odd);
        }
    };

    void single(Int k, R re, R im)
    {
        const Turned<R> w(re, im, cos_[k], sin_[k], factor_);
        f_[2 * k] = w.even, f_[n_ - 1 - 2 * k] = w.odd;
    }

    const TrigPlan<R>& plan_;
    R *f_, *a_, *b_;
    Int n_, m_;
    const R *cos_, *sin_; // of pi (8j+1) / 8n
    R factor_;
};

// x(n n + 8j) in a walk through the quarters of the period, from the one in which n n lies.
template <class R, bool sine>
void walk(Int n, const R* f, R* g)
{
    constexpr Int up = sine ? -4 : 4;
    Int a = n % 8 * n; // n n modulo 8 n
    const R* const end = g + n;
    for (Int quarter = a / (2 * n); g < end; quarter = (quarter + 1) % 4) {
        const Int to = 2 * n * (quarter + 1), from_begin = (quarter % 2 == 0 ? a - (to - 2 * n) : to - a) / 2;
        const R* x = f + (sine ? n - 1 - from_begin : from_begin);
        const Int step = quarter % 2 == 0 ? up : -up;
        Int steps = (to - a + 7) / 8;
        if (steps > end - g) steps = end - g;
        a += 8 * steps;
        if (quarter == 3) a -= 8 * n;
        const bool negative = quarter == 1 || quarter == 2;
        for (; steps >= Vec<R>::lanes; steps -= Vec<R>::lanes, x += step * Vec<R>::lanes, g += Vec<R>::lanes) {
            const Vec<R> values = gathered(x, step);
            store(g, negative ? negated(values) : values);
        }
        for (; steps > 0; --steps, x += step) *g++ = negative ? -*x : *x;
    }
}

template <class R, bool sine>
Int odd_both_half(const TrigPlan<R>& plan, R factor, R* f, R* work)
{
    const Int n = plan.n, middle = (n - 1) / 2;
    walk<R, sine>(n, f, work);
    if (const Int status = ork_dft_dfticomputeforward(plan.dft, work)) return status;

    // exp(-pi i n (2k+1) / 4) times sqrt(2), and the sign of a sine, from k modulo 4 on.
    R cosines[8], sines[8];
    for (Int k = 0; k < 8; ++k) {
        const Int eighth = n % 8 * (2 * k + 1) % 8;
        const R size = R(1.41421356237309504880L) * factor * R(sine && k % 2 != 0 ? -1 : 1);
        cosines[k] = eighth == 1 || eighth == 7 ? size : -size;
        sines[k] = eighth == 1 || eighth == 3 ? -size : size;
    }
    // n-1-k has the conjugate of G and of the turn, times -i.
    const auto put_results = [&](Int k, auto re, auto im) {
        using V = decltype(re);
        const V c = get<V>(cosines + k % 4), s = get<V>(sines + k % 4);
        put(f + k, re * c - im * s);
        put_down(f + n - 1 - k, negated(re * s + im * c));
    };
    const Int below = (middle + 1) / 2; // 2k+1 <= middle
    in_lanes<R>(0, below, [&](Int k, auto v) {
        decltype(v) re, im;
        get_pairs_apart(work + 4 * k + 1, 4, re, im);
        put_results(k, re, im);
    });
    in_lanes<R>(below, middle, [&](Int k, auto v) {
        decltype(v) re, im;
        get_pairs_apart(work + 2 * (n - 2 * k - 1) - 1, -4, re, im);
        put_results(k, re, negated(im));
    });
    f[middle] = work[0] * cosines[middle % 4];
    return 0;
}

template <class R, bool sine>
Int of_parity(const TrigPlan<R>& plan, R factor, R* f, R* work)
{
    return plan.n % 2 == 0 ? EvenBothHalf<R, sine>(plan, factor, f, work).run()
                           : odd_both_half<R, sine>(plan, factor, f, work);
}

} // namespace

template <class R>
void make_both_half_table(Int n, R* table)
{
    if (n % 2 != 0) return;
    const Roots roots(16 * n);
    for (Int j = 0; j < n / 2; ++j) {
        const Complex<long double> z = roots[8 * j + 1];
        table[j] = static_cast<R>(z.re);
        table[n / 2 + j] = static_cast<R>(-z.im);
    }
}

template <class R>
Int both_half_transform(const TrigPlan<R>& plan, R factor, R* f, R* work)
{
    return plan.type == 5 ? of_parity<R, true>(plan, factor, f, work) : of_parity<R, false>(plan, factor, f, work);
}

#define INSTANTIATE(R)                                                                                                 \
    template void make_both_half_table(Int, R*);                                                                       \
    template Int both_half_transform(const TrigPlan<R>&, R, R*, R*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::pde
