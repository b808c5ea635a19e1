// SPDX-License-Identifier: MIT
// The rules of small factorisations as plain loops, operation for operation, and matrices that try them.
#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "lapack/kernel.h"
#include "lapack/values.h"
#include "support/guarded.h"

namespace ork::test {

template <class T>
Real<T> taxicab(T x)
{
    if constexpr (is_complex<T>)
        return std::abs(x.real()) + std::abs(x.imag());
    else
        return std::abs(x);
}

// Smith's division.
template <class T>
T quotient(T x, T d)
{
    if constexpr (is_complex<T>) {
        const bool turned = std::abs(d.imag()) > std::abs(d.real());
        const auto large = turned ? d.imag() : d.real(), small = turned ? d.real() : d.imag();
        const auto r = small / large, size = large + small * r;
        if (turned) return {(x.real() * r + x.imag()) / size, (x.imag() * r - x.real()) / size};
        return {(x.real() + x.imag() * r) / size, (x.imag() - x.real() * r) / size};
    } else {
        return x / d;
    }
}

template <class T>
T reciprocal(T d)
{
    if constexpr (is_complex<T>) {
        const bool turned = std::abs(d.imag()) > std::abs(d.real());
        const auto large = turned ? d.imag() : d.real(), small = turned ? d.real() : d.imag();
        const auto r = small / large, size = large + small * r;
        if (turned) return {r / size, -1 / size};
        return {1 / size, -r / size};
    } else {
        return 1 / d;
    }
}

// By columns; what lies between rows m and lda is poison.
template <class T>
struct Stored {
    Int m, n, lda;
    Guarded<T> a;

    Stored(Int m, Int n, Int lda, Guard side, const std::function<T(Int, Int)>& element)
        : m(m), n(n), lda(lda), a(m > 0 && n > 0 ? lda * (n - 1) + m : 0, side)
    {
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < m; ++i) (*this)(i, j) = element(i, j);
        a.remember();
    }
    T& operator()(Int i, Int j) const { return a[i + j * lda]; }
    // Only elements of the matrix have changed, of them those that may_change allows.
    testing::AssertionResult unchanged_except(const std::function<bool(Int, Int)>& may_change) const
    {
        return a.unchanged_except([&](Int k) { return k % lda < m && may_change(k % lda, k / lda); });
    }
    testing::AssertionResult padding_intact() const
    {
        return unchanged_except([](Int, Int) { return true; });
    }
    std::vector<T> elements() const
    {
        std::vector<T> all;
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < m; ++i) all.push_back((*this)(i, j));
        return all;
    }
};

// LU in place with ipiv from 1; returns info. Of a column of zeros and NaN the diagonal element is the pivot.
template <class T>
Int plain_lu(Stored<T>& a, std::vector<Int>* ipiv)
{
    using R = Real<T>;
    const bool divides = ipiv != nullptr && a.m == a.n && a.n <= 7;
    Int info = 0;
    for (Int j = 0; j < std::min(a.m, a.n); ++j) {
        if (ipiv != nullptr) {
            Int p = j;
            R most = 0;
            for (Int i = j; i < a.m; ++i)
                if (taxicab(a(i, j)) > most) most = taxicab(a(i, j)), p = i;
            ipiv->push_back(p + 1);
            for (Int k = 0; k < a.n; ++k) std::swap(a(j, k), a(p, k));
        }
        const T pivot = a(j, j);
        if (pivot == T(0)) {
            if (info == 0) info = j + 1;
        } else if (!divides && taxicab(pivot) > std::numeric_limits<R>::min()) {
            const T factor = reciprocal(pivot);
            for (Int i = j + 1; i < a.m; ++i) a(i, j) = plain_product(a(i, j), factor);
        } else {
            for (Int i = j + 1; i < a.m; ++i) a(i, j) = quotient(a(i, j), pivot);
        }
        for (Int k = j + 1; k < a.n; ++k)
            for (Int i = j + 1; i < a.m; ++i) a(i, k) = a(i, k) - plain_product(a(i, j), a(j, k));
    }
    return info;
}

// Cholesky in place of one triangle; returns info.
template <class T>
Int plain_cholesky(Stored<T>& a, bool upper)
{
    using R = Real<T>;
    const auto at = [&](Int i, Int k) -> T& { return upper ? a(k, i) : a(i, k); };
    const auto square = [](T x) -> R {
        if constexpr (is_complex<T>)
            return x.real() * x.real() + x.imag() * x.imag();
        else
            return x * x;
    };
    for (Int j = 0; j < a.n; ++j) {
        R even = 0, odd = 0;
        for (Int k = 0; k + 1 < j; k += 2) even -= square(at(j, k)), odd -= square(at(j, k + 1));
        R d = std::real(at(j, j)) + (even + odd);
        if (j % 2 == 1) d -= square(at(j, j - 1));
        at(j, j) = d > 0 ? std::sqrt(d) : d;
        if (!(d > 0)) return j + 1;
        for (Int i = j + 1; i < a.n; ++i) {
            for (Int k = 0; k < j; ++k) at(i, j) = at(i, j) - plain_product(at(i, k), conjugated(at(j, k)));
            if constexpr (is_complex<T>)
                at(i, j) = {at(i, j).real() / at(j, j).real(), at(i, j).imag() / at(j, j).real()};
            else
                at(i, j) /= at(j, j);
        }
    }
    return 0;
}

// Of `rows` rows and any number of columns: what pivots must decide about.
template <class T>
std::vector<MatrixKind<T>> kinds_of_pivots(Int rows, Random& random)
{
    using R = Real<T>;
    const auto values = [&](auto&& draw) {
        std::vector<T> all;
        for (Int k = 0; k < rows * 128; ++k) all.push_back(draw());
        return [=](Int i, Int j) { return all[static_cast<std::size_t>(i + j * rows)]; };
    };
    const auto uniform = values([&] { return random.uniform<T>(); });
    const auto ties = values([&] { return some<T>(float(random.integer(-1, 1)), float(random.integer(-1, 1))); });
    const auto strange = values([&] { return odd_value<T>(random); });
    const auto power = [](int e) { return std::ldexp(R(1), e); };
    const R tiny = std::numeric_limits<R>::min() / 16;
    return {
        {"uniform", uniform},
        {"ties and zeros", ties},
        {"graded", [=](Int i, Int j) { return uniform(i, j) * power(static_cast<int>(-2 * i - j % 8)); }},
        {"rank one", [=](Int i, Int j) { return some<T>(float(i % 5 - 2), 0) * some<T>(float(j % 3 + 1), 0); }},
        {"a column of zeros", [=](Int i, Int j) { return j == 2 ? T(0) : uniform(i, j); }},
        {"subnormal", [=](Int i, Int j) { return uniform(i, j) * tiny; }},
        {"one small column", [=](Int i, Int j) { return j == 1 ? uniform(i, j) * tiny : uniform(i, j); }},
        {"infinities, NaN, 40 orders", strange},
        {"nothing but NaN", [](Int, Int) { return T(std::numeric_limits<R>::quiet_NaN()); }},
    };
}

} // namespace ork::test
