// SPDX-License-Identifier: MIT
// Levels 2 and 3, as eigen.cpp: maps and one expression. What Eigen has no expression for, complex symmetric products
// for instance, is left out, and so are single and complex numbers where they would cost minutes of compiling.
#include <Eigen/Core>
#include <complex>
#include <cstring>

#include "peers/eigen.h"

namespace ork::peers {
namespace {

using Eigen::Dynamic;
using Eigen::Index;

template <class T>
using Matrix = Eigen::Matrix<T, Dynamic, Dynamic>;
template <class T>
using In = Eigen::Map<const Matrix<T>, 0, Eigen::OuterStride<>>;
template <class T>
using InOut = Eigen::Map<Matrix<T>, 0, Eigen::OuterStride<>>;
template <class T>
using VectorIn = Eigen::Map<const Eigen::Matrix<T, Dynamic, 1>>;
template <class T>
using VectorInOut = Eigen::Map<Eigen::Matrix<T, Dynamic, 1>>;

template <class T>
In<T> in(const T* a, Index rows, Index columns, int ld)
{
    return {a, rows, columns, Eigen::OuterStride<>(ld)};
}
template <class T>
InOut<T> in_out(T* a, Index rows, Index columns, int ld)
{
    return {a, rows, columns, Eigen::OuterStride<>(ld)};
}

// Calls body with op(a).
template <class T, class Body>
void with_op(char trans, const In<T>& a, Body&& body)
{
    if (trans == 'N')
        body(a);
    else if (Eigen::NumTraits<T>::IsComplex && trans == 'C')
        body(a.adjoint());
    else
        body(a.transpose());
}

// Calls body with op(A) as a triangle of op(a): a transposed lower triangle is an upper one.
template <class T, class Body>
void with_triangle(char uplo, char trans, char diag, const In<T>& a, Body&& body)
{
    with_op<T>(trans, a, [&](const auto& op) {
        const bool lower = (uplo == 'L') == (trans == 'N');
        if (diag == 'U')
            lower ? body(op.template triangularView<Eigen::UnitLower>())
                  : body(op.template triangularView<Eigen::UnitUpper>());
        else
            lower ? body(op.template triangularView<Eigen::Lower>()) : body(op.template triangularView<Eigen::Upper>());
    });
}

// C <- or += alpha product, by beta.
template <class T, class C, class Product>
void store(T beta, C&& c, const Product& product)
{
    if (beta == T(0)) {
        c.noalias() = product;
    } else {
        if (beta != T(1)) c *= beta;
        c.noalias() += product;
    }
}

// Increments of one only, as the problems have.

template <class T>
void gemv(const char* trans, const int* m, const int* n, const T* alpha, const T* a, const int* lda, const T* x,
          const int*, const T* beta, T* y, const int*)
{
    with_op<T>(*trans, in(a, *m, *n, *lda), [&](const auto& op) {
        store(*beta, VectorInOut<T>(y, op.rows()), *alpha * op * VectorIn<T>(x, op.cols()));
    });
}

template <class T>
void symv(const char* uplo, const int* n, const T* alpha, const T* a, const int* lda, const T* x, const int*,
          const T* beta, T* y, const int*)
{
    const In<T> matrix = in(a, *n, *n, *lda);
    const VectorIn<T> u(x, *n);
    VectorInOut<T> v(y, *n);
    *uplo == 'L' ? store(*beta, v, *alpha * matrix.template selfadjointView<Eigen::Lower>() * u)
                 : store(*beta, v, *alpha * matrix.template selfadjointView<Eigen::Upper>() * u);
}

template <class T>
void ger(const int* m, const int* n, const T* alpha, const T* x, const int*, const T* y, const int*, T* a,
         const int* lda)
{
    in_out(a, *m, *n, *lda).noalias() += *alpha * VectorIn<T>(x, *m) * VectorIn<T>(y, *n).transpose();
}

template <class T>
void syr(const char* uplo, const int* n, const T* alpha, const T* x, const int*, T* a, const int* lda)
{
    auto matrix = in_out(a, *n, *n, *lda);
    const VectorIn<T> u(x, *n);
    if (*uplo == 'L')
        matrix.template selfadjointView<Eigen::Lower>().rankUpdate(u, *alpha);
    else
        matrix.template selfadjointView<Eigen::Upper>().rankUpdate(u, *alpha);
}

template <class T>
void syr2(const char* uplo, const int* n, const T* alpha, const T* x, const int*, const T* y, const int*, T* a,
          const int* lda)
{
    auto matrix = in_out(a, *n, *n, *lda);
    const VectorIn<T> u(x, *n), v(y, *n);
    if (*uplo == 'L')
        matrix.template selfadjointView<Eigen::Lower>().rankUpdate(u, v, *alpha);
    else
        matrix.template selfadjointView<Eigen::Upper>().rankUpdate(u, v, *alpha);
}

template <class T>
void trsv(const char* uplo, const char* trans, const char* diag, const int* n, const T* a, const int* lda, T* x,
          const int*)
{
    with_triangle<T>(*uplo, *trans, *diag, in(a, *n, *n, *lda), [&](const auto& triangle) {
        VectorInOut<T> u(x, *n);
        triangle.solveInPlace(u);
    });
}

template <class T>
void trmv(const char* uplo, const char* trans, const char* diag, const int* n, const T* a, const int* lda, T* x,
          const int*)
{
    with_triangle<T>(*uplo, *trans, *diag, in(a, *n, *n, *lda), [&](const auto& triangle) {
        VectorInOut<T> u(x, *n);
        u = triangle * u;
    });
}

template <class T>
void symm(const char* side, const char* uplo, const int* m, const int* n, const T* alpha, const T* a, const int* lda,
          const T* b, const int* ldb, const T* beta, T* c, const int* ldc)
{
    const int order = *side == 'L' ? *m : *n;
    const In<T> A = in(a, order, order, *lda), B = in(b, *m, *n, *ldb);
    auto C = in_out(c, *m, *n, *ldc);
    const auto multiply = [&](const auto& symmetric) {
        *side == 'L' ? store(*beta, C, *alpha * symmetric * B) : store(*beta, C, *alpha * B * symmetric);
    };
    *uplo == 'L' ? multiply(A.template selfadjointView<Eigen::Lower>())
                 : multiply(A.template selfadjointView<Eigen::Upper>());
}

template <class T>
void syrk(const char* uplo, const char* trans, const int* n, const int* k, const T* alpha, const T* a, const int* lda,
          const T* beta, T* c, const int* ldc)
{
    const bool plain = *trans == 'N';
    const In<T> A = in(a, plain ? *n : *k, plain ? *k : *n, *lda);
    auto C = in_out(c, *n, *n, *ldc);
    const auto update = [&](auto triangle) {
        const auto store_triangle = [&](const auto& product) {
            if (*beta == T(0)) {
                triangle = product;
            } else {
                if (*beta != T(1)) triangle *= *beta;
                triangle += product;
            }
        };
        plain ? store_triangle(*alpha * A * A.transpose()) : store_triangle(*alpha * A.transpose() * A);
    };
    *uplo == 'L' ? update(C.template triangularView<Eigen::Lower>())
                 : update(C.template triangularView<Eigen::Upper>());
}

template <class T>
void trsm(const char* side, const char* uplo, const char* trans, const char* diag, const int* m, const int* n,
          const T* alpha, const T* a, const int* lda, T* b, const int* ldb)
{
    const int order = *side == 'L' ? *m : *n;
    auto B = in_out(b, *m, *n, *ldb);
    if (*alpha != T(1)) B *= *alpha;
    with_triangle<T>(*uplo, *trans, *diag, in(a, order, order, *lda), [&](const auto& triangle) {
        *side == 'L' ? triangle.template solveInPlace<Eigen::OnTheLeft>(B)
                     : triangle.template solveInPlace<Eigen::OnTheRight>(B);
    });
}

template <class T>
void trmm(const char* side, const char* uplo, const char* trans, const char* diag, const int* m, const int* n,
          const T* alpha, const T* a, const int* lda, T* b, const int* ldb)
{
    const int order = *side == 'L' ? *m : *n;
    auto B = in_out(b, *m, *n, *ldb);
    if (*alpha != T(1)) B *= *alpha;
    with_triangle<T>(*uplo, *trans, *diag, in(a, order, order, *lda), [&](const auto& triangle) {
        if (*side == 'L')
            B = triangle * B;
        else
            B = B * triangle;
    });
}

struct Symbol {
    const char* name;
    void* address;
};

template <class Function>
void* address(Function* function)
{
    return reinterpret_cast<void*>(function);
}

using Z = std::complex<double>;

// clang-format off
const Symbol symbols[] = {
    {"sgemv_", address(gemv<float>)}, {"dgemv_", address(gemv<double>)}, {"zgemv_", address(gemv<Z>)},
    {"cgemv_", address(gemv<std::complex<float>>)},
    {"ssymv_", address(symv<float>)}, {"dsymv_", address(symv<double>)}, {"zhemv_", address(symv<Z>)},
    {"sger_",  address(ger<float>)},  {"dger_",  address(ger<double>)},  {"zgeru_", address(ger<Z>)},
    {"ssyr_",  address(syr<float>)},  {"dsyr_",  address(syr<double>)},
    {"ssyr2_", address(syr2<float>)}, {"dsyr2_", address(syr2<double>)},
    {"strsv_", address(trsv<float>)}, {"dtrsv_", address(trsv<double>)}, {"ztrsv_", address(trsv<Z>)},
    {"strmv_", address(trmv<float>)}, {"dtrmv_", address(trmv<double>)}, {"ztrmv_", address(trmv<Z>)},
    {"ssymm_", address(symm<float>)}, {"dsymm_", address(symm<double>)},
    {"ssyrk_", address(syrk<float>)}, {"dsyrk_", address(syrk<double>)}, {"zsyrk_", address(syrk<Z>)},
    {"strsm_", address(trsm<float>)}, {"dtrsm_", address(trsm<double>)}, {"ztrsm_", address(trsm<Z>)},
    {"strmm_", address(trmm<float>)}, {"dtrmm_", address(trmm<double>)}, {"ztrmm_", address(trmm<Z>)},
};
// clang-format on

} // namespace

void* eigen_matrix_symbol(const char* symbol)
{
    for (const Symbol& s : symbols)
        if (std::strcmp(s.name, symbol) == 0) return s.address;
    return nullptr;
}

} // namespace ork::peers
