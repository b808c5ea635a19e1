// SPDX-License-Identifier: MIT
// The four element types of the kernels and the wider types in which references are computed.
#pragma once

#include <cmath>
#include <complex>
#include <limits>
#include <type_traits>

namespace ork::test {

using quad = __float128; // 113 bits

template <class T>
struct ScalarTraits {
    using real = T;
    static constexpr bool complex = false;
};
template <class R>
struct ScalarTraits<std::complex<R>> {
    using real = R;
    static constexpr bool complex = true;
};

template <class T>
using Real = typename ScalarTraits<T>::real;
template <class T>
inline constexpr bool is_complex = ScalarTraits<T>::complex;

// A number in the precision of references. The products follow the plain formula, without the recovery of infinities
// that the language's own complex product adds, so a reference shows the NaN pattern of the formula.
template <class R>
struct Wide {
    R re = 0, im = 0;

    constexpr Wide() = default;
    constexpr Wide(R real, R imaginary = 0) : re(real), im(imaginary) {}
    template <class T>
    requires(!is_complex<T> && std::is_arithmetic_v<T>) constexpr Wide(T x) : re(x) {}
    template <class T>
    constexpr Wide(std::complex<T> x) : re(x.real()), im(x.imag())
    {
    }

    friend constexpr Wide operator+(Wide a, Wide b) { return {a.re + b.re, a.im + b.im}; }
    friend constexpr Wide operator-(Wide a, Wide b) { return {a.re - b.re, a.im - b.im}; }
    constexpr Wide& operator+=(Wide b) { return *this = *this + b; }
};

template <class R>
constexpr Wide<R> conj(Wide<R> a)
{
    return {a.re, -a.im};
}

// a * b for operands of type T: real ones never touch the imaginary parts, where infinity * 0 would plant a NaN.
template <class T, class R>
constexpr Wide<R> multiply(Wide<R> a, Wide<R> b)
{
    if constexpr (is_complex<T>)
        return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
    else
        return {a.re * b.re};
}

// |re| + |im|, which bounds the modulus within a factor of sqrt(2).
template <class R>
constexpr R magnitude(Wide<R> a)
{
    return (a.re < 0 ? -a.re : a.re) + (a.im < 0 ? -a.im : a.im);
}

// (re, im), or re alone in real types.
template <class T>
T some(float re, float im)
{
    if constexpr (is_complex<T>)
        return {re, im};
    else
        return re;
}
// The plain formula, without the language's recovery of infinities.
template <class T>
T plain_product(T a, T b)
{
    if constexpr (is_complex<T>)
        return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
    else
        return a * b;
}
template <class T>
T conjugated(T a)
{
    if constexpr (is_complex<T>)
        return std::conj(a);
    else
        return a;
}

template <class T>
const char* precision_letter()
{
    if constexpr (std::is_same_v<T, float>)
        return "s";
    else if constexpr (std::is_same_v<T, double>)
        return "d";
    else if constexpr (std::is_same_v<T, std::complex<float>>)
        return "c";
    else
        return "z";
}

} // namespace ork::test
