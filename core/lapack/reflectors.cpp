// SPDX-License-Identifier: MIT
#include "lapack/reflectors.h"

#include "lapack/instantiate.h"
#include "lapack/scalar.h"

namespace ork::lapack {

// T column by column: t(j, j) = tau(j), T(1:j-1, j) = -tau(j) T(1:j-1, 1:j-1) (V^H v(j)).
template <class T>
BlockReflector<T> form_block(Int length, Int k, Matrix<const T> v, const T* tau, T* memory)
{
    BlockReflector<T> h{length, k, v, {memory, k}, {memory + k * k, k}};
    for (Int j = 0; j < k; ++j)
        for (Int i = 0; i < k; ++i) h.top(i, j) = i < j ? T() : i == j ? T(1) : v(i, j);
    constexpr char op = adjoint<T>;
    multiply<T>(op, 'N', k, k, k, 1, h.top, h.top, 0, h.t);
    if (length > k) multiply<T>(op, 'N', k, k, length - k, 1, v.from(k, 0), v.from(k, 0), 1, h.t);
    for (Int j = 0; j < k; ++j) {
        for (Int i = 0; i < j; ++i) {
            T sum{};
            for (Int l = i; l < j; ++l) sum += product(h.t(i, l), h.t(l, j));
            h.t(i, j) = product(-tau[j], sum);
        }
        h.t(j, j) = tau[j];
    }
    return h;
}

namespace {

// W = V^H C, W <- op(T) W, C <- C - V W.
template <class T>
void apply_left(bool adjoint_h, const BlockReflector<T>& h, Int n, Matrix<T> c, Matrix<T> w)
{
    const Int rest = h.length - h.k;
    const Matrix<T> below = c.from(h.k, 0);
    multiply<T>(adjoint<T>, 'N', h.k, n, h.k, 1, h.top, c, 0, w);
    if (rest > 0) multiply<T>(adjoint<T>, 'N', h.k, n, rest, 1, h.v.from(h.k, 0), below, 1, w);
    multiply_triangle<T>('L', 'U', adjoint_h ? adjoint<T> : 'N', 'N', h.k, n, h.t, w);
    multiply<T>('N', 'N', h.k, n, h.k, -1, h.top, w, 1, c);
    if (rest > 0) multiply<T>('N', 'N', rest, n, h.k, -1, h.v.from(h.k, 0), w, 1, below);
}

// W = C V, W <- W op(T), C <- C - W V^H.
template <class T>
void apply_right(bool adjoint_h, const BlockReflector<T>& h, Int m, Matrix<T> c, Matrix<T> w)
{
    const Int rest = h.length - h.k;
    const Matrix<T> beside = c.from(0, h.k);
    multiply<T>('N', 'N', m, h.k, h.k, 1, c, h.top, 0, w);
    if (rest > 0) multiply<T>('N', 'N', m, h.k, rest, 1, beside, h.v.from(h.k, 0), 1, w);
    multiply_triangle<T>('R', 'U', adjoint_h ? adjoint<T> : 'N', 'N', m, h.k, h.t, w);
    multiply<T>('N', adjoint<T>, m, h.k, h.k, -1, w, h.top, 1, c);
    if (rest > 0) multiply<T>('N', adjoint<T>, m, rest, h.k, -1, w, h.v.from(h.k, 0), 1, beside);
}

} // namespace

// Columns (side left) or rows of C have nothing to do with each other, so each thread takes some all the way.
template <class T>
void apply_block(Side side, bool adjoint_h, const BlockReflector<T>& h, Int others, Matrix<T> c, T* work)
{
    if (others == 0) return;
    const double work_of_all =
        2.0 * static_cast<double>(h.length) * static_cast<double>(h.k) * static_cast<double>(others);
    const int threads = blas::affordable_threads(work_of_all, blas::gemm_work_per_thread);
    blas::run_strips(others, threads, [&](Int first, Int count) {
        if (side == Side::left)
            apply_left(adjoint_h, h, count, c.from(0, first), {work + first * h.k, h.k});
        else
            apply_right(adjoint_h, h, count, c.from(first, 0), {work + first, others});
    });
}

INSTANTIATE(form_block)
INSTANTIATE(apply_block)

} // namespace ork::lapack
