// SPDX-License-Identifier: MIT
// The rounding units of the blocked multiply, a kernel table's first eight values, per element type.
#pragma once

#include <cstdint>

namespace ork::gemm {

using Int = std::int64_t;

template <class T>
struct Units;

template <>
struct Units<double> {
    static constexpr Int m = 2, n = 8, k = 4; // rows of an A panel, columns of a B panel, depth is padded to k
    static constexpr Int c_factor = 1;
    static constexpr Int parameters[3] = {4, 4, 4};
    static constexpr std::uint64_t flags = 126;
};

constexpr Int round_up(Int value, Int unit) { return (value + unit - 1) / unit * unit; }

// Depth of a block of a product whose whole depth is k. Every way through the multiply sums blocks of this depth one
// after another, so an element of C has the same bits on all of them.
constexpr Int block_depth(Int k, Int unit)
{
    if (k > 255) return k > 256 && k < 512 ? round_up((k + 1) / 2, unit) : 256; // two halves rather than 256 and a rest
    const Int padded = k > 0 ? round_up(k, unit) : 0;
    return padded > 128 ? padded : 128;
}

} // namespace ork::gemm
