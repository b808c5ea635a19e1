// SPDX-License-Identifier: MIT
// The level 3 of core/blas by value, without its checks: threaded where it pays. `multiply` and its like are out of
// line, one body a precision for all drivers.
#pragma once

#include "blas/gemm.h"
#include "blas/rank_k.h"
#include "blas/side.h"
#include "ork/abi/lapack/types.h"

namespace ork::lapack {

template <class T>
inline constexpr bool is_complex = blas::is_complex<T>;

// The letter of A^H, A^T in real types.
template <class T>
inline constexpr char adjoint = is_complex<T> ? 'C' : 'T';

// An m x n piece of a matrix by columns.
template <class T>
struct Matrix {
    T* data;
    Int lead;

    // From element (i, j) on.
    Matrix from(Int i, Int j) const { return {data + i + j * lead, lead}; }
    T& operator()(Int i, Int j) const { return data[i + j * lead]; }
    operator Matrix<const T>() const { return {data, lead}; }
};

template <class T>
struct Level3;
#define ORK_LEVEL3(T, p, hermitian)                                                                                    \
    template <>                                                                                                        \
    struct Level3<T> {                                                                                                 \
        static constexpr auto& trsm = blas::kernels::x##p##trsm;                                                       \
        static constexpr auto& trmm = blas::kernels::x##p##trmm;                                                       \
        static constexpr auto& herk = blas::kernels::x##p##hermitian;                                                  \
        static constexpr auto& trmv = blas::kernels::x##p##trmv;                                                       \
        static constexpr auto& trsv = blas::kernels::x##p##trsv;                                                       \
        static constexpr auto& swap = blas::kernels::x##p##swap;                                                       \
    };
ORK_LEVEL3(float, s, syrk)
ORK_LEVEL3(double, d, syrk)
ORK_LEVEL3(std::complex<float>, c, herk)
ORK_LEVEL3(std::complex<double>, z, herk)
#undef ORK_LEVEL3

// C <- alpha op(A) op(B) + beta C, C m x n, depth k.
template <class T>
[[gnu::noinline]] void multiply(char opa, char opb, Int m, Int n, Int k, T alpha, Matrix<const T> a, Matrix<const T> b,
                                T beta, Matrix<T> c)
{
    blas::gemm<T>(&opa, &opb, &m, &n, &k, &alpha, a.data, &a.lead, b.data, &b.lead, &beta, c.data, &c.lead);
}

// B <- alpha op(A)^-1 B (side L) or alpha B op(A)^-1 (R), B m x n.
template <class T>
[[gnu::noinline]] void solve(char side, char uplo, char op, char diag, Int m, Int n, T alpha, Matrix<const T> a,
                             Matrix<T> b)
{
    if (m == 0 || n == 0) return;
    // One right-hand side needs nothing packed: half the time.
    if (const Int one = 1; side == 'L' && n == 1 && alpha == T(1))
        return static_cast<void>(Level3<T>::trsv(&uplo, &op, &diag, &m, a.data, &a.lead, b.data, &one));
    blas::trmm<T, Level3<T>::trsm>(&side, &uplo, &op, &diag, &m, &n, &alpha, a.data, &a.lead, b.data, &b.lead);
}

// B <- op(A) B or B op(A), A triangular.
template <class T>
[[gnu::noinline]] void multiply_triangle(char side, char uplo, char op, char diag, Int m, Int n, Matrix<const T> a,
                                         Matrix<T> b)
{
    if (m == 0 || n == 0) return;
    const T one(1);
    blas::trmm<T, Level3<T>::trmm>(&side, &uplo, &op, &diag, &m, &n, &one, a.data, &a.lead, b.data, &b.lead);
}

// One triangle of C <- C + alpha A A^H (op N, A n x k) or C + alpha A^H A.
template <class T>
[[gnu::noinline]] void add_square(char uplo, char op, Int n, Int k, Part<T> alpha, Matrix<const T> a, Matrix<T> c)
{
    if (n == 0 || k == 0) return;
    const Part<T> one = 1;
    blas::syrk<T, Part<T>, Level3<T>::herk>(&uplo, &op, &n, &k, &alpha, a.data, &a.lead, &one, c.data, &c.lead);
}

} // namespace ork::lapack
