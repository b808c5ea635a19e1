// SPDX-License-Identifier: MIT
// Where numbers stand by default, and how far they reach.
#include <algorithm>

#include "dft/descriptor.h"

namespace ork::dft {
namespace {

// Numbers along dimension 0 of the conjugate-even side, in its own elements.
std::int64_t half_length(const Parameters& p)
{
    const std::int64_t n = p.lengths[0];
    if (!p.packed()) return n / 2 + 1;
    return p.packed_format == ORK_DFT_CCS ? n / 2 * 2 + 2 : n;
}

// Elements from one line of dimension 0 to the next.
std::int64_t line(const Parameters& p, Side side)
{
    if (!p.real()) return p.lengths[0];
    const std::int64_t half = half_length(p);
    if (side == output) return half;
    return p.in_place() ? (p.packed() ? half : 2 * half) : p.lengths[0];
}

} // namespace

void strides_of(const Parameters& p, Side side, std::int64_t strides[])
{
    if (p.has_strides[side]) {
        std::copy_n(p.own_strides[side], p.rank + 1, strides);
        return;
    }
    strides[0] = 0;
    std::int64_t stride = 1;
    for (int d = 0; d < p.rank; ++d) {
        strides[d + 1] = stride;
        stride *= d == 0 ? line(p, side) : p.lengths[d];
    }
}

std::int64_t numbers(const Parameters& p, std::int64_t limit)
{
    std::int64_t product = 1;
    for (int d = 0; d < p.rank; ++d)
        if (__builtin_mul_overflow(product, p.lengths[d], &product) || product >= limit) return -1;
    return product;
}

std::int64_t reach(const Parameters& p, Side side, std::int64_t limit)
{
    std::int64_t strides[most_dimensions + 1], reach = 0;
    strides_of(p, side, strides);
    const auto add = [&](std::int64_t count, std::int64_t stride) {
        std::int64_t part;
        return !__builtin_mul_overflow(count, stride, &part) && part != INT64_MIN &&
               !__builtin_add_overflow(reach, part < 0 ? -part : part, &reach) && reach < limit;
    };
    bool fits = add(1, strides[0]) && add(p.transforms - 1, p.distance[side]);
    for (int d = 0; d < p.rank; ++d) fits = fits && add(p.lengths[d] - 1, strides[d + 1]);
    return fits ? reach : -1;
}

} // namespace ork::dft
