// SPDX-License-Identifier: MIT
// The plan of a long transform as a matrix: two short plans, and the roots between them.
#include <cstring>

#include "dft/engine/roots.h"
#include "dft/lengths/table.h"
#include "dft/node/four_step.h"
#include "frame/export.h"

namespace ork::dft {
namespace {

template <class R>
void set_kernels(std::int64_t n, ork_dft_kernel* (&pair)[2])
{
    for (int d = 0; d < 2; ++d)
        if (n <= longest_kernel)
            pair[d] = d == 0 ? LengthKernels<R>::forward[n] : LengthKernels<R>::backward[n];
        else
            pair[d] = is_power_of_two(n) ? Kernels<R>::power_of_two[d] : Kernels<R>::mixed[d];
}

} // namespace

template <class R>
std::int32_t make_four_step(ork_dft_node& head)
{
    const std::int64_t n = head.length;
    std::int64_t n1, n2;
    const std::int32_t refused = ork_dft_nx2_four_step_factors(precision_code<R>, n, &n1, &n2);
    if (refused != ORK_DFT_OK) return refused;

    RootTables tables{};
    while (std::int64_t{1} << (2 * tables.shift) < n) ++tables.shift;
    const std::int64_t fine = std::int64_t{1} << tables.shift, coarse = (n + fine - 1) / fine;
    // The record, the description of the tables, and the tables, whose numbers are aligned to their own 32 bytes.
    constexpr std::int64_t records = (sizeof(ork_dft_four_step) + sizeof(RootTables) + 63) / 64 * 64;
    constexpr std::int64_t number = sizeof(Complex<long double>);
    char* block = new_cleared<char>(records + (coarse + fine) * number);
    if (block == nullptr) return ORK_DFT_NO_MEMORY;
    auto* plan = reinterpret_cast<ork_dft_four_step*>(block);
    auto* root = reinterpret_cast<Complex<long double>*>(block + records);
    for (std::int64_t i = 0; i < coarse; ++i) root[i] = exact_root(i * fine, n);
    for (std::int64_t i = 0; i < fine; ++i) root[coarse + i] = exact_root(i, n);
    tables.coarse = root, tables.fine = root + coarse;
    auto* description = reinterpret_cast<RootTables*>(plan + 1);
    *description = tables;

    Plan<R>*column = nullptr, *row = nullptr;
    if (make_plan<R>(n1, &column) != 0 || (n1 != n2 && make_plan<R>(n2, &row) != 0)) {
        free_plan(column);
        release(block);
        return ORK_DFT_NO_MEMORY;
    }
    plan->n = n, plan->n1 = n1, plan->n2 = n2;
    plan->columns = plan->row_length = n2;
    plan->column_plan = column, plan->row_plan = n1 == n2 ? column : row;
    set_kernels<R>(n1, plan->column_kernel);
    set_kernels<R>(n2, plan->row_kernel);
    plan->twiddles = description;
    plan->mode = in_place(head) ? mode_in_place(n1, n2) : 1;
    plan->placement = head.placement;
    plan->precision = precision_code<R>;
    head.four_step = plan;
    head.plan = plan;
    head.engine = ORK_DFT_ENGINE_FOUR_STEP;
    return ORK_DFT_OK;
}
template std::int32_t make_four_step<float>(ork_dft_node&);
template std::int32_t make_four_step<double>(ork_dft_node&);

template <class R>
void free_four_step(ork_dft_four_step* plan)
{
    if (plan == nullptr) return;
    auto* column = static_cast<Plan<R>*>(const_cast<void*>(plan->column_plan));
    auto* row = static_cast<Plan<R>*>(const_cast<void*>(plan->row_plan));
    free_plan(column);
    if (row != column) free_plan(row);
    release(plan);
}
template void free_four_step<float>(ork_dft_four_step*);
template void free_four_step<double>(ork_dft_four_step*);

} // namespace ork::dft

using namespace ork::dft;

ORK_EXPORT std::int32_t ork_dft_nx2_xz_init_data_1d_via_2d(ork_dft_node* head)
{
    release_plan(head);
    return make_four_step<double>(*head);
}
ORK_EXPORT std::int32_t ork_dft_nx2_xc_init_data_1d_via_2d(ork_dft_node* head)
{
    release_plan(head);
    return make_four_step<float>(*head);
}
