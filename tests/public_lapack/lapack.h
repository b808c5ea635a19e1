// SPDX-License-Identifier: MIT
// The public routines by stem, element type and width of integers, and dense matrices to call them with.
#pragma once

#include <algorithm>
#include <complex>
#include <cstring>
#include <dlfcn.h>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "support/random.h"
#include "support/scalar.h"

namespace ork::test {

using Precisions = testing::Types<float, double, std::complex<float>, std::complex<double>>;
struct PrecisionNames {
    template <class T>
    static std::string GetName(int)
    {
        return precision_letter<T>();
    }
};

// What was reported through this program's xerbla_ and xerbla_64_ since the last call: "xerbla_ DGETRF 4\n".
std::string take_reports();

inline void* lapack_symbol(const std::string& name)
{
    void* address = dlsym(RTLD_DEFAULT, name.c_str());
    if (address == nullptr) ADD_FAILURE() << "no export " << name;
    return address;
}

// lapack<double, int32_t>("getrf", m, n, a, lda, ipiv) is ork_lapack_lp64_dgetrf; integers and letters by value, arrays
// by address; info is the result.
template <class T, class Int = std::int64_t, class... A>
std::int64_t lapack(const std::string& stem, A... arguments)
{
    const auto hold = [](auto x) {
        if constexpr (std::is_integral_v<decltype(x)> && sizeof(x) > 1)
            return static_cast<Int>(x);
        else
            return x;
    };
    const auto address = [](auto& x) -> const void* {
        if constexpr (std::is_pointer_v<std::remove_cvref_t<decltype(x)>>)
            return x;
        else
            return &x;
    };
    const auto held = std::tuple(hold(arguments)...);
    Int info = -99;
    void* routine =
        lapack_symbol((sizeof(Int) == 4 ? "ork_lapack_lp64_" : "ork_lapack_") + (precision_letter<T>() + stem));
    if (routine == nullptr) return info;
    std::apply(
        [&](auto&... x) { reinterpret_cast<void (*)(decltype(address(x))..., Int*)>(routine)(address(x)..., &info); },
        held);
    return info;
}

// orgqr and ormqr have other names where numbers are complex.
template <class T>
std::string orthogonal(const std::string& rest)
{
    return (is_complex<T> ? "un" : "or") + rest;
}
template <class T>
constexpr char adjoint = is_complex<T> ? 'C' : 'T';
template <class T>
constexpr Real<T> epsilon = std::numeric_limits<Real<T>>::epsilon();

// By columns, each followed by padding that holds NaN.
template <class T>
struct Dense {
    std::int64_t rows, columns, lead;
    std::vector<T> values;

    Dense(std::int64_t m, std::int64_t n, std::int64_t padding = 3)
        : rows(m), columns(n), lead(m + padding < 1 ? 1 : m + padding),
          values(static_cast<std::size_t>(lead * n + 1), T(std::numeric_limits<Real<T>>::quiet_NaN()))
    {
    }
    T* data() { return values.data(); }
    const T* data() const { return values.data(); }
    T& operator()(std::int64_t i, std::int64_t j) { return values[static_cast<std::size_t>(i + j * lead)]; }
    const T& operator()(std::int64_t i, std::int64_t j) const { return values[static_cast<std::size_t>(i + j * lead)]; }

    template <class Value>
    Dense& set(Value&& value)
    {
        for (std::int64_t j = 0; j < columns; ++j)
            for (std::int64_t i = 0; i < rows; ++i) (*this)(i, j) = value(i, j);
        return *this;
    }
    bool padding_is_poison() const
    {
        for (std::int64_t j = 0; j < columns; ++j)
            for (std::int64_t i = rows; i < lead; ++i)
                if (!std::isnan(std::real((*this)(i, j)))) return false;
        return std::isnan(std::real(values.back()));
    }
};

template <class T>
bool same_bits(const std::vector<T>& a, const std::vector<T>& b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

template <class T>
Dense<T> random_matrix(std::int64_t m, std::int64_t n, std::uint64_t seed = 1)
{
    Random random(seed);
    return Dense<T>(m, n).set([&](auto, auto) { return random.uniform<T>(); });
}

// G G^H / n + I: positive definite with a condition of a few.
template <class T>
Dense<T> positive_matrix(std::int64_t n, std::uint64_t seed = 1)
{
    const auto g = random_matrix<T>(n, 8, seed);
    return Dense<T>(n, n).set([&](auto i, auto j) {
        T sum = i == j ? 2 : 0;
        for (std::int64_t l = 0; l < 8; ++l) sum += g(i, l) * conjugated(g(j, l));
        return i == j ? T(std::real(sum)) : sum;
    });
}

template <class T>
Dense<T> unit_matrix(std::int64_t m, std::int64_t n)
{
    return Dense<T>(m, n).set([](auto i, auto j) { return T(i == j); });
}

// A matrix as a linear map in wider precision: what a vector becomes.
using Vector = std::vector<Wide<long double>>;
inline Vector random_vector(std::int64_t n, std::uint64_t seed = 77)
{
    Random random(seed);
    Vector x;
    for (std::int64_t i = 0; i < n; ++i)
        x.emplace_back(std::complex(random.uniform<double>(), random.uniform<double>()));
    return x;
}

// y = op(A) x over the elements (i, j) for which `wanted` says so.
template <class T, class Wanted>
Vector product(const Dense<T>& a, const Vector& x, Wanted wanted, char op = 'N')
{
    Vector y(static_cast<std::size_t>(op == 'N' ? a.rows : a.columns));
    for (std::int64_t j = 0; j < a.columns; ++j)
        for (std::int64_t i = 0; i < a.rows; ++i) {
            if (!wanted(i, j)) continue;
            const Wide<long double> element(op == 'C' ? conjugated(a(i, j)) : a(i, j));
            const std::size_t to = op == 'N' ? i : j, from = op == 'N' ? j : i;
            y[to] += multiply<std::complex<double>>(element, x[from]);
        }
    return y;
}
template <class T>
Vector product(const Dense<T>& a, const Vector& x, char op = 'N')
{
    return product(
        a, x, [](auto, auto) { return true; }, op);
}
inline constexpr auto on_and_above = [](std::int64_t i, std::int64_t j) { return i <= j; };
inline constexpr auto on_and_below = [](std::int64_t i, std::int64_t j) { return i >= j; };
inline constexpr auto below = [](std::int64_t i, std::int64_t j) { return i > j; };

inline long double largest(const Vector& x)
{
    long double most = 0;
    for (const auto& element : x) {
        const long double size = magnitude(element);
        if (!(size <= most)) most = size; // a NaN stays
    }
    return most;
}

// |got - want| <= factor n eps size, for residuals that were multiplied with a vector of elements below 1.
template <class T>
void expect_small(const Vector& got, const Vector& want, std::int64_t n, long double size, long double factor = 4)
{
    ASSERT_EQ(got.size(), want.size());
    Vector difference(got.size());
    for (std::size_t i = 0; i < got.size(); ++i) difference[i] = got[i] - want[i];
    const long double error = largest(difference);
    const long double bound = factor * static_cast<long double>(n + 1) * epsilon<T> * size;
    EXPECT_TRUE(error <= bound) << "error " << static_cast<double>(error) << " bound " << static_cast<double>(bound);
}

} // namespace ork::test
