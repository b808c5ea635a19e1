// SPDX-License-Identifier: MIT
// The dense level-2 kernels by element type, and what their tests share.
#pragma once

#include <array>
#include <limits>

#include "blas/level1_kernels_by_type.h"
#include "blas/level2_kernels.h"
#include "support/compare.h"
#include "support/environment.h"
#include "support/fake_core.h"
#include "support/strided.h"

namespace ork::test {

// clang-format off
template <class T> inline constexpr auto gemv = of_type<T>(ork_blas_nx2_xsgemv, ork_blas_nx2_xdgemv, ork_blas_nx2_xcgemv, ork_blas_nx2_xzgemv);
template <class T> inline constexpr auto ger = of_type<T>(ork_blas_nx2_xsger, ork_blas_nx2_xdger, ork_blas_nx2_xcgeru, ork_blas_nx2_xzgeru);
template <class T> inline constexpr auto gerc = of_type<T>(ork_blas_nx2_xsger, ork_blas_nx2_xdger, ork_blas_nx2_xcgerc, ork_blas_nx2_xzgerc);
template <class T> inline constexpr auto symv = of_type<T>(ork_blas_nx2_xssymv, ork_blas_nx2_xdsymv, ork_blas_nx2_chemv, ork_blas_nx2_zhemv);
template <class T> inline constexpr auto symv_kernel = of_type<T>(ork_blas_nx2_xssymv_kernel, ork_blas_nx2_xdsymv_kernel);
template <class T> inline constexpr auto syr = of_type<T>(ork_blas_nx2_xssyr, ork_blas_nx2_xdsyr, ork_blas_nx2_cher, ork_blas_nx2_zher);
template <class T> inline constexpr auto syr2 = of_type<T>(ork_blas_nx2_xssyr2, ork_blas_nx2_xdsyr2, ork_blas_nx2_cher2, ork_blas_nx2_zher2);
template <class T> inline constexpr auto syr_in_thread = of_type<T>(ork_blas_nx2_xssyr_in_thread, ork_blas_nx2_xdsyr_in_thread);
template <class T> inline constexpr auto syr2_in_thread = of_type<T>(ork_blas_nx2_xssyr2_in_thread, ork_blas_nx2_xdsyr2_in_thread);
template <class T> inline constexpr auto trmv = of_type<T>(ork_blas_nx2_xstrmv, ork_blas_nx2_xdtrmv, ork_blas_nx2_xctrmv, ork_blas_nx2_xztrmv);
template <class T> inline constexpr auto trmv_in_thread = of_type<T>(ork_blas_nx2_xstrmv_in_thread, ork_blas_nx2_xdtrmv_in_thread, ork_blas_nx2_xctrmv_in_thread, ork_blas_nx2_xztrmv_in_thread);
template <class T> inline constexpr auto trsv = of_type<T>(ork_blas_nx2_xstrsv, ork_blas_nx2_xdtrsv, ork_blas_nx2_xctrsv, ork_blas_nx2_xztrsv);
// clang-format on

using Precisions = testing::Types<float, double, cfloat, cdouble>;

template <class T>
T scalar(double re, double im)
{
    if constexpr (is_complex<T>)
        return {static_cast<Real<T>>(re), static_cast<Real<T>>(im)};
    else
        return static_cast<T>(re);
}

template <class R>
constexpr R quiet_nan = std::numeric_limits<R>::quiet_NaN();
template <class R>
constexpr R infinite = std::numeric_limits<R>::infinity();

// Values with a NaN, an infinity and zeros here and there.
template <class T>
T unusual(Random& random)
{
    switch (random.integer(0, 40)) {
    case 0:
        return scalar<T>(quiet_nan<double>, 1);
    case 1:
        return scalar<T>(infinite<double>, -1);
    case 2:
        return scalar<T>(0.5, -infinite<double>);
    case 3:
    case 4:
    case 5:
        return T{};
    default:
        return random.uniform<T>();
    }
}

// For the pattern of NaN and infinity: finite parts of elements below 1 beside them, within rounding.
template <class T, class Got>
void expect_pattern(const Got& got, std::vector<Expected<quad>> want)
{
    for (auto& element : want) element.scale = 100;
    expect_near<T>(got, want, 100);
}

// Element (i, j) of the matrix of which one triangle is stored.
template <class T>
T symmetric_element(const Matrix<T>& a, char uplo, int64_t i, int64_t j)
{
    if (i == j) return scalar<T>(std::real(a(i, i)), 0);
    return (uplo == 'U') == (i < j) ? a(i, j) : conjugated(a(j, i));
}

// An n x n matrix of which only one triangle may be looked at: the other one, and the imaginary parts of a Hermitian
// diagonal, hold NaN.
template <class T>
struct Triangular {
    char uplo;
    Matrix<T> a;

    Triangular(char triangle, int64_t n, int64_t pad, Guard side, std::size_t offset, std::uint64_t seed)
        : uplo(triangle), a(n, n, n + pad, side, offset)
    {
        Random random(seed);
        fill([&] { return random.uniform<T>(); });
    }
    bool referenced(int64_t i, int64_t j) const { return uplo == 'U' ? i <= j : i >= j; }
    template <class Element>
    void fill(Element&& element)
    {
        for (int64_t j = 0; j < a.columns(); ++j)
            for (int64_t i = 0; i < a.rows(); ++i)
                a(i, j) = referenced(i, j) ? element() : scalar<T>(quiet_nan<double>, quiet_nan<double>);
        a.remember();
    }
    void hermitian_diagonal()
    {
        for (int64_t i = 0; i < a.rows(); ++i) a(i, i) = scalar<T>(std::real(a(i, i)), quiet_nan<double>);
        a.remember();
    }
};

} // namespace ork::test
