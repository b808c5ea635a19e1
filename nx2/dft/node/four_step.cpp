// SPDX-License-Identifier: MIT
// The steps of a long transform as a matrix of n1 rows and n2 columns, in groups of eight vectors, each gathered into a
// buffer that stays in cache.
//
// Not in place, and in place through a second matrix, step 1-2 leaves column j2 as the contiguous row j2, so that step
// 3 finds its vectors as columns and puts each number of the result where it was read. In place every vector returns to
// where it came from, and the matrix is transposed at the end (transpose.cpp).
#include "dft/node/four_step.h"
#include "dft/node/gather.h"
#include "dft/primitives/wrappers.h"
#include "frame/export.h"

namespace ork::dft {
namespace {

// x[k1] times w_n^(j2 k1), into y.
template <class R>
void multiply_by_roots(const RootTables& root, std::int64_t j2, std::int64_t n1, const Complex<R>* x, Complex<R>* y,
                       std::int32_t direction)
{
    constexpr std::int64_t coarse_twiddles = 256;
    Complex<R> fine[fine_twiddles], coarse[coarse_twiddles];
    for (std::int64_t k = 0; k < fine_twiddles && k < n1; ++k) {
        const Complex<long double> w = root(j2 * k);
        fine[k] = {static_cast<R>(w.re), static_cast<R>(w.im)};
    }
    constexpr std::int64_t span = coarse_twiddles * fine_twiddles;
    for (std::int64_t begin = 0; begin < n1; begin += span) {
        const std::int64_t here = n1 - begin < span ? n1 - begin : span;
        for (std::int64_t k = 0; k < here; k += fine_twiddles) {
            const Complex<long double> w = root(j2 * (begin + k));
            coarse[k / fine_twiddles] = {static_cast<R>(w.re), static_cast<R>(w.im)};
        }
        Primitives<R>::twiddle(x + begin, y + begin, here, coarse, fine, direction);
    }
}

// The buffer of a group, and what the kernels work in.
template <class R, class Body>
std::int32_t with_buffer(std::int64_t count, std::int64_t vector, const void* plan, Body body)
{
    const std::int64_t vectors = count < group_of_vectors ? count : group_of_vectors;
    void* buffer = ork_serv_allocate(static_cast<std::size_t>(vectors * vector) * sizeof(Complex<R>), 4096);
    if (buffer == nullptr) return ORK_DFT_NO_MEMORY;
    const std::int32_t status = with_work(work_bytes(plan_of<R>(plan)),
                                          [&](void* work) { return body(static_cast<Complex<R>*>(buffer), work); });
    ork_serv_deallocate(buffer);
    return status;
}

template <class R>
std::int32_t step_1_2(const ork_dft_four_step& plan, std::int32_t direction, const Complex<R>* in, Complex<R>* out,
                      std::int64_t first, std::int64_t count)
{
    const std::int64_t n1 = plan.n1, n2 = plan.columns, end = first + count;
    const RootTables& root = roots_of(plan);
    ork_dft_kernel* const kernel = plan.column_kernel[direction];
    return with_buffer<R>(count, n1, plan.column_plan, [&](Complex<R>* buffer, void* work) {
        ork_dft_argument argument = {1, work};
        std::int32_t statuses = ORK_DFT_OK;
        for (std::int64_t j = first; j < end; j += group_of_vectors) {
            const int width = static_cast<int>(end - j < group_of_vectors ? end - j : group_of_vectors);
            if (width == group_of_vectors) gather<group_of_vectors>(in + j, n2, n1, buffer, n1);
            for (int c = 0; c < width; ++c) {
                Complex<R>* const column = buffer + c * n1;
                if (width < group_of_vectors) gather<1>(in + j + c, n2, n1, column, n1);
                statuses |= kernel(column, column, plan.column_plan, &argument);
                Complex<R>* const to = plan.mode == 0 ? column : out + (j + c) * n1;
                multiply_by_roots(root, j + c, n1, column, to, direction);
            }
            if (plan.mode != 0) continue;
            if (width == group_of_vectors)
                scatter<group_of_vectors>(buffer, n1, n1, out + j, n2, in != out);
            else
                scatter_some(width, buffer, n1, out + j, n2, in != out);
        }
        return statuses;
    });
}

template <class R>
std::int32_t step_3(const ork_dft_four_step& plan, std::int32_t direction, R scale, const Complex<R>* in,
                    Complex<R>* out, std::int64_t first, std::int64_t count)
{
    const std::int64_t n1 = plan.n1, n2 = plan.row_length, end = first + count;
    ork_dft_kernel* const kernel = plan.row_kernel[direction];
    return with_buffer<R>(count, n2, plan.row_plan, [&](Complex<R>* buffer, void* work) {
        ork_dft_argument argument = {1, work};
        const bool rows = plan.mode == 0;
        for (std::int64_t k = first; k < end; k += group_of_vectors) {
            const int width = static_cast<int>(end - k < group_of_vectors ? end - k : group_of_vectors);
            if (rows)
                gather<1>(in + k * n2, 1, width * n2, buffer, width * n2);
            else if (width == group_of_vectors)
                gather<group_of_vectors>(in + k, n1, n2, buffer, n2);
            for (int c = 0; c < width; ++c) {
                Complex<R>* const row = buffer + c * n2;
                if (!rows && width < group_of_vectors) gather<1>(in + k + c, n1, n2, row, n2);
                const std::int32_t status = kernel(row, row, plan.row_plan, &argument);
                if (status != ORK_DFT_OK) return status;
                if (scale == R(1)) continue;
                if constexpr (is_double<R>)
                    ork_dft_nx2_dft_zdscal(n2, scale, reinterpret_cast<ork_complex_double*>(row), 1);
                else
                    ork_dft_nx2_dft_csscal(n2, scale, reinterpret_cast<ork_complex_float*>(row), 1);
            }
            if (rows)
                scatter<1>(buffer, width * n2, width * n2, out + k * n2, 1, in != out);
            else if (width == group_of_vectors)
                scatter<group_of_vectors>(buffer, n2, n2, out + k, n1, in != out);
            else
                scatter_some(width, buffer, n2, out + k, n1, in != out);
        }
        return static_cast<std::int32_t>(ORK_DFT_OK);
    });
}

} // namespace
} // namespace ork::dft

using namespace ork::dft;

#define STEPS(letter, R)                                                                                               \
    ORK_EXPORT std::int32_t ork_dft_nx2_x##letter##_4step_1_2(const ork_dft_four_step* plan, std::int32_t direction,   \
                                                              const void* in, void* out, std::int64_t first,           \
                                                              std::int64_t count)                                      \
    {                                                                                                                  \
        return step_1_2<R>(*plan, direction, static_cast<const ork::Complex<R>*>(in),                                  \
                           static_cast<ork::Complex<R>*>(out), first, count);                                          \
    }                                                                                                                  \
    ORK_EXPORT std::int32_t ork_dft_nx2_x##letter##_4step_3(const ork_dft_four_step* plan, std::int32_t direction,     \
                                                            double scale, const void* in, void* out,                   \
                                                            std::int64_t first, std::int64_t count)                    \
    {                                                                                                                  \
        return step_3<R>(*plan, direction, static_cast<R>(scale), static_cast<const ork::Complex<R>*>(in),             \
                         static_cast<ork::Complex<R>*>(out), first, count);                                            \
    }
STEPS(c, float)
STEPS(z, double)
