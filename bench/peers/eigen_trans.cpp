// SPDX-License-Identifier: MIT
// Eigen's expressions behind the Fortran signatures of omatcopy, imatcopy and omatadd, by columns, without conjugation:
// maps of the caller's arrays and one expression.
#include <Eigen/Core>
#include <complex>

#include "peers/trans.h"

namespace ork::peers {
namespace {

using Eigen::Dynamic;

template <class T>
using Matrix = Eigen::Matrix<T, Dynamic, Dynamic>;
template <class T>
using In = Eigen::Map<const Matrix<T>, 0, Eigen::OuterStride<>>;
template <class T>
using InOut = Eigen::Map<Matrix<T>, 0, Eigen::OuterStride<>>;

template <class T>
void omatcopy(const char*, const char* trans, const int* m, const int* n, const T* alpha, const T* a, const int* lda,
              T* b, const int* ldb)
{
    const In<T> A(a, *m, *n, Eigen::OuterStride<>(*lda));
    const bool transposed = *trans == 'T';
    InOut<T> B(b, transposed ? *n : *m, transposed ? *m : *n, Eigen::OuterStride<>(*ldb));
    if (*alpha == T(1))
        transposed ? void(B.noalias() = A.transpose()) : void(B.noalias() = A);
    else
        transposed ? void(B.noalias() = *alpha * A.transpose()) : void(B.noalias() = *alpha * A);
}

template <class T>
void imatcopy(const char*, const char* trans, const int* m, const int* n, const T* alpha, T* a, const int* lda,
              const int* ldb)
{
    InOut<T> A(a, *m, *n, Eigen::OuterStride<>(*lda));
    if (*trans == 'N') {
        A *= *alpha;
    } else if (*m == *n) {
        A.transposeInPlace();
        if (*alpha != T(1)) A *= *alpha;
    } else { // a map can't change its shape
        const Matrix<T> transposed = *alpha * A.transpose();
        InOut<T>(a, *n, *m, Eigen::OuterStride<>(*ldb)).noalias() = transposed;
    }
}

template <class T>
void omatadd(const char*, const char* transa, const char* transb, const int* m, const int* n, const T* alpha,
             const T* a, const int* lda, const T* beta, const T* b, const int* ldb, T* c, const int* ldc)
{
    const auto map = [&](const T* x, char trans, int ld) {
        return trans == 'T' ? In<T>(x, *n, *m, Eigen::OuterStride<>(ld)) : In<T>(x, *m, *n, Eigen::OuterStride<>(ld));
    };
    const In<T> A = map(a, *transa, *lda), B = map(b, *transb, *ldb);
    InOut<T> C(c, *m, *n, Eigen::OuterStride<>(*ldc));
    if (*transa == 'T')
        *transb == 'T' ? void(C.noalias() = *alpha * A.transpose() + *beta * B.transpose())
                       : void(C.noalias() = *alpha * A.transpose() + *beta * B);
    else
        *transb == 'T' ? void(C.noalias() = *alpha * A + *beta * B.transpose())
                       : void(C.noalias() = *alpha * A + *beta * B);
}

template <class Function>
void* address(Function* function)
{
    return reinterpret_cast<void*>(function);
}

template <class T>
void* find(const std::string& stem)
{
    return stem == "omatcopy_"   ? address(omatcopy<T>)
           : stem == "imatcopy_" ? address(imatcopy<T>)
           : stem == "omatadd_"  ? address(omatadd<T>)
                                 : nullptr;
}

} // namespace

void* eigen_trans_symbol(const std::string& symbol)
{
    const std::string stem = symbol.substr(1);
    switch (symbol[0]) {
    case 's':
        return find<float>(stem);
    case 'd':
        return find<double>(stem);
    case 'c':
        return find<std::complex<float>>(stem);
    default:
        return find<std::complex<double>>(stem);
    }
}

} // namespace ork::peers
