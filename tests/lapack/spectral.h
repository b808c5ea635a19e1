// SPDX-License-Identifier: MIT
// Matrices for tests of decompositions: padded ones, kinds that are hard in one way each, products in long double.
#pragma once

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include "lapack/kernel.h"
#include "support/random.h"

namespace ork::test {

template <class T>
inline constexpr Real<T> eps = std::numeric_limits<Real<T>>::epsilon();

using Long = std::complex<long double>;
template <class T>
Long wide(T x)
{
    return Long(x);
}

// Stored by columns with three rows more than it has; what is between columns is NaN and must stay.
template <class T>
struct Padded {
    Int rows, columns, ld;
    std::vector<T> data, before;

    Padded(Int m, Int n) : rows(m), columns(n), ld(m + 3), data(ld * n, std::numeric_limits<Real<T>>::quiet_NaN())
    {
        before = data;
    }
    template <class Element>
    Padded(Int m, Int n, Element&& element) : Padded(m, n)
    {
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < m; ++i) (*this)(i, j) = element(i, j);
        before = data;
    }
    T& operator()(Int i, Int j) { return data[j * ld + i]; }
    const T& operator()(Int i, Int j) const { return data[j * ld + i]; }

    template <class MayChange>
    bool unchanged_except(MayChange&& may_change) const
    {
        for (Int j = 0; j < columns; ++j)
            for (Int i = 0; i < ld; ++i)
                if ((i >= rows || !may_change(i, j)) &&
                    std::memcmp(&data[j * ld + i], &before[j * ld + i], sizeof(T)) != 0)
                    return false;
        return true;
    }
    bool padding_intact() const
    {
        return unchanged_except([](Int, Int) { return true; });
    }
};

template <class T>
Long product(const Padded<T>& a, const Padded<T>& b, Int i, Int j, Int depth)
{
    Long sum = 0;
    for (Int k = 0; k < depth; ++k) sum += wide(a(i, k)) * wide(b(k, j));
    return sum;
}
template <class T>
long double largest(const Padded<T>& a)
{
    long double size = 0;
    for (Int j = 0; j < a.columns; ++j)
        for (Int i = 0; i < a.rows; ++i) size = std::max(size, std::abs(wide(a(i, j))));
    return size;
}
// The largest element of Q^H Q - I.
template <class T>
long double lack_of_orthogonality(const Padded<T>& q)
{
    long double worst = 0;
    for (Int j = 0; j < q.columns; ++j)
        for (Int i = 0; i < q.columns; ++i) {
            Long sum = i == j ? -1 : 0;
            for (Int k = 0; k < q.rows; ++k) sum += std::conj(wide(q(k, i))) * wide(q(k, j));
            if (!(std::abs(sum) <= worst)) worst = std::abs(sum);
        }
    return worst;
}

// Of order n.
template <class T>
std::vector<MatrixKind<T>> kinds(Int n, std::uint64_t seed = 1)
{
    using R = Real<T>;
    const auto values = std::make_shared<std::vector<T>>(uniform_values<T>(n * n, seed));
    const auto random = [=](Int i, Int j) { return (*values)[j * n + i]; };
    const auto power = [](R base, Int e) { return std::pow(base, static_cast<R>(e)); };
    const R huge = std::numeric_limits<R>::max() / 64, tiny = std::numeric_limits<R>::min() * 64;
    const R small = sizeof(R) == 8 ? R(1e-3) : R(0.1);
    return {
        {"random", random},
        {"zero", [](Int, Int) { return T(0); }},
        {"identity", [](Int i, Int j) { return T(i == j); }},
        {"ones", [](Int, Int) { return T(1); }},
        {"cyclic permutation", [=](Int i, Int j) { return T(i == (j + 1) % n); }},
        {"Jordan block", [](Int i, Int j) { return T(i == j || i + 1 == j); }},
        {"Hilbert", [](Int i, Int j) { return T(R(1) / static_cast<R>(i + j + 1)); }},
        {"upper triangle", [=](Int i, Int j) { return i <= j ? random(i, j) : T(0); }},
        {"graded", [=](Int i, Int j) { return power(small, std::max(i, j) % 12) * random(i, j); }},
        {"graded rows", [=](Int i, Int j) { return power(small, (n - i) % 12) * random(i, j); }},
        {"rank one", [=](Int i, Int j) { return random(i, 0) * random(0, j); }},
        {"huge", [=](Int i, Int j) { return huge * random(i, j); }},
        {"tiny", [=](Int i, Int j) { return tiny * random(i, j); }},
        {"two blocks", [=](Int i, Int j) { return (i < n / 2) == (j < n / 2) ? random(i, j) : T(0); }},
    };
}

inline const Int orders[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 13, 16, 17, 24, 64};

} // namespace ork::test
