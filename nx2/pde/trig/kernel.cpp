// SPDX-License-Identifier: MIT
#include "pde/trig/kernel.h"

#include "frame/core_imports.h"

namespace ork::pde {
namespace {

// The transform as bins of a real transform of `period` numbers: number i stands at position(i), result k is the real
// part, or the negative imaginary part, of bin(k).
struct Embedding {
    Int period, step_in, first_in, step_out, first_out;
    Int from, to; // of i and k, inclusive
    bool sine;
};

Embedding embedding(Int type, Int n, Way way)
{
    const bool forward = way == Way::forward;
    switch (type) {
    case 0:
        return {2 * n, 1, 0, 1, 0, 1, n - 1, true};
    case 1:
        return {2 * n, 1, 0, 1, 0, 0, n, false};
    case 2:
        return forward ? Embedding{4 * n, 1, 0, 2, 1, 0, n - 1, false} : Embedding{4 * n, 2, 1, 1, 0, 0, n - 1, false};
    case 3: // element 0 is f(1)
        return forward ? Embedding{4 * n, 1, 1, 2, 1, 0, n - 1, true} : Embedding{4 * n, 2, 1, 1, 1, 0, n - 1, true};
    default:
        return {8 * n, 2, 1, 2, 1, 0, n - 1, type == 5};
    }
}

} // namespace

Int dft_length(Int type, Int n) { return type < 2 ? 2 * n : type < 4 ? 4 * n : 8 * n; }

template <class R>
void make_tables(Int, Int, R*)
{
}

template <class R>
Int work_numbers(Int type, Int n)
{
    return dft_length(type, n);
}

template <class R>
Int transform(const TrigPlan<R>& plan, Way way, R factor, R* f, R* work)
{
    const Embedding e = embedding(plan.type, plan.n, way);
    for (Int j = 0; j < e.period; ++j) work[j] = 0;
    for (Int i = e.from; i <= e.to; ++i) {
        const Int at = e.first_in + e.step_in * i;
        const bool half = (plan.type == 1 && (i == 0 || i == plan.n)) ||
                          (way == Way::forward && ((plan.type == 2 && i == 0) || (plan.type == 3 && i == plan.n - 1)));
        work[at] = half ? f[i] : 2 * f[i];
    }
    const Int status = ork_dft_dfticomputeforward(plan.dft, work);
    if (status != 0) return status;
    for (Int k = e.from; k <= e.to; ++k) {
        const Int bin = e.first_out + e.step_out * k;
        const R value = e.sine ? -work[2 * bin + 1] : work[bin == 0 ? 0 : 2 * bin == e.period ? 1 : 2 * bin];
        f[k] = value * factor;
    }
    return 0;
}

#define INSTANTIATE(R)                                                                                                 \
    template void make_tables(Int, Int, R*);                                                                           \
    template Int work_numbers<R>(Int, Int);                                                                            \
    template Int transform(const TrigPlan<R>&, Way, R, R*, R*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::pde
