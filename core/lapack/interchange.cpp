// SPDX-License-Identifier: MIT
// A block of pivots is read once for all columns; a column is then exchanged as a whole while it is in the cache. The
// threads share the columns.
#include "lapack/interchange.h"

#include <utility>

namespace ork::lapack {

namespace {

constexpr Int block = 128;

template <class T>
void exchange_in_columns(Int n, Matrix<T> a, const Int* from, const Int* to, Int count)
{
    Int j = 0;
    for (; j + 2 <= n; j += 2) {
        T *x = &a(0, j), *y = &a(0, j + 1);
        for (Int i = 0; i < count; ++i) {
            std::swap(x[from[i]], x[to[i]]);
            std::swap(y[from[i]], y[to[i]]);
        }
    }
    for (; j < n; ++j)
        for (Int i = 0; i < count; ++i) std::swap(a(from[i], j), a(to[i], j));
}

} // namespace

template <class T>
void exchange_rows(Int n, Matrix<T> a, Pivots ipiv, Int first, Int count, Int base, Order order)
{
    // Exchanges that a further thread must take over.
    constexpr double exchanges_per_thread = 1 << 16;
    for (Int done = 0; done < count; done += block) {
        const Int length = std::min(block, count - done);
        Int from[block], to[block], moved = 0;
        for (Int i = 0; i < length; ++i) {
            const Int row = order == Order::forward ? done + i : count - 1 - done - i;
            from[moved] = row;
            to[moved] = ipiv.get(first + row) - 1 - base;
            moved += from[moved] != to[moved];
        }
        const double work = static_cast<double>(moved) * static_cast<double>(n);
        blas::run_strips(n, blas::affordable_threads(work, exchanges_per_thread), [&](Int column, Int columns) {
            exchange_in_columns(columns, a.from(0, column), from, to, moved);
        });
    }
}

template void exchange_rows(Int, Matrix<float>, Pivots, Int, Int, Int, Order);
template void exchange_rows(Int, Matrix<double>, Pivots, Int, Int, Int, Order);
template void exchange_rows(Int, Matrix<std::complex<float>>, Pivots, Int, Int, Int, Order);
template void exchange_rows(Int, Matrix<std::complex<double>>, Pivots, Int, Int, Int, Order);

} // namespace ork::lapack
