// SPDX-License-Identifier: MIT
// Steps down and up several right-hand sides with the factors of a tridiagonal matrix with interchanges (LAPACK's
// gttrf): P L with one multiplier a step, U with two superdiagonals.
#pragma once

#include "blas/divide.h"
#include "lapack/column_lanes.h"
#include "lapack/scalar.h"

namespace ork::lapack::tridiagonal {

// Division by an element of the diagonal, as a product wherever that is safe.
template <class T>
struct Divisor {
    T d, inverse;
    bool multiplies;

    [[gnu::always_inline]] explicit Divisor(T d) : d(d), inverse(d), multiplies(invert(d, inverse)) {}
    [[gnu::always_inline]] Vec<T> divide(Vec<T> x) const
    {
        if (multiplies) [[likely]]
            return Factor<T>(inverse) * x;
        T lane[Vec<T>::lanes];
        store<Vec<T>::lanes>(lane, x);
        for (T& e : lane) e = divided(e, d);
        return load<Vec<T>::lanes>(lane);
    }
    [[gnu::always_inline]] T divide(T x) const { return multiplies ? inverse * x : divided(x, d); }
};

// x(i) = (b(i) - first(i) x one row back - second(i) x two rows back) / d(i), in this order.
template <class T>
struct TwoBack {
    Vec<T> one, two;
};
template <class T>
struct TwoBackFactors {
    Factor<T> first, second;
    Divisor<T> d;
};
// values(k, first, second, d) gives those of step k.
template <class T, class Values>
struct SubstituteTwo {
    Values values;
    [[gnu::always_inline]] TwoBackFactors<T> at(Int k) const
    {
        T first, second, d;
        values(k, first, second, d);
        return {Factor<T>(first), Factor<T>(second), Divisor<T>(d)};
    }
    [[gnu::always_inline]] void operator()(const TwoBackFactors<T>& f, TwoBack<T>& x, Vec<T>& row) const
    {
        row = f.d.divide((row - f.second * x.two) - f.first * x.one);
        x = {row, x.one};
    }
};

template <class T>
struct Exchange {
    Factor<T> multiplier;
    bool swaps;
};
// Downwards with P L: the multiple of the upper row goes to the lower one, which has changed places before.
template <class T, class Values>
struct EliminateDown {
    Values values; // Exchange<T> of step k
    [[gnu::always_inline]] Exchange<T> at(Int k) const { return values(k); }
    [[gnu::always_inline]] void operator()(const Exchange<T>& f, Vec<T>& carried, Vec<T>& row) const
    {
        const Vec<T> upper = f.swaps ? row : carried, lower = f.swaps ? carried : row;
        row = upper, carried = lower - f.multiplier * upper;
    }
};
// Upwards with its transpose: the multiple of the lower row goes to the upper one, then they change places.
template <class T, class Values>
struct EliminateUp {
    Values values;
    [[gnu::always_inline]] Exchange<T> at(Int k) const { return values(k); }
    [[gnu::always_inline]] void operator()(const Exchange<T>& f, Vec<T>& carried, Vec<T>& row) const
    {
        const Vec<T> upper = row - f.multiplier * carried;
        row = f.swaps ? upper : carried, carried = f.swaps ? carried : upper;
    }
};

// The states of a recurrence that starts with row p.
template <int registers, class T>
[[gnu::always_inline]] inline void carry(const ColumnLanes<T, registers>& columns, const T* p,
                                         Vec<T> (&carried)[registers])
{
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) carried[r] = columns.row(p, r);
}
template <int registers, class T>
[[gnu::always_inline]] inline void put_carried(const ColumnLanes<T, registers>& columns, T* p,
                                               const Vec<T> (&carried)[registers])
{
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) columns.put_row(p, r, carried[r]);
}

// b <- U^-1 b; du and du2 are the superdiagonals, of which du(n) and du2(n - 1) do not exist.
template <int registers, class T>
[[gnu::always_inline]] inline void solve_upper(const ColumnLanes<T, registers>& columns, Int n, const T* d, const T* du,
                                               const T* du2, T* b)
{
    const auto values = [&](Int i, T & first, T & second, T & diagonal) __attribute__((always_inline))
    {
        first = i + 1 < n ? du[i] : T{}, second = i + 2 < n ? du2[i] : T{}, diagonal = d[i];
    };
    TwoBack<T> x[registers] = {};
    recur<false>(columns, n, b, b, x, SubstituteTwo<T, decltype(values)>{values});
}

} // namespace ork::lapack::tridiagonal
