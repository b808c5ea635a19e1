// SPDX-License-Identifier: MIT
// The level-1 kernels by element type, and the plain arithmetic of their formulas.
#pragma once

#include <complex>
#include <cstdint>
#include <type_traits>

#include "blas/level1_kernels.h"
#include "support/scalar.h"

namespace ork::test {

using cfloat = std::complex<float>;
using cdouble = std::complex<double>;

template <class T, class S, class D, class C, class Z>
constexpr auto of_type(S* s, D* d, C* c, Z* z)
{
    if constexpr (std::is_same_v<T, float>)
        return s;
    else if constexpr (std::is_same_v<T, double>)
        return d;
    else if constexpr (std::is_same_v<T, cfloat>)
        return c;
    else
        return z;
}
template <class T, class S, class D>
constexpr auto of_type(S* s, D* d)
{
    if constexpr (std::is_same_v<Real<T>, float>)
        return s;
    else
        return d;
}

// clang-format off
template <class T> inline constexpr auto axpy = of_type<T>(ork_blas_nx2_xsaxpy, ork_blas_nx2_xdaxpy, ork_blas_nx2_xcaxpy, ork_blas_nx2_xzaxpy);
template <class T> inline constexpr auto axpby = of_type<T>(ork_blas_nx2_xsaxpby, ork_blas_nx2_xdaxpby, ork_blas_nx2_xcaxpby, ork_blas_nx2_xzaxpby);
template <class T> inline constexpr auto scal = of_type<T>(ork_blas_nx2_xsscal, ork_blas_nx2_xdscal, ork_blas_nx2_xcscal, ork_blas_nx2_xzscal);
template <class T> inline constexpr auto scal_real = of_type<T>(ork_blas_nx2_xcsscal, ork_blas_nx2_xzdscal);
template <class T> inline constexpr auto copy = of_type<T>(ork_blas_nx2_xscopy, ork_blas_nx2_xdcopy, ork_blas_nx2_xccopy, ork_blas_nx2_xzcopy);
template <class T> inline constexpr auto swap = of_type<T>(ork_blas_nx2_xsswap, ork_blas_nx2_xdswap, ork_blas_nx2_xcswap, ork_blas_nx2_xzswap);
template <class T> inline constexpr auto dot = of_type<T>(ork_blas_nx2_xsdot, ork_blas_nx2_xddot, ork_blas_nx2_xcdotu, ork_blas_nx2_xzdotu);
template <class T> inline constexpr auto dotc = of_type<T>(ork_blas_nx2_xsdot, ork_blas_nx2_xddot, ork_blas_nx2_xcdotc, ork_blas_nx2_xzdotc);
template <class T> inline constexpr auto nrm2 = of_type<T>(ork_blas_nx2_xsnrm2, ork_blas_nx2_xdnrm2, ork_blas_nx2_xscnrm2, ork_blas_nx2_xdznrm2);
template <class T> inline constexpr auto asum = of_type<T>(ork_blas_nx2_xsasum, ork_blas_nx2_xdasum, ork_blas_nx2_xscasum, ork_blas_nx2_xdzasum);
template <class T> inline constexpr auto amax = of_type<T>(ork_blas_nx2_xisamax, ork_blas_nx2_xidamax, ork_blas_nx2_xicamax, ork_blas_nx2_xizamax);
template <class T> inline constexpr auto amin = of_type<T>(ork_blas_nx2_xisamin, ork_blas_nx2_xidamin, ork_blas_nx2_xicamin, ork_blas_nx2_xizamin);
template <class T> inline constexpr auto rot = of_type<T>(ork_blas_nx2_xsrot, ork_blas_nx2_xdrot, ork_blas_nx2_xcrot, ork_blas_nx2_xzrot);
template <class T> inline constexpr auto rot_real = of_type<T>(ork_blas_nx2_xcsrot, ork_blas_nx2_xzdrot);
template <class T> inline constexpr auto rotm = of_type<T>(ork_blas_nx2_xsrotm, ork_blas_nx2_xdrotm);
template <class T> inline constexpr auto rotg = of_type<T>(ork_blas_nx2_srotg, ork_blas_nx2_drotg, ork_blas_nx2_crotg, ork_blas_nx2_zrotg);
template <class T> inline constexpr auto rotmg = of_type<T>(ork_blas_nx2_srotmg, ork_blas_nx2_drotmg);
template <class T> inline constexpr auto axpyi = of_type<T>(ork_blas_nx2_saxpyi, ork_blas_nx2_daxpyi, ork_blas_nx2_caxpyi, ork_blas_nx2_zaxpyi);
template <class T> inline constexpr auto doti = of_type<T>(ork_blas_nx2_sdoti, ork_blas_nx2_ddoti, ork_blas_nx2_cdotui, ork_blas_nx2_zdotui);
template <class T> inline constexpr auto dotci = of_type<T>(ork_blas_nx2_sdoti, ork_blas_nx2_ddoti, ork_blas_nx2_cdotci, ork_blas_nx2_zdotci);
template <class T> inline constexpr auto gthr = of_type<T>(ork_blas_nx2_sgthr, ork_blas_nx2_dgthr, ork_blas_nx2_cgthr, ork_blas_nx2_zgthr);
template <class T> inline constexpr auto gthrz = of_type<T>(ork_blas_nx2_sgthrz, ork_blas_nx2_dgthrz, ork_blas_nx2_cgthrz, ork_blas_nx2_zgthrz);
template <class T> inline constexpr auto sctr = of_type<T>(ork_blas_nx2_ssctr, ork_blas_nx2_dsctr, ork_blas_nx2_csctr, ork_blas_nx2_zsctr);
template <class T> inline constexpr auto roti = of_type<T>(ork_blas_nx2_sroti, ork_blas_nx2_droti);
template <class T> inline constexpr auto cabs1 = of_type<T>(ork_blas_nx2_scabs1, ork_blas_nx2_dcabs1);
// clang-format on

// The plain products; std::complex's own recovers infinities.
template <class R>
R times(R a, R b)
{
    return a * b;
}
template <class R>
std::complex<R> times(std::complex<R> a, std::complex<R> b)
{
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}
template <class R>
std::complex<R> times(R a, std::complex<R> b)
{
    return {a * b.real(), a * b.imag()};
}
template <class T>
Real<T> magnitude1(T a)
{
    if constexpr (is_complex<T>)
        return std::abs(a.real()) + std::abs(a.imag());
    else
        return std::abs(a);
}

// Elements in the longest stretch that a kernel treats in one piece, beyond which its loops repeat: sixteen registers.
template <class T>
inline constexpr std::int64_t stretch = 16 * 16 / static_cast<std::int64_t>(sizeof(T));

} // namespace ork::test
