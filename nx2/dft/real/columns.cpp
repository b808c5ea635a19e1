// SPDX-License-Identifier: MIT
// The columns of a matrix in packed storage.
#include "dft/real/real.h"

namespace ork::dft {
namespace {

// First of the two columns of X[k], 0 < k < n/2 (odd n: <= n/2), among the numbers of a row, and the column of R(n/2).
std::int64_t complex_column(Packing packing, std::int64_t n, std::int64_t k)
{
    const bool shifted = packing == Packing::pack || (packing == Packing::perm && n % 2 != 0);
    return 2 * k - (shifted ? 1 : 0);
}
std::int64_t middle_column(Packing packing, std::int64_t n)
{
    return packing == Packing::perm ? 1 : packing == Packing::pack ? n - 1 : n;
}

template <class R>
Place<R> column(const Place<R>& a, std::int64_t j)
{
    return {a.re + j * a.distance, nullptr, a.stride, 0};
}
template <class R>
void zeros(const Place<R>& column, std::int64_t from, std::int64_t to)
{
    for (std::int64_t i = from; i < to; ++i) column.re[i * column.stride] = 0;
}

} // namespace

template <class R>
std::size_t work_bytes(const PackedColumns<R>& columns)
{
    const std::size_t real = work_bytes(*columns.real);
    if (columns.complex == nullptr) return real;
    const std::size_t complex = work_bytes(*columns.complex, (columns.n - 1) / 2);
    return real > complex ? real : complex;
}

template <class R>
void transform(const PackedColumns<R>& columns, Direction direction, R scale, const Place<R>& in, const Place<R>& out,
               std::int64_t from, std::int64_t to, void* work)
{
    const std::int64_t n = columns.n, m = length(*columns.real), complex = (n - 1) / 2;
    const Packing packing = columns.packing;
    const std::int64_t packed = packed_length(packing, m);
    const bool fills = packing == Packing::ccs && direction == Direction::forward;

    const auto real_column = [&](std::int64_t j) {
        if (direction == Direction::forward)
            forward(*columns.real, packing, scale, column(in, j), column(out, j), 1, work);
        else
            backward(*columns.real, packing, scale, column(in, j), column(out, j), 1, work);
        if (fills) zeros(column(out, j + 1), 0, packed);
    };
    if (from == 0) real_column(0);
    const std::int64_t first = from < 1 ? 1 : from, last = to < complex + 1 ? to : complex + 1;
    if (first < last) {
        const auto pairs = [&](const Place<R>& a) -> Place<R> {
            R* const re = a.re + complex_column(packing, n, first) * a.distance;
            return {re, re + a.distance, a.stride, 2 * a.distance};
        };
        transform(*columns.complex, direction, scale, pairs(in), pairs(out), last - first, work);
        if (fills)
            for (std::int64_t k = first; k < last; ++k)
                for (std::int64_t part = 0; part < 2; ++part)
                    zeros(column(out, complex_column(packing, n, k) + part), m, packed);
    }
    if (n % 2 == 0 && to == column_units(n)) real_column(middle_column(packing, n));
}

#define INSTANTIATE(R)                                                                                                 \
    template std::size_t work_bytes(const PackedColumns<R>&);                                                          \
    template void transform(const PackedColumns<R>&, Direction, R, const Place<R>&, const Place<R>&, std::int64_t,     \
                            std::int64_t, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
