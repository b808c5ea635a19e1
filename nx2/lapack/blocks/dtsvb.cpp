// SPDX-License-Identifier: MIT
// Solutions with the factors of dttrfb, which are L of the upper half and U of the lower one: with `last` as the row
// that was left for the end,
//     b(i + 1) <- b(i + 1) - dl(i) b(i) downwards,  b(k - 1) <- b(k - 1) - (du(k - 1) d(k)) b(k) upwards, to `last`,
//     b(i) <- b(i) d(i) - (du(i) d(i)) b(i + 1) upwards, b(k) <- b(k) d(k) - dl(k - 1) b(k - 1) downwards from there.
// The two halves go on side by side.
#include "lapack/column_lanes.h"
#include "lapack/members.h"
#include "lapack/scalar.h"

namespace ork::lapack {
namespace {

// row <- a row - b (row before), the same factors for all columns.
struct Row {
    Factor<T> a, b;
};

// Recurrences that both come nearer to the middle or go away from it: `down` has steps 0 .. n_down - 1, `up` steps from
// n_up - 1 to 0.
template <int registers, class State, class Down, class Up>
[[gnu::always_inline]] inline void both_ways(const ColumnLanes<T, registers>& columns, Int n_down, const T* down_come,
                                             T* down_leave, State (&down_state)[registers], const Down& down, Int n_up,
                                             const T* up_come, T* up_leave, State (&up_state)[registers], const Up& up)
{
    constexpr int lanes = Vec<T>::lanes;
    Int i = 0, k = n_up;
    for (; i + lanes <= n_down && k >= lanes; i += lanes, k -= lanes) {
        square_of_steps<true>(columns, i, down_come, down_leave, down_state, down);
        square_of_steps<false>(columns, k - lanes, up_come, up_leave, up_state, up);
    }
    for (; i < n_down; ++i) single_step(columns, i, down_come, down_leave, down_state, down);
    for (; k > 0; --k) single_step(columns, k - 1, up_come, up_leave, up_state, up);
}

// b <- b - f(k) carried; what was carried is finished.
template <class Value>
struct Eliminate {
    Value value;
    [[gnu::always_inline]] Factor<T> at(Int k) const { return Factor<T>(value(k)); }
    [[gnu::always_inline]] void operator()(const Factor<T>& f, Vec<T>& carried, Vec<T>& row) const
    {
        const Vec<T> next = row - f * carried;
        row = carried, carried = next;
    }
};
// b <- g(k) b - f(k) solved.
template <class Values>
struct Substitute {
    Values values;
    [[gnu::always_inline]] Row at(Int k) const { return values(k); }
    [[gnu::always_inline]] void operator()(const Row& f, Vec<T>& solved, Vec<T>& row) const
    {
        row = solved = f.a * row - f.b * solved;
    }
};

template <int registers>
[[gnu::noinline]] void solve(Int n, Int count, const T* dl, const T* d, const T* du, T* b, Int ldb)
{
    const ColumnLanes<T, registers> columns(ldb, count);
    const Int last = n / 2, above = last, below = n - 1 - last; // rows on both sides of it
    Vec<T> top[registers] = {}, bottom[registers] = {}, x[registers];
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) {
        if (above > 0) top[r] = columns.row(b, r);
        if (below > 0) bottom[r] = columns.row(b + n - 1, r);
        x[r] = columns.row(b + last, r);
    }
    // Step k of the lower half brings row last + 1 + k.
    const auto down = [&](Int k) __attribute__((always_inline)) { return dl[k]; };
    const auto up = [&](Int k) __attribute__((always_inline)) { return du[last + 1 + k] * d[last + 2 + k]; };
    both_ways(columns, above - 1, b + 1, b, top, Eliminate<decltype(down)>{down}, below - 1, b + last + 1, b + last + 2,
              bottom, Eliminate<decltype(up)>{up});
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) {
        if (above > 0) {
            columns.put_row(b + above - 1, r, top[r]);
            x[r] = x[r] - Factor<T>(dl[above - 1]) * top[r];
        }
        if (below > 0) {
            columns.put_row(b + last + 1, r, bottom[r]);
            x[r] = x[r] - Factor<T>(du[last] * d[last + 1]) * bottom[r];
        }
        top[r] = bottom[r] = x[r] = Factor<T>(d[last]) * x[r];
        columns.put_row(b + last, r, x[r]);
    }
    const auto outwards_down = [&](Int k) __attribute__((always_inline))
    {
        return Row{Factor<T>(d[last + 1 + k]), Factor<T>(dl[last + k])};
    };
    const auto outwards_up = [&](Int i) __attribute__((always_inline))
    {
        return Row{Factor<T>(d[i]), Factor<T>(du[i] * d[i])};
    };
    both_ways(columns, below, b + last + 1, b + last + 1, bottom, Substitute<decltype(outwards_down)>{outwards_down},
              above, b, b, top, Substitute<decltype(outwards_up)>{outwards_up});
}

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

ORK_LAPACK_EXPORT(dtsvb)
(const Int* n, const Int* nrhs, const T* dl, const T* d, const T* du, T* b, const Int* ldb, Int* info)
{
    *info = 0;
    if (*n <= 0) return;
    for_each_group<T, 2>(
        *nrhs, [&]<int registers>(Int j, Int count) { solve<registers>(*n, count, dl, d, du, b + j * *ldb, *ldb); });
}
