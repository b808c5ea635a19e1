// SPDX-License-Identifier: MIT
#include "pde/trig/grid_rows.h"

#include "frame/core_imports.h"
#include "pde/trig/lanes.h"
#include "pde/trig/roots.h"

namespace ork::pde {
namespace {

// E and O for m = 2, 4, 8; `c` and `s` are overwritten by them.
constexpr double root_half = 0.70710678118654752440, cos_8 = 0.92387953251128675613, sin_8 = 0.38268343236508977173;

template <class V>
[[gnu::always_inline]] inline void cosines(V (&c)[3])
{
    const V sum = c[0] + c[2];
    const V e1 = c[0] - c[2];
    c[0] = sum + c[1], c[2] = sum - c[1], c[1] = e1;
}
template <class V>
[[gnu::always_inline]] inline void cosines(V (&c)[5])
{
    using R = typename LanesOf<V>::number;
    V even[3] = {c[0] + c[4], c[1] + c[3], c[2]};
    const V b = c[0] - c[4], d = all<V>(R(root_half)) * (c[1] - c[3]);
    cosines(even);
    c[0] = even[0], c[2] = even[1], c[4] = even[2];
    c[1] = b + d, c[3] = b - d;
}
template <class V>
[[gnu::always_inline]] inline void cosines(V (&c)[9])
{
    using R = typename LanesOf<V>::number;
    V even[5] = {c[0] + c[8], c[1] + c[7], c[2] + c[6], c[3] + c[5], c[4]};
    const V b0 = c[0] - c[8], b1 = c[1] - c[7], b2 = all<V>(R(root_half)) * (c[2] - c[6]), b3 = c[3] - c[5];
    const V outer = all<V>(R(cos_8)) * b1 + all<V>(R(sin_8)) * b3,
            inner = all<V>(R(sin_8)) * b1 - all<V>(R(cos_8)) * b3;
    cosines(even);
    c[0] = even[0], c[2] = even[1], c[4] = even[2], c[6] = even[3], c[8] = even[4];
    const V sum = b0 + b2, difference = b0 - b2;
    c[1] = sum + outer, c[7] = sum - outer;
    c[3] = difference + inner, c[5] = difference - inner;
}

template <class V>
[[gnu::always_inline]] inline void sines(V (&)[2])
{
}
template <class V>
[[gnu::always_inline]] inline void sines(V (&s)[4])
{
    using R = typename LanesOf<V>::number;
    const V sum = all<V>(R(root_half)) * (s[1] + s[3]), o2 = s[1] - s[3];
    s[1] = sum + s[2], s[3] = sum - s[2], s[2] = o2;
}
template <class V>
[[gnu::always_inline]] inline void sines(V (&s)[8])
{
    using R = typename LanesOf<V>::number;
    V even[4] = {s[0], s[1] - s[7], s[2] - s[6], s[3] - s[5]};
    const V t1 = s[1] + s[7], t2 = all<V>(R(root_half)) * (s[2] + s[6]), t3 = s[3] + s[5], t4 = s[4];
    const V u = all<V>(R(sin_8)) * t1 + all<V>(R(cos_8)) * t3, w = all<V>(R(cos_8)) * t1 - all<V>(R(sin_8)) * t3;
    sines(even);
    s[2] = even[1], s[4] = even[2], s[6] = even[3];
    const V v = t2 + t4, x = t2 - t4;
    s[1] = u + v, s[7] = u - v;
    s[3] = w + x, s[5] = w - x;
}

// Blocks of `lanes` k from 1 on; a block has, row after row from 1 to m, the real parts and the imaginary parts.
template <class R>
const R* factors(const R* table, Int m, Int k)
{
    constexpr Int lanes = Vec<R>::lanes;
    return table + (k - 1) / lanes * (2 * m * lanes) + (k - 1) % lanes;
}

template <class R, bool sine, int m>
class Rows {
public:
    Rows(const TrigPlan<R>& plan, R factor, R* f, R* work)
        : table_(plan.table), f_(f), work_(work), n_(plan.n), length_(plan.n / m), distance_(grid_distance<R>(length_)),
          factor_(factor)
    {
    }

    // The rows stay in registers when everything is expanded here; stores through vectors would have them read again.
    static Int run(const TrigPlan<R>& plan, R factor, R* f, R* work)
    {
        Rows rows(plan, factor, f, work);
        rows.gather();
        const Int length = rows.length_, half = length / 2;
        for (Int q = 0; q <= m; ++q) {
            R* const row = rows.row(q);
            if (const Int status = ork_dft_dfticomputeforward(plan.dft, row)) return status;
            if (length % 2 == 0) row[length] = row[1], row[length + 1] = 0; // in line with the others
        }
        in_lanes<R>(
            1, half + 1, [&](Int k, auto v) __attribute__((always_inline)) { rows.template combine<decltype(v)>(k); });
        rows.begin();
        return 0;
    }

private:
    static constexpr int lanes = Vec<R>::lanes, radix = 2 * m;

    R* row(Int q) const { return work_ + q * distance_; }
    R extended(Int i) const
    {
        if (sine && (i == 0 || i == n_)) return 0;
        return i <= n_ ? f_[i] : sine ? -f_[2 * n_ - i] : f_[2 * n_ - i];
    }

    [[gnu::always_inline]] void gather()
    {
        const Int blocks = n_ / radix / lanes * lanes;
        Vec<R> before = {}; // row 0 of the block before
        for (Int j = 0; j < blocks; j += lanes) {
            const R* from = f_ + radix * j;
#pragma GCC unroll 8
            for (int q = 0; q < radix; q += lanes) {
                Vec<R> x[lanes];
#pragma GCC unroll 4
                for (int i = 0; i < lanes; ++i) x[i] = load(from + i * radix + q);
                transpose(x);
                if (q == 0) {
                    // Of j = 0 it is beside the row.
                    const Vec<R> down = followed(x[0], before);
                    store(row(0) + length_ - j, sine ? negated(down) : down);
                    before = x[0];
                }
#pragma GCC unroll 4
                for (int i = 0; i < lanes; ++i) {
                    if (q + i <= m) store(row(q + i) + j, x[i]);
                    if (q + i >= m)
                        store(row(radix - q - i) + length_ - j - lanes, reversed(sine ? negated(x[i]) : x[i]));
                }
            }
        }
        for (Int q = 0; q <= m; ++q)
            for (Int j = blocks; j < length_ - blocks; ++j) row(q)[j] = extended(radix * j + q);
        for (Int j = length_ - blocks; j < length_ - blocks + lanes && j < length_; ++j)
            row(0)[j] = extended(radix * j);
        row(0)[0] = extended(0);
    }

    template <class V>
    [[gnu::always_inline]] void combine(Int k)
    {
        V c[m + 1], s[m];
        const Int at = length_ % 2 == 0 ? 2 * k : 2 * k - 1;
        const R* w = factors(table_, m, k);
#pragma GCC unroll 9
        for (int q = 0; q <= m; ++q) {
            V re, im;
            get_pairs(row(q) + at, re, im);
            if (q == 0) {
                c[q] = sine ? im : re;
                continue;
            }
            const V w_re = get<V>(w + (2 * q - 2) * lanes), w_im = get<V>(w + (2 * q - 1) * lanes);
            if (sine || q < m) {
                const V b = re * w_im + im * w_re;
                if (sine)
                    c[q] = b;
                else
                    s[q] = b;
            }
            if (!sine || q < m) {
                const V a = re * w_re - im * w_im;
                if (!sine)
                    c[q] = a;
                else
                    s[q] = a;
            }
        }
        cosines(c);
        sines(s);
        const V factor = all<V>(factor_);
        R *up = f_ + k, *down = f_ - k;
        put(up, (sine ? negated(c[0]) : c[0]) * factor);
#pragma GCC unroll 9
        for (int p = 1; p < m; ++p) {
            put(up + p * length_, (sine ? s[p] - c[p] : c[p] + s[p]) * factor);
            put_down(down + p * length_, (sine ? s[p] + c[p] : c[p] - s[p]) * factor);
        }
        put_down(down + m * length_, c[m] * factor);
    }

    // k = 0, where spectra are real.
    [[gnu::always_inline]] void begin()
    {
        R c[m + 1] = {}, s[m] = {};
        for (int q = 0; q <= m; ++q) {
            const R value = q == 0 || q == m ? row(q)[0] : 2 * row(q)[0];
            if (!sine)
                c[q] = value;
            else if (q < m)
                s[q] = value;
        }
        if (sine) {
            sines(s);
            for (int p = 1; p < m; ++p) f_[p * length_] = s[p] * factor_;
        } else {
            cosines(c);
            for (int p = 0; p <= m; ++p) f_[p * length_] = c[p] * factor_;
        }
    }

    const R* table_;
    R *f_, *work_;
    Int n_, length_, distance_;
    R factor_;
};

// Without a step.
template <class R, bool sine>
Int whole_transform(const TrigPlan<R>& plan, R factor, R* f, R* work)
{
    const Int n = plan.n;
    const Int end = n / Vec<R>::lanes * Vec<R>::lanes;
    Vec<R> before = {};
    for (Int i = 0; i < end; i += Vec<R>::lanes) {
        const Vec<R> x = load(f + i), down = followed(x, before);
        store(work + i, x);
        store(work + 2 * n - i, sine ? negated(down) : down); // of i = 0 it is beside the extension
        before = x;
    }
    for (Int i = end; i < n; ++i) work[i] = f[i];
    for (Int i = end < Vec<R>::lanes ? 1 : end - Vec<R>::lanes + 1; i < n; ++i) work[2 * n - i] = sine ? -f[i] : f[i];
    work[0] = sine ? 0 : f[0], work[n] = sine ? 0 : f[n];
    if (const Int status = ork_dft_dfticomputeforward(plan.dft, work)) return status;
    in_lanes<R>(1, n, [&](Int k, auto v) {
        using V = decltype(v);
        V re, im;
        get_pairs(work + 2 * k, re, im);
        put(f + k, (sine ? negated(im) : re) * all<V>(factor));
    });
    if (!sine) f[0] = work[0] * factor, f[n] = work[1] * factor;
    return 0;
}

template <class R, bool sine>
Int of_radix(const TrigPlan<R>& plan, R factor, R* f, R* work)
{
    switch (grid_radix<R>(plan.n)) {
    case 4:
        return Rows<R, sine, 2>::run(plan, factor, f, work);
    case 8:
        return Rows<R, sine, 4>::run(plan, factor, f, work);
    case 16:
        return Rows<R, sine, 8>::run(plan, factor, f, work);
    default:
        return whole_transform<R, sine>(plan, factor, f, work);
    }
}

} // namespace

template <class R>
void make_grid_table(Int n, R* table)
{
    const Int radix = grid_radix<R>(n), m = radix / 2;
    if (radix == 1) return;
    const Roots roots(2 * n);
    for (Int k = 1; k <= n / radix; ++k) {
        R* w = table + (factors(table, m, k) - table);
        for (Int q = 1; q <= m; ++q) {
            const Complex<long double> z = (q < m ? 2.0L : 1.0L) * roots[q * k];
            w[(2 * q - 2) * Vec<R>::lanes] = static_cast<R>(z.re);
            w[(2 * q - 1) * Vec<R>::lanes] = static_cast<R>(z.im);
        }
    }
}

template <class R>
Int grid_transform(const TrigPlan<R>& plan, R factor, R* f, R* work)
{
    return plan.type == 0 ? of_radix<R, true>(plan, factor, f, work) : of_radix<R, false>(plan, factor, f, work);
}

#define INSTANTIATE(R)                                                                                                 \
    template void make_grid_table(Int, R*);                                                                            \
    template Int grid_transform(const TrigPlan<R>&, R, R*, R*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::pde
