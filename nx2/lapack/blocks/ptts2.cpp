// SPDX-License-Identifier: MIT
// B <- A^-1 B with the factors of a positive definite tridiagonal matrix:
//     b(i) <- b(i) - l(i - 1) b(i - 1) downwards,  b(i) <- b(i) / d(i) - conj(l(i)) b(i + 1) upwards
// where l is below the diagonal of L, or conj(l) above that of U.
#include "lapack/column_lanes.h"
#include "lapack/members.h"
#include "lapack/scalar.h"

namespace ork::lapack {
namespace {

template <bool upper>
struct Down {
    const T* e;
    [[gnu::always_inline]] Factor<T> at(Int k) const { return Factor<T>(upper ? conj(e[k]) : e[k]); }
    [[gnu::always_inline]] void operator()(const Factor<T>& l, Vec<T>& above, Vec<T>& row) const
    {
        row = above = row - l * above;
    }
};

template <bool upper>
struct Up {
    const T* e;
    const R* d;
    struct Row {
        Factor<T> l;
        Vec<R> d;
    };
    [[gnu::always_inline]] Row at(Int k) const { return {Factor<T>(upper ? e[k] : conj(e[k])), broadcast(d[k])}; }
    [[gnu::always_inline]] void operator()(const Row& f, Vec<T>& below, Vec<T>& row) const
    {
        row = below = Vec<T>{reals(row) / f.d} - f.l * below;
    }
};

template <int registers, bool upper>
[[gnu::noinline]] void solve(Int n, Int count, const R* d, const T* e, T* b, Int ldb)
{
    const ColumnLanes<T, registers> columns(ldb, count);
    Vec<T> carried[registers];
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) carried[r] = columns.row(b, r);
    recur<true>(columns, n - 1, b + 1, b + 1, carried, Down<upper>{e});
    const Vec<R> last = broadcast(d[n - 1]);
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) {
        carried[r] = {reals(carried[r]) / last};
        columns.put_row(b + n - 1, r, carried[r]);
    }
    recur<false>(columns, n - 1, b, b, carried, Up<upper>{e, d});
}

template <bool upper>
void ptts2(Int n, Int nrhs, const R* d, const T* e, T* b, Int ldb)
{
    if (n <= 0) return;
    for_each_group<T, 4>(
        nrhs, [&]<int registers>(Int j, Int count) { solve<registers, upper>(n, count, d, e, b + j * ldb, ldb); });
}

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

#if ORK_KERNEL_COMPLEX
ORK_LAPACK_EXPORT(ptts2)
(const Int* iuplo, const Int* n, const Int* nrhs, const R* d, const T* e, T* b, const Int* ldb)
{
    if (*iuplo == 1)
        ptts2<true>(*n, *nrhs, d, e, b, *ldb);
    else
        ptts2<false>(*n, *nrhs, d, e, b, *ldb);
}
#else
ORK_LAPACK_EXPORT(ptts2)(const Int* n, const Int* nrhs, const R* d, const T* e, T* b, const Int* ldb)
{
    ptts2<false>(*n, *nrhs, d, e, b, *ldb);
}
#endif
