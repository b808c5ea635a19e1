// SPDX-License-Identifier: MIT
// Matrices in the orderings of the contract, and what copies of them must be, element by element.
#pragma once

#include <algorithm>
#include <bit>
#include <limits>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"
#include "trans/kernel.h"

namespace ork::test {

inline bool transposes(char trans) { return trans == 'T' || trans == 't' || trans == 'C' || trans == 'c'; }
inline bool conjugates(char trans) { return trans == 'R' || trans == 'r' || trans == 'C' || trans == 'c'; }

// Where the elements of a matrix lie. Anything but C orders by rows.
struct Layout {
    char ordering;
    Int rows, cols, ld, stride = 1;

    bool by_columns() const { return ordering == 'C' || ordering == 'c'; }
    Int at(Int i, Int j) const { return by_columns() ? i * stride + j * ld : j * stride + i * ld; }
    Int length() const { return ((by_columns() ? rows : cols) - 1) * stride + 1; } // of a column or row
    Int extent() const { return rows < 1 || cols < 1 ? 0 : at(rows - 1, cols - 1) + 1; }
    bool holds(Int position) const
    {
        return position < extent() && position % ld < length() && position % ld % stride == 0;
    }
};

// An m x n matrix, or the matrix of which it is op; its leading dimension is the least possible and `padding` more.
inline Layout layout(char ordering, bool transposed, Int rows, Int cols, Int padding, Int stride = 1)
{
    Layout l{ordering, transposed ? cols : rows, transposed ? rows : cols, 1, stride};
    l.ld = std::max<Int>(l.length(), 1) + padding;
    return l;
}

template <class T>
const std::vector<T>& random_values()
{
    static const std::vector<T> values = uniform_values<T>(1 << 15, 5);
    return values;
}
// What arithmetic does not leave as it is: infinities, NaNs of both kinds, zeros of both signs, denormal numbers.
template <class T>
const std::vector<T>& special_values()
{
    using R = Real<T>;
    using Limits = std::numeric_limits<R>;
    static const std::vector<T> values = [] {
        const R parts[] = {R(1),
                           -R(0),
                           Limits::infinity(),
                           -Limits::infinity(),
                           Limits::quiet_NaN(),
                           Limits::max(),
                           Limits::denorm_min(),
                           Limits::signaling_NaN(),
                           R(-3),
                           R(0),
                           R(0.1)};
        std::vector<T> result(5000);
        Random random(8);
        for (T& x : result)
            for (std::size_t k = 0; k < sizeof(T) / sizeof(R); ++k)
                std::memcpy(reinterpret_cast<char*>(&x) + k * sizeof(R), &parts[random.integer(0, 10)], sizeof(R));
        return result;
    }();
    return values;
}

// The elements of a matrix from a list; what lies between them stays as it is.
template <class T>
void fill(Guarded<T>& array, const Layout& l, const std::vector<T>& values)
{
    for (Int j = 0; j < l.cols; ++j)
        for (Int i = 0; i < l.rows; ++i)
            std::memcpy(&array[l.at(i, j)], &values[static_cast<std::size_t>(l.at(i, j)) % values.size()], sizeof(T));
}

// Element (i, j) of op(A), and its product with a factor.
template <class T>
T element(const T* a, const Layout& l, char trans, Int i, Int j)
{
    const T x = transposes(trans) ? a[l.at(j, i)] : a[l.at(i, j)];
    return conjugates(trans) ? conjugated(x) : x;
}
template <class T>
T times(T alpha, T x)
{
    return alpha == T(1) ? x : plain_product(alpha, x);
}

// The bits, or a NaN where one is wanted.
template <class T>
bool same_value(T got, T want)
{
    if constexpr (is_complex<T>)
        return same_value(got.real(), want.real()) && same_value(got.imag(), want.imag());
    else
        return same_bits(got, want) || (std::isnan(got) && std::isnan(want));
}

// want(i, j) is each element; exact: NaNs too have the bits that are wanted.
template <class T, class Want>
void expect_matrix(const T* got, const Layout& l, bool exact, Want&& want)
{
    for (Int j = 0; j < l.cols; ++j)
        for (Int i = 0; i < l.rows; ++i) {
            const T x = want(i, j);
            if (exact ? same_bits(got[l.at(i, j)], x) : same_value(got[l.at(i, j)], x)) continue;
            ADD_FAILURE() << "element (" << i << ", " << j << ") is " << show(got[l.at(i, j)]) << ", not " << show(x);
            return;
        }
}

template <class T, class List>
T one_of(const List& list, Random& random)
{
    return T(*(std::begin(list) + random.integer(0, std::ssize(list) - 1)));
}
template <class T>
std::vector<T> factors()
{
    return {T(1), T(0), T(-1), T(2), some<T>(0.5f, 1), some<T>(-3, 0.25f)};
}
inline constexpr char orderings[] = {'C', 'c', 'R', 'r'}, all_letters[] = {'N', 'n', 'R', 'r', 'T', 't', 'C', 'c'};

} // namespace ork::test
