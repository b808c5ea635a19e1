// SPDX-License-Identifier: MIT
// Tridiagonal matrices for tests, and the residuals of their solutions.
#pragma once

#include "lapack/values.h"

namespace ork::test {

enum class Kind { dominant, uniform, graded, zero_diagonal };

// x / y by Smith's method, as kernels divide.
template <class T>
T smith_quotient(T x, T y)
{
    if constexpr (is_complex<T>) {
        using R = Real<T>;
        const R a = x.real(), b = x.imag(), c = y.real(), d = y.imag();
        if (std::abs(c) >= std::abs(d)) {
            const R r = d / c, size = c + d * r;
            return {(a + b * r) / size, (b - a * r) / size};
        }
        const R r = c / d, size = d + c * r;
        return {(a * r + b) / size, (b * r - a) / size};
    } else {
        return x / y;
    }
}

template <class T>
struct System {
    std::int64_t n;
    Vector<T> dl, d, du;

    System(std::int64_t n, T below, T diagonal, T above) : n(n), dl(n - 1, 1), d(n, 1), du(n - 1, 1, Guard::begin)
    {
        for (std::int64_t i = 0; i < n; ++i) d[i] = diagonal;
        for (std::int64_t i = 0; i + 1 < n; ++i) dl[i] = below, du[i] = above;
    }
    System(std::int64_t n, Random& random, Kind kind) : System(n, T{}, T{}, T{})
    {
        const auto value = [&] { return kind == Kind::graded ? random.spread<T>(20) : random.uniform<T>(); };
        for (std::int64_t i = 0; i < n; ++i) {
            d[i] = kind == Kind::zero_diagonal ? T{} : value();
            if (kind == Kind::dominant) d[i] = d[i] + T(4);
            if (i + 1 < n) dl[i] = value(), du[i] = value();
        }
    }
    System(const System& other)
        : n(other.n), dl(other.dl.values(), 1), d(other.d.values(), 1), du(other.du.values(), 1, Guard::begin)
    {
    }
    void read_only() { dl.read_only(), d.read_only(), du.read_only(); }

    // Element (i, j) of op(A), |i - j| <= 1.
    Wide<quad> at(char op, std::int64_t i, std::int64_t j) const
    {
        if (op != 'N') std::swap(i, j);
        const Wide<quad> x(i == j ? d[i] : i > j ? dl[j] : du[i]);
        return op == 'C' ? conj(x) : x;
    }
};

template <class T>
void fill_both(Matrix<T>& b, Matrix<T>& copy, Random& random)
{
    b.fill(random);
    for (std::int64_t j = 0; j < b.columns(); ++j)
        for (std::int64_t i = 0; i < b.rows(); ++i) copy(i, j) = b(i, j);
}

// |op(A) X - B| within tolerance * eps of (largest row of |A|) * (largest of |X|) + largest of |B|, column by column.
template <class T>
void expect_solved(char op, const System<T>& a, const Matrix<T>& x, const Matrix<T>& b, double tolerance)
{
    for (std::int64_t j = 0; j < x.columns(); ++j) {
        quad row = 0, most = 0, rhs = 0;
        std::vector<Wide<quad>> residual;
        for (std::int64_t i = 0; i < a.n; ++i) {
            Wide<quad> sum = Wide<quad>() - Wide<quad>(b(i, j));
            quad size = 0;
            for (std::int64_t l = std::max<std::int64_t>(i - 1, 0); l <= std::min(i + 1, a.n - 1); ++l) {
                sum += multiply<T>(a.at(op, i, l), Wide<quad>(x(l, j)));
                size += magnitude(a.at(op, i, l));
            }
            residual.push_back(sum);
            row = std::max(row, size), most = std::max(most, magnitude(Wide<quad>(x(i, j))));
            rhs = std::max(rhs, magnitude(Wide<quad>(b(i, j))));
        }
        const quad bound = static_cast<quad>(tolerance * std::numeric_limits<Real<T>>::epsilon()) * (row * most + rhs);
        for (std::int64_t i = 0; i < a.n; ++i)
            if (!(magnitude(residual[static_cast<std::size_t>(i)]) <= bound)) {
                ADD_FAILURE() << "column " << j << ", row " << i << ": residual "
                              << static_cast<double>(magnitude(residual[static_cast<std::size_t>(i)])) << " over "
                              << static_cast<double>(bound);
                return;
            }
    }
}

} // namespace ork::test
