// SPDX-License-Identifier: MIT
// gemm3m: a complex product by three real ones (Higham, "Stability of a method for multiplying complex matrices with
// three real matrix multiplications", 1992). With A = A1 + iA2 and B = B1 + iB2
//
//     A B = (A1 B1 - A2 B2) + i((A1 + A2)(B1 + B2) - A1 B1 - A2 B2),
//
// three quarters of the work; the error of the imaginary part is bounded by the norms of A and B, not element by
// element. Then C <- alpha (A B) + beta C.
#include <cstddef>

#include "blas/gemm/multiply.h"
#include "blas/gemm/scale.h"
#include "frame/core_imports.h"
#include "frame/export.h"

namespace ork::gemm {

// The three real planes of a block of op(X), `rows` x `columns` by columns with leading dimension ld, one behind the
// other: real parts, imaginary parts, their sums.
template <class R>
struct Planes {
    R* first;
    Int ld, columns;

    R* plane(int i) const { return first + i * ld * columns; }
};

// x(i, j) stands at x + i row_stride + j column_stride.
template <bool conjugated, class R>
void split(Int rows, Int columns, const Complex<R>* x, Int row_stride, Int column_stride, Planes<R> to)
{
    for (Int j = 0; j < columns; ++j)
        for (Int i = 0; i < rows; ++i) {
            const Complex<R> z = conjugate<conjugated>(x[i * row_stride + j * column_stride]);
            const Int at = i + j * to.ld;
            to.plane(0)[at] = z.re;
            to.plane(1)[at] = z.im;
            to.plane(2)[at] = z.re + z.im;
        }
}

template <class R>
void split(Op op, Int rows, Int columns, const Complex<R>* x, Int ldx, Planes<R> to)
{
    with_flag(op.conjugated, [&]<bool conjugated>() {
        split<conjugated>(rows, columns, x, op.transposed ? ldx : 1, op.transposed ? 1 : ldx, to);
    });
}

// Four products as usual when there is no memory for the planes.
template <class R>
void multiply_3m(char transa, char transb, Int m, Int n, Int k, Complex<R> alpha, const Complex<R>* a, Int lda,
                 const Complex<R>* b, Int ldb, Complex<R> beta, Complex<R>* c, Int ldc)
{
    using T = Complex<R>;
    if (m <= 0 || n <= 0) return;
    if (!(beta == T{1, 0})) scale(m, n, beta, c, ldc);
    if (alpha == T{} || k <= 0) return;

    constexpr Int most = 512;
    const Int mb = least(m, most), nb = least(n, most), kb = least(k, 256);
    void* base = ork_serv_allocate(static_cast<std::size_t>(3 * (mb * kb + kb * nb + mb * nb)) * sizeof(R), 4096);
    const Op opa(transa), opb(transb);
    if (base == nullptr)
        return multiply(Product<T>{m, n, k, alpha, rows_of(opa, a, lda), columns_of(opb, b, ldb), c, ldc, false});
    R* memory = static_cast<R*>(base);
    for (Int j = 0; j < n; j += nb)
        for (Int i = 0; i < m; i += mb) {
            const Int rows = least(m - i, mb), columns = least(n - j, nb);
            const Planes<R> sums{memory, mb, nb}, left{memory + 3 * mb * nb, mb, kb},
                right{memory + 3 * (mb * nb + mb * kb), kb, nb};
            for (Int l = 0; l < k; l += kb) {
                const Int depth = least(k - l, kb);
                split(opa, rows, depth, a + (opa.transposed ? l + i * lda : i + l * lda), lda, left);
                split(opb, depth, columns, b + (opb.transposed ? j + l * ldb : l + j * ldb), ldb, right);
                for (int p = 0; p < 3; ++p)
                    multiply(Product<R>{rows,
                                        columns,
                                        depth,
                                        R(1),
                                        {left.plane(p), 1, mb},
                                        {right.plane(p), kb, 1},
                                        sums.plane(p),
                                        mb,
                                        l == 0});
            }
            for (Int q = 0; q < columns; ++q)
                for (Int r = 0; r < rows; ++r) {
                    const Int at = r + q * mb;
                    const R re = sums.plane(0)[at], im = sums.plane(1)[at];
                    T& x = c[i + r + (j + q) * ldc];
                    x = x + alpha * T{re - im, sums.plane(2)[at] - re - im};
                }
        }
    ork_serv_deallocate(base);
}

} // namespace ork::gemm

using namespace ork;
using Ptr = const std::int64_t*;
using Letter = const char*;

// Splitting as a routine of its own: op(X), rows x columns, to three planes of `columns` columns each with leading
// dimension ldto. A and B are split alike, so both names are one routine.
#define MEMBERS(p, R)                                                                                                  \
    ORK_EXPORT std::int64_t ork_blas_nx2_##p##gemm3m_copybn(Ptr rows, Ptr columns, const Complex<R>* x, Ptr ldx,       \
                                                            R* to, Ptr ldto)                                           \
    {                                                                                                                  \
        gemm::split(gemm::Op('N'), *rows, *columns, x, *ldx, {to, *ldto, *columns});                                   \
        return 0;                                                                                                      \
    }                                                                                                                  \
    ORK_EXPORT std::int64_t ork_blas_nx2_##p##gemm3m_copybt(Ptr rows, Ptr columns, const Complex<R>* x, Ptr ldx,       \
                                                            R* to, Ptr ldto)                                           \
    {                                                                                                                  \
        gemm::split(gemm::Op('T'), *rows, *columns, x, *ldx, {to, *ldto, *columns});                                   \
        return 0;                                                                                                      \
    }                                                                                                                  \
    ORK_EXPORT decltype(ork_blas_nx2_##p##gemm3m_copybn) ork_blas_nx2_##p##gemm3m_copyan                               \
        __attribute__((alias("ork_blas_nx2_" #p "gemm3m_copybn")));                                                    \
    ORK_EXPORT decltype(ork_blas_nx2_##p##gemm3m_copybt) ork_blas_nx2_##p##gemm3m_copyat                               \
        __attribute__((alias("ork_blas_nx2_" #p "gemm3m_copybt")));                                                    \
    ORK_EXPORT void ork_blas_nx2_x##p##gemm3m(                                                                         \
        Letter transa, Letter transb, Ptr m, Ptr n, Ptr k, const Complex<R>* alpha, const Complex<R>* a, Ptr lda,      \
        const Complex<R>* b, Ptr ldb, const Complex<R>* beta, Complex<R>* c, Ptr ldc)                                  \
    {                                                                                                                  \
        gemm::multiply_3m(*transa, *transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc);                     \
    }
MEMBERS(c, float)
MEMBERS(z, double)
