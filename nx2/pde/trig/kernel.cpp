// SPDX-License-Identifier: MIT
#include "pde/trig/kernel.h"

#include "pde/trig/grid_rows.h"
#include "pde/trig/half_sample.h"

namespace ork::pde {

template <class R>
Int dft_length(Int type, Int n)
{
    if (type < 2) return grid_row(n, grid_radix<R>(n));
    return type < 4 ? n : both_half_length(n);
}

template <class R>
void make_tables(Int type, Int n, R* table)
{
    if (type < 2)
        make_grid_table(n, table);
    else if (type < 4)
        make_half_sample_table(n, table);
    else
        make_both_half_table(n, table);
}

template <class R>
Int work_numbers(Int type, Int n)
{
    constexpr Int line = 64 / sizeof(R);
    if (type >= 2) return n + 4 * line;
    const Int radix = grid_radix<R>(n);
    return radix == 1 ? 2 * n + line : (radix / 2 + 1) * grid_distance<R>(grid_row(n, radix));
}

template <class R>
Int transform(const TrigPlan<R>& plan, Way way, R factor, R* f, R* work)
{
    if (plan.type < 2) return grid_transform(plan, factor, f, work);
    if (plan.type < 4) return half_sample_transform(plan, way, factor, f, work);
    return both_half_transform(plan, factor, f, work);
}

#define INSTANTIATE(R)                                                                                                 \
    template Int dft_length<R>(Int, Int);                                                                              \
    template void make_tables(Int, Int, R*);                                                                           \
    template Int work_numbers<R>(Int, Int);                                                                            \
    template Int transform(const TrigPlan<R>&, Way, R, R*, R*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::pde
