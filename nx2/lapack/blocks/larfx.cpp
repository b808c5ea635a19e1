// SPDX-License-Identifier: MIT
// A reflector of order 1 to 10 with all that it meets in registers, and of any other order as in apply_reflectors.h.
// The small ones: sum <- conj(v(1)) c(1) + conj(v(2)) c(2) + .. from left to right, then c(i) <- c(i) - (tau v(i)) sum
// for every column, and for every row the same with v and tau conj(v).
#include <utility>

#include "blas/level2/columns.h"
#include "lapack/apply_reflectors.h"
#include "lapack/column_lanes.h"
#include "lapack/members.h"

namespace ork::lapack {
namespace {

template <int order>
using Coefficients = level2::columns::Factors<T, order>;

template <int order>
[[gnu::always_inline]] inline void reflect(const Coefficients<order>& weight, const Coefficients<order>& direction,
                                           Vec<T> (&x)[order])
{
    Vec<T> sum = weight.factor[0] * x[0];
#pragma GCC unroll 10
    for (int i = 1; i < order; ++i) sum = added(sum, weight.factor[i] * x[i]);
#pragma GCC unroll 10
    for (int i = 0; i < order; ++i) x[i] = x[i] - direction.factor[i] * sum;
}

template <int order>
[[gnu::noinline]] void from_left(Int n, const Coefficients<order>& weight, const Coefficients<order>& direction, T* c,
                                 Int ldc)
{
    constexpr int lanes = Vec<T>::lanes, whole = order / lanes * lanes;
    const auto reflect_columns = [&](const ColumnLanes<T, 1>& columns, T* top) __attribute__((always_inline))
    {
        Vec<T> x[order];
#pragma GCC unroll 10
        for (int i = 0; i < whole; i += lanes) columns.square(top + i, 0, x + i);
#pragma GCC unroll 3
        for (int i = whole; i < order; ++i) x[i] = columns.row(top + i, 0);
        reflect<order>(weight, direction, x);
#pragma GCC unroll 10
        for (int i = 0; i < whole; i += lanes) columns.put_square(top + i, 0, x + i);
#pragma GCC unroll 3
        for (int i = whole; i < order; ++i) columns.put_row(top + i, 0, x[i]);
    };
    const ColumnLanes<T, 1> full(ldc, lanes);
    Int j = 0;
    for (; j + lanes <= n; j += lanes) reflect_columns(full, c + j * ldc);
    if (j < n) reflect_columns(ColumnLanes<T, 1>(ldc, n - j), c + j * ldc);
}

template <int order>
[[gnu::noinline]] void from_right(Int m, const Coefficients<order>& weight, const Coefficients<order>& direction, T* c,
                                  Int ldc)
{
    const auto rows = [&]<int width>(T * at) __attribute__((always_inline))
    {
        Vec<T> x[order];
#pragma GCC unroll 10
        for (int j = 0; j < order; ++j) x[j] = load<width>(at + j * ldc);
        reflect<order>(weight, direction, x);
#pragma GCC unroll 10
        for (int j = 0; j < order; ++j) store<width>(at + j * ldc, x[j]);
    };
    constexpr int lanes = Vec<T>::lanes;
    Int i = 0;
    for (; i + lanes <= m; i += lanes) rows.template operator()<lanes>(c + i);
    for (; i < m; ++i) rows.template operator()<1>(c + i);
}

template <int order>
void apply_small(bool left, Int others, const T* v, T tau, T* c, Int ldc)
{
    T weight[order], direction[order];
    for (int i = 0; i < order; ++i) {
        weight[i] = left ? conj(v[i]) : v[i];
        direction[i] = tau * (left ? v[i] : conj(v[i]));
    }
    const Coefficients<order> w(weight), d(direction);
    if (left)
        from_left<order>(others, w, d, c, ldc);
    else
        from_right<order>(others, w, d, c, ldc);
}

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

ORK_LAPACK_EXPORT(larfx)
(const char* side, const Int* m, const Int* n, const T* v, const T* tau, T* c, const Int* ldc, T*)
{
    if (*tau == T{}) return;
    const bool left = ork::gemm::is_letter(*side, 'L');
    const Int order = left ? *m : *n, others = left ? *n : *m;
    constexpr Int most = 10;
    if (order <= 0 || others <= 0) return;
    if (order <= most) return [&]<int... i>(std::integer_sequence<int, i...>)
        {
            ((order == i + 1 ? apply_small<i + 1>(left, others, v, *tau, c, *ldc) : void()), ...);
        }
    (std::make_integer_sequence<int, most>());
    const Reflectors<T, 1> h{{v}, {*tau}};
    if (left)
        apply_from_left(*m, *n, h, c, *ldc);
    else
        apply_from_right(*m, *n, h, c, *ldc);
}
