// SPDX-License-Identifier: MIT
// Plans for real transforms: which way a length goes, its constants, its work memory.
#include "dft/engine/roots.h"
#include "dft/lines.h"
#include "dft/real/real_plan.h"
#include "frame/core_imports.h"

namespace ork::dft {
namespace {

constexpr std::int64_t block_bytes = 192 << 10; // of one side

template <class T>
T* allocate(std::int64_t count)
{
    return static_cast<T*>(ork_serv_malloc(static_cast<std::int64_t>(sizeof(T)) * count, 64));
}

// g[k] = (1 - i exp(-2 pi i k / n))/2 for 0 < k < n/4. Only about sqrt(n) roots are computed as such; the others are
// products of two, with 64-bit mantissas, which leaves an error below 2^-61.
template <class R>
bool fill_constants(std::int64_t n, Complex<R>* g)
{
    const std::int64_t count = (n / 2 - 1) / 2;
    if (count == 0) return true;
    std::int64_t side = 1;
    while (side * side < count + 1) side *= 2;
    auto* fine = allocate<Complex<long double>>(side);
    if (fine == nullptr) return false;
    for (std::int64_t k = 0; k < side; ++k) fine[k] = exact_root(k, n);
    for (std::int64_t from = 0; from <= count; from += side) {
        const Complex<long double> coarse = exact_root(from, n);
        for (std::int64_t k = from == 0 ? 1 : from; k < from + side && k <= count; ++k) {
            const Complex<long double> w = coarse * fine[k - from];
            g[k - 1] = {static_cast<R>((1 + w.im) / 2), static_cast<R>(w.re / -2)};
        }
    }
    ork_serv_free(fine);
    return true;
}

template <class R>
int plan_even(RealPlan<R>& plan)
{
    const std::int64_t m = plan.n / 2, constants = (m - 1) / 2;
    if (make_plan(m, &plan.complex) != 0) return 1;
    plan.g = allocate<Complex<R>>(constants + 1);
    if (plan.g == nullptr || !fill_constants(plan.n, plan.g)) return 1;
    if (plan.n <= longest_small_real) {
        plan.small_forward = small_even_forward<R>(plan.n);
        plan.small_backward = small_even_backward<R>(plan.n);
    }
    plan.group = group(*plan.complex);
    plan.line = plan.n + 2;
    return 0;
}

template <class R>
int plan_odd(RealPlan<R>& plan)
{
    plan.group = 8; // neighbours in a matrix whose numbers share cache lines
    plan.line = plan.n + 1;
    if (plan.n < longest_small_real) {
        plan.small_forward = small_odd_forward<R>(plan.n);
        plan.small_backward = small_odd_backward<R>(plan.n);
        return 0;
    }
    if (make_odd_plan(plan.n, &plan.odd) != 0) return 1;
    return plan.odd == nullptr ? make_plan(plan.n, &plan.complex) : 0;
}

} // namespace

template <class R>
int make_real_plan(std::int64_t n, RealPlan<R>** result)
{
    auto* plan = allocate<RealPlan<R>>(1);
    if (plan == nullptr) return 1;
    *plan = {};
    plan->n = n;
    const bool even = n % 2 == 0;
    if ((even ? plan_even(*plan) : plan_odd(*plan)) != 0) {
        free_real_plan(plan);
        return 1;
    }
    const std::int64_t bytes = n * static_cast<std::int64_t>(sizeof(R)), fit = block_bytes / bytes / plan->group;
    plan->block = (fit < 1 ? 1 : fit > 64 ? 64 : fit) * plan->group;
    // Long transforms go through work memory in fours, half a cache line of each column of a matrix.
    plan->lines = plan->block;
    if (plan->lines > 4 && plan->lines * plan->line * static_cast<std::int64_t>(sizeof(R)) > 4 * block_bytes)
        plan->lines = 4;
    std::size_t inner = plan->odd != nullptr ? work_bytes(*plan->odd) : 0;
    if (plan->complex != nullptr) {
        const std::size_t one = work_bytes(*plan->complex), many = work_bytes(*plan->complex, plan->block);
        inner = one > many ? one : many;
    }
    plan->whole_offset = whole_lines(inner);
    plan->lines_offset = plan->whole_offset;
    if (!even && plan->complex != nullptr) plan->lines_offset += whole_lines(static_cast<std::size_t>(2 * bytes));
    plan->work_bytes = plan->lines_offset + static_cast<std::size_t>(plan->lines * plan->line) * sizeof(R);
    *result = plan;
    return 0;
}

template <class R>
void free_real_plan(RealPlan<R>* plan)
{
    if (plan == nullptr) return;
    free_plan(plan->complex);
    free_odd_plan(plan->odd);
    if (plan->g != nullptr) ork_serv_free(plan->g);
    ork_serv_free(plan);
}

template <class R>
std::int64_t length(const RealPlan<R>& plan)
{
    return plan.n;
}
template <class R>
std::size_t work_bytes(const RealPlan<R>& plan)
{
    return plan.work_bytes;
}
template <class R>
std::size_t work_bytes(const RealPlan<R>& plan, Packing packing)
{
    if (plan.small_forward != nullptr) return 0;
    if (plan.n % 2 != 0) return plan.lines_offset;
    if (packing == Packing::pack) return plan.lines_offset + static_cast<std::size_t>(plan.n) * sizeof(R);
    return work_bytes(*plan.complex);
}
template <class R>
std::int64_t group(const RealPlan<R>& plan)
{
    return plan.group;
}

#define INSTANTIATE(R)                                                                                                 \
    template int make_real_plan(std::int64_t, RealPlan<R>**);                                                          \
    template void free_real_plan(RealPlan<R>*);                                                                        \
    template std::int64_t length(const RealPlan<R>&);                                                                  \
    template std::size_t work_bytes(const RealPlan<R>&);                                                               \
    template std::size_t work_bytes(const RealPlan<R>&, Packing);                                                      \
    template std::int64_t group(const RealPlan<R>&);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
