// SPDX-License-Identifier: MIT
// One transform of contiguous real numbers: short ones straight-line, long ones divisible into stages for threads.
#include "dft/real/real_plan.h"

namespace ork::dft {
namespace {

template <class R>
Place<R> contiguous(Packing packing, R* x)
{
    if (packing == Packing::cce) return {x, x + 1, 2, 0};
    return {x, nullptr, 1, 0};
}
template <class R>
Complex<R>* pairs(R* x)
{
    return reinterpret_cast<Complex<R>*>(x);
}
template <class R>
const Complex<R>* pairs(const R* x)
{
    return reinterpret_cast<const Complex<R>*>(x);
}

// pack shifts all numbers by one, so its half-length transform stands in memory of its own.
template <class R>
R* half_length_place(const RealPlan<R>& plan, Packing packing, R* x, void* work)
{
    return packing == Packing::pack ? reinterpret_cast<R*>(static_cast<char*>(work) + plan.lines_offset) : x;
}

} // namespace

template <class R>
void forward(const RealPlan<R>& plan, Packing packing, R scale, const R* in, R* out, void* work)
{
    const Place<R> to = contiguous(packing, out);
    if (plan.n % 2 != 0) return odd_forward(plan, packing, scale, real_numbers(const_cast<R*>(in), 1, 0), to, 1, work);
    const Spectrum<R> x = spectrum(packing, plan.n, to);
    if (plan.small_forward != nullptr) return plan.small_forward(scale, in, x);
    R* const z = half_length_place(plan, packing, out, work);
    transform(*plan.complex, Direction::forward, R(1), pairs(in), pairs(z), work);
    postprocess(plan.n / 2, plan.g, scale, Place<R>{z, z + 1, 2, 0}, x, 1);
}

template <class R>
void backward(const RealPlan<R>& plan, Packing packing, R scale, const R* in, R* out, void* work)
{
    const Place<R> from = contiguous(packing, const_cast<R*>(in));
    if (plan.n % 2 != 0) return odd_backward(plan, packing, scale, from, real_numbers(out, 1, 0), 1, work);
    const Spectrum<R> x = spectrum(packing, plan.n, from);
    if (plan.small_backward != nullptr) return plan.small_backward(scale, x, out);
    R* const z = half_length_place(plan, in == out ? packing : Packing::cce, out, work);
    preprocess(plan.n / 2, plan.g, scale, x, Place<R>{z, z + 1, 2, 0}, 1);
    transform(*plan.complex, Direction::backward, R(1), pairs<R>(z), pairs(out), work);
}

#define INSTANTIATE(R)                                                                                                 \
    template void forward(const RealPlan<R>&, Packing, R, const R*, R*, void*);                                        \
    template void backward(const RealPlan<R>&, Packing, R, const R*, R*, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
