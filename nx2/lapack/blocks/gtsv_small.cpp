// SPDX-License-Identifier: MIT
// A tridiagonal system with partial pivoting. Rows are eliminated for a piece of the matrix, then for all right-hand
// sides; a single one goes along with the matrix, where it fills the time that the divisions take.
#include "lapack/members.h"
#include "lapack/tridiagonal_pivoting.h"

namespace ork::lapack {
namespace {
using namespace tridiagonal;

struct Matrix {
    Int n;
    T *dl, *d, *du;

    // Makes row i of U; eliminated(i, multiplier, swaps) does the same to the right-hand sides. False: a pivot of zero.
    template <class Eliminated>
    [[gnu::always_inline]] bool eliminate(Int i, Eliminated&& eliminated) const
    {
        if (magnitude(d[i]) >= magnitude(dl[i])) {
            if (d[i] == T{}) return false;
            const T multiplier = divided(dl[i], d[i]);
            d[i + 1] = d[i + 1] - multiplier * du[i];
            if (i + 2 < n) dl[i] = T{};
            eliminated(i, multiplier, false);
        } else {
            const T multiplier = divided(d[i], dl[i]), next = d[i + 1];
            d[i] = dl[i];
            d[i + 1] = du[i] - multiplier * next;
            du[i] = next;
            if (i + 2 < n) {
                dl[i] = du[i + 1];
                du[i + 1] = T{} - multiplier * dl[i];
            }
            eliminated(i, multiplier, true);
        }
        return true;
    }
};

Int solve_one(const Matrix& a, T* b)
{
    const Int n = a.n;
    const auto eliminated = [&](Int i, T multiplier, bool swaps) __attribute__((always_inline))
    {
        const T upper = swaps ? b[i + 1] : b[i], lower = swaps ? b[i] : b[i + 1];
        b[i] = upper, b[i + 1] = lower - multiplier * upper;
    };
    for (Int i = 0; i + 1 < n; ++i)
        if (!a.eliminate(i, eliminated)) return i + 1;
    if (a.d[n - 1] == T{}) return n;
    T one{}, two{};
    for (Int i = n - 1; i >= 0; --i) {
        T x = b[i];
        if (i + 2 < n) x = x - a.dl[i] * two;
        if (i + 1 < n) x = x - a.du[i] * one;
        two = one, one = b[i] = Divisor<T>(a.d[i]).divide(x);
    }
    return 0;
}

Int solve(const Matrix& a, Int nrhs, T* b, Int ldb)
{
    constexpr Int piece = 64;
    const Int n = a.n;
    T multiplier[piece];
    bool swaps[piece];
    for (Int from = 0; from + 1 < n; from += piece) {
        const Int steps = n - 1 - from < piece ? n - 1 - from : piece;
        Int done = 0;
        while (done < steps && a.eliminate(from + done, [&](Int i, T factor, bool exchange) {
            multiplier[i - from] = factor, swaps[i - from] = exchange;
        }))
            ++done;
        const auto values = [&](Int k) __attribute__((always_inline))
        {
            return Exchange<T>{Factor<T>(multiplier[k]), swaps[k]};
        };
        for_each_group<T, 2>(nrhs, [&]<int registers>(Int j, Int count) {
            const ColumnLanes<T, registers> columns(ldb, count);
            T* const top = b + from + j * ldb;
            Vec<T> carried[registers];
            carry(columns, top, carried);
            recur<true>(columns, done, top + 1, top, carried, EliminateDown<T, decltype(values)>{values});
            put_carried(columns, top + done, carried);
        });
        if (done < steps) return from + done + 1;
    }
    if (a.d[n - 1] == T{}) return n;
    for_each_group<T, 2>(nrhs, [&]<int registers>(Int j, Int count) {
        solve_upper(ColumnLanes<T, registers>(ldb, count), n, a.d, a.du, a.dl, b + j * ldb);
    });
    return 0;
}

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

ORK_LAPACK_EXPORT(gtsv_small)
(const Int* n, const Int* nrhs, T* dl, T* d, T* du, T* b, const Int* ldb, Int* info)
{
    const Matrix a{*n, dl, d, du};
    *info = *n <= 0 ? 0 : *nrhs == 1 ? solve_one(a, b) : solve(a, *nrhs, b, *ldb);
}
