// SPDX-License-Identifier: MIT
// One transform of contiguous real numbers: short ones straight-line, long ones divisible into stages for threads.
#include "dft/lines.h"
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
    const Spectrum<R> x = spectrum(packing, plan.n, to);
    if (plan.small_forward != nullptr) return plan.small_forward(scale, in, x);
    if (plan.n % 2 != 0) return odd_forward(plan, scale, in, x, work);
    R* const z = half_length_place(plan, packing, out, work);
    transform(*plan.complex, Direction::forward, R(1), pairs(in), pairs(z), work);
    postprocess(plan.n / 2, plan.g, scale, Place<R>{z, z + 1, 2, 0}, x, 1);
}

template <class R>
void backward(const RealPlan<R>& plan, Packing packing, R scale, const R* in, R* out, void* work)
{
    const Place<R> from = contiguous(packing, const_cast<R*>(in));
    const Spectrum<R> x = spectrum(packing, plan.n, from);
    if (plan.small_backward != nullptr) return plan.small_backward(scale, x, out);
    if (plan.n % 2 != 0) return odd_backward(plan, scale, x, out, work);
    R* const z = half_length_place(plan, in == out ? packing : Packing::cce, out, work);
    preprocess(plan.n / 2, plan.g, scale, x, Place<R>{z, z + 1, 2, 0}, 1);
    transform(*plan.complex, Direction::backward, R(1), pairs<R>(z), pairs(out), work);
}

// Stages: the two of the complex transform, and one of pairs k, n/2 - k, a chunk of them a unit.
namespace {

constexpr std::int64_t chunk = 4096; // even: constants of float numbers are loaded two by two from k = 1 on

template <class R>
bool mixes(int stage, Direction direction)
{
    return stage == (direction == Direction::forward ? 2 : 0);
}

} // namespace

template <class R>
std::int64_t units(const RealPlan<R>& plan, Direction direction, int stage)
{
    if (plan.n % 2 != 0 || units(*plan.complex, 0) == 0) return 0;
    if (!mixes<R>(stage, direction)) return units(*plan.complex, direction == Direction::forward ? stage : stage - 1);
    const std::int64_t pairs = (plan.n / 2 - 1) / 2;
    return pairs == 0 ? 1 : (pairs + chunk - 1) / chunk;
}

template <class R>
std::size_t shared_bytes(const RealPlan<R>& plan, Packing packing)
{
    if (plan.n % 2 != 0) return 0;
    const std::size_t complex = whole_lines(shared_bytes(*plan.complex));
    return complex + (packing == Packing::pack ? static_cast<std::size_t>(plan.n) * sizeof(R) : 0);
}

template <class R>
std::size_t staged_work_bytes(const RealPlan<R>& plan)
{
    return plan.n % 2 != 0 ? 0 : staged_work_bytes(*plan.complex);
}

template <class R>
void run_stage(const RealPlan<R>& plan, int stage, Direction direction, Packing packing, R scale, std::int64_t from,
               std::int64_t to, const R* in, R* out, void* shared, void* work)
{
    const std::int64_t m = plan.n / 2, pairs_end = (m - 1) / 2 + 1;
    const std::int64_t first = 1 + from * chunk, last = 1 + to * chunk < pairs_end ? 1 + to * chunk : pairs_end;
    R* const own = reinterpret_cast<R*>(static_cast<char*>(shared) + whole_lines(shared_bytes(*plan.complex)));
    R* const half = packing == Packing::pack ? own : out; // numbers of the half-length transform
    const Place<R> z = {half, half + 1, 2, 0};
    if (direction == Direction::forward) {
        if (!mixes<R>(stage, direction))
            return run_stage(*plan.complex, stage, direction, R(1), from, to, pairs(in), pairs(half), shared, work);
        const Spectrum<R> x = spectrum(packing, plan.n, contiguous(packing, out));
        postprocess(m, plan.g, scale, z, x, 1, first, last);
        if (from == 0) half_length::ends_forward(m, scale, z, x, 1);
    } else {
        if (!mixes<R>(stage, direction))
            return run_stage(*plan.complex, stage - 1, direction, R(1), from, to, pairs<R>(half), pairs(out), shared,
                             work);
        const Spectrum<R> x = spectrum(packing, plan.n, contiguous(packing, const_cast<R*>(in)));
        if (from == 0) half_length::ends_backward(m, scale, x, z, 1);
        preprocess(m, plan.g, scale, x, z, 1, first, last);
    }
}

#define INSTANTIATE(R)                                                                                                 \
    template void forward(const RealPlan<R>&, Packing, R, const R*, R*, void*);                                        \
    template void backward(const RealPlan<R>&, Packing, R, const R*, R*, void*);                                       \
    template std::int64_t units(const RealPlan<R>&, Direction, int);                                                   \
    template std::size_t shared_bytes(const RealPlan<R>&, Packing);                                                    \
    template std::size_t staged_work_bytes(const RealPlan<R>&);                                                        \
    template void run_stage(const RealPlan<R>&, int, Direction, Packing, R, std::int64_t, std::int64_t, const R*, R*,  \
                            void*, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
