// SPDX-License-Identifier: MIT
// Types 2 and 3 by one real transform of length n (Makhoul, A fast cosine transform in one and two dimensions, 1980).
//
// To whole steps: with v[j] = F[2j], v[n-1-j] = F[2j+1], its spectrum V and w = exp(-pi i k / 2n) V[k]
//
//     sum over j of F[j] cos((2j+1) pi k / 2n) = Re w at k, -Im w at n-k.
//
// To half steps is the way back: V[k] = exp(pi i k / 2n) (y[k] - i y[n-k]). Sines are cosines of the numbers at whole
// steps in the other order, those at odd half steps negated.
#include "pde/trig/half_sample.h"

#include "frame/core_imports.h"
#include "pde/trig/lanes.h"
#include "pde/trig/roots.h"

namespace ork::pde {
namespace {

// cos(pi k / 2n), then sin, 0 < k < n/2.
inline Int angles(Int n) { return (n - 1) / 2; }

template <class R, bool sine>
class HalfSample {
public:
    HalfSample(const TrigPlan<R>& plan, R factor, R* f, R* work)
        : plan_(plan), n_(plan.n), f_(f), work_(work), spectrum_(n_ % 2 == 0 ? work : work - 1), cos_(plan.table - 1),
          sin_(cos_ + angles(plan.n)), factor_(factor)
    {
    }

    Int to_half_steps()
    {
        in_lanes<R>(1, angles(n_) + 1, [&](Int k, auto v) {
            using V = decltype(v);
            const V y = sine ? get_down<V>(at(k)) : get<V>(at(k));
            const V other = sine ? get<V>(at(n_ - k)) : get_down<V>(at(n_ - k));
            const V c = get<V>(cos_ + k), s = get<V>(sin_ + k);
            put_pairs(spectrum_ + 2 * k, c * y + s * other, s * y - c * other);
        });
        work_[0] = *at(0);
        if (n_ % 2 == 0) work_[1] = R(1.41421356237309504880L) * *at(n_ / 2);
        if (const Int status = ork_dft_dfticomputebackward(plan_.dft, work_)) return status;
        in_lanes<R>(0, n_ / 2, [&](Int j, auto v) {
            using V = decltype(v);
            const V even = get<V>(work_ + j) * all<V>(factor_), odd = get_down<V>(work_ + n_ - 1 - j) * all<V>(factor_);
            put_pairs(f_ + 2 * j, even, sine ? negated(odd) : odd);
        });
        if (n_ % 2 != 0) f_[n_ - 1] = work_[n_ / 2] * factor_;
        return 0;
    }

    Int to_whole_steps()
    {
        in_lanes<R>(0, n_ / 2, [&](Int j, auto v) {
            using V = decltype(v);
            V even, odd;
            get_pairs(f_ + 2 * j, even, odd);
            put(work_ + j, even);
            put_down(work_ + n_ - 1 - j, sine ? negated(odd) : odd);
        });
        if (n_ % 2 != 0) work_[n_ / 2] = f_[n_ - 1];
        if (const Int status = ork_dft_dfticomputeforward(plan_.dft, work_)) return status;
        const R twice = 2 * factor_;
        in_lanes<R>(1, angles(n_) + 1, [&](Int k, auto v) {
            using V = decltype(v);
            V re, im;
            get_pairs(spectrum_ + 2 * k, re, im);
            const V c = get<V>(cos_ + k), s = get<V>(sin_ + k), factor = all<V>(twice);
            const V y = (c * re + s * im) * factor, other = (s * re - c * im) * factor;
            if (sine)
                put_down(at(k), y), put(at(n_ - k), other);
            else
                put(at(k), y), put_down(at(n_ - k), other);
        });
        *at(0) = work_[0] * twice;
        if (n_ % 2 == 0) *at(n_ / 2) = R(1.41421356237309504880L) * work_[1] * factor_;
        return 0;
    }

private:
    R* at(Int k) const { return sine ? f_ + n_ - 1 - k : f_ + k; } // number k at whole steps

    const TrigPlan<R>& plan_;
    Int n_;
    R *f_, *work_, *spectrum_; // V[k] at spectrum_[2k] for 0 < k < n/2
    const R *cos_, *sin_;
    R factor_;
};

template <class R, bool sine>
Int of_way(const TrigPlan<R>& plan, Way way, R factor, R* f, R* work)
{
    HalfSample<R, sine> transform(plan, factor, f, work);
    return way == Way::forward ? transform.to_half_steps() : transform.to_whole_steps();
}

} // namespace

template <class R>
void make_half_sample_table(Int n, R* table)
{
    const Roots roots(4 * n);
    for (Int k = 1; k <= angles(n); ++k) {
        const Complex<long double> z = roots[k];
        table[k - 1] = static_cast<R>(z.re);
        table[angles(n) + k - 1] = static_cast<R>(-z.im);
    }
}

template <class R>
Int half_sample_transform(const TrigPlan<R>& plan, Way way, R factor, R* f, R* work)
{
    return plan.type == 3 ? of_way<R, true>(plan, way, factor, f, work) : of_way<R, false>(plan, way, factor, f, work);
}

#define INSTANTIATE(R)                                                                                                 \
    template void make_half_sample_table(Int, R*);                                                                     \
    template Int half_sample_transform(const TrigPlan<R>&, Way, R, R*, R*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::pde
