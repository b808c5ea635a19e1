// SPDX-License-Identifier: MIT
// Inverses of triangles, and from them those of matrices by their factors.
#include "blas/work_buffer.h"
#include "lapack/crossover.h"
#include "lapack/drivers.h"
#include "lapack/instantiate.h"
#include "lapack/kernels.h"
#include "lapack/scalar.h"

namespace ork::lapack {

namespace {

constexpr Int leaf = 16;

// Half of an order, in whole leaves.
constexpr Int half(Int n) { return (n / 2 + leaf - 1) / leaf * leaf; }

// Number of the first diagonal element that is zero, or 0.
template <class T>
Int first_zero(Int n, const T* a, Int lda)
{
    for (Int i = 0; i < n; ++i)
        if (a[i * (1 + lda)] == T()) return i + 1;
    return 0;
}

// Column by column: x <- -(what is inverted already) x / diagonal element.
template <class T>
void invert_leaf(char uplo, char diag, Int n, Matrix<T> a)
{
    const Int one = 1;
    for (Int done = 0; done < n; ++done) {
        const Int j = uplo == 'U' ? done : n - 1 - done;
        T scale(-1);
        if (diag == 'N') {
            a(j, j) = inverse(a(j, j));
            scale = -a(j, j);
        }
        if (done == 0) continue;
        T* x = uplo == 'U' ? &a(0, j) : &a(j + 1, j);
        const Matrix<T> known = uplo == 'U' ? a : a.from(j + 1, j + 1);
        Level3<T>::trmv(&uplo, "N", &diag, &done, known.data, &known.lead, x, &one);
        for (Int i = 0; i < done; ++i) x[i] = product(scale, x[i]);
    }
}

// The square beside two triangles becomes -A11^-1 A12 A22^-1 (upper) before they are inverted.
template <class T>
void invert_triangle(char uplo, char diag, Int n, Matrix<T> a)
{
    if (n <= leaf) return invert_leaf(uplo, diag, n, a);
    const Int first = half(n), second = n - first;
    const Matrix<T> rest = a.from(first, first);
    if (uplo == 'U') {
        const Matrix<T> beside = a.from(0, first);
        solve<T>('L', 'U', 'N', diag, first, second, -1, a, beside);
        solve<T>('R', 'U', 'N', diag, first, second, 1, rest, beside);
    } else {
        const Matrix<T> beside = a.from(first, 0);
        solve<T>('L', 'L', 'N', diag, second, first, -1, rest, beside);
        solve<T>('R', 'L', 'N', diag, second, first, 1, a, beside);
    }
    invert_triangle(uplo, diag, first, a);
    invert_triangle(uplo, diag, second, rest);
}

// One triangle of U U^H or L^H L, in place.
template <class T>
void square_leaf(char uplo, Int n, Matrix<T> a)
{
    // Entry (i, j), i <= j, is a sum over l >= j of u(i, l) conj(u(j, l)), where u is U or L^H; column after column
    // nothing is overwritten that is still needed.
    const auto factor = [&](Int i, Int l) -> T { return uplo == 'U' ? a(i, l) : conjugated(a(l, i)); };
    for (Int j = 0; j < n; ++j)
        for (Int i = 0; i <= j; ++i) {
            T sum{};
            for (Int l = j; l < n; ++l) sum += product(factor(i, l), conjugated(factor(j, l)));
            if (i == j) sum = std::real(sum);
            if (uplo == 'U')
                a(i, j) = sum;
            else
                a(j, i) = conjugated(sum);
        }
}

template <class T>
void square(char uplo, Int n, Matrix<T> a)
{
    if (n <= leaf) return square_leaf(uplo, n, a);
    const Int first = half(n), second = n - first;
    const Matrix<T> rest = a.from(first, first);
    square(uplo, first, a);
    if (uplo == 'U') {
        add_square<T>('U', 'N', first, second, 1, a.from(0, first), a);
        multiply_triangle<T>('R', 'U', adjoint<T>, 'N', first, second, rest, a.from(0, first));
    } else {
        add_square<T>('L', adjoint<T>, first, second, 1, a.from(first, 0), a);
        multiply_triangle<T>('L', 'L', adjoint<T>, 'N', second, first, rest, a.from(first, 0));
    }
    square(uplo, second, rest);
}

// A <- A L^-1 for A = U^-1 on and above the diagonal and L below it: block column by block column from the right, L's
// block aside meanwhile.
template <class T>
void divide_by_lower(Int n, Matrix<T> a, T* work)
{
    constexpr Int most = 64;
    const Int width = std::min(n, most);
    Matrix<T> lower{nullptr, blas::round_up(n, 8) + 8};
    const blas::WorkBuffer<T> buffer(lower.lead * width);
    lower.data = buffer.data();
    const Int columns = lower.data != nullptr ? width : 1; // the caller's work has room for one
    if (columns == 1) lower = {work, n};
    for (Int j = (n - 1) / columns * columns; j >= 0; j -= columns) {
        const Int count = std::min(columns, n - j), next = j + count;
        for (Int k = 0; k < count; ++k)
            for (Int i = j + k + 1; i < n; ++i) {
                lower(i, k) = a(i, j + k);
                a(i, j + k) = T();
            }
        if (next < n)
            multiply<T>('N', 'N', n, count, n - next, -1, a.from(0, next), lower.from(next, 0), 1, a.from(0, j));
        solve<T>('R', 'L', 'N', 'U', n, count, 1, lower.from(j, 0), a.from(0, j));
    }
}

template <class T>
Int invert(Int n, Matrix<T> a, T* work)
{
    if (const Int zero = first_zero(n, a.data, a.lead); zero != 0) return zero;
    invert_triangle('U', 'N', n, a);
    divide_by_lower(n, a, work);
    return 0;
}

} // namespace

template <class T>
Int trtri(char uplo, char diag, Int n, T* a, Int lda)
{
    if (diag == 'N')
        if (const Int zero = first_zero(n, a, lda); zero != 0) return zero;
    invert_triangle<T>(uplo, diag, n, {a, lda});
    return 0;
}

template <class T>
Int potri(char uplo, Int n, T* a, Int lda)
{
    const Int info = trtri<T>(uplo, 'N', n, a, lda);
    if (info == 0) square<T>(uplo, n, {a, lda});
    return info;
}

template <class T>
Int getri(Int n, T* a, Int lda, Pivots ipiv, T* work)
{
    if (n == 0) return 0;
    if (n <= small_inverse) {
        Int info = 0, rows[small_inverse];
        const Int* wide = ipiv.wide();
        if (wide == nullptr)
            for (Int i = 0; i < n; ++i) rows[i] = ipiv.get(i);
        kernels::getri_small<T>(&n, a, &lda, wide != nullptr ? wide : rows, work, &n, &info);
        return info;
    }
    if (const Int info = invert<T>(n, {a, lda}, work); info != 0) return info;
    // (P L U)^-1 = U^-1 L^-1 P^T: what getrf did to rows, in the opposite order to columns.
    const Int one = 1;
    for (Int j = n - 2; j >= 0; --j)
        if (const Int other = ipiv.get(j) - 1; other != j)
            Level3<T>::swap(&n, a + j * lda, &one, a + other * lda, &one);
    return 0;
}

template <class T>
Int getrinp(Int n, T* a, Int lda, T* work)
{
    if (n == 0) return 0;
    if (n > small_inverse) return invert<T>(n, {a, lda}, work);
    Int info = 0;
    kernels::getrinp_small<T>(&n, a, &lda, work, &n, &info);
    return info;
}

INSTANTIATE(trtri)
INSTANTIATE(potri)
INSTANTIATE(getri)
INSTANTIATE(getrinp)

} // namespace ork::lapack
