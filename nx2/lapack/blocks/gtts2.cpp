// SPDX-License-Identifier: MIT
// op(A)^-1 B with the factors of a tridiagonal matrix with interchanges.
#include "lapack/members.h"
#include "lapack/tridiagonal_pivoting.h"

namespace ork::lapack {
namespace {
using namespace tridiagonal;

struct Factors {
    Int n;
    const T *dl, *d, *du, *du2;
    const Int* ipiv;
};

template <int registers>
[[gnu::noinline]] void solve(const Factors& f, Int count, T* b, Int ldb)
{
    const ColumnLanes<T, registers> columns(ldb, count);
    const auto exchange = [&](Int k) __attribute__((always_inline))
    {
        return Exchange<T>{Factor<T>(f.dl[k]), f.ipiv[k] != k + 1};
    };
    Vec<T> carried[registers];
    carry(columns, b, carried);
    recur<true>(columns, f.n - 1, b + 1, b, carried, EliminateDown<T, decltype(exchange)>{exchange});
    put_carried(columns, b + f.n - 1, carried);
    solve_upper(columns, f.n, f.d, f.du, f.du2, b);
}

template <int registers, bool conjugated>
[[gnu::noinline]] void solve_transposed(const Factors& f, Int count, T* b, Int ldb)
{
    const ColumnLanes<T, registers> columns(ldb, count);
    const auto op = [](T a) __attribute__((always_inline)) { return conjugated ? conj(a) : a; };
    const auto upper = [&](Int i, T & first, T & second, T & diagonal) __attribute__((always_inline))
    {
        first = i >= 1 ? op(f.du[i - 1]) : T{}, second = i >= 2 ? op(f.du2[i - 2]) : T{}, diagonal = op(f.d[i]);
    };
    TwoBack<T> x[registers] = {};
    recur<true>(columns, f.n, b, b, x, SubstituteTwo<T, decltype(upper)>{upper});
    const auto exchange = [&](Int k) __attribute__((always_inline))
    {
        return Exchange<T>{Factor<T>(op(f.dl[k])), f.ipiv[k] != k + 1};
    };
    Vec<T> carried[registers];
    carry(columns, b + f.n - 1, carried);
    recur<false>(columns, f.n - 1, b, b + 1, carried, EliminateUp<T, decltype(exchange)>{exchange});
    put_carried(columns, b, carried);
}

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

ORK_LAPACK_EXPORT(gtts2)
(const Int* itrans, const Int* n, const Int* nrhs, const T* dl, const T* d, const T* du, const T* du2, const Int* ipiv,
 T* b, const Int* ldb)
{
    if (*n <= 0) return;
    const Factors f{*n, dl, d, du, du2, ipiv};
    for_each_group<T, 2>(*nrhs, [&]<int registers>(Int j, Int count) {
        T* const columns = b + j * *ldb;
        if (*itrans == 0)
            solve<registers>(f, count, columns, *ldb);
        else if (*itrans == 1 || !ork::is_complex<T>)
            solve_transposed<registers, false>(f, count, columns, *ldb);
        else
            solve_transposed<registers, true>(f, count, columns, *ldb);
    });
}
