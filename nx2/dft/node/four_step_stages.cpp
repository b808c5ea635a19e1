// SPDX-License-Identifier: MIT
// The four-step engine's units for threads, and the kernel pair that runs them all.
#include "dft/node/divide.h"
#include "dft/node/four_step.h"
#include "dft/node/transpose.h"

namespace ork::dft {
namespace {

enum Step : int { columns, rows, square, unzip };

std::int64_t groups(std::int64_t vectors) { return (vectors + group_of_vectors - 1) / group_of_vectors; }

template <class R>
std::int32_t step_1_2(const ork_dft_four_step& plan, int direction, const void* in, void* out, std::int64_t first,
                      std::int64_t count)
{
    if constexpr (is_double<R>) return ork_dft_nx2_xz_4step_1_2(&plan, direction, in, out, first, count);
    return ork_dft_nx2_xc_4step_1_2(&plan, direction, in, out, first, count);
}
template <class R>
std::int32_t step_3(const ork_dft_four_step& plan, int direction, R scale, const void* in, void* out,
                    std::int64_t first, std::int64_t count)
{
    if constexpr (is_double<R>) return ork_dft_nx2_xz_4step_3(&plan, direction, scale, in, out, first, count);
    return ork_dft_nx2_xc_4step_3(&plan, direction, scale, in, out, first, count);
}

// Of mode 0, the transposition's bands of rows: the k-th and the k-th from the end are a unit, so that units are alike.
template <class R, int width>
void transpose_units(const ork_dft_four_step& plan, void* x, std::int64_t from, std::int64_t to)
{
    const Square<Complex<R>, width> matrix = {static_cast<typename Square<Complex<R>, width>::Entry*>(x), plan.n1};
    for (std::int64_t unit = from; unit < to; ++unit) {
        matrix.transpose_band(unit);
        const std::int64_t mirrored = matrix.bands() - 1 - unit;
        if (mirrored != unit) matrix.transpose_band(mirrored);
    }
}
template <class R>
std::int64_t transpose_unit_count(const ork_dft_four_step& plan)
{
    const std::int64_t bands = plan.n1 == plan.n2 ? Square<Complex<R>, 1>{nullptr, plan.n1}.bands()
                                                  : Square<Complex<R>, 2>{nullptr, plan.n1}.bands();
    return (bands + 1) / 2;
}

// A matrix of n1 x 2 n1 numbers whose pairs have been transposed: row q holds (k1, p) in the order of memory and
// becomes the rows 2q and 2q + 1 of the result, (p, k1).
template <class R>
std::int32_t unzip_rows(const ork_dft_four_step& plan, void* x, std::int64_t from, std::int64_t to)
{
    using C = Complex<R>;
    const std::int64_t n1 = plan.n1;
    return with_work(static_cast<std::size_t>(n1) * sizeof(C), [&](void* work) {
        C* const odd = static_cast<C*>(work);
        for (std::int64_t q = from; q < to; ++q) {
            C* const row = static_cast<C*>(x) + q * 2 * n1;
            for (std::int64_t k = 0; k < n1; ++k) {
                odd[k] = row[2 * k + 1];
                row[k] = row[2 * k];
            }
            for (std::int64_t k = 0; k < n1; ++k) row[n1 + k] = odd[k];
        }
        return static_cast<std::int32_t>(ORK_DFT_OK);
    });
}

template <class R>
std::int32_t run_part(const ork_dft_four_step& plan, Step part, int direction, R scale, const void* in, void* out,
                      void* shared, std::int64_t from, std::int64_t to)
{
    void* const between = plan.mode == 2 ? shared : out; // what step 1-2 leaves to step 3
    const auto vectors = [&](std::int64_t all) {
        const std::int64_t end = to * group_of_vectors;
        return (end < all ? end : all) - from * group_of_vectors;
    };
    switch (part) {
    case columns:
        return step_1_2<R>(plan, direction, in, between, from * group_of_vectors, vectors(plan.n2));
    case rows:
        return step_3<R>(plan, direction, scale, between, out, from * group_of_vectors, vectors(plan.n1));
    case square:
        if (plan.n1 == plan.n2)
            transpose_units<R, 1>(plan, out, from, to);
        else
            transpose_units<R, 2>(plan, out, from, to);
        return ORK_DFT_OK;
    default:
        return unzip_rows<R>(plan, out, from, to);
    }
}

// units of part i, 0 when it is not needed
template <class R>
std::int64_t units_of(const ork_dft_four_step& plan, Step part)
{
    switch (part) {
    case columns:
        return groups(plan.n2);
    case rows:
        return groups(plan.n1);
    case square:
        return plan.mode == 0 ? transpose_unit_count<R>(plan) : 0;
    default:
        return plan.mode == 0 && plan.n1 != plan.n2 ? plan.n1 : 0;
    }
}

template <class R>
std::int32_t run(const ork_dft_node* node, const ork_dft_call* call, const ork_dft_stage* stage, std::int64_t from,
                 std::int64_t to)
{
    const Sides<R> sides = sides_of<R>(*node, *call);
    return run_part<R>(*node->four_step, static_cast<Step>(stage->argument[0]), call->direction,
                       scale_of<R>(*node, static_cast<Direction>(call->direction)), sides.re[input], sides.re[output],
                       call->shared, from, to);
}

std::size_t matrix_bytes(const ork_dft_four_step& plan, std::size_t number)
{
    return plan.mode == 2 ? static_cast<std::size_t>(plan.n) * number : 0;
}

} // namespace

template <class R>
void divide_four_step(const ork_dft_node& head, StageList& list)
{
    const ork_dft_four_step& plan = *head.four_step;
    for (const Step part : {columns, rows, square, unzip})
        if (const std::int64_t units = units_of<R>(plan, part)) list.add(units, run<R>, {part});
    list.shared(matrix_bytes(plan, sizeof(Complex<R>)));
}
template void divide_four_step<float>(const ork_dft_node&, StageList&);
template void divide_four_step<double>(const ork_dft_node&, StageList&);

// All parts on the calling thread, in place or not as the pointers say.
template <class R, Direction direction>
std::int32_t four_step_kernel(const void* in, void* out, const void* given, void* argument)
{
    ork_dft_four_step plan = *static_cast<const ork_dft_four_step*>(given);
    plan.mode = in == out ? mode_in_place(plan.n1, plan.n2) : 1;
    const R scale = argument == nullptr ? R(1) : static_cast<R>(static_cast<const ork_dft_argument*>(argument)->scale);
    void* matrix = nullptr;
    if (const std::size_t bytes = matrix_bytes(plan, sizeof(Complex<R>))) {
        matrix = ork_dft_ufxMalloc(static_cast<std::int64_t>(bytes));
        if (matrix == nullptr) return ORK_DFT_NO_MEMORY;
    }
    std::int32_t status = ORK_DFT_OK;
    for (const Step part : {columns, rows, square, unzip}) {
        const std::int64_t units = units_of<R>(plan, part);
        if (units == 0 || status != ORK_DFT_OK) continue;
        status = run_part<R>(plan, part, static_cast<int>(direction), scale, in, out, matrix, 0, units);
    }
    if (matrix != nullptr) ork_dft_ufxFree(matrix);
    return status;
}
#define INSTANTIATE(R)                                                                                                 \
    template std::int32_t four_step_kernel<R, Direction::forward>(const void*, void*, const void*, void*);             \
    template std::int32_t four_step_kernel<R, Direction::backward>(const void*, void*, const void*, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
