// SPDX-License-Identifier: MIT
// Written as a user of Eigen writes the operation: maps over the caller's arrays and one expression. Increments of one
// take maps with a static stride, which is what Eigen vectorises.
#include "peers/eigen.h"

#include <Eigen/Core>
#include <Eigen/Jacobi>
#include <complex>
#include <cstring>
#include <type_traits>

#define TEXT_OF(x) #x
#define TEXT(x) TEXT_OF(x)

namespace ork::peers {
namespace {

template <class T>
using Real = typename Eigen::NumTraits<T>::Real;

template <class T>
using Column = Eigen::Matrix<T, Eigen::Dynamic, 1>;

template <class T>
using Strided = Eigen::Map<std::conditional_t<std::is_const_v<T>, const Column<std::remove_const_t<T>>, Column<T>>, 0,
                           Eigen::InnerStride<>>;

// Calls body with the vector: of unit stride, or with its stride; a negative increment starts at the end.
template <class T, class Body>
auto with_vector(int n, T* x, int inc, Body&& body)
{
    using Plain = std::conditional_t<std::is_const_v<T>, const Column<std::remove_const_t<T>>, Column<T>>;
    if (inc == 1) return body(Eigen::Map<Plain>(x, n));
    T* first = inc < 0 ? x - static_cast<Eigen::Index>(n - 1) * inc : x;
    return body(Strided<T>(first, n, Eigen::InnerStride<>(inc)));
}

template <class T, class U, class Body>
auto with_vectors(int n, T* x, int incx, U* y, int incy, Body&& body)
{
    using X = std::conditional_t<std::is_const_v<T>, const Column<std::remove_const_t<T>>, Column<T>>;
    using Y = std::conditional_t<std::is_const_v<U>, const Column<std::remove_const_t<U>>, Column<U>>;
    if (incx == 1 && incy == 1) return body(Eigen::Map<X>(x, n), Eigen::Map<Y>(y, n));
    T* first_x = incx < 0 ? x - static_cast<Eigen::Index>(n - 1) * incx : x;
    U* first_y = incy < 0 ? y - static_cast<Eigen::Index>(n - 1) * incy : y;
    return body(Strided<T>(first_x, n, Eigen::InnerStride<>(incx)), Strided<U>(first_y, n, Eigen::InnerStride<>(incy)));
}

template <class T>
void axpy(const int* n, const T* alpha, const T* x, const int* incx, T* y, const int* incy)
{
    with_vectors(*n, x, *incx, y, *incy, [&](const auto& u, auto v) { v += *alpha * u; });
}

template <class T, class Alpha>
void scal(const int* n, const Alpha* alpha, T* x, const int* incx)
{
    with_vector(*n, x, *incx, [&](auto u) { u *= *alpha; });
}

template <class T>
void copy(const int* n, const T* x, const int* incx, T* y, const int* incy)
{
    with_vectors(*n, x, *incx, y, *incy, [](const auto& u, auto v) { v = u; });
}

template <class T>
void swap(const int* n, T* x, const int* incx, T* y, const int* incy)
{
    with_vectors(*n, x, *incx, y, *incy, [](auto u, auto v) { u.swap(v); });
}

template <class T, bool conjugated>
T dot(const int* n, const T* x, const int* incx, const T* y, const int* incy)
{
    return with_vectors(*n, x, *incx, y, *incy, [](const auto& u, const auto& v) -> T {
        if constexpr (conjugated)
            return u.dot(v);
        else
            return u.cwiseProduct(v).sum();
    });
}

template <class T>
void rot(const int* n, T* x, const int* incx, T* y, const int* incy, const Real<T>* c, const Real<T>* s)
{
    with_vectors(*n, x, *incx, y, *incy, [&](auto u, auto v) {
        Eigen::internal::apply_rotation_in_the_plane(u, v, Eigen::JacobiRotation<Real<T>>(*c, *s));
    });
}

template <class T>
Real<T> nrm2(const int* n, const T* x, const int* incx)
{
    // norm() would overflow where BLAS may not
    return with_vector(*n, x, *incx, [](const auto& u) -> Real<T> { return u.stableNorm(); });
}

template <class T>
Real<T> asum(const int* n, const T* x, const int* incx)
{
    return with_vector(*n, x, *incx, [](const auto& u) -> Real<T> {
        if constexpr (Eigen::NumTraits<T>::IsComplex)
            return u.real().cwiseAbs().sum() + u.imag().cwiseAbs().sum();
        else
            return u.cwiseAbs().sum();
    });
}

template <class T>
int iamax(const int* n, const T* x, const int* incx)
{
    Eigen::Index position = 0;
    with_vector(*n, x, *incx, [&](const auto& u) {
        if constexpr (Eigen::NumTraits<T>::IsComplex)
            (u.real().cwiseAbs() + u.imag().cwiseAbs()).maxCoeff(&position);
        else
            u.cwiseAbs().maxCoeff(&position);
    });
    return static_cast<int>(position) + 1;
}

template <class T>
void gemm(const char* transa, const char* transb, const int* m, const int* n, const int* k, const T* alpha, const T* a,
          const int* lda, const T* b, const int* ldb, const T* beta, T* c, const int* ldc)
{
    using Matrix = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic>;
    using In = Eigen::Map<const Matrix, 0, Eigen::OuterStride<>>;
    const auto plain = [](const char* trans) { return *trans == 'N' || *trans == 'n'; };
    const bool na = plain(transa), nb = plain(transb), conja = *transa == 'C', conjb = *transb == 'C';
    const In A(a, na ? *m : *k, na ? *k : *m, Eigen::OuterStride<>(*lda));
    const In B(b, nb ? *k : *n, nb ? *n : *k, Eigen::OuterStride<>(*ldb));
    Eigen::Map<Matrix, 0, Eigen::OuterStride<>> C(c, *m, *n, Eigen::OuterStride<>(*ldc));
    const auto store = [&](const auto& product) {
        if (*beta == T(0)) {
            C.noalias() = *alpha * product;
        } else {
            if (*beta != T(1)) C *= *beta;
            C.noalias() += *alpha * product;
        }
    };
    const auto times_b = [&](const auto& left) {
        if (nb)
            store(left * B);
        else if (conjb)
            store(left * B.adjoint());
        else
            store(left * B.transpose());
    };
    if (na)
        times_b(A);
    else if (conja)
        times_b(A.adjoint());
    else
        times_b(A.transpose());
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

using C = std::complex<float>;
using Z = std::complex<double>;

// clang-format off
const Symbol symbols[] = {
    {"sgemm_", address(gemm<float>)},       {"dgemm_", address(gemm<double>)},
    {"cgemm_", address(gemm<C>)},           {"zgemm_", address(gemm<Z>)},
    {"saxpy_", address(axpy<float>)},       {"daxpy_", address(axpy<double>)},
    {"caxpy_", address(axpy<C>)},           {"zaxpy_", address(axpy<Z>)},
    {"sscal_", address(scal<float, float>)},{"dscal_", address(scal<double, double>)},
    {"cscal_", address(scal<C, C>)},        {"zscal_", address(scal<Z, Z>)},
    {"csscal_", address(scal<C, float>)},   {"zdscal_", address(scal<Z, double>)},
    {"scopy_", address(copy<float>)},       {"dcopy_", address(copy<double>)},
    {"ccopy_", address(copy<C>)},           {"zcopy_", address(copy<Z>)},
    {"sswap_", address(swap<float>)},       {"dswap_", address(swap<double>)},
    {"cswap_", address(swap<C>)},           {"zswap_", address(swap<Z>)},
    {"sdot_", address(dot<float, false>)},  {"ddot_", address(dot<double, false>)},
    {"cdotu_", address(dot<C, false>)},     {"zdotu_", address(dot<Z, false>)},
    {"cdotc_", address(dot<C, true>)},      {"zdotc_", address(dot<Z, true>)},
    {"srot_", address(rot<float>)},         {"drot_", address(rot<double>)},
    {"snrm2_", address(nrm2<float>)},       {"dnrm2_", address(nrm2<double>)},
    {"scnrm2_", address(nrm2<C>)},          {"dznrm2_", address(nrm2<Z>)},
    {"sasum_", address(asum<float>)},       {"dasum_", address(asum<double>)},
    {"scasum_", address(asum<C>)},          {"dzasum_", address(asum<Z>)},
    {"isamax_", address(iamax<float>)},     {"idamax_", address(iamax<double>)},
    {"icamax_", address(iamax<C>)},         {"izamax_", address(iamax<Z>)},
};
// clang-format on

} // namespace

const char* eigen_version()
{
    return TEXT(EIGEN_WORLD_VERSION) "." TEXT(EIGEN_MAJOR_VERSION) "." TEXT(EIGEN_MINOR_VERSION);
}

void* eigen_symbol(const char* symbol)
{
    for (const Symbol& s : symbols)
        if (std::strcmp(s.name, symbol) == 0) return s.address;
    return eigen_matrix_symbol(symbol);
}

} // namespace ork::peers
