// SPDX-License-Identifier: MIT
#include "spblas/split.h"

#include <algorithm>

#include "threads/pool.h"

namespace ork::spblas {
namespace {

// Rows before which `share` of the entries stand. Rows with gaps or in another order are divided somehow, but without
// overlap: the search ends no earlier for a larger share, whatever the pointers are.
std::int64_t boundary(const Integers& pointers, std::int64_t lines, double total, double share)
{
    std::int64_t low = 0, high = lines;
    while (low < high) {
        const std::int64_t middle = low + (high - low) / 2;
        if (static_cast<double>(pointers[middle] - pointers[0] + middle) < total * share)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

} // namespace

std::int64_t slices(const Call& call)
{
    switch (call.a->format) {
    case Format::coo:
        return call.a->number[0];
    case Format::bsc:
        return call.n;
    default:
        return call.m;
    }
}

double stored_entries(const Call& call)
{
    const Matrix& a = *call.a;
    const std::int64_t lines = slices(call);
    switch (a.format) {
    case Format::coo:
        return static_cast<double>(a.number[0]);
    case Format::dia:
        return static_cast<double>(a.number[1]) * static_cast<double>(std::min(call.m, call.n));
    case Format::sky:
        return static_cast<double>(call.integers(1)[lines] - call.integers(1)[0]);
    default:
        const std::int64_t stored = lines > 0 ? call.integers(3)[lines - 1] - call.integers(2)[0] : 0;
        return static_cast<double>(stored) * static_cast<double>(a.block() * a.block());
    }
}

Range slice(const Call& call, int parts, int part)
{
    const Matrix& a = *call.a;
    const std::int64_t lines = slices(call);
    if (a.format == Format::coo || a.format == Format::dia) return strip(lines, 1, parts, part);
    const Integers pointers = call.integers(a.format == Format::sky ? 1 : 2);
    const double total = stored_entries(call) / static_cast<double>(a.block() * a.block()) + static_cast<double>(lines);
    return share(pointers, lines, total, parts, part);
}

Range share(const Integers& pointers, std::int64_t lines, double total, int parts, int part)
{
    const auto begin = [&](int p) {
        return p == 0 ? 0 : p == parts ? lines : boundary(pointers, lines, total, static_cast<double>(p) / parts);
    };
    const std::int64_t first = begin(part);
    return {first, begin(part + 1) - first};
}

Range strip(std::int64_t count, std::int64_t unit, int parts, int part)
{
    const std::int64_t units = (count + unit - 1) / unit, each = units / parts, more = units % parts;
    const std::int64_t first = (part * each + std::min<std::int64_t>(part, more)) * unit;
    const std::int64_t length = (each + (part < more ? 1 : 0)) * unit;
    return {std::min(first, count), std::min(length, count - std::min(first, count))};
}

int threads_for(double products)
{
    if (!(products >= 2 * products_per_thread)) return 1;
    return static_cast<int>(std::min<double>(products / products_per_thread, threads::limit()));
}

std::int64_t columns_together(const Call& call)
{
    constexpr std::int64_t at_once = 4, line = 64;
    return call.row_major() ? std::max(at_once, line / call.element()) : at_once;
}

} // namespace ork::spblas
